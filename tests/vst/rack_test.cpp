// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/rack.h"

#include <gtest/gtest.h>

#include <thread>

#include "core/audio_lock.h"
#include "support/forbid_allocation.h"
#include "support/hanging_plugin.h"
#include "support/test_plugins.h"
#include "support/waves.h"

namespace plumetta {
namespace {

class RackTest : public testing::Test {
 protected:
  RackTest() { host.setBlockSize(Rack::kBufferFrames); }

  int add(const std::string& name) { return rack.add(testPlugin(name)).position; }
  int addFaulty(const std::string& fault) {
    chooseFault(fault);
    return add("misbehaving");
  }
  ChainResult apply(CWave& wave, int64_t start = 0, int64_t end = 0) {
    fractions.clear();
    const WaveProgress progress{[](float fraction, void* self) {
                                  auto& test = *static_cast<RackTest*>(self);
                                  test.fractions.push_back(fraction);
                                  return test.fractions.size() < test.cancelAt;
                                },
                                this};
    return rack.applyTo(wave, lock, start, end, progress);
  }
  // One block of `value` on every channel through the real-time step; the value that comes out of each.
  std::vector<float> play(int channelCount, float value, int frames = 64) {
    std::vector<std::vector<float>> buffers(static_cast<size_t>(channelCount));
    std::vector<float*> channels;
    for (auto& buffer : buffers) {
      buffer.assign(static_cast<size_t>(frames), value);
      channels.push_back(buffer.data());
    }
    {
      const ForbidAllocation forbid;
      rack.process(channels.data(), channelCount, frames);
    }
    std::vector<float> out;
    for (auto& buffer : buffers) out.push_back(buffer.back());
    return out;
  }

