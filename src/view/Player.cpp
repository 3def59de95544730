// CPlayer: walking, turning, the physics step, camera modes and callbacks.
// The drawing of the body box lives with the drawing code (PlayerRender.cpp).
#include "view/Player.h"

#include <new>

#include "platform/win32/windows.h"
#include "view/Cam1stPerson.h"
#include "view/Cam3rdPerson.h"
#include "view/CamSpaceCraft.h"
#include "view/FloatMath.h"

namespace {

// Walking obstacles, in world units. A step whose target lies outside the
// map limits loses that axis; one into a tower footprint or the big tree's
// circle is refused whole.
constexpr float MAP_MIN = 1000.0f;
constexpr float MAP_MAX = 15000.0f;
constexpr float TOWER_Z_MIN = 2998.0f;
constexpr float TOWER_Z_MAX = 5002.0f;
constexpr float TOWER1_X_MIN = 1998.0f;
constexpr float TOWER1_X_MAX = 4002.0f;
constexpr float TOWER2_X_MIN = 5998.0f;
constexpr float TOWER2_X_MAX = 8002.0f;
constexpr float TREE_X = 1500.0f;
constexpr float TREE_Z = 7000.0f;
constexpr float TREE_RADIUS = 130.0f;

// A step is a tenth of the distance given (500 x frame time): 50 units/s.
constexpr float STEP_FACTOR = 0.1f;
// S lifts the body by this much a step while it is below LIFT_CEILING.
constexpr BYTE VK_S = 0x53;
constexpr float LIFT_STEP = 2.5f;
constexpr float LIFT_CEILING = 872.0f;
constexpr BYTE KEY_HELD = 0xF0;

constexpr float PITCH_LIMIT = 89.0f;
constexpr float ROLL_LIMIT = 20.0f;
constexpr float FULL_TURN = 360.0f;

// Repairs an axis set after turns, with look leading.
void Orthonormalise(D3DXVECTOR3& look, D3DXVECTOR3& right, D3DXVECTOR3& up) {
  D3DXVec3Normalize(&look, &look);
  D3DXVec3Cross(&right, &up, &look);
  D3DXVec3Normalize(&right, &right);
  D3DXVec3Cross(&up, &look, &right);
  D3DXVec3Normalize(&up, &up);
}

}  // namespace

CPlayer::CPlayer()
    : m_camera(nullptr),
      m_bodyObject(nullptr),
      m_volume{D3DXVECTOR3(0.0f, 0.0f, 0.0f), D3DXVECTOR3(0.0f, 0.0f, 0.0f)},
      m_cameraMode(static_cast<CCameraMode>(0)),
      m_position(0.0f, 0.0f, 0.0f),
      m_up(0.0f, 1.0f, 0.0f),
      m_right(1.0f, 0.0f, 0.0f),
      m_look(0.0f, 0.0f, 1.0f),
      m_cameraOffset(0.0f, 0.0f, 0.0f),
      m_pitch(0.0f),
      m_roll(0.0f),
      m_yaw(0.0f),
      m_velocity(0.0f, 0.0f, 0.0f),
      m_gravity(0.0f, 0.0f, 0.0f),
      m_maxVelocityXZ(125.0f),
      m_maxVelocityY(125.0f),
      m_friction(250.0f),
      m_cameraLag(0.0f),
      m_playerCallbacks(),
      m_cameraCallbacks(),
      m_playerCallbackCount(0),
      m_cameraCallbackCount(0) {}

CPlayer::~CPlayer() {
  delete m_camera;
  m_camera = nullptr;
  m_bodyObject = nullptr;
}

void CPlayer::SetPosition(const D3DXVECTOR3& position) { Move(position - m_position, false); }

void CPlayer::SetCameraOffset(const D3DXVECTOR3& offset) {
  m_cameraOffset = offset;
  if (m_camera) m_camera->SetPosition(m_position + offset);
}

void CPlayer::Move(const D3DXVECTOR3& shift, bool velocity) {
  if (velocity) {
    m_velocity += shift;
    return;
  }
  m_position += shift;
  if (m_camera) m_camera->Move(shift);
}

