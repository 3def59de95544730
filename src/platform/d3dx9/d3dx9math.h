// D3DX 9 math: the vector, matrix and plane types and the functions of them
// that the system uses, with the library's published names and meaning.
//
// Conventions of the library: left-handed coordinates, row vectors (v' = v * M),
// matrices stored row by row, angles in radians, single precision throughout.
// Every function that returns a pointer returns pOut, and pOut may be the same
// object as an input (D3DXVec3Normalize(&v, &v) is allowed).
//
// Default construction leaves a value unset and costs nothing, so that arrays
// of these types are free to make; value-initialisation (T{}) zeroes them.
#pragma once

#include "platform/d3d9/d3d9.h"

#define D3DX_PI ((float)3.141592654f)

// ---- D3DXVECTOR2 -----------------------------------------------------------

struct D3DXVECTOR2 {
  D3DXVECTOR2() = default;
  D3DXVECTOR2(float fx, float fy) : x(fx), y(fy) {}

  D3DXVECTOR2& operator+=(const D3DXVECTOR2& v) { x += v.x; y += v.y; return *this; }
  D3DXVECTOR2& operator-=(const D3DXVECTOR2& v) { x -= v.x; y -= v.y; return *this; }
  D3DXVECTOR2& operator*=(float s) { x *= s; y *= s; return *this; }
  D3DXVECTOR2 operator+(const D3DXVECTOR2& v) const { return D3DXVECTOR2(x + v.x, y + v.y); }
  D3DXVECTOR2 operator-(const D3DXVECTOR2& v) const { return D3DXVECTOR2(x - v.x, y - v.y); }
  D3DXVECTOR2 operator-() const { return D3DXVECTOR2(-x, -y); }
  D3DXVECTOR2 operator*(float s) const { return D3DXVECTOR2(x * s, y * s); }
  bool operator==(const D3DXVECTOR2& v) const { return x == v.x && y == v.y; }
  bool operator!=(const D3DXVECTOR2& v) const { return !(*this == v); }

  float x, y;
};

inline D3DXVECTOR2 operator*(float s, const D3DXVECTOR2& v) { return v * s; }

// ---- D3DXVECTOR3 -----------------------------------------------------------

// Same layout as the device's D3DVECTOR, so it passes wherever one is wanted.
struct D3DXVECTOR3 : public D3DVECTOR {
  D3DXVECTOR3() = default;
  D3DXVECTOR3(float fx, float fy, float fz) : D3DVECTOR{fx, fy, fz} {}
  D3DXVECTOR3(const D3DVECTOR& v) : D3DVECTOR(v) {}  // NOLINT: implicit like D3DX

  D3DXVECTOR3& operator+=(const D3DXVECTOR3& v) { x += v.x; y += v.y; z += v.z; return *this; }
  D3DXVECTOR3& operator-=(const D3DXVECTOR3& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  D3DXVECTOR3& operator*=(float s) { x *= s; y *= s; z *= s; return *this; }
  D3DXVECTOR3& operator/=(float s) { x /= s; y /= s; z /= s; return *this; }
  D3DXVECTOR3 operator+(const D3DXVECTOR3& v) const { return D3DXVECTOR3(x + v.x, y + v.y, z + v.z); }
  D3DXVECTOR3 operator-(const D3DXVECTOR3& v) const { return D3DXVECTOR3(x - v.x, y - v.y, z - v.z); }
  D3DXVECTOR3 operator+() const { return *this; }
  D3DXVECTOR3 operator-() const { return D3DXVECTOR3(-x, -y, -z); }
  D3DXVECTOR3 operator*(float s) const { return D3DXVECTOR3(x * s, y * s, z * s); }
  D3DXVECTOR3 operator/(float s) const { return D3DXVECTOR3(x / s, y / s, z / s); }
  bool operator==(const D3DXVECTOR3& v) const { return x == v.x && y == v.y && z == v.z; }
  bool operator!=(const D3DXVECTOR3& v) const { return !(*this == v); }
};

inline D3DXVECTOR3 operator*(float s, const D3DXVECTOR3& v) { return v * s; }

// ---- D3DXMATRIX ------------------------------------------------------------

// Same layout as the device's D3DMATRIX (_11 .. _44 row by row; _41 _42 _43 is
// the translation row), so it goes straight to SetTransform.
struct D3DXMATRIX : public D3DMATRIX {
  D3DXMATRIX() = default;
  D3DXMATRIX(const D3DMATRIX& m) : D3DMATRIX(m) {}  // NOLINT: implicit like D3DX
  D3DXMATRIX(float f11, float f12, float f13, float f14,
             float f21, float f22, float f23, float f24,
             float f31, float f32, float f33, float f34,
             float f41, float f42, float f43, float f44);