  VstHost host;
  Rack rack{host};
  AudioLock lock;
  std::vector<float> fractions;
  size_t cancelAt = 1000000;
};

using Floats = std::vector<float>;

TEST_F(RackTest, KeepsItsHolesAndFillsTheFirst) {
  EXPECT_EQ(add("gain"), 0);
  EXPECT_EQ(add("bank"), 1);
  EXPECT_EQ(add("swap"), 2);
  EXPECT_EQ(rack.programOf(rack.slotAt(1)), 0);
  EXPECT_TRUE(rack.remove(0));
  EXPECT_FALSE(rack.remove(0));
  EXPECT_EQ(rack.lineText(0), "-----");
  EXPECT_EQ(rack.lineText(1).substr(0, 17), "Test bank   (bank");
  EXPECT_EQ(rack.lineText(2).substr(0, 4), "swap") << "it has no name of its own";
  rack.setMuted(2, true);
  EXPECT_TRUE(rack.lineText(2).ends_with(" (muted)"));
  EXPECT_EQ(add("mono"), 0);
  EXPECT_EQ(rack.add("/no/such/plugin").message, "Unable to load: /no/such/plugin");
  EXPECT_EQ(rack.addAt(2, testPlugin("gain")).position, 2);
  EXPECT_FALSE(rack.isMuted(2));
  EXPECT_FALSE(rack.selectProgram(1, 4));
  EXPECT_TRUE(rack.selectProgram(1, 3));
  EXPECT_EQ(rack.programLines(1)[3], "003: Preset D");
  EXPECT_EQ(rack.parameterText(2, 0), "0.50x");
  rack.clear();
  for (int p = 0; p < 4; ++p) EXPECT_EQ(rack.slotAt(p), -1);
  EXPECT_FALSE(rack.hasActivePlugin());
  while (rack.slotAt(255) < 0) ASSERT_GE(add("gain"), 0);
  EXPECT_EQ(rack.add(testPlugin("gain")).message, "Rack full");
}

TEST_F(RackTest, PlaysThroughItsPluginsInOrder) {
  add("gain");
  add("swap");
  EXPECT_EQ(play(2, 1.0f), Floats({0.5f, 0.5f}));
  rack.remove(1);
  add("bank");
  rack.setParameter(1, 0, 0.25f);
  EXPECT_EQ(play(2, 1.0f), Floats({0.75f, 0.75f}));
  rack.setMuted(0, true);
  EXPECT_EQ(play(2, 1.0f), Floats({1.25f, 1.25f}));
  EXPECT_EQ(play(2, 1.0f, 10000), Floats({1.25f, 1.25f})) << "longer than a plug-in expects";
  rack.clear();
  add("eight");
  EXPECT_EQ(play(2, 1.0f), Floats({2.0f, 1.0f})) << "what it has more inputs is silent";
  EXPECT_EQ(play(2, 1.0f), Floats({2.0f, 1.0f})) << "and stays so";
  add("mono");
  EXPECT_EQ(play(1, 1.0f), Floats({0.5f}));
  rack.clear();
  add("accumulating");
  EXPECT_EQ(play(1, 1.0f), Floats({1.0f})) << "never asked to process";
}

TEST_F(RackTest, TellsTimeAndTransport) {
  add("clock");
  host.setTempo(120);
  rack.setSampleRate(44100);
  rack.setPosition(88200);
  rack.setPlaying(true);
  EXPECT_EQ(play(2, 0), Floats({4.0f / 1024, 0.75f}));
  EXPECT_EQ(play(2, 0), Floats({4.0f / 1024, 0.5f})) << "the change was told once";
}

TEST_F(RackTest, AppliesTheChainBlockByBlock) {
  add("gain");
  const auto wave = countingWave(2, 6000);
  EXPECT_EQ(apply(*wave, 5500, 500), ChainResult::done);
  EXPECT_EQ(fractions, Floats({0.0f, 0.5f}));
  EXPECT_EQ(wave->sample(499, 0), 499.0f);
  EXPECT_EQ(wave->sample(500, 0), 250.0f);
  EXPECT_EQ(wave->sample(5499, 1), 0.5f * (5499.0f + 0.01f));
  EXPECT_EQ(wave->sample(5500, 0), 5500.0f);
  EXPECT_EQ(apply(*wave, 0, 4096), ChainResult::done);
  EXPECT_EQ(fractions, Floats({0.0f, 0.5f}));
  EXPECT_EQ(apply(*wave, 300, 300), ChainResult::done);
  EXPECT_EQ(wave->sample(5999, 0), 5999.0f / 2) << "no selection is all of it";
  const float before = wave->sample(0, 1);
  EXPECT_EQ(apply(*wave, -1, 100), ChainResult::done);
  EXPECT_EQ(wave->sample(0, 1), before);
  cancelAt = 2;
  EXPECT_EQ(apply(*wave), ChainResult::cancelled);
}

TEST_F(RackTest, FindsSilenceOnTheSecondInputOfAMonoFile) {
  const auto applied = [&](const char* plugin, int channels) {
    rack.clear();
    add(plugin);
    const auto wave = countingWave(channels, 3000);
    EXPECT_EQ(apply(*wave), ChainResult::done);
    EXPECT_EQ(wave->frames(), 3000);
    Floats last;
    for (int c = 0; c < channels; ++c) last.push_back(wave->sample(2999, c));
    return last;
  };
  EXPECT_EQ(applied("swap", 1), Floats({0.0f}));
  EXPECT_EQ(applied("mono", 2), Floats({1499.5f, 0.0f}));
  EXPECT_EQ(applied("synth", 2), Floats({0.125f, 0.25f}));
  EXPECT_EQ(applied("accumulating", 2), Floats({0.0f, 0.0f})) << "cannot replace, so that silence comes back";
  EXPECT_EQ(applied("eight", 1), Floats({2999.0f}));
  EXPECT_EQ(applied("delay", 2)[0], 2899.0f);
  EXPECT_EQ(rack.latencyFrames(), 100);
  EXPECT_EQ(applied("gain", 16)[15], 0.0f) << "nobody wrote to it";
}

TEST_F(RackTest, ExchangesPlugInsAndHoles) {
  const int delaying = add("editor");
  add("mono");
  const VstPlugin* const first = rack.pluginAt(0);
  rack.setMuted(0, true);
  EXPECT_TRUE(rack.exchange(0, 5));
  EXPECT_FALSE(rack.occupied(0));
  EXPECT_EQ(rack.pluginAt(5), first);
  EXPECT_TRUE(rack.isMuted(5)) << "what belongs to the plug-in goes along";
  EXPECT_FALSE(rack.exchange(5, 256));
  EXPECT_TRUE(rack.exchange(delaying, 5));
  rack.setMuted(0, false);
  EXPECT_EQ(rack.latencyFrames(), 0);
  play(2, 1.0f);
  EXPECT_EQ(rack.latencyFrames(), 64) << "which it could not tell before";
}

// For the address sanitizer above all, which tells of what is left behind.
TEST_F(RackTest, HoldsTwoHundredAndFiftySixAndLetsThemGo) {
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 256; ++i) ASSERT_EQ(add(i % 2 == 0 ? "swap" : "mono"), i);
    EXPECT_EQ(rack.add(testPlugin("gain")).message, "Rack full");
    play(2, 1.0f);
    const auto wave = countingWave(2, 5000);
    EXPECT_EQ(apply(*wave), ChainResult::done);
    rack.clear();
    EXPECT_FALSE(rack.hasActivePlugin());
    EXPECT_EQ(host.plugin(255), nullptr);
  }
}

