// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace plumetta {

inline std::string little(uint64_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * i);
  return text;
}
inline std::string u16(uint64_t value) { return little(value, 2); }
inline std::string u32(uint64_t value) { return little(value, 4); }

// A chunk with its header and pad byte; `claimed` stands in its size field when it isn't negative.
inline std::string chunk(const std::string& id, const std::string& body, int64_t claimed = -1) {
  const uint64_t size = claimed < 0 ? body.size() : static_cast<uint64_t>(claimed);
  return id + u32(size) + body + (body.size() % 2 == 1 ? std::string(1, '\0') : "");
}

inline std::string formatBody(int tag, int channels, int rate, int bits) {
  const int align = bits / 8 * channels;
  return u16(static_cast<uint64_t>(tag)) + u16(static_cast<uint64_t>(channels)) +
         u32(static_cast<uint64_t>(rate)) + u32(static_cast<uint64_t>(align * rate)) +
         u16(static_cast<uint64_t>(align)) + u16(static_cast<uint64_t>(bits));
}

inline std::string extensibleBody(int subTag, int channels, int rate, int bits) {
  return formatBody(65534, channels, rate, bits) + u16(22) + u16(static_cast<uint64_t>(bits)) + u32(3) +
         u16(static_cast<uint64_t>(subTag)) +
         std::string("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14);
}

inline std::string riff(const std::string& chunks) {
  return "RIFF" + u32(chunks.size() + 4) + "WAVE" + chunks;
}

// A mono 16-bit file of these bytes.
inline std::string plainWav(const std::string& data, const std::string& behind = "") {
  return riff(chunk("fmt ", formatBody(1, 1, 8000, 16)) + chunk("data", data) + behind);
}

inline std::string cueBody(const std::vector<int>& positions) {
  std::string body = u32(positions.size());
  for (size_t i = 0; i < positions.size(); ++i) {
    const auto at = static_cast<uint32_t>(positions[i]);
    body += u32(i + 1) + u32(at) + "data" + u32(0) + u32(0) + u32(at);
  }
  return body;
}

}  // namespace plumetta
