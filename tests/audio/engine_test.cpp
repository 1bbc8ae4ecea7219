// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <array>

#include "support/playback_deck.h"
#include "support/waves.h"

namespace plumetta {
namespace {

// A document without its floor: frame f of channel c holds (f + 1) / 10000 + c / 10.
class Tape : public PlaybackSource {
 public:
  Tape(int channels, int32_t frames, uint32_t rate = 44100) {
    wave_.create(rate, channels, 32, frames, kFormatFloat);
    for (int32_t f = 0; f < frames; ++f) {
      for (int c = 0; c < channels; ++c) wave_.setSample(f, c, value(f, c));
    }
  }
  static float value(int32_t frame, int channel) {
    return static_cast<float>(frame + 1) / 10000 + static_cast<float>(channel) / 10;
  }

  CWave& wave() { return wave_; }
  const CWave& wave() const noexcept override { return wave_; }
  void setCursor(int64_t frame) override { playback().cursor = static_cast<int32_t>(frame); }
  void playbackStopped() override { ++stops; }
  void select(int32_t start, int32_t end) { playback().selection = SelectionEnds{start, end}; }

  int stops = 0;

 private:
  CWave wave_;
};

// Remembers the block that it was given, and what it was told.
class Ear : public BlockProcessor, public AudioWidget {
 public:
  void setSampleRate(int) override {}
  void setPosition(double outputFrame) noexcept override { position = outputFrame; }
  void setPlaying(bool now) noexcept override { playing = now; }
  void process(float** channels, int, int) noexcept override {
    first = channels[0][0];
    ++blocks;
  }
  void feed(const float* const* channels, int, int) noexcept override {
    first = channels[0][0];
    ++blocks;
  }
  void setPosition(double frame, uint32_t sampleRate) noexcept override {
    position = frame;
    rate = sampleRate;
  }

