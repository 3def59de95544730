// The generated assets as the program reads them: the generator's output is
// the same on every run, the height map gives the fixed places the ground they
// need, the pictures have the sizes, formats and colour keys the texture table
// loads them with, and the sounds decode to audible clips of a sensible length.
// (That the program finds and loads every one of the 53 files is the asset
// matrix test's concern.)
#include <gtest/gtest.h>
#include <stb_image.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path kAssets = KARVO_ASSET_DIR;

std::vector<uint8_t> ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The pictures and the world come out the same on every machine and run.
TEST(Generator, SecondRunWritesTheSameBytes) {
  const fs::path fresh = fs::temp_directory_path() / ("karvo-assets-" + std::to_string(getpid()));
  fs::remove_all(fresh);
  ASSERT_EQ(std::system(("'" KARVO_ASSETGEN "' '" + fresh.string() + "' >/dev/null 2>&1").c_str()), 0);
  for (const auto& entry : fs::recursive_directory_iterator(kAssets)) {
    const fs::path relative = fs::relative(entry.path(), kAssets);
    EXPECT_TRUE(!entry.is_regular_file() || ReadFile(entry.path()) == ReadFile(fresh / relative)) << relative;
  }
  fs::remove_all(fresh);
}

TEST(HeightMap, GivesTheFixedPlacesAndThePlacingTheGroundTheyNeed) {
  const std::vector<uint8_t> map = ReadFile(kAssets / "Data" / "HeightMap.raw");
  ASSERT_EQ(map.size(), 257u * 257u);
  // Share of the grid points (64 units apart) of the world rectangle
  // [x0, x1] x [z0, z1] whose height in world units `pick` accepts.
  const auto share = [&](int x0, int z0, int x1, int z1, auto pick) {
    int hits = 0, all = 0;
    for (int r = (z0 + 63) / 64; r * 64 <= z1; ++r)
      for (int c = (x0 + 63) / 64; c * 64 <= x1; ++c, ++all) hits += pick(map[r * 257 + c] * 16.0f, c * 64, r * 64);
    return static_cast<double>(hits) / all;
  };
  const auto above = [](float floor) { return [floor](float h, int, int) { return h > floor; }; };
  EXPECT_EQ(share(1472, 1472, 1536, 1536, above(872 + 40)), 1.0) << "the start is dry land, clear of the shore";
  EXPECT_EQ(share(1472, 6976, 1536, 7040, above(900)), 1.0) << "the big tree stands on land";
  EXPECT_GT(share(700, 700, 2199, 2199, above(900)), 0.97) << "the flower meadow";
  // Trees want ground above 900, weeds sea floor below 770; the weeds are
  // placed until each finds its spot.
  EXPECT_GT(share(0, 0, 16384, 16384, above(900)), 0.6);
  EXPECT_GT(share(0, 0, 16384, 16384, [](float h, int, int) { return h < 770; }), 1.0 / 6);
}

