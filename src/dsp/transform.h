// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// The discrete Fourier transform of `count` complex values, a power of two, in place: real and imaginary
// parts as interleaved doubles. `direction` (+1 or -1) is the sign of every sine, so of the exponent. No
// scaling either way: there and back multiplies by `count`. LaneTransform is the one for long work.
void transform(double* values, int count, int direction);

}  // namespace plumetta
