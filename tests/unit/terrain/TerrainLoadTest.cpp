// CTerrain lifecycle on the generated assets (the test runs in the asset
// folder for the textures): the whole load with its 17 textures, release and
// a second load, and the scale, block count and the height of one sample for
// four map sizes, one too small for a block.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"

namespace {

using karvo_test::RecordingDevice;

// Writes a raw map of width x height samples (all 10, with sample 255 at
// column 3, row 2) to a file in the temporary folder; returns its name.
std::string WriteMap(const std::string& name, std::size_t width, std::size_t height) {
  std::vector<unsigned char> bytes(width * height, 10);
  bytes[2 * width + 3] = 255;
  const std::string path = testing::TempDir() + name;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
  return path;
}

TEST(Load, TheWorldsMapLoadsReleasesAndLoadsAgain) {
  RecordingDevice device;
  auto terrain = std::make_unique<CTerrain>();
  terrain->ReleaseTerrain();  // never loaded: harmless
  terrain->SetDevice(&device, true);
  ASSERT_TRUE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));
  EXPECT_EQ(device.Count("CreateTexture"), 17u);
  EXPECT_NE(terrain->m_flower3Texture, nullptr);
  EXPECT_FALSE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));  // already loaded

  terrain->ReleaseTerrain();
  EXPECT_EQ(device.LiveResources(), 0);
  EXPECT_EQ(device.RefCount(), 1u);

  terrain->SetDevice(&device, true);
  EXPECT_TRUE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));
}

TEST(MapSize, ScaleBlockCountAndWhereASampleStands) {
  // 512 / (size - 1) is cut to a whole number before it is scaled by 32;
  // blocks are (size - 1) / 36 per side, also cut.
  const struct {
    std::uint32_t size;
    float cell;  // world units between samples
    std::uint32_t blocks;
  } sizes[] = {{257, 64.0f, 49}, {129, 128.0f, 9}, {100, 160.0f, 4}, {30, 544.0f, 0}};
  for (const auto& map : sizes) {
    SCOPED_TRACE(map.size);
    const std::string path = WriteMap("karvo_size_" + std::to_string(map.size) + ".raw", map.size, map.size);
    RecordingDevice device;
    auto terrain = std::make_unique<CTerrain>();
    terrain->SetDevice(&device, true);
    ASSERT_TRUE(terrain->LoadHeightMap(path.c_str(), map.size, map.size));
    EXPECT_EQ(terrain->m_scale, D3DXVECTOR3(map.cell, 16.0f, map.cell));
    EXPECT_EQ(terrain->m_blockCount, map.blocks);
    // Sample 255 at column 3, row 2.
    EXPECT_TRUE(terrain->GetHeight(3 * map.cell, 2 * map.cell, false) == 4080.0f &&
                terrain->GetHeight(3 * map.cell, 2 * map.cell, true) == 4080.0f);
  }
}

}  // namespace
