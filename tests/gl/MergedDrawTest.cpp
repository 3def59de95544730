// Merged UP draws must look exactly like separate ones: each quad shows its
// own texture in call order, a state change or texture upload between two
// draws applies to the later one only, indexed draws keep their place among
// UP draws, a texture released while its draw waits still shows, and a
// background drawn after what covers it looks as if drawn first. Then
// Reset (plain, and to a multisampled back buffer that smooths edges and
// still reads back) that keeps managed textures, vertex and index buffers
// usable, and texels that locks read back. (The lost-device protocol around
// Reset is the whole program's test, on this same back end.)
#include <functional>

#include "GLFixture.h"

namespace gltest {
namespace {

constexpr D3DCOLOR kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kGrey = 0xFF808080;

// Stage 0 keeps its default: the texel times the diffuse colour.
using MergedDrawTest = DeviceTest;

TEST_F(MergedDrawTest, QuadsKeepTheirTexelsAndCallOrderInAsFewGlDrawsAsTexturesAllow) {
  struct Case {
    int textures, quads;
    std::uint32_t glDraws;
  };
  // Three textures alternating fit one merged draw; one more than it holds
  // needs a second. Both ways of picking a texture by slot: indexed (here, on
  // software GL), then the chain of tests GPUs need.
  const Case cases[] = {{3, 24, 1}, {d3d9gl::kBatchTextures + 1, d3d9gl::kBatchTextures + 1, 2}};
  for (int round = 0; round < 2; ++round) {
    if (round == 1) d3d9gl::UseSlotTests(device_);
    for (const Case& c : cases) {
      SCOPED_TRACE(::testing::Message() << c.textures << " textures, round " << round);
      std::vector<IDirect3DTexture9*> textures;
      auto color = [](int i) { return 0xFF000040u | 0x2F0000u * D3DCOLOR(i + 1); };
      for (int i = 0; i < c.textures; ++i) textures.push_back(MakeTexture(1, 1, {color(i)}));
      ClearAll();
      ASSERT_EQ(device_->BeginScene(), D3D_OK);
      // Quad i spans x from 2i to 2i + 16: at x = 2i it is the last one drawn.
      for (int i = 0; i < c.quads; ++i) {
        device_->SetTexture(0, textures[std::size_t(i % c.textures)]);
        ASSERT_EQ(Quad({float(2 * i), 8, float(2 * i + 16), 24}, 0xFFFFFFFF), D3D_OK);
      }
      ASSERT_EQ(device_->EndScene(), D3D_OK);
      const std::vector<D3DCOLOR> f = Frame();
      for (int i = 0; i < c.quads; ++i)
        EXPECT_EQ(f[16 * kSize + std::size_t(2 * i)], color(i % c.textures)) << "quad " << i;
      EXPECT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
      d3d9gl::FrameStats stats;
      EXPECT_TRUE(d3d9gl::GetFrameStats(device_, stats));
      EXPECT_EQ(stats.lastFrameGlDrawCalls, c.glDraws);
    }
  }
}

TEST_F(MergedDrawTest, AChangeBetweenTwoDrawsAppliesToTheLaterOnly) {
  IDirect3DTexture9* red = MakeTexture(1, 1, {kRed});
  IDirect3DTexture9* blue = MakeTexture(1, 1, {kBlue});
  struct Case {
    const char* name;
    std::function<void()> between;
    D3DCOLOR alone, overlap;  // the second quad (grey diffuse) on black, and over the first
  };
  const Case cases[] = {
      {"nothing", [] {}, 0xFF800000, 0xFF800000},
      {"colour op", [&] { device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG2); },
       kGrey, kGrey},
      {"texels rewritten", [&] { FillLevel(red, 0, {kGreen}); }, 0xFF008000, 0xFF008000},
      {"another texture", [&] { device_->SetTexture(0, blue); }, 0xFF000080, 0xFF000080},
      {"no texture", [&] { device_->SetTexture(0, nullptr); }, kGrey, kGrey},
      {"additive blending", [&] { device_->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE); },
       0xFF800000, 0xFFFF0000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    FillLevel(red, 0, {kRed});
    device_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_MODULATE);
    device_->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
    device_->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_ONE);
    device_->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ONE);
    device_->SetTexture(0, red);
    ClearAll();
    ASSERT_EQ(Quad({8, 8, 40, 40}, 0xFFFFFFFF), D3D_OK);
    c.between();
    ASSERT_EQ(Quad({24, 24, 56, 56}, kGrey), D3D_OK);
    const std::vector<D3DCOLOR> f = Frame();
    EXPECT_EQ(f[12 * kSize + 12], kRed);
    EXPECT_TRUE(ColorNear(f[50 * kSize + 50], c.alone));
    EXPECT_TRUE(ColorNear(f[32 * kSize + 32], c.overlap));
  }
}

