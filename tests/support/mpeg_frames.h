// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// Silent MPEG audio frames, made by hand: a header, and zeroes up to the length that follows from it.
inline std::string mpegFrame(const std::string& header, size_t bytes) {
  return header + std::string(bytes - header.size(), '\0');
}

inline std::string repeated(const std::string& frame, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += frame;
  return all;
}

// MPEG-1 Layer III, 128 kbit/s at 44100 Hz, 1152 frames of audio each.
inline std::string stereoFrames(int count) {
  return repeated(mpegFrame({"\xFF\xFB\x90\x00", 4}, 417), count);
}
inline std::string monoFrames(int count) { return repeated(mpegFrame("\xFF\xFB\x90\xC0", 417), count); }
// MPEG-2 Layer III, 64 kbit/s at 22050 Hz, 576 each.
inline std::string lowMonoFrames(int count) { return repeated(mpegFrame("\xFF\xF3\x80\xC0", 208), count); }
// Layers II (192 kbit/s) and I (128 kbit/s) at 44100 Hz, 1152 and 384 each.
inline std::string layer2Frames(int count) {
  return repeated(mpegFrame({"\xFF\xFD\xA0\x00", 4}, 626), count);
}
inline std::string layer1Frames(int count) {
  return repeated(mpegFrame({"\xFF\xFF\x40\x00", 4}, 136), count);
}

// An ID3 tag whose size field is these four bytes, 7 bits each.
inline std::string id3Tag(const std::string& sizeField, const std::string& body) {
  return std::string("ID3\x04\0\0", 6) + sizeField + body;
}

}  // namespace plumetta