  int blocks = 0;
  float first = -1;
  double position = -1;
  uint32_t rate = 0;
  bool playing = false;
};

struct Engine : testing::Test {
  AudioLock lock;
  PlaybackDeck deck{lock};
  PlaybackControls& controls = deck.transport.controls();
};

// Which frames of channel 0 were heard; -1 for silence.
std::vector<int> heard(const std::vector<float>& samples) {
  std::vector<int> frames;
  for (const float sample : samples) frames.push_back(static_cast<int>(std::lround(sample * 10000)) - 1);
  return frames;
}

TEST_F(Engine, PositionGoesWhereSelectionLoopAndRateSay) {
  struct Case {
    const char* what;
    int32_t frames;
    uint32_t rate;
    int32_t cursor;
    SelectionEnds selection;
    bool loop, whole, resampling;
    std::vector<int> expected;
    bool stillPlaying;
    double position;
    int heardFrames;
  };
  // clang-format off
  const Case cases[] = {
      {"to the end of the file", 5, 44100, 3, {}, false, false, true, {3, 4, -1, -1}, false, 7, 2},
      {"the end is met by the next block", 4, 44100, 0, {}, false, false, true, {0, 1, 2, 3}, true, 4, 4},
      {"an empty file", 0, 44100, 0, {}, false, false, true, {-1, -1}, false, 2, 0},
      {"a selection, its last frame held", 9, 44100, 0, {5, 3}, false, false, true, {3, 4, 5, 5, 5}, false, 5, 3},
      {"a loop over a selection", 9, 44100, 7, {2, 4}, true, false, true, {2, 3, 4, 2, 3, 4, 2}, true, 3, 7},
      {"a file of one frame has no loop", 1, 44100, 0, {}, true, false, true, {0, -1, -1}, false, 3, 1},
      {"all, though a loop is on", 4, 44100, 2, {1, 2}, true, true, true, {0, 1, 2, 3, -1}, false, 5, 4},
      {"half the rate, not converted", 9, 22050, 1, {}, false, false, false, {1, 2, 3}, true, 4, 3},
      {"half the rate, a selection ends", 9, 22050, 0, {1, 2}, false, false, true, {1, 1, 2, 2, 2}, false, 2.5, 4},
      {"a selection beyond the file", 3, 44100, 0, {1, 8}, false, false, true, {1, 2, -1, -1}, false, 5, 2},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Tape tape(1, c.frames, c.rate);
    tape.playback().cursor = c.cursor;
    tape.playback().selection = c.selection;
    controls.loop = c.loop;
    controls.resampling = c.resampling;
    ASSERT_TRUE(c.whole ? deck.transport.playAll(&tape) : deck.transport.play(&tape));
    EXPECT_EQ(heard(deck.pull(static_cast<int>(c.expected.size()))[1]), c.expected);
    EXPECT_EQ(controls.playing, c.stillPlaying);
    EXPECT_EQ(tape.playback().redraw, !c.stillPlaying);
    EXPECT_EQ(tape.playback().position, c.position);
    EXPECT_EQ(tape.playback().playCursor, static_cast<int32_t>(c.position));
    EXPECT_EQ(deck.engine.heardFrames(), c.heardFrames);
    deck.transport.release(tape);
  }
}

TEST_F(Engine, LimitComesBeforeRackAndMetersAndVolumeBehindThem) {
  Tape tape(2, 4);
  tape.wave().setSample(0, 0, 1.2f);
  tape.wave().setSample(1, 0, -7.0f);
  tape.wave().setSample(2, 0, std::nanf(""));
  Ear rack, widget;
  deck.engine.setRack(&rack);
  deck.engine.setWidget(0, &widget);
  controls.rackEnabled = true;
  controls.generalVolume = 2.0f;
  deck.transport.play(&tape);
  const auto block = deck.pull(4);
  EXPECT_EQ(block[0], (std::vector<float>{2 * 0.999f, 2 * -0.999f, 0.0f, 2 * Tape::value(3, 0)}));
  EXPECT_EQ(rack.first, 0.999f);
  EXPECT_EQ(widget.first, 0.999f);
  EXPECT_EQ(controls.outputPeaks[0], 0.999f);
  EXPECT_EQ(controls.outputPeaks[1], Tape::value(3, 1));
  EXPECT_EQ(controls.outputPeaks[2], 0.0f);
  deck.pull(4);
  EXPECT_EQ(controls.outputPeaks[0], 0.999f) << "only the meters lower it";
}

TEST_F(Engine, RackAndWidgetsRunBetweenPlaysButNotWithoutADocument) {
  Tape tape(1, 8, 22050);
  Ear rack, first, clock;
  deck.engine.setRack(&rack);
  deck.engine.setWidget(0, &first);
  deck.engine.setWidget(PlaybackEngine::kPositionWidget, &clock);
  controls.rackEnabled = true;
  deck.pull(4);
  EXPECT_EQ(rack.blocks + first.blocks + clock.blocks, 0);
  deck.transport.play(&tape);
  deck.pull(4);
  EXPECT_TRUE(rack.playing);
  EXPECT_EQ(rack.position, 4.0) << "two frames of the document are four of the output";
  EXPECT_EQ(clock.position, 2.0);
  EXPECT_EQ(clock.rate, 22050u);
  EXPECT_EQ(first.rate, 0u);
  deck.transport.stop();
  EXPECT_EQ(deck.pull(4)[0], std::vector<float>(4, 0.0f));
  EXPECT_FALSE(rack.playing);
  EXPECT_EQ(rack.first, 0.0f);
  EXPECT_EQ(rack.blocks, 2);
  EXPECT_EQ(clock.blocks, 2);
  controls.rackEnabled = false;
  deck.engine.setWidget(0, nullptr);
  deck.pull(4);
  EXPECT_EQ(rack.blocks + first.blocks, 4);
}

// Given up while it is in the rack, as a plug-in that hangs and comes back later.
class LateRack : public Ear {
 public:
  void process(float** channels, int channelCount, int frames) noexcept override {
    Ear::process(channels, channelCount, frames);
    engine->abandonCallback();
    engine->setBuffers(newBuffers);
  }
  PlaybackEngine* engine = nullptr;
  std::array<float*, kMaxOutputChannels> newBuffers{};
};

TEST_F(Engine, ACallbackThatWasLeftBehindTouchesNothingOfTheNext) {
  Tape tape(2, 8);
  Ear widget;
  LateRack rack;
  std::vector<float> room(PlaybackDeck::kMostFrames, 1.0f);
  rack.engine = &deck.engine;
  rack.newBuffers.fill(room.data());
  deck.engine.setRack(&rack);
  deck.engine.setWidget(0, &widget);
  controls.rackEnabled = true;
  controls.generalVolume = 0.5f;
  deck.transport.play(&tape);
  std::array<float*, kMaxOutputChannels> channels{};
  int frames = 4, channelCount = 2;
  PlaybackEngine::callback(&deck.engine, channels.data(), &frames, &channelCount);
  EXPECT_EQ(rack.blocks, 1);
  EXPECT_EQ(widget.blocks, 0);
  EXPECT_EQ(room[0], 1.0f);
  EXPECT_EQ(channels[1][3], 0.0f) << "nothing sounds that the volume has not been applied to";
}

TEST_F(Engine, WindingMovesOnTopOfPlaying) {
  struct Case {
    const char* what;
    WindMode mode;
    int32_t from, expected;
    WindMode left;
  };
  constexpr int32_t kLength = 60000;
  const Case cases[] = {
      {"back by three blocks", WindMode::rewind, 20000, 20000 - 3 * 2048, WindMode::rewind},
      {"on by five blocks", WindMode::forward, 20000, 20000 + 5 * 2048, WindMode::forward},
      {"back to the start", WindMode::rewind, 1000, 0, WindMode::none},
      {"to the end", WindMode::forward, 50000, kLength - 1, WindMode::none},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Tape tape(1, kLength);
    tape.setCursor(c.from);
    c.mode == WindMode::rewind ? deck.transport.toggleRewind(&tape) : deck.transport.toggleForward(&tape);
    tape.select(7, 9000);
    controls.wholeFile = true;  // the selection must not end it
    deck.pull(2048);
    PlaybackPlace& place = tape.playback();
    EXPECT_EQ(place.position, c.expected);
    EXPECT_EQ(place.cursor, c.expected);
    EXPECT_EQ(place.playCursor, c.expected);
    const SelectionEnds selection = place.selection;
    EXPECT_EQ(selection.start, c.expected);
    EXPECT_EQ(selection.end, c.expected);
    EXPECT_TRUE(place.wound);
    EXPECT_EQ(controls.windMode, c.left);
    EXPECT_TRUE(controls.playing) << "plain playing goes on";
    deck.transport.release(tape);
  }
}

TEST_F(Engine, PlayCommandsSwitchBetweenTheThreeStates) {
  Tape tape(1, 1000);
  deck.transport.play(nullptr);
  EXPECT_FALSE(controls.playing);
  deck.outputStarts = false;
  EXPECT_FALSE(deck.transport.play(&tape));
  EXPECT_FALSE(controls.playing);
  deck.outputStarts = true;
  tape.setCursor(100);
  deck.transport.togglePlay(&tape);
  deck.pull(50);
  deck.transport.toggleForward(&tape);
  EXPECT_EQ(tape.playback().position, 100) << "winding begins with Play";
  deck.transport.toggleRewind(&tape);
  EXPECT_EQ(controls.windMode, WindMode::rewind);
  deck.transport.toggleRewind(&tape);
  EXPECT_EQ(controls.windMode, WindMode::none);
  deck.pull(30);
  deck.transport.togglePlay(&tape);
  EXPECT_FALSE(controls.playing);
  EXPECT_EQ(tape.playback().cursor, 130);
  deck.transport.play(&tape);
  deck.transport.stop();
  EXPECT_FALSE(controls.playing);
  EXPECT_EQ(tape.playback().cursor, 130);
  EXPECT_EQ(tape.stops, 1);
  for (const int speed : {0, 100, -4}) deck.transport.setWindSpeed(speed);
  EXPECT_EQ(controls.windSpeed, 4);
}

TEST_F(Engine, AReleasedDocumentIsNotTouchedAgain) {
  auto tape = std::make_unique<Tape>(1, 1000);
  Tape other(1, 1000);
  deck.transport.play(tape.get());
  deck.transport.release(other);
  EXPECT_TRUE(controls.playing) << "another document is closed";
  deck.transport.release(*tape);
  tape.reset();
  EXPECT_EQ(deck.pull(16)[0], std::vector<float>(16, 0.0f));
  EXPECT_FALSE(controls.playing);
}

TEST_F(Engine, LargerBlocksThanThereIsRoomForAreLowered) {
  std::array<float*, kMaxOutputChannels> channels{};
  int frames = 100000;
  int channelCount = 99;
  EXPECT_TRUE(PlaybackEngine::callback(&deck.engine, channels.data(), &frames, &channelCount));
  EXPECT_EQ(frames, PlaybackDeck::kMostFrames);
  EXPECT_EQ(channelCount, kMaxOutputChannels);
}

TEST(ForbidAllocationDeathTest, AbortsWhenTheThreadAllocates) {
  EXPECT_DEATH(
      {
        const ForbidAllocation forbid;
        std::vector<float> samples(100);
        samples[3] = 1;
        std::fprintf(stderr, "%f", samples[3]);
      },
      "allocated on the audio thread");
}

}  // namespace
}  // namespace plumetta
