// CCamera: stored state, the lazy view and projection rebuilds, and the
// frustum planes with the box test.
#include "view/Camera.h"

#include "view/FloatMath.h"

namespace {

// The projection reaches a hundred times further than the stored far clip,
// so that the sky box and distant objects are never cut by the far plane.
constexpr float FAR_PLANE_FACTOR = 100.0f;

}  // namespace

CCamera::CCamera()
    : m_player(nullptr),
      m_viewDirty(true),
      m_projDirty(true),
      m_frustumDirty(true),
      m_fov(60.0f),
      m_nearClip(1.0f),
      m_farClip(100.0f),
      m_viewport{0, 0, 640, 480, 0.0f, 1.0f},
      m_position(0.0f, 0.0f, 0.0f),
      m_up(0.0f, 1.0f, 0.0f),
      m_look(0.0f, 0.0f, 1.0f),
      m_right(1.0f, 0.0f, 0.0f) {
  D3DXMatrixIdentity(&m_viewMatrix);
  D3DXMatrixIdentity(&m_projMatrix);
}

CCamera::~CCamera() = default;

void CCamera::AttachToPlayer(CPlayer* player) { m_player = player; }

void CCamera::DetachFromPlayer() { m_player = nullptr; }

void CCamera::SetPosition(const D3DXVECTOR3& position) {
  m_position = position;
  m_viewDirty = true;
  m_frustumDirty = true;
}

void CCamera::Move(const D3DXVECTOR3& shift) {
  m_position += shift;
  m_viewDirty = true;
  m_frustumDirty = true;
}

void CCamera::Rotate(float, float, float) {}

void CCamera::Update(float, float) {}

void CCamera::SetCameraDetails(const CCamera*) {}

void CCamera::TakeOverDetails(const CCamera* camera, bool levelAfterSpaceCraft) {
  if (!camera) return;
  m_position = camera->GetPosition();
  m_right = camera->GetRight();
  m_look = camera->GetLook();
  m_up = camera->GetUp();
  m_fov = camera->GetFOV();
  m_nearClip = camera->GetNearClip();
  m_farClip = camera->GetFarClip();
  m_viewport = camera->GetViewport();
  m_volume = camera->GetVolumeInfo();
  if (levelAfterSpaceCraft && camera->GetCameraMode() == CAM_MODE_SPACE_CRAFT) {
    // A ship may be left tilted; a walker's camera starts level again.
    m_up = D3DXVECTOR3(0.0f, 1.0f, 0.0f);
    m_right.y = 0.0f;
    m_look.y = 0.0f;
    D3DXVec3Normalize(&m_right, &m_right);
    D3DXVec3Normalize(&m_look, &m_look);
  }
  m_viewDirty = true;
  m_projDirty = true;
  m_frustumDirty = true;
}

void CCamera::SetViewport(std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height,
                          float nearClip, float farClip, IDirect3DDevice9* device) {
  m_viewport.X = left;
  m_viewport.Y = top;
  m_viewport.Width = width;
  m_viewport.Height = height;
  m_viewport.MinZ = 0.0f;
  m_viewport.MaxZ = 1.0f;
  m_nearClip = nearClip;
  m_farClip = farClip;
  m_projDirty = true;
  m_frustumDirty = true;
  if (device) device->SetViewport(&m_viewport);
}

void CCamera::SetFOV(float fov) {
  m_fov = fov;
  m_projDirty = true;
}

const D3DXMATRIX& CCamera::GetViewMatrix() {
  if (m_viewDirty) {
    // Look leads: it keeps its direction and right and up are derived from it,
    // which also repairs any drift the turns have left in the axes.
    D3DXVec3Normalize(&m_look, &m_look);
    D3DXVec3Cross(&m_right, &m_up, &m_look);
    D3DXVec3Normalize(&m_right, &m_right);
    D3DXVec3Cross(&m_up, &m_look, &m_right);
    D3DXVec3Normalize(&m_up, &m_up);

    m_viewMatrix._11 = m_right.x;
    m_viewMatrix._21 = m_right.y;
    m_viewMatrix._31 = m_right.z;
    m_viewMatrix._12 = m_up.x;
    m_viewMatrix._22 = m_up.y;
    m_viewMatrix._32 = m_up.z;
    m_viewMatrix._13 = m_look.x;
    m_viewMatrix._23 = m_look.y;
    m_viewMatrix._33 = m_look.z;
    m_viewMatrix._41 = -D3DXVec3Dot(&m_position, &m_right);
    m_viewMatrix._42 = -D3DXVec3Dot(&m_position, &m_up);
    m_viewMatrix._43 = -D3DXVec3Dot(&m_position, &m_look);
    m_viewDirty = false;
  }
  return m_viewMatrix;
}

const D3DXMATRIX& CCamera::GetProjMatrix() {
  if (m_projDirty) {
    const float aspect = static_cast<float>(m_viewport.Width) / static_cast<float>(m_viewport.Height);
    D3DXMatrixPerspectiveFovLH(&m_projMatrix, m_fov * DEGREES_TO_RADIANS, aspect, m_nearClip,
                               m_farClip * FAR_PLANE_FACTOR);
    m_projDirty = false;
  }
  return m_projMatrix;
}

void CCamera::UpdateRenderView(IDirect3DDevice9* device) {
  if (device) device->SetTransform(D3DTS_VIEW, &GetViewMatrix());
}

void CCamera::UpdateRenderProj(IDirect3DDevice9* device) {
  if (device) device->SetTransform(D3DTS_PROJECTION, &GetProjMatrix());
}

void CCamera::CalcFrustumPlanes() {
  if (!m_frustumDirty) return;
  const D3DXMATRIX& proj = GetProjMatrix();
  const D3DXMATRIX& view = GetViewMatrix();
  const D3DXMATRIX m = view * proj;

  // Planes from the columns of view x projection, negated so that each
  // normal points out of the frustum.
  m_frustumPlanes[0] = D3DXPLANE(-(m._14 + m._11), -(m._24 + m._21), -(m._34 + m._31), -(m._44 + m._41));
  m_frustumPlanes[1] = D3DXPLANE(-(m._14 - m._11), -(m._24 - m._21), -(m._34 - m._31), -(m._44 - m._41));
  m_frustumPlanes[2] = D3DXPLANE(-(m._14 - m._12), -(m._24 - m._22), -(m._34 - m._32), -(m._44 - m._42));
  m_frustumPlanes[3] = D3DXPLANE(-(m._14 + m._12), -(m._24 + m._22), -(m._34 + m._32), -(m._44 + m._42));
  m_frustumPlanes[4] = D3DXPLANE(-m._13, -m._23, -m._33, -m._43);
  m_frustumPlanes[5] = D3DXPLANE(-(m._14 - m._13), -(m._24 - m._23), -(m._34 - m._33), -(m._44 - m._43));
  for (D3DXPLANE& plane : m_frustumPlanes) D3DXPlaneNormalize(&plane, &plane);
  m_frustumDirty = false;
}

bool CCamera::BoundsInFrustum(const D3DXVECTOR3& min, const D3DXVECTOR3& max) {
  CalcFrustumPlanes();
  for (const D3DXPLANE& plane : m_frustumPlanes) {
    // Only the corner deepest on the inner side can prove the box is not
    // wholly outside this plane; the other seven need not be tried.
    const D3DXVECTOR3 nearPoint(plane.a > 0.0f ? min.x : max.x, plane.b > 0.0f ? min.y : max.y,
                                plane.c > 0.0f ? min.z : max.z);
    if (D3DXPlaneDotCoord(&plane, &nearPoint) > 0.0f) return false;
  }
  return true;
}
