// FakeDirect3D: a scriptable IDirect3D9 for tests of the enumeration, the
// searches, device creation and the render-option check, with no GPU and no
// window.
//
// A test describes adapters (display modes per format, the desktop mode, the
// device types with their caps, the accepted back buffer, depth and texture
// formats, the multisample types with their quality counts) and, per
// operation, a failure to give on the n-th call. The fake counts every call
// and its own references, and records the last CreateDevice request and the
// texture format queries.
//
// Header-only, like the recording device: a test just includes it.
#pragma once

#include <cstdio>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/d3d9/d3d9.h"

class FakeDirect3D final : public IDirect3D9 {
 public:
  // The operations of the object, as keys for failures and call counts.
  enum Call {
    CALL_GetAdapterIdentifier,
    CALL_EnumAdapterModes,
    CALL_GetAdapterDisplayMode,
    CALL_CheckDeviceType,
    CALL_CheckDeviceFormat,
    CALL_CheckDeviceMultiSampleType,
    CALL_CheckDepthStencilMatch,
    CALL_GetDeviceCaps,
    CALL_CreateDevice,
    CALL_COUNT
  };

  struct Adapter {
    std::vector<D3DDISPLAYMODE> modes;  // EnumAdapterModes lists those of the asked format, in this order
    D3DDISPLAYMODE desktop{};           // GetAdapterDisplayMode
    std::map<D3DDEVTYPE, D3DCAPS9> devices;  // device types that answer GetDeviceCaps
    std::set<D3DFORMAT> backBufferFormats;   // CheckDeviceType accepts these on any adapter format
    bool fullscreenOnly = false;             // CheckDeviceType refuses windowed when set
    std::set<D3DFORMAT> depthFormats;        // CheckDeviceFormat accepts these as depth buffers
    std::set<D3DFORMAT> textureFormats;      // ... and these as plain textures
    // ... but CheckDepthStencilMatch refuses these pairs of back buffer and depth format
    std::set<std::pair<D3DFORMAT, D3DFORMAT>> unmatchedDepth;
    std::map<D3DMULTISAMPLE_TYPE, DWORD> multiSample;  // type -> quality levels
  };

  // Caps that pass every test of the application's enumeration and offer
  // every filter and colour op, two stages and 16x anisotropy.
  static D3DCAPS9 GoodCaps(bool hardwareTnL = true, bool pure = false) {
    D3DCAPS9 caps{};
    caps.RasterCaps = D3DPRASTERCAPS_DITHER;
    caps.ShadeCaps = D3DPSHADECAPS_COLORGOURAUDRGB;
    caps.PrimitiveMiscCaps = D3DPMISCCAPS_CULLCCW;
    caps.ZCmpCaps = D3DPCMPCAPS_LESSEQUAL;
    caps.TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFLINEAR |
                             D3DPTFILTERCAPS_MINFANISOTROPIC | D3DPTFILTERCAPS_MAGFPOINT | D3DPTFILTERCAPS_MAGFLINEAR |
                             D3DPTFILTERCAPS_MAGFANISOTROPIC | D3DPTFILTERCAPS_MIPFPOINT | D3DPTFILTERCAPS_MIPFLINEAR;
    caps.TextureOpCaps = D3DTEXOPCAPS_SELECTARG1 | D3DTEXOPCAPS_ADDSIGNED | D3DTEXOPCAPS_MODULATE2X |
                         D3DTEXOPCAPS_MODULATE | D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_ADDSIGNED2X |
                         D3DTEXOPCAPS_MODULATE4X | D3DTEXOPCAPS_SUBTRACT;
    caps.MaxSimultaneousTextures = 2;
    caps.MaxAnisotropy = 16;
    caps.PresentationIntervals = D3DPRESENT_INTERVAL_IMMEDIATE | D3DPRESENT_INTERVAL_ONE | D3DPRESENT_INTERVAL_TWO |
                                 D3DPRESENT_INTERVAL_THREE | D3DPRESENT_INTERVAL_FOUR;
    caps.DevCaps = (hardwareTnL ? D3DDEVCAPS_HWTRANSFORMANDLIGHT : 0) | (pure ? D3DDEVCAPS_PUREDEVICE : 0);
    return caps;
  }
  // A usable adapter: X8R8G8B8 desktop 1024x768@60, one HAL device, back
  // buffers and textures X8R8G8B8 and A8R8G8B8, depth D24S8 and D16, no
  // multisampling.
  static Adapter GoodAdapter() {
    Adapter adapter;
    adapter.desktop = {1024, 768, 60, D3DFMT_X8R8G8B8};
    adapter.modes = {adapter.desktop};
    adapter.devices[D3DDEVTYPE_HAL] = GoodCaps();
    adapter.backBufferFormats = adapter.textureFormats = {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8};
    adapter.depthFormats = {D3DFMT_D24S8, D3DFMT_D16};
    adapter.multiSample[D3DMULTISAMPLE_NONE] = 1;
    return adapter;
  }

