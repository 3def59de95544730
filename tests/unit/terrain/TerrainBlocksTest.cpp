// The ground: CMesh's upload into managed write-only buffers and its box;
// the block meshes (the serpentine strip of every block, the vertices and
// their texture pairs, the placing order, and that GetHeight stands on the
// drawn triangles; the block count of a map size is the load's test); and the
// two ground-following callbacks (the clamp, the walking/swimming switch at
// the water level, the chase camera held above the hills). Then the terrain's
// lifecycle on the generated assets (the tests run in the asset folder for
// the textures): the whole load with its 17 textures, release and a second
// load, and the scale, block count and the height of one sample for four map
// sizes, one too small for a block.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TerrainFixture.h"
#include "platform/crt/crt.h"
#include "platform/win32/script/Win32Script.h"
#include "terrain/Mesh.h"
#include "terrain/Vertex.h"
#include "view/Player.h"

namespace {

using karvo_test::AsFake;
using karvo_test::MakeMap;
using karvo_test::RecordingDevice;

// A mesh of the given vertices (format 0x142) and indices 0..n-1.
void Fill(CMesh& mesh, std::initializer_list<CVertex> vertices) {
  mesh.SetVertexFormat(CVertex::FVF, sizeof(CVertex));
  ASSERT_EQ(mesh.AddVertices(static_cast<std::uint32_t>(vertices.size())), 0);
  std::memcpy(mesh.m_vertices, vertices.begin(), vertices.size() * sizeof(CVertex));
  ASSERT_EQ(mesh.AddIndices(static_cast<std::uint32_t>(vertices.size())), 0);
  for (std::uint16_t i = 0; i < vertices.size(); ++i) mesh.m_indices[i] = i;
}

// (The bytes uploaded are the blocks' tests, which read their vertices back.)
TEST(Mesh, BuildUploadsComputesTheBoxFromThePositionsAndReleasesTheArrays) {
  RecordingDevice device;
  CMesh mesh;
  Fill(mesh, {CVertex(1, -2, 3, 0), CVertex(-4, 5, 0.5f, 0), CVertex(2, 0, -6, 0)});
  ASSERT_EQ(mesh.BuildBuffers(&device, false, true), D3D_OK);
  EXPECT_TRUE(mesh.m_vertices == nullptr && mesh.m_indices == nullptr);
  EXPECT_EQ(mesh.m_boundsMin, D3DXVECTOR3(-4, -2, -6));
  EXPECT_EQ(mesh.m_boundsMax, D3DXVECTOR3(2, 5, 3));
  auto* vb = AsFake(mesh.m_vertexBuffer);
  EXPECT_EQ(vb->Pool(), D3DPOOL_MANAGED);
  EXPECT_EQ(vb->Usage(), DWORD(D3DUSAGE_WRITEONLY | D3DUSAGE_SOFTWAREPROCESSING));
}

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
  // Off the map the ground is at 0.
  EXPECT_TRUE(terrain->GetHeight(-1.0f, 100.0f, false) == 0.0f && terrain->GetHeight(100.0f, -0.5f, false) == 0.0f &&
              terrain->GetHeight(257 * 64.0f, 100.0f, false) == 0.0f);
}

// 9 x 9 samples (x and z spacing 64) with one high sample at (1, 1) and one
// at (1, 3), the rest a slope so that grid points differ.
std::uint8_t Sample(std::uint32_t col, std::uint32_t row) {
  if ((col == 1 && row == 1) || (col == 1 && row == 3)) return 100;
  return static_cast<std::uint8_t>(col * 3 + row * 5);
}

// The ground-following callbacks on the 9 x 9 map, with the scripted keyboard.
class Ground : public Blocks {
 protected:
  void SetUp() override {
    MakeMap(*terrain, 9, 9, Sample);
    terrain->m_scale = D3DXVECTOR3(64.0f, 16.0f, 64.0f);  // the spacing of the world's map
    win32::script::Enable({.realWindows = false});
    player.SetCameraMode(CAM_MODE_1ST_PERSON);
    player.SetVolumeInfo({D3DXVECTOR3(-3, -2, -3), D3DXVECTOR3(3, 10, 3)});
    player.SetFriction(1.0f);
  }
  void TearDown() override { win32::script::Disable(); }
  void Follow() { CTerrain::UpdatePlayer(terrain.get(), &player, 0.016f); }
  CPlayer player;
};

