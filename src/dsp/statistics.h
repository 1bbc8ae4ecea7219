// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// Levels of one channel, full scale 1.
struct ChannelLevels {
  float rms = 0.0f;
  float mean = 0.0f;
  float minimum = 100.0f;
  float maximum = -100.0f;
};

// Of every channel, active or not, over the frames from the lower bound up to but not including the upper
// one; over the whole file when the bounds are equal.
std::vector<ChannelLevels> analyzeLevels(const CWave& wave, int32_t from, int32_t to);

// The statistics report; every line ends with "\r\n". Bounds as above.
std::string statisticsReport(const CWave& wave, int32_t from, int32_t to, bool includeLevels);

// What stands above the report in a saved file; lines end with "\n".
extern const char* const kStatisticsFileHead;

}  // namespace plumetta
