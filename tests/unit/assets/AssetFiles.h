// Access to the generated assets for the tests: paths, whole files, decoded
// pictures and decoded sound.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace assettest {

std::filesystem::path AssetDir();
std::vector<uint8_t> ReadFile(const std::filesystem::path& path);

struct Picture {
  int width = 0;
  int height = 0;
  int channels = 0;           // as stored in the file
  std::vector<uint8_t> rgba;  // always 4 bytes a pixel

  const uint8_t* At(int x, int y) const { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
  // Mean of one channel over the rows [y0, y1) (all rows by default).
  double Mean(int channel, int y0 = 0, int y1 = -1) const;
};

// Loads Data/<name>; width 0 when it can't be read.
Picture LoadPicture(const std::string& name);

// Mono samples (-1..1) at 22050 Hz, decoded by sox; empty when it fails.
std::vector<float> DecodeMp3(const std::filesystem::path& path);

// The height map and the game's height query on it: world units, 0 off the map.
class HeightMap {
 public:
  static constexpr int kSize = 257;
  explicit HeightMap(std::vector<uint8_t> samples) : m_samples(std::move(samples)) {}

  bool Valid() const { return m_samples.size() == static_cast<size_t>(kSize) * kSize; }
  int Sample(int col, int row) const { return m_samples[static_cast<size_t>(row) * kSize + col]; }
  float GetHeight(float x, float z) const;

 private:
  std::vector<uint8_t> m_samples;
};

HeightMap LoadHeightMap();

}  // namespace assettest
