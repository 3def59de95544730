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
#pragma once

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
  static D3DCAPS9 GoodCaps(bool hardwareTnL = true, bool pure = false);
  static D3DDISPLAYMODE Mode(UINT width, UINT height, UINT refresh, D3DFORMAT format) {
    return {width, height, refresh, format};
  }
  // A usable adapter: X8R8G8B8 desktop 1024x768@60, one HAL device, back
  // buffers and textures X8R8G8B8 and A8R8G8B8, depth D24S8 and D16, no
  // multisampling.
  static Adapter GoodAdapter();

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
    UINT adapter = 0;
    D3DDEVTYPE type{};
    HWND focusWindow = nullptr;
    DWORD flags = 0;
    D3DPRESENT_PARAMETERS params{};
  } lastCreate;
  // Adapters asked of GetAdapterDisplayMode, in order.
  std::vector<UINT> displayModeQueries;
  // Every CheckDeviceFormat question, in order.
  struct FormatQuery {
    UINT adapter;
    D3DDEVTYPE type;
    D3DFORMAT adapterFormat;
    DWORD usage;
    D3DRESOURCETYPE resource;
    D3DFORMAT format;
  };
  std::vector<FormatQuery> formatQueries;

  // ---- IDirect3D9 ----
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override { return m_references > 0 ? --m_references : 0; }
  UINT GetAdapterCount() override { return static_cast<UINT>(adapters.size()); }
  HRESULT GetAdapterIdentifier(UINT Adapter, DWORD Flags, D3DADAPTER_IDENTIFIER9* pIdentifier) override;
  UINT GetAdapterModeCount(UINT Adapter, D3DFORMAT Format) override;
  HRESULT EnumAdapterModes(UINT Adapter, D3DFORMAT Format, UINT Mode, D3DDISPLAYMODE* pMode) override;
  HRESULT GetAdapterDisplayMode(UINT Adapter, D3DDISPLAYMODE* pMode) override;
  HRESULT CheckDeviceType(UINT Adapter, D3DDEVTYPE DevType, D3DFORMAT AdapterFormat, D3DFORMAT BackBufferFormat,
                          BOOL bWindowed) override;
  HRESULT CheckDeviceFormat(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT AdapterFormat, DWORD Usage,
                            D3DRESOURCETYPE RType, D3DFORMAT CheckFormat) override;
  HRESULT CheckDeviceMultiSampleType(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT SurfaceFormat, BOOL Windowed,
                                     D3DMULTISAMPLE_TYPE MultiSampleType, DWORD* pQualityLevels) override;
  HRESULT CheckDepthStencilMatch(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT AdapterFormat,
                                 D3DFORMAT RenderTargetFormat, D3DFORMAT DepthStencilFormat) override;
  HRESULT GetDeviceCaps(UINT Adapter, D3DDEVTYPE DeviceType, D3DCAPS9* pCaps) override;
  HRESULT CreateDevice(UINT Adapter, D3DDEVTYPE DeviceType, HWND hFocusWindow, DWORD BehaviorFlags,
                       D3DPRESENT_PARAMETERS* pPresentationParameters,
                       IDirect3DDevice9** ppReturnedDeviceInterface) override;

 private:
  // Counts the call and gives its scripted failure; otherwise finds the
  // adapter, which must have a device of `type` unless that is null.
  HRESULT Enter(Call call, UINT ordinal, const Adapter*& adapter, const D3DDEVTYPE* type = nullptr);

  struct Failure {
    HRESULT hr = S_OK;
    int count = -1;
    bool sticky = false;
  };
  Failure m_failures[CALL_COUNT];
  int m_calls[CALL_COUNT] = {};
  ULONG m_references = 1;  // the creator's
};
