// SPDX-License-Identifier: GPL-3.0-or-later
// Plays a signal that can be told again sample by sample: play_signal SECONDS [RATE BITS BUFFERFRAMES
// BUFFERCOUNT]. Prints lines of "WORD VALUE"; ends with 0 when all was played, 1 when the device could not be
// had, 3 when it was lost. A line on standard input stops it and plays once more, on whatever devices there
// are then.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "audio/wave_out.h"

namespace {

using namespace plumetta;

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

struct Signal {
  std::vector<float> left = std::vector<float>(32767);
  std::vector<float> right = left;
  uint32_t state = 1;

  // Noise from -1 to 1 that never stands still, so that every gap and every repetition shows.
  float next() {
    state = state * 1664525u + 1013904223u;
    return static_cast<float>(state >> 8) / 8388608.0f - 1.0f;
  }
};

bool fill(void* context, float** channels, int* frames, int*) noexcept {
  auto* signal = static_cast<Signal*>(context);
  for (int i = 0; i < *frames; ++i) {
    signal->left[static_cast<size_t>(i)] = signal->next();
    signal->right[static_cast<size_t>(i)] = signal->next();
  }
  channels[0] = signal->left.data();
  channels[1] = signal->right.data();
  return true;
}

int play(CWaveOut& driver, double seconds) {
  std::printf("started %.6f\n", secondsNow());
  if (!driver.Start()) {
    std::printf("refused %s\n", driver.errorText().c_str());
    return 1;
  }
  const double end = secondsNow() + seconds;
  while (secondsNow() < end && !driver.deviceLost()) steadyPollTimer().sleep(std::chrono::milliseconds{10});
  const bool lost = driver.deviceLost();
  if (lost) std::printf("lost %s\n", driver.errorText().c_str());
  std::printf("underruns %d\n", driver.underruns());
  std::printf("stopped %d\n", driver.Stop() ? 1 : 0);
  return lost ? 3 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto argument = [&](int index, int fallback) {
    return index < argc ? std::atoi(argv[index]) : fallback;
  };
  Signal signal;
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  CWaveOut driver;
  std::printf("devices %d\n", driver.GetDeviceCount());
  driver.SetCallback(fill, &signal);
  driver.SetParams(argument(2, 44100), argument(4, 2048), argument(5, 4), 10, 0, argument(3, 16));
  int status = play(driver, argument(1, 1));
  if (status != 0 && std::getchar() != EOF) status = play(driver, argument(1, 1));
  return status;
}
