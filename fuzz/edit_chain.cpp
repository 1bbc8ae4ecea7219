// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a chain of commands on a small document. Whatever happens, annotations stay inside the file,
// and undoing everything gives the first samples back bit for bit.
#include <cstring>

#include "input_file.h"
#include "support/loose_document.h"

using namespace plumetta;

namespace {

class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return at_ == size_; }
  uint8_t next() { return empty() ? uint8_t{0} : data_[at_++]; }
  int64_t number() { return static_cast<int8_t>(next()); }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
};

ParameterValue valueOf(const Parameter& parameter, Bytes& bytes) {
  switch (parameter.type) {
    case ParameterType::boolean:
      return bytes.next() % 2 == 1;
    case ParameterType::integer:
      return bytes.number();
    case ParameterType::real:
      return static_cast<double>(bytes.number()) / 64;
    case ParameterType::text:
      return std::string(bytes.next() % 4, 'x');
    case ParameterType::frame:
      return FrameOrTime{static_cast<double>(bytes.number()), false};
  }
  return false;
}

void checkInvariants(const CWave& wave) {
  const int32_t last = std::max(wave.frames() - 1, 0);
  for (const Marker& marker : wave.markers) require(marker.position >= 0 && marker.position <= last);
  for (int i = 0; i < wave.loops.count(); ++i) {
    require(wave.loops.start(i) >= 0 && wave.loops.end(i) <= last);
  }
  if (!wave.envelope.active()) return;
  require(wave.envelope.channelCount() == wave.channels());
  for (int c = 0; c < wave.envelope.channelCount(); ++c) {
    const int points = wave.envelope.pointCount(c);
    require(points >= 2 && wave.envelope.point(points - 1, c).position == wave.frames() - 1);
    for (int i = 1; i < points && wave.frames() > 1; ++i) {
      require(wave.envelope.point(i - 1, c).position < wave.envelope.point(i, c).position);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr int32_t kFrames = 100;
  Bytes bytes(data, size);
  const int channels = 1 + bytes.next() % 3;
  LooseDocument loose(channels, kFrames);
  CPlumettaDoc& doc = loose.doc;
  const auto first = countingWave(channels, kFrames);
  constexpr int32_t kMost = 5000;  // every step keeps a copy of all samples and markers
  while (!bytes.empty() && doc.wave().frames() < kMost && doc.wave().markers.count() < kMost) {
    doc.select(bytes.number(), bytes.number());
    doc.setCursor(bytes.number());
    loose.settings.pasteReplace = bytes.next() % 2 == 1;
    const auto& table = commandTable();
    const Command& command = table[bytes.next() % table.size()];
    Arguments arguments;
    for (const Parameter& parameter : command.parameters) arguments.push_back(valueOf(parameter, bytes));
    runCommand(doc, command, std::move(arguments));
    checkInvariants(doc.wave());
  }
  while (doc.journal().undo() == UndoResult::done) checkInvariants(doc.wave());
  require(doc.wave().sampleCount() == first->sampleCount());
  require(std::memcmp(doc.wave().samples(), first->samples(), first->sampleCount() * sizeof(float)) == 0);
  return 0;
}
