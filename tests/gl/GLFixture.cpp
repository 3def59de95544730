// The shared fixture of the GL pixel tests: window, device, drawing helpers.
#include "GLFixture.h"

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace gltest {

namespace {

SDL_Window* s_window = nullptr;
// Any non-null handle: the lookup ignores it and answers the test's window.
HWND const kWindowHandle = reinterpret_cast<HWND>(&s_window);

void* LookupTestWindow(HWND) {
  return s_window;
}

int Channel(D3DCOLOR c, int shift) {
  return int((c >> shift) & 0xFF);
}

}  // namespace

::testing::AssertionResult ColorNear(D3DCOLOR got, D3DCOLOR want, int tolerance) {
  for (int shift = 0; shift < 32; shift += 8) {
    if (std::abs(Channel(got, shift) - Channel(want, shift)) > tolerance) {
      char text[64];
      std::snprintf(text, sizeof text, "got 0x%08X, want 0x%08X", unsigned(got), unsigned(want));
      return ::testing::AssertionFailure() << text;
    }
  }
  return ::testing::AssertionSuccess();
}

void DeviceTest::SetUp() {
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0) << SDL_GetError();
  s_window = SDL_CreateWindow("karvo-gl-test", 0, 0, int(kSize), int(kSize),
                              SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
  ASSERT_NE(s_window, nullptr) << SDL_GetError();
  d3d9gl::SetWindowLookup(LookupTestWindow);
  d3d_ = Direct3DCreate9(D3D_SDK_VERSION);
  ASSERT_NE(d3d_, nullptr);
  ASSERT_NO_FATAL_FAILURE(Recreate(Params()));
}

void DeviceTest::TearDown() {
  for (IDirect3DTexture9* t : textures_) t->Release();
  textures_.clear();
  if (device_) device_->Release();
  if (d3d_) d3d_->Release();
  device_ = nullptr;
  d3d_ = nullptr;
  d3d9gl::SetWindowLookup(nullptr);
  if (s_window) SDL_DestroyWindow(s_window);
  s_window = nullptr;
}

D3DPRESENT_PARAMETERS DeviceTest::Params(D3DMULTISAMPLE_TYPE samples) const {
  D3DPRESENT_PARAMETERS pp{};
  pp.BackBufferWidth = kSize;
  pp.BackBufferHeight = kSize;
  pp.BackBufferFormat = D3DFMT_A8R8G8B8;
  pp.BackBufferCount = 1;
  pp.MultiSampleType = samples;
  pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
  pp.hDeviceWindow = kWindowHandle;
  pp.Windowed = TRUE;
  pp.EnableAutoDepthStencil = TRUE;
  pp.AutoDepthStencilFormat = D3DFMT_D24S8;
  pp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  return pp;
}

void DeviceTest::Recreate(D3DPRESENT_PARAMETERS pp) {
  for (IDirect3DTexture9* t : textures_) t->Release();
  textures_.clear();
  if (device_) device_->Release();
  device_ = nullptr;
  ASSERT_EQ(d3d_->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, kWindowHandle,
                               D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp, &device_),
            D3D_OK);
  ASSERT_NE(device_, nullptr);
  // Pre-transformed quads are drawn either way round.
  device_->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  device_->SetFVF(kScreenFVF);
}

IDirect3DTexture9* DeviceTest::MakeTexture(UINT width, UINT height,
                                           const std::vector<D3DCOLOR>& texels, UINT levels,
                                           D3DPOOL pool, D3DFORMAT format) {
  IDirect3DTexture9* texture = nullptr;
  EXPECT_EQ(device_->CreateTexture(width, height, levels, 0, format, pool, &texture, nullptr),
            D3D_OK);
  if (texture == nullptr) return nullptr;
  textures_.push_back(texture);
  D3DLOCKED_RECT locked{};
  EXPECT_EQ(texture->LockRect(0, &locked, nullptr, 0), D3D_OK);
  for (UINT y = 0; y < height; ++y)
    std::memcpy(static_cast<std::uint8_t*>(locked.pBits) + std::size_t(y) * locked.Pitch,
                &texels[y * width], width * sizeof(D3DCOLOR));
  EXPECT_EQ(texture->UnlockRect(0), D3D_OK);
  return texture;
}