// An indexed draw between two UP draws lands between them, and a texture
// whose last reference goes while its draw waits still shows.
TEST_F(MergedDrawTest, IndexedDrawsAndReleasedTexturesKeepTheirPlace) {
  IDirect3DTexture9* owned = nullptr;
  ASSERT_EQ(device_->CreateTexture(1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &owned, nullptr),
            D3D_OK);
  FillLevel(owned, 0, {kRed});
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers({16, 16, 48, 48}, kGreen, vb, ib));
  ClearAll();
  device_->SetTexture(0, owned);
  ASSERT_EQ(Quad({8, 8, 40, 40}, 0xFFFFFFFF), D3D_OK);
  device_->SetTexture(0, nullptr);
  owned->Release();
  device_->SetStreamSource(0, vb, 0, sizeof(ScreenVertex));  // a UP draw unsets it
  device_->SetIndices(ib);
  ASSERT_EQ(device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2), D3D_OK);
  device_->SetTexture(0, MakeTexture(1, 1, {kBlue}));
  ASSERT_EQ(Quad({24, 24, 56, 56}, 0xFFFFFFFF), D3D_OK);
  const std::vector<D3DCOLOR> f = Frame();
  EXPECT_EQ(f[10 * kSize + 10], kRed);
  EXPECT_EQ(f[20 * kSize + 20], kGreen);
  EXPECT_EQ(f[30 * kSize + 30], kBlue);
  EXPECT_EQ(f[20 * kSize + 44], kGreen);
  vb->Release();
  ib->Release();
}

// The base vertex moves the indices by whole vertices, also below the stream
// offset (the index data is then rewritten, as no attribute offset can go
// below zero).
TEST_F(MergedDrawTest, TheBaseVertexShiftsIndicesByWholeVertices) {
  const std::array<ScreenVertex, 4> a = QuadVertices({4, 4, 28, 28}, kRed, {}, 0.5f, {});
  const std::array<ScreenVertex, 4> b = QuadVertices({36, 36, 60, 60}, kGreen, {}, 0.5f, {});
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_EQ(device_->CreateVertexBuffer(sizeof a * 2, 0, kScreenFVF, D3DPOOL_MANAGED, &vb, nullptr),
            D3D_OK);
  ASSERT_EQ(device_->CreateIndexBuffer(24, 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, &ib, nullptr),
            D3D_OK);
  void* bytes = nullptr;
  ASSERT_EQ(vb->Lock(0, 0, &bytes, 0), D3D_OK);
  std::memcpy(bytes, a.data(), sizeof a);
  std::memcpy(static_cast<char*>(bytes) + sizeof a, b.data(), sizeof b);
  vb->Unlock();
  const WORD indices[12] = {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7};
  ASSERT_EQ(ib->Lock(0, 0, &bytes, 0), D3D_OK);
  std::memcpy(bytes, indices, sizeof indices);
  ib->Unlock();
  struct Case {
    UINT offsetVertices;
    INT baseVertex;
    UINT startIndex;
    D3DCOLOR first, second;  // what the two quads' places show
  };
  const Case cases[] = {
      {0, 4, 0, 0, kGreen}, {4, -4, 6, 0, kGreen}, {0, -4, 6, kRed, 0}, {4, -4, 0, kRed, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << "offset " << c.offsetVertices << ", base " << c.baseVertex);
    ClearAll(0);
    device_->SetFVF(kScreenFVF);
    device_->SetStreamSource(0, vb, c.offsetVertices * sizeof(ScreenVertex), sizeof(ScreenVertex));
    device_->SetIndices(ib);
    if (c.offsetVertices == 4 && c.startIndex == 0) {  // would read before the buffer's start
      EXPECT_EQ(device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, c.baseVertex, 0, 4, 0, 2),
                D3DERR_INVALIDCALL);
      continue;
    }
    ASSERT_EQ(
        device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, c.baseVertex, 0, 4, c.startIndex, 2),
        D3D_OK);
    const std::vector<D3DCOLOR> f = Frame();
    EXPECT_EQ(f[16 * kSize + 16], c.first);
    EXPECT_EQ(f[48 * kSize + 48], c.second);
  }
  vb->Release();
  ib->Release();
}

