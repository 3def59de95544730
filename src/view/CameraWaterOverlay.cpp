// CCamera::RenderWaterOverlay: the blue-green tint over the part of the
// screen that the camera sees through water. The water plane meets the near
// plane in a line; projected, that line splits the screen, and the part below
// it is covered by one translucent fan in viewport pixels. A camera at the
// surface gets a clean water line, one under water the whole screen, one well
// above nothing. The blend factors are those the sea left in the same frame.
#include <cmath>

#include "terrain/Vertex.h"
#include "view/Camera.h"
#include "view/NearPlaneClip.h"

namespace {

constexpr std::uint32_t TINT_FULL_SCREEN = 0xBF547686u;
constexpr std::uint32_t TINT_BELOW_LINE = 0xBF547687u;
constexpr float HORIZONTAL_LIMIT = 0.001f;  // 1 - |n . up| below this: plane is level
constexpr float LINE_REACH = 1000.0f;       // half length of the line taken through the camera
constexpr int MAX_POINTS = 5;

// The corners of the part of the screen square (-1 to 1, y up) that lies
// below the line in which the water plane crosses the near plane; their
// number. None when the line cannot be found: a camera rolled so that its up
// axis lies level has the line upright on the screen, which this construction
// does not reach.
int BelowWaterLine(const D3DXPLANE& NearPlane, const D3DXMATRIX& mtxCombined,
                   const D3DXVECTOR3& position, const D3DXVECTOR3& look, const D3DXVECTOR3& right,
                   float level, D3DXVECTOR2 (&out)[MAX_POINTS]) {
  const D3DXVECTOR3 vecUp(0.0f, 1.0f, 0.0f);
  const D3DXVECTOR3 PlaneNormal(NearPlane.a, NearPlane.b, NearPlane.c);
  // Both directions lie in the horizontal: along the water line, and out
  // from the camera towards the near plane.
  D3DXVECTOR3 vecRight, vecOut;
  D3DXVec3Cross(&vecRight, &vecUp, &look);
  D3DXVec3Normalize(&vecRight, &vecRight);
  D3DXVec3Cross(&vecOut, &right, &vecUp);
  // A camera rolled on its side has a vertical right axis and no such
  // direction from it; its look, laid flat, serves instead.
  if (D3DXVec3Length(&vecOut) == 0.0f) vecOut = D3DXVECTOR3(look.x, 0.0f, look.z);
  D3DXVec3Normalize(&vecOut, &vecOut);
  const D3DXVECTOR3 towardsView = -PlaneNormal;
  const float approach = D3DXVec3Dot(&towardsView, &vecOut);
  if (approach == 0.0f) return 0;

  // The point of the water plane under (or over) the camera, slid out until
  // it lies in the near plane as well.
  D3DXVECTOR3 vecPoint[2];
  vecPoint[0] = D3DXVECTOR3(position.x, level, position.z);
  const float t = D3DXPlaneDotCoord(&NearPlane, &vecPoint[0]) * (1.0f / approach);
  vecPoint[0] += vecOut * t;

  const D3DXVECTOR3 vecIntersect[2] = {vecPoint[0] - vecRight * LINE_REACH,
                                       vecPoint[0] + vecRight * LINE_REACH};
  D3DXVec3TransformCoord(&vecPoint[0], &vecIntersect[0], &mtxCombined);
  D3DXVec3TransformCoord(&vecPoint[1], &vecIntersect[1], &mtxCombined);

  // The line on the screen, with a normal that points up.
  const D3DXVECTOR2 vecPointOnPlane(vecPoint[1].x, vecPoint[1].y);
  D3DXVECTOR2 vecPlaneNormal(-(vecPoint[1].y - vecPoint[0].y), vecPoint[1].x - vecPoint[0].x);
  D3DXVec2Normalize(&vecPlaneNormal, &vecPlaneNormal);
  // Without a normal every corner would count as on the line and the whole
  // screen would be tinted.
  const bool usable = std::isfinite(vecPointOnPlane.x) && std::isfinite(vecPointOnPlane.y) &&
                      std::isfinite(vecPlaneNormal.x) && std::isfinite(vecPlaneNormal.y);
  if (!usable || (vecPlaneNormal.x == 0.0f && vecPlaneNormal.y == 0.0f)) return 0;

  const D3DXVECTOR2 vecScreenPoints[4] = {D3DXVECTOR2(-1.0f, 1.0f), D3DXVECTOR2(1.0f, 1.0f),
                                          D3DXVECTOR2(1.0f, -1.0f), D3DXVECTOR2(-1.0f, -1.0f)};
  int count = 0;
  auto add = [&](const D3DXVECTOR2& p) {
    if (count < MAX_POINTS) out[count++] = p;
  };
  ClipConvex(
      vecScreenPoints, 4,
      [&](const D3DXVECTOR2& corner) {
        const D3DXVECTOR2 offset = corner - vecPointOnPlane;
        return D3DXVec2Dot(&offset, &vecPlaneNormal);
      },
      [&](int i) { add(vecScreenPoints[i]); },
      [&](int i, int j) {
        const D3DXVECTOR2 Direction = vecScreenPoints[j] - vecScreenPoints[i];
        const D3DXVECTOR2 Direction2 = vecPointOnPlane - vecScreenPoints[i];
        const float f =
            D3DXVec2Dot(&Direction2, &vecPlaneNormal) / D3DXVec2Dot(&Direction, &vecPlaneNormal);
        add(vecScreenPoints[i] + Direction * f);
      });
  return count;
}

}  // namespace

