// CPlayer: the body the user steers. It holds a position, three axes and a
// velocity; each frame it applies gravity, speed limits and friction, moves,
// and lets the rest of the system correct the result through callbacks (the
// terrain keeps it on the ground that way). It owns the current camera and
// knows the fixed obstacles of walking: the map limits, the two skyscraper
// footprints and the big tree.
//
// Before the first Update or Move(…, false) SetCameraMode must have succeeded:
// those two use the camera without a test.
#pragma once

#include <cstdint>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9math.h"
#include "view/Camera.h"

class CWorldObject;

// Direction values of MoveByFlags; compared for equality, so a sum of two
// matches none of them.
enum : std::uint32_t {
  MOVE_FORWARD = 1,
  MOVE_BACKWARD = 2,
  MOVE_LEFT = 4,
  MOVE_RIGHT = 8,
};

using PlayerCallback = void (*)(void* context, CPlayer* player, float timeScale);
using CameraCallback = void (*)(void* context, CCamera* camera, float timeScale);

// A callback and the untyped context given back to it on each call. m_function
// holds a PlayerCallback or a CameraCallback, by the list it stands in.
struct CCallbackEntry {
  void (*m_function)();
  void* m_context;
};

class CPlayer {
 public:
  static constexpr std::uint16_t MAX_CALLBACKS = 255;

  CPlayer();
  virtual ~CPlayer();

  // ---- plain setters and getters ----
  void SetFriction(float friction) { m_friction = friction; }
  void SetGravity(const D3DXVECTOR3& gravity) { m_gravity = gravity; }
  void SetMaxVelocityXZ(float limit) { m_maxVelocityXZ = limit; }
  void SetMaxVelocityY(float limit) { m_maxVelocityY = limit; }
  void SetCameraLag(float lag) { m_cameraLag = lag; }
  void SetVelocity(const D3DXVECTOR3& velocity) { m_velocity = velocity; }
  void SetVolumeInfo(const CVolumeInfo& volume) { m_volume = volume; }
  void SetBodyObject(CWorldObject* object) { m_bodyObject = object; }

  CCamera* GetCamera() const { return m_camera; }
  CWorldObject* GetBodyObject() const { return m_bodyObject; }
  CCameraMode GetCameraMode() const { return m_cameraMode; }
  const D3DXVECTOR3& GetPosition() const { return m_position; }
  const D3DXVECTOR3& GetUp() const { return m_up; }
  const D3DXVECTOR3& GetRight() const { return m_right; }
  const D3DXVECTOR3& GetLook() const { return m_look; }
  const D3DXVECTOR3& GetCameraOffset() const { return m_cameraOffset; }
  const D3DXVECTOR3& GetVelocity() const { return m_velocity; }
  const D3DXVECTOR3& GetGravity() const { return m_gravity; }
  const CVolumeInfo& GetVolumeInfo() const { return m_volume; }
  float GetFriction() const { return m_friction; }
  float GetMaxVelocityXZ() const { return m_maxVelocityXZ; }
  float GetMaxVelocityY() const { return m_maxVelocityY; }
  float GetCameraLag() const { return m_cameraLag; }
  float GetPitch() const { return m_pitch; }
  float GetYaw() const { return m_yaw; }
  float GetRoll() const { return m_roll; }

  // ---- operations ----
  // Moves the body (and the camera with it) to position.
  void SetPosition(const D3DXVECTOR3& position);
  // Stores the offset; an existing camera goes to position + offset (unturned).
  void SetCameraOffset(const D3DXVECTOR3& offset);
  // velocity true: adds shift to the velocity only; false: shifts the body and
  // the camera.
  void Move(const D3DXVECTOR3& shift, bool velocity);
  // The walking step: a tenth of distance along look or right by the exact
  // direction value, refused by the map limits, the towers and the big tree;
  // S lifts in the water.
  void MoveByFlags(std::uint32_t direction, float distance);
  // Degrees. Pitch is held to -89..89 and roll to -20..20 except in space craft.
  void Rotate(float x, float y, float z);
  // The physics step of one frame (seconds).
  void Update(float timeScale);
  // Creates the camera of mode, taking over from the old one. False for an
  // unknown mode, with nothing changed.
  bool SetCameraMode(CCameraMode mode);

  // Callback lists, called in the order of adding; 255 slots each, which the
  // caller must not exceed. Remove takes out the first equal entry.
  void AddPlayerCallback(PlayerCallback function, void* context);
  void AddCameraCallback(CameraCallback function, void* context);
  void RemovePlayerCallback(PlayerCallback function, void* context);
  void RemoveCameraCallback(CameraCallback function, void* context);

  // Draws the body box in third person (defined with the drawing code).
  void Render(IDirect3DDevice9* device);

 private:
  CCamera* m_camera;
  CWorldObject* m_bodyObject;
  CVolumeInfo m_volume;
  CCameraMode m_cameraMode;
  D3DXVECTOR3 m_position;
  D3DXVECTOR3 m_up;
  D3DXVECTOR3 m_right;
  D3DXVECTOR3 m_look;
  D3DXVECTOR3 m_cameraOffset;
  float m_pitch;
  float m_roll;
  float m_yaw;
  D3DXVECTOR3 m_velocity;
  D3DXVECTOR3 m_gravity;
  float m_maxVelocityXZ;
  float m_maxVelocityY;
  float m_friction;
  float m_cameraLag;
  CCallbackEntry m_playerCallbacks[MAX_CALLBACKS];
  CCallbackEntry m_cameraCallbacks[MAX_CALLBACKS];
  std::uint16_t m_playerCallbackCount;
  std::uint16_t m_cameraCallbackCount;
};
