// The texture stage cascade: every colour and alpha operation on known texels
// and diffuse colours (results clamp to 0..1), the coordinate set a stage
// reads, and the rule that a stage colouring from a missing texture ends the
// cascade. Expected colours are worked out by hand from the operations'
// definitions.
#include "GLFixture.h"

namespace gltest {
namespace {

constexpr Rect kQuad{8, 8, 40, 40};

struct StageOps {
  DWORD colorOp, colorArg1, colorArg2, alphaOp, alphaArg1, alphaArg2;
};

void SetStage(IDirect3DDevice9* device, DWORD stage, const StageOps& s) {
  device->SetTextureStageState(stage, D3DTSS_COLOROP, s.colorOp);
  device->SetTextureStageState(stage, D3DTSS_COLORARG1, s.colorArg1);
  device->SetTextureStageState(stage, D3DTSS_COLORARG2, s.colorArg2);
  device->SetTextureStageState(stage, D3DTSS_ALPHAOP, s.alphaOp);
  device->SetTextureStageState(stage, D3DTSS_ALPHAARG1, s.alphaArg1);
  device->SetTextureStageState(stage, D3DTSS_ALPHAARG2, s.alphaArg2);
}

constexpr DWORD TEX = D3DTA_TEXTURE, DIF = D3DTA_DIFFUSE, CUR = D3DTA_CURRENT;
constexpr StageOps kOff{D3DTOP_DISABLE, TEX, CUR, D3DTOP_DISABLE, TEX, CUR};

using DeviceStageTest = DeviceTest;

TEST_F(DeviceStageTest, EachOperationCombinesTexelAndDiffuseAndClamps) {
  struct Case {
    const char* name;
    StageOps ops;
    struct {
      D3DCOLOR texel, diffuse, want;
    } colors;
  };
  const Case cases[] = {
      {"SELECTARG1 texture",
       {D3DTOP_SELECTARG1, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC04080, 0xFF123456, 0xFFC04080}},
      {"SELECTARG2 diffuse",
       {D3DTOP_SELECTARG2, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC04080, 0xFF123456, 0xFF123456}},
      {"MODULATE",
       {D3DTOP_MODULATE, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC08040, 0xFF80FF20, 0xFF608008}},
      {"MODULATE of CURRENT, which is the diffuse at stage 0",
       {D3DTOP_MODULATE, TEX, CUR, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC08040, 0xFF80FF20, 0xFF608008}},
      {"MODULATE2X clamps green",
       {D3DTOP_MODULATE2X, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC08040, 0xFF80FF20, 0xFFC1FF10}},
      {"MODULATE4X clamps green",
       {D3DTOP_MODULATE4X, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFF408020, 0xFF40FF80, 0xFF40FF40}},
      {"ADD clamps green",
       {D3DTOP_ADD, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFF40C010, 0xFF308020, 0xFF70FF30}},
      {"ADDSIGNED clamps both ways",
       {D3DTOP_ADDSIGNED, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFF40C010, 0xFF80FF20, 0xFF40FF00}},
      {"ADDSIGNED2X clamps both ways",
       {D3DTOP_ADDSIGNED2X, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFF40C010, 0xFF608020, 0xFF41FF00}},
      {"SUBTRACT texture - diffuse",
       {D3DTOP_SUBTRACT, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC04080, 0xFF408020, 0xFF800060}},
      {"SUBTRACT diffuse - texture",
       {D3DTOP_SUBTRACT, DIF, TEX, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC04080, 0xFF408020, 0xFF004000}},
      {"DISABLE at stage 0 leaves the diffuse",
       {D3DTOP_DISABLE, TEX, DIF, D3DTOP_SELECTARG1, TEX, DIF},
       {0xFFC04080, 0x80123456, 0x80123456}},
      {"alpha MODULATE",
       {D3DTOP_SELECTARG1, TEX, DIF, D3DTOP_MODULATE, TEX, DIF},
       {0x80C04080, 0x80123456, 0x40C04080}},
      {"alpha SELECTARG2 diffuse",
       {D3DTOP_SELECTARG1, TEX, DIF, D3DTOP_SELECTARG2, TEX, DIF},
       {0x20C04080, 0x90123456, 0x90C04080}},
      {"alpha ADD clamps",
       {D3DTOP_SELECTARG1, TEX, DIF, D3DTOP_ADD, TEX, DIF},
       {0xC0C04080, 0x80123456, 0xFFC04080}},
      {"alpha SUBTRACT clamps at 0",
       {D3DTOP_SELECTARG1, TEX, DIF, D3DTOP_SUBTRACT, TEX, DIF},
       {0x40C04080, 0x80123456, 0x00C04080}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    IDirect3DTexture9* texture = MakeTexture(1, 1, {c.colors.texel});
    ClearAll();
    device_->SetTexture(0, texture);
    SetStage(device_, 0, c.ops);
    SetStage(device_, 1, kOff);
    ASSERT_EQ(Quad(kQuad, c.colors.diffuse), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.colors.want));
  }
}

TEST_F(DeviceStageTest, TexCoordIndexPicksTheSetAStageReads) {
  // Set 0 points at the red texel, set 1 at the grey one, on every vertex.
  IDirect3DTexture9* texture = MakeTexture(2, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF808080});
  const UV set0{0.25f, 0.25f, 0.25f, 0.25f}, set1{0.75f, 0.75f, 0.75f, 0.75f};
  struct Case {
    const char* name;
    DWORD stage0Index;
    DWORD stage1Op, stage1Index;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"stage 0 reads set 0", 0, D3DTOP_DISABLE, 1, 0xFFFF0000},
      {"stage 0 reads set 1", 1, D3DTOP_DISABLE, 0, 0xFF808080},
      {"stage 1 adds its texel of set 1", 0, D3DTOP_ADD, 1, 0xFFFF8080},
      {"stage 1 adds its texel of set 0", 0, D3DTOP_ADD, 0, 0xFFFF0000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll();
    device_->SetTexture(0, texture);
    device_->SetTexture(1, texture);
    SetStage(device_, 0, {D3DTOP_SELECTARG1, TEX, CUR, D3DTOP_SELECTARG1, TEX, CUR});
    SetStage(device_, 1, {c.stage1Op, TEX, CUR, D3DTOP_DISABLE, TEX, CUR});
    device_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, c.stage0Index);
    device_->SetTextureStageState(1, D3DTSS_TEXCOORDINDEX, c.stage1Index);
    ASSERT_EQ(Quad(kQuad, 0xFFFFFFFF, set0, 0.5f, &set1), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.want));
  }
}

