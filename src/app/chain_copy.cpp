// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/chain_copy.h"

#include <algorithm>
#include <cstdio>

#include "platform/paths.h"
#include "platform/replace_file.h"

namespace plumetta {
namespace {

constexpr const char* kPrefix = "~plumetta_chain_";
constexpr const char* kSuffix = ".sor";
constexpr const char* kLockSuffix = ".lock";
constexpr const char* kKeptName = "plumetta_left.sor";
constexpr int kMostNames = 1000;
// Between copies of the same plug-ins, whose states may be long in the making.
constexpr std::chrono::seconds kCopyAge{15};

bool isCopyName(const std::string& name) { return name.starts_with(kPrefix) && name.ends_with(kSuffix); }

bool readChain(FileSystem& files, const std::string& path, Chain& chain) {
  std::error_code error;
  const std::string content = readWholeFile(files, path, kLargestPluginFile, error);
  const std::span bytes(reinterpret_cast<const uint8_t*>(content.data()), content.size());
  return !error && parseChain(bytes, ChainForm::current, chain) && !chain.empty();
}

}  // namespace

// ---- The copy -------------------------------------------------------------------------------------------

void ChainCopy::follow() { follow(kCopyAge); }

void ChainCopy::bringUpToDate() { follow(std::chrono::seconds(0)); }

// One that hangs is asked for nothing any more; what was written before stays.
void ChainCopy::follow(std::chrono::seconds youngest) {
  if (rack_.isEmpty()) return forget();
  if (rack_.host().hasAbandoned()) return;
  std::vector<uint8_t> now = chainBytes(rack_, ChainStates::without);
  const auto time = std::chrono::steady_clock::now();
  if (now == written_ || (now.size() == written_.size() && time - at_ < youngest)) return;
  written_ = std::move(now);
  at_ = time;
  if (!write() && !std::exchange(told_, true)) failed_ = true;
}

// Needs no sync: it is for the end of the process, not of the machine.
bool ChainCopy::write() {
  const std::vector<uint8_t> bytes = chainBytes(rack_);
  return !bytes.empty() && findPlace() && !replaceFile(files_, path_, SyncToDisk::no, bytes);
}

bool ChainCopy::findPlace() {
  if (lock_) return true;
  if (files_.makeFolders(folder_)) return false;
  for (int number = 0; number < kMostNames; ++number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%4.4d", number);
    path_ = joinPath(folder_, std::string(kPrefix) + digits + kSuffix);
    if (files_.kind(path_) != FileKind::missing) continue;
    if (auto lock = LockFile::create(path_ + kLockSuffix)) {
      lock_.emplace(std::move(*lock));
      return true;
    }
  }
  return false;
}

void ChainCopy::forget() {
  if (lock_) files_.remove(path_);
  lock_.reset();
  written_.clear();
}

// ---- After a crash --------------------------------------------------------------------------------------

std::optional<LeftChain> ChainCopy::left() {
  std::vector<std::string> names = files_.list(folder_);
  std::ranges::sort(names);
  for (const std::string& name : names) {
    const std::string path = joinPath(folder_, name);
    if (!isCopyName(name) || path == path_) continue;
    auto lock = LockFile::create(path + kLockSuffix);
    Chain chain;
    if (lock && readChain(files_, path, chain)) return LeftChain{path, std::move(chain), std::move(*lock)};
  }
  return std::nullopt;
}

std::string ChainCopy::keptPath() const { return joinPath(folder_, kKeptName); }

}  // namespace plumetta
