// CTerrain::Render against a recording device: the two texture layers in one
// pass or two, the per-block frustum test in both passes, and the state the
// second pass leaves behind even when nothing was drawn.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "support/RecordingDevice.h"
#include "terrain/Mesh.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Player.h"

using karvo_test::DeviceCall;
using karvo_test::DeviceCalls;
using karvo_test::Ptr;
using karvo_test::RecordingDevice;
using karvo_test::RS, karvo_test::Tss;

namespace {

// A CTerrain in zero-filled storage, as it lives inside g_App, with three
// blocks: two in front of the camera and one behind it.
class TerrainRender : public ::testing::Test {
 protected:
  void SetUp() override {
    storage_ = std::calloc(1, sizeof(CTerrain));
    terrain = new (storage_) CTerrain();
    terrain->SetDevice(&device, true);
    ASSERT_EQ(terrain->AddBlockMeshes(3), 0);
    AddBlock(0, 0.0f, 200.0f);     // ahead
    AddBlock(1, 0.0f, -400.0f);    // behind
    AddBlock(2, 300.0f, 1200.0f);  // ahead, further
    terrain->m_blockPrimitiveCount = 2697;
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_X8R8G8B8, D3DPOOL_MANAGED, &terrain->m_baseTexture, nullptr), 0);
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_X8R8G8B8, D3DPOOL_MANAGED, &terrain->m_detailTexture, nullptr),
              0);

    ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
    player.SetPosition(D3DXVECTOR3(50.0f, 100.0f, 0.0f));
    camera = player.GetCamera();
    camera->SetViewport(0, 0, 640, 480, 1.01f, 5000.0f, nullptr);
    device.ClearLog();
  }
  void TearDown() override {
    terrain->~CTerrain();
    std::free(storage_);
  }

  // A block of two corner vertices whose box spans x0..x0+100, y 0..50, z0..z0+100.
  void AddBlock(std::uint32_t index, float x0, float z0) {
    CMesh* mesh = terrain->m_blockMeshes[index];
    mesh->SetVertexFormat(CTerrainVertex::FVF, sizeof(CTerrainVertex));
    ASSERT_EQ(mesh->AddVertices(2), 0);
    auto* vertices = reinterpret_cast<CTerrainVertex*>(mesh->m_vertices);
    vertices[0] = CTerrainVertex(x0, 0.0f, z0, 0.0f, 0.0f);
    vertices[1] = CTerrainVertex(x0 + 100.0f, 50.0f, z0 + 100.0f, 0.0f, 0.0f);
    ASSERT_EQ(mesh->AddIndices(2), 0);
    mesh->m_indices[0] = 0;
    mesh->m_indices[1] = 1;
    ASSERT_GE(mesh->BuildBuffers(&device, true, true), 0);
  }

  DeviceCalls BlockDraw(std::uint32_t index) const {
    const CMesh* mesh = terrain->m_blockMeshes[index];
    return {{"SetStreamSource", {0, Ptr(mesh->m_vertexBuffer), 0, 28}},
            {"SetIndices", {Ptr(mesh->m_indexBuffer)}},
            {"DrawIndexedPrimitive", {double(D3DPT_TRIANGLESTRIP), 0, 0, 1369, 0, 2697}}};
  }
  RecordingDevice device;
  CPlayer player;  // owns the camera, which turns about the player
  CCamera* camera = nullptr;
  CTerrain* terrain = nullptr;

 private:
  void* storage_ = nullptr;
};

}  // namespace

TEST_F(TerrainRender, OnePassDrawsBothTexturesTwoPassesBlendTheDetailOverTheSameBlocks) {
  // Block 1 lies behind the camera and is left out of both passes.
  const DeviceCalls blocks = BlockDraw(0) + BlockDraw(2);
  const DeviceCall base{"SetTexture", {0, Ptr(terrain->m_baseTexture)}}, fvf{"SetFVF", {0x202}};
  const DeviceCalls one = DeviceCalls{base, {"SetTexture", {1, Ptr(terrain->m_detailTexture)}}, fvf} + blocks;
  const DeviceCalls two = DeviceCalls{base, fvf} + blocks +
                          DeviceCalls{{"SetTexture", {0, Ptr(terrain->m_detailTexture)}}, Tss(0, D3DTSS_TEXCOORDINDEX, 1),
                                      RS(D3DRS_SRCBLEND, D3DBLEND_DESTCOLOR), RS(D3DRS_DESTBLEND, D3DBLEND_SRCCOLOR),
                                      RS(D3DRS_ALPHABLENDENABLE, TRUE)} +
                          blocks + DeviceCalls{Tss(0, D3DTSS_TEXCOORDINDEX, 0), RS(D3DRS_ALPHABLENDENABLE, FALSE)};
  for (const bool single : {true, false}) {
    SCOPED_TRACE(single);
    device.ClearLog();
    terrain->SetSinglePass(single);
    terrain->Render(camera);
    // The ground's calls; whatever the scene draws after them is not looked at.
    const DeviceCalls& expected = single ? one : two;
    ASSERT_GE(device.Calls().size(), expected.size());
    EXPECT_EQ(DeviceCalls(device.Calls().begin(), device.Calls().begin() + std::ptrdiff_t(expected.size())), expected);
  }
}

TEST_F(TerrainRender, NothingVisibleOrNothingBuiltDrawsNothingButTheSecondPassStillCleansUp) {
  player.Rotate(-89.0f, 0.0f, 0.0f);  // up into the sky
  terrain->SetSinglePass(false);
  terrain->Render(camera);
  EXPECT_EQ(device.Count("DrawIndexedPrimitive"), 0u);
  EXPECT_EQ(device.RenderState(D3DRS_ALPHABLENDENABLE), DWORD(FALSE));
  EXPECT_EQ(device.StageState(0, D3DTSS_TEXCOORDINDEX), 0u);

  terrain->ReleaseTerrain();  // drops the blocks and the device
  terrain->SetDevice(&device, true);
  device.ClearLog();
  terrain->Render(camera);
  EXPECT_EQ(device.Count("DrawIndexedPrimitive"), 0u);
}
