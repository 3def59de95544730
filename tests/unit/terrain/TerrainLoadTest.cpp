// CTerrain lifecycle on the generated assets (the test runs in the asset
// folder): the whole load with its 17 textures, the scale by map size, the
// ways a load fails, and release.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "support/RecordingDevice.h"
#include "terrain/Mesh.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"

namespace {

using karvo_test::AsFake;
using karvo_test::RecordingDevice;

// Writes a raw map of width x height samples (all `fill`, with sample 255 at
// column 3, row 2) to a file in the temporary folder; returns its name.
std::string WriteMap(const char* name, std::size_t width, std::size_t height, std::size_t length = 0) {
  std::vector<unsigned char> bytes(width * height, 10);
  bytes[2 * width + 3] = 255;
  if (length) bytes.resize(length);
  const std::string path = testing::TempDir() + name;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
  return path;
}

class Load : public ::testing::Test {
 protected:
  RecordingDevice device;
  std::unique_ptr<CTerrain> terrain = std::make_unique<CTerrain>();
};

TEST_F(Load, TheWorldsMapLoadsReleasesAndLoadsAgain) {
  terrain->SetDevice(&device, true);
  ASSERT_TRUE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));
  EXPECT_EQ(terrain->m_scale, D3DXVECTOR3(64.0f, 16.0f, 64.0f));
  EXPECT_EQ(terrain->m_blockCount, 49u);
  EXPECT_EQ(device.Count("CreateTexture"), 17u);
  EXPECT_NE(terrain->m_rainTexture, nullptr);
  EXPECT_NE(terrain->m_flower3Texture, nullptr);
  EXPECT_FALSE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));  // already loaded

  terrain->ReleaseTerrain();
  EXPECT_EQ(device.LiveResources(), 0);
  EXPECT_EQ(device.RefCount(), 1u);
  EXPECT_EQ(terrain->m_heightMap, nullptr);
  terrain->ReleaseTerrain();  // twice is harmless

  terrain->SetDevice(&device, true);
  EXPECT_TRUE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));
}

TEST_F(Load, ScaleFollowsTheMapSize) {
  const std::string path = WriteMap("karvo_map129.raw", 129, 129);
  terrain->SetDevice(&device, true);
  ASSERT_TRUE(terrain->LoadHeightMap(path.c_str(), 129, 129));
  EXPECT_EQ(terrain->m_scale, D3DXVECTOR3(128.0f, 16.0f, 128.0f));
  EXPECT_EQ(terrain->m_blockCount, 9u);
  // Sample 255 at column 3, row 2 stands at (3 * 128, 4080, 2 * 128).
  std::vector<CTerrainVertex> v(1369);
  std::memcpy(static_cast<void*>(v.data()), AsFake(terrain->m_blockMeshes[0]->m_vertexBuffer)->Bytes().data(),
              1369 * sizeof(CTerrainVertex));
  EXPECT_EQ(v[2 * 37 + 3].m_x, 384.0f);
  EXPECT_EQ(v[2 * 37 + 3].m_y, 4080.0f);
  EXPECT_EQ(v[2 * 37 + 3].m_z, 256.0f);

  auto odd = std::make_unique<CTerrain>();
  const std::string oddPath = WriteMap("karvo_map100.raw", 100, 100);
  odd->SetDevice(&device, true);
  ASSERT_TRUE(odd->LoadHeightMap(oddPath.c_str(), 100, 100));
  EXPECT_EQ(odd->m_scale.x, 160.0f);  // 512 / 99 = 5, truncated before the * 32
}

TEST_F(Load, FailuresAreCleanFalse) {
  EXPECT_FALSE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));  // no device
  EXPECT_EQ(terrain->m_heightMap, nullptr);

  terrain->SetDevice(&device, true);
  EXPECT_FALSE(terrain->LoadHeightMap("Data\\NoSuchMap.raw", 257, 257));
  EXPECT_NE(terrain->m_heightMap, nullptr);  // kept until release
  EXPECT_EQ(terrain->m_scale.x, 64.0f);
  EXPECT_EQ(device.LiveResources(), 0);  // no texture loaded

  terrain->ReleaseTerrain();
  terrain->SetDevice(&device, true);
  const std::string shortPath = WriteMap("karvo_short.raw", 257, 257, 1000);
  EXPECT_FALSE(terrain->LoadHeightMap(shortPath.c_str(), 257, 257));
  EXPECT_FALSE(terrain->LoadHeightMap(shortPath.c_str(), 1, 257));  // no scale for one sample
  EXPECT_EQ(device.LiveResources(), 0);

  // The first failing texture ends the load.
  device.createsBeforeFailure = 4;
  terrain->ReleaseTerrain();
  terrain->SetDevice(&device, true);
  EXPECT_FALSE(terrain->LoadHeightMap("Data\\HeightMap.raw", 257, 257));
  EXPECT_EQ(device.Count("CreateTexture"), 5u);
  EXPECT_EQ(terrain->m_blockCount, 0u);
  terrain->ReleaseTerrain();
  EXPECT_EQ(device.LiveResources(), 0);
}

}  // namespace
