// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/undo_step.h"

#include <algorithm>
#include <cstring>

#include "core/work_crew.h"

namespace plumetta {
namespace {

// Most of the time of a large copy goes into memory that the system clears before it hands it out; several
// cores make it come sooner.
void copyBytes(void* target, const void* source, size_t bytes) {
  constexpr size_t kPart = size_t{4} << 20;
  if (bytes < 4 * kPart) {
    std::memcpy(target, source, bytes);
    return;
  }
  const auto parts = static_cast<int>((bytes + kPart - 1) / kPart);
  WorkCrew().run(parts, [&](int part, int) {
    const size_t from = static_cast<size_t>(part) * kPart;
    std::memcpy(static_cast<char*>(target) + from, static_cast<const char*>(source) + from,
                std::min(kPart, bytes - from));
  });
}

}  // namespace

UndoStep::UndoStep(UndoKind kind, const CWave& wave, const ViewState& view, FileSystem& files)
    : kind_(kind),
      view_(view),
      loops_(wave.loops),
      markers_(wave.markers),
      frames_(wave.frames()),
      channels_(wave.channels()),
      sampleRate_(wave.sampleRate()),
      bits_(wave.bitsPerSample()),
      formatTag_(wave.formatTag()),
      files_(files) {
  envelope_.copyFrom(wave.envelope);
}

UndoStep::~UndoStep() {
  if (samples_ == Samples::file) files_.remove(path_);
}

size_t UndoStep::bytes() const {
  return static_cast<size_t>(frames_) * static_cast<size_t>(channels_) * sizeof(float);
}

void UndoStep::keepInMemory(const CWave& wave) {
  if (!block_.resize(bytes())) return;
  if (bytes() > 0) copyBytes(block_.data(), wave.samples(), bytes());
  samples_ = Samples::memory;
}

void UndoStep::keepInFile(const CWave& wave, const std::string& path) {
  std::error_code error;
  auto file = files_.createNew(path, error);
  if (!file) return;
  error = file->write(wave.samples(), bytes());
  const std::error_code closeError = file->close();
  if (error || closeError) {
    files_.remove(path);
    return;
  }
  path_ = path;
  samples_ = Samples::file;
}

void UndoStep::adopt(BlockMemory block) {
  block_ = std::move(block);
  samples_ = Samples::memory;
}

bool UndoStep::load(BlockMemory& block) const {
  if (samples_ != Samples::file || !block.resize(bytes())) return false;
  std::error_code error;
  auto file = files_.openForReading(path_, error);
  if (!file || file->size() != bytes()) return false;
  return file->read(block.data(), bytes(), error) == bytes();
}

BlockMemory UndoStep::takeMemory() {
  samples_ = Samples::none;
  return std::move(block_);
}

void UndoStep::restoreAnnotations(CWave& wave) const {
  wave.setSampleRate(sampleRate_);
  wave.setFormatTag(formatTag_);
  wave.setBitsPerSample(bits_);
  wave.markers = markers_;
  wave.envelope.copyFrom(envelope_);
  wave.loops = loops_;
}

}  // namespace plumetta
