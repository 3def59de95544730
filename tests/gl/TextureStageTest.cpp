// The texture stage cascade: every colour and alpha operation on known texels
// and diffuse colours (results clamp to 0..1), the coordinate set a stage
// reads, and the rule that a stage colouring from a missing texture ends the
// cascade. Expected colours are worked out by hand from the operations'
// definitions. Then sampler states: magnification by point or linear filter,
// which mip level a minified texture shows (D3DTEXF_NONE: the top level
// only), and WRAP versus CLAMP addressing on each axis.
#include "GLFixture.h"

namespace gltest {
namespace {

constexpr DWORD TEX = D3DTA_TEXTURE, DIF = D3DTA_DIFFUSE, CUR = D3DTA_CURRENT;
constexpr DWORD SEL1 = D3DTOP_SELECTARG1, OFF = D3DTOP_DISABLE;

struct StageOps {
  DWORD colorOp, colorArg1, colorArg2, alphaOp, alphaArg1, alphaArg2;
};
constexpr StageOps kOff{OFF, TEX, CUR, OFF, TEX, CUR};
// `op` on the colours, the alpha of the first argument; or the other way round.
constexpr StageOps Color(DWORD op, DWORD arg1 = TEX, DWORD arg2 = DIF) {
  return {op, arg1, arg2, SEL1, arg1, arg2};
}
constexpr StageOps Alpha(DWORD op) {
  return {SEL1, TEX, DIF, op, TEX, DIF};
}

class DeviceStageTest : public DeviceTest {
 protected:
  void SetStage(DWORD stage, IDirect3DTexture9* texture, const StageOps& s, DWORD coordSet) {
    device_->SetTexture(stage, texture);
    device_->SetTextureStageState(stage, D3DTSS_COLOROP, s.colorOp);
    device_->SetTextureStageState(stage, D3DTSS_COLORARG1, s.colorArg1);
    device_->SetTextureStageState(stage, D3DTSS_COLORARG2, s.colorArg2);
    device_->SetTextureStageState(stage, D3DTSS_ALPHAOP, s.alphaOp);
    device_->SetTextureStageState(stage, D3DTSS_ALPHAARG1, s.alphaArg1);
    device_->SetTextureStageState(stage, D3DTSS_ALPHAARG2, s.alphaArg2);
    device_->SetTextureStageState(stage, D3DTSS_TEXCOORDINDEX, coordSet);
  }
};

TEST_F(DeviceStageTest, OperationsClampStagesReadTheirSetAndANullTextureEndsTheCascade) {
  // Coordinate set 0 points at the case's texel, set 1 at a grey one.
  const UV set0{0.25f, 0.25f, 0.25f, 0.25f}, set1{0.75f, 0.75f, 0.75f, 0.75f};
  constexpr D3DCOLOR T = 0xFFC04080, kDiffuse = 0x80306090;
  const StageOps add = Color(D3DTOP_ADD, TEX, CUR), mod = Color(D3DTOP_MODULATE, TEX, CUR);
  struct Case {
    const char* name;
    StageOps stage0;
    D3DCOLOR texel, diffuse, want;
    StageOps stage1 = kOff;
    bool texture0 = true, texture1 = true;
    DWORD set0 = 0, set1 = 1;
  };
  const Case cases[] = {
      {"SELECTARG2 diffuse", Color(D3DTOP_SELECTARG2), 0xFFC04080, 0xFF123456, 0xFF123456},
      {"MODULATE", Color(D3DTOP_MODULATE), 0xFFC08040, 0xFF80FF20, 0xFF608008},
      {"CURRENT at stage 0 is the diffuse", mod, 0xFFC08040, 0xFF80FF20, 0xFF608008},
      {"MODULATE2X clamps green", Color(D3DTOP_MODULATE2X), 0xFFC08040, 0xFF80FF20, 0xFFC1FF10},
      {"MODULATE4X clamps green", Color(D3DTOP_MODULATE4X), 0xFF408020, 0xFF40FF80, 0xFF40FF40},
      {"ADD clamps green", Color(D3DTOP_ADD), 0xFF40C010, 0xFF308020, 0xFF70FF30},
      {"ADDSIGNED clamps both ways", Color(D3DTOP_ADDSIGNED), 0xFF40C010, 0xFF80FF20, 0xFF40FF00},
      {"ADDSIGNED2X clamps", Color(D3DTOP_ADDSIGNED2X), 0xFF40C010, 0xFF608020, 0xFF41FF00},
      {"SUBTRACT texture - diffuse", Color(D3DTOP_SUBTRACT), 0xFFC04080, 0xFF408020, 0xFF800060},
      {"SUBTRACT diffuse - texture", Color(D3DTOP_SUBTRACT, DIF, TEX), T, 0xFF408020, 0xFF004000},
      {"DISABLE at stage 0 leaves the diffuse", Color(OFF), 0xFFC04080, 0x80123456, 0x80123456},
      {"alpha MODULATE", Alpha(D3DTOP_MODULATE), 0x80C04080, 0x80123456, 0x40C04080},
      {"alpha SELECTARG2 diffuse", Alpha(D3DTOP_SELECTARG2), 0x20C04080, 0x90123456, 0x90C04080},
      {"alpha ADD clamps", Alpha(D3DTOP_ADD), 0xC0C04080, 0x80123456, 0xFFC04080},
      {"alpha SUBTRACT clamps at 0", Alpha(D3DTOP_SUBTRACT), 0x40C04080, 0x80123456, 0x00C04080},
      {"stage 0 reads set 1", Color(SEL1), T, kDiffuse, 0xFF808080, kOff, true, true, 1},
      {"stage 1 adds its set 1 texel", Color(SEL1), T, kDiffuse, 0xFFFFC0FF, add},
      {"stage 1 adds its set 0 texel", Color(SEL1), T, kDiffuse, 0xFFFF80FF, add, true, true, 0, 0},
      // Unclamped, the colour would come back to 0xC080A0.
      {"a sum above 1 is cut to 1 before stage 1 subtracts", Color(D3DTOP_ADD), T, 0xFF80C0A0,
       0xFF7F7F7F, Color(D3DTOP_SUBTRACT, CUR, TEX)},
      // Unclamped, the colour would come back to 0x008040.
      {"a difference below 0 is cut to 0 before stage 1 adds", Color(D3DTOP_SUBTRACT, DIF, TEX), T,
       0xFF404040, 0xFF808080, add},
      {"NULL stage 0 under MODULATE shows the diffuse", mod, T, kDiffuse, kDiffuse, kOff, false},
      {"NULL stage 0 under SELECTARG1 too", Color(SEL1), T, kDiffuse, kDiffuse, kOff, false},
      {"NULL stage 0 skips a textured stage 1 as well", mod, T, kDiffuse, kDiffuse, add, false},
      {"NULL stage 1 keeps the result of stage 0", Color(SEL1), T, kDiffuse, T, mod, true, false},
      {"NULL stage 0 that colours from the diffuse alone still runs", Color(D3DTOP_ADD, DIF, CUR),
       T, kDiffuse, 0x8060C0FF, kOff, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll();
    IDirect3DTexture9* texture = MakeTexture(2, 2, {c.texel, 0xFF00FF00, 0xFF0000FF, 0xFF808080});
    SetStage(0, c.texture0 ? texture : nullptr, c.stage0, c.set0);
    SetStage(1, c.texture1 ? texture : nullptr, c.stage1, c.set1);
    ASSERT_EQ(Quad({8, 8, 40, 40}, c.diffuse, set0, 0.5f, &set1), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.want));
  }
}

// Stage 0 keeps its default: the texel times the white diffuse colour.
class SamplerTest : public DeviceTest {
 protected:
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
  constexpr DWORD LINEAR = D3DTEXF_LINEAR, ANISO = D3DTEXF_ANISOTROPIC;
  struct Probe {
    int x, y;
    D3DCOLOR want;
  };
  const Probe mixed{15, 8, 0xFF808080}, white{24, 4, 0xFFFFFFFF};
  struct Case {
    const char* name;
    IDirect3DTexture9* texture;
    DWORD mag, u, v;
    float uvEnd;
    Probe a, b;
    int tolerance = 0;
  };
  const Case cases[] = {
      {"POINT keeps the texel", checker, POINT, CLAMP, CLAMP, 1, {15, 8, 0xFF000000}, white},
      {"LINEAR mixes the neighbours", checker, LINEAR, CLAMP, CLAMP, 1, mixed, white, 0x30},
      {"ANISOTROPIC magnifies linearly", checker, ANISO, CLAMP, CLAMP, 1, mixed, white, 0x30},
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

// Every texel format reads back as the platform lays it out, alpha included
// (OpenGL ES gets them converted at upload).
TEST_F(DeviceStageTest, TexelFormatsReadAsThePlatformLaysThemOut) {
  struct Case {
    D3DFORMAT format;
    std::uint32_t texel;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {D3DFMT_A8R8G8B8, 0x80112233u, 0x80112233u}, {D3DFMT_X8R8G8B8, 0x00112233u, 0xFF112233u},
      {D3DFMT_A1R5G5B5, 0x7C00u, 0x00FF0000u},     {D3DFMT_X1R5G5B5, 0x001Fu, 0xFF0000FFu},
      {D3DFMT_A4R4G4B4, 0x8F0Fu, 0x88FF00FFu},     {D3DFMT_R5G6B5, 0x07E0u, 0xFF00FF00u}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "format " << c.format);
    IDirect3DTexture9* t = nullptr;
    ASSERT_EQ(device_->CreateTexture(1, 1, 1, 0, c.format, D3DPOOL_MANAGED, &t, nullptr), D3D_OK);
    D3DLOCKED_RECT locked{};
    ASSERT_EQ(t->LockRect(0, &locked, nullptr, 0), D3D_OK);
    std::memcpy(locked.pBits, &c.texel,
                c.format == D3DFMT_A8R8G8B8 || c.format == D3DFMT_X8R8G8B8 ? 4 : 2);
    ASSERT_EQ(t->UnlockRect(0), D3D_OK);
    ClearAll();
    SetStage(0, t, Color(SEL1), 0);
    ASSERT_EQ(Quad({0, 0, 64, 64}, 0xFFFFFFFF), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(32, 32), c.want));
    device_->SetTexture(0, nullptr);
    t->Release();
  }
}

}  // namespace
}  // namespace gltest
