// Creation of textures and buffers on the device. Every pool is kept in
// system memory as well, so nothing is lost by Reset.
#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

HRESULT GLDevice::CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                IDirect3DTexture9** out, HANDLE* shared) {
  if (out == nullptr) return D3DERR_INVALIDCALL;
  *out = nullptr;
  // Shared handles, render-target and depth textures are not part of this layer.
  if (shared != nullptr || w == 0 || h == 0 || (usage & (D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL)) ||
      pool > D3DPOOL_SCRATCH)
    return D3DERR_INVALIDCALL;
  const TextureFormat* f = FindTextureFormat(format);
  if (f == nullptr) return D3DERR_INVALIDCALL;
  if (GLint(w) > Limits().maxTextureSize || GLint(h) > Limits().maxTextureSize) return D3DERR_INVALIDCALL;
  UINT full = FullMipLevels(w, h);
  if (levels == 0 || levels > full) levels = full;
  auto* t = new GLTexture(core_, w, h, levels, usage, *f, pool);
  if (!t->valid()) {
    t->Release();
    return D3DERR_OUTOFVIDEOMEMORY;
  }
  *out = t;
  return D3D_OK;
}

HRESULT GLDevice::CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool, IDirect3DVertexBuffer9** out,
                                     HANDLE* shared) {
  if (out == nullptr) return D3DERR_INVALIDCALL;
  *out = nullptr;
  if (shared != nullptr || length == 0 || pool > D3DPOOL_SCRATCH) return D3DERR_INVALIDCALL;
  auto* b = new GLVertexBuffer(core_, length, usage, fvf, pool);
  if (!b->valid()) {
    b->Release();
    return D3DERR_OUTOFVIDEOMEMORY;
  }
  *out = b;
  return D3D_OK;
}

HRESULT GLDevice::CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                    IDirect3DIndexBuffer9** out, HANDLE* shared) {
  if (out == nullptr) return D3DERR_INVALIDCALL;
  *out = nullptr;
  if (shared != nullptr || length == 0 || pool > D3DPOOL_SCRATCH ||
      (format != D3DFMT_INDEX16 && format != D3DFMT_INDEX32))
    return D3DERR_INVALIDCALL;
  auto* b = new GLIndexBuffer(core_, length, usage, format, pool);
  if (!b->valid()) {
    b->Release();
    return D3DERR_OUTOFVIDEOMEMORY;
  }
  *out = b;
  return D3D_OK;
}

}  // namespace d3d9gl
