// CD3DSettingsDlg: the cascade of change handlers. Each handler reads its
// inputs from the lists and from the side of the settings in force at the
// moment it runs, stores its value, and refills the lists below it. A
// refill selects an entry, which posts that list's change event: the
// handlers below run later, in the order their events were raised.
#include <cstdio>

#include "device/D3DSettingsDlg.h"
#include "device/ValueNames.h"

namespace {

// Numbers are formatted into a buffer of this many characters, the last one
// always the terminator.
constexpr int s_textSize = 50;

ULONG_PTR ResolutionData(UINT width, UINT height) {
  return static_cast<ULONG_PTR>((width & 0xFFFFu) | ((height & 0xFFFFu) << 16));
}

struct NumberText {
  char text[s_textSize] = {};
};

NumberText Resolution(UINT width, UINT height) {
  NumberText out;
  std::snprintf(out.text, s_textSize, "%d x %d", static_cast<int>(width), static_cast<int>(height));
  return out;
}

NumberText Number(const char* format, std::uint32_t value) {
  NumberText out;
  std::snprintf(out.text, s_textSize, format, static_cast<int>(value));
  return out;
}

}  // namespace

void CD3DSettingsDlg::SelectFirstIfNone(int id) {
  if (SendMessageA(GetDlgItem(m_hDlg, id), CB_GETCURSEL, 0, 0) < 0 && ComboGetCount(id) > 0)
    ComboSelectIndex(id, 0);
}

CD3DAdapterRecord* CD3DSettingsDlg::SelectedAdapter() {
  return reinterpret_cast<CD3DAdapterRecord*>(ComboGetSelectedData(IDC_ADAPTER_COMBO));
}

CD3DDeviceRecord* CD3DSettingsDlg::SelectedDevice() {
  return reinterpret_cast<CD3DDeviceRecord*>(ComboGetSelectedData(IDC_DEVICE_COMBO));
}

void CD3DSettingsDlg::OnInitDialog(HWND hDlg) {
  m_hDlg = hDlg;
  ComboClear(IDC_ADAPTER_COMBO);
  if (!m_initialize) return;
  ULONG_PTR current = 0;
  for (std::uint32_t index = 0; index < m_initialize->GetAdapterCount(); ++index) {
    CD3DAdapterRecord* adapter = m_initialize->GetAdapter(index);
    const auto data = reinterpret_cast<ULONG_PTR>(adapter);
    ComboAddItem(IDC_ADAPTER_COMBO, data, adapter->m_identifier.Description);
    if (adapter->m_ordinal == m_settings.GetCurrentSettings().m_adapterOrdinal && !current)
      current = data;
  }
  ComboSelectData(IDC_ADAPTER_COMBO, current);
  SelectFirstIfNone(IDC_ADAPTER_COMBO);
}

void CD3DSettingsDlg::OnAdapterChanged() {
  CD3DAdapterRecord* adapter = SelectedAdapter();
  if (!adapter) return;
  m_settings.GetCurrentSettings().m_adapterOrdinal = adapter->m_ordinal;
  // In a window the display mode is the desktop's of the adapter.
  if (m_settings.m_windowed && m_initialize->m_d3d) {
    m_initialize->m_d3d->GetAdapterDisplayMode(adapter->m_ordinal,
                                               &m_settings.GetCurrentSettings().m_displayMode);
  }
  ComboClear(IDC_DEVICE_COMBO);
  ULONG_PTR current = 0;
  for (CD3DDeviceRecord* device : adapter->m_devices) {
    const auto data = reinterpret_cast<ULONG_PTR>(device);
    ComboAddItem(IDC_DEVICE_COMBO, data, DeviceTypeName(device->m_deviceType));
    if (device->m_deviceType == m_settings.GetCurrentSettings().m_deviceType && !current)
      current = data;
  }
  ComboSelectData(IDC_DEVICE_COMBO, current);
  SelectFirstIfNone(IDC_DEVICE_COMBO);
}

