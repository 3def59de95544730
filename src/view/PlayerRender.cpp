// CPlayer::Render: the body box, seen only from the third person camera. The
// first person and space craft cameras sit inside the body, so there it is
// not drawn and the device is not touched at all.
#include "terrain/Mesh.h"
#include "terrain/WorldObject.h"
#include "view/Player.h"

namespace {

// The box's foot stands this far below the player's position, which is the
// height of the eye above the ground.
constexpr float BODY_FOOT_DROP = 10.0f;

// The box's strip is fixed: 8 corners, 14 triangles.
constexpr UINT BODY_VERTEX_COUNT = 8;
constexpr UINT BODY_PRIMITIVE_COUNT = 14;

}  // namespace

void CPlayer::Render(IDirect3DDevice9* device) {
  if (device == nullptr || m_bodyObject == nullptr) return;
  if (m_camera != nullptr && m_cameraMode != CAM_MODE_3RD_PERSON) return;
  const CMesh* mesh = m_bodyObject->m_mesh;
  if (mesh == nullptr) return;

  // The player's frame as the box's world matrix; the fourth column keeps
  // what the object's identity start gave it.
  D3DXMATRIX& world = m_bodyObject->m_worldMatrix;
  world._11 = m_right.x;
  world._12 = m_right.y;
  world._13 = m_right.z;
  world._21 = m_up.x;
  world._22 = m_up.y;
  world._23 = m_up.z;
  world._31 = m_look.x;
  world._32 = m_look.y;
  world._33 = m_look.z;
  world._41 = m_position.x;
  world._42 = m_position.y - BODY_FOOT_DROP;
  world._43 = m_position.z;
  device->SetTransform(D3DTS_WORLD, &world);

  device->SetFVF(mesh->m_vertexFormat);
  device->SetStreamSource(0, mesh->m_vertexBuffer, 0, mesh->m_vertexStride);
  device->SetIndices(mesh->m_indexBuffer);
  // Without textures the stages pass the corners' colours through.
  device->SetTexture(0, nullptr);
  device->SetTexture(1, nullptr);
  device->DrawIndexedPrimitive(D3DPT_TRIANGLESTRIP, 0, 0, BODY_VERTEX_COUNT, 0, BODY_PRIMITIVE_COUNT);
}
