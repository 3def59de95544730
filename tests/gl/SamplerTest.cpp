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
    device_->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);
  }
  static int Red(D3DCOLOR c) { return int((c >> 16) & 0xFF); }
};

TEST_F(SamplerTest, MagnificationFilter) {
  // A 2x2 checker of black and white stretched over 32x32 pixels: pixel 15
  // lies just left of the middle, where a linear filter mixes the columns.
  IDirect3DTexture9* checker = MakeTexture(2, 2, {0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF, 0xFF000000});
  struct Case {
    const char* name;
    DWORD mag;
    int low, high;  // red channel at (15, 8)
  };
  const Case cases[] = {
      {"POINT keeps the texel", D3DTEXF_POINT, 0, 0},
      {"LINEAR mixes the neighbours", D3DTEXF_LINEAR, 0x50, 0xB0},
      {"ANISOTROPIC magnifies linearly", D3DTEXF_ANISOTROPIC, 0x50, 0xB0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    device_->SetTexture(0, checker);
    device_->SetSamplerState(0, D3DSAMP_MAGFILTER, c.mag);
    device_->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
    device_->SetSamplerState(0, D3DSAMP_ADDRESSV, D3DTADDRESS_CLAMP);
    ClearAll();
    ASSERT_EQ(Quad({0, 0, 32, 32}, 0xFFFFFFFF), D3D_OK);
    int red = Red(Pixel(15, 8));
    EXPECT_GE(red, c.low);
    EXPECT_LE(red, c.high);
    EXPECT_EQ(Red(Pixel(24, 4)), 0xFF);  // past the centre of the white texel, so all white
  }
}

TEST_F(SamplerTest, MipFilterChoosesTheLevel) {
  // 64x64 drawn on 16x16 pixels: a quarter in each direction, level 2.
  IDirect3DTexture9* texture = MakeTexture(64, 64, std::vector<D3DCOLOR>(64 * 64, 0xFFFF0000), 0);
  ASSERT_EQ(texture->GetLevelCount(), 7u);
  FillLevel(texture, 1, 0xFF00FF00);
  FillLevel(texture, 2, 0xFF0000FF);
  for (UINT level = 3; level < 7; ++level) FillLevel(texture, level, 0xFFFFFFFF);
  struct Case {
    const char* name;
    DWORD min, mip;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"NONE reads the top level only", D3DTEXF_POINT, D3DTEXF_NONE, 0xFFFF0000},
      {"NONE with a linear minifier", D3DTEXF_LINEAR, D3DTEXF_NONE, 0xFFFF0000},
      {"POINT picks level 2", D3DTEXF_POINT, D3DTEXF_POINT, 0xFF0000FF},
      {"LINEAR between levels lands on level 2", D3DTEXF_LINEAR, D3DTEXF_LINEAR, 0xFF0000FF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    device_->SetTexture(0, texture);
    device_->SetSamplerState(0, D3DSAMP_MINFILTER, c.min);
    device_->SetSamplerState(0, D3DSAMP_MIPFILTER, c.mip);
    ClearAll();
    ASSERT_EQ(Quad({8, 8, 24, 24}, 0xFFFFFFFF), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(16, 16), c.want, 8));
  }
}

TEST_F(SamplerTest, WrapRepeatsAndClampStretchesTheEdge) {
  // Red, green / blue, white, with coordinates 0 to 2 over 32 pixels: at
  // pixel 20 a coordinate is about 1.28.
  IDirect3DTexture9* texture = MakeTexture(2, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF});
  struct Case {
    const char* name;
    DWORD u, v;
    D3DCOLOR right, below;  // at (20, 4) and (4, 20)
  };
  const Case cases[] = {
      {"WRAP, WRAP", D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, 0xFFFF0000, 0xFFFF0000},
      {"CLAMP, WRAP", D3DTADDRESS_CLAMP, D3DTADDRESS_WRAP, 0xFF00FF00, 0xFFFF0000},
      {"WRAP, CLAMP", D3DTADDRESS_WRAP, D3DTADDRESS_CLAMP, 0xFFFF0000, 0xFF0000FF},
      {"CLAMP, CLAMP", D3DTADDRESS_CLAMP, D3DTADDRESS_CLAMP, 0xFF00FF00, 0xFF0000FF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    device_->SetTexture(0, texture);
    device_->SetSamplerState(0, D3DSAMP_ADDRESSU, c.u);
    device_->SetSamplerState(0, D3DSAMP_ADDRESSV, c.v);
    ClearAll();
    ASSERT_EQ(Quad({0, 0, 32, 32}, 0xFFFFFFFF, {0, 0, 2, 2}), D3D_OK);
    EXPECT_EQ(Pixel(20, 4), c.right);
    EXPECT_EQ(Pixel(4, 20), c.below);
  }
}

}  // namespace
}  // namespace gltest
