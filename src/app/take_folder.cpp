// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/take_folder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <ctime>

#include "audio/wave_in.h"
#include "core/wave.h"
#include "formats/atomic_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr const char* kPrefix = "~plumetta_";
constexpr const char* kSuffix = ".rec";
constexpr const char* kInfoSuffix = ".info";
constexpr const char* kLockSuffix = ".lock";
// Names repeat within a second; the next seconds serve then.
constexpr int kMostTries = 60;
constexpr size_t kMostInfoBytes = 1024;

std::string nameOfTime(std::time_t time) {
  const std::tm* local = std::localtime(&time);
  char name[64];
  std::snprintf(name, sizeof name, "%s%4.4d%2.2d%2.2d%2.2d%2.2d%2.2d%s", kPrefix, local->tm_year + 1900,
                local->tm_mon + 1, local->tm_mday, local->tm_hour, local->tm_min, local->tm_sec, kSuffix);
  return name;
}

struct InfoField {
  std::string_view key;
  int TakeInfo::*value;
  bool (*accepted)(int value);
};
constexpr std::array<InfoField, 3> kFields{{
    {"rate", &TakeInfo::sampleRate, isWaveInRate},
    {"channels", &TakeInfo::channels, [](int value) { return value >= 1 && value <= kMaxChannels; }},
    {"bits", &TakeInfo::bitDepth, isWaveInBitDepth},
}};
constexpr std::string_view kKept = "kept";

void takeLine(std::string_view line, TakeInfo& info) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const std::string_view key = line.substr(0, equals);
  const std::string_view text = line.substr(equals + 1);
  int value = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc{}) return;
  if (key == kKept) info.kept = value != 0;
  for (const InfoField& field : kFields) {
    if (key == field.key && field.accepted(value)) info.*field.value = value;
  }
}

std::string textOf(const TakeInfo& info) {
  std::string text;
  for (const InfoField& field : kFields) {
    text += std::string(field.key) + "=" + std::to_string(info.*field.value) + "\n";
  }
  return text + std::string(kKept) + (info.kept ? "=1\n" : "=0\n");
}

}  // namespace

bool TakeFolder::writeInfo(const std::string& path, const TakeInfo& info) {
  const std::string text = textOf(info);
  return !writeAtomically(files_, path + kInfoSuffix, SyncToDisk::no, [&](OutputStream& out) {
    out.write(text.data(), text.size());
    return true;
  });
}

std::unique_ptr<File> TakeFolder::create(const TakeInfo& info, HeldTake& take) {
  if (files_.makeFolders(folder_)) return nullptr;
  const std::time_t now = std::time(nullptr);
  for (int second = 0; second < kMostTries; ++second) {
    const std::string path = joinPath(folder_, nameOfTime(now + second));
    if (files_.kind(path) != FileKind::missing) continue;
    auto lock = LockFile::create(path + kLockSuffix);
    if (!lock) continue;  // another editor is about to take the name
    // The information first: a take without one is no recording that can be recovered.
    std::error_code error;
    auto file = writeInfo(path, info) ? files_.createNew(path, error) : nullptr;
    if (file == nullptr) {
      files_.remove(path + kInfoSuffix);
      return nullptr;
    }
    take.path = path;
    take.info = info;
    take.lock.emplace(std::move(*lock));
    return file;
  }
  return nullptr;
}

std::optional<TakeInfo> TakeFolder::readInfo(const std::string& path, const TakeInfo& fallback) {
  std::error_code error;
  const auto file = files_.openForReading(path + kInfoSuffix, error);
  if (file == nullptr) return std::nullopt;
  std::string text(kMostInfoBytes, '\0');
  text.resize(file->read(text.data(), text.size(), error));
  TakeInfo info = fallback;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    takeLine(std::string_view(text).substr(start, end - start), info);
    start = end + 1;
  }
  return info;
}

std::vector<HeldTake> TakeFolder::unfinished(const TakeInfo& fallback) {
  std::vector<std::string> names = files_.list(folder_);
  std::sort(names.begin(), names.end());
  std::vector<HeldTake> takes;
  for (const std::string& name : names) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) continue;
    const std::string path = joinPath(folder_, name);
    const auto info = readInfo(path, fallback);
    if (!info || info->kept) continue;
    if (auto lock = LockFile::create(path + kLockSuffix)) {
      HeldTake& take = takes.emplace_back(HeldTake{path, *info, std::nullopt});
      take.lock.emplace(std::move(*lock));
    }
  }
  return takes;
}

bool TakeFolder::keep(HeldTake& take) {
  take.info.kept = true;
  return writeInfo(take.path, take.info);
}

void TakeFolder::remove(const HeldTake& take) {
  files_.remove(take.path);
  files_.remove(take.path + kInfoSuffix);
}

}  // namespace plumetta