TEST_F(DeviceStageTest, AVertexWithoutDiffuseCountsAsOpaqueWhite) {
  IDirect3DTexture9* texture = MakeTexture(1, 1, {0xC0C04080});
  device_->SetTexture(0, texture);
  SetStage(device_, 0, {D3DTOP_MODULATE, TEX, DIF, D3DTOP_MODULATE, TEX, DIF});
  SetStage(device_, 1, kOff);
  // Screen vertices with one coordinate set, and the terrain's layout (0x202).
  struct Screen {
    float x, y, z, rhw, u, v;
  };
  struct Terrain {
    float x, y, z, u, v, u2, v2;
  };
  const Screen screen[4] = {{8, 8, 0.5f, 1, 0, 0},
                            {40, 8, 0.5f, 1, 1, 0},
                            {40, 40, 0.5f, 1, 1, 1},
                            {8, 40, 0.5f, 1, 0, 1}};
  const Terrain terrain[4] = {{-0.75f, 0.75f, 0.5f, 0, 0, 0, 0},
                              {0.25f, 0.75f, 0.5f, 1, 0, 0, 0},
                              {0.25f, -0.25f, 0.5f, 1, 1, 0, 0},
                              {-0.75f, -0.25f, 0.5f, 0, 1, 0, 0}};
  struct Case {
    const char* name;
    DWORD fvf;
    const void* vertices;
    UINT stride;
  };
  const Case cases[] = {
      {"screen vertices", D3DFVF_XYZRHW | D3DFVF_TEX1, screen, sizeof(Screen)},
      {"terrain vertices", D3DFVF_XYZ | D3DFVF_TEX2, terrain, sizeof(Terrain)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll();
    device_->SetFVF(c.fvf);
    ASSERT_EQ(device_->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, c.vertices, c.stride), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), 0xC0C04080));
  }
}

