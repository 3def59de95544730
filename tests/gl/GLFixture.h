// Pixel tests of the Direct3D 9 back end on OpenGL: a real device from
// Direct3DCreate9 on a small hidden SDL window (Xvfb and llvmpipe when
// headless), pre-transformed quads to draw with, and the back buffer read back
// as 0xAARRGGBB words. The back buffer is A8R8G8B8 so that the alpha the
// pipeline writes can be checked too.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/d3d9/d3d9.h"

struct SDL_Window;

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

// An axis-aligned rectangle in pixels with texture coordinates for its corners.
struct Rect {
  float x1, y1, x2, y2;
};
struct UV {
  float u1 = 0.0f, v1 = 0.0f, u2 = 1.0f, v2 = 1.0f;
};

// Channels differ by at most `tolerance` (GL may round where the platform
// truncates, and the other way round).
::testing::AssertionResult ColorNear(D3DCOLOR got, D3DCOLOR want, int tolerance = 2);

class DeviceTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Present parameters of the fixture's device: windowed, kSize square,
  // A8R8G8B8 with a D24S8 depth buffer.
  D3DPRESENT_PARAMETERS Params(D3DMULTISAMPLE_TYPE samples = D3DMULTISAMPLE_NONE) const;
  // Replaces the device by one made with these parameters.
  void Recreate(D3DPRESENT_PARAMETERS pp);

  // A texture whose top level holds `texels` (row by row); lower levels, if
  // any, are left black. Released by the fixture.
  IDirect3DTexture9* MakeTexture(UINT width, UINT height, const std::vector<D3DCOLOR>& texels,
                                 UINT levels = 1, D3DPOOL pool = D3DPOOL_MANAGED,
                                 D3DFORMAT format = D3DFMT_A8R8G8B8);
  // Managed buffers holding `quad` and the indices of its two triangles
  // (0 1 2, 0 2 3); the caller releases them.
  void MakeQuadBuffers(const ScreenVertex (&quad)[4], IDirect3DVertexBuffer9*& vb,
                       IDirect3DIndexBuffer9*& ib);
  // Fills one level of a texture with a single colour.
  static void FillLevel(IDirect3DTexture9* texture, UINT level, D3DCOLOR color);

  // Clears colour and depth.
  void ClearAll(D3DCOLOR color = 0xFF000000u, float z = 1.0f);
  // One pre-transformed quad as a fan; both coordinate sets are `uv` unless
  // `uv1` is given.
  HRESULT Quad(const Rect& r, D3DCOLOR diffuse, UV uv = {}, float z = 0.5f,
               const UV* uv1 = nullptr);
  // Screen vertices of a triangle, in the given order.
  HRESULT Triangle(float x0, float y0, float x1, float y1, float x2, float y2, D3DCOLOR diffuse);

  // The back buffer as it is now (pending draws carried out first).
  std::vector<D3DCOLOR> Frame();
  D3DCOLOR Pixel(int x, int y);

  IDirect3D9* d3d_ = nullptr;
  IDirect3DDevice9* device_ = nullptr;

 private:
  std::vector<IDirect3DTexture9*> textures_;
};

}  // namespace gltest
