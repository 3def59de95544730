// CD3DInitialize: what the machine's Direct3D can do, as a tree of adapters,
// device types and accepted options, plus the first choice of settings from
// that tree and the creation and reset of the device and its window.
//
// The walk asks the IDirect3D9 object only through its enumeration calls, so
// any object that answers them (the real back end, a scripted fake in tests)
// can be enumerated. Seven virtual hooks let a subclass refuse candidates at
// each level; the base class accepts everything. Inside the walk E_ABORT means
// "nothing usable here": the candidate is dropped and the walk goes on; any
// other failure ends the walk with its code.
//
// Objects are short-lived locals: make one, Enumerate once, use the tree,
// take a reference of the device with GetDevice, let it go. The destructor
// releases the Direct3D object, the device and the whole tree.
#pragma once

#include <cstdint>
#include <vector>

#include "device/D3DAdapterRecord.h"
#include "device/D3DDeviceRecord.h"
#include "device/D3DOptionRecord.h"
#include "device/D3DSettings.h"
#include "device/VertexProcessingType.h"
#include "platform/d3d9/d3d9.h"
#include "platform/win32/windows.h"

class CD3DInitialize {
 public:
  CD3DInitialize();
  CD3DInitialize(const CD3DInitialize&) = delete;
  CD3DInitialize& operator=(const CD3DInitialize&) = delete;
  virtual ~CD3DInitialize();

  // ---- hooks: each may refuse a candidate; the base accepts all ------------
  virtual bool ValidateDisplayMode(const D3DDISPLAYMODE& mode);
  virtual bool ValidateDevice(const D3DDEVTYPE& type, const D3DCAPS9& caps);
  virtual bool ValidateDeviceOption(const D3DFORMAT& backBufferFormat, bool windowed);
  virtual bool ValidateDepthStencil(const D3DFORMAT& depthStencilFormat);
  virtual bool ValidateMultiSampleType(const D3DMULTISAMPLE_TYPE& type);
  virtual bool ValidateVertexProcessing(const VERTEXPROCESSING_TYPE& type);
  virtual bool ValidatePresentInterval(const std::uint32_t& presentInterval);

  // ---- enumeration ---------------------------------------------------------
  // Takes a reference of d3d and builds the tree. Null gives E_FAIL and
  // changes nothing. S_OK also when no adapter survived.
  HRESULT Enumerate(IDirect3D9* d3d);
  std::uint32_t GetAdapterCount() const { return static_cast<std::uint32_t>(m_adapters.size()); }
  // The adapter record at index, null past the last one.
  CD3DAdapterRecord* GetAdapter(std::uint32_t index) const;

  // ---- first choice of settings --------------------------------------------
  // Picks a windowed set on the desktop's format from the tree, preferring a
  // HAL device whose back buffer format equals the adapter format. On success
  // fills settings.m_windowedSettings, sets m_windowed and gives true; on
  // failure leaves settings untouched.
  bool FindBestWindowedMode(CD3DSettings& settings, bool requireHAL, bool requireREF);
  // Picks a full-screen set and the display mode nearest to match (a zero
  // field of match, or a null match, keeps the adapter's current value). On
  // success fills settings.m_fullscreenSettings, clears m_windowed and gives
  // true; on failure leaves settings untouched.
  bool FindBestFullScreenMode(CD3DSettings& settings, const D3DDISPLAYMODE* match, bool requireHAL,
                              bool requireREF);

  // ---- device and window ---------------------------------------------------
  // Present parameters for the set in force: sizes and refresh rate only in
  // full screen, so that a windowed device takes the client size.
  void BuildPresentParameters(D3DPRESENT_PARAMETERS& params, const CD3DSettings& settings,
                              std::uint32_t presentFlags);
  // Makes a window (hWnd null) or restyles hWnd for the settings, then
  // creates the device into m_device. The new window is not shown and has no
  // menu. A failed device creation leaves m_device null and the window alive.
  HRESULT CreateDisplay(const CD3DSettings& settings, std::uint32_t createFlags, HWND hWnd, WNDPROC wndProc,
                        LPCSTR title, std::uint32_t width, std::uint32_t height, LPVOID lParam);
  // Restyles hWnd (when given) for the settings and resets device with them.
  // The window stays restyled when Reset fails.
  HRESULT ResetDisplay(IDirect3DDevice9* device, const CD3DSettings& settings, HWND hWnd = nullptr);

  // The device with one reference added for the caller; null without one.
  IDirect3DDevice9* GetDevice();
  HWND GetWindow() const { return m_hWnd; }

  // ---- data, read by the settings dialog -----------------------------------
  IDirect3D9* m_d3d;          // one reference held once enumerated
  IDirect3DDevice9* m_device;  // one reference held once created
  HWND m_hWnd;
  std::vector<CD3DAdapterRecord*> m_adapters;  // owned

 private:
  HRESULT EnumerateAdapters();
  HRESULT EnumerateDisplayModes(CD3DAdapterRecord* adapter);
  HRESULT EnumerateDevices(CD3DAdapterRecord* adapter);
  HRESULT EnumerateDeviceOptions(CD3DDeviceRecord* device, CD3DAdapterRecord* adapter);
  HRESULT EnumerateDepthStencilFormats(CD3DOptionRecord* option);
  HRESULT EnumerateMultiSampleTypes(CD3DOptionRecord* option);
  HRESULT EnumerateVertexProcessingTypes(CD3DOptionRecord* option);
  HRESULT EnumeratePresentIntervals(CD3DOptionRecord* option);
};
