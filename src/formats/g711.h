// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// ITU-T G.711 companding between 8-bit codes and 16-bit linear values (µ-law: 14 significant bits, bias 132;
// A-law: 13 significant bits).
int16_t expandMuLaw(uint8_t code);
int16_t expandALaw(uint8_t code);
uint8_t compressMuLaw(int16_t linear);
uint8_t compressALaw(int16_t linear);

}  // namespace plumetta
