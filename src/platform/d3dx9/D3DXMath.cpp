// D3DX 9 math in single precision, with the library's published results.
// Every function works through locals before it writes pOut, so that pOut may
// alias an input.
#include <cmath>
#include <cstring>

#include "platform/d3dx9/d3dx9math.h"

static_assert(sizeof(D3DXMATRIX) == 16 * sizeof(float), "D3DXMATRIX is sixteen packed floats");
static_assert(sizeof(D3DXVECTOR3) == 3 * sizeof(float), "D3DXVECTOR3 is three packed floats");

namespace {

// The matrix as a plain 4x4 array, copied (never aliased) so that indexed
// loops stay within the rules of the language.
struct Grid {
  float m[4][4];
};

Grid ToGrid(const D3DXMATRIX& matrix) {
  Grid g;
  std::memcpy(g.m, &matrix, sizeof(g.m));
  return g;
}

void FromGrid(D3DXMATRIX* out, const Grid& g) { std::memcpy(static_cast<void*>(out), g.m, sizeof(g.m)); }

}  // namespace

// ---- D3DXMATRIX members ----------------------------------------------------

D3DXMATRIX::D3DXMATRIX(float f11, float f12, float f13, float f14, float f21, float f22, float f23, float f24,
                       float f31, float f32, float f33, float f34, float f41, float f42, float f43, float f44) {
  const Grid g{{{f11, f12, f13, f14}, {f21, f22, f23, f24}, {f31, f32, f33, f34}, {f41, f42, f43, f44}}};
  FromGrid(this, g);
}

float& D3DXMATRIX::operator()(UINT row, UINT col) {
  float* rows[4][4] = {{&_11, &_12, &_13, &_14}, {&_21, &_22, &_23, &_24},
                       {&_31, &_32, &_33, &_34}, {&_41, &_42, &_43, &_44}};
  return *rows[row & 3][col & 3];
}

float D3DXMATRIX::operator()(UINT row, UINT col) const { return ToGrid(*this).m[row & 3][col & 3]; }

D3DXMATRIX& D3DXMATRIX::operator*=(const D3DXMATRIX& m) {
  D3DXMatrixMultiply(this, this, &m);
  return *this;
}

D3DXMATRIX D3DXMATRIX::operator*(const D3DXMATRIX& m) const {
  D3DXMATRIX result;
  D3DXMatrixMultiply(&result, this, &m);
  return result;
}

bool D3DXMATRIX::operator==(const D3DXMATRIX& m) const {
  const Grid a = ToGrid(*this);
  const Grid b = ToGrid(m);
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      if (a.m[r][c] != b.m[r][c]) return false;
  return true;
}

// ---- vectors ---------------------------------------------------------------

float D3DXVec3Length(const D3DXVECTOR3* v) { return std::sqrt(v->x * v->x + v->y * v->y + v->z * v->z); }

D3DXVECTOR3* D3DXVec3Normalize(D3DXVECTOR3* pOut, const D3DXVECTOR3* v) {
  const float length = D3DXVec3Length(v);
  if (length == 0.0f) {
    // A zero vector has no direction; it stays zero rather than dividing by 0.
    *pOut = D3DXVECTOR3(0.0f, 0.0f, 0.0f);
  } else {
    *pOut = D3DXVECTOR3(v->x / length, v->y / length, v->z / length);
  }
  return pOut;
}

D3DXVECTOR2* D3DXVec2Normalize(D3DXVECTOR2* pOut, const D3DXVECTOR2* v) {
  const float length = std::sqrt(v->x * v->x + v->y * v->y);
  if (length == 0.0f) {
    *pOut = D3DXVECTOR2(0.0f, 0.0f);
  } else {
    *pOut = D3DXVECTOR2(v->x / length, v->y / length);
  }
  return pOut;
}

D3DXVECTOR3* D3DXVec3TransformCoord(D3DXVECTOR3* pOut, const D3DXVECTOR3* v, const D3DXMATRIX* m) {
  const float x = v->x * m->_11 + v->y * m->_21 + v->z * m->_31 + m->_41;
  const float y = v->x * m->_12 + v->y * m->_22 + v->z * m->_32 + m->_42;
  const float z = v->x * m->_13 + v->y * m->_23 + v->z * m->_33 + m->_43;
  const float w = v->x * m->_14 + v->y * m->_24 + v->z * m->_34 + m->_44;
  // A point at infinity (w == 0) has no projection; it is returned undivided.
  if (w == 0.0f || w == 1.0f) {
    *pOut = D3DXVECTOR3(x, y, z);
  } else {
    *pOut = D3DXVECTOR3(x / w, y / w, z / w);
  }
  return pOut;
}

