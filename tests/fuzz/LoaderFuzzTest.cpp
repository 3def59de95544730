// Seeded mutation fuzzing of the two decoders of files from outside: pictures
// (decode, colour key, power-of-two resampling, the mip chain) and sounds (a
// whole mp3 decoded into a sample). The height map has no format to mutate:
// only its length counts, and the lengths are the asset matrix's cases and
// the short reads of the file layer's test. The seeds are the generated assets; each input is a seed mutated
// by flips, overwrites, cuts and insertions drawn from a fixed random
// sequence, so a failing input is found again by its number. The suite's run
// is bounded by a count alone, so that every machine tries the same inputs;
// KARVO_FUZZ_INPUTS asks for more, and KARVO_FUZZ_SECONDS bounds a long run
// by time as well. What it must never do is crash, hang or trip a sanitizer,
// whatever the loaders answer.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "platform/bass/bass.h"
#include "platform/d3dx9/D3DXTextureImage.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

// Mutates generated assets with these endings, small enough to run often, and
// feeds them to `target` until the count or the time runs out; prints how
// many ran and how many the target accepted.
template <typename Target>
void Fuzz(std::initializer_list<const char*> endings, std::uintmax_t maxBytes, Target target) {
  std::vector<Bytes> seeds;
  for (const auto& entry : fs::recursive_directory_iterator(KARVO_ASSET_DIR))
    for (const char* ending : endings)
      if (entry.path().string().ends_with(ending) && entry.file_size() <= maxBytes) {
        std::ifstream in(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
      }
  ASSERT_FALSE(seeds.empty()) << "no " << *endings.begin() << " seeds in " << KARVO_ASSET_DIR;
  const char* inputs = std::getenv("KARVO_FUZZ_INPUTS");
  const char* seconds = std::getenv("KARVO_FUZZ_SECONDS");
  const auto end =
      seconds ? std::chrono::steady_clock::now() + std::chrono::duration<double>(std::atof(seconds))
              : std::chrono::steady_clock::time_point::max();
  std::mt19937 random(20261123u);
  int runs = 0, accepted = 0;
  for (; runs < (inputs ? std::atoi(inputs) : 400) && std::chrono::steady_clock::now() < end;
       ++runs) {
    Bytes data = seeds[random() % seeds.size()];
    for (int m = 1 + int(random() % 4); m > 0 && !data.empty(); --m) {
      const std::size_t at = random() % data.size();
      const unsigned kind = random() % 4, value = unsigned(random());
      if (kind == 2)
        data.resize(at);
      else if (kind == 3)
        data.insert(data.begin() + long(at), 1 + value % 16, std::uint8_t(value >> 8));
      else  // a byte overwritten, or one of its bits flipped
        data[at] = kind ? std::uint8_t(value) : std::uint8_t(data[at] ^ (1u << value % 8));
    }
    accepted += target(data) ? 1 : 0;
  }
  std::printf("%s: %d inputs from %zu seeds, %d accepted\n", *endings.begin(), runs, seeds.size(),
              accepted);
}

TEST(LoaderFuzz, Pictures) {
  Fuzz({".png", ".jpg"}, 200000, [](const Bytes& input) {
    d3dx::DecodedImage decoded;
    std::string error;
    if (!d3dx::DecodeImageMemory(input.data(), input.size(), decoded, error)) {
      EXPECT_FALSE(error.empty()) << "a refused picture says why";
      return false;
    }
    d3dx::ApplyColorKey(decoded.image, 0xFFFFFFFFu);
    d3dx::ArgbImage level = d3dx::Resample(decoded.image, d3dx::NextPowerOfTwo(decoded.image.width),
                                           d3dx::NextPowerOfTwo(decoded.image.height));
    for (std::uint32_t i = 1, levels = d3dx::FullMipCount(level.width, level.height); i < levels;
         ++i)
      level = d3dx::HalveBox(level);
    EXPECT_EQ(level.width * level.height, 1u);
    return true;
  });
}

TEST(LoaderFuzz, Sounds) {
  ASSERT_TRUE(BASS_Init(-1, 22050, 0, nullptr, nullptr));
  Fuzz({".mp3"}, 40000, [](const Bytes& input) {
    const HSAMPLE sample = BASS_SampleLoad(TRUE, input.data(), 0, DWORD(input.size()), 1, 0);
    return sample != 0 && BASS_SampleFree(sample);
  });
  BASS_Free();
}

}  // namespace
