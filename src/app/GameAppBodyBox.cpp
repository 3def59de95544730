// CGameApp body box: the player's body as seen in third person, a box 6 wide,
// 6 deep and 20 high whose eight corners take random colours. Built with each
// world, after the random source is seeded, so every build colours it anew.
// CPlayer::Render draws it through m_playerObject.
#include <cstdint>

#include "app/GameApp.h"
#include "platform/crt/crt.h"
#include "terrain/Vertex.h"

namespace {

constexpr std::uint32_t BODY_VERTEX_COUNT = 8;
constexpr std::uint32_t BODY_INDEX_COUNT = 16;

// Corners in body space; y = 0 is the foot of the box.
constexpr float kBodyCorners[BODY_VERTEX_COUNT][3] = {
    {-3.0f, 0.0f, -3.0f},  {-3.0f, 0.0f, 3.0f},  {3.0f, 0.0f, 3.0f},  {3.0f, 0.0f, -3.0f},
    {-3.0f, 20.0f, -3.0f}, {-3.0f, 20.0f, 3.0f}, {3.0f, 20.0f, 3.0f}, {3.0f, 20.0f, -3.0f},
};

// One strip of 14 triangles around the box.
constexpr std::uint16_t kBodyIndices[BODY_INDEX_COUNT] = {5, 6, 4, 7, 0, 3, 1, 2, 3, 7, 2, 6, 1, 5, 0, 4};

// Spreads one rand() result (0..0x7FFF) over the 24 colour bits, opaque.
std::uint32_t RandomCornerColour() {
  const std::uint64_t value = static_cast<std::uint64_t>(crt::rand());
  return 0xFF000000u | static_cast<std::uint32_t>(value * 0xFFFFFFu / 0x7FFFu);
}

}  // namespace

bool CGameApp::BuildBodyBox() {
  m_bodyMesh.ReleaseMesh();
  m_bodyMesh.SetVertexFormat(CVertex::FVF, sizeof(CVertex));
  if (m_bodyMesh.AddVertices(BODY_VERTEX_COUNT) < 0) return false;
  auto* vertices = reinterpret_cast<CVertex*>(m_bodyMesh.m_vertices);
  for (std::uint32_t i = 0; i < BODY_VERTEX_COUNT; ++i) {
    vertices[i] = CVertex(kBodyCorners[i][0], kBodyCorners[i][1], kBodyCorners[i][2], RandomCornerColour());
  }

  if (m_bodyMesh.AddIndices(BODY_INDEX_COUNT) < 0) return false;
  for (std::uint32_t i = 0; i < BODY_INDEX_COUNT; ++i) m_bodyMesh.m_indices[i] = kBodyIndices[i];

  const VERTEXPROCESSING_TYPE processing = m_settings.GetCurrentSettings().m_vertexProcessing;
  const bool hardwareProcessing = processing == HARDWARE_VP || processing == PURE_HARDWARE_VP;
  if (FAILED(m_bodyMesh.BuildBuffers(m_device, hardwareProcessing, true))) return false;

  m_playerObject.m_mesh = &m_bodyMesh;
  m_player.SetBodyObject(&m_playerObject);
  return true;
}
