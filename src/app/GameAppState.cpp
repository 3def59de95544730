// CGameApp::ResetGameState: the walker's start state and tuning, set once
// per process after the world is built. The camera exists only after the
// mode is set, so the camera values come after that; the callbacks stand
// before the first SetPosition so the ground holds the body from frame one.
#include "app/GameApp.h"
#include "terrain/Terrain.h"
#include "view/Camera.h"

namespace {

constexpr float START_FRICTION = 250.0f;
constexpr float START_GRAVITY = -500.0f;
constexpr float START_MAX_VELOCITY_XZ = 125.0f;
constexpr float START_MAX_VELOCITY_Y = 400.0f;
constexpr float EYE_HEIGHT = 10.0f;  // camera above the body's position
constexpr float VIEW_ANGLE = 80.0f;
constexpr float NEAR_CLIP = 1.01f;
constexpr float FAR_CLIP = 5000.0f;
// The walk begins high over the land's first corner; the first frame lets the
// body fall onto the ground.
constexpr float START_X = 1500.0f;
constexpr float START_Y = 400.0f;
constexpr float START_Z = 1500.0f;
constexpr float START_PITCH = 25.0f;
constexpr float START_YAW = 45.0f;

}  // namespace

void CGameApp::ResetGameState() {
  D3DXMatrixIdentity(&m_worldMatrix);
  m_active = true;
  m_player.SetCameraMode(CAM_MODE_1ST_PERSON);
  m_camera = m_player.GetCamera();
  if (!m_camera) return;  // no memory for a camera: nothing to set up

  m_player.SetFriction(START_FRICTION);
  m_player.SetGravity(D3DXVECTOR3(0.0f, START_GRAVITY, 0.0f));
  m_player.SetMaxVelocityXZ(START_MAX_VELOCITY_XZ);
  m_player.SetMaxVelocityY(START_MAX_VELOCITY_Y);
  m_player.SetCameraOffset(D3DXVECTOR3(0.0f, EYE_HEIGHT, 0.0f));
  m_player.SetCameraLag(0.0f);

  CVolumeInfo volume;
  volume.m_min = D3DXVECTOR3(-3.0f, -2.0f, -3.0f);
  volume.m_max = D3DXVECTOR3(3.0f, 10.0f, 3.0f);
  m_player.SetVolumeInfo(volume);

  m_camera->SetFOV(VIEW_ANGLE);
  m_camera->SetViewport(m_viewX, m_viewY, m_viewWidth, m_viewHeight, NEAR_CLIP, FAR_CLIP, nullptr);
  m_camera->SetVolumeInfo(volume);

  m_player.AddPlayerCallback(CTerrain::UpdatePlayer, &m_terrain);
  m_player.AddCameraCallback(CTerrain::UpdateCamera, &m_terrain);

  m_player.SetPosition(D3DXVECTOR3(START_X, START_Y, START_Z));
  m_player.Rotate(START_PITCH, START_YAW, 0.0f);
}
