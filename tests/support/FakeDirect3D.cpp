// FakeDirect3D: answers the enumeration from the scripted adapters.
#include "support/FakeDirect3D.h"

#include <cstdio>

D3DCAPS9 FakeDirect3D::GoodCaps(bool hardwareTnL, bool pure) {
  D3DCAPS9 caps{};
  caps.RasterCaps = D3DPRASTERCAPS_DITHER;
  caps.ShadeCaps = D3DPSHADECAPS_COLORGOURAUDRGB;
  caps.PrimitiveMiscCaps = D3DPMISCCAPS_CULLCCW;
  caps.ZCmpCaps = D3DPCMPCAPS_LESSEQUAL;
  caps.TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFLINEAR | D3DPTFILTERCAPS_MINFANISOTROPIC |
                           D3DPTFILTERCAPS_MAGFPOINT | D3DPTFILTERCAPS_MAGFLINEAR | D3DPTFILTERCAPS_MAGFANISOTROPIC |
                           D3DPTFILTERCAPS_MIPFPOINT | D3DPTFILTERCAPS_MIPFLINEAR;
  caps.TextureOpCaps = D3DTEXOPCAPS_SELECTARG1 | D3DTEXOPCAPS_ADDSIGNED | D3DTEXOPCAPS_MODULATE2X |
                       D3DTEXOPCAPS_MODULATE | D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_ADDSIGNED2X | D3DTEXOPCAPS_MODULATE4X |
                       D3DTEXOPCAPS_SUBTRACT;
  caps.MaxSimultaneousTextures = 2;
  caps.MaxAnisotropy = 16;
  caps.PresentationIntervals = D3DPRESENT_INTERVAL_IMMEDIATE | D3DPRESENT_INTERVAL_ONE | D3DPRESENT_INTERVAL_TWO |
                               D3DPRESENT_INTERVAL_THREE | D3DPRESENT_INTERVAL_FOUR;
  if (hardwareTnL) caps.DevCaps |= D3DDEVCAPS_HWTRANSFORMANDLIGHT;
  if (pure) caps.DevCaps |= D3DDEVCAPS_PUREDEVICE;
  return caps;
}

FakeDirect3D::Adapter FakeDirect3D::GoodAdapter() {
  Adapter adapter;
  adapter.modes = {Mode(1024, 768, 60, D3DFMT_X8R8G8B8)};
  adapter.desktop = Mode(1024, 768, 60, D3DFMT_X8R8G8B8);
  adapter.devices[D3DDEVTYPE_HAL] = GoodCaps();
  adapter.backBufferFormats = adapter.textureFormats = {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8};
  adapter.depthFormats = {D3DFMT_D24S8, D3DFMT_D16};
  adapter.multiSample[D3DMULTISAMPLE_NONE] = 1;
  return adapter;
}

HRESULT FakeDirect3D::Enter(Call call, UINT ordinal, const Adapter*& adapter, const D3DDEVTYPE* type) {
  const int index = m_calls[call]++;
  const Failure& failure = m_failures[call];
  if (failure.count >= 0 && (index == failure.count || (failure.sticky && index > failure.count))) return failure.hr;
  adapter = ordinal < adapters.size() ? &adapters[ordinal] : nullptr;
  return adapter && (!type || adapter->devices.count(*type)) ? S_OK : D3DERR_INVALIDCALL;
}

HRESULT FakeDirect3D::GetAdapterIdentifier(UINT ordinal, DWORD, D3DADAPTER_IDENTIFIER9* identifier) {
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_GetAdapterIdentifier, ordinal, adapter); FAILED(hr)) return hr;
  if (!identifier) return D3DERR_INVALIDCALL;
  *identifier = D3DADAPTER_IDENTIFIER9{};
  std::snprintf(identifier->Description, sizeof identifier->Description, "Fake adapter %u", ordinal);
  return S_OK;
}

UINT FakeDirect3D::GetAdapterModeCount(UINT ordinal, D3DFORMAT format) {
  UINT count = 0;
  if (ordinal < adapters.size())
    for (const D3DDISPLAYMODE& mode : adapters[ordinal].modes) count += mode.Format == format ? 1 : 0;
  return count;
}

