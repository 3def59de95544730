// The BASS layer on the real SDL2_mixer: return codes at every boundary, handle
// life, the play-without-restart rule, the playback limit, and what reaches the
// output (SDL's disk driver writes the mix to a file).
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/bass/bass.h"
#include "support/PcmLevels.h"

namespace {

const char* kTone = "fixtures\\tone440.mp3";  // 0.4 s, 22050 Hz mono, as the program writes paths
const char* kToneStereo = "fixtures/tone1000.mp3";  // 0.4 s, 44100 Hz stereo

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

TEST(BassLibrary, EveryCallFailsUntilInitAndAfterFree) {
  EXPECT_EQ(BASS_GetVersion() >> 16, 0x0204u);
  setenv("SDL_AUDIODRIVER", "dummy", 1);
  for (int round = 0; round < 2; ++round) {  // before the first start, then after a free
    EXPECT_EQ(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), 0u);
    EXPECT_FALSE(BASS_ChannelPlay(0x20010000u, FALSE));
    EXPECT_FALSE(BASS_Free());
    ASSERT_TRUE(BASS_Init(-1, 22050, BASS_DEVICE_3D, nullptr, nullptr));
    EXPECT_FALSE(BASS_Init(-1, 22050, 0, nullptr, nullptr)) << "already started";
    EXPECT_NE(BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), FALSE), 0u);
    EXPECT_TRUE(BASS_Free());
  }
  EXPECT_FALSE(BASS_Init(7, 22050, 0, nullptr, nullptr)) << "no such device";
}

TEST_F(BassDummy, LoadFailsCleanlyOnEveryBadSource) {
  std::ofstream("text.mp3") << "this is not a sound\n";
  for (const char* bad : {"fixtures\\missing.mp3", "text.mp3"}) EXPECT_EQ(BASS_SampleLoad(FALSE, bad, 0, 0, 1, 0), 0u);
  EXPECT_EQ(BASS_SampleLoad(FALSE, kTone, 0, 0, 0, 0), 0u) << "max 0";
  EXPECT_EQ(BASS_SampleLoad(FALSE, kTone, 0, 0, 70000, 0), 0u) << "max above 65535";
  EXPECT_EQ(BASS_SampleLoad(FALSE, kTone, 1u << 30, 0, 1, 0), 0u) << "offset past the end";
}

TEST_F(BassDummy, HandlesAreDistinctAndStaleOnesFail) {
  const HSAMPLE a = BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0);
  const HCHANNEL ca = BASS_SampleGetChannel(a, FALSE);
  EXPECT_FALSE(BASS_ChannelPlay(a, FALSE)) << "a sample is no channel";
  EXPECT_TRUE(BASS_SampleFree(a));
  EXPECT_FALSE(BASS_SampleFree(a));
  EXPECT_FALSE(BASS_ChannelPlay(ca, FALSE)) << "a freed sample's channel is gone";
  // A new sample may reuse the freed mixer channel but never the old handles.
  const HCHANNEL cb = BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), FALSE);
  EXPECT_NE(cb, ca);
  EXPECT_TRUE(BASS_ChannelPlay(cb, FALSE));
  EXPECT_EQ(BASS_ChannelIsActive(cb), DWORD(BASS_ACTIVE_PLAYING));
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

TEST(BassOutput, APlayedToneReachesTheMixAtItsOwnPitch) {
  const char* out = "bass_disk_output.raw";
  std::remove(out);
  setenv("SDL_AUDIODRIVER", "disk", 1);
  setenv("SDL_DISKAUDIOFILE", out, 1);
  ASSERT_TRUE(BASS_Init(-1, 22050, BASS_DEVICE_3D, nullptr, nullptr));
  HCHANNEL low = BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), FALSE);
  HCHANNEL high = BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kToneStereo, 0, 0, 1, 0), FALSE);
  Sleep(0.3);
  ASSERT_TRUE(BASS_ChannelPlay(low, FALSE));
  Sleep(0.6);
  ASSERT_TRUE(BASS_ChannelPlay(high, FALSE));
  Sleep(0.6);
  EXPECT_TRUE(BASS_Free());
  unsetenv("SDL_DISKAUDIOFILE");

  // Leading silence, then each tone at its pitch, whatever its own rate and
  // channel count were.
  PcmTrack track = ReadPcm(out, 22050);
  ASSERT_GT(track.Seconds(), 1.2);
  EXPECT_LT(track.Rms(0.0, 0.2), 50.0);
  std::vector<double> loudStarts;
  for (double t = 0.0; t + 0.05 <= track.Seconds(); t += 0.05)
    if (track.Rms(t, t + 0.05) > 2000.0 && (loudStarts.empty() || t - loudStarts.back() > 0.5))
      loudStarts.push_back(t);
  ASSERT_EQ(loudStarts.size(), 2u);
  EXPECT_NEAR(track.CrossingsPerSecond(loudStarts[0] + 0.1, loudStarts[0] + 0.3) / 2, 440.0, 20.0);
  EXPECT_NEAR(track.CrossingsPerSecond(loudStarts[1] + 0.1, loudStarts[1] + 0.3) / 2, 1000.0, 40.0);
}
