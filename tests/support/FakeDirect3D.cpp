// FakeDirect3D: answers the enumeration from the scripted adapters.
#include "support/FakeDirect3D.h"

#include <cstdio>

D3DCAPS9 FakeDirect3D::GoodCaps(bool hardwareTnL, bool pure) {
  D3DCAPS9 caps{};
  caps.RasterCaps = D3DPRASTERCAPS_DITHER;
  caps.ShadeCaps = D3DPSHADECAPS_COLORGOURAUDRGB;
  caps.PrimitiveMiscCaps = D3DPMISCCAPS_CULLCCW;
  caps.ZCmpCaps = D3DPCMPCAPS_LESSEQUAL;
  caps.TextureOpCaps = D3DTEXOPCAPS_SELECTARG1;
  caps.PresentationIntervals = D3DPRESENT_INTERVAL_IMMEDIATE | D3DPRESENT_INTERVAL_ONE | D3DPRESENT_INTERVAL_TWO |
                               D3DPRESENT_INTERVAL_THREE | D3DPRESENT_INTERVAL_FOUR;
  if (hardwareTnL) caps.DevCaps |= D3DDEVCAPS_HWTRANSFORMANDLIGHT;
  if (pure) caps.DevCaps |= D3DDEVCAPS_PUREDEVICE;
  return caps;
}

D3DDISPLAYMODE FakeDirect3D::Mode(UINT width, UINT height, UINT refresh, D3DFORMAT format) {
  D3DDISPLAYMODE mode{};
  mode.Width = width;
  mode.Height = height;
  mode.RefreshRate = refresh;
  mode.Format = format;
  return mode;
}

FakeDirect3D::Adapter FakeDirect3D::GoodAdapter() {
  Adapter adapter;
  adapter.modes = {Mode(1024, 768, 60, D3DFMT_X8R8G8B8)};
  adapter.desktop = Mode(1024, 768, 60, D3DFMT_X8R8G8B8);
  adapter.devices[D3DDEVTYPE_HAL] = GoodCaps();
  adapter.backBufferFormats = {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8};
  adapter.depthFormats = {D3DFMT_D24S8, D3DFMT_D16};
  adapter.multiSample[D3DMULTISAMPLE_NONE] = 1;
  return adapter;
}

void FakeDirect3D::FailOn(Call call, HRESULT hr, int count, bool sticky) {
  m_failures[call] = Failure{hr, count, sticky};
}

HRESULT FakeDirect3D::Enter(Call call) {
  const int index = m_calls[call]++;
  const Failure& failure = m_failures[call];
  if (failure.count < 0) return S_OK;
  if (index == failure.count || (failure.sticky && index > failure.count)) return failure.hr;
  return S_OK;
}

HRESULT FakeDirect3D::GetAdapterIdentifier(UINT Adapter, DWORD, D3DADAPTER_IDENTIFIER9* pIdentifier) {
  const HRESULT hr = Enter(CALL_GetAdapterIdentifier);
  if (FAILED(hr)) return hr;
  if (!Find(Adapter) || !pIdentifier) return D3DERR_INVALIDCALL;
  *pIdentifier = D3DADAPTER_IDENTIFIER9{};
  std::snprintf(pIdentifier->Description, sizeof pIdentifier->Description, "Fake adapter %u", Adapter);
  return S_OK;
}

UINT FakeDirect3D::GetAdapterModeCount(UINT Adapter, D3DFORMAT Format) {
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter) return 0;
  UINT count = 0;
  for (const D3DDISPLAYMODE& mode : adapter->modes) count += mode.Format == Format ? 1 : 0;
  return count;
}

HRESULT FakeDirect3D::EnumAdapterModes(UINT Adapter, D3DFORMAT Format, UINT Mode, D3DDISPLAYMODE* pMode) {
  const HRESULT hr = Enter(CALL_EnumAdapterModes);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !pMode) return D3DERR_INVALIDCALL;
  UINT index = 0;
  for (const D3DDISPLAYMODE& mode : adapter->modes) {
    if (mode.Format != Format) continue;
    if (index++ == Mode) {
      *pMode = mode;
      return S_OK;
    }
  }
  return D3DERR_INVALIDCALL;
}

