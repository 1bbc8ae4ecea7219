// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/url_reader.h"

#include <algorithm>
#include <utility>

#include "net/net_address.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr std::chrono::milliseconds kLookInterval{20};
// For a transfer that was cancelled; one that needs longer ends unseen.
constexpr std::chrono::milliseconds kFarewell{100};
constexpr size_t kLongestExtension = 8;

// What tells formats without a header apart, and nothing else of a name that a server's owner has chosen.
std::string harmlessExtension(const std::string& name) {
  const std::string extension = extensionOf(name);
  const auto isPlain = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); };
  const bool plain = extension.size() <= kLongestExtension && std::ranges::all_of(extension, isPlain);
  return plain && !extension.empty() ? "." + extension : "";
}

}  // namespace

TemporaryFile::TemporaryFile(FileSystem& files, std::string path)
    : files_(files),
      path_(std::move(path)),
      file_(files_.createNew(path_, error_)),
      made_(file_ != nullptr) {}

TemporaryFile::~TemporaryFile() {
  file_.reset();
  if (made_) files_.remove(path_);
}

bool TemporaryFile::write(const void* bytes, size_t count) {
  if (!error_) error_ = file_->write(bytes, count);
  return !error_;
}

std::error_code TemporaryFile::finish() {
  if (file_ != nullptr) {
    const auto error = file_->close();
    if (!error_) error_ = error;
    file_.reset();
  }
  return error_;
}

std::shared_ptr<TemporaryFile> UrlReader::makeFile(const std::string& name) {
  const std::string& folder = folder_.path();
  if (folder.empty()) return nullptr;
  return std::make_shared<TemporaryFile>(
      files_, joinPath(folder, "fetched" + std::to_string(++count_) + harmlessExtension(name)));
}

FetchOutcome UrlReader::tell(const FetchedFile& fetched, const std::string& reason) {
  prompter_.message("Unable to fetch " + fetched.address + "\n" + reason);
  return FetchOutcome::failed;
}

void UrlReader::forgetEnded() {
  std::erase_if(leaving_,
                [](const auto& transfer) { return transfer->finished(std::chrono::milliseconds(0)); });
}

FetchOutcome UrlReader::fetch(const std::string& address, FetchedFile& fetched) {
  forgetEnded();
  fetched.name = fileNameOfAddress(address);
  fetched.address = shownAddress(address);
  fetched.file = makeFile(fetched.name);
  if (fetched.file == nullptr) return tell(fetched, "The folder of temporary files can't be made.");
  TransferRequest request;
  request.address = address;
  request.agent = agent_;
  // Of a transfer that was cancelled the file goes at once, however long that one still needs.
  const std::weak_ptr<TemporaryFile> target = fetched.file;
  auto transfer = std::make_unique<BackgroundTransfer>(request, [target](const char* bytes, size_t count) {
    const auto file = target.lock();
    return file != nullptr && file->write(bytes, count);
  });
  const ProgressScope scope(prompter_, "Fetching " + (fetched.name.empty() ? fetched.address : fetched.name));
  while (!transfer->finished(kLookInterval)) {
    if (scope.progress().report(transfer->state().fractionDone())) continue;
    transfer->cancel();
    if (!transfer->finished(kFarewell)) leaving_.push_back(std::move(transfer));
    fetched.file.reset();
    return FetchOutcome::cancelled;
  }
  const TransferResult& result = transfer->result();
  if (result.status == TransferStatus::failed) return tell(fetched, result.reason);
  if (const auto error = fetched.file->finish()) return tell(fetched, error.message());
  return FetchOutcome::done;
}

}  // namespace plumetta
