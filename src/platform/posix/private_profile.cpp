// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/private_profile.h"

#include <algorithm>
#include <map>

#include "platform/file_system.h"
#include "platform/lock_file.h"
#include "platform/replace_file.h"

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

// Names compare without case, of Latin letters alone.
std::string folded(std::string_view name) {
  std::string small(name);
  for (char& c : small) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return small;
}

// The whole file; nothing when there is one that can't be read to its end. A missing one is empty.
std::optional<std::string> contentOf(const std::string& path) {
  std::error_code error;
  std::string text = readWholeFile(nativeFileSystem(), path, kLargestProfile, error);
  if (error == std::errc::no_such_file_or_directory) return std::string();
  return error ? std::nullopt : std::optional(std::move(text));
}

// Where the wanted keys stand in a text, found in one walk over it whatever it holds.
class ProfileScan {
 public:
  struct Line {
    size_t begin, end;  // with its line end
  };

  ProfileScan(const std::string& text, const std::vector<ProfileName>& names) : text_(text) {
    for (const ProfileName& name : names) sections_[folded(name.section)].keys[folded(name.key)];
    size_t start = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    while (start < text.size()) {
      const size_t lineEnd = text.find('\n', start);
      const size_t next = lineEnd == std::string::npos ? text.size() : lineEnd + 1;
      look({start, next});
      start = next;
    }
  }

  std::optional<Line> lineOf(const ProfileName& name) const {
    return sections_.at(folded(name.section)).keys.at(folded(name.key));
  }
  // Behind the last line of a section that holds something; nothing when there is no such section.
  std::optional<size_t> endOf(const std::string& section) const { return sections_.at(folded(section)).end; }

 private:
  struct Section {
    std::map<std::string, std::optional<Line>> keys;
    std::optional<size_t> end;
  };

  void look(Line line) {
    const std::string_view text = trimmed(std::string_view(text_).substr(line.begin, line.end - line.begin));
    if (text.starts_with('[')) {
      enter(text, line);
    } else if (current_ != nullptr && !text.empty()) {
      current_->end = line.end;
      const size_t equals = text.find('=');
      if (text.starts_with(';') || equals == std::string_view::npos) return;
      const auto found = current_->keys.find(folded(trimmed(text.substr(0, equals))));
      if (found != current_->keys.end() && !found->second) found->second = line;
    }
  }

  // The first of two sections of one name counts.
  void enter(std::string_view head, Line line) {
    current_ = nullptr;
    const size_t close = head.find(']');
    if (close == std::string_view::npos) return;
    const auto found = sections_.find(folded(trimmed(head.substr(1, close - 1))));
    if (found == sections_.end() || found->second.end) return;
    current_ = &found->second;
    current_->end = line.end;
  }

  const std::string& text_;
  std::map<std::string, Section> sections_;
  Section* current_ = nullptr;
};

// A stretch of the text and what takes its place.
struct Edit {
  size_t begin, end;
  std::string text;
};

std::string lineEndOf(const std::string& text) {
  const size_t first = text.find('\n');
  const bool plain = first != std::string::npos && (first == 0 || text[first - 1] != '\r');
  return plain ? "\n" : "\r\n";
}

std::string withEntries(const std::string& text, const std::vector<ProfileEntry>& entries) {
  std::vector<ProfileName> names;
  for (const ProfileEntry& entry : entries) names.push_back(entry.name);
  const ProfileScan scan(text, names);
  const std::string lineEnd = lineEndOf(text);
  std::vector<Edit> edits;
  std::vector<std::pair<std::string, std::string>> newSections;  // name, lines
  for (const auto& [name, value] : entries) {
    const std::string line = name.key + "=" + value + lineEnd;
    if (const auto found = scan.lineOf(name)) {
      edits.push_back({found->begin, found->end, line});
    } else if (const auto end = scan.endOf(name.section)) {
      const bool open = *end > 0 && text[*end - 1] != '\n';
      const bool first = std::ranges::none_of(edits, [&](const Edit& e) { return e.end == *end && open; });
      edits.push_back({*end, *end, open && first ? lineEnd + line : line});
    } else {
      const auto same = [&section = name.section](const auto& own) {
        return sameProfileName(own.first, section);
      };
      auto own = std::ranges::find_if(newSections, same);
      if (own == newSections.end()) {
        own = newSections.insert(own, {name.section, "[" + name.section + "]" + lineEnd});
      }
      own->second += line;
    }
  }
  // Replaced lines before what is added behind them.
  std::ranges::stable_sort(edits, {}, [](const Edit& e) { return std::pair(e.begin, e.end); });
  std::string result;
  size_t at = 0;
  for (const Edit& edit : edits) {
    result.append(text, at, edit.begin - at).append(edit.text);
    at = edit.end;
  }
  result.append(text, at);
  if (!newSections.empty() && !result.empty() && !result.ends_with('\n') && result != kByteOrderMark) {
    result += lineEnd;
  }
  for (const auto& [name, lines] : newSections) result += lines;
  return result;
}

// Beside the file first and then in its place.
bool replaceContent(const std::string& path, const std::string& text) {
  FileSystem& files = nativeFileSystem();
  const std::string target = files.resolveLinks(path);
  const std::string passing = target + "." + std::to_string(processId());
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

}  // namespace

std::vector<std::optional<std::string>> readProfileStrings(const std::string& path,
                                                           const std::vector<ProfileName>& names) {
  const std::string text = contentOf(path).value_or("");
  const ProfileScan scan(text, names);
  std::vector<std::optional<std::string>> values;
  for (const ProfileName& name : names) {
    std::optional<std::string>& value = values.emplace_back();
    const auto line = scan.lineOf(name);
    if (!line) continue;
    const std::string_view whole = std::string_view(text).substr(line->begin, line->end - line->begin);
    value = profileValueOf(whole.substr(whole.find('=') + 1));
  }
  return values;
}

std::vector<std::string> profileSections(const std::string& path) {
  const std::string text = contentOf(path).value_or("");
  std::vector<std::string> sections;
  size_t start = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find('\n', start), text.size());
    const std::string_view line = trimmed(std::string_view(text).substr(start, end - start));
    const size_t close = line.find(']');
    if (line.starts_with('[') && close != std::string_view::npos) {
      sections.emplace_back(trimmed(line.substr(1, close - 1)));
    }
    start = end + 1;
  }
  return sections;
}

bool writeProfileStrings(const std::string& path, const std::vector<ProfileEntry>& entries) {
  const auto text = contentOf(path);
  if (!text) return false;  // what couldn't be read whole would be lost by writing it
  return replaceContent(path, withEntries(*text, entries));
}

}  // namespace plumetta