void CD3DSettingsDlg::OnDeviceChanged() {
  CD3DDeviceRecord* device = SelectedDevice();
  if (!device) return;
  m_settings.GetCurrentSettings().m_deviceType = device->m_deviceType;
  bool windowedAvailable = false;
  bool fullscreenAvailable = false;
  for (const CD3DOptionRecord* option : device->m_options) {
    (option->m_windowed ? windowedAvailable : fullscreenAvailable) = true;
  }
  EnableWindow(GetDlgItem(m_hDlg, IDC_WINDOW), windowedAvailable);
  EnableWindow(GetDlgItem(m_hDlg, IDC_FULLSCREEN), fullscreenAvailable);
  const int checked = m_settings.m_windowed && windowedAvailable ? IDC_WINDOW : IDC_FULLSCREEN;
  CheckRadioButton(m_hDlg, IDC_WINDOW, IDC_FULLSCREEN, checked);
  OnWindowedChanged();
}

void CD3DSettingsDlg::OnWindowedChanged() {
  CD3DAdapterRecord* adapter = SelectedAdapter();
  CD3DDeviceRecord* device = SelectedDevice();
  if (!adapter || !device) return;

  m_settings.m_windowed = IsDlgButtonChecked(m_hDlg, IDC_WINDOW) == BST_CHECKED;
  CD3DDisplaySettings& s = m_settings.GetCurrentSettings();
  s.m_adapterOrdinal = adapter->m_ordinal;
  s.m_deviceType = device->m_deviceType;

  ComboClear(IDC_ADAPTERFORMAT_COMBO);
  if (!m_settings.m_windowed) {
    // Every adapter format of the device, whichever side its options are for.
    for (const CD3DOptionRecord* option : device->m_options) {
      const char* text = FormatName(option->m_adapterFormat, true);
      if (!ComboContainsText(IDC_ADAPTERFORMAT_COMBO, text)) {
        ComboAddItem(IDC_ADAPTERFORMAT_COMBO, option->m_adapterFormat, text);
      }
    }
    ComboSelectData(IDC_ADAPTERFORMAT_COMBO, s.m_displayMode.Format);
    SelectFirstIfNone(IDC_ADAPTERFORMAT_COMBO);
    for (int id : {IDC_ADAPTERFORMAT_COMBO, IDC_RESOLUTION_COMBO, IDC_REFRESHRATE_COMBO}) {
      EnableWindow(GetDlgItem(m_hDlg, id), TRUE);
    }
    return;
  }

  // In a window the mode is the desktop's: shown, not chosen.
  const D3DDISPLAYMODE& mode = s.m_displayMode;
  ComboAddItem(IDC_ADAPTERFORMAT_COMBO, mode.Format, FormatName(mode.Format, true));
  ComboClear(IDC_RESOLUTION_COMBO);
  ComboAddItem(IDC_RESOLUTION_COMBO, ResolutionData(mode.Width, mode.Height),
               Resolution(mode.Width, mode.Height).text);
  ComboClear(IDC_REFRESHRATE_COMBO);
  ComboAddItem(IDC_REFRESHRATE_COMBO, mode.RefreshRate, Number("%d Hz", mode.RefreshRate).text);
  for (int id : {IDC_ADAPTERFORMAT_COMBO, IDC_RESOLUTION_COMBO, IDC_REFRESHRATE_COMBO}) {
    ComboSelectIndex(id, 0);
    EnableWindow(GetDlgItem(m_hDlg, id), FALSE);
  }
}

