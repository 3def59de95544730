// The ground's triangle strip against the layer's culling, end to end: one
// block of a real terrain on the real device, seen from above with the
// default counter-clockwise culling, covers the screen; seen from below it is
// culled away. A strip wound the wrong way, or a layer that flips the winding
// across its y flip, shows up here as a black screen from above.
#include "GLFixture.h"
#include "terrain/Mesh.h"
#include "terrain/Terrain.h"
#include "unit/terrain/TerrainFixture.h"

namespace gltest {
namespace {

using TerrainBlockTest = DeviceTest;

TEST_F(TerrainBlockTest, OneBlockIsSeenFromAboveAndCulledFromBelow) {
  CTerrain terrain;
  terrain.SetDevice(device_, true);
  // One block of 36 x 36 cells on a gentle slope, all of it below the eye.
  karvo_test::MakeMap(terrain, 37, 37,
                      [](std::uint32_t col, std::uint32_t row) { return std::uint8_t(col + row); });
  ASSERT_EQ(terrain.AddBlockMeshes(1), 0);
  ASSERT_TRUE(terrain.BuildBlockMeshes());
  const CMesh* block = terrain.m_blockMeshes[0];
  const float middle = 18.0f * terrain.m_scale.x;

  D3DXMATRIX view, projection;
  D3DXMatrixPerspectiveFovLH(&projection, D3DX_PI / 4.0f, 1.0f, 10.0f, 100000.0f);
  device_->SetTransform(D3DTS_PROJECTION, &projection);
  device_->SetRenderState(D3DRS_CULLMODE,
                          D3DCULL_CCW);  // the fixture turns culling off; the game keeps it on
  device_->SetFVF(block->m_vertexFormat);
  device_->SetStreamSource(0, block->m_vertexBuffer, 0, block->m_vertexStride);
  device_->SetIndices(block->m_indexBuffer);
  const D3DXVECTOR3 at(middle, 0.0f, middle), north(0.0f, 0.0f, 1.0f);

  for (const float eyeY : {20000.0f, -20000.0f}) {
    const D3DXVECTOR3 eye(middle, eyeY, middle);
    D3DXMatrixLookAtLH(&view, &eye, &at, &north);
    device_->SetTransform(D3DTS_VIEW, &view);
    ClearAll();
    device_->DrawIndexedPrimitive(D3DPT_TRIANGLESTRIP, 0, 0, CTerrain::BLOCK_VERTICES, 0,
                                  terrain.m_blockPrimitiveCount);
    // No texture: the untextured ground shows as opaque white.
    EXPECT_TRUE(ColorNear(Pixel(32, 32), eyeY > 0.0f ? 0xFFFFFFFFu : 0xFF000000u)) << eyeY;
  }
  terrain.ReleaseTerrain();
}

}  // namespace
}  // namespace gltest