void CPlayer::MoveByFlags(std::uint32_t direction, float distance) {
  D3DXVECTOR3 vecShift(0.0f, 0.0f, 0.0f);
  if (direction == MOVE_FORWARD) vecShift += (m_look * distance) * STEP_FACTOR;
  if (direction == MOVE_BACKWARD) vecShift -= (m_look * distance) * STEP_FACTOR;
  if (direction == MOVE_RIGHT) vecShift += (m_right * distance) * STEP_FACTOR;
  if (direction == MOVE_LEFT) vecShift -= (m_right * distance) * STEP_FACTOR;

  // All tests look at the same target point, even after one has cut the shift.
  const D3DXVECTOR3 vecShiftTest = m_position + vecShift;
  if (vecShiftTest.x < MAP_MIN || vecShiftTest.x > MAP_MAX) vecShift.x = 0.0f;
  if (vecShiftTest.z < MAP_MIN || vecShiftTest.z > MAP_MAX) vecShift.z = 0.0f;
  const bool inTowerRow = TOWER_Z_MIN < vecShiftTest.z && vecShiftTest.z < TOWER_Z_MAX;
  if (inTowerRow && TOWER1_X_MIN < vecShiftTest.x && vecShiftTest.x < TOWER1_X_MAX) {
    vecShift = D3DXVECTOR3(0.0f, 0.0f, 0.0f);
  }
  if (inTowerRow && TOWER2_X_MIN < vecShiftTest.x && vecShiftTest.x < TOWER2_X_MAX) {
    vecShift = D3DXVECTOR3(0.0f, 0.0f, 0.0f);
  }
  const float dx = vecShiftTest.x - TREE_X;
  const float dz = vecShiftTest.z - TREE_Z;
  if (FloatSqrt(dx * dx + dz * dz) < TREE_RADIUS) vecShift = D3DXVECTOR3(0.0f, 0.0f, 0.0f);

  BYTE keys[256];
  if (!GetKeyboardState(keys)) return;

  bool lifted = false;
  if ((keys[VK_S] & KEY_HELD) && vecShiftTest.y < LIFT_CEILING) {
    vecShift.y = LIFT_STEP;
    lifted = true;
  }
  if (direction != 0 || lifted) Move(vecShift, false);
}

void CPlayer::Rotate(float x, float y, float z) {
  if (!m_camera) return;
  D3DXMATRIX mtxRotate;

  if (m_cameraMode == CAM_MODE_SPACE_CRAFT) {
    // The camera turns first, about the axes as they were; then the body,
    // each turn about the axis as the previous one left it.
    m_camera->Rotate(x, y, z);
    if (x != 0.0f) {
      D3DXMatrixRotationAxis(&mtxRotate, &m_right, x * DEGREES_TO_RADIANS);
      D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
      D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
    }
    if (y != 0.0f) {
      D3DXMatrixRotationAxis(&mtxRotate, &m_up, y * DEGREES_TO_RADIANS);
      D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
      D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    }
    if (z != 0.0f) {
      D3DXMatrixRotationAxis(&mtxRotate, &m_look, z * DEGREES_TO_RADIANS);
      D3DXVec3TransformNormal(&m_up, &m_up, &mtxRotate);
      D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    }
  } else {
    // Walking modes: pitch and roll are held within limits (the camera gets
    // only the part that fits) and never reach the body, which stays upright.
    if (x != 0.0f) {
      m_pitch += x;
      if (m_pitch > PITCH_LIMIT) {
        x -= m_pitch - PITCH_LIMIT;
        m_pitch = PITCH_LIMIT;
      }
      if (m_pitch < -PITCH_LIMIT) {
        x -= m_pitch + PITCH_LIMIT;
        m_pitch = -PITCH_LIMIT;
      }
    }
    if (y != 0.0f) {
      m_yaw += y;
      if (m_yaw > FULL_TURN) m_yaw -= FULL_TURN;
      if (m_yaw < 0.0f) m_yaw += FULL_TURN;
    }
    if (z != 0.0f) {
      m_roll += z;
      if (m_roll > ROLL_LIMIT) {
        z -= m_roll - ROLL_LIMIT;
        m_roll = ROLL_LIMIT;
      }
      if (m_roll < -ROLL_LIMIT) {
        z -= m_roll + ROLL_LIMIT;
        m_roll = -ROLL_LIMIT;
      }
    }
    m_camera->Rotate(x, y, z);
    if (y != 0.0f) {
      D3DXMatrixRotationAxis(&mtxRotate, &m_up, y * DEGREES_TO_RADIANS);
      D3DXVec3TransformNormal(&m_look, &m_look, &mtxRotate);
      D3DXVec3TransformNormal(&m_right, &m_right, &mtxRotate);
    }
  }
  Orthonormalise(m_look, m_right, m_up);
}

