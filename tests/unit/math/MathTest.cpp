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

D3DXMATRIX Identity() {
  D3DXMATRIX m;
  return *D3DXMatrixIdentity(&m);
}

TEST(Math, NormalizeGivesUnitLengthAndZeroStaysZero) {
  D3DXVECTOR3 v(3.0f, 0.0f, 4.0f);
  D3DXVec3Normalize(&v, &v);
  ExpectVec(v, 0.6f, 0.0f, 0.8f);
  D3DXVECTOR3 zero(0.0f, 0.0f, 0.0f);
  D3DXVec3Normalize(&zero, &zero);
  EXPECT_EQ(zero, D3DXVECTOR3(0.0f, 0.0f, 0.0f));
  D3DXVECTOR2 z2(0.0f, 0.0f);
  D3DXVec2Normalize(&z2, &z2);
  EXPECT_EQ(z2, D3DXVECTOR2(0.0f, 0.0f));
}

TEST(Math, CrossInPlaceMatchesSeparateOut) {
  const D3DXVECTOR3 a(1.0f, 2.0f, 3.0f), b(-4.0f, 0.5f, 2.0f);
  D3DXVECTOR3 separate;
  D3DXVec3Cross(&separate, &a, &b);
  D3DXVECTOR3 inA = a, inB = b;
  D3DXVec3Cross(&inA, &inA, &b);
  D3DXVec3Cross(&inB, &a, &inB);
  EXPECT_EQ(inA, separate);
  EXPECT_EQ(inB, separate);
  // Left-handed basis: x cross y is z.
  D3DXVECTOR3 z;
  const D3DXVECTOR3 x(1, 0, 0), y(0, 1, 0);
  ExpectVec(*D3DXVec3Cross(&z, &x, &y), 0, 0, 1);
}

TEST(Math, TransformNormalIgnoresTranslationAndCoordDividesByW) {
  D3DXMATRIX m;
  D3DXMatrixRotationAxis(&m, V(1.0f, 1.0f, 0.0f), 0.7f);
  D3DXMATRIX moved = m;
  moved._41 = 10.0f, moved._42 = -5.0f, moved._43 = 7.0f;
  D3DXVECTOR3 v(0.3f, -2.0f, 5.0f), a, b;
  D3DXVec3TransformNormal(&a, &v, &m);
  D3DXVec3TransformNormal(&b, &v, &moved);
  EXPECT_EQ(a, b);
  D3DXVec3TransformNormal(&v, &v, &moved);  // in place
  EXPECT_EQ(v, a);

  D3DXMATRIX t;
  D3DXMatrixTranslation(&t, 1.0f, 2.0f, 3.0f);
  t._44 = 2.0f;
  D3DXVECTOR3 p(1.0f, 1.0f, 1.0f);
  ExpectVec(*D3DXVec3TransformCoord(&p, &p, &t), 1.0f, 1.5f, 2.0f);
}

TEST(Math, QuarterTurnAboutUpTurnsForwardToRightWhateverTheAxisLength) {
  for (float length : {1.0f, 2.0f}) {
    D3DXMATRIX m;
    D3DXMatrixRotationAxis(&m, V(0.0f, length, 0.0f), D3DX_PI / 2.0f);
    D3DXVECTOR3 v(0.0f, 0.0f, 1.0f);
    ExpectVec(*D3DXVec3TransformNormal(&v, &v, &m), 1.0f, 0.0f, 0.0f);
  }
  // A positive turn about +x takes +y towards +z (and +z down towards -y).
  D3DXMATRIX pitch;
  D3DXMatrixRotationAxis(&pitch, V(1.0f, 0.0f, 0.0f), D3DX_PI / 2.0f);
  D3DXVECTOR3 up(0.0f, 1.0f, 0.0f);
  ExpectVec(*D3DXVec3TransformNormal(&up, &up, &pitch), 0.0f, 0.0f, 1.0f);
}

TEST(Math, LookAtFromOriginAlongZIsIdentityAndPutsAxesInColumns) {
  D3DXMATRIX m;
  D3DXMatrixLookAtLH(&m, V(0, 0, 0), V(0, 0, 5), V(0, 1, 0));
  EXPECT_EQ(m, Identity());

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
  EXPECT_EQ(m._12, 0.0f);
}

TEST(Math, MultiplyAppliesLeftFirstAndMayAlias) {
  D3DXMATRIX turn, move;
  D3DXMatrixRotationAxis(&turn, V(0, 1, 0), D3DX_PI / 2.0f);
  D3DXMatrixTranslation(&move, 10.0f, 0.0f, 0.0f);
  D3DXVECTOR3 p(0, 0, 1);
  D3DXMATRIX both = turn * move;  // turn +z to +x, then shift by 10
  ExpectVec(*D3DXVec3TransformCoord(&p, &p, &both), 11.0f, 0.0f, 0.0f, 1e-5f);
  D3DXMATRIX aliased = turn;
  D3DXMatrixMultiply(&aliased, &aliased, &move);
  EXPECT_EQ(aliased, both);
}

TEST(Math, PlaneNormalizeAndIntersect) {
  D3DXPLANE p(0.0f, 2.0f, 0.0f, -4.0f);  // y = 2
  D3DXPlaneNormalize(&p, &p);
  EXPECT_EQ(p, D3DXPLANE(0.0f, 1.0f, 0.0f, -2.0f));
  EXPECT_FLOAT_EQ(D3DXPlaneDotCoord(&p, V(5, 7, 1)), 5.0f);

  D3DXVECTOR3 hit(-1, -1, -1);
  ASSERT_NE(D3DXPlaneIntersectLine(&hit, &p, V(1, 0, 1), V(3, 4, 1)), nullptr);
  ExpectVec(hit, 2.0f, 2.0f, 1.0f);
  const D3DXVECTOR3 untouched = hit;
  EXPECT_EQ(D3DXPlaneIntersectLine(&hit, &p, V(0, 0, 0), V(5, 0, 5)), nullptr);
  EXPECT_EQ(hit, untouched);
}

}  // namespace