void DeviceTest::MakeQuadBuffers(const ScreenVertex (&quad)[4], IDirect3DVertexBuffer9*& vb,
                                 IDirect3DIndexBuffer9*& ib) {
  ASSERT_EQ(device_->CreateVertexBuffer(sizeof quad, 0, kScreenFVF, D3DPOOL_MANAGED, &vb, nullptr),
            D3D_OK);
  ASSERT_EQ(device_->CreateIndexBuffer(6 * sizeof(WORD), 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, &ib,
                                       nullptr),
            D3D_OK);
  const WORD indices[6] = {0, 1, 2, 0, 2, 3};
  void* bytes = nullptr;
  ASSERT_EQ(vb->Lock(0, 0, &bytes, 0), D3D_OK);
  std::memcpy(bytes, quad, sizeof quad);
  vb->Unlock();
  ASSERT_EQ(ib->Lock(0, 0, &bytes, 0), D3D_OK);
  std::memcpy(bytes, indices, sizeof indices);
  ib->Unlock();
}

void DeviceTest::FillLevel(IDirect3DTexture9* texture, UINT level, D3DCOLOR color) {
  D3DSURFACE_DESC desc{};
  ASSERT_EQ(texture->GetLevelDesc(level, &desc), D3D_OK);
  D3DLOCKED_RECT locked{};
  ASSERT_EQ(texture->LockRect(level, &locked, nullptr, 0), D3D_OK);
  for (UINT y = 0; y < desc.Height; ++y)
    for (UINT x = 0; x < desc.Width; ++x)
      std::memcpy(static_cast<std::uint8_t*>(locked.pBits) + std::size_t(y) * locked.Pitch + x * 4,
                  &color, 4);
  ASSERT_EQ(texture->UnlockRect(level), D3D_OK);
}

void DeviceTest::ClearAll(D3DCOLOR color, float z) {
  ASSERT_EQ(device_->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, color, z, 0), D3D_OK);
}

HRESULT DeviceTest::Quad(const Rect& r, D3DCOLOR diffuse, UV uv, float z, const UV* uv1) {
  UV second = uv1 ? *uv1 : uv;
  ScreenVertex v[4] = {
      {r.x1, r.y1, z, 1.0f, diffuse, uv.u1, uv.v1, second.u1, second.v1},
      {r.x2, r.y1, z, 1.0f, diffuse, uv.u2, uv.v1, second.u2, second.v1},
      {r.x2, r.y2, z, 1.0f, diffuse, uv.u2, uv.v2, second.u2, second.v2},
      {r.x1, r.y2, z, 1.0f, diffuse, uv.u1, uv.v2, second.u1, second.v2},
  };
  return device_->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, v, sizeof(ScreenVertex));
}

HRESULT DeviceTest::Triangle(float x0, float y0, float x1, float y1, float x2, float y2,
                             D3DCOLOR diffuse) {
  ScreenVertex v[3] = {
      {x0, y0, 0.5f, 1.0f, diffuse, 0, 0, 0, 0},
      {x1, y1, 0.5f, 1.0f, diffuse, 0, 0, 0, 0},
      {x2, y2, 0.5f, 1.0f, diffuse, 0, 0, 0, 0},
  };
  return device_->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, v, sizeof(ScreenVertex));
}

std::vector<D3DCOLOR> DeviceTest::Frame() {
  std::vector<std::uint32_t> argb;
  UINT w = 0, h = 0;
  EXPECT_TRUE(d3d9gl::ReadBackBuffer(device_, argb, w, h));
  EXPECT_EQ(w, kSize);
  EXPECT_EQ(h, kSize);
  argb.resize(std::size_t(kSize) * kSize);
  return std::vector<D3DCOLOR>(argb.begin(), argb.end());
}

D3DCOLOR DeviceTest::Pixel(int x, int y) {
  return Frame()[std::size_t(y) * kSize + std::size_t(x)];
}

}  // namespace gltest
