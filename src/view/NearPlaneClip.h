// What the sea surface and the screen's water tint share: the camera's near
// plane taken from view x projection, and the cut of a small convex polygon
// by one boundary, keeping the side with negative distances.
//
// Header-only: two helpers, used by CTerrain::DrawWater and
// CCamera::RenderWaterOverlay.
#pragma once

#include "platform/d3dx9/d3dx9math.h"

// The near plane of a view x projection matrix, normalised: the third column
// negated, so that a point the camera can see has a negative distance.
inline D3DXPLANE NearPlaneOf(const D3DXMATRIX& combined) {
  const D3DXPLANE plane(-combined._13, -combined._23, -combined._33, -combined._43);
  D3DXPLANE normalised;
  D3DXPlaneNormalize(&normalised, &plane);
  return normalised;
}

// -1, 0 or 1 for a distance, with values within 0.00001 of zero counted as on
// the boundary.
inline int ClipSign(float distance) {
  constexpr float TOLERANCE = 0.00001f;
  if (distance < -TOLERANCE) return -1;
  if (distance > TOLERANCE) return 1;
  return 0;
}

// Walks the count corners of a convex polygon in order. keep(i) takes corner
// i when it lies on the kept (negative) side or on the boundary; cut(i, j)
// asks for a new point on the edge from i to j where it crosses the boundary.
// An edge leaving a corner on the boundary makes no new point.
template <class Corner, class Distance, class Keep, class Cut>
void ClipConvex(const Corner* corners, int count, Distance distance, Keep keep, Cut cut) {
  for (int i = 0; i < count; ++i) {
    const int j = (i + 1) % count;
    const int si = ClipSign(distance(corners[i]));
    if (si == 0) {
      keep(i);
      continue;
    }
    const int sj = ClipSign(distance(corners[j]));
    if (si != 1) keep(i);
    if (sj != 0 && sj != si) cut(i, j);
  }
}
