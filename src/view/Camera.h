// CCamera: the abstract camera (position, three axes, field of view, clip
// distances, viewport) that builds its view and projection matrices and its
// six frustum planes on demand. Also CVolumeInfo and the camera modes.
//
// Anything that moves or reshapes the camera only stores values and sets a
// dirty flag; the matrices and planes are rebuilt when somebody asks for them,
// so a frame pays for at most one rebuild however often the camera changes.
// The projection's far plane is 100 times the stored far clip distance.
#pragma once

#include <cstdint>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9math.h"

class CPlayer;

// A bounding box relative to its owner's position. Left unset by default.
struct CVolumeInfo {
  D3DXVECTOR3 m_min;
  D3DXVECTOR3 m_max;
};

// The camera modes, shared with CPlayer (0 there means "no camera yet").
enum CCameraMode : std::uint32_t {
  CAM_MODE_1ST_PERSON = 1,
  CAM_MODE_3RD_PERSON = 2,
  CAM_MODE_SPACE_CRAFT = 3,
};

class CCamera {
 public:
  CCamera();
  virtual ~CCamera();

  // ---- virtual operations, in slot order ----
  virtual void AttachToPlayer(CPlayer* player);
  virtual void DetachFromPlayer();
  virtual void SetPosition(const D3DXVECTOR3& position);
  virtual void Move(const D3DXVECTOR3& shift);
  // Degrees about pitch, yaw and roll; nothing in the base.
  virtual void Rotate(float x, float y, float z);
  // One frame's timed work (seconds, the player's lag); nothing in the base.
  virtual void Update(float timeScale, float lag);
  // Takes over position, axes, fov, clips, viewport and volume; null does nothing.
  virtual void SetCameraDetails(const CCamera* camera);
  virtual CCameraMode GetCameraMode() const = 0;

  // Stores the viewport (MinZ 0, MaxZ 1) and clip distances; a non-null device
  // also gets the viewport.
  void SetViewport(std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height,
                   float nearClip, float farClip, IDirect3DDevice9* device);
  // Degrees. Marks the projection stale but not the frustum planes.
  void SetFOV(float fov);
  void SetVolumeInfo(const CVolumeInfo& volume) { m_volume = volume; }
  const CVolumeInfo& GetVolumeInfo() const { return m_volume; }

  // Rebuilt first when stale. The view rebuild re-orthonormalises the axes.
  const D3DXMATRIX& GetViewMatrix();
  const D3DXMATRIX& GetProjMatrix();
  // SetTransform of D3DTS_VIEW / D3DTS_PROJECTION when device is not null.
  void UpdateRenderView(IDirect3DDevice9* device);
  void UpdateRenderProj(IDirect3DDevice9* device);

  // Rebuilds the six planes when stale (left, right, top, bottom, near, far;
  // normals point out of the frustum).
  void CalcFrustumPlanes();
  // True unless the world-space box lies wholly outside one plane; a corner
  // at distance exactly 0.0 counts as inside.
  bool BoundsInFrustum(const D3DXVECTOR3& min, const D3DXVECTOR3& max);

  // The screen-space water tint below the water line (kind 1 only).
  void RenderWaterOverlay(IDirect3DDevice9* device, std::int32_t kind, float level);

  float GetFOV() const { return m_fov; }
  float GetNearClip() const { return m_nearClip; }
  float GetFarClip() const { return m_farClip; }
  const D3DVIEWPORT9& GetViewport() const { return m_viewport; }
  const D3DXVECTOR3& GetPosition() const { return m_position; }
  const D3DXVECTOR3& GetLook() const { return m_look; }
  const D3DXVECTOR3& GetUp() const { return m_up; }
  const D3DXVECTOR3& GetRight() const { return m_right; }
  CPlayer* GetPlayer() const { return m_player; }

 protected:
  // The common body of the subclasses' SetCameraDetails: copies position,
  // axes, fov, clips, viewport and volume from camera (null: nothing at all),
  // levels the axes when levelAfterSpaceCraft and camera is a space craft
  // camera, and marks everything stale.
  void TakeOverDetails(const CCamera* camera, bool levelAfterSpaceCraft);

  CPlayer* m_player;
  CVolumeInfo m_volume;
  D3DXMATRIX m_viewMatrix;
  D3DXMATRIX m_projMatrix;
  D3DXPLANE m_frustumPlanes[6];
  bool m_viewDirty;
  bool m_projDirty;
  bool m_frustumDirty;
  float m_fov;
  float m_nearClip;
  float m_farClip;
  D3DVIEWPORT9 m_viewport;
  D3DXVECTOR3 m_position;
  D3DXVECTOR3 m_up;
  D3DXVECTOR3 m_look;
  D3DXVECTOR3 m_right;
};
