// From vertices to pixels: where pre-transformed and transformed vertices
// land, the row-vector transform order, depth from 0 to 1, culling by screen
// winding across the y flip, wireframe, depth test and write, and blending.
#include <cmath>

#include "GLFixture.h"

namespace gltest {
namespace {

constexpr D3DCOLOR kClear = 0xFF204080;
constexpr D3DCOLOR kInk = 0xFFFFFFFF;

// Pixel coordinates (y down) to normalised device coordinates (y up).
float NdcX(float px) {
  return px / (float(kSize) / 2.0f) - 1.0f;
}
float NdcY(float py) {
  return 1.0f - py / (float(kSize) / 2.0f);
}

D3DMATRIX Identity() {
  D3DMATRIX m{};
  m._11 = m._22 = m._33 = m._44 = 1.0f;
  return m;
}

class RasterTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    // Diffuse colour only: no texture involved.
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device_->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_DIFFUSE);
    device_->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG1);
    device_->SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
  }

  // A triangle list of transformed vertices given in pixels, at clip depth z.
  HRESULT WorldTriangles(const std::vector<float>& xy, float z, D3DCOLOR color) {
    std::vector<WorldVertex> v;
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2)
      v.push_back({NdcX(xy[i]), NdcY(xy[i + 1]), z, color, 0, 0});
    device_->SetFVF(kWorldFVF);
    HRESULT hr = device_->DrawPrimitiveUP(D3DPT_TRIANGLELIST, UINT(v.size() / 3), v.data(),
                                          sizeof(WorldVertex));
    device_->SetFVF(kScreenFVF);
    return hr;
  }
  bool Inked(int x, int y) { return Pixel(x, y) == kInk; }
};