void CD3DSettingsDlg::OnAdapterFormatChanged() {
  if (!m_settings.m_windowed) {
    CD3DAdapterRecord* adapter = SelectedAdapter();
    if (!adapter) return;
    D3DDISPLAYMODE& mode = m_settings.GetCurrentSettings().m_displayMode;
    mode.Format = static_cast<D3DFORMAT>(ComboGetSelectedData(IDC_ADAPTERFORMAT_COMBO));
    // One entry per size, whatever the number of rates.
    ComboClear(IDC_RESOLUTION_COMBO);
    for (const D3DDISPLAYMODE& candidate : adapter->m_modes) {
      if (candidate.Format != mode.Format) continue;
      const NumberText text = Resolution(candidate.Width, candidate.Height);
      if (!ComboContainsText(IDC_RESOLUTION_COMBO, text.text)) {
        ComboAddItem(IDC_RESOLUTION_COMBO, ResolutionData(candidate.Width, candidate.Height),
                     text.text);
      }
    }
    ComboSelectData(IDC_RESOLUTION_COMBO, ResolutionData(mode.Width, mode.Height));
    SelectFirstIfNone(IDC_RESOLUTION_COMBO);
  }

  CD3DDeviceRecord* device = SelectedDevice();
  if (!device) return;
  const CD3DDisplaySettings& s = m_settings.GetCurrentSettings();
  ComboClear(IDC_BACKBUFFERFORMAT_COMBO);
  for (const CD3DOptionRecord* option : device->m_options) {
    if (option->m_windowed != m_settings.m_windowed ||
        option->m_adapterFormat != s.m_displayMode.Format)
      continue;
    const char* text = FormatName(option->m_backBufferFormat, true);
    if (!ComboContainsText(IDC_BACKBUFFERFORMAT_COMBO, text)) {
      ComboAddItem(IDC_BACKBUFFERFORMAT_COMBO, option->m_backBufferFormat, text);
    }
  }
  ComboSelectData(IDC_BACKBUFFERFORMAT_COMBO, s.m_backBufferFormat);
  SelectFirstIfNone(IDC_BACKBUFFERFORMAT_COMBO);
}

void CD3DSettingsDlg::OnResolutionChanged() {
  if (m_settings.m_windowed) return;
  CD3DAdapterRecord* adapter = SelectedAdapter();
  if (!adapter) return;
  D3DDISPLAYMODE& mode = m_settings.GetCurrentSettings().m_displayMode;
  const ULONG_PTR size = ComboGetSelectedData(IDC_RESOLUTION_COMBO);
  mode.Width = LOWORD(size);
  mode.Height = HIWORD(size);
  const auto format = static_cast<D3DFORMAT>(ComboGetSelectedData(IDC_ADAPTERFORMAT_COMBO));
  // The rates of the chosen size only.
  ComboClear(IDC_REFRESHRATE_COMBO);
  for (const D3DDISPLAYMODE& candidate : adapter->m_modes) {
    if (candidate.Format != format || candidate.Width != mode.Width ||
        candidate.Height != mode.Height)
      continue;
    const NumberText text = Number("%d Hz", candidate.RefreshRate);
    if (!ComboContainsText(IDC_REFRESHRATE_COMBO, text.text)) {
      ComboAddItem(IDC_REFRESHRATE_COMBO, candidate.RefreshRate, text.text);
    }
  }
  ComboSelectData(IDC_REFRESHRATE_COMBO, mode.RefreshRate);
  SelectFirstIfNone(IDC_REFRESHRATE_COMBO);
}

void CD3DSettingsDlg::OnRefreshRateChanged() {
  if (m_settings.m_windowed) return;
  m_settings.GetCurrentSettings().m_displayMode.RefreshRate =
      static_cast<UINT>(ComboGetSelectedData(IDC_REFRESHRATE_COMBO));
}

void CD3DSettingsDlg::OnBackBufferChanged() {
  CD3DDeviceRecord* device = SelectedDevice();
  if (!device) return;
  const auto adapterFormat = static_cast<D3DFORMAT>(ComboGetSelectedData(IDC_ADAPTERFORMAT_COMBO));
  const auto backBufferFormat =
      static_cast<D3DFORMAT>(ComboGetSelectedData(IDC_BACKBUFFERFORMAT_COMBO));
  const CD3DOptionRecord* found = nullptr;
  for (const CD3DOptionRecord* option : device->m_options) {
    if (option->m_windowed == m_settings.m_windowed && option->m_adapterFormat == adapterFormat &&
        option->m_backBufferFormat == backBufferFormat) {
      found = option;
      break;
    }
  }
  if (!found) return;
  CD3DDisplaySettings& s = m_settings.GetCurrentSettings();
  s.m_backBufferFormat = backBufferFormat;

  // Plain refills: every entry of the option goes in.
  ComboClear(IDC_DEPTHSTENCILFORMAT_COMBO);
  for (D3DFORMAT format : found->m_depthFormats) {
    ComboAddItem(IDC_DEPTHSTENCILFORMAT_COMBO, format, FormatName(format, true));
  }
  ComboSelectData(IDC_DEPTHSTENCILFORMAT_COMBO, s.m_depthStencilFormat);
  SelectFirstIfNone(IDC_DEPTHSTENCILFORMAT_COMBO);

  ComboClear(IDC_MULTISAMPLE_TYPE_COMBO);
  for (D3DMULTISAMPLE_TYPE type : found->m_multiSampleTypes) {
    ComboAddItem(IDC_MULTISAMPLE_TYPE_COMBO, type, MultiSampleTypeName(type));
  }
  ComboSelectData(IDC_MULTISAMPLE_TYPE_COMBO, s.m_multiSampleType);
  SelectFirstIfNone(IDC_MULTISAMPLE_TYPE_COMBO);

  ComboClear(IDC_VERTEXPROCESSING_COMBO);
  for (VERTEXPROCESSING_TYPE type : found->m_vertexProcessingTypes) {
    ComboAddItem(IDC_VERTEXPROCESSING_COMBO, type, VertexProcessingName(type));
  }
  ComboSelectData(IDC_VERTEXPROCESSING_COMBO, s.m_vertexProcessing);
  SelectFirstIfNone(IDC_VERTEXPROCESSING_COMBO);

  ComboClear(IDC_PRESENTINTERVAL_COMBO);
  for (std::uint32_t interval : found->m_presentIntervals) {
    ComboAddItem(IDC_PRESENTINTERVAL_COMBO, interval, PresentIntervalName(interval));
  }
  ComboSelectData(IDC_PRESENTINTERVAL_COMBO, s.m_presentInterval);
  SelectFirstIfNone(IDC_PRESENTINTERVAL_COMBO);
}

