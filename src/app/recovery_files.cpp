// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/recovery_files.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <limits>
#include <span>
#include <thread>

#include "formats/wav_writer.h"
#include "platform/paths.h"
#include "platform/replace_file.h"

namespace plumetta {
namespace {

constexpr const char* kPrefix = "~plumetta_changed_";
constexpr const char* kSuffix = ".wav";
constexpr const char* kInfoSuffix = ".info";
constexpr const char* kLockSuffix = ".lock";
constexpr int kMostNames = 10000;
constexpr uint64_t kMostInfoBytes = 16384;
constexpr uint64_t kMostWavBytes = 0xF0000000;  // above it the sizes of the file need 64 bits
// A copy that is begun then is written before the minute is over.
constexpr std::chrono::seconds kCopyAge{30};

std::string valueOf(const std::string& text, const std::string& key) {
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    if (text.compare(start, key.size() + 1, key + "=") == 0) {
      return text.substr(start + key.size() + 1, end - start - key.size() - 1);
    }
    start = end + 1;
  }
  return {};
}

int numberOf(const std::string& text, int fallback) {
  int value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc{} ? value : fallback;
}

// Line ends in names would end the value.
std::string oneLine(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  return text;
}

bool writeInfo(FileSystem& files, const std::string& path, const RecoveryInfo& info) {
  const std::string text = "title=" + oneLine(info.title) + "\nfile=" + oneLine(info.fileName) +
                           "\nbits=" + std::to_string(info.bits) + "\ntag=" + std::to_string(info.formatTag) +
                           "\nkept=" + (info.kept ? "1\n" : "0\n");
  return !replaceFile(files, path + kInfoSuffix, SyncToDisk::yes,
                      std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::optional<RecoveryInfo> readInfo(FileSystem& files, const std::string& path) {
  std::error_code error;
  const std::string text = readWholeFile(files, path + kInfoSuffix, kMostInfoBytes, error);
  if (error) return std::nullopt;
  RecoveryInfo info;
  info.title = valueOf(text, "title");
  info.fileName = valueOf(text, "file");
  info.kept = valueOf(text, "kept") == "1";
  const int bits = numberOf(valueOf(text, "bits"), info.bits);
  if (bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64) info.bits = bits;
  const int tag = numberOf(valueOf(text, "tag"), info.formatTag);
  if (tag > 0 && tag <= std::numeric_limits<uint16_t>::max()) info.formatTag = tag;
  return info;
}

RecoveryInfo infoOf(const CPlumettaDoc& document) {
  const CWave& wave = document.wave();
  return {document.title(), wave.fileName(), wave.bitsPerSample(), wave.formatTag(), false};
}

}  // namespace

// ---- What is written elsewhere --------------------------------------------------------------------------

struct RecoveryFiles::Entry {
  const CPlumettaDoc* document;  // compared alone, while no document is at hand
  std::string path;
  std::optional<LockFile> lock;
  bool written = false;
  bool failed = false;  // at `revision`
  uint64_t revision = 0;
  std::chrono::steady_clock::time_point copied{};

  bool covers(const CPlumettaDoc& changed) const {
    return (written || failed) && revision == changed.journal().revision();
  }
};

// One document on its way to the disk.
struct RecoveryFiles::Job {
  Entry* entry;
  CWave copy;
  RecoveryInfo info;
  std::atomic<bool> cancelled{false}, done{false};
  bool saved = false;
  std::thread thread;

  static bool goOn(float, void* self) { return !static_cast<Job*>(self)->cancelled; }

  void run(FileSystem& files) {
    copy.progress = {&Job::goOn, this};
    const bool isLong = copy.sampleCount() > kMostWavBytes / sizeof(float);
    const auto save = isLong ? saveRf64 : saveWav;
    saved = save(files, entry->path, copy, SyncToDisk::yes).saved && writeInfo(files, entry->path, info);
    done = true;
  }
};

RecoveryFiles::RecoveryFiles(FileSystem& files, std::string folder)
    : files_(files), folder_(std::move(folder)) {}

RecoveryFiles::~RecoveryFiles() {
  if (!job_) return;
  job_->cancelled = true;
  job_->thread.join();
}

// ---- Copies that follow their documents -----------------------------------------------------------------

void RecoveryFiles::dropSaved(const Documents& documents) {
  if (job_ && !job_->done) return;
  collect();
  for (const auto& document : documents) {
    if (Entry* entry = entryOf(*document); entry != nullptr && !document->modified()) remove(*entry);
  }
}

void RecoveryFiles::follow(const Documents& documents) {
  dropSaved(documents);
  if (!job_) beginStale(documents, kCopyAge);
}

void RecoveryFiles::bringUpToDate(const Documents& documents) {
  collect();
  dropSaved(documents);
  while (beginStale(documents, std::chrono::seconds(0))) collect();
}

// Waits for what is being written.
void RecoveryFiles::collect() {
  if (!job_) return;
  job_->thread.join();
  const std::unique_ptr<Job> job = std::move(job_);
  Entry& entry = *job->entry;
  entry.written = entry.written || job->saved;
  if (!job->saved && !job->cancelled && !std::exchange(entry.failed, true)) failure_ = job->info.title;
}

// True when there was one to begin with.
bool RecoveryFiles::beginStale(const Documents& documents, std::chrono::seconds youngest) {
  const auto now = std::chrono::steady_clock::now();
  for (const auto& document : documents) {
    if (!document->modified()) continue;
    Entry* entry = entryOf(*document);
    if (entry != nullptr && (entry->covers(*document) || (entry->written && now - entry->copied < youngest)))
      continue;
    if (entry == nullptr) entry = makeEntry(*document);
    if (entry == nullptr) {
      failure_ = document->title();
      return false;  // the folder can't be written
    }
    begin(*document, *entry);
    return true;
  }
  return false;
}

void RecoveryFiles::begin(const CPlumettaDoc& document, Entry& entry) {
  entry.revision = document.journal().revision();
  entry.copied = std::chrono::steady_clock::now();
  entry.failed = false;
  job_ = std::make_unique<Job>();
  job_->entry = &entry;
  job_->info = infoOf(document);
  // Only this thread changes samples, and playing reads them as this does: no lock is needed.
  const bool copied = job_->copy.copyFrom(document.wave());
  job_->copy.extraChunks = document.wave().extraChunks;
  job_->copy.setFormatTag(kFormatFloat);
  job_->copy.setBitsPerSample(32);
  try {
    job_->thread = std::thread([this, job = job_.get(), copied] {
      if (copied) job->run(files_);
      job->done = true;
    });
  } catch (const std::system_error&) {
    entry.failed = true;
    failure_ = job_->info.title;
    job_.reset();
  }
}

RecoveryFiles::Entry* RecoveryFiles::entryOf(const CPlumettaDoc& document) {
  const auto found =
      std::ranges::find(entries_, &document, [](const auto& entry) { return entry->document; });
  return found != entries_.end() ? found->get() : nullptr;
}

RecoveryFiles::Entry* RecoveryFiles::makeEntry(const CPlumettaDoc& document) {
  if (files_.makeFolders(folder_)) return nullptr;
  for (int number = 0; number < kMostNames; ++number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%4.4d", number);
    const std::string path = joinPath(folder_, std::string(kPrefix) + digits + kSuffix);
    if (files_.kind(path) != FileKind::missing) continue;
    auto lock = LockFile::create(path + kLockSuffix);
    if (!lock) continue;
    Entry& entry = *entries_.emplace_back(std::make_unique<Entry>());
    entry.document = &document;
    entry.path = path;
    entry.lock.emplace(std::move(*lock));
    return &entry;
  }
  return nullptr;
}

// The information goes first: what is left without one is nobody's copy.
void RecoveryFiles::remove(Entry& entry) {
  files_.remove(entry.path + kInfoSuffix);
  files_.remove(entry.path);
  std::erase_if(entries_, [&](const auto& own) { return own.get() == &entry; });
}

void RecoveryFiles::forget(const CPlumettaDoc& document) {
  Entry* const entry = entryOf(document);
  if (entry == nullptr) return;
  if (job_ && job_->entry == entry) {
    job_->cancelled = true;
    collect();
  }
  remove(*entry);
}

// ---- After a crash --------------------------------------------------------------------------------------

std::vector<LeftCopy> RecoveryFiles::leftCopies() {
  std::vector<std::string> names = files_.list(folder_);
  std::ranges::sort(names);
  std::vector<LeftCopy> copies;
  for (const std::string& name : names) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) continue;
    const std::string path = joinPath(folder_, name);
    const auto info = readInfo(files_, path);
    if (!info || info->kept) continue;
    if (auto lock = LockFile::create(path + kLockSuffix)) {
      LeftCopy& copy = copies.emplace_back(LeftCopy{path, *info, std::nullopt});
      copy.lock.emplace(std::move(*lock));
    }
  }
  return copies;
}

void RecoveryFiles::keep(LeftCopy& copy) {
  copy.info.kept = true;
  writeInfo(files_, copy.path, copy.info);
}

void RecoveryFiles::adopt(LeftCopy copy, const CPlumettaDoc& document) {
  Entry& entry = *entries_.emplace_back(std::make_unique<Entry>());
  entry.document = &document;
  entry.path = std::move(copy.path);
  entry.lock.emplace(std::move(*copy.lock));
  entry.written = true;
  entry.revision = document.journal().revision();
  entry.copied = std::chrono::steady_clock::now();
}

}  // namespace plumetta
