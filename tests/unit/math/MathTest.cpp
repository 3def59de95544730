// D3DX math: the results other code reads back (axes out of look-at columns,
// the direction of a positive turn, projection terms), and in-place calls.
#include <gtest/gtest.h>

#include "platform/d3dx9/d3dx9math.h"

namespace {

void ExpectVec(const D3DXVECTOR3& v, float x, float y, float z) {
  EXPECT_NEAR(v.x, x, 1e-6f);
  EXPECT_NEAR(v.y, y, 1e-6f);
  EXPECT_NEAR(v.z, z, 1e-6f);
}

TEST(Math, VectorsInPlaceAndAPositiveTurn) {
  D3DXVECTOR3 zero(0.0f, 0.0f, 0.0f), a(1.0f, 2.0f, 3.0f), b(-4.0f, 0.5f, 2.0f), separate;
  EXPECT_EQ(*D3DXVec3Normalize(&zero, &zero), D3DXVECTOR3(0.0f, 0.0f, 0.0f));
  D3DXVec3Cross(&separate, &a, &b);
  EXPECT_EQ(*D3DXVec3Cross(&a, &a, &b), separate);

  // A quarter turn about up takes forward to right, whatever the axis length;
  // a normal ignores the translation row.
  const D3DXVECTOR3 axis(0.0f, 2.0f, 0.0f);
  D3DXMATRIX m;
  D3DXMatrixRotationAxis(&m, &axis, D3DX_PI / 2.0f);
  m._41 = 10.0f;
  D3DXVECTOR3 v(0.0f, 0.0f, 1.0f);
  ExpectVec(*D3DXVec3TransformNormal(&v, &v, &m), 1.0f, 0.0f, 0.0f);
}

TEST(Math, LookAtFromOriginAlongZIsIdentity) {
  const D3DXVECTOR3 eye(0, 0, 0), at(0, 0, 5), up(0, 1, 0);
  D3DXMATRIX m, identity;
  D3DXMatrixLookAtLH(&m, &eye, &at, &up);
  EXPECT_EQ(m, *D3DXMatrixIdentity(&identity));
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

}  // namespace
