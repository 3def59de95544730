// CCamSpaceCraft: every turn is about one of the player's axes (as they are
// before the player turns itself), and the camera's position swings round the
// player each time, so that camera and body turn as one rigid ship.
#include "view/CamSpaceCraft.h"

#include "view/FloatMath.h"
#include "view/Player.h"

CCamSpaceCraft::CCamSpaceCraft(const CCamera* camera) { SetCameraDetails(camera); }

CCamSpaceCraft::~CCamSpaceCraft() = default;

// A ship keeps whatever tilt it takes over.
void CCamSpaceCraft::SetCameraDetails(const CCamera* camera) { TakeOverDetails(camera, false); }

void CCamSpaceCraft::Rotate(float x, float y, float z) {
  if (!m_player) return;
  const D3DXVECTOR3 centre = m_player->GetPosition();
  D3DXMATRIX mtxRotate;
  auto orbit = [&]() {
    m_position -= centre;
    D3DXVec3TransformCoord(&m_position, &m_position, &mtxRotate);
    m_position += centre;
  };
  if (x != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_player->GetRight(), x * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
    D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    orbit();
  }
  if (y != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_player->GetUp(), y * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
    D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    orbit();
  }
  if (z != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_player->GetLook(), z * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    orbit();
  }
  m_viewDirty = true;
  m_frustumDirty = true;
}
