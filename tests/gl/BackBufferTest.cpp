// The back buffer as a whole: multisampling that smooths edges and still
// reads back, and Reset (plain, after a lost device, to another sample count)
// that keeps managed textures, vertex and index buffers usable, and texels
// that locks read back.

#include "GLFixture.h"

namespace gltest {
namespace {

class BackBufferTest : public DeviceTest {
 protected:
  void DiffuseOnly() {
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device_->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_DIFFUSE);
  }
};

TEST_F(BackBufferTest, MultisamplingSmoothsEdgesAndReadsBackResolved) {
  struct Case {
    D3DMULTISAMPLE_TYPE samples;
    bool smooth;
  };
  const Case cases[] = {{D3DMULTISAMPLE_NONE, false}, {D3DMULTISAMPLE_4_SAMPLES, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.samples);
    ASSERT_EQ(d3d_->CheckDeviceMultiSampleType(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, D3DFMT_A8R8G8B8,
                                               TRUE, c.samples, nullptr),
              D3D_OK);
    ASSERT_NO_FATAL_FAILURE(Recreate(Params(c.samples)));
    DiffuseOnly();
    ClearAll(0xFF000000);
    // A long slanted edge crosses many pixels part-way.
    ASSERT_EQ(Triangle(2, 2, 62, 2, 2, 50, 0xFFFFFFFF), D3D_OK);
    std::vector<D3DCOLOR> f = Frame();
    int partial = 0;
    for (D3DCOLOR p : f) {
      int red = int((p >> 16) & 0xFF);
      partial += red > 0x10 && red < 0xF0;
    }
    if (c.smooth)
      EXPECT_GT(partial, 20);
    else
      EXPECT_EQ(partial, 0);
    EXPECT_EQ(f[10 * kSize + 10], 0xFFFFFFFFu);
    EXPECT_EQ(f[60 * kSize + 60], 0xFF000000u);
    EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
  }
}

TEST_F(BackBufferTest, ResetKeepsManagedTexturesAndBuffers) {
  IDirect3DTexture9* texture = MakeTexture(2, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF});
  const ScreenVertex quad[4] = {{8, 8, 0.5f, 1, 0xFFFFFFFF, 0, 0, 0, 0},
                                {40, 8, 0.5f, 1, 0xFFFFFFFF, 1, 0, 0, 0},
                                {40, 40, 0.5f, 1, 0xFFFFFFFF, 1, 1, 0, 0},
                                {8, 40, 0.5f, 1, 0xFFFFFFFF, 0, 1, 0, 0}};
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers(quad, vb, ib));

  // Reset unbinds everything and restores the default states: bind again.
  auto drawAndProbe = [&] {
    device_->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device_->SetTexture(0, texture);
    device_->SetFVF(kScreenFVF);
    device_->SetStreamSource(0, vb, 0, sizeof(ScreenVertex));
    device_->SetIndices(ib);
    ClearAll();
    EXPECT_EQ(device_->BeginScene(), D3D_OK);
    EXPECT_EQ(device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2), D3D_OK);
    EXPECT_EQ(device_->EndScene(), D3D_OK);
    std::vector<D3DCOLOR> f = Frame();
    return std::vector<D3DCOLOR>{f[16 * kSize + 16], f[16 * kSize + 32], f[32 * kSize + 16],
                                 f[32 * kSize + 32]};
  };
  const std::vector<D3DCOLOR> want = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF};
  ASSERT_EQ(drawAndProbe(), want);

  struct Case {
    const char* name;
    bool lostFirst;
    D3DMULTISAMPLE_TYPE samples;
  };
  const Case cases[] = {
      {"plain reset", false, D3DMULTISAMPLE_NONE},
      {"reset of a lost device", true, D3DMULTISAMPLE_NONE},
      {"reset to a multisampled back buffer", false, D3DMULTISAMPLE_4_SAMPLES},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.lostFirst) {
      d3d9gl::SimulateDeviceLost(device_, true);
      EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);
      EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    }
    D3DPRESENT_PARAMETERS pp = Params(c.samples);
    ASSERT_EQ(device_->Reset(&pp), D3D_OK);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3D_OK);
    EXPECT_EQ(drawAndProbe(), want);
    EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
  }
  vb->Release();
  ib->Release();
}

// A level's texels live in GL alone between locks: a lock of part of it, and
// a read after a reset, must still see every texel written before.
TEST_F(BackBufferTest, LocksSeeTheTexelsWrittenBefore) {
  const std::vector<D3DCOLOR> texels = {0xFFFF0000, 0x8000FF00, 0x400000FF, 0x00FFFFFF};
  IDirect3DTexture9* texture = MakeTexture(2, 2, texels);
  D3DLOCKED_RECT locked{};
  const RECT corner = {1, 1, 2, 2};
  ASSERT_EQ(texture->LockRect(0, &locked, &corner, 0), D3D_OK);
  *static_cast<D3DCOLOR*>(locked.pBits) = 0xFF123456;
  ASSERT_EQ(texture->UnlockRect(0), D3D_OK);
  D3DPRESENT_PARAMETERS pp = Params(D3DMULTISAMPLE_NONE);
  ASSERT_EQ(device_->Reset(&pp), D3D_OK);
  ASSERT_EQ(texture->LockRect(0, &locked, nullptr, D3DLOCK_READONLY), D3D_OK);
  const auto* row0 = static_cast<const D3DCOLOR*>(locked.pBits);
  const auto* row1 = reinterpret_cast<const D3DCOLOR*>(static_cast<const char*>(locked.pBits) + locked.Pitch);
  EXPECT_EQ((std::vector<D3DCOLOR>{row0[0], row0[1], row1[0], row1[1]}),
            (std::vector<D3DCOLOR>{0xFFFF0000, 0x8000FF00, 0x400000FF, 0xFF123456}));
  EXPECT_EQ(texture->UnlockRect(0), D3D_OK);
}

TEST_F(BackBufferTest, ResetWaitsForDefaultPoolResourcesToGo) {
  IDirect3DVertexBuffer9* dynamic = nullptr;
  ASSERT_EQ(device_->CreateVertexBuffer(256, D3DUSAGE_DYNAMIC, kScreenFVF, D3DPOOL_DEFAULT,
                                        &dynamic, nullptr),
            D3D_OK);
  D3DPRESENT_PARAMETERS pp = Params();
  EXPECT_EQ(device_->Reset(&pp), D3DERR_INVALIDCALL);
  dynamic->Release();
  EXPECT_EQ(device_->Reset(&pp), D3D_OK);
}

}  // namespace
}  // namespace gltest
