// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/sndfile_annotations.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

namespace plumetta {
namespace {

constexpr uint64_t kMostChunkBytes = uint64_t{1} << 24;
constexpr uint32_t kForwardLoop = 1;  // an AIFF play mode; 0 is no loop
constexpr uint32_t kAlternatingLoop = 2;

// Big-endian fields of a chunk. Behind the end every field is 0 and `sound` false.
class ChunkReader {
 public:
  explicit ChunkReader(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

  bool sound() const { return position_ <= bytes_.size(); }
  void skip(size_t count) { position_ += count; }
  uint64_t number(size_t count) {
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i) value = value << 8 | at(position_ + i);
    position_ += count;
    return value;
  }
  std::string text(size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) text += static_cast<char>(at(position_ + i));
    position_ += count;
    return text;
  }

 private:
  uint8_t at(size_t i) const { return i < bytes_.size() ? bytes_[i] : uint8_t{0}; }

  std::vector<uint8_t> bytes_;
  size_t position_ = 0;
};

class ChunkWriter {
 public:
  void number(uint64_t value, size_t count) {
    for (size_t i = count; i-- > 0;) bytes_.push_back(static_cast<uint8_t>(value >> (8 * i)));
  }
  void text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  void padTo(size_t multiple) {
    while (bytes_.size() % multiple != 0) bytes_.push_back(0);
  }
  // The library takes multiples of four bytes alone.
  void addTo(SNDFILE& sound, const char* id) {
    padTo(4);
    SF_CHUNK_INFO info{};
    std::strncpy(info.id, id, sizeof info.id - 1);
    info.id_size = 4;
    info.datalen = static_cast<unsigned>(bytes_.size());
    info.data = bytes_.data();
    sf_set_chunk(&sound, &info);
  }

 private:
  std::vector<uint8_t> bytes_;
};

// The first chunk of this name; empty when there is none.
std::vector<uint8_t> chunkNamed(SNDFILE& sound, const char* id, uint64_t fileBytes) {
  SF_CHUNK_INFO info{};
  std::strncpy(info.id, id, sizeof info.id - 1);
  info.id_size = 4;
  SF_CHUNK_ITERATOR* place = sf_get_chunk_iterator(&sound, &info);
  if (place == nullptr || sf_get_chunk_size(place, &info) != SF_ERR_NO_ERROR) return {};
  std::vector<uint8_t> bytes(std::min({uint64_t{info.datalen}, fileBytes, kMostChunkBytes}));
  info.datalen = static_cast<unsigned>(bytes.size());
  info.data = bytes.data();
  if (bytes.empty() || sf_get_chunk_data(place, &info) != SF_ERR_NO_ERROR) return {};
  return bytes;
}

// Markers of old files are in an encoding of their time: what is not plain text becomes a question mark.
std::optional<std::string> plainLabel(std::string text) {
  if (text.empty()) return std::nullopt;
  for (char& c : text) c = c >= ' ' && c <= '~' ? c : '?';
  return text;
}

int32_t frameOf(uint64_t position) { return static_cast<int32_t>(std::min<uint64_t>(position, kMaxFrames)); }

using MarkerIds = std::vector<uint32_t>;

std::vector<Marker> aiffMarkers(SNDFILE& sound, uint64_t fileBytes) {
  std::vector<Marker> markers;
  ChunkReader chunk(chunkNamed(sound, "MARK", fileBytes));
  const uint64_t count = chunk.number(2);
  for (uint64_t i = 0; i < count; ++i) {
    Marker marker;
    marker.id = static_cast<uint32_t>(chunk.number(2));
    marker.position = frameOf(chunk.number(4));
    const size_t length = chunk.number(1);
    marker.label = plainLabel(chunk.text(length));
    chunk.skip(length % 2 == 0 ? 1 : 0);  // count and text together have an even length
    if (!chunk.sound()) break;
    markers.push_back(std::move(marker));
  }
  return markers;
}

const Marker* withId(const std::vector<Marker>& markers, uint32_t id) {
  const auto found =
      std::find_if(markers.begin(), markers.end(), [&](const Marker& m) { return m.id == id; });
  return found == markers.end() ? nullptr : &*found;
}

// A loop between two markers; the one at its end stands behind the last frame.
void addAiffLoop(ChunkReader& chunk, const std::vector<Marker>& markers, CWave& wave, MarkerIds& used) {
  const uint64_t mode = chunk.number(2);
  const auto beginId = static_cast<uint32_t>(chunk.number(2));
  const auto endId = static_cast<uint32_t>(chunk.number(2));
  const Marker* begin = withId(markers, beginId);
  const Marker* end = withId(markers, endId);
  if (!chunk.sound() || mode == 0 || begin == nullptr || end == nullptr) return;
  if (end->position <= begin->position) return;
  LoopRecord loop;
  loop.type = mode == kAlternatingLoop ? 1 : 0;
  loop.start = begin->position;
  loop.end = end->position - 1;
  wave.loops.add(loop);
  used.insert(used.end(), {beginId, endId});
}

void writeAiffMarker(ChunkWriter& chunk, uint32_t id, int64_t position, std::string_view label) {
  label = label.substr(0, kLongestAiffLabel);
  chunk.number(id, 2);
  chunk.number(static_cast<uint64_t>(position), 4);
  chunk.number(label.size(), 1);
  chunk.text(label);
  chunk.padTo(2);
}

int writtenLoops(const CWave& wave) { return std::min(wave.loops.count(), 2); }
int writtenMarkers(const CWave& wave) { return std::min(wave.markers.count(), kMostChunkMarkers); }

void writeInstrument(SNDFILE& sound, const CWave& wave) {
  ChunkWriter chunk;
  constexpr uint64_t kLowestNote = 0, kHighestNote = 127, kLowestVelocity = 1, kHighestVelocity = 127;
  chunk.number(std::min<uint64_t>(wave.loops.header.midiUnityNote, kHighestNote), 1);
  chunk.number(0, 1);  // detune
  for (const uint64_t bound : {kLowestNote, kHighestNote, kLowestVelocity, kHighestVelocity}) {
    chunk.number(bound, 1);
  }
  chunk.number(0, 2);  // gain, dB
  for (int i = 0; i < 2; ++i) {
    const bool there = i < writtenLoops(wave);
    const uint32_t mode = wave.loops.loop(i).type == 1 ? kAlternatingLoop : kForwardLoop;
    chunk.number(there ? mode : 0, 2);
    chunk.number(there ? static_cast<uint64_t>(2 * i + 1) : 0, 2);
    chunk.number(there ? static_cast<uint64_t>(2 * i + 2) : 0, 2);
  }
  chunk.addTo(sound, "INST");
}

}  // namespace

