// SPDX-License-Identifier: GPL-3.0-or-later
// The playback callback, a million times, as a share of the time that a block lasts. The thread's own time
// says what the callback costs; the clock on the wall adds what other programs on the machine took from it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

#include "audio/playback_engine.h"
#include "audio/transport.h"
#include "bench_file.h"

namespace plumetta {
namespace {

constexpr int kFrames = 256;
constexpr int kOutputRate = 48000;
constexpr double kBlockSeconds = static_cast<double>(kFrames) / kOutputRate;

class BenchTape : public PlaybackSource {
 public:
  explicit BenchTape(CWave& wave) : wave_(wave) {}
  const CWave& wave() const noexcept override { return wave_; }
  void setCursor(int64_t) override {}
  void playbackStopped() override {}

 private:
  CWave& wave_;
};

// Points of one kind, or of all kinds by turns, a tenth of a second apart.
void drawEnvelope(CWave& wave, int kind) {
  wave.envelope.clear();
  wave.envelope.setLengthField(wave.frames());
  for (int c = 0; c < wave.channels(); ++c) {
    wave.envelope.addChannel();
    for (int i = 1; i < 5000; ++i) {
      const int which = kind < kEnvelopeKinds ? kind : i % kEnvelopeKinds;
      wave.envelope.insertPoint(i * 4410, static_cast<float>(i % 9) / 8, c, static_cast<EnvelopeKind>(which));
    }
  }
}

double threadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double wallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void report(benchmark::State& state, const char* median, const char* rare, const char* worst,
            std::vector<double>& seconds) {
  if (seconds.empty()) return;
  std::sort(seconds.begin(), seconds.end());
  const auto percentOfBlock = [&](double quantile) {
    const auto place = static_cast<size_t>(quantile * static_cast<double>(seconds.size() - 1));
    return 100 * seconds[place] / kBlockSeconds;
  };
  state.counters[median] = percentOfBlock(0.5);
  state.counters[rare] = percentOfBlock(0.999);
  state.counters[worst] = percentOfBlock(1);
}

// Argument: the kind of the envelope's points, 4 for all by turns.
void playbackCallback(benchmark::State& state) {
  static const auto wave = benchWave();
  drawEnvelope(*wave, static_cast<int>(state.range(0)));
  BenchTape tape(*wave);
  AudioLock lock;
  Transport transport(lock, [] { return true; });
  transport.controls().outputRate = kOutputRate;
  transport.controls().loop = true;
  PlaybackEngine engine(lock, transport.controls(), kFrames);
  std::vector<float> room(size_t{kMaxOutputChannels} * kFrames);
  std::array<float*, kMaxOutputChannels> buffers{};
  for (size_t c = 0; c < buffers.size(); ++c) buffers[c] = room.data() + c * kFrames;
  engine.setBuffers(buffers);
  transport.play(&tape);
  std::vector<double> own, wall;
  own.reserve(static_cast<size_t>(state.max_iterations));
  wall.reserve(static_cast<size_t>(state.max_iterations));
  for (auto _ : state) {
    int frames = kFrames;
    int channelCount = 2;
    std::array<float*, kMaxOutputChannels> channels{};
    const double ownStart = threadSeconds();
    const double wallStart = wallSeconds();
    PlaybackEngine::callback(&engine, channels.data(), &frames, &channelCount);
    wall.push_back(wallSeconds() - wallStart);
    own.push_back(threadSeconds() - ownStart);
  }
  report(state, "own50%", "own99.9%", "ownmax%", own);
  report(state, "wall50%", "wall99.9%", "wallmax%", wall);
}
BENCHMARK(playbackCallback)->DenseRange(0, 4)->Iterations(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace plumetta
