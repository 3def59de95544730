// Pixel tests of the Direct3D 9 back end on OpenGL: a real device from
// Direct3DCreate9 on a small hidden SDL window (Xvfb and llvmpipe when
// headless), pre-transformed quads to draw with, and the back buffer read back
// as 0xAARRGGBB words. The back buffer is A8R8G8B8 so that the alpha the
// pipeline writes can be checked too.
#pragma once

#include <SDL.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/d3d9/d3d9.h"

namespace gltest {

// Width and height of the test back buffer.
constexpr UINT kSize = 64;

// Screen-space vertex: pixels (y down), depth, 1/w, colour, two coordinate sets.
struct ScreenVertex {
  float x, y, z, rhw;
  D3DCOLOR diffuse;
  float u0, v0, u1, v1;
};
constexpr DWORD kScreenFVF = D3DFVF_XYZRHW | D3DFVF_DIFFUSE | D3DFVF_TEX2;

// Model-space vertex of the world's own layout (0x142).
struct WorldVertex {
  float x, y, z;
  D3DCOLOR diffuse;
  float u, v;
};
constexpr DWORD kWorldFVF = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;

// An axis-aligned rectangle in pixels, and texture coordinates for its corners.
struct Rect {
  float x1, y1, x2, y2;
};
struct UV {
  float u1 = 0.0f, v1 = 0.0f, u2 = 1.0f, v2 = 1.0f;
};

// Channels differ by at most `tolerance` (GL may round where the platform
// truncates, and the other way round).
inline ::testing::AssertionResult ColorNear(D3DCOLOR got, D3DCOLOR want, int tolerance = 2) {
  for (int shift = 0; shift < 32; shift += 8)
    if (std::abs(int((got >> shift) & 0xFF) - int((want >> shift) & 0xFF)) > tolerance)
      return ::testing::AssertionFailure() << std::hex << "got 0x" << got << ", want 0x" << want;
  return ::testing::AssertionSuccess();
}

class DeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0) << SDL_GetError();
    window_ = SDL_CreateWindow("karvo-gl-test", 0, 0, int(kSize), int(kSize),
                               SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    ASSERT_NE(window_, nullptr) << SDL_GetError();
    // Any handle will do: the lookup ignores it and answers the test's window.
    d3d9gl::SetWindowLookup([](HWND) -> void* { return window_; });
    // The same tests on the web page's OpenGL ES path (d3d9_gl_es_tests).
    d3d9gl::UseEsContext(std::getenv("KARVO_GL_ES") != nullptr);
    d3d_ = Direct3DCreate9(D3D_SDK_VERSION);
    ASSERT_NE(d3d_, nullptr);
    D3DPRESENT_PARAMETERS pp = Params();
    ASSERT_EQ(d3d_->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, pp.hDeviceWindow,
                                 D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp, &device_),
              D3D_OK);
    // Pre-transformed quads are drawn either way round.
    device_->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  }
  void TearDown() override {
    for (IDirect3DTexture9* t : textures_) t->Release();
    if (device_) device_->Release();
    if (d3d_) d3d_->Release();
    d3d9gl::SetWindowLookup(nullptr);
    if (window_) SDL_DestroyWindow(window_);
    window_ = nullptr;
  }

  // Windowed, kSize square, A8R8G8B8 with a D24S8 depth buffer.
  static D3DPRESENT_PARAMETERS Params(D3DMULTISAMPLE_TYPE samples = D3DMULTISAMPLE_NONE) {
    D3DPRESENT_PARAMETERS pp{};
    pp.BackBufferWidth = pp.BackBufferHeight = kSize;
    pp.BackBufferFormat = D3DFMT_A8R8G8B8;
    pp.BackBufferCount = 1;
    pp.MultiSampleType = samples;
    pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    pp.hDeviceWindow = reinterpret_cast<HWND>(&window_);
    pp.Windowed = pp.EnableAutoDepthStencil = TRUE;
    pp.AutoDepthStencilFormat = D3DFMT_D24S8;
    pp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
    return pp;
  }
  // A managed A8R8G8B8 texture whose top level holds `texels`; lower levels,
  // if any, are left black. Released by the fixture.
  IDirect3DTexture9* MakeTexture(UINT width, UINT height, const std::vector<D3DCOLOR>& texels,
                                 UINT levels = 1) {
    IDirect3DTexture9* texture = nullptr;
    EXPECT_EQ(device_->CreateTexture(width, height, levels, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED,
                                     &texture, nullptr),
              D3D_OK);
    if (texture) {
      textures_.push_back(texture);
      FillLevel(texture, 0, texels);
    }
    return texture;
  }
  // Writes one level row by row; a single texel fills it.
  static void FillLevel(IDirect3DTexture9* texture, UINT level,
                        const std::vector<D3DCOLOR>& texels) {
    D3DSURFACE_DESC desc{};
    ASSERT_EQ(texture->GetLevelDesc(level, &desc), D3D_OK);
    D3DLOCKED_RECT locked{};
    ASSERT_EQ(texture->LockRect(level, &locked, nullptr, 0), D3D_OK);
    for (UINT i = 0; i < desc.Width * desc.Height; ++i)
      static_cast<D3DCOLOR*>(locked.pBits)[i / desc.Width * (locked.Pitch / 4) + i % desc.Width] =
          texels[i % texels.size()];
    ASSERT_EQ(texture->UnlockRect(level), D3D_OK);
  }
  // Managed buffers holding a quad (texture coordinates 0 to 1) and the
  // indices of its two triangles (0 1 2, 0 2 3); the caller releases them.
  void MakeQuadBuffers(const Rect& r, D3DCOLOR diffuse, IDirect3DVertexBuffer9*& vb,
                       IDirect3DIndexBuffer9*& ib) {
    const std::array<ScreenVertex, 4> quad = QuadVertices(r, diffuse, {}, 0.5f, {});
    const WORD indices[6] = {0, 1, 2, 0, 2, 3};
    void* bytes = nullptr;
    ASSERT_EQ(
        device_->CreateVertexBuffer(sizeof quad, 0, kScreenFVF, D3DPOOL_MANAGED, &vb, nullptr),
        D3D_OK);
    ASSERT_EQ(vb->Lock(0, 0, &bytes, 0), D3D_OK);
    std::memcpy(bytes, quad.data(), sizeof quad);
    vb->Unlock();
    ASSERT_EQ(device_->CreateIndexBuffer(sizeof indices, 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, &ib,
                                         nullptr),
              D3D_OK);
    ASSERT_EQ(ib->Lock(0, 0, &bytes, 0), D3D_OK);
    std::memcpy(bytes, indices, sizeof indices);
    ib->Unlock();
  }
  // A pre-transformed quad as a fan; the second coordinate set is `uv1`.
  static std::array<ScreenVertex, 4> QuadVertices(const Rect& r, D3DCOLOR diffuse, UV uv, float z,
                                                  UV uv1) {
    return {{{r.x1, r.y1, z, 1, diffuse, uv.u1, uv.v1, uv1.u1, uv1.v1},
             {r.x2, r.y1, z, 1, diffuse, uv.u2, uv.v1, uv1.u2, uv1.v1},
             {r.x2, r.y2, z, 1, diffuse, uv.u2, uv.v2, uv1.u2, uv1.v2},
             {r.x1, r.y2, z, 1, diffuse, uv.u1, uv.v2, uv1.u1, uv1.v2}}};
  }

  void ClearAll(D3DCOLOR color = 0xFF000000u) {
    ASSERT_EQ(device_->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, color, 1.0f, 0),
              D3D_OK);
  }
  // One pre-transformed quad; both coordinate sets are `uv` unless `uv1` is
  // given.
  HRESULT Quad(const Rect& r, D3DCOLOR diffuse, UV uv = {}, float z = 0.5f,
               const UV* uv1 = nullptr) {
    const std::array<ScreenVertex, 4> v = QuadVertices(r, diffuse, uv, z, uv1 ? *uv1 : uv);
    device_->SetFVF(kScreenFVF);
    return device_->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, v.data(), sizeof(ScreenVertex));
  }

  // The back buffer as it is now (pending draws carried out first).
  std::vector<D3DCOLOR> Frame() {
    std::vector<std::uint32_t> argb;
    UINT w = 0, h = 0;
    EXPECT_TRUE(d3d9gl::ReadBackBuffer(device_, argb, w, h));
    EXPECT_EQ(w * h, kSize * kSize);
    argb.resize(std::size_t(kSize) * kSize);
    return argb;
  }
  D3DCOLOR Pixel(int x, int y) { return Frame()[std::size_t(y) * kSize + std::size_t(x)]; }

  static inline SDL_Window* window_ = nullptr;
  IDirect3D9* d3d_ = nullptr;
  IDirect3DDevice9* device_ = nullptr;

 private:
  std::vector<IDirect3DTexture9*> textures_;
};

}  // namespace gltest