TEST_F(RackTest, SilencesWhatIsNoNumberAndTellsOnce) {
  addFaulty("nan");
  EXPECT_EQ(play(2, 1.0f), Floats({1.0f, 1.0f}));
  EXPECT_TRUE(rack.takeFaultTexts().empty());
  const auto wave = countingWave(2, 2048);
  EXPECT_EQ(apply(*wave), ChainResult::done);
  EXPECT_EQ(wave->sample(1024, 0), 0.0f);
  EXPECT_EQ(wave->sample(0, 1), 0.0f);
  EXPECT_EQ(wave->sample(1023, 0), 1023.0f);
  EXPECT_EQ(rack.takeFaultTexts().size(), 1u);
  apply(*wave);
  EXPECT_TRUE(rack.takeFaultTexts().empty());
}

TEST_F(RackTest, BearsOneThatLiesAboutItsChannels) {
  addFaulty("lies");
  EXPECT_EQ(play(2, 1.0f, 4096), Floats({1.0f, 1.0f}));
  const auto wave = countingWave(1, 5000);
  EXPECT_EQ(apply(*wave), ChainResult::done);
  EXPECT_EQ(wave->sample(4999, 0), 4999.0f);
  EXPECT_EQ(rack.latencyFrames(), 0);
}

// ---- Those that hang ------------------------------------------------------------------------------------

TEST_F(RackTest, GivesUpOneThatHangsOverSamples) {
  const Hanging hanging;
  add("gain");
  add("misbehaving");
  auto wave = countingWave(2, 5000);
  EXPECT_EQ(apply(*wave), ChainResult::failed);
  ASSERT_EQ(rack.takeFaultTexts().size(), 1u);
  EXPECT_EQ(rack.activeSlotAt(1), -1);
  wave = countingWave(2, 5000);
  EXPECT_EQ(apply(*wave), ChainResult::done);
  EXPECT_EQ(wave->sample(1000, 0), 500.0f) << "the others go on";
  rack.clear();
  EXPECT_EQ(add("gain"), 0);
}

TEST_F(RackTest, ClosesOneThatHangsInPlaying) {
  std::atomic<bool> removed{false};
  Hanging hanging;
  add("misbehaving");
  std::thread audio([&] {
    while (!removed) play(2, 1.0f);
  });
  while (host.beginProcessing(0) != nullptr) host.endProcessing(0);  // until the thread is in it
  rack.remove(0);
  removed = true;
  EXPECT_TRUE(host.hasAbandoned());
  EXPECT_EQ(rack.takeFaultTexts().size(), 1u);
  EXPECT_EQ(host.open(testPlugin("gain")), 1) << "somebody is still in the first slot";
  hanging.end();
  audio.join();
}

TEST_F(RackTest, WritesNoSilenceForOneThatHangsInPlaying) {
  std::atomic<bool> done{false};
  Hanging hanging;
  add("misbehaving");
  std::thread audio([&] {
    while (!done) play(2, 1.0f);
  });
  while (host.beginProcessing(0) != nullptr) host.endProcessing(0);  // until the thread is in it
  const auto wave = countingWave(2, 5000);
  EXPECT_EQ(apply(*wave), ChainResult::failed);
  EXPECT_EQ(wave->sample(1000, 0), 1000.0f);
  EXPECT_EQ(apply(*wave), ChainResult::done) << "nobody is left";
  EXPECT_EQ(wave->sample(1000, 0), 1000.0f);
  done = true;
  hanging.end();
  audio.join();
}

// ---- Against the audio thread ---------------------------------------------------------------------------

TEST_F(RackTest, ChangesWhilePlaying) {
  std::atomic<bool> done{false};
  std::thread audio([&] {
    while (!done) {
      rack.setPlaying(true);
      rack.setPosition(1000);
      for (const float value : play(2, 1.0f, 32)) EXPECT_GT(value, 0.0f);
    }
  });
  const char* names[] = {"gain", "bank", "swap"};
  const auto wave = countingWave(2, 3000);
  for (int i = 0; i < 300; ++i) {
    add(names[i % 3]);
    if (i % 2 == 0) rack.setMuted(i % 5, i % 4 == 0);
    if (i % 3 == 2) rack.remove(i % 4);
    if (i % 50 == 20) apply(*wave);
    if (i % 40 == 39) rack.clear();
    host.setTempo(100.0f + static_cast<float>(i));
    rack.takeFaultTexts();
    std::this_thread::yield();
  }
  done = true;
  audio.join();
}

}  // namespace
}  // namespace plumetta
