// D3DX math: the results other code reads back (axes out of look-at columns,
// the direction of a positive turn, projection terms), and in-place calls.
#include <gtest/gtest.h>

#include "platform/d3dx9/d3dx9math.h"

namespace {

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
  const D3DXVECTOR3 turned = *D3DXVec3TransformNormal(&v, &v, &m);
  EXPECT_NEAR(turned.x, 1.0f, 1e-6f);
  EXPECT_NEAR(turned.y, 0.0f, 1e-6f);
  EXPECT_NEAR(turned.z, 0.0f, 1e-6f);
}

TEST(Math, LookAtFromOriginAlongZIsIdentityAndPerspectiveFovTerms) {
  const D3DXVECTOR3 eye(0, 0, 0), at(0, 0, 5), up(0, 1, 0);
  D3DXMATRIX m, identity;
  D3DXMatrixLookAtLH(&m, &eye, &at, &up);
  EXPECT_EQ(m, *D3DXMatrixIdentity(&identity));

  D3DXMatrixPerspectiveFovLH(&m, D3DX_PI / 2.0f, 2.0f, 1.0f, 101.0f);
  EXPECT_NEAR(m._22, 1.0f, 1e-6f);
  EXPECT_NEAR(m._11, 0.5f, 1e-6f);
  EXPECT_NEAR(m._33, 101.0f / 100.0f, 1e-6f);
  EXPECT_EQ(m._34, 1.0f);
  EXPECT_NEAR(m._43, -101.0f / 100.0f, 1e-6f);
  EXPECT_EQ(m._44, 0.0f);
}

}  // namespace
