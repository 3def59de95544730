// Merged UP draws must look exactly like separate ones: each quad shows its
// own texture in call order, a state change or texture upload between two
// draws applies to the later one only, indexed draws keep their place among
// UP draws, and a texture released while its draw waits still shows.
#include <functional>

#include "GLFixture.h"

namespace gltest {
namespace {

constexpr D3DCOLOR kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kGrey = 0xFF808080;

class MergedDrawTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_MODULATE);
    device_->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);
    device_->SetTextureStageState(0, D3DTSS_COLORARG2, D3DTA_DIFFUSE);
  }
  IDirect3DTexture9* Solid(D3DCOLOR color) { return MakeTexture(1, 1, {color}); }
  std::uint32_t GlDrawsOfFrame() {
    EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
    d3d9gl::FrameStats stats;
    EXPECT_TRUE(d3d9gl::GetFrameStats(device_, stats));
    return stats.lastFrameGlDrawCalls;
  }
};

TEST_F(MergedDrawTest, AlternatingTexturesKeepTheirTexelsAndTheCallOrder) {
  IDirect3DTexture9* textures[3] = {Solid(kRed), Solid(kGreen), Solid(kBlue)};
  // Quad i spans x from 2i to 2i + 16: at x = 2i it is the last one drawn.
  constexpr int kQuads = 24;
  ClearAll();
  ASSERT_EQ(device_->BeginScene(), D3D_OK);
  for (int i = 0; i < kQuads; ++i) {
    device_->SetTexture(0, textures[i % 3]);
    ASSERT_EQ(Quad({float(2 * i), 8, float(2 * i + 16), 24}, 0xFFFFFFFF), D3D_OK);
  }
  ASSERT_EQ(device_->EndScene(), D3D_OK);
  std::vector<D3DCOLOR> f = Frame();
  const D3DCOLOR colors[3] = {kRed, kGreen, kBlue};
  for (int i = 0; i < kQuads; ++i)
    EXPECT_EQ(f[16 * kSize + std::size_t(2 * i)], colors[i % 3]) << "quad " << i;
  EXPECT_EQ(GlDrawsOfFrame(), 1u);
}

TEST_F(MergedDrawTest, MoreTexturesThanOneMergedDrawHolds) {
  constexpr int kQuads = d3d9gl::kBatchTextures + 4;
  std::vector<IDirect3DTexture9*> textures;
  for (int i = 0; i < kQuads; ++i)
    textures.push_back(Solid(0xFF000000u | D3DCOLOR(20 * (i + 1)) << 16 | 0x40));
  ClearAll();
  for (int i = 0; i < kQuads; ++i) {
    device_->SetTexture(0, textures[std::size_t(i)]);
    ASSERT_EQ(Quad({float(4 * i), 8, float(4 * i + 4), 24}, 0xFFFFFFFF), D3D_OK);
  }
  std::vector<D3DCOLOR> f = Frame();
  for (int i = 0; i < kQuads; ++i)
    EXPECT_EQ(f[16 * kSize + std::size_t(4 * i + 2)],
              0xFF000000u | D3DCOLOR(20 * (i + 1)) << 16 | 0x40)
        << i;
  EXPECT_EQ(GlDrawsOfFrame(), 2u);
}

TEST_F(MergedDrawTest, AChangeBetweenTwoDrawsAppliesToTheLaterOnly) {
  IDirect3DTexture9* red = Solid(kRed);
  IDirect3DTexture9* blue = Solid(kBlue);
  struct Case {
    const char* name;
    std::function<void()> between;
    D3DCOLOR alone, overlap;  // the second quad (grey diffuse) on black, and over the first
  };
  const Case cases[] = {
      {"nothing", [] {}, 0xFF800000, 0xFF800000},
      {"colour op", [&] { device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG2); },
       kGrey, kGrey},
      {"texels rewritten", [&] { FillLevel(red, 0, kGreen); }, 0xFF008000, 0xFF008000},
      {"another texture", [&] { device_->SetTexture(0, blue); }, 0xFF000080, 0xFF000080},
      {"no texture", [&] { device_->SetTexture(0, nullptr); }, kGrey, kGrey},
      {"additive blending",
       [&] {
         device_->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
         device_->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_ONE);
         device_->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ONE);
       },
       0xFF800000, 0xFFFF0000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    FillLevel(red, 0, kRed);
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_MODULATE);
    device_->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
    device_->SetTexture(0, red);
    ClearAll();
    ASSERT_EQ(Quad({8, 8, 40, 40}, 0xFFFFFFFF), D3D_OK);
    c.between();
    ASSERT_EQ(Quad({24, 24, 56, 56}, kGrey), D3D_OK);
    std::vector<D3DCOLOR> f = Frame();
    EXPECT_EQ(f[12 * kSize + 12], kRed);
    EXPECT_TRUE(ColorNear(f[50 * kSize + 50], c.alone));
    EXPECT_TRUE(ColorNear(f[32 * kSize + 32], c.overlap));
  }
}

TEST_F(MergedDrawTest, IndexedDrawsKeepTheirPlaceAmongUpDraws) {
  device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG2);
  const ScreenVertex green[4] = {{16, 16, 0.5f, 1, kGreen, 0, 0, 0, 0},
                                 {48, 16, 0.5f, 1, kGreen, 0, 0, 0, 0},
                                 {48, 48, 0.5f, 1, kGreen, 0, 0, 0, 0},
                                 {16, 48, 0.5f, 1, kGreen, 0, 0, 0, 0}};
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers(green, vb, ib));

  ClearAll();
  ASSERT_EQ(Quad({8, 8, 40, 40}, kRed), D3D_OK);
  device_->SetStreamSource(0, vb, 0, sizeof(ScreenVertex));
  device_->SetIndices(ib);
  ASSERT_EQ(device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2), D3D_OK);
  ASSERT_EQ(Quad({24, 24, 56, 56}, kBlue), D3D_OK);
  std::vector<D3DCOLOR> f = Frame();
  EXPECT_EQ(f[10 * kSize + 10], kRed);
  EXPECT_EQ(f[20 * kSize + 20], kGreen);
  EXPECT_EQ(f[30 * kSize + 30], kBlue);
  EXPECT_EQ(f[20 * kSize + 44], kGreen);
  vb->Release();
  ib->Release();
}

TEST_F(MergedDrawTest, ATextureReleasedWhileItsDrawWaitsStillShows) {
  IDirect3DTexture9* owned = nullptr;
  ASSERT_EQ(device_->CreateTexture(1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &owned, nullptr),
            D3D_OK);
  FillLevel(owned, 0, kGreen);
  ClearAll();
  device_->SetTexture(0, owned);
  ASSERT_EQ(Quad({8, 8, 24, 24}, 0xFFFFFFFF), D3D_OK);
  device_->SetTexture(0, Solid(kBlue));
  owned->Release();  // the last reference the program holds
  ASSERT_EQ(Quad({32, 8, 48, 24}, 0xFFFFFFFF), D3D_OK);
  EXPECT_EQ(Pixel(16, 16), kGreen);
  EXPECT_EQ(Pixel(40, 16), kBlue);
}

}  // namespace
}  // namespace gltest
