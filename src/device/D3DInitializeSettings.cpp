// CD3DInitialize: the first choice of settings, read from the enumeration
// tree without asking anybody, and the present parameters a settings record
// stands for. Plain logic over the tree and the adapters' current display
// modes; no window is touched here.
//
// Both searches prefer a HAL device whose back buffer format equals the
// adapter format ("matched"): such a device presents without conversion.
#include <cstdint>

#include "device/D3DInitialize.h"

namespace {

// First entry of a list, or zero for an empty one (only hand-built trees
// have empty lists: the walk drops such options).
template <typename T>
T FirstOf(const std::vector<T>& list) {
  return list.empty() ? T{} : list.front();
}

// Fills a display set from an option and a display mode.
void FillFromOption(CD3DDisplaySettings& set, const CD3DOptionRecord& option, const D3DDISPLAYMODE& mode) {
  set.m_adapterOrdinal = option.m_adapterOrdinal;
  set.m_displayMode = mode;
  set.m_deviceType = option.m_deviceType;
  set.m_backBufferFormat = option.m_backBufferFormat;
  set.m_depthStencilFormat = FirstOf(option.m_depthFormats);
  set.m_multiSampleType = FirstOf(option.m_multiSampleTypes);
  set.m_multiSampleQuality = 0;
  set.m_vertexProcessing = FirstOf(option.m_vertexProcessingTypes);
  set.m_presentInterval = FirstOf(option.m_presentIntervals);
}

bool SkipDevice(const CD3DDeviceRecord& device, bool requireHAL, bool requireREF) {
  return (requireHAL && device.m_deviceType != D3DDEVTYPE_HAL) ||
         (requireREF && device.m_deviceType != D3DDEVTYPE_REF);
}

}  // namespace

bool CD3DInitialize::FindBestWindowedMode(CD3DSettings& settings, bool requireHAL, bool requireREF) {
  // A window lives on the desktop of the first adapter, whatever adapter it
  // is created on, so the format to fit is that one.
  D3DDISPLAYMODE desktop{};
  if (m_d3d) m_d3d->GetAdapterDisplayMode(0, &desktop);

  const CD3DOptionRecord* best = nullptr;
  // The walk ends at the first HAL option that is matched.
  [&] {
    for (const CD3DAdapterRecord* adapter : m_adapters) {
      for (const CD3DDeviceRecord* device : adapter->m_devices) {
        if (SkipDevice(*device, requireHAL, requireREF)) continue;
        for (const CD3DOptionRecord* option : device->m_options) {
          if (!option->m_windowed || option->m_adapterFormat != desktop.Format) continue;
          const bool hal = option->m_deviceType == D3DDEVTYPE_HAL;
          const bool matched = option->m_backBufferFormat == option->m_adapterFormat;
          if (!best || (hal && matched) || (best->m_deviceType != D3DDEVTYPE_HAL && hal)) {
            best = option;
            if (hal && matched) return;
          }
        }
      }
    }
  }();
  if (!best) return false;

  settings.m_windowed = true;
  FillFromOption(settings.m_windowedSettings, *best, desktop);
  return true;
}

bool CD3DInitialize::FindBestFullScreenMode(CD3DSettings& settings, const D3DDISPLAYMODE* match, bool requireHAL,
                                            bool requireREF) {
  const CD3DAdapterRecord* bestAdapter = nullptr;
  const CD3DOptionRecord* best = nullptr;
  D3DDISPLAYMODE bestWanted{};

  // The walk ends at the first HAL option that is matched on the wanted format.
  [&] {
    for (const CD3DAdapterRecord* adapter : m_adapters) {
      // The wanted mode: the adapter's present mode with the given fields of
      // match laid over it.
      D3DDISPLAYMODE wanted{};
      if (m_d3d) m_d3d->GetAdapterDisplayMode(adapter->m_ordinal, &wanted);
      if (match) {
        if (match->Width != 0) wanted.Width = match->Width;
        if (match->Height != 0) wanted.Height = match->Height;
        if (match->Format != 0) wanted.Format = match->Format;
        if (match->RefreshRate != 0) wanted.RefreshRate = match->RefreshRate;
      }

      for (const CD3DDeviceRecord* device : adapter->m_devices) {
        if (SkipDevice(*device, requireHAL, requireREF)) continue;
        for (const CD3DOptionRecord* option : device->m_options) {
          if (option->m_windowed) continue;
          const bool hal = option->m_deviceType == D3DDEVTYPE_HAL;
          const bool matched = option->m_backBufferFormat == option->m_adapterFormat;
          const bool desktop = option->m_adapterFormat == wanted.Format;
          const bool take = !best ||                                                   // a
                            (best->m_deviceType != D3DDEVTYPE_HAL && hal) ||           // b
                            (hal && best->m_adapterFormat != wanted.Format && desktop) ||  // c
                            (hal && desktop && matched);                               // d
          if (take) {
            bestAdapter = adapter;
            best = option;
            bestWanted = wanted;
            if (hal && desktop && matched) return;
          }
        }
      }
    }
  }();
  if (!best) return false;

  // The mode nearest the wanted one among the adapter's modes of the chosen
  // format: an exact size and rate ends the search. Otherwise any mode of the
  // wanted width replaces the one found so far, in list order, so the last
  // one of that width wins even with a lower rate (the same-size rule is
  // covered by it); failing all, the first mode of the format.
  D3DDISPLAYMODE mode{};
  for (const D3DDISPLAYMODE& candidate : bestAdapter->m_modes) {
    if (candidate.Format != best->m_adapterFormat) continue;
    const bool sameWidth = candidate.Width == bestWanted.Width;
    const bool sameSize = sameWidth && candidate.Height == bestWanted.Height;
    if (sameSize && candidate.RefreshRate == bestWanted.RefreshRate) {
      mode = candidate;
      break;
    }
    if ((sameSize && candidate.RefreshRate > mode.RefreshRate) || sameWidth || mode.Width == 0) mode = candidate;
  }

  settings.m_windowed = false;
  FillFromOption(settings.m_fullscreenSettings, *best, mode);
  return true;
}

void CD3DInitialize::BuildPresentParameters(D3DPRESENT_PARAMETERS& params, const CD3DSettings& settings,
                                            std::uint32_t presentFlags) {
  const CD3DDisplaySettings& current = settings.GetCurrentSettings();
  params = D3DPRESENT_PARAMETERS{};
  params.BackBufferFormat = current.m_backBufferFormat;
  params.BackBufferCount = 1;
  params.MultiSampleType = current.m_multiSampleType;
  params.MultiSampleQuality = current.m_multiSampleQuality;
  params.SwapEffect = D3DSWAPEFFECT_DISCARD;
  params.Windowed = settings.m_windowed ? TRUE : FALSE;
  params.EnableAutoDepthStencil = TRUE;
  params.AutoDepthStencilFormat = current.m_depthStencilFormat;
  params.Flags = presentFlags | D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL;
  params.PresentationInterval = current.m_presentInterval;
  // In a window the sizes stay 0: the device takes the client area's size.
  if (!settings.m_windowed) {
    params.BackBufferWidth = current.m_displayMode.Width;
    params.BackBufferHeight = current.m_displayMode.Height;
    params.FullScreen_RefreshRateInHz = current.m_displayMode.RefreshRate;
  }
}