TEST_F(RasterTest, PreTransformedVerticesLandOnTheirPixels) {
  struct Case {
    const char* name;
    D3DVIEWPORT9 viewport;
  };
  const Case cases[] = {
      {"whole viewport", {0, 0, kSize, kSize, 0.0f, 1.0f}},
      // Screen vertices are render-target pixels: the viewport does not move them.
      {"offset viewport", {8, 4, 48, 40, 0.0f, 1.0f}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_EQ(device_->SetViewport(&c.viewport), D3D_OK);
    ClearAll(kClear);
    ASSERT_EQ(Quad({10, 6, 30, 20}, kInk), D3D_OK);
    std::vector<D3DCOLOR> f = Frame();
    auto at = [&](int x, int y) { return f[std::size_t(y) * kSize + std::size_t(x)]; };
    EXPECT_EQ(at(10, 6), kInk);
    EXPECT_EQ(at(29, 6), kInk);
    EXPECT_EQ(at(10, 19), kInk);
    EXPECT_EQ(at(29, 19), kInk);
    EXPECT_EQ(at(9, 6), kClear);
    EXPECT_EQ(at(10, 5), kClear);
    EXPECT_EQ(at(30, 19), kClear);
    EXPECT_EQ(at(29, 20), kClear);
    int inked = 0;
    for (D3DCOLOR p : f) inked += p == kInk;
    EXPECT_EQ(inked, 20 * 14);
  }
}

TEST_F(RasterTest, TransformsApplyWorldThenViewThenProjectionToRowVectors) {
  // A square of half-side 8 pixels about the centre: scaled by 2 (world), moved
  // right by 8 pixels (view), moved up by 8 pixels (projection).
  D3DMATRIX world = Identity(), view = Identity(), proj = Identity();
  world._11 = world._22 = 2.0f;
  view._41 = 0.25f;
  proj._42 = 0.25f;
  device_->SetTransform(D3DTS_WORLD, &world);
  device_->SetTransform(D3DTS_VIEW, &view);
  device_->SetTransform(D3DTS_PROJECTION, &proj);
  ClearAll(kClear);
  ASSERT_EQ(WorldTriangles({24, 24, 40, 24, 40, 40, 24, 24, 40, 40, 24, 40}, 0.5f, kInk), D3D_OK);
  // Expected: x from 24 to 56, y from 8 to 40. In any other order of the
  // three the square starts at x 32 or y 0.
  struct Probe {
    int x, y;
    bool inked;
  };
  const Probe probes[] = {{25, 9, true},   {55, 39, true},  {23, 20, false}, {40, 7, false},
                          {56, 20, false}, {40, 40, false}, {28, 36, true},  {50, 4, false}};
  for (const Probe& p : probes) EXPECT_EQ(Inked(p.x, p.y), p.inked) << p.x << "," << p.y;
}

TEST_F(RasterTest, ClipDepthRunsFromZeroToOne) {
  struct Case {
    float z;
    bool drawn;
  };
  const Case cases[] = {{-0.25f, false}, {0.25f, true}, {0.75f, true}, {1.25f, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.z);
    ClearAll(kClear);
    ASSERT_EQ(WorldTriangles({8, 8, 40, 8, 8, 40}, c.z, kInk), D3D_OK);
    EXPECT_EQ(Inked(12, 12), c.drawn);
  }
}

TEST_F(RasterTest, CullModesFollowTheWindingOnScreen) {
  // Clockwise on screen (y down) at the top left, counter-clockwise at the
  // bottom right, and a strip at the top right whose second triangle is
  // counter-clockwise as listed but counts as clockwise, as strips alternate.
  const std::vector<float> clockwise = {4, 4, 28, 4, 4, 28};
  const std::vector<float> counter = {36, 36, 36, 60, 60, 36};
  const float strip[4][2] = {{36, 4}, {60, 4}, {36, 28}, {60, 28}};
  struct Case {
    const char* name;
    DWORD cull;
    bool pretransformed;
    bool clockwiseShown, counterShown, stripShown;
  };
  const Case cases[] = {
      {"CCW, screen vertices", D3DCULL_CCW, true, true, false, true},
      {"CW, screen vertices", D3DCULL_CW, true, false, true, false},
      {"NONE, screen vertices", D3DCULL_NONE, true, true, true, true},
      {"CCW, transformed vertices", D3DCULL_CCW, false, true, false, true},
      {"CW, transformed vertices", D3DCULL_CW, false, false, true, false},
      {"NONE, transformed vertices", D3DCULL_NONE, false, true, true, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll(kClear);
    device_->SetRenderState(D3DRS_CULLMODE, c.cull);
    if (c.pretransformed) {
      Triangle(clockwise[0], clockwise[1], clockwise[2], clockwise[3], clockwise[4], clockwise[5],
               kInk);
      Triangle(counter[0], counter[1], counter[2], counter[3], counter[4], counter[5], kInk);
      ScreenVertex v[4];
      for (int i = 0; i < 4; ++i) v[i] = {strip[i][0], strip[i][1], 0.5f, 1.0f, kInk, 0, 0, 0, 0};
      ASSERT_EQ(device_->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, v, sizeof v[0]), D3D_OK);
    } else {
      WorldTriangles(clockwise, 0.5f, kInk);
      WorldTriangles(counter, 0.5f, kInk);
      WorldVertex v[4];
      for (int i = 0; i < 4; ++i) v[i] = {NdcX(strip[i][0]), NdcY(strip[i][1]), 0.5f, kInk, 0, 0};
      device_->SetFVF(kWorldFVF);
      ASSERT_EQ(device_->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, v, sizeof v[0]), D3D_OK);
      device_->SetFVF(kScreenFVF);
    }
    EXPECT_EQ(Inked(8, 8), c.clockwiseShown);
    EXPECT_EQ(Inked(40, 44), c.counterShown);
    EXPECT_EQ(Inked(40, 8), c.stripShown);   // first strip triangle
    EXPECT_EQ(Inked(56, 24), c.stripShown);  // second strip triangle
  }
}

