// CD3DInitialize: construction, destruction and the enumeration walk.
//
// The walk goes adapter -> display modes -> device types -> options (adapter
// format x back buffer format x windowed) -> the four per-option lists. A
// level that keeps nothing answers E_ABORT, which its caller takes as "drop
// this candidate and go on"; any other failure travels up and ends the walk.
// Records already in the tree stay there when the walk ends early; the
// destructor frees them.
#include "device/D3DInitialize.h"

#include <new>

namespace {

// Candidate tables, tried in this order.
constexpr D3DFORMAT s_displayFormats[] = {D3DFMT_X8R8G8B8, D3DFMT_X1R5G5B5, D3DFMT_R5G6B5};

constexpr D3DDEVTYPE s_deviceTypes[] = {D3DDEVTYPE_HAL, D3DDEVTYPE_SW, D3DDEVTYPE_REF};

constexpr D3DFORMAT s_backBufferFormats[] = {
    D3DFMT_R8G8B8,   D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8, D3DFMT_R5G6B5,   D3DFMT_A1R5G5B5,   D3DFMT_X1R5G5B5,
    D3DFMT_R3G3B2,   D3DFMT_A8R3G3B2, D3DFMT_X4R4G4B4, D3DFMT_A4R4G4B4, D3DFMT_A2B10G10R10,
};

constexpr D3DFORMAT s_depthFormats[] = {D3DFMT_D32, D3DFMT_D24X4S4, D3DFMT_D24X8,
                                        D3DFMT_D24S8, D3DFMT_D16,     D3DFMT_D15S1};

// NONE, NONMASKABLE, then 2 to 16 samples: the values 0 to 16 in order.
constexpr std::uint32_t s_multiSampleTypeCount = 17;

constexpr std::uint32_t s_presentIntervals[] = {
    D3DPRESENT_INTERVAL_IMMEDIATE, D3DPRESENT_INTERVAL_DEFAULT, D3DPRESENT_INTERVAL_ONE,
    D3DPRESENT_INTERVAL_TWO,       D3DPRESENT_INTERVAL_THREE,   D3DPRESENT_INTERVAL_FOUR,
};

// Appends to a list; false when the list cannot grow.
template <typename T, typename V>
bool Append(std::vector<T>& list, const V& value) {
  try {
    list.push_back(value);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace

CD3DInitialize::CD3DInitialize() : m_d3d(nullptr), m_device(nullptr), m_hWnd(nullptr) {}

CD3DInitialize::~CD3DInitialize() {
  if (m_d3d) m_d3d->Release();
  m_d3d = nullptr;
  if (m_device) m_device->Release();
  m_device = nullptr;
  for (CD3DAdapterRecord* adapter : m_adapters) delete adapter;
  m_adapters.clear();
}

IDirect3DDevice9* CD3DInitialize::GetDevice() {
  if (!m_device) return nullptr;
  m_device->AddRef();
  return m_device;
}

// ---- hooks: the base class accepts every candidate ---------------------------

bool CD3DInitialize::ValidateDisplayMode(const D3DDISPLAYMODE&) { return true; }
bool CD3DInitialize::ValidateDevice(const D3DDEVTYPE&, const D3DCAPS9&) { return true; }
bool CD3DInitialize::ValidateDeviceOption(const D3DFORMAT&, bool) { return true; }
bool CD3DInitialize::ValidateDepthStencil(const D3DFORMAT&) { return true; }
bool CD3DInitialize::ValidateMultiSampleType(const D3DMULTISAMPLE_TYPE&) { return true; }
bool CD3DInitialize::ValidateVertexProcessing(const VERTEXPROCESSING_TYPE&) { return true; }
bool CD3DInitialize::ValidatePresentInterval(const std::uint32_t&) { return true; }

// ---- the walk ----------------------------------------------------------------

HRESULT CD3DInitialize::Enumerate(IDirect3D9* d3d) {
  if (!d3d) return E_FAIL;
  // Each object enumerates once; should it be called again, the old
  // reference must still not leak.
  d3d->AddRef();
  if (m_d3d) m_d3d->Release();
  m_d3d = d3d;
  return EnumerateAdapters();
}

CD3DAdapterRecord* CD3DInitialize::GetAdapter(std::uint32_t index) const {
  return index < m_adapters.size() ? m_adapters[index] : nullptr;
}

HRESULT CD3DInitialize::EnumerateAdapters() {
  const std::uint32_t count = m_d3d->GetAdapterCount();
  for (std::uint32_t ordinal = 0; ordinal < count; ++ordinal) {
    CD3DAdapterRecord* adapter = new (std::nothrow) CD3DAdapterRecord;
    if (!adapter) return E_OUTOFMEMORY;
    adapter->m_ordinal = ordinal;
    m_d3d->GetAdapterIdentifier(ordinal, 0, &adapter->m_identifier);

    HRESULT hr = EnumerateDisplayModes(adapter);
    if (SUCCEEDED(hr)) hr = EnumerateDevices(adapter);
    if (FAILED(hr)) {
      delete adapter;
      if (hr == E_ABORT) continue;
      return hr;
    }
    if (!Append(m_adapters, adapter)) {
      delete adapter;
      return E_OUTOFMEMORY;
    }
  }
  return S_OK;
}

HRESULT CD3DInitialize::EnumerateDisplayModes(CD3DAdapterRecord* adapter) {
  for (D3DFORMAT format : s_displayFormats) {
    const std::uint32_t count = m_d3d->GetAdapterModeCount(adapter->m_ordinal, format);
    for (std::uint32_t index = 0; index < count; ++index) {
      D3DDISPLAYMODE mode{};
      const HRESULT hr = m_d3d->EnumAdapterModes(adapter->m_ordinal, format, index, &mode);
      if (FAILED(hr)) return hr;
      if (!ValidateDisplayMode(mode)) continue;
      if (!Append(adapter->m_modes, mode)) return E_OUTOFMEMORY;
    }
  }
  return adapter->m_modes.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumerateDevices(CD3DAdapterRecord* adapter) {
  for (D3DDEVTYPE type : s_deviceTypes) {
    D3DCAPS9 caps{};
    if (FAILED(m_d3d->GetDeviceCaps(adapter->m_ordinal, type, &caps))) continue;
    if (!ValidateDevice(type, caps)) continue;

    CD3DDeviceRecord* device = new (std::nothrow) CD3DDeviceRecord;
    if (!device) return E_OUTOFMEMORY;
    device->m_deviceType = type;
    device->m_caps = caps;

    const HRESULT hr = EnumerateDeviceOptions(device, adapter);
    if (FAILED(hr)) {
      delete device;
      if (hr == E_ABORT) continue;
      return hr;
    }
    if (!Append(adapter->m_devices, device)) {
      delete device;
      return E_OUTOFMEMORY;
    }
  }
  return adapter->m_devices.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumerateDeviceOptions(CD3DDeviceRecord* device, CD3DAdapterRecord* adapter) {
  // The adapter formats in order of first appearance among the modes; the
  // modes only ever carry one of the display formats, so at most three.
  std::vector<D3DFORMAT> adapterFormats;
  for (const D3DDISPLAYMODE& mode : adapter->m_modes) {
    bool seen = false;
    for (D3DFORMAT format : adapterFormats) seen = seen || format == mode.Format;
    if (!seen && !Append(adapterFormats, mode.Format)) return E_OUTOFMEMORY;
  }

  for (D3DFORMAT adapterFormat : adapterFormats) {
    for (D3DFORMAT backBufferFormat : s_backBufferFormats) {
      for (bool windowed : {false, true}) {
        if (FAILED(m_d3d->CheckDeviceType(adapter->m_ordinal, device->m_deviceType, adapterFormat, backBufferFormat,
                                          windowed ? TRUE : FALSE)))
          continue;

        CD3DOptionRecord* option = new (std::nothrow) CD3DOptionRecord;
        if (!option) return E_OUTOFMEMORY;
        option->m_adapterOrdinal = adapter->m_ordinal;
        option->m_deviceType = device->m_deviceType;
        option->m_caps = device->m_caps;
        option->m_adapterFormat = adapterFormat;
        option->m_backBufferFormat = backBufferFormat;
        option->m_windowed = windowed;

        if (!ValidateDeviceOption(backBufferFormat, windowed)) {
          delete option;
          continue;
        }

        HRESULT hr = EnumerateDepthStencilFormats(option);
        if (SUCCEEDED(hr)) hr = EnumerateMultiSampleTypes(option);
        if (SUCCEEDED(hr)) hr = EnumerateVertexProcessingTypes(option);
        if (SUCCEEDED(hr)) hr = EnumeratePresentIntervals(option);
        if (FAILED(hr)) {
          delete option;
          if (hr == E_ABORT) continue;
          return hr;
        }
        if (!Append(device->m_options, option)) {
          delete option;
          return E_OUTOFMEMORY;
        }
      }
    }
  }
  return device->m_options.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumerateDepthStencilFormats(CD3DOptionRecord* option) {
  for (D3DFORMAT depthFormat : s_depthFormats) {
    if (FAILED(m_d3d->CheckDeviceFormat(option->m_adapterOrdinal, option->m_deviceType, option->m_adapterFormat,
                                        D3DUSAGE_DEPTHSTENCIL, D3DRTYPE_SURFACE, depthFormat)))
      continue;
    if (FAILED(m_d3d->CheckDepthStencilMatch(option->m_adapterOrdinal, option->m_deviceType, option->m_adapterFormat,
                                             option->m_backBufferFormat, depthFormat)))
      continue;
    if (!ValidateDepthStencil(depthFormat)) continue;
    if (!Append(option->m_depthFormats, depthFormat)) return E_OUTOFMEMORY;
  }
  return option->m_depthFormats.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumerateMultiSampleTypes(CD3DOptionRecord* option) {
  for (std::uint32_t value = 0; value < s_multiSampleTypeCount; ++value) {
    const D3DMULTISAMPLE_TYPE type = static_cast<D3DMULTISAMPLE_TYPE>(value);
    DWORD qualityLevels = 0;
    if (FAILED(m_d3d->CheckDeviceMultiSampleType(option->m_adapterOrdinal, option->m_deviceType,
                                                 option->m_backBufferFormat, option->m_windowed ? TRUE : FALSE,
                                                 type, &qualityLevels)))
      continue;
    if (!ValidateMultiSampleType(type)) continue;
    // Both lists grow together so that an index means the same type in each.
    if (!Append(option->m_multiSampleTypes, type)) return E_OUTOFMEMORY;
    if (!Append(option->m_multiSampleQualities, static_cast<std::uint32_t>(qualityLevels))) {
      option->m_multiSampleTypes.pop_back();
      return E_OUTOFMEMORY;
    }
  }
  return option->m_multiSampleTypes.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumerateVertexProcessingTypes(CD3DOptionRecord* option) {
  const DWORD devCaps = option->m_caps.DevCaps;
  auto tryType = [&](VERTEXPROCESSING_TYPE type) {
    if (!ValidateVertexProcessing(type)) return true;
    return Append(option->m_vertexProcessingTypes, type);
  };
  if (devCaps & D3DDEVCAPS_HWTRANSFORMANDLIGHT) {
    if ((devCaps & D3DDEVCAPS_PUREDEVICE) && !tryType(PURE_HARDWARE_VP)) return E_OUTOFMEMORY;
    if (!tryType(HARDWARE_VP)) return E_OUTOFMEMORY;
    if (!tryType(MIXED_VP)) return E_OUTOFMEMORY;
  }
  if (!tryType(SOFTWARE_VP)) return E_OUTOFMEMORY;
  return option->m_vertexProcessingTypes.empty() ? E_ABORT : S_OK;
}

HRESULT CD3DInitialize::EnumeratePresentIntervals(CD3DOptionRecord* option) {
  for (std::uint32_t interval : s_presentIntervals) {
    // A window cannot wait more than one retrace per frame.
    if (option->m_windowed && (interval == D3DPRESENT_INTERVAL_TWO || interval == D3DPRESENT_INTERVAL_THREE ||
                               interval == D3DPRESENT_INTERVAL_FOUR))
      continue;
    // DEFAULT is always possible: it asks nothing of the device.
    if (interval != D3DPRESENT_INTERVAL_DEFAULT) {
      if (!(option->m_caps.PresentationIntervals & interval)) continue;
      if (!ValidatePresentInterval(interval)) continue;
    }
    if (!Append(option->m_presentIntervals, interval)) return E_OUTOFMEMORY;
  }
  return option->m_presentIntervals.empty() ? E_ABORT : S_OK;
}