HRESULT FakeDirect3D::EnumAdapterModes(UINT ordinal, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) {
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

HRESULT FakeDirect3D::GetAdapterDisplayMode(UINT ordinal, D3DDISPLAYMODE* mode) {
  displayModeQueries.push_back(ordinal);
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_GetAdapterDisplayMode, ordinal, adapter); FAILED(hr)) return hr;
  if (!mode) return D3DERR_INVALIDCALL;
  *mode = adapter->desktop;
  return S_OK;
}

HRESULT FakeDirect3D::CheckDeviceType(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, D3DFORMAT backBuffer,
                                      BOOL windowed) {
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_CheckDeviceType, ordinal, adapter, &type); FAILED(hr)) return hr;
  if (windowed && adapter->fullscreenOnly) return D3DERR_NOTAVAILABLE;
  return adapter->backBufferFormats.count(backBuffer) ? S_OK : D3DERR_NOTAVAILABLE;
}

HRESULT FakeDirect3D::CheckDeviceFormat(UINT ordinal, D3DDEVTYPE type, D3DFORMAT adapterFormat, DWORD usage,
                                        D3DRESOURCETYPE resource, D3DFORMAT format) {
  formatQueries.push_back({ordinal, type, adapterFormat, usage, resource, format});
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_CheckDeviceFormat, ordinal, adapter, &type); FAILED(hr)) return hr;
  const std::set<D3DFORMAT>* accepted = nullptr;
  if (usage == D3DUSAGE_DEPTHSTENCIL && resource == D3DRTYPE_SURFACE) accepted = &adapter->depthFormats;
  if (usage == 0 && resource == D3DRTYPE_TEXTURE) accepted = &adapter->textureFormats;
  return accepted && accepted->count(format) ? S_OK : D3DERR_NOTAVAILABLE;
}

HRESULT FakeDirect3D::CheckDeviceMultiSampleType(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, BOOL,
                                                 D3DMULTISAMPLE_TYPE multiSample, DWORD* qualities) {
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_CheckDeviceMultiSampleType, ordinal, adapter, &type); FAILED(hr)) return hr;
  const auto found = adapter->multiSample.find(multiSample);
  if (found == adapter->multiSample.end()) return D3DERR_NOTAVAILABLE;
  if (qualities) *qualities = found->second;
  return S_OK;
}

HRESULT FakeDirect3D::CheckDepthStencilMatch(UINT ordinal, D3DDEVTYPE type, D3DFORMAT, D3DFORMAT renderTarget,
                                             D3DFORMAT depth) {
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_CheckDepthStencilMatch, ordinal, adapter, &type); FAILED(hr)) return hr;
  return adapter->unmatchedDepth.count({renderTarget, depth}) ? D3DERR_NOTAVAILABLE : S_OK;
}

HRESULT FakeDirect3D::GetDeviceCaps(UINT ordinal, D3DDEVTYPE type, D3DCAPS9* caps) {
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_GetDeviceCaps, ordinal, adapter); FAILED(hr)) return hr;
  if (!caps) return D3DERR_INVALIDCALL;
  const auto found = adapter->devices.find(type);
  if (found == adapter->devices.end()) return D3DERR_NOTAVAILABLE;
  *caps = found->second;
  return S_OK;
}

HRESULT FakeDirect3D::CreateDevice(UINT ordinal, D3DDEVTYPE type, HWND focusWindow, DWORD flags,
                                   D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) {
  lastCreate.adapter = ordinal;
  lastCreate.type = type;
  lastCreate.focusWindow = focusWindow;
  lastCreate.flags = flags;
  if (params) lastCreate.params = *params;
  const Adapter* adapter = nullptr;
  if (const HRESULT hr = Enter(CALL_CreateDevice, ordinal, adapter); FAILED(hr)) return hr;
  if (!device || !params || !deviceToCreate) return D3DERR_INVALIDCALL;
  deviceToCreate->AddRef();
  *device = deviceToCreate;
  return S_OK;
}
