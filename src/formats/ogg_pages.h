// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "formats/input_stream.h"
#include "formats/segmented_file.h"

namespace plumetta {

// Where the FLAC stream lies inside of an Ogg file: what its pages carry, without the mapping's own header of
// the first packet. Ends at the first damaged page; pages of other streams are passed over.
std::vector<SegmentedFile::Segment> flacSegmentsOfOgg(InputStream& in);

}  // namespace plumetta
