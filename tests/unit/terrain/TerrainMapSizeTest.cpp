// LoadHeightMap over three map sizes (the test runs in the asset folder for
// the textures): the world scale, the number of blocks, and where one sample
// ends up, both in the drawn vertices and for the height query.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
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

constexpr std::uint32_t kBlockSide = 37;  // vertices along a block's edge

struct MapSize {
  std::uint32_t size;
  float cell;  // world units between samples
  std::uint32_t blocks;
};

TEST(MapSize, ScaleBlockCountAndWhereASampleStands) {
  // 512 / (size - 1) is cut to a whole number before it is scaled by 32;
  // blocks are (size - 1) / 36 per side, also cut.
  const MapSize sizes[] = {{257, 64.0f, 49}, {129, 128.0f, 9}, {100, 160.0f, 4}};
  for (const MapSize& map : sizes) {
    SCOPED_TRACE(map.size);
    // Flat at 10, with sample 255 at column 3, row 2.
    std::vector<unsigned char> samples(std::size_t(map.size) * map.size, 10);
    samples[2 * map.size + 3] = 255;
    const std::string path = testing::TempDir() + "karvo_size_" + std::to_string(map.size) + ".raw";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    std::fwrite(samples.data(), 1, samples.size(), file);
    std::fclose(file);

    RecordingDevice device;
    auto terrain = std::make_unique<CTerrain>();
    terrain->SetDevice(&device, true);
    ASSERT_TRUE(terrain->LoadHeightMap(path.c_str(), map.size, map.size));
    EXPECT_EQ(terrain->m_scale, D3DXVECTOR3(map.cell, 16.0f, map.cell));
    EXPECT_EQ(terrain->m_blockCount, map.blocks);

    // 255 x 16 high, three cells east and two north of the origin: on the
    // world map that is (192, 4080, 128).
    std::vector<CTerrainVertex> vertices(kBlockSide * kBlockSide);
    std::memcpy(static_cast<void*>(vertices.data()),
                AsFake(terrain->m_blockMeshes[0]->m_vertexBuffer)->Bytes().data(),
                vertices.size() * sizeof(CTerrainVertex));
    const CTerrainVertex& v = vertices[2 * kBlockSide + 3];
    EXPECT_EQ(v.m_x, 3 * map.cell);
    EXPECT_EQ(v.m_y, 4080.0f);
    EXPECT_EQ(v.m_z, 2 * map.cell);
    EXPECT_EQ(terrain->GetHeight(3 * map.cell, 2 * map.cell, false), 4080.0f);
    EXPECT_EQ(terrain->GetHeight(3 * map.cell, 2 * map.cell, true), 4080.0f);
    std::remove(path.c_str());
  }
}

}  // namespace