void CD3DSettingsDlg::OnMultiSampleTypeChanged() {
  CD3DDisplaySettings& s = m_settings.GetCurrentSettings();
  s.m_multiSampleType =
      static_cast<D3DMULTISAMPLE_TYPE>(ComboGetSelectedData(IDC_MULTISAMPLE_TYPE_COMBO));
  CD3DDeviceRecord* device = SelectedDevice();
  if (!device) return;
  const CD3DOptionRecord* found = nullptr;
  for (const CD3DOptionRecord* option : device->m_options) {
    if (option->m_windowed == m_settings.m_windowed &&
        option->m_adapterFormat == s.m_displayMode.Format &&
        option->m_backBufferFormat == s.m_backBufferFormat) {
      found = option;
      break;
    }
  }
  if (!found) return;
  // The quality levels counted for the type; none when it is not listed.
  std::uint32_t levels = 0;
  for (std::size_t i = 0;
       i < found->m_multiSampleTypes.size() && i < found->m_multiSampleQualities.size(); ++i) {
    if (found->m_multiSampleTypes[i] == s.m_multiSampleType) {
      levels = found->m_multiSampleQualities[i];
      break;
    }
  }
  ComboClear(IDC_MULTISAMPLE_QUALITY_COMBO);
  for (std::uint32_t quality = 0; quality < levels; ++quality) {
    ComboAddItem(IDC_MULTISAMPLE_QUALITY_COMBO, quality, Number("%d", quality).text);
  }
  ComboSelectData(IDC_MULTISAMPLE_QUALITY_COMBO, s.m_multiSampleQuality);
  SelectFirstIfNone(IDC_MULTISAMPLE_QUALITY_COMBO);
}

void CD3DSettingsDlg::OnDepthStencilChanged() {
  m_settings.GetCurrentSettings().m_depthStencilFormat =
      static_cast<D3DFORMAT>(ComboGetSelectedData(IDC_DEPTHSTENCILFORMAT_COMBO));
}

void CD3DSettingsDlg::OnMultiSampleQualityChanged() {
  m_settings.GetCurrentSettings().m_multiSampleQuality =
      static_cast<std::uint32_t>(ComboGetSelectedData(IDC_MULTISAMPLE_QUALITY_COMBO));
}

void CD3DSettingsDlg::OnVertexProcessingChanged() {
  m_settings.GetCurrentSettings().m_vertexProcessing =
      static_cast<VERTEXPROCESSING_TYPE>(ComboGetSelectedData(IDC_VERTEXPROCESSING_COMBO));
}

void CD3DSettingsDlg::OnPresentIntervalChanged() {
  m_settings.GetCurrentSettings().m_presentInterval =
      static_cast<std::uint32_t>(ComboGetSelectedData(IDC_PRESENTINTERVAL_COMBO));
}
