// CCam3rdPerson: a chase camera. It ignores Move and Rotate, approaches the
// player's camera offset (taken in the player's frame) with a time lag, and
// keeps looking at the player.
#include "view/Cam3rdPerson.h"

#include "view/Player.h"

namespace {

// Closer than this, the camera arrives at once instead of creeping on.
constexpr float ARRIVE_DISTANCE = 0.01f;

}  // namespace

CCam3rdPerson::CCam3rdPerson(const CCamera* camera) { SetCameraDetails(camera); }

CCam3rdPerson::~CCam3rdPerson() = default;

void CCam3rdPerson::SetCameraDetails(const CCamera* camera) { TakeOverDetails(camera, true); }

void CCam3rdPerson::Move(const D3DXVECTOR3&) {}

void CCam3rdPerson::Rotate(float, float, float) {}

void CCam3rdPerson::Update(float timeScale, float lag) {
  if (!m_player) return;
  float ratio = 1.0f;
  if (lag != 0.0f) ratio = (1.0f / lag) * timeScale;

  // The player's frame: rows right, up, look.
  D3DXMATRIX mtxRotate;
  D3DXMatrixIdentity(&mtxRotate);
  const D3DXVECTOR3& right = m_player->GetRight();
  const D3DXVECTOR3& up = m_player->GetUp();
  const D3DXVECTOR3& look = m_player->GetLook();
  mtxRotate._11 = right.x;
  mtxRotate._12 = right.y;
  mtxRotate._13 = right.z;
  mtxRotate._21 = up.x;
  mtxRotate._22 = up.y;
  mtxRotate._23 = up.z;
  mtxRotate._31 = look.x;
  mtxRotate._32 = look.y;
  mtxRotate._33 = look.z;

  D3DXVECTOR3 vecOffset;
  D3DXVec3TransformCoord(&vecOffset, &m_player->GetCameraOffset(), &mtxRotate);
  const D3DXVECTOR3 vecPosition = vecOffset + m_player->GetPosition();

  D3DXVECTOR3 vecDir = vecPosition - m_position;
  const float length = D3DXVec3Length(&vecDir);
  D3DXVec3Normalize(&vecDir, &vecDir);

  float distance = length * ratio;
  if (length < distance) distance = length;  // never overshoot
  if (length < ARRIVE_DISTANCE) distance = length;

  if (distance > 0.0f) {
    m_position += vecDir * distance;
    SetLookAt(m_player->GetPosition());
    m_viewDirty = true;
    m_frustumDirty = true;
  }
}

void CCam3rdPerson::SetLookAt(const D3DXVECTOR3& target) {
  if (!m_player) return;
  D3DXMATRIX matrix;
  D3DXMatrixLookAtLH(&matrix, &m_position, &target, &m_player->GetUp());
  m_right = D3DXVECTOR3(matrix._11, matrix._21, matrix._31);
  m_up = D3DXVECTOR3(matrix._12, matrix._22, matrix._32);
  m_look = D3DXVECTOR3(matrix._13, matrix._23, matrix._33);
  m_viewDirty = true;
  m_frustumDirty = true;
}
