// CTerrain::DrawWater: the sea, one translucent quad as large as the map at
// 54 height steps, clipped in software against the camera's near plane so
// that a camera at the surface sees a clean edge rather than the device's
// clipping of a polygon that reaches behind the eye. The rest of the frustum
// is left to the device. The surface writes no depth and is seen from both
// sides; its alpha comes from the colour words alone.
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"
#include "view/NearPlaneClip.h"

namespace {

constexpr std::uint32_t WATER_COLOUR = 0xBFFFFFFFu;
// One corner is a little clearer than the others.
constexpr std::uint32_t WATER_CORNER_COLOUR = 0xAFFFFFFFu;
// A convex quad cut by one plane; the bound also holds for a camera whose
// matrices went bad and give every distance as NaN (all four corners kept).
constexpr int MAX_CLIPPED = 5;

}  // namespace

void CTerrain::DrawWater(CCamera* camera, float level) {
  if (m_device == nullptr) return;
  const float width = static_cast<float>(m_mapWidth) * m_scale.x;
  const float depth = static_cast<float>(m_mapHeight) * m_scale.z;
  const CVertex vecWaterPoints[4] = {
      CVertex(0.0f, level, 0.0f, WATER_COLOUR, 0.0f, 0.0f),
      CVertex(0.0f, level, depth, WATER_COLOUR, 0.0f, 1.0f),
      CVertex(width, level, depth, WATER_CORNER_COLOUR, 1.0f, 1.0f),
      CVertex(width, level, 0.0f, WATER_COLOUR, 1.0f, 0.0f),
  };

  const D3DXMATRIX mtxCombined = camera->GetViewMatrix() * camera->GetProjMatrix();
  const D3DXPLANE NearPlane = NearPlaneOf(mtxCombined);
  auto position = [](const CVertex& v) { return D3DXVECTOR3(v.m_x, v.m_y, v.m_z); };

  CVertex Points[MAX_CLIPPED];
  int count = 0;
  ClipConvex(
      vecWaterPoints, 4,
      [&](const CVertex& v) {
        const D3DXVECTOR3 p = position(v);
        return D3DXPlaneDotCoord(&NearPlane, &p);
      },
      [&](int i) {
        if (count < MAX_CLIPPED) Points[count++] = vecWaterPoints[i];
      },
      [&](int i, int j) {
        const CVertex& from = vecWaterPoints[i];
        const CVertex& to = vecWaterPoints[j];
        const D3DXVECTOR3 a = position(from), b = position(to);
        D3DXVECTOR3 vecIntersection;
        // The two ends lie on opposite sides, so the line is not parallel.
        if (count == MAX_CLIPPED ||
            D3DXPlaneIntersectLine(&vecIntersection, &NearPlane, &a, &b) == nullptr)
          return;
        const D3DXVECTOR3 along = vecIntersection - a, edge = b - a;
        const float f = D3DXVec3Length(&along) / D3DXVec3Length(&edge);
        Points[count++] =
            CVertex(vecIntersection.x, vecIntersection.y, vecIntersection.z, WATER_COLOUR,
                    f * (to.m_tu - from.m_tu) + from.m_tu, f * (to.m_tv - from.m_tv) + from.m_tv);
      });
  if (count <= 2) return;

  m_device->SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
  m_device->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG1);
  m_device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
  m_device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
  m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
  m_device->SetTexture(0, m_waterTexture);
  m_device->SetFVF(CVertex::FVF);
  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  m_device->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);
  m_device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, static_cast<UINT>(count - 2), Points,
                            sizeof(CVertex));
  m_device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
  m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
}