HRESULT FakeDirect3D::GetAdapterDisplayMode(UINT Adapter, D3DDISPLAYMODE* pMode) {
  displayModeQueries.push_back(Adapter);
  const HRESULT hr = Enter(CALL_GetAdapterDisplayMode);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !pMode) return D3DERR_INVALIDCALL;
  *pMode = adapter->desktop;
  return S_OK;
}

HRESULT FakeDirect3D::CheckDeviceType(UINT Adapter, D3DDEVTYPE DevType, D3DFORMAT, D3DFORMAT BackBufferFormat,
                                      BOOL bWindowed) {
  const HRESULT hr = Enter(CALL_CheckDeviceType);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !adapter->devices.count(DevType)) return D3DERR_INVALIDCALL;
  if (bWindowed && adapter->fullscreenOnly) return D3DERR_NOTAVAILABLE;
  return adapter->backBufferFormats.count(BackBufferFormat) ? S_OK : D3DERR_NOTAVAILABLE;
}

HRESULT FakeDirect3D::CheckDeviceFormat(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT, DWORD Usage,
                                        D3DRESOURCETYPE RType, D3DFORMAT CheckFormat) {
  const HRESULT hr = Enter(CALL_CheckDeviceFormat);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !adapter->devices.count(DeviceType)) return D3DERR_INVALIDCALL;
  if (Usage != D3DUSAGE_DEPTHSTENCIL || RType != D3DRTYPE_SURFACE) return D3DERR_NOTAVAILABLE;
  return adapter->depthFormats.count(CheckFormat) ? S_OK : D3DERR_NOTAVAILABLE;
}

HRESULT FakeDirect3D::CheckDeviceMultiSampleType(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT, BOOL,
                                                 D3DMULTISAMPLE_TYPE MultiSampleType, DWORD* pQualityLevels) {
  const HRESULT hr = Enter(CALL_CheckDeviceMultiSampleType);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !adapter->devices.count(DeviceType)) return D3DERR_INVALIDCALL;
  const auto found = adapter->multiSample.find(MultiSampleType);
  if (found == adapter->multiSample.end()) return D3DERR_NOTAVAILABLE;
  if (pQualityLevels) *pQualityLevels = found->second;
  return S_OK;
}

HRESULT FakeDirect3D::CheckDepthStencilMatch(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT,
                                             D3DFORMAT RenderTargetFormat, D3DFORMAT DepthStencilFormat) {
  const HRESULT hr = Enter(CALL_CheckDepthStencilMatch);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !adapter->devices.count(DeviceType)) return D3DERR_INVALIDCALL;
  return adapter->unmatchedDepth.count({RenderTargetFormat, DepthStencilFormat}) ? D3DERR_NOTAVAILABLE : S_OK;
}

HRESULT FakeDirect3D::GetDeviceCaps(UINT Adapter, D3DDEVTYPE DeviceType, D3DCAPS9* pCaps) {
  const HRESULT hr = Enter(CALL_GetDeviceCaps);
  if (FAILED(hr)) return hr;
  const FakeDirect3D::Adapter* adapter = Find(Adapter);
  if (!adapter || !pCaps) return D3DERR_INVALIDCALL;
  const auto found = adapter->devices.find(DeviceType);
  if (found == adapter->devices.end()) return D3DERR_NOTAVAILABLE;
  *pCaps = found->second;
  return S_OK;
}

HRESULT FakeDirect3D::CreateDevice(UINT Adapter, D3DDEVTYPE DeviceType, HWND hFocusWindow, DWORD BehaviorFlags,
                                   D3DPRESENT_PARAMETERS* pPresentationParameters,
                                   IDirect3DDevice9** ppReturnedDeviceInterface) {
  lastCreate.adapter = Adapter;
  lastCreate.type = DeviceType;
  lastCreate.focusWindow = hFocusWindow;
  lastCreate.flags = BehaviorFlags;
  if (pPresentationParameters) lastCreate.params = *pPresentationParameters;
  const HRESULT hr = Enter(CALL_CreateDevice);
  if (FAILED(hr)) return hr;
  if (!ppReturnedDeviceInterface || !pPresentationParameters || !deviceToCreate) return D3DERR_INVALIDCALL;
  deviceToCreate->AddRef();
  *ppReturnedDeviceInterface = deviceToCreate;
  return S_OK;
}
