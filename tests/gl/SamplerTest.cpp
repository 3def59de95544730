// Sampler states: magnification by point or linear filter, which mip level a
// minified texture shows (D3DTEXF_NONE: the top level only), and WRAP versus
// CLAMP addressing on each axis.
#include "GLFixture.h"

namespace gltest {
namespace {

class SamplerTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
  }
  void Sampler(IDirect3DTexture9* texture, D3DSAMPLERSTATETYPE a, DWORD av, D3DSAMPLERSTATETYPE b,
               DWORD bv) {
    device_->SetTexture(0, texture);
    device_->SetSamplerState(0, a, av);
    device_->SetSamplerState(0, b, bv);
    ClearAll();
  }
};

TEST_F(SamplerTest, MagnificationFilterAndAddressing) {
  // A 2x2 checker of black and white over 32x32 pixels: pixel 15 lies just
  // left of the middle, where a linear filter mixes the columns, pixel 24 past
  // the centre of a white texel. Red, green / blue, white with coordinates 0
  // to 2: at pixel 20 a coordinate is about 1.28.
  IDirect3DTexture9* checker = MakeTexture(2, 2, {0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF, 0xFF000000});
  IDirect3DTexture9* colours = MakeTexture(2, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF});
  constexpr DWORD WRAP = D3DTADDRESS_WRAP, CLAMP = D3DTADDRESS_CLAMP, POINT = D3DTEXF_POINT;
  struct Probe {
    int x, y;
    D3DCOLOR want;
  };
  struct Case {
    const char* name;
    IDirect3DTexture9* texture;
    DWORD mag, u, v;
    float uvEnd;
    Probe a, b;
    int tolerance = 0;
  };
  const Case cases[] = {
      {"POINT keeps the texel", checker, POINT, CLAMP, CLAMP, 1, {15, 8, 0xFF000000}, {24, 4, ~0u}},
      {"LINEAR mixes the neighbours",
       checker,
       D3DTEXF_LINEAR,
       CLAMP,
       CLAMP,
       1,
       {15, 8, 0xFF808080},
       {24, 4, ~0u},
       0x30},
      {"ANISOTROPIC magnifies linearly",
       checker,
       D3DTEXF_ANISOTROPIC,
       CLAMP,
       CLAMP,
       1,
       {15, 8, 0xFF808080},
       {24, 4, ~0u},
       0x30},
      {"WRAP, WRAP", colours, POINT, WRAP, WRAP, 2, {20, 4, 0xFFFF0000}, {4, 20, 0xFFFF0000}},
      {"CLAMP, WRAP", colours, POINT, CLAMP, WRAP, 2, {20, 4, 0xFF00FF00}, {4, 20, 0xFFFF0000}},
      {"WRAP, CLAMP", colours, POINT, WRAP, CLAMP, 2, {20, 4, 0xFFFF0000}, {4, 20, 0xFF0000FF}},
      {"CLAMP, CLAMP", colours, POINT, CLAMP, CLAMP, 2, {20, 4, 0xFF00FF00}, {4, 20, 0xFF0000FF}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Sampler(c.texture, D3DSAMP_ADDRESSU, c.u, D3DSAMP_ADDRESSV, c.v);
    device_->SetSamplerState(0, D3DSAMP_MAGFILTER, c.mag);
    ASSERT_EQ(Quad({0, 0, 32, 32}, 0xFFFFFFFF, {0, 0, c.uvEnd, c.uvEnd}), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(c.a.x, c.a.y), c.a.want, c.tolerance));
    EXPECT_TRUE(ColorNear(Pixel(c.b.x, c.b.y), c.b.want, c.tolerance));
  }
}

TEST_F(SamplerTest, MipFilterChoosesTheLevel) {
  // Levels red, green, blue, then white. 64x64 drawn on 16x16 pixels is level
  // 2 exactly; on 20x20 pixels level 1.68, nearest to 2, between 1 and 2.
  IDirect3DTexture9* texture = MakeTexture(64, 64, {0xFFFF0000}, 0);
  ASSERT_EQ(texture->GetLevelCount(), 7u);
  FillLevel(texture, 1, {0xFF00FF00});
  FillLevel(texture, 2, {0xFF0000FF});
  for (UINT level = 3; level < 7; ++level) FillLevel(texture, level, {0xFFFFFFFF});
  struct Case {
    const char* name;
    DWORD min, mip;
    float size;
    D3DCOLOR want;
    int tolerance = 8;
  };
  const Case cases[] = {
      {"NONE reads the top level only", D3DTEXF_POINT, D3DTEXF_NONE, 16, 0xFFFF0000},
      {"NONE with a linear minifier", D3DTEXF_LINEAR, D3DTEXF_NONE, 20, 0xFFFF0000},
      {"POINT picks level 2", D3DTEXF_POINT, D3DTEXF_POINT, 16, 0xFF0000FF},
      {"POINT picks the nearest level", D3DTEXF_POINT, D3DTEXF_POINT, 20, 0xFF0000FF},
      {"POINT under a linear minifier", D3DTEXF_LINEAR, D3DTEXF_POINT, 20, 0xFF0000FF},
      {"LINEAR between levels lands on level 2", D3DTEXF_LINEAR, D3DTEXF_LINEAR, 16, 0xFF0000FF},
      {"LINEAR mixes levels 1 and 2", D3DTEXF_LINEAR, D3DTEXF_LINEAR, 20, 0xFF0052AD, 0x30},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Sampler(texture, D3DSAMP_MINFILTER, c.min, D3DSAMP_MIPFILTER, c.mip);
    ASSERT_EQ(Quad({8, 8, 8 + c.size, 8 + c.size}, 0xFFFFFFFF), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(16, 16), c.want, c.tolerance));
  }
}

}  // namespace
}  // namespace gltest