  explicit FakeDirect3D(std::vector<Adapter> scripted = {}) : adapters(std::move(scripted)) {}
  std::vector<Adapter> adapters;

  // Makes the count-th call (0 = the first) of an operation give hr, and
  // every later one too when sticky.
  void FailOn(Call call, HRESULT hr, int count = 0, bool sticky = false) { m_failures[call] = {hr, count, sticky}; }
  int Calls(Call call) const { return m_calls[call]; }
  ULONG References() const { return m_references; }

  // CreateDevice gives this device (AddRef'd) on success; the request lands here.
  IDirect3DDevice9* deviceToCreate = nullptr;
  struct CreateRequest {
    HWND focusWindow = nullptr;
    DWORD flags = 0;
    D3DPRESENT_PARAMETERS params{};
  } lastCreate;
  // Adapters asked of GetAdapterDisplayMode, in order.
  std::vector<UINT> displayModeQueries;
  // The adapter format and the format asked of every CheckDeviceFormat, in order.
  std::vector<std::pair<D3DFORMAT, D3DFORMAT>> formatQueries;

  // ---- IDirect3D9 ----
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override { return m_references > 0 ? --m_references : 0; }
  UINT GetAdapterCount() override { return static_cast<UINT>(adapters.size()); }

  HRESULT GetAdapterIdentifier(UINT ordinal, DWORD, D3DADAPTER_IDENTIFIER9* identifier) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_GetAdapterIdentifier, ordinal, adapter); FAILED(hr)) return hr;
    if (!identifier) return D3DERR_INVALIDCALL;
    *identifier = D3DADAPTER_IDENTIFIER9{};
    std::snprintf(identifier->Description, sizeof identifier->Description, "Fake adapter %u", ordinal);
    return S_OK;
  }
  UINT GetAdapterModeCount(UINT ordinal, D3DFORMAT format) override {
    UINT count = 0;
    if (ordinal < adapters.size())
      for (const D3DDISPLAYMODE& mode : adapters[ordinal].modes) count += mode.Format == format ? 1 : 0;
    return count;
  }
  HRESULT EnumAdapterModes(UINT ordinal, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_EnumAdapterModes, ordinal, adapter); FAILED(hr)) return hr;
    if (!mode) return D3DERR_INVALIDCALL;
    for (const D3DDISPLAYMODE& candidate : adapter->modes) {
      if (candidate.Format == format && index-- == 0) {
        *mode = candidate;
        return S_OK;
      }
    }
    return D3DERR_INVALIDCALL;
  }
  HRESULT GetAdapterDisplayMode(UINT ordinal, D3DDISPLAYMODE* mode) override {
    displayModeQueries.push_back(ordinal);
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_GetAdapterDisplayMode, ordinal, adapter); FAILED(hr)) return hr;
    if (!mode) return D3DERR_INVALIDCALL;
    *mode = adapter->desktop;
    return S_OK;
  }
  HRESULT CheckDeviceType(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, D3DFORMAT backBuffer, BOOL windowed) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_CheckDeviceType, ordinal, adapter, &type); FAILED(hr)) return hr;
    if (windowed && adapter->fullscreenOnly) return D3DERR_NOTAVAILABLE;
    return adapter->backBufferFormats.count(backBuffer) ? S_OK : D3DERR_NOTAVAILABLE;
  }
  HRESULT CheckDeviceFormat(UINT ordinal, D3DDEVTYPE type, D3DFORMAT adapterFormat, DWORD usage,
                            D3DRESOURCETYPE resource, D3DFORMAT format) override {
    formatQueries.push_back({adapterFormat, format});
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_CheckDeviceFormat, ordinal, adapter, &type); FAILED(hr)) return hr;
    const std::set<D3DFORMAT>* accepted = nullptr;
    if (usage == D3DUSAGE_DEPTHSTENCIL && resource == D3DRTYPE_SURFACE) accepted = &adapter->depthFormats;
    if (usage == 0 && resource == D3DRTYPE_TEXTURE) accepted = &adapter->textureFormats;
    return accepted && accepted->count(format) ? S_OK : D3DERR_NOTAVAILABLE;
  }
  HRESULT CheckDeviceMultiSampleType(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, BOOL, D3DMULTISAMPLE_TYPE samples,
                                     DWORD* qualities) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_CheckDeviceMultiSampleType, ordinal, adapter, &type); FAILED(hr)) return hr;
    const auto found = adapter->multiSample.find(samples);
    if (found == adapter->multiSample.end()) return D3DERR_NOTAVAILABLE;
    if (qualities) *qualities = found->second;
    return S_OK;
  }
  HRESULT CheckDepthStencilMatch(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, D3DFORMAT renderTarget,
                                 D3DFORMAT depth) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_CheckDepthStencilMatch, ordinal, adapter, &type); FAILED(hr)) return hr;
    return adapter->unmatchedDepth.count({renderTarget, depth}) ? D3DERR_NOTAVAILABLE : S_OK;
  }
  HRESULT GetDeviceCaps(UINT ordinal, D3DDEVTYPE type, D3DCAPS9* caps) override {
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_GetDeviceCaps, ordinal, adapter); FAILED(hr)) return hr;
    if (!caps) return D3DERR_INVALIDCALL;
    const auto found = adapter->devices.find(type);
    if (found == adapter->devices.end()) return D3DERR_NOTAVAILABLE;
    *caps = found->second;
    return S_OK;
  }
  HRESULT CreateDevice(UINT ordinal, D3DDEVTYPE, HWND focusWindow, DWORD flags, D3DPRESENT_PARAMETERS* params,
                       IDirect3DDevice9** device) override {
    lastCreate = {focusWindow, flags, params ? *params : lastCreate.params};
    const Adapter* adapter = nullptr;
    if (const HRESULT hr = Enter(CALL_CreateDevice, ordinal, adapter); FAILED(hr)) return hr;
    if (!device || !params || !deviceToCreate) return D3DERR_INVALIDCALL;
    deviceToCreate->AddRef();
    *device = deviceToCreate;
    return S_OK;
  }

 private:
  // Counts the call and gives its scripted failure; otherwise finds the
  // adapter, which must have a device of `type` unless that is null.
  HRESULT Enter(Call call, UINT ordinal, const Adapter*& adapter, const D3DDEVTYPE* type = nullptr) {
    const int index = m_calls[call]++;
    const Failure& failure = m_failures[call];
    if (failure.count >= 0 && (index == failure.count || (failure.sticky && index > failure.count))) return failure.hr;
    adapter = ordinal < adapters.size() ? &adapters[ordinal] : nullptr;
    return adapter && (!type || adapter->devices.count(*type)) ? S_OK : D3DERR_INVALIDCALL;
  }

  struct Failure {
    HRESULT hr = S_OK;
    int count = -1;
    bool sticky = false;
  };
  Failure m_failures[CALL_COUNT];
  int m_calls[CALL_COUNT] = {};
  ULONG m_references = 1;  // the creator's
};
