// The generated assets as the program reads them: the generator's output is
// the same on every run, the height map gives the fixed places the ground they
// need, the pictures have the sizes, formats and colour keys the texture table
// loads them with, and the sounds decode to audible clips of a sensible length.
#include <gtest/gtest.h>
#include <stb_image.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path kAssets = KARVO_ASSET_DIR;

std::vector<uint8_t> ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

int RunGenerator(const std::string& arguments) {
  const int status = std::system(("'" KARVO_ASSETGEN "' " + arguments + " >/dev/null 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Generator, SecondRunWritesTheSameBytesAndABadFolderFailsClearly) {
  const fs::path fresh = fs::temp_directory_path() / ("karvo-assets-" + std::to_string(getpid()));
  fs::remove_all(fresh);
  ASSERT_EQ(RunGenerator("'" + fresh.string() + "'"), 0);
  int files = 0, freshFiles = 0;
  for (const auto& entry : fs::recursive_directory_iterator(kAssets)) {
    if (!entry.is_regular_file()) continue;
    ++files;
    const fs::path relative = fs::relative(entry.path(), kAssets);
    EXPECT_TRUE(ReadFile(entry.path()) == ReadFile(fresh / relative)) << relative << " differs between runs";
  }
  for (const auto& entry : fs::recursive_directory_iterator(fresh)) freshFiles += entry.is_regular_file();
  EXPECT_EQ(files, 53) << "1 height map, 23 pictures, 29 sounds";
  EXPECT_EQ(freshFiles, files);
  fs::remove_all(fresh);

  EXPECT_EQ(RunGenerator(""), 2) << "no folder given";
  std::ofstream(fresh) << "a file, not a folder";
  EXPECT_EQ(RunGenerator("'" + (fresh / "out").string() + "'"), 1);
  fs::remove(fresh);
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
  for (const int x0 : {2000, 6000}) {  // the walls' feet at 500 are under the ground, a third in the sea
    const auto aroundWalls = [x0](float floor, float ceiling) {
      return [=](float h, int x, int z) {
        const bool wall = std::abs(x - x0) < 64 || std::abs(x - x0 - 2000) < 64 || std::abs(z - 3000) < 64 ||
                          std::abs(z - 5000) < 64;
        return wall && h > floor && h < ceiling;
      };
    };
    const double all = share(x0 - 64, 2936, x0 + 2064, 5064, aroundWalls(-1, 1e9f));
    EXPECT_EQ(share(x0 - 64, 2936, x0 + 2064, 5064, aroundWalls(516, 1e9f)), all) << x0;
    EXPECT_GT(share(x0 - 64, 2936, x0 + 2064, 5064, aroundWalls(-1, 864)), all * 0.3) << x0;
  }
  // Trees want ground above 900, weeds sea floor below 770, both outside the
  // tower zones; the weeds are placed until each finds its spot.
  const auto outsideTowers = [](int x, int z) {
    return !((x > 1800 && x < 4200) || (x > 5800 && x < 8200)) || z <= 2800 || z >= 5200;
  };
  EXPECT_GT(share(0, 0, 16384, 16384, [&](float h, int x, int z) { return h > 900 && outsideTowers(x, z); }), 0.6);
  EXPECT_GT(share(0, 0, 16384, 16384, [&](float h, int x, int z) { return h < 770 && outsideTowers(x, z); }), 1.0 / 6);
}

struct Picture {
  int width = 0, height = 0, channels = 0;
  std::vector<uint8_t> rgba;  // always 4 bytes a pixel
  const uint8_t* At(int x, int y) const { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
  // Share of the pixels that `pick` accepts.
  template <class Pick>
  double Share(Pick pick) const {
    long hits = 0;
    for (size_t i = 0; i < rgba.size(); i += 4) hits += pick(&rgba[i]);
    return 4.0 * hits / rgba.size();
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
// transparent pixels; 0x640000FF is the rain's background.
TEST(Pictures, SizesFormatsAndColourKeys) {
  enum Key { kNone, kWhite, kRain };
  const struct { const char* name; int width, height, channels; Key key; } pictures[] = {
      {"Base_Texture_BigPoint.jpg", 2048, 2048, 3, kNone}, {"Detail_Texture.jpg", 512, 512, 3, kNone},
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
    EXPECT_EQ(p.width, row.width);
    EXPECT_EQ(p.height, row.height);
    EXPECT_EQ(p.channels, row.channels);
    if (row.key == kWhite) {
      EXPECT_EQ(p.Share([](const uint8_t* px) { return px[3] == 0 && (px[0] & px[1] & px[2]) != 255; }), 0.0)
          << "transparent pixels must be white so that the key clears them";
      EXPECT_GT(p.Share([](const uint8_t* px) { return px[3] == 0; }), 0.05);
      EXPECT_GT(p.Share([](const uint8_t* px) { return px[3] == 255; }), 0.05);
    }
    if (row.key == kRain) {
      const auto key = [](const uint8_t* px) { return px[0] == 0 && px[1] == 0 && px[2] == 0xFF && px[3] == 0x64; };
      ASSERT_TRUE(key(p.At(0, 0)));
      EXPECT_GT(p.Share(key), 1.0 / 3);
      EXPECT_LT(p.Share(key), 0.95);
      EXPECT_EQ(p.Share([&](const uint8_t* px) { return !key(px) && px[0] <= 100; }), 0.0)
          << "streak pixels are light, not a near miss of the key";
    }
  }
}

TEST(Pictures, DetailKeepsTheBaseBrightnessAndTheWingHingesOnItsBottomRow) {
  const Picture detail = LoadPicture("Detail_Texture.jpg");
  double sum = 0;
  for (size_t i = 1; i < detail.rgba.size(); i += 4) sum += detail.rgba[i];
  EXPECT_NEAR(sum * 4 / detail.rgba.size(), 128.0, 2.0) << "ADDSIGNED adds (t - 0.5)";

  const Picture wing = LoadPicture("krilo_right.png");
  ASSERT_GT(wing.width, 0);
  const auto coverage = [&](int y) {
    int visible = 0;
    for (int x = 0; x < wing.width; ++x) visible += wing.At(x, y)[3] > 128;
    return static_cast<double>(visible) / wing.width;
  };
  EXPECT_GT(coverage(wing.height - 1), 0.6) << "the hinge, v = 1, spans the wing's root";
  EXPECT_LT(coverage(2), 0.35) << "the tip, v = 0, is narrow";
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

TEST(Sounds, EveryFileDecodesToAudibleSoundOfSensibleLength) {
  std::vector<std::tuple<std::string, double, double>> clips = {  // path, shortest and longest in seconds
      {"music/1.mp3", 60.0, 600.0},
      {"speech/mp3/ostanki_pogibshey.mp3", 0.8, 8.0},
      {"speech/mp3/kak_zabratsa_na_neboskreb.mp3", 0.8, 8.0}};
  for (const char* effect : {"diving_short", "shagi_trava_short", "swim_short", "breathe_short", "kashel_short",
                             "poperhnulsya", "smeh_short1", "smeh_short2", "jump_small2"})
    clips.emplace_back(std::string("music/") + effect + ".mp3", 0.3, 6.0);
  for (int i = 1; i <= 17; ++i) clips.emplace_back("speech/mp3/" + std::to_string(i) + ".mp3", 0.8, 8.0);
  for (const auto& [path, shortest, longest] : clips) {
    SCOPED_TRACE(path);
    const std::vector<float> s = DecodeMp3(kAssets / path);
    ASSERT_FALSE(s.empty()) << "does not decode";
    double sum = 0;
    float peak = 0.0f;
    for (float v : s) sum += v * v, peak = std::max(peak, std::fabs(v));
    EXPECT_GE(s.size() / 22050.0, shortest);
    EXPECT_LE(s.size() / 22050.0, longest);
    EXPECT_GT(std::sqrt(sum / s.size()), 0.008) << "silent";
    EXPECT_LT(peak, 0.99f) << "clips";
  }
}

}  // namespace
