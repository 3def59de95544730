// CGameApp sky box: a textured cube of side 20 that stands around the camera,
// built with the world and drawn first in every scene with depth writes off,
// so that everything drawn after it lies in front of it whatever its distance.
// It moves with the camera and never turns with it.
//
// The faces' vertex order makes their front sides look into the cube, so the
// cube survives the base state's counter-clockwise culling.
#include <cstdint>

#include "app/GameApp.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"

namespace {

constexpr std::uint32_t SKY_VERTEX_COUNT = 24;
constexpr std::uint32_t SKY_INDEX_COUNT = 24;
constexpr int SKY_FACE_COUNT = 6;

// The cube's eye point sits this far below its centre.
constexpr float SKY_EYE_LIFT = 1.3f;

// Face images, in the order of the faces of the mesh.
const char* const kSkyFiles[SKY_FACE_COUNT] = {
    "Data\\SkyBox_Front.jpg", "Data\\SkyBox_Back.jpg", "Data\\SkyBox_Left.jpg",
    "Data\\SkyBox_Right.jpg", "Data\\SkyBox_Top.jpg",  "Data\\SkyBox_Bottom.jpg",
};

// Four corners a face, each (x, y, z, tu, tv); the second texture pair is
// never read while the sky is drawn.
const CTerrainVertex kSkyVertices[SKY_VERTEX_COUNT] = {
    // Front
    {-10, 10, 10, 0, 0}, {10, 10, 10, 1, 0}, {10, -10, 10, 1, 1}, {-10, -10, 10, 0, 1},
    // Back
    {10, 10, -10, 0, 0}, {-10, 10, -10, 1, 0}, {-10, -10, -10, 1, 1}, {10, -10, -10, 0, 1},
    // Left
    {-10, 10, -10, 0, 0}, {-10, 10, 10, 1, 0}, {-10, -10, 10, 1, 1}, {-10, -10, -10, 0, 1},
    // Right
    {10, 10, 10, 0, 0}, {10, 10, -10, 1, 0}, {10, -10, -10, 1, 1}, {10, -10, 10, 0, 1},
    // Top
    {-10, 10, -10, 0, 0}, {10, 10, -10, 1, 0}, {10, 10, 10, 1, 1}, {-10, 10, 10, 0, 1},
    // Bottom
    {-10, -10, 10, 0, 0}, {10, -10, 10, 1, 0}, {10, -10, -10, 1, 1}, {-10, -10, -10, 0, 1},
};

bool IsHardwareProcessing(const CD3DSettings& settings) {
  const VERTEXPROCESSING_TYPE type = settings.GetCurrentSettings().m_vertexProcessing;
  return type == HARDWARE_VP || type == PURE_HARDWARE_VP;
}

}  // namespace

bool CGameApp::BuildSkyBox() {
  m_skyMesh.ReleaseMesh();
  m_skyMesh.SetVertexFormat(CTerrainVertex::FVF, sizeof(CTerrainVertex));
  if (m_skyMesh.AddVertices(SKY_VERTEX_COUNT) < 0) return false;
  auto* vertices = reinterpret_cast<CTerrainVertex*>(m_skyMesh.m_vertices);
  for (std::uint32_t i = 0; i < SKY_VERTEX_COUNT; ++i) vertices[i] = kSkyVertices[i];

  if (m_skyMesh.AddIndices(SKY_INDEX_COUNT) < 0) return false;
  // Each face is one strip of two triangles: corners 0, 1, 3, 2.
  for (std::uint16_t face = 0; face < SKY_FACE_COUNT; ++face) {
    std::uint16_t* strip = m_skyMesh.m_indices + face * 4;
    strip[0] = static_cast<std::uint16_t>(face * 4);
    strip[1] = static_cast<std::uint16_t>(face * 4 + 1);
    strip[2] = static_cast<std::uint16_t>(face * 4 + 3);
    strip[3] = static_cast<std::uint16_t>(face * 4 + 2);
  }

  if (FAILED(m_skyMesh.BuildBuffers(m_device, IsHardwareProcessing(m_settings), true))) return false;

  // All six are tried whatever happens; what loaded stays until the next
  // ReleaseWorld, which also takes the ones of a failed build.
  HRESULT combined = S_OK;
  for (int face = 0; face < SKY_FACE_COUNT; ++face) {
    combined |= D3DXCreateTextureFromFileA(m_device, kSkyFiles[face], &m_skyTextures[face]);
  }
  return SUCCEEDED(combined);
}

void CGameApp::RenderSkyBox() {
  if (m_camera == nullptr || m_device == nullptr) return;

  // A pure translation to the camera (not the player): the cube follows the
  // eye, also the third person camera, and never turns with it.
  const D3DXVECTOR3& camPos = m_camera->GetPosition();
  D3DXMATRIX mtxWorld;
  D3DXMatrixTranslation(&mtxWorld, camPos.x, camPos.y + SKY_EYE_LIFT, camPos.z);
  m_device->SetTransform(D3DTS_WORLD, &mtxWorld);

  // The depth test stays on; without depth writes all later drawing covers it.
  m_device->SetRenderState(D3DRS_LIGHTING, FALSE);
  m_device->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);
  // Clamping keeps the faces' edges from sampling the opposite border.
  m_device->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
  m_device->SetSamplerState(0, D3DSAMP_ADDRESSV, D3DTADDRESS_CLAMP);
  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_DISABLE);

  m_device->SetFVF(m_skyMesh.m_vertexFormat);
  m_device->SetIndices(m_skyMesh.m_indexBuffer);
  m_device->SetStreamSource(0, m_skyMesh.m_vertexBuffer, 0, m_skyMesh.m_vertexStride);
  for (int face = 0; face < SKY_FACE_COUNT; ++face) {
    m_device->SetTexture(0, m_skyTextures[face]);
    m_device->DrawIndexedPrimitive(D3DPT_TRIANGLESTRIP, 0, 0, SKY_VERTEX_COUNT, static_cast<UINT>(face * 4), 2);
  }

  // Back to the base state that the terrain expects.
  m_device->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_WRAP);
  m_device->SetSamplerState(0, D3DSAMP_ADDRESSV, D3DTADDRESS_WRAP);
  m_device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
  m_device->SetTransform(D3DTS_WORLD, &m_worldMatrix);
  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, m_colorOp);
}
