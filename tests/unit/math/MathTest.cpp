// D3DX math: the results other code reads back (axes out of look-at columns,
// the direction of a positive turn, projection terms), and in-place calls.
#include <gtest/gtest.h>

#include "platform/d3dx9/d3dx9math.h"

namespace {

void ExpectVec(const D3DXVECTOR3& v, float x, float y, float z, float tol = 1e-6f) {
  EXPECT_NEAR(v.x, x, tol);
  EXPECT_NEAR(v.y, y, tol);
  EXPECT_NEAR(v.z, z, tol);
}

// Address of a short-lived vector argument (the D3DX calls take pointers).
const D3DXVECTOR3* V(float x, float y, float z) {
  static D3DXVECTOR3 ring[8];
  static unsigned next = 0;
  D3DXVECTOR3* slot = &ring[next++ % 8];
  *slot = D3DXVECTOR3(x, y, z);
  return slot;
}

TEST(Math, NormalizeKeepsZeroAndCrossMayAliasInALeftHandedBasis) {
  D3DXVECTOR3 v(3.0f, 0.0f, 4.0f), zero(0.0f, 0.0f, 0.0f);
  ExpectVec(*D3DXVec3Normalize(&v, &v), 0.6f, 0.0f, 0.8f);
  EXPECT_EQ(*D3DXVec3Normalize(&zero, &zero), D3DXVECTOR3(0.0f, 0.0f, 0.0f));
  const D3DXVECTOR3 a(1.0f, 2.0f, 3.0f), b(-4.0f, 0.5f, 2.0f);
  D3DXVECTOR3 separate, inA = a, inB = b;
  D3DXVec3Cross(&separate, &a, &b);
  EXPECT_EQ(*D3DXVec3Cross(&inA, &inA, &b), separate);
  EXPECT_EQ(*D3DXVec3Cross(&inB, &a, &inB), separate);
  ExpectVec(*D3DXVec3Cross(&v, V(1, 0, 0), V(0, 1, 0)), 0, 0, 1);  // x cross y is z
}

TEST(Math, PositiveTurnsTransformsAndProductsInPlace) {
  // A quarter turn about up takes forward to right, whatever the axis length;
  // about +x it takes +y towards +z.
  for (float length : {1.0f, 2.0f}) {
    D3DXMATRIX m;
    D3DXMatrixRotationAxis(&m, V(0.0f, length, 0.0f), D3DX_PI / 2.0f);
    D3DXVECTOR3 v(0.0f, 0.0f, 1.0f);
    ExpectVec(*D3DXVec3TransformNormal(&v, &v, &m), 1.0f, 0.0f, 0.0f);
  }
  D3DXMATRIX pitch, move;
  D3DXMatrixRotationAxis(&pitch, V(1.0f, 0.0f, 0.0f), D3DX_PI / 2.0f);
  D3DXVECTOR3 up(0.0f, 1.0f, 0.0f);
  ExpectVec(*D3DXVec3TransformNormal(&up, &up, &pitch), 0.0f, 0.0f, 1.0f);

  // A normal ignores the translation; a point is divided by w.
  D3DXMatrixTranslation(&move, 10.0f, 0.0f, 0.0f);
  D3DXVECTOR3 n(0.3f, -2.0f, 5.0f), p(0, 0, 1);
  EXPECT_EQ(*D3DXVec3TransformNormal(&n, &n, &move), D3DXVECTOR3(0.3f, -2.0f, 5.0f));
  D3DXMATRIX turn, both;
  D3DXMatrixRotationAxis(&turn, V(0, 1, 0), D3DX_PI / 2.0f);
  both = turn * move;  // turn +z to +x, then shift by 10
  ExpectVec(*D3DXVec3TransformCoord(&p, &p, &both), 11.0f, 0.0f, 0.0f, 1e-5f);
  D3DXMatrixMultiply(&turn, &turn, &move);
  EXPECT_EQ(turn, both);
  move._44 = 2.0f;
  ExpectVec(*D3DXVec3TransformCoord(&p, V(1, 1, 1), &move), 5.5f, 0.5f, 0.5f);
}

TEST(Math, LookAtFromOriginAlongZIsIdentityAndPutsAxesInColumns) {
  D3DXMATRIX m, identity;
  D3DXMatrixLookAtLH(&m, V(0, 0, 0), V(0, 0, 5), V(0, 1, 0));
  EXPECT_EQ(m, *D3DXMatrixIdentity(&identity));

  // Looking along +x from (1, 2, 3): right is -z, the eye maps to the origin.
  const D3DXVECTOR3 eye(1, 2, 3);
  D3DXMatrixLookAtLH(&m, &eye, V(11, 2, 3), V(0, 1, 0));
  ExpectVec(D3DXVECTOR3(m._11, m._21, m._31), 0, 0, -1);
  ExpectVec(D3DXVECTOR3(m._13, m._23, m._33), 1, 0, 0);
  D3DXVECTOR3 origin;
  ExpectVec(*D3DXVec3TransformCoord(&origin, &eye, &m), 0, 0, 0);
}

TEST(Math, PerspectiveFovTerms) {
  D3DXMATRIX m;
  D3DXMatrixPerspectiveFovLH(&m, D3DX_PI / 2.0f, 2.0f, 1.0f, 101.0f);
  EXPECT_NEAR(m._22, 1.0f, 1e-6f);
  EXPECT_NEAR(m._11, 0.5f, 1e-6f);
  EXPECT_NEAR(m._33, 101.0f / 100.0f, 1e-6f);
  EXPECT_EQ(m._34, 1.0f);
  EXPECT_NEAR(m._43, -101.0f / 100.0f, 1e-6f);
  EXPECT_EQ(m._44, 0.0f);
}

TEST(Math, PlaneNormalizeAndIntersect) {
  D3DXPLANE p(0.0f, 2.0f, 0.0f, -4.0f);  // y = 2
  EXPECT_EQ(*D3DXPlaneNormalize(&p, &p), D3DXPLANE(0.0f, 1.0f, 0.0f, -2.0f));
  EXPECT_FLOAT_EQ(D3DXPlaneDotCoord(&p, V(5, 7, 1)), 5.0f);
  D3DXVECTOR3 hit(-1, -1, -1);
  ASSERT_NE(D3DXPlaneIntersectLine(&hit, &p, V(1, 0, 1), V(3, 4, 1)), nullptr);
  ExpectVec(hit, 2.0f, 2.0f, 1.0f);
  EXPECT_EQ(D3DXPlaneIntersectLine(&hit, &p, V(0, 0, 0), V(5, 0, 5)), nullptr);  // parallel
  ExpectVec(hit, 2.0f, 2.0f, 1.0f);  // untouched
}

}  // namespace
