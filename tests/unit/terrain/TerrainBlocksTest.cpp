// Block meshes: the serpentine strip of every block, the vertices and their
// texture pairs, the placing order, and that GetHeight stands on the drawn
// triangles. (The block count of a map size is the load's test; a block's box
// is the mesh's own rule.)
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "platform/crt/crt.h"
#include "terrain/Mesh.h"
#include "TerrainFixture.h"
#include "terrain/Vertex.h"

namespace {

using karvo_test::AsFake;
using karvo_test::MakeMap;
using karvo_test::RecordingDevice;

std::vector<std::uint16_t> Indices(const CMesh& mesh) {
  const auto& bytes = AsFake(mesh.m_indexBuffer)->Bytes();
  std::vector<std::uint16_t> out(bytes.size() / 2);
  std::memcpy(out.data(), bytes.data(), bytes.size());
  return out;
}

std::vector<CTerrainVertex> Vertices(const CMesh& mesh) {
  const auto& bytes = AsFake(mesh.m_vertexBuffer)->Bytes();
  std::vector<CTerrainVertex> out(bytes.size() / sizeof(CTerrainVertex));
  std::memcpy(static_cast<void*>(out.data()), bytes.data(), bytes.size());
  return out;
}

class Blocks : public ::testing::Test {
 protected:
  // Builds the blocks of a size x size map from sample.
  void Build(std::uint32_t size, std::uint8_t (*sample)(std::uint32_t, std::uint32_t)) {
    MakeMap(*terrain, size, size, sample);
    terrain->SetDevice(&device, true);
    ASSERT_EQ(terrain->AddBlockMeshes(((size - 1) / 36) * ((size - 1) / 36)), 0);
    ASSERT_TRUE(terrain->BuildBlockMeshes());
  }
  static std::uint8_t Rough(std::uint32_t col, std::uint32_t row) { return std::uint8_t((col * 37 + row * 91) % 251); }

  RecordingDevice device;
  std::unique_ptr<CTerrain> terrain = std::make_unique<CTerrain>();
};

// Trees, then weeds, draw from one random sequence: the order decides where
// every plant stands, so one seed must always give the same world.
TEST_F(Blocks, PlacingStepsShareTheSeededSequenceInOrder) {
  crt::srand(7);
  Build(257, Rough);
  EXPECT_EQ(terrain->m_trees[CTerrain::MAX_TREES - 1].m_size, 495);
  EXPECT_TRUE(terrain->m_weeds[0].m_x == 4380 && terrain->m_weeds[0].m_z == 6530);
}

TEST_F(Blocks, StripIsTheSerpentineWithOneTurnOfThreeEmptyTriangles) {
  Build(37, Rough);
  ASSERT_EQ(terrain->m_blockCount, 1u);
  const std::vector<std::uint16_t> idx = Indices(*terrain->m_blockMeshes[0]);
  ASSERT_EQ(idx.size(), 2699u);
  EXPECT_EQ(std::vector<std::uint16_t>(idx.begin(), idx.begin() + 4), (std::vector<std::uint16_t>{0, 37, 1, 38}));
  EXPECT_TRUE(idx[2697] == 1295 && idx[2698] == 1332);
  // The first turn: three empty triangles, then the next row runs back.
  EXPECT_EQ(std::vector<std::uint16_t>(idx.begin() + 72, idx.begin() + 79),
            (std::vector<std::uint16_t>{36, 73, 73, 73, 110, 72, 109}));
}

TEST_F(Blocks, NeighboursShareEdgeVerticesAndTheHeightQueryStandsOnTheDrawnTriangles) {
  Build(257, Rough);
  const std::vector<CTerrainVertex> b0 = Vertices(*terrain->m_blockMeshes[0]);
  const std::vector<CTerrainVertex> b1 = Vertices(*terrain->m_blockMeshes[1]);
  EXPECT_TRUE(b0[1368].m_tu == 36.0f / 256.0f && b0[1368].m_tv == 36.0f / 256.0f && b0[1368].m_tu2 == 6.0f &&
              b0[1368].m_tv2 == 6.0f);
  // Local row 5, column 36 of block 0 is local row 5, column 0 of block 1.
  EXPECT_EQ(std::memcmp(&b0[5 * 37 + 36], &b1[5 * 37], sizeof(CTerrainVertex)), 0);
  EXPECT_EQ(b1[5 * 37].m_x, 36 * 64.0f);
  // Block 8 (second row, second column) covers grid columns and rows 36..72.
  const CMesh& mesh = *terrain->m_blockMeshes[8];
  const std::vector<std::uint16_t> idx = Indices(mesh);
  const std::vector<CTerrainVertex> v = Vertices(mesh);
  int checked = 0;
  for (std::size_t i = 0; i + 2 < idx.size(); i += 7) {
    const CTerrainVertex &a = v[idx[i]], &b = v[idx[i + 1]], &c = v[idx[i + 2]];
    if (idx[i] == idx[i + 1] || idx[i + 1] == idx[i + 2] || idx[i] == idx[i + 2]) continue;
    const float x = (a.m_x + b.m_x + c.m_x) / 3.0f, z = (a.m_z + b.m_z + c.m_z) / 3.0f;
    const float y = (a.m_y + b.m_y + c.m_y) / 3.0f;
    const bool oddRow = static_cast<int>(z / 64.0f) % 2 == 1;
    // The centroid itself is rounded to float; on slopes of up to 60 per unit
    // that moves the height by a few hundredths. The wrong triangle is off by tens.
    EXPECT_NEAR(terrain->GetHeight(x, z, oddRow), y, 0.05f) << "triangle at " << i;
    ++checked;
  }
  EXPECT_GT(checked, 300);
}

}  // namespace
