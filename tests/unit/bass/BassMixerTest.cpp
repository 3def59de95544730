// The BASS layer on the real SDL2_mixer (SDL's dummy driver): the version, the
// calls before a start and after a free, the play-without-restart rule and
// the playback limit.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "platform/bass/bass.h"

namespace {

const char* kTone = "fixtures\\tone440.mp3";  // 0.4 s, as the program writes paths

void Sleep(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

// Seconds until the channel stops, polled; -1 when it still plays after `limit`.
double SecondsUntilStopped(HCHANNEL channel, double limit) {
  auto start = std::chrono::steady_clock::now();
  for (;;) {
    double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED) return elapsed;
    if (elapsed > limit) return -1.0;
    Sleep(0.005);
  }
}

class BassDummy : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    ASSERT_TRUE(BASS_Init(-1, 22050, BASS_DEVICE_3D, nullptr, nullptr));
  }
  void TearDown() override { BASS_Free(); }
};

}  // namespace

TEST(BassLibrary, VersionTwoPointFourAndNoLoadBeforeInit) {
  EXPECT_EQ(BASS_GetVersion() >> 16, 0x0204u);
  setenv("SDL_AUDIODRIVER", "dummy", 1);
  EXPECT_EQ(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), 0u);
  EXPECT_FALSE(BASS_Free());
  ASSERT_TRUE(BASS_Init(-1, 22050, BASS_DEVICE_3D, nullptr, nullptr));
  EXPECT_FALSE(BASS_Init(-1, 22050, 0, nullptr, nullptr)) << "already started";
  EXPECT_TRUE(BASS_Free());
}

TEST_F(BassDummy, PlayLeavesAPlayingChannelAloneAndRestartsAStoppedOne) {
  HCHANNEL channel = BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), FALSE);
  // Played again halfway, it still ends about 0.4 s after the first start.
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  Sleep(0.2);
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  double undisturbed = SecondsUntilStopped(channel, 2.0) + 0.2;
  EXPECT_GT(undisturbed, 0.3);
  EXPECT_LT(undisturbed, 0.58);
  // Stopped, it starts from its beginning.
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  Sleep(0.2);
  EXPECT_TRUE(BASS_ChannelStop(channel));
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  EXPECT_GT(SecondsUntilStopped(channel, 2.0), 0.3);
}

TEST_F(BassDummy, MaxLimitsSimultaneousPlaybacks) {
  HSAMPLE sample = BASS_SampleLoad(FALSE, kTone, 0, 0, 2, BASS_SAMPLE_LOOP);
  HCHANNEL first = BASS_SampleGetChannel(sample, FALSE);
  ASSERT_TRUE(BASS_ChannelPlay(first, FALSE));
  HCHANNEL second = BASS_SampleGetChannel(sample, FALSE);
  ASSERT_TRUE(second != 0 && second != first) << "the first one is busy";
  ASSERT_TRUE(BASS_ChannelPlay(second, FALSE));
  EXPECT_EQ(BASS_SampleGetChannel(sample, FALSE), 0u) << "both playbacks are busy";
  EXPECT_LT(SecondsUntilStopped(first, 0.6), 0.0) << "a looped sample stopped by itself";
  BASS_ChannelStop(first);
  EXPECT_EQ(BASS_SampleGetChannel(sample, FALSE), first);
  EXPECT_EQ(BASS_SampleGetChannel(sample, TRUE), 0u) << "no new one beyond max";
}
