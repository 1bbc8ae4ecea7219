// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/audio_driver.h"

#include <algorithm>

namespace plumetta {
namespace {

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

bool CAudioDriver::SetParams(int, int, int, int, int, int) { return false; }

bool CAudioDriver::GetChannelName(int, std::string&) { return false; }

void CAudioDriver::SetCallback(AudioCallback function, void* context) {
  callback_ = function;
  context_ = context;
  callbackSet_ = true;
  running_ = false;
}

const char* CAudioDriver::GetName(int index) const {
  return names_[index >= 0 && index < kNames ? static_cast<size_t>(index) : 0].data();
}

void CAudioDriver::setName(int index, const std::string& name) {
  size_t length = std::min<size_t>(name.size(), kNameBytes - 1);
  while (length > 0 && length < name.size() && continuesCharacter(name[length])) --length;
  auto& entry = names_[static_cast<size_t>(index)];
  entry.fill('\0');
  std::copy_n(name.begin(), length, entry.begin());
}

}  // namespace plumetta
