// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/private_profile.h"

#include <optional>
#include <vector>

#include "platform/file_system.h"
#include "platform/lock_file.h"

namespace plumetta {
namespace {

constexpr uint64_t kLargestProfile = uint64_t{16} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
  const char* blanks = " \t\r\n";
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view unquoted(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// A profile as its lines, each with its own line end, so that what isn't touched stays byte for byte.
class Profile {
 public:
  explicit Profile(const std::string& path) : path_(path) {
    std::error_code error;
    const auto file = nativeFileSystem().openForReading(path, error);
    if (error == std::errc::no_such_file_or_directory) return;
    complete_ = file && file->size() <= kLargestProfile;
    if (!complete_) return;
    std::string text(static_cast<size_t>(file->size()), '\0');
    text.resize(file->read(text.data(), text.size(), error));
    complete_ = !error;
    if (text.starts_with(kByteOrderMark)) {
      hasMark_ = true;
      text.erase(0, kByteOrderMark.size());
    }
    for (size_t start = 0; start < text.size();) {
      const size_t end = text.find('\n', start);
      const size_t next = end == std::string::npos ? text.size() : end + 1;
      lines_.push_back(text.substr(start, next - start));
      start = next;
    }
  }

  std::optional<std::string> value(std::string_view section, std::string_view key) const {
    const auto line = findKey(section, key);
    if (!line) return std::nullopt;
    const std::string_view text = trimmed(lines_[*line]);
    return std::string(unquoted(trimmed(text.substr(text.find('=') + 1))));
  }

  void setValue(const std::string& section, const std::string& key, const std::string& value) {
    const std::string lineEnd = lines_.empty() || lines_[0].ends_with("\r\n") ? "\r\n" : "\n";
    const std::string line = key + "=" + value + lineEnd;
    if (const auto found = findKey(section, key)) {
      lines_[*found] = line;
      return;
    }
    if (!lines_.empty() && !lines_.back().ends_with('\n')) lines_.back() += lineEnd;
    const auto head = findSection(section);
    if (!head) {
      lines_.push_back("[" + section + "]" + lineEnd);
      lines_.push_back(line);
      return;
    }
    size_t place = sectionEnd(*head);
    while (place > *head + 1 && trimmed(lines_[place - 1]).empty()) --place;
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(place), line);
  }

  // Beside the file first and then in its place, so that a crash leaves the old one or the new one.
  bool save() const {
    // What couldn't be read whole would be lost by writing it.
    if (!complete_) return false;
    FileSystem& files = nativeFileSystem();
    const std::string target = files.resolveLinks(path_);
    const std::string passing = target + "." + std::to_string(processId());
    std::string text(hasMark_ ? kByteOrderMark : std::string_view());
    for (const std::string& line : lines_) text += line;
    std::error_code error;
    files.remove(passing);  // a killed process of the same number may have left one
    auto file = files.createNew(passing, error);
    if (!file) return false;
    error = file->write(text.data(), text.size());
    const auto closeError = file->close();
    if (!error && !closeError && !files.adoptAccess(passing, target) &&
        !files.replace(passing, target, false)) {
      return true;
    }
    files.remove(passing);
    return false;
  }

 private:
  static bool isSection(std::string_view line) { return trimmed(line).starts_with('['); }

  std::optional<size_t> findSection(std::string_view section) const {
    for (size_t i = 0; i < lines_.size(); ++i) {
      const std::string_view text = trimmed(lines_[i]);
      if (!text.starts_with('[') || text.find(']') == std::string_view::npos) continue;
      if (sameProfileName(trimmed(text.substr(1, text.find(']') - 1)), section)) return i;
    }
    return std::nullopt;
  }

  size_t sectionEnd(size_t head) const {
    size_t end = head + 1;
    while (end < lines_.size() && !isSection(lines_[end])) ++end;
    return end;
  }

  std::optional<size_t> findKey(std::string_view section, std::string_view key) const {
    const auto head = findSection(section);
    if (!head) return std::nullopt;
    for (size_t i = *head + 1; i < sectionEnd(*head); ++i) {
      const std::string_view text = trimmed(lines_[i]);
      const size_t equals = text.find('=');
      if (text.starts_with(';') || equals == std::string_view::npos) continue;
      if (sameProfileName(trimmed(text.substr(0, equals)), key)) return i;
    }
    return std::nullopt;
  }

  std::string path_;
  std::vector<std::string> lines_;
  bool hasMark_ = false;
  bool complete_ = true;  // false when there is a file that couldn't be read to its end
};

}  // namespace

std::string readProfileString(const std::string& path, const std::string& section, const std::string& key,
                              const std::string& fallback) {
  return Profile(path).value(section, key).value_or(fallback);
}

bool writeProfileString(const std::string& path, const std::string& section, const std::string& key,
                        const std::string& value) {
  Profile profile(path);
  profile.setValue(section, key, value);
  return profile.save();
}

}  // namespace plumetta
