// The BASS layer on the real SDL2_mixer: the version, the calls before a start
// and after a free, the play-without-restart rule and the playback limit.
// What a channel did is read from what reached SDL's disk driver, in seconds
// of output: the driver writes at the pace of real time at best and slower on
// a busy machine, so the clock would tell nothing.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "platform/bass/bass.h"
#include "support/PcmLevels.h"

namespace {

const char* kTone = "fixtures\\tone440.mp3";  // 1 s, as the program writes paths
constexpr double kToneSeconds = 1.0;
const std::string kOutput = "bass-" + std::to_string(::getpid()) + ".raw";

double Output() {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(kOutput, error);
  return error ? 0.0 : double(size) / (22050 * 4);
}

// Polls until `done`; a minute without it is a hang.
void Await(const std::function<bool()>& done, const char* otherwise) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!done() && std::chrono::steady_clock::now() < limit)
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  ASSERT_TRUE(done()) << otherwise << " for a minute";
}

void MixFor(double seconds) {
  const double until = Output() + seconds;
  Await([=] { return Output() >= until; }, "no output");
}

void AwaitStop(HCHANNEL channel) {
  Await([=] { return BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED; }, "still playing");
}

class BassDisk : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", kOutput.c_str(), 1);
    ASSERT_TRUE(BASS_Init(-1, 22050, BASS_DEVICE_3D, nullptr, nullptr));
  }
  void TearDown() override {
    BASS_Free();
    std::filesystem::remove(kOutput);
  }
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

TEST_F(BassDisk, PlayLeavesAPlayingChannelAloneAndRestartsAStoppedOne) {
  HCHANNEL channel = BASS_SampleGetChannel(BASS_SampleLoad(FALSE, kTone, 0, 0, 1, 0), FALSE);
  // Played again a fifth of the way in, it still sounds once.
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  MixFor(0.2);
  ASSERT_EQ(BASS_ChannelIsActive(channel), DWORD(BASS_ACTIVE_PLAYING));
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  AwaitStop(channel);
  MixFor(0.2);
  const double between = Output();
  // Stopped there, it starts from its beginning: a fifth, then all of it.
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  MixFor(0.2);
  EXPECT_TRUE(BASS_ChannelStop(channel));
  ASSERT_TRUE(BASS_ChannelPlay(channel, FALSE));
  AwaitStop(channel);
  BASS_Free();  // the file is complete
  const PcmTrack track = ReadPcm(kOutput, 22050);
  const double once = track.LoudSeconds(100.0, 0.0, between);
  EXPECT_NEAR(once, kToneSeconds, 0.1);
  EXPECT_GT(track.LoudSeconds(100.0, between, track.Seconds()) - once, 0.15)
      << "the stopped channel went on from where it stood";
}

TEST_F(BassDisk, MaxLimitsSimultaneousPlaybacks) {
  HSAMPLE sample = BASS_SampleLoad(FALSE, kTone, 0, 0, 2, BASS_SAMPLE_LOOP);
  HCHANNEL first = BASS_SampleGetChannel(sample, FALSE);
  ASSERT_TRUE(BASS_ChannelPlay(first, FALSE));
  HCHANNEL second = BASS_SampleGetChannel(sample, FALSE);
  ASSERT_TRUE(second != 0 && second != first) << "the first one is busy";
  ASSERT_TRUE(BASS_ChannelPlay(second, FALSE));
  EXPECT_EQ(BASS_SampleGetChannel(sample, FALSE), 0u) << "both playbacks are busy";
  MixFor(kToneSeconds + 0.2);
  EXPECT_EQ(BASS_ChannelIsActive(first), DWORD(BASS_ACTIVE_PLAYING))
      << "a looped sample stopped by itself";
  BASS_ChannelStop(first);
  EXPECT_EQ(BASS_SampleGetChannel(sample, FALSE), first);
  EXPECT_EQ(BASS_SampleGetChannel(sample, TRUE), 0u) << "no new one beyond max";
}