void readAiffAnnotations(SNDFILE& sound, uint64_t fileBytes, CWave& wave) {
  const std::vector<Marker> markers = aiffMarkers(sound, fileBytes);
  MarkerIds used;
  std::vector<uint8_t> instrument = chunkNamed(sound, "INST", fileBytes);
  if (!instrument.empty()) {
    ChunkReader chunk(std::move(instrument));
    wave.loops.header.midiUnityNote = static_cast<uint32_t>(chunk.number(1));
    chunk.skip(7);
    for (int i = 0; i < 2; ++i) addAiffLoop(chunk, markers, wave, used);
  }
  for (const Marker& marker : markers) {
    if (std::find(used.begin(), used.end(), marker.id) == used.end()) wave.markers.append(marker);
  }
}

void writeAiffAnnotations(SNDFILE& sound, const CWave& wave) {
  const int loops = writtenLoops(wave);
  const int markers = writtenMarkers(wave);
  if (loops + markers == 0) return;
  ChunkWriter chunk;
  chunk.number(static_cast<uint64_t>(2 * loops + markers), 2);
  // Those of the loops come first, as some readers expect.
  uint32_t id = 0;
  for (int i = 0; i < loops; ++i) {
    writeAiffMarker(chunk, ++id, wave.loops.start(i), {});
    writeAiffMarker(chunk, ++id, int64_t{wave.loops.end(i)} + 1, {});
  }
  for (int i = 0; i < markers; ++i) {
    const Marker& marker = wave.markers[i];
    writeAiffMarker(chunk, ++id, marker.position, marker.label ? *marker.label : std::string_view());
  }
  chunk.addTo(sound, "MARK");
  if (loops > 0) writeInstrument(sound, wave);
}

// A marker of 28 bytes: type, position as a 64-bit float, id, time code (8 bytes, all ones for none),
// channel.

void readCafMarkers(SNDFILE& sound, uint64_t fileBytes, CWave& wave) {
  ChunkReader chunk(chunkNamed(sound, "mark", fileBytes));
  chunk.skip(4);  // the kind of time code
  const uint64_t count = chunk.number(4);
  for (uint64_t i = 0; i < count; ++i) {
    Marker marker;
    chunk.skip(4);
    const double position = std::bit_cast<double>(chunk.number(8));
    marker.id = static_cast<uint32_t>(chunk.number(4));
    chunk.skip(12);
    if (!chunk.sound()) return;
    if (!(position >= 0)) continue;
    marker.position = static_cast<int32_t>(std::min<double>(position, kMaxFrames));
    wave.markers.append(std::move(marker));
  }
}

void writeCafMarkers(SNDFILE& sound, const CWave& wave) {
  const int count = writtenMarkers(wave);
  if (count == 0) return;
  ChunkWriter chunk;
  chunk.number(0, 4);
  chunk.number(static_cast<uint64_t>(count), 4);
  for (int i = 0; i < count; ++i) {
    chunk.number(0, 4);
    chunk.number(std::bit_cast<uint64_t>(static_cast<double>(wave.markers[i].position)), 8);
    chunk.number(static_cast<uint64_t>(i) + 1, 4);
    chunk.number(~uint64_t{0}, 8);
    chunk.number(0, 4);
  }
  chunk.addTo(sound, "mark");
}

}  // namespace plumetta
