// CTerrain block meshes: the height map cut into blocks of 36 x 36 cells, each
// one mesh holding one serpentine triangle strip.
//
// The strip runs even rows from low x to high x and odd rows back, zigzagging
// between grid rows r and r + 1. At each turn one index is repeated so that it
// stands three times in a row: the three empty triangles keep every real
// triangle clockwise seen from above, and they fix the cell split that
// GetHeight follows (even rows split from (c+1, r) to (c, r+1), odd rows from
// (c, r) to (c+1, r+1)).
#include <cstdlib>
#include <cstring>
#include <new>

#include "terrain/Mesh.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"

namespace {

// Second texture pair: the detail image repeats every 6 grid cells.
constexpr float DETAIL_REPEAT = 6.0f;

}  // namespace

std::int32_t CTerrain::AddBlockMeshes(std::uint32_t count) {
  const std::size_t total = static_cast<std::size_t>(m_blockCount) + count;
  CMesh** list = static_cast<CMesh**>(std::malloc((total == 0 ? 1 : total) * sizeof(CMesh*)));
  if (!list) return -1;
  for (std::size_t i = m_blockCount; i < total; ++i) list[i] = nullptr;
  if (m_blockMeshes) {
    std::memcpy(list, m_blockMeshes, m_blockCount * sizeof(CMesh*));
    std::free(m_blockMeshes);
  }
  m_blockMeshes = list;

  for (std::uint32_t i = 0; i < count; ++i) {
    CMesh* mesh = new (std::nothrow) CMesh();
    if (!mesh) return -1;
    m_blockMeshes[m_blockCount] = mesh;
    ++m_blockCount;
  }
  return static_cast<std::int32_t>(m_blockCount - count);
}

bool CTerrain::BuildBlockMeshes() {
  m_blockPrimitiveCount = BLOCK_INDICES - 2;  // 2697
  if (!m_heightMap || m_mapWidth == 0 || m_mapHeight == 0) return false;

  const std::uint32_t blocksAcross = (m_mapWidth - 1) / BLOCK_CELLS;
  const std::uint32_t blocksDown = (m_mapHeight - 1) / BLOCK_CELLS;
  const float tuScale = static_cast<float>(m_mapWidth - 1);
  const float tvScale = static_cast<float>(m_mapHeight - 1);

  for (std::uint32_t bz = 0; bz < blocksDown; ++bz) {
    for (std::uint32_t bx = 0; bx < blocksAcross; ++bx) {
      const std::uint32_t index = bz * blocksAcross + bx;
      if (index >= m_blockCount || !m_blockMeshes[index]) return false;
      CMesh* mesh = m_blockMeshes[index];

      mesh->SetVertexFormat(CTerrainVertex::FVF, sizeof(CTerrainVertex));
      if (mesh->AddVertices(BLOCK_VERTICES) < 0) return false;
      if (mesh->AddIndices(BLOCK_INDICES) < 0) return false;

      CTerrainVertex* vertex = reinterpret_cast<CTerrainVertex*>(mesh->m_vertices);
      for (std::uint32_t row = BLOCK_CELLS * bz; row <= BLOCK_CELLS * bz + BLOCK_CELLS; ++row) {
        for (std::uint32_t col = BLOCK_CELLS * bx; col <= BLOCK_CELLS * bx + BLOCK_CELLS; ++col) {
          const float sample = m_heightMap[row * m_mapWidth + col];
          // Texture coordinates use the grid's own column and row, so they run
          // on across blocks without a seam.
          vertex->m_x = static_cast<float>(col) * m_scale.x;
          vertex->m_y = sample * m_scale.y;
          vertex->m_z = static_cast<float>(row) * m_scale.z;
          vertex->m_tu = static_cast<float>(col) / tuScale;
          vertex->m_tv = static_cast<float>(row) / tvScale;
          vertex->m_tu2 = static_cast<float>(col) / DETAIL_REPEAT;
          vertex->m_tv2 = static_cast<float>(row) / DETAIL_REPEAT;
          ++vertex;
        }
      }

      std::uint16_t* out = mesh->m_indices;
      const std::uint32_t side = BLOCK_SIDE_VERTICES;
      for (std::uint32_t r = 0; r < BLOCK_CELLS; ++r) {
        if (r % 2 == 0) {
          for (std::uint32_t c = 0; c <= BLOCK_CELLS; ++c) {
            if (c == 0 && r > 0) *out++ = static_cast<std::uint16_t>(r * side);
            *out++ = static_cast<std::uint16_t>(r * side + c);
            *out++ = static_cast<std::uint16_t>(r * side + c + side);
          }
        } else {
          for (std::uint32_t k = 0; k <= BLOCK_CELLS; ++k) {
            const std::uint32_t c = BLOCK_CELLS - k;
            if (c == BLOCK_CELLS) *out++ = static_cast<std::uint16_t>(r * side + BLOCK_CELLS);
            *out++ = static_cast<std::uint16_t>(r * side + c);
            *out++ = static_cast<std::uint16_t>(r * side + c + side);
          }
        }
      }

      if (mesh->BuildBuffers(m_device, m_hardwareProcessing, true) < 0) return false;
    }
  }

  // The five placing steps share one random sequence, so their order counts.
  PlaceTrees();
  PlaceWeeds();
  PlaceRain();
  PlaceFigures();
  PlaceFlowers();
  m_wingAngle = 0.0f;
  m_wingDirection = 1;
  return true;
}