void CPlayer::Update(float timeScale) {
  m_velocity += m_gravity * timeScale;

  float length = FloatSqrt(m_velocity.x * m_velocity.x + m_velocity.z * m_velocity.z);
  if (m_maxVelocityXZ < length) {
    m_velocity.x *= m_maxVelocityXZ / length;
    m_velocity.z *= m_maxVelocityXZ / length;
  }
  length = FloatSqrt(m_velocity.y * m_velocity.y);
  if (m_maxVelocityY < length) m_velocity.y *= m_maxVelocityY / length;

  Move(m_velocity * timeScale, false);

  for (std::uint16_t i = 0; i < m_playerCallbackCount; ++i) {
    const CCallbackEntry& entry = m_playerCallbacks[i];
    reinterpret_cast<PlayerCallback>(entry.m_function)(entry.m_context, this, timeScale);
  }
  if (m_camera) m_camera->Update(timeScale, m_cameraLag);
  for (std::uint16_t i = 0; i < m_cameraCallbackCount; ++i) {
    const CCallbackEntry& entry = m_cameraCallbacks[i];
    reinterpret_cast<CameraCallback>(entry.m_function)(entry.m_context, m_camera, timeScale);
  }

  // Friction last, so that it shapes the next frame's motion. It may bring
  // the body to rest but never push it backwards.
  D3DXVECTOR3 vecDec = -m_velocity;
  D3DXVec3Normalize(&vecDec, &vecDec);
  length = D3DXVec3Length(&m_velocity);
  float amount = m_friction * timeScale;
  if (length < amount) amount = length;
  m_velocity += vecDec * amount;
}

bool CPlayer::SetCameraMode(CCameraMode mode) {
  if (m_camera && m_cameraMode == mode) return true;

  CCamera* camera = nullptr;
  switch (mode) {
    case CAM_MODE_1ST_PERSON:
      camera = new (std::nothrow) CCam1stPerson(m_camera);
      break;
    case CAM_MODE_3RD_PERSON:
      camera = new (std::nothrow) CCam3rdPerson(m_camera);
      break;
    case CAM_MODE_SPACE_CRAFT:
      camera = new (std::nothrow) CCamSpaceCraft(m_camera);
      break;
    default:
      return false;
  }
  if (!camera) return false;

  if (m_cameraMode == CAM_MODE_SPACE_CRAFT) {
    // Back on foot: stand upright, keeping the heading of the ship's look.
    m_up = D3DXVECTOR3(0.0f, 1.0f, 0.0f);
    m_right.y = 0.0f;
    m_look.y = 0.0f;
    D3DXVec3Normalize(&m_right, &m_right);
    D3DXVec3Normalize(&m_look, &m_look);
    m_pitch = 0.0f;
    m_roll = 0.0f;
    const D3DXVECTOR3 forward(0.0f, 0.0f, 1.0f);
    m_yaw = FloatAcos(D3DXVec3Dot(&forward, &m_look)) * RADIANS_TO_DEGREES;
    if (m_look.x < 0.0f) m_yaw = -m_yaw;
  } else if (m_camera && mode == CAM_MODE_SPACE_CRAFT) {
    // The ship takes the view's axes, tilt included.
    m_right = m_camera->GetRight();
    m_look = m_camera->GetLook();
    m_up = m_camera->GetUp();
  }

  m_cameraMode = mode;
  camera->AttachToPlayer(this);
  delete m_camera;
  m_camera = camera;
  return true;
}

void CPlayer::AddPlayerCallback(PlayerCallback function, void* context) {
  if (m_playerCallbackCount >= MAX_CALLBACKS) return;  // full: the entry is dropped
  m_playerCallbacks[m_playerCallbackCount++] = {reinterpret_cast<void (*)()>(function), context};
}

void CPlayer::AddCameraCallback(CameraCallback function, void* context) {
  if (m_cameraCallbackCount >= MAX_CALLBACKS) return;  // full: the entry is dropped
  m_cameraCallbacks[m_cameraCallbackCount++] = {reinterpret_cast<void (*)()>(function), context};
}

namespace {

// Takes out the first entry equal in both fields, closing the gap in order.
void RemoveEntry(CCallbackEntry* entries, std::uint16_t& count, void (*function)(), void* context) {
  for (std::uint16_t i = 0; i < count; ++i) {
    if (entries[i].m_function == function && entries[i].m_context == context) {
      for (std::uint16_t j = i; j + 1 < count; ++j) entries[j] = entries[j + 1];
      --count;
      return;
    }
  }
}

}  // namespace

void CPlayer::RemovePlayerCallback(PlayerCallback function, void* context) {
  RemoveEntry(m_playerCallbacks, m_playerCallbackCount, reinterpret_cast<void (*)()>(function), context);
}

void CPlayer::RemoveCameraCallback(CameraCallback function, void* context) {
  RemoveEntry(m_cameraCallbacks, m_cameraCallbackCount, reinterpret_cast<void (*)()>(function), context);
}
