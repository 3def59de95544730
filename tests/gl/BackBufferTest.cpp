// The back buffer as a whole: Reset (plain, after a lost device, to a
// multisampled back buffer that smooths edges and still reads back) that
// keeps managed textures, vertex and index buffers usable, and texels that
// locks read back.
#include <utility>

#include "GLFixture.h"

namespace gltest {
namespace {

using BackBufferTest = DeviceTest;

// A level's texels live in GL alone between locks: a lock of part of it, and
// a read after a reset, must still see every texel written before. Reset
// waits for the default pool to go, then keeps managed textures and buffers.
TEST_F(BackBufferTest, ResetKeepsManagedTexturesBuffersAndTheTexelsLocksSee) {
  const std::vector<D3DCOLOR> want = {0xFFFF0000, 0x8000FF00, 0x400000FF, 0xFF123456};
  IDirect3DTexture9* texture = MakeTexture(2, 2, {want[0], want[1], want[2], 0x00FFFFFF});
  D3DLOCKED_RECT locked{};
  const RECT corner = {1, 1, 2, 2};
  ASSERT_EQ(texture->LockRect(0, &locked, &corner, 0), D3D_OK);
  *static_cast<D3DCOLOR*>(locked.pBits) = want[3];
  ASSERT_EQ(texture->UnlockRect(0), D3D_OK);
  const ScreenVertex quad[4] = {{8.5f, 8.5f, 0.5f, 1, 0xFFFFFFFF, 0, 0, 0, 0},
                                {40.5f, 8.5f, 0.5f, 1, 0xFFFFFFFF, 1, 0, 0, 0},
                                {40.5f, 40.5f, 0.5f, 1, 0xFFFFFFFF, 1, 1, 0, 0},
                                {8.5f, 40.5f, 0.5f, 1, 0xFFFFFFFF, 0, 1, 0, 0}};
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers(quad, vb, ib));

  // Reset unbinds everything and restores the default states: bind again.
  // The quad's left edge runs through pixel centres: only a multisampled back
  // buffer shows the pixels there part-covered.
  auto drawAndProbe = [&](D3DMULTISAMPLE_TYPE samples) {
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
    const std::vector<D3DCOLOR> f = Frame();
    EXPECT_EQ(f[16 * kSize + 8] == want[0], samples == D3DMULTISAMPLE_NONE) << f[16 * kSize + 8];
    return std::vector<D3DCOLOR>{f[16 * kSize + 16], f[16 * kSize + 32], f[32 * kSize + 16],
                                 f[32 * kSize + 32]};
  };
  ASSERT_EQ(drawAndProbe(D3DMULTISAMPLE_NONE), want);

  IDirect3DVertexBuffer9* dynamic = nullptr;
  ASSERT_EQ(device_->CreateVertexBuffer(256, D3DUSAGE_DYNAMIC, kScreenFVF, D3DPOOL_DEFAULT,
                                        &dynamic, nullptr),
            D3D_OK);
  D3DPRESENT_PARAMETERS pp = Params();
  EXPECT_EQ(device_->Reset(&pp), D3DERR_INVALIDCALL);
  dynamic->Release();
  const std::pair<bool, D3DMULTISAMPLE_TYPE> cases[] = {
      {false, D3DMULTISAMPLE_NONE}, {true, D3DMULTISAMPLE_NONE}, {false, D3DMULTISAMPLE_4_SAMPLES}};
  for (const auto& [lostFirst, samples] : cases) {
    SCOPED_TRACE(::testing::Message() << "lost first " << lostFirst << ", samples " << samples);
    pp = Params(samples);
    if (lostFirst) {
      d3d9gl::SimulateDeviceLost(device_, true);
      EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);
      EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    }
    ASSERT_EQ(device_->Reset(&pp), D3D_OK);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3D_OK);
    ASSERT_EQ(texture->LockRect(0, &locked, nullptr, D3DLOCK_READONLY), D3D_OK);
    const auto* row0 = static_cast<const D3DCOLOR*>(locked.pBits);
    const auto* row1 =
        reinterpret_cast<const D3DCOLOR*>(static_cast<const char*>(locked.pBits) + locked.Pitch);
    EXPECT_EQ((std::vector<D3DCOLOR>{row0[0], row0[1], row1[0], row1[1]}), want);
    EXPECT_EQ(texture->UnlockRect(0), D3D_OK);
    EXPECT_EQ(drawAndProbe(samples), want);
    EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
  }
  vb->Release();
  ib->Release();
}

}  // namespace
}  // namespace gltest