struct Picture {
  int width = 0, height = 0, channels = 0;
  std::vector<uint8_t> rgba;  // always 4 bytes a pixel
  const uint8_t* At(int x, int y) const { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
  // The mean of `pick` over the pixels: the share that it accepts when it answers yes or no.
  template <class Pick>
  double Share(Pick pick) const {
    double sum = 0;
    for (size_t i = 0; i < rgba.size(); i += 4) sum += pick(&rgba[i]);
    return 4.0 * sum / rgba.size();
  }
};

Picture LoadPicture(const std::string& name) {
  Picture p;
  stbi_uc* pixels = stbi_load((kAssets / "Data" / name).string().c_str(), &p.width, &p.height, &p.channels, 4);
  if (pixels) p.rgba.assign(pixels, pixels + static_cast<size_t>(p.width) * p.height * 4);
  stbi_image_free(pixels);
  return p;
}

// Sides as the texture loader takes them (powers of two), the format, and the
// colour key each is loaded with: 0x00FFFFFF clears only exactly white
// transparent pixels; 0x640000FF is the rain's background. The detail picture
// keeps the base's brightness: ADDSIGNED adds (t - 0.5).
TEST(Pictures, SizesFormatsColourKeysAndTheDetailsBrightness) {
  enum Key { kNone, kWhite, kRain, kDetail };
  const struct { const char* name; int width, height, channels; Key key; } pictures[] = {
      {"Base_Texture_BigPoint.jpg", 2048, 2048, 3, kNone}, {"Detail_Texture.jpg", 512, 512, 3, kDetail},
      {"Water_Texture.jpg", 1024, 1024, 3, kNone},         {"skyscraperwall.jpg", 512, 256, 3, kNone},
      {"skyscraperwall2.jpg", 2048, 256, 3, kNone},        {"beard.jpg", 128, 128, 3, kNone},
      {"SkyBox_Front.jpg", 512, 512, 3, kNone},            {"SkyBox_Back.jpg", 512, 512, 3, kNone},
      {"SkyBox_Left.jpg", 512, 512, 3, kNone},             {"SkyBox_Right.jpg", 512, 512, 3, kNone},
      {"SkyBox_Top.jpg", 512, 512, 3, kNone},              {"SkyBox_Bottom.jpg", 512, 512, 3, kNone},
      {"tree.png", 512, 512, 4, kWhite},                   {"tree3.png", 512, 512, 4, kWhite},
      {"krilo_right.png", 256, 256, 4, kWhite},            {"krilo_left.png", 256, 256, 4, kWhite},
      {"weads4.png", 256, 256, 4, kWhite},                 {"weads5.png", 256, 256, 4, kWhite},
      {"flower1.png", 128, 128, 4, kWhite},                {"flower2.png", 128, 128, 4, kWhite},
      {"flower3.png", 128, 128, 4, kWhite},                {"preservativ.png", 128, 128, 4, kWhite},
      {"rain.png", 16, 128, 4, kRain}};
  for (const auto& row : pictures) {
    SCOPED_TRACE(row.name);
    const Picture p = LoadPicture(row.name);
    EXPECT_TRUE(p.width == row.width && p.height == row.height && p.channels == row.channels);
    if (row.key == kWhite) {
      EXPECT_EQ(p.Share([](const uint8_t* px) { return px[3] == 0 && (px[0] & px[1] & px[2]) != 255; }), 0.0)
          << "transparent pixels must be white so that the key clears them";
      EXPECT_GT(std::min(p.Share([](const uint8_t* px) { return px[3] == 0; }),
                         p.Share([](const uint8_t* px) { return px[3] == 255; })), 0.05);
    }
    if (row.key == kDetail) { EXPECT_NEAR(p.Share([](const uint8_t* px) { return px[1]; }), 128.0, 2.0); }
    if (row.key == kRain) {
      const auto key = [](const uint8_t* px) { return px[0] == 0 && px[1] == 0 && px[2] == 0xFF && px[3] == 0x64; };
      EXPECT_TRUE(key(p.At(0, 0)) && p.Share(key) > 1.0 / 3 && p.Share(key) < 0.95);
      EXPECT_EQ(p.Share([&](const uint8_t* px) { return !key(px) && px[0] <= 100; }), 0.0)
          << "streak pixels are light, not a near miss of the key";
    }
  }
}

// Mono samples (-1..1) at 22050 Hz, decoded by sox; empty when it fails.
std::vector<float> DecodeMp3(const fs::path& path) {
  std::vector<float> samples;
  const std::string command =
      "sox -q '" + path.string() + "' -t raw -e signed-integer -b 16 -c 1 -r 22050 - 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return samples;
  int16_t buffer[4096];
  for (size_t got; (got = fread(buffer, sizeof(int16_t), 4096, pipe)) > 0;)
    for (size_t i = 0; i < got; ++i) samples.push_back(buffer[i] / 32768.0f);
  if (pclose(pipe) != 0) samples.clear();
  return samples;
}

// The music runs for minutes, every effect and clip for seconds at most.
TEST(Sounds, EveryFileDecodesToAudibleSoundOfSensibleLength) {
  int files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(kAssets)) {
    if (entry.path().extension() != ".mp3") continue;
    SCOPED_TRACE(entry.path());
    ++files;
    const std::vector<float> s = DecodeMp3(entry.path());
    ASSERT_FALSE(s.empty()) << "does not decode";
    double sum = 0;
    float peak = 0.0f;
    for (float v : s) sum += v * v, peak = std::max(peak, std::fabs(v));
    const bool music = entry.path().filename() == "1.mp3" && entry.path().parent_path().filename() == "music";
    EXPECT_GE(s.size() / 22050.0, music ? 60.0 : 0.3);
    EXPECT_LE(s.size() / 22050.0, music ? 600.0 : 8.0);
    EXPECT_GT(std::sqrt(sum / s.size()), 0.008) << "silent";
    EXPECT_LT(peak, 0.99f) << "clips";
  }
  EXPECT_EQ(files, 29);
}

}  // namespace