TEST_F(DeviceStageTest, AStageColouringFromANullTextureEndsTheCascade) {
  IDirect3DTexture9* texture = MakeTexture(1, 1, {0xFFC04080});
  constexpr D3DCOLOR kDiffuse = 0x80306090;
  struct Case {
    const char* name;
    bool texture0;
    StageOps stage0;
    bool texture1;
    StageOps stage1;
    D3DCOLOR want;
  };
  const Case cases[] = {
      {"NULL stage 0 under MODULATE shows the diffuse colour and alpha",
       false,
       {D3DTOP_MODULATE, TEX, CUR, D3DTOP_SELECTARG1, TEX, CUR},
       false,
       kOff,
       kDiffuse},
      {"NULL stage 0 under SELECTARG1 shows the diffuse",
       false,
       {D3DTOP_SELECTARG1, TEX, CUR, D3DTOP_SELECTARG1, TEX, CUR},
       false,
       kOff,
       kDiffuse},
      {"NULL stage 0 skips a textured stage 1 as well",
       false,
       {D3DTOP_MODULATE, TEX, CUR, D3DTOP_SELECTARG1, TEX, CUR},
       true,
       {D3DTOP_ADD, TEX, CUR, D3DTOP_DISABLE, TEX, CUR},
       kDiffuse},
      {"NULL stage 1 keeps the result of stage 0",
       true,
       {D3DTOP_SELECTARG1, TEX, CUR, D3DTOP_SELECTARG1, TEX, CUR},
       false,
       {D3DTOP_MODULATE, TEX, CUR, D3DTOP_SELECTARG1, DIF, CUR},
       0xFFC04080},
      {"NULL stage 0 that colours from the diffuse alone still runs",
       false,
       {D3DTOP_ADD, DIF, CUR, D3DTOP_SELECTARG1, DIF, CUR},
       false,
       kOff,
       0x8060C0FF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll();
    device_->SetTexture(0, c.texture0 ? texture : nullptr);
    device_->SetTexture(1, c.texture1 ? texture : nullptr);
    SetStage(device_, 0, c.stage0);
    SetStage(device_, 1, c.stage1);
    ASSERT_EQ(Quad(kQuad, kDiffuse), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.want));
  }
}

TEST_F(DeviceStageTest, StageOneWorksOnTheClampedResultOfStageZero) {
  IDirect3DTexture9* texture = MakeTexture(1, 1, {0xFFC0C0C0});
  struct Case {
    const char* name;
    StageOps stage0, stage1;
    D3DCOLOR diffuse, want;
  };
  const Case cases[] = {
      // Unclamped, red and green would come back to 0xC0 and 0x40.
      {"a sum above 1 is cut to 1 before stage 1 subtracts",
       {D3DTOP_ADD, TEX, DIF, D3DTOP_SELECTARG1, TEX, CUR},
       {D3DTOP_SUBTRACT, CUR, TEX, D3DTOP_DISABLE, TEX, CUR},
       0xFFC04000,
       0xFF3F3F00},
      // Unclamped, the sum would be back at 0x40.
      {"a difference below 0 is cut to 0 before stage 1 adds",
       {D3DTOP_SUBTRACT, DIF, TEX, D3DTOP_SELECTARG1, TEX, CUR},
       {D3DTOP_ADD, CUR, TEX, D3DTOP_DISABLE, TEX, CUR},
       0xFF404040,
       0xFFC0C0C0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearAll();
    device_->SetTexture(0, texture);
    device_->SetTexture(1, texture);
    SetStage(device_, 0, c.stage0);
    SetStage(device_, 1, c.stage1);
    ASSERT_EQ(Quad(kQuad, c.diffuse), D3D_OK);
    EXPECT_TRUE(ColorNear(Pixel(24, 24), c.want));
  }
}

}  // namespace
}  // namespace gltest
