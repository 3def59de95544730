// From vertices to pixels: where pre-transformed and transformed vertices
// land, the row-vector transform order, depth from 0 to 1, culling by screen
// winding across the y flip, wireframe, depth test and write, and blending.
#include <algorithm>
#include <utility>

#include "GLFixture.h"
#include "platform/d3dx9/d3dx9math.h"

namespace gltest {
namespace {

constexpr D3DCOLOR kClear = 0xFF204080;
constexpr D3DCOLOR kInk = 0xFFFFFFFF;

struct Probe {
  int x, y;
  bool inked;
};

// No texture is set: a stage colouring from a missing texture ends the
// cascade, so the diffuse colour and alpha are drawn.
class RasterTest : public DeviceTest {
 protected:
  // Vertices given in pixels (x, y pairs), drawn as screen vertices or, with
  // `world`, as model-space ones at clip depth z through whatever transforms
  // are set (identity by default).
  HRESULT Draw(D3DPRIMITIVETYPE type, const std::vector<float>& xy, bool world, float z = 0.5f) {
    std::vector<ScreenVertex> screen;
    std::vector<WorldVertex> model;
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
      screen.push_back({xy[i], xy[i + 1], z, 1.0f, kInk, 0, 0, 0, 0});
      model.push_back({xy[i] / 32.0f - 1.0f, 1.0f - xy[i + 1] / 32.0f, z, kInk, 0, 0});
    }
    const UINT count =
        type == D3DPT_TRIANGLELIST ? UINT(screen.size() / 3) : UINT(screen.size() - 2);
    device_->SetFVF(world ? kWorldFVF : kScreenFVF);
    return world ? device_->DrawPrimitiveUP(type, count, model.data(), sizeof(WorldVertex))
                 : device_->DrawPrimitiveUP(type, count, screen.data(), sizeof(ScreenVertex));
  }
  void ExpectInk(const std::vector<Probe>& probes) {
    const std::vector<D3DCOLOR> f = Frame();
    for (const Probe& p : probes)
      EXPECT_EQ(f[std::size_t(p.y) * kSize + std::size_t(p.x)] == kInk, p.inked)
          << p.x << "," << p.y;
  }
};

TEST_F(RasterTest, PreTransformedVerticesLandOnTheirPixels) {
  // Screen vertices are render-target pixels: a viewport does not move them.
  for (const D3DVIEWPORT9 viewport :
       {D3DVIEWPORT9{0, 0, kSize, kSize, 0.0f, 1.0f}, D3DVIEWPORT9{8, 4, 48, 40, 0.0f, 1.0f}}) {
    SCOPED_TRACE(viewport.X);
    ASSERT_EQ(device_->SetViewport(&viewport), D3D_OK);
    ClearAll(kClear);
    ASSERT_EQ(Quad({10, 6, 30, 20}, kInk), D3D_OK);
    // The four corner pixels inked, and just so many pixels in all.
    ExpectInk({{10, 6, true}, {29, 6, true}, {10, 19, true}, {29, 19, true}});
    const std::vector<D3DCOLOR> f = Frame();
    EXPECT_EQ(std::count(f.begin(), f.end(), kInk), 20 * 14);
  }
}

TEST_F(RasterTest, TransformsApplyWorldThenViewThenProjectionToRowVectors) {
  // A square of half-side 8 pixels about the centre: scaled by 2 (world), moved
  // right by 8 pixels (view), moved up by 8 pixels (projection).
  D3DXMATRIX world, view, proj;
  D3DXMatrixIdentity(&world);
  world._11 = world._22 = 2.0f;
  D3DXMatrixTranslation(&view, 0.25f, 0.0f, 0.0f);
  D3DXMatrixTranslation(&proj, 0.0f, 0.25f, 0.0f);
  device_->SetTransform(D3DTS_WORLD, &world);
  device_->SetTransform(D3DTS_VIEW, &view);
  device_->SetTransform(D3DTS_PROJECTION, &proj);
  ClearAll(kClear);
  ASSERT_EQ(Draw(D3DPT_TRIANGLEFAN, {24, 24, 40, 24, 40, 40, 24, 40}, true), D3D_OK);
  // Expected: x from 24 to 56, y from 8 to 40. In any other order of the
  // three the square starts at x 32 or y 0.
  const std::vector<Probe> probes = {{25, 9, true},  {55, 39, true},  {23, 20, false},
                                     {40, 7, false}, {56, 20, false}, {40, 40, false},
                                     {28, 36, true}, {50, 4, false}};
  ExpectInk(probes);
}

TEST_F(RasterTest, ClipDepthRunsFromZeroToOne) {
  const std::pair<float, bool> cases[] = {
      {-0.25f, false}, {0.25f, true}, {0.75f, true}, {1.25f, false}};
  for (const auto& [z, drawn] : cases) {
    SCOPED_TRACE(z);
    ClearAll(kClear);
    ASSERT_EQ(Draw(D3DPT_TRIANGLELIST, {8, 8, 40, 8, 8, 40}, true, z), D3D_OK);
    ExpectInk({{12, 12, drawn}});
  }
}

TEST_F(RasterTest, CullModesFollowTheWindingOnScreen) {
  // Clockwise on screen (y down) at the top left, counter-clockwise at the
  // bottom right, and a strip at the top right whose second triangle is
  // counter-clockwise as listed but counts as clockwise, as strips alternate.
  struct Case {
    DWORD cull;
    bool clockwiseShown, counterShown;
  };
  const Case cases[] = {
      {D3DCULL_CCW, true, false}, {D3DCULL_CW, false, true}, {D3DCULL_NONE, true, true}};
  for (const bool world : {false, true})
    for (const Case& c : cases) {
      SCOPED_TRACE(::testing::Message() << "cull " << c.cull << (world ? ", model" : ", screen"));
      ClearAll(kClear);
      device_->SetRenderState(D3DRS_CULLMODE, c.cull);
      ASSERT_EQ(Draw(D3DPT_TRIANGLELIST, {4, 4, 28, 4, 4, 28, 36, 36, 36, 60, 60, 36}, world),
                D3D_OK);
      ASSERT_EQ(Draw(D3DPT_TRIANGLESTRIP, {36, 4, 60, 4, 36, 28, 60, 28}, world), D3D_OK);
      const bool cw = c.clockwiseShown, ccw = c.counterShown;
      ExpectInk({{8, 8, cw}, {40, 44, ccw}, {40, 8, cw}, {56, 24, cw}});
    }
}

// Wireframe draws the edges of what culling keeps (as line lists where the
// GL has no polygon mode), never the insides.
TEST_F(RasterTest, WireframeDrawsTheEdgesOfTheTrianglesCullingKeeps) {
  device_->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
  for (const DWORD cull : {DWORD(D3DCULL_CCW), DWORD(D3DCULL_CW)}) {
    SCOPED_TRACE(::testing::Message() << "cull " << cull);
    ClearAll(kClear);
    device_->SetRenderState(D3DRS_CULLMODE, cull);
    ASSERT_EQ(Draw(D3DPT_TRIANGLELIST, {4, 4, 28, 4, 4, 28, 36, 36, 36, 60, 60, 36}, true), D3D_OK);
    ASSERT_EQ(Draw(D3DPT_TRIANGLESTRIP, {36, 4, 60, 4, 36, 28, 60, 28}, false), D3D_OK);
    const std::vector<D3DCOLOR> f = Frame();
    // A line along a pixel border may take the row (column) on either side.
    auto edge = [&](int x, int y, bool rows) {
      return f[std::size_t(y) * kSize + std::size_t(x)] == kInk ||
             f[std::size_t(rows ? y - 1 : y) * kSize + std::size_t(rows ? x : x - 1)] == kInk;
    };
    const bool cw = cull == D3DCULL_CCW;
    EXPECT_EQ(edge(16, 4, true), cw);     // the clockwise triangle's top
    EXPECT_EQ(edge(36, 50, false), !cw);  // the counter-clockwise one's left
    EXPECT_EQ(edge(50, 28, true), cw);    // the strip's second triangle's bottom
    ExpectInk({{8, 8, false}, {40, 44, false}, {56, 24, false}});
  }
}

TEST_F(RasterTest, DepthTestAndWrite) {
  constexpr D3DCOLOR kFirst = 0xFFFF0000, kSecond = 0xFF00FF00;
  struct Case {
    const char* name;
    DWORD firstWrite, secondZEnable;
    float firstZ, secondZ;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"a nearer quad that wrote depth hides a farther one", TRUE, D3DZB_TRUE, 0.2f, 0.6f, kFirst},
      {"a nearer quad that did not write depth does not", FALSE, D3DZB_TRUE, 0.2f, 0.6f, kSecond},
      {"a nearer second quad covers the first", TRUE, D3DZB_TRUE, 0.6f, 0.2f, kSecond},
      {"equal depth passes (LESSEQUAL)", TRUE, D3DZB_TRUE, 0.5f, 0.5f, kSecond},
      {"no depth test draws over anything", TRUE, D3DZB_FALSE, 0.2f, 0.6f, kSecond},
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