TEST_F(Ground, ClampUsesTheRowParityOfThePositionAndLeavesABodyAboveTheGround) {
  // z = 63.9 is still row 0 (even split), 127.9 row 1 (odd split); the two
  // splits differ there by more than a unit, so the wrong parity would show.
  for (auto [z, odd] : {std::pair{63.9f, false}, std::pair{127.9f, true}}) {
    ASSERT_GT(std::fabs(terrain->GetHeight(96.0f, z, true) - terrain->GetHeight(96.0f, z, false)), 1.0f);
    player.SetVelocity(D3DXVECTOR3(5.0f, -50.0f, 7.0f));
    player.SetPosition(D3DXVECTOR3(96.0f, 0.0f, z));
    Follow();
    EXPECT_FLOAT_EQ(player.GetPosition().y, terrain->GetHeight(96.0f, z, odd) + 2.0f) << z;
    EXPECT_EQ(player.GetVelocity(), D3DXVECTOR3(5.0f, 0.0f, 7.0f));
  }
  player.SetVelocity(D3DXVECTOR3(1.0f, 2.0f, 3.0f));
  player.SetPosition(D3DXVECTOR3(96.0f, 3000.0f, 96.0f));
  Follow();
  EXPECT_EQ(player.GetPosition(), D3DXVECTOR3(96.0f, 3000.0f, 96.0f));
  EXPECT_EQ(player.GetVelocity(), D3DXVECTOR3(1.0f, 2.0f, 3.0f));
}

TEST_F(Ground, WalkingFromExactlyTheWaterLevelSwimmingBelowOnlyInFirstPerson) {
  player.SetPosition(D3DXVECTOR3(300.0f, 864.0f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, -500.0f, 0.0f));
  EXPECT_EQ(player.GetMaxVelocityXZ(), 125.0f);
  player.SetPosition(D3DXVECTOR3(300.0f, 863.99f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, -260.0f, 0.0f));
  EXPECT_EQ(player.GetMaxVelocityXZ(), 40.0f);

  win32::script::HoldKeys(0, {0x53});  // S held: no pull downwards
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
  }
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, 0.0f, 0.0f));

  // Other camera modes keep the last values, even high above the water.
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  player.SetPosition(D3DXVECTOR3(300.0f, 2000.0f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetMaxVelocityXZ(), 40.0f);
}

TEST_F(Ground, ChaseCameraRisesOutOfTheHillAndFacesThePlayer) {
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  CCamera* camera = player.GetCamera();
  camera->SetVolumeInfo({D3DXVECTOR3(-3, -2, -3), D3DXVECTOR3(3, 10, 3)});
  player.SetPosition(D3DXVECTOR3(300.0f, 2000.0f, 300.0f));
  camera->SetPosition(D3DXVECTOR3(64.0f, 10.0f, 64.0f));  // inside the hill at (1, 1)
  CTerrain::UpdateCamera(terrain.get(), camera, 0.016f);
  EXPECT_FLOAT_EQ(camera->GetPosition().y, 1602.0f);
  D3DXVECTOR3 toPlayer = player.GetPosition() - camera->GetPosition();
  D3DXVec3Normalize(&toPlayer, &toPlayer);
  EXPECT_NEAR(D3DXVec3Dot(&toPlayer, &camera->GetLook()), 1.0f, 1e-5f);
}

// Writes a raw map of width x height samples (all 10, with sample 255 at
// column 3, row 2) to a file in the temporary folder; returns its name.
std::string WriteMap(const std::string& name, std::size_t width, std::size_t height) {
  std::string bytes(width * height, char(10));
  bytes[2 * width + 3] = char(255);
  const std::string path = testing::TempDir() + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

TEST_F(Blocks, TheWorldsMapLoadsReleasesAndLoadsAgain) {
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

TEST_F(Blocks, MapSizesGiveTheirScaleBlockCountAndWhereASampleStands) {
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
    terrain = std::make_unique<CTerrain>();  // the last one's resources go back to the device
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