void CCamera::RenderWaterOverlay(IDirect3DDevice9* device, std::int32_t kind, float level) {
  if (device == nullptr) return;
  device->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);

  CScreenVertex Points[MAX_POINTS];
  int count = 0;
  // From the square of -1 to 1 (y up) to viewport pixels; the halves of the
  // size are whole numbers, so an odd width lands half a pixel to the left.
  auto append = [&](float px, float py) {
    const DWORD w = m_viewport.Width, h = m_viewport.Height;
    const float x = static_cast<float>((w * px) / 2.0 + m_viewport.X + (w >> 1));
    const float y = static_cast<float>((h * -py) / 2.0 + m_viewport.Y + (h >> 1));
    Points[count++] = CScreenVertex(x, y, 0.0f, 1.0f, TINT_BELOW_LINE);
  };

  if (kind == 1) {
    const D3DXVECTOR3 vecUp(0.0f, 1.0f, 0.0f);
    const D3DXMATRIX mtxCombined = m_viewMatrix * m_projMatrix;
    const D3DXPLANE NearPlane = NearPlaneOf(mtxCombined);
    const D3DXVECTOR3 PlaneNormal(NearPlane.a, NearPlane.b, NearPlane.c);

    if (1.0f - std::fabs(D3DXVec3Dot(&PlaneNormal, &vecUp)) < HORIZONTAL_LIMIT) {
      // Looking almost straight up or down: the near plane is level, and it
      // lies either wholly under the water or wholly above it.
      const float nearY =
          m_position.y + (-PlaneNormal.y) * D3DXPlaneDotCoord(&NearPlane, &m_position);
      if (level >= nearY) {
        const float left = static_cast<float>(m_viewport.X), top = static_cast<float>(m_viewport.Y);
        const float right = left + static_cast<float>(m_viewport.Width);
        const float bottom = top + static_cast<float>(m_viewport.Height);
        Points[0] = CScreenVertex(left, top, 0.0f, 1.0f, TINT_FULL_SCREEN);
        Points[1] = CScreenVertex(right, top, 0.0f, 1.0f, TINT_FULL_SCREEN);
        Points[2] = CScreenVertex(right, bottom, 0.0f, 1.0f, TINT_FULL_SCREEN);
        Points[3] = CScreenVertex(left, bottom, 0.0f, 1.0f, TINT_FULL_SCREEN);
        count = 4;
      }
    } else {
      D3DXVECTOR2 below[MAX_POINTS];
      const int n =
          BelowWaterLine(NearPlane, mtxCombined, m_position, m_look, m_right, level, below);
      for (int i = 0; i < n; ++i) append(below[i].x, below[i].y);
    }
  }

  if (count > 2) {
    device->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_DIFFUSE);
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    device->SetFVF(CScreenVertex::FVF);
    device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, static_cast<UINT>(count - 2), Points,
                            sizeof(CScreenVertex));
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
    device->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);
  }
  device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
}
