// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <charconv>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "doc/command.h"

namespace plumetta {

// A number that is the whole of a text.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return number;
}

// The words of a call, read one after another. The first thing that is wrong is kept as an error.
class WordReader {
 public:
  explicit WordReader(std::vector<std::string> words) : words_(std::move(words)) {}

  bool atEnd() const { return next_ == words_.size(); }
  const std::string& peek() const { return words_[next_]; }
  std::string take() { return words_[next_++]; }

  // What has not been read yet, as a call of its own.
  WordReader remaining() const {
    return WordReader({words_.begin() + static_cast<std::ptrdiff_t>(next_), words_.end()});
  }
  size_t consumed() const { return next_; }
  size_t rest() const { return words_.size() - next_; }

  bool failed() const { return !error_.empty(); }
  const std::string& error() const { return error_; }
  void fail(std::string error) {
    if (error_.empty()) error_ = std::move(error);
  }

 private:
  std::vector<std::string> words_;
  size_t next_ = 0;
  std::string error_;
};

// Reads the positional arguments of `what`, then its key=value options in any order. What is left out takes
// the parameter's fallback; `given` tells of each whether the call had it.
Arguments readArguments(WordReader& words, std::span<const Parameter> parameters, const std::string& what,
                        std::vector<bool>& given);

// A position or length as a call writes it: frames ("44100") or a time ("1.5s", "250ms").
std::optional<FrameOrTime> readFrame(std::string_view text);

// The selection that `--select FROM TO` asks for.
struct SelectionOption {
  std::optional<FrameOrTime> from, to;

  // Reads FROM and TO.
  void read(WordReader& words, const std::string& what);
  void apply(CPlumettaDoc& doc) const;
};

// Reads the whole number behind an option of `what`, which must be accepted.
void readNumber(WordReader& words, const std::string& what, const std::string& option, bool (*accepted)(int),
                std::optional<int>& number);
inline bool isDeviceIndex(int number) { return number >= 0; }

// How a call of `what` looks: "resample RATE [type=0]".
std::string usageOf(const std::string& what, std::span<const Parameter> parameters);

}  // namespace plumetta
