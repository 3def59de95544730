// The 29 mp3 files decode to audible sound of a sensible length, without
// clipping; the music is long and joins its end to its start.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "AssetFiles.h"

namespace {

constexpr double kRate = 22050.0;

double Rms(const std::vector<float>& s, size_t from, size_t to) {
  double sum = 0;
  for (size_t i = from; i < to; ++i) sum += s[i] * s[i];
  return to > from ? std::sqrt(sum / (to - from)) : 0.0;
}

TEST(Sounds, EveryFileDecodesToAudibleSoundOfSensibleLength) {
  struct Clip {
    std::string path;  // under the asset folder
    double minSeconds, maxSeconds;
  };
  std::vector<Clip> clips = {{"music/1.mp3", 60.0, 600.0},
                             {"speech/mp3/ostanki_pogibshey.mp3", 0.8, 8.0},
                             {"speech/mp3/kak_zabratsa_na_neboskreb.mp3", 0.8, 8.0}};
  for (const char* effect : {"diving_short", "shagi_trava_short", "swim_short", "breathe_short", "kashel_short",
                             "poperhnulsya", "smeh_short1", "smeh_short2", "jump_small2"})
    clips.push_back({std::string("music/") + effect + ".mp3", 0.3, 6.0});
  for (int i = 1; i <= 17; ++i) clips.push_back({"speech/mp3/" + std::to_string(i) + ".mp3", 0.8, 8.0});
  ASSERT_EQ(clips.size(), 29u);
  for (const Clip& clip : clips) {
    const std::vector<float> s = assettest::DecodeMp3(assettest::AssetDir() / clip.path);
    ASSERT_FALSE(s.empty()) << clip.path << " does not decode";
    const double seconds = s.size() / kRate, rms = Rms(s, 0, s.size());
    float peak = 0.0f;
    for (float v : s) peak = std::max(peak, std::fabs(v));
    std::printf("%-42s %6.2f s  peak %.2f  rms %.3f\n", clip.path.c_str(), seconds, peak, rms);
    EXPECT_GE(seconds, clip.minSeconds) << clip.path;
    EXPECT_LE(seconds, clip.maxSeconds) << clip.path;
    EXPECT_GT(rms, 0.008) << clip.path << " is silent";
    EXPECT_LT(peak, 0.99f) << clip.path << " clips";
  }
}

TEST(Sounds, MusicLoopsWithoutAFadeAtEitherEnd) {
  const std::vector<float> s = assettest::DecodeMp3(assettest::AssetDir() / "music" / "1.mp3");
  ASSERT_GT(s.size(), static_cast<size_t>(60 * kRate));
  // Skip the encoder's lead-in; compare the level just inside both ends
  // with the level of the whole piece.
  const size_t second = static_cast<size_t>(kRate), tenth = second / 10;
  const double whole = Rms(s, 0, s.size()), head = Rms(s, tenth, second + tenth);
  const double tail = Rms(s, s.size() - second - tenth, s.size() - tenth);
  std::printf("music rms: whole %.3f, first second %.3f, last second %.3f\n", whole, head, tail);
  EXPECT_GT(head, whole * 0.4);
  EXPECT_GT(tail, whole * 0.4);
  EXPECT_LT(std::max(head, tail) / std::min(head, tail), 2.5) << "the end must flow into the start";
}

}  // namespace
