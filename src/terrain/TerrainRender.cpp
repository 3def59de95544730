// CTerrain::Render: the ground, block by block, with two texture layers: the
// base image stretched over the whole map (first coordinate pair) and a
// detail image repeated every 6 cells (second pair). Either one pass on two
// texture stages, set up by the application's render states with the menu's
// colour operation, or two passes where the detail is blended over the base.
// Each block is culled against the frustum by its bounding box in each pass.
// After the ground the frame goes on into RenderScene.
#include "terrain/Terrain.h"

#include <cstdint>

#include "terrain/Mesh.h"
#include "view/Camera.h"

void CTerrain::Render(CCamera* camera) {
  if (m_device == nullptr) return;

  // One pass over the block list; a block outside the frustum is skipped.
  auto drawVisibleBlocks = [this, camera] {
    for (std::uint32_t i = 0; i < m_blockCount; ++i) {
      CMesh* block = m_blockMeshes[i];
      if (block == nullptr) continue;
      if (camera != nullptr && !camera->BoundsInFrustum(block->m_boundsMin, block->m_boundsMax)) continue;
      m_device->SetStreamSource(0, block->m_vertexBuffer, 0, block->m_vertexStride);
      m_device->SetIndices(block->m_indexBuffer);
      m_device->DrawIndexedPrimitive(D3DPT_TRIANGLESTRIP, 0, 0, BLOCK_VERTICES, 0, m_blockPrimitiveCount);
    }
  };

  m_device->SetTexture(0, m_baseTexture);
  if (m_singlePass) m_device->SetTexture(1, m_detailTexture);
  // All blocks share one vertex format.
  if (m_blockCount > 0 && m_blockMeshes[0] != nullptr) m_device->SetFVF(m_blockMeshes[0]->m_vertexFormat);

  drawVisibleBlocks();

  if (!m_singlePass) {
    // The detail over the base on the same triangles: source times
    // destination plus destination times source, twice their product. The
    // depth test passes again since equal vertices give equal depths under
    // the default less-or-equal comparison.
    m_device->SetTexture(0, m_detailTexture);
    m_device->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, 1);
    m_device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_DESTCOLOR);
    m_device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_SRCCOLOR);
    m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    drawVisibleBlocks();
    m_device->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, 0);
    m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
  }

  RenderScene(camera);
}