  // Element at row, column (0-based).
  float& operator()(UINT row, UINT col);
  float operator()(UINT row, UINT col) const;

  D3DXMATRIX& operator*=(const D3DXMATRIX& m);
  D3DXMATRIX operator*(const D3DXMATRIX& m) const;  // this applied first, then m
  bool operator==(const D3DXMATRIX& m) const;
  bool operator!=(const D3DXMATRIX& m) const { return !(*this == m); }
};

// ---- D3DXPLANE -------------------------------------------------------------

// The plane a*x + b*y + c*z + d = 0; (a, b, c) is its normal.
struct D3DXPLANE {
  D3DXPLANE() = default;
  D3DXPLANE(float fa, float fb, float fc, float fd) : a(fa), b(fb), c(fc), d(fd) {}
  bool operator==(const D3DXPLANE& p) const { return a == p.a && b == p.b && c == p.c && d == p.d; }
  bool operator!=(const D3DXPLANE& p) const { return !(*this == p); }

  float a, b, c, d;
};

// ---- inline functions ------------------------------------------------------

inline float D3DXVec2Dot(const D3DXVECTOR2* a, const D3DXVECTOR2* b) { return a->x * b->x + a->y * b->y; }

inline float D3DXVec3Dot(const D3DXVECTOR3* a, const D3DXVECTOR3* b) {
  return a->x * b->x + a->y * b->y + a->z * b->z;
}

// Cross product a x b, formed in a temporary so that pOut may be a or b.
inline D3DXVECTOR3* D3DXVec3Cross(D3DXVECTOR3* pOut, const D3DXVECTOR3* a, const D3DXVECTOR3* b) {
  D3DXVECTOR3 v(a->y * b->z - a->z * b->y, a->z * b->x - a->x * b->z, a->x * b->y - a->y * b->x);
  *pOut = v;
  return pOut;
}

// Signed distance of point v from plane p when p is normalised.
inline float D3DXPlaneDotCoord(const D3DXPLANE* p, const D3DXVECTOR3* v) {
  return p->a * v->x + p->b * v->y + p->c * v->z + p->d;
}

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* pOut);

// ---- library functions -----------------------------------------------------

float D3DXVec3Length(const D3DXVECTOR3* v);

// v / |v|; the zero vector gives the zero vector.
D3DXVECTOR3* D3DXVec3Normalize(D3DXVECTOR3* pOut, const D3DXVECTOR3* v);
D3DXVECTOR2* D3DXVec2Normalize(D3DXVECTOR2* pOut, const D3DXVECTOR2* v);

// (x, y, z, 1) * m, divided by the resulting w: a point, moved and turned.
D3DXVECTOR3* D3DXVec3TransformCoord(D3DXVECTOR3* pOut, const D3DXVECTOR3* v, const D3DXMATRIX* m);

// (x, y, z, 0) * m: a direction, turned only; not renormalised.
D3DXVECTOR3* D3DXVec3TransformNormal(D3DXVECTOR3* pOut, const D3DXVECTOR3* v, const D3DXMATRIX* m);

// Rotation by angle radians about an axis through the origin (any length but
// zero). A positive angle about +y turns +z towards +x.
D3DXMATRIX* D3DXMatrixRotationAxis(D3DXMATRIX* pOut, const D3DXVECTOR3* axis, float angle);

D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX* pOut, float x, float y, float z);

// a * b: a applied first.
D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX* pOut, const D3DXMATRIX* a, const D3DXMATRIX* b);

// Left-handed view matrix; columns 0, 1, 2 of the upper 3x3 are the right, up
// and look axes.
D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX* pOut, const D3DXVECTOR3* eye, const D3DXVECTOR3* at,
                               const D3DXVECTOR3* up);

// Left-handed perspective projection; depth 0 at zn, 1 at zf.
D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX* pOut, float fovy, float aspect, float zn, float zf);

// a, b, c, d divided by |(a, b, c)|; a plane with no normal is copied as it is.
D3DXPLANE* D3DXPlaneNormalize(D3DXPLANE* pOut, const D3DXPLANE* p);

// Point where the line through v1 and v2 meets the plane; nullptr (pOut left
// alone) when the line is parallel to it.
D3DXVECTOR3* D3DXPlaneIntersectLine(D3DXVECTOR3* pOut, const D3DXPLANE* p, const D3DXVECTOR3* v1,
                                    const D3DXVECTOR3* v2);
