// CapsDirect3D: the two IDirect3D9 answers that the render-option check asks
// for, scripted: one caps record and a set of usable texture formats. Every
// other operation fails, so a test notices if the code under test wanders.
#pragma once

#include <set>
#include <vector>

#include "platform/d3d9/d3d9.h"

class CapsDirect3D final : public IDirect3D9 {
 public:
  D3DCAPS9 caps{};
  bool capsFail = false;
  std::set<D3DFORMAT> textureFormats;
  // The (adapter, type, adapter format, usage, resource type) of each format query.
  struct FormatQuery {
    UINT adapter;
    D3DDEVTYPE type;
    D3DFORMAT adapterFormat;
    DWORD usage;
    D3DRESOURCETYPE resource;
    D3DFORMAT format;
  };
  std::vector<FormatQuery> formatQueries;
  UINT capsAdapter = 99;
  D3DDEVTYPE capsType{};

  // Everything the real machine offers: all filters, all ops, 2 stages, 16x.
  static D3DCAPS9 FullCaps() {
    D3DCAPS9 c{};
    c.TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFLINEAR | D3DPTFILTERCAPS_MINFANISOTROPIC |
                          D3DPTFILTERCAPS_MAGFPOINT | D3DPTFILTERCAPS_MAGFLINEAR | D3DPTFILTERCAPS_MAGFANISOTROPIC |
                          D3DPTFILTERCAPS_MIPFPOINT | D3DPTFILTERCAPS_MIPFLINEAR;
    c.TextureOpCaps = D3DTEXOPCAPS_ADDSIGNED | D3DTEXOPCAPS_MODULATE2X | D3DTEXOPCAPS_MODULATE | D3DTEXOPCAPS_ADD |
                      D3DTEXOPCAPS_ADDSIGNED2X | D3DTEXOPCAPS_MODULATE4X | D3DTEXOPCAPS_SUBTRACT;
    c.MaxSimultaneousTextures = 2;
    c.MaxAnisotropy = 16;
    return c;
  }

  CapsDirect3D() : caps(FullCaps()), textureFormats{D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8} {}

  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }
  UINT GetAdapterCount() override { return 1; }
  HRESULT GetAdapterIdentifier(UINT, DWORD, D3DADAPTER_IDENTIFIER9*) override { return D3DERR_INVALIDCALL; }
  UINT GetAdapterModeCount(UINT, D3DFORMAT) override { return 0; }
  HRESULT EnumAdapterModes(UINT, D3DFORMAT, UINT, D3DDISPLAYMODE*) override { return D3DERR_INVALIDCALL; }
  HRESULT GetAdapterDisplayMode(UINT, D3DDISPLAYMODE*) override { return D3DERR_INVALIDCALL; }
  HRESULT CheckDeviceType(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT, BOOL) override { return D3DERR_INVALIDCALL; }
  HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapterFormat, DWORD usage,
                            D3DRESOURCETYPE resource, D3DFORMAT format) override {
    formatQueries.push_back({adapter, type, adapterFormat, usage, resource, format});
    return textureFormats.count(format) ? D3D_OK : D3DERR_NOTAVAILABLE;
  }
  HRESULT CheckDeviceMultiSampleType(UINT, D3DDEVTYPE, D3DFORMAT, BOOL, D3DMULTISAMPLE_TYPE, DWORD*) override {
    return D3DERR_INVALIDCALL;
  }
  HRESULT CheckDepthStencilMatch(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT, D3DFORMAT) override {
    return D3DERR_INVALIDCALL;
  }
  HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* out) override {
    capsAdapter = adapter;
    capsType = type;
    if (capsFail) return D3DERR_NOTAVAILABLE;
    *out = caps;
    return D3D_OK;
  }
  HRESULT CreateDevice(UINT, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*, IDirect3DDevice9**) override {
    return D3DERR_INVALIDCALL;
  }
};