// A first draw without depth writes (the sky) waits until the draws that
// cover it are done; it must still show wherever they wrote nothing, with the
// texels and vertices it was drawn with. (That it goes before the first blending draw, the pixel
// identity test sees in every frame of the world.)
TEST_F(MergedDrawTest, ABackgroundDrawnLaterLooksAsIfDrawnFirst) {
  IDirect3DTexture9* sky = MakeTexture(1, 1, {kRed});
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers({0, 0, 64, 64}, 0xFFFFFFFF, vb, ib));
  // After the covering draws, the sky's picture or its vertices change.
  for (bool newTexels : {true, false}) {
    ClearAll();
    device_->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);
    device_->SetTexture(0, sky);
    device_->SetStreamSource(0, vb, 0, sizeof(ScreenVertex));
    device_->SetIndices(ib);
    device_->SetFVF(kScreenFVF);
    ASSERT_EQ(device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2), D3D_OK);
    device_->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
    device_->SetTexture(0, nullptr);
    ASSERT_EQ(Quad({0, 0, 32, 64}, kGreen, {}, 0.5f), D3D_OK);
    if (newTexels) {
      FillLevel(sky, 0, {0xFFFFFFFF});
    } else if (void* v = nullptr; vb->Lock(0, 0, &v, 0) == D3D_OK) {
      std::memset(v, 0, 4 * sizeof(ScreenVertex));  // every corner at (0, 0): nothing to draw
      vb->Unlock();
    }
    EXPECT_EQ(Pixel(8, 8), kGreen);  // not the sky drawn after it
    EXPECT_EQ(Pixel(40, 40), kRed) << "new texels: " << newTexels;
    FillLevel(sky, 0, {kRed});
  }
  vb->Release();
  ib->Release();
}

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
  IDirect3DVertexBuffer9* vb = nullptr;
  IDirect3DIndexBuffer9* ib = nullptr;
  ASSERT_NO_FATAL_FAILURE(MakeQuadBuffers({8.5f, 8.5f, 40.5f, 40.5f}, 0xFFFFFFFF, vb, ib));

  // Reset unbinds everything and restores the default states (the texel
  // times white, counter-clockwise culling of a quad listed clockwise): bind
  // again. The quad's left edge runs through pixel centres: only a multisampled back
  // buffer shows the pixels there part-covered.
  auto drawAndProbe = [&](D3DMULTISAMPLE_TYPE samples) {
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
  for (const D3DMULTISAMPLE_TYPE samples : {D3DMULTISAMPLE_NONE, D3DMULTISAMPLE_4_SAMPLES}) {
    SCOPED_TRACE(::testing::Message() << "samples " << samples);
    pp = Params(samples);
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
