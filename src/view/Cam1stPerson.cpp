// CCam1stPerson: pitch about the camera's own right axis, yaw about the
// player's up, roll about the player's look with the position swung round
// the player. No limits here: the player trims pitch and roll first.
#include "view/Cam1stPerson.h"

#include "view/FloatMath.h"
#include "view/Player.h"

CCam1stPerson::CCam1stPerson(const CCamera* camera) { SetCameraDetails(camera); }

CCam1stPerson::~CCam1stPerson() = default;

void CCam1stPerson::SetCameraDetails(const CCamera* camera) { TakeOverDetails(camera, true); }

void CCam1stPerson::Rotate(float x, float y, float z) {
  if (!m_player) return;
  D3DXMATRIX mtxRotate;
  if (x != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_right, x * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
    D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
  }
  if (y != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_player->GetUp(), y * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
    D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
  }
  if (z != 0.0f) {
    D3DXMatrixRotationAxis(&mtxRotate, &m_player->GetLook(), z * DEGREES_TO_RADIANS);
    D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
    D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    // Rolling tilts the head about the body's look axis, so the eye swings
    // round the body's centre rather than turning on the spot.
    m_position -= m_player->GetPosition();
    D3DXVec3TransformCoord(&m_position, &m_position, &mtxRotate);
    m_position += m_player->GetPosition();
  }
  m_viewDirty = true;
  m_frustumDirty = true;
}
