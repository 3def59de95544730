// The three vertex layouts the system shares with the device. Sizes and field
// offsets are device formats and are checked at compile time.
//   CVertex         D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1  (0x142), 24 bytes
//   CTerrainVertex  D3DFVF_XYZ | D3DFVF_TEX2                   (0x202), 28 bytes
//   CScreenVertex   D3DFVF_XYZRHW | D3DFVF_DIFFUSE             (0x044), 20 bytes
#pragma once

#include <cstddef>
#include <cstdint>

// Position, colour word (alpha in the top byte) and one texture pair.
struct CVertex {
  static constexpr std::uint32_t FVF = 0x142;

  CVertex() : m_x(0.0f), m_y(0.0f), m_z(0.0f), m_diffuse(0xFF000000u), m_tu(0.0f), m_tv(0.0f) {}
  CVertex(float x, float y, float z, std::uint32_t diffuse, float tu = 0.0f, float tv = 0.0f)
      : m_x(x), m_y(y), m_z(z), m_diffuse(diffuse), m_tu(tu), m_tv(tv) {}

  float m_x;
  float m_y;
  float m_z;
  std::uint32_t m_diffuse;
  float m_tu;
  float m_tv;
};

// Position and two texture pairs: the terrain fills all seven fields; the sky
// box leaves the second pair unset.
struct CTerrainVertex {
  static constexpr std::uint32_t FVF = 0x202;

  CTerrainVertex() = default;
  CTerrainVertex(float x, float y, float z, float tu, float tv)
      : m_x(x), m_y(y), m_z(z), m_tu(tu), m_tv(tv) {}

  float m_x;
  float m_y;
  float m_z;
  float m_tu;
  float m_tv;
  float m_tu2;
  float m_tv2;
};

// A point already in viewport pixels (x right, y down), which bypasses the
// transforms: the water tint drawn over the screen.
struct CScreenVertex {
  static constexpr std::uint32_t FVF = 0x44;

  CScreenVertex() : m_x(0.0f), m_y(0.0f), m_z(0.0f), m_rhw(0.0f), m_diffuse(0xFF000000u) {}
  CScreenVertex(float x, float y, float z, float rhw, std::uint32_t diffuse)
      : m_x(x), m_y(y), m_z(z), m_rhw(rhw), m_diffuse(diffuse) {}

  float m_x;
  float m_y;
  float m_z;
  float m_rhw;
  std::uint32_t m_diffuse;
};

static_assert(sizeof(CVertex) == 24, "CVertex is a 24-byte device format");
static_assert(offsetof(CVertex, m_x) == 0 && offsetof(CVertex, m_y) == 4 &&
              offsetof(CVertex, m_z) == 8);
static_assert(offsetof(CVertex, m_diffuse) == 12 && offsetof(CVertex, m_tu) == 16 &&
              offsetof(CVertex, m_tv) == 20);
static_assert(sizeof(CTerrainVertex) == 28, "CTerrainVertex is a 28-byte device format");
static_assert(offsetof(CTerrainVertex, m_x) == 0 && offsetof(CTerrainVertex, m_y) == 4 &&
              offsetof(CTerrainVertex, m_z) == 8);
static_assert(offsetof(CTerrainVertex, m_tu) == 12 && offsetof(CTerrainVertex, m_tv) == 16 &&
              offsetof(CTerrainVertex, m_tu2) == 20 && offsetof(CTerrainVertex, m_tv2) == 24);
static_assert(sizeof(CScreenVertex) == 20, "CScreenVertex is a 20-byte device format");
static_assert(offsetof(CScreenVertex, m_rhw) == 12 && offsetof(CScreenVertex, m_diffuse) == 16);
