// Seeded mutation fuzzing of the three paths that read files from outside:
// pictures (decode, colour key, power-of-two resampling, the mip chain),
// sounds (a whole mp3 decoded into a sample) and the height map (read into a
// terrain). The seeds are the generated assets; each input is a seed mutated
// by flips, overwrites, cuts, repeats and insertions drawn from a fixed
// random sequence, so a failing input is found again by its number. A run is
// bounded by a count and by time; what it must never do is crash, hang or
// trip a sanitizer, whatever the loaders answer.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "platform/bass/bass.h"
#include "platform/d3dx9/D3DXTextureImage.h"
#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

// Inputs a target runs at most, and the seconds it may take: short for the
// suite, longer when KARVO_FUZZ_INPUTS and KARVO_FUZZ_SECONDS ask for it.
double Limit(const char* variable, double suite) {
  const char* asked = std::getenv(variable);
  return asked ? std::atof(asked) : suite;
}

Bytes Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Generated assets with one of these endings, small enough to run often.
std::vector<Bytes> Seeds(std::initializer_list<const char*> endings, std::size_t maxBytes = 200000) {
  std::vector<Bytes> seeds;
  for (const auto& entry : fs::recursive_directory_iterator(KARVO_ASSET_DIR)) {
    const std::string name = entry.path().string();
    for (const char* ending : endings)
      if (name.ends_with(ending) && entry.file_size() <= maxBytes) seeds.push_back(Read(entry.path()));
  }
  return seeds;
}

// One to four mutations of a seed.
Bytes Mutate(Bytes data, std::mt19937& random) {
  const int count = 1 + int(random() % 4);
  for (int m = 0; m < count && !data.empty(); ++m) {
    const std::size_t at = random() % data.size();
    switch (random() % 5) {
      case 0: data[at] ^= std::uint8_t(1u << (random() % 8)); break;
      case 1: data[at] = std::uint8_t(random()); break;
      case 2: data.resize(at); break;
      case 3: {  // a run of the data repeated further on
        const std::size_t length = std::min<std::size_t>(1 + random() % 64, data.size() - at);
        const Bytes run(data.begin() + long(at), data.begin() + long(at + length));
        data.insert(data.begin() + long(random() % data.size()), run.begin(), run.end());
        break;
      }
      default:
        for (std::size_t i = 0, n = 1 + random() % 16; i < n; ++i)
          data.insert(data.begin() + long(at), std::uint8_t(random()));
    }
  }
  return data;
}

// Feeds mutated seeds to `target` until the count or the time runs out;
// prints how many ran and how many the target accepted.
template <typename Target>
void Fuzz(const char* name, const std::vector<Bytes>& seeds, Target target) {
  ASSERT_FALSE(seeds.empty()) << "no seeds in " << KARVO_ASSET_DIR;
  std::mt19937 random(20261123u);
  const auto start = std::chrono::steady_clock::now();
  int runs = 0, accepted = 0;
  const double inputs = Limit("KARVO_FUZZ_INPUTS", 400), seconds = Limit("KARVO_FUZZ_SECONDS", 20);
  for (; runs < inputs; ++runs) {
    if (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() > seconds) break;
    accepted += target(Mutate(seeds[random() % seeds.size()], random)) ? 1 : 0;
  }
  std::printf("%s: %d inputs from %zu seeds, %d accepted\n", name, runs, seeds.size(), accepted);
}

TEST(LoaderFuzz, Pictures) {
  Fuzz("pictures", Seeds({".png", ".jpg"}), [](const Bytes& input) {
    d3dx::DecodedImage decoded;
    std::string error;
    if (!d3dx::DecodeImageMemory(input.data(), input.size(), decoded, error)) {
      EXPECT_FALSE(error.empty()) << "a refused picture says why";
      return false;
    }
    d3dx::ApplyColorKey(decoded.image, 0xFFFFFFFFu);
    d3dx::ArgbImage level = d3dx::Resample(decoded.image, d3dx::NextPowerOfTwo(decoded.image.width),
                                           d3dx::NextPowerOfTwo(decoded.image.height));
    for (std::uint32_t i = 1, levels = d3dx::FullMipCount(level.width, level.height); i < levels; ++i)
      level = d3dx::HalveBox(level);
    EXPECT_EQ(level.width * level.height, 1u);
    return true;
  });
}

TEST(LoaderFuzz, Sounds) {
  ASSERT_TRUE(BASS_Init(-1, 22050, 0, nullptr, nullptr));
  Fuzz("sounds", Seeds({".mp3"}, 40000), [](const Bytes& input) {
    const HSAMPLE sample = BASS_SampleLoad(TRUE, input.data(), 0, DWORD(input.size()), 1, 0);
    return sample != 0 && BASS_SampleFree(sample);
  });
  BASS_Free();
}

TEST(LoaderFuzz, HeightMap) {
  const fs::path file = fs::temp_directory_path() / ("karvo_fuzz_map_" + std::to_string(getpid()) + ".raw");
  Fuzz("height map", Seeds({".raw"}), [&file](const Bytes& input) {
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(input.data()), long(input.size()));
    // There are no pictures where the test runs: the map is read, then the
    // first picture cannot be had and the load ends.
    karvo_test::RecordingDevice device;
    CTerrain terrain;
    terrain.SetDevice(&device, true);
    terrain.LoadHeightMap(file.c_str(), 257, 257);
    terrain.ReleaseTerrain();
    return input.size() >= 257u * 257u;
  });
  fs::remove(file);
}

}  // namespace