TEST_F(RasterTest, WireframeDrawsOnlyTheEdges) {
  struct Probe {
    int x, y;
    bool inked;
  };
  struct Case {
    DWORD fill;
    std::vector<Probe> probes;
  };
  const Case cases[] = {
      {D3DFILL_SOLID,
       {{24, 9, true},
        {9, 24, true},
        {39, 24, true},
        {24, 39, true},
        {30, 16, true},
        {16, 30, true}}},
      // The four sides and the diagonal between the fan's two triangles.
      {D3DFILL_WIREFRAME,
       {{24, 8, true},
        {8, 24, true},
        {40, 24, true},
        {24, 40, true},
        {24, 24, true},
        {24, 9, false},
        {30, 16, false},
        {16, 30, false}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fill);
    device_->SetRenderState(D3DRS_FILLMODE, c.fill);
    ClearAll(kClear);
    // Edges through pixel centres, so each edge lights one row or column.
    ASSERT_EQ(Quad({8.5f, 8.5f, 40.5f, 40.5f}, kInk), D3D_OK);
    for (const Probe& p : c.probes) EXPECT_EQ(Inked(p.x, p.y), p.inked) << p.x << "," << p.y;
  }
}

TEST_F(RasterTest, DepthTestAndWrite) {
  constexpr D3DCOLOR kFirst = 0xFFFF0000, kSecond = 0xFF00FF00;
  struct Case {
    const char* name;
    float firstZ;
    DWORD firstWrite;
    float secondZ;
    DWORD secondZEnable;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"a nearer quad that wrote depth hides a farther one", 0.2f, TRUE, 0.6f, D3DZB_TRUE, kFirst},
      {"a nearer quad that did not write depth does not", 0.2f, FALSE, 0.6f, D3DZB_TRUE, kSecond},
      {"a nearer second quad covers the first", 0.6f, TRUE, 0.2f, D3DZB_TRUE, kSecond},
      {"equal depth passes (LESSEQUAL)", 0.5f, TRUE, 0.5f, D3DZB_TRUE, kSecond},
      {"no depth test draws over anything", 0.2f, TRUE, 0.6f, D3DZB_FALSE, kSecond},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    device_->SetRenderState(D3DRS_ZENABLE, D3DZB_TRUE);
    ClearAll(kClear);
    device_->SetRenderState(D3DRS_ZWRITEENABLE, c.firstWrite);
    ASSERT_EQ(Quad({8, 8, 40, 40}, kFirst, {}, c.firstZ), D3D_OK);
    device_->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
    device_->SetRenderState(D3DRS_ZENABLE, c.secondZEnable);
    ASSERT_EQ(Quad({16, 16, 48, 48}, kSecond, {}, c.secondZ), D3D_OK);
    EXPECT_EQ(Pixel(24, 24), c.want);
    EXPECT_EQ(Pixel(44, 44), kSecond);
  }
}

TEST_F(RasterTest, BlendFactors) {
  // Background 0xFF204080 under a source of 0x80C08040 (alpha about one half).
  constexpr D3DCOLOR kSource = 0x80C08040;
  struct Case {
    const char* name;
    DWORD enable, src, dst;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"off", FALSE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, kSource},
      {"SRCALPHA, INVSRCALPHA", TRUE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, 0xBF706060},
      {"DESTCOLOR, SRCCOLOR", TRUE, D3DBLEND_DESTCOLOR, D3DBLEND_SRCCOLOR, 0xFF304040},
      {"ZERO, SRCCOLOR", TRUE, D3DBLEND_ZERO, D3DBLEND_SRCCOLOR, 0x80182020},
      {"ONE, ONE", TRUE, D3DBLEND_ONE, D3DBLEND_ONE, 0xFFE0C0C0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll(kClear);
    device_->SetRenderState(D3DRS_ALPHABLENDENABLE, c.enable);
    device_->SetRenderState(D3DRS_SRCBLEND, c.src);
    device_->SetRenderState(D3DRS_DESTBLEND, c.dst);
    ASSERT_EQ(Quad({8, 8, 40, 40}, kSource), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.want));
    EXPECT_EQ(Pixel(50, 50), kClear);
  }
}

}  // namespace
}  // namespace gltest