D3DXVECTOR3* D3DXVec3TransformNormal(D3DXVECTOR3* pOut, const D3DXVECTOR3* v, const D3DXMATRIX* m) {
  const float x = v->x * m->_11 + v->y * m->_21 + v->z * m->_31;
  const float y = v->x * m->_12 + v->y * m->_22 + v->z * m->_32;
  const float z = v->x * m->_13 + v->y * m->_23 + v->z * m->_33;
  *pOut = D3DXVECTOR3(x, y, z);
  return pOut;
}

// ---- matrices --------------------------------------------------------------

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* pOut) {
  const Grid g{{{1.0f, 0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, 0.0f, 1.0f}}};
  FromGrid(pOut, g);
  return pOut;
}

D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX* pOut, float x, float y, float z) {
  D3DXMatrixIdentity(pOut);
  pOut->_41 = x;
  pOut->_42 = y;
  pOut->_43 = z;
  return pOut;
}

D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX* pOut, const D3DXMATRIX* a, const D3DXMATRIX* b) {
  const Grid ga = ToGrid(*a);
  const Grid gb = ToGrid(*b);
  Grid out;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      out.m[r][c] = ga.m[r][0] * gb.m[0][c] + ga.m[r][1] * gb.m[1][c] + ga.m[r][2] * gb.m[2][c] +
                    ga.m[r][3] * gb.m[3][c];
    }
  }
  FromGrid(pOut, out);
  return pOut;
}

D3DXMATRIX* D3DXMatrixRotationAxis(D3DXMATRIX* pOut, const D3DXVECTOR3* axis, float angle) {
  D3DXVECTOR3 n;
  D3DXVec3Normalize(&n, axis);
  const float c = std::cos(angle);
  const float s = std::sin(angle);
  const float t = 1.0f - c;
  // Row-vector form: v * M turns v by angle about n, clockwise when looking
  // down the axis towards the origin in a left-handed frame.
  const Grid g{{{t * n.x * n.x + c, t * n.x * n.y + s * n.z, t * n.x * n.z - s * n.y, 0.0f},
                {t * n.x * n.y - s * n.z, t * n.y * n.y + c, t * n.y * n.z + s * n.x, 0.0f},
                {t * n.x * n.z + s * n.y, t * n.y * n.z - s * n.x, t * n.z * n.z + c, 0.0f},
                {0.0f, 0.0f, 0.0f, 1.0f}}};
  FromGrid(pOut, g);
  return pOut;
}

D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX* pOut, const D3DXVECTOR3* eye, const D3DXVECTOR3* at,
                               const D3DXVECTOR3* up) {
  D3DXVECTOR3 zaxis = *at - *eye;
  D3DXVec3Normalize(&zaxis, &zaxis);
  D3DXVECTOR3 xaxis;
  D3DXVec3Cross(&xaxis, up, &zaxis);
  D3DXVec3Normalize(&xaxis, &xaxis);
  D3DXVECTOR3 yaxis;
  D3DXVec3Cross(&yaxis, &zaxis, &xaxis);
  const D3DXVECTOR3 e = *eye;
  const Grid g{{{xaxis.x, yaxis.x, zaxis.x, 0.0f},
                {xaxis.y, yaxis.y, zaxis.y, 0.0f},
                {xaxis.z, yaxis.z, zaxis.z, 0.0f},
                {-D3DXVec3Dot(&xaxis, &e), -D3DXVec3Dot(&yaxis, &e), -D3DXVec3Dot(&zaxis, &e), 1.0f}}};
  FromGrid(pOut, g);
  return pOut;
}

D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX* pOut, float fovy, float aspect, float zn, float zf) {
  const float yScale = 1.0f / std::tan(fovy / 2.0f);
  const float xScale = yScale / aspect;
  const float depth = zf / (zf - zn);
  const Grid g{{{xScale, 0.0f, 0.0f, 0.0f},
                {0.0f, yScale, 0.0f, 0.0f},
                {0.0f, 0.0f, depth, 1.0f},
                {0.0f, 0.0f, -zn * depth, 0.0f}}};
  FromGrid(pOut, g);
  return pOut;
}

// ---- planes ----------------------------------------------------------------

D3DXPLANE* D3DXPlaneNormalize(D3DXPLANE* pOut, const D3DXPLANE* p) {
  const float length = std::sqrt(p->a * p->a + p->b * p->b + p->c * p->c);
  if (length == 0.0f) {
    *pOut = *p;  // no normal to scale by
  } else {
    *pOut = D3DXPLANE(p->a / length, p->b / length, p->c / length, p->d / length);
  }
  return pOut;
}

D3DXVECTOR3* D3DXPlaneIntersectLine(D3DXVECTOR3* pOut, const D3DXPLANE* p, const D3DXVECTOR3* v1,
                                    const D3DXVECTOR3* v2) {
  const D3DXVECTOR3 direction = *v2 - *v1;
  const float denominator = p->a * direction.x + p->b * direction.y + p->c * direction.z;
  if (denominator == 0.0f) return nullptr;
  const float t = -D3DXPlaneDotCoord(p, v1) / denominator;
  *pOut = *v1 + direction * t;
  return pOut;
}
