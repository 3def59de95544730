// CD3DSettingsDlg: running the dialog, its procedure and the list operations
// on the platform's combo-box messages. The cascade of change handlers is in
// D3DSettingsDlgCascade.cpp.
#include "device/D3DSettingsDlg.h"

namespace {

// Entries this long or longer are not compared by text.
constexpr LRESULT s_maxComparedText = 255;

}  // namespace

CD3DSettingsDlg::CD3DSettingsDlg() : m_initialize(nullptr), m_hDlg(nullptr), m_settings() {}

CD3DSettingsDlg::~CD3DSettingsDlg() = default;

int CD3DSettingsDlg::ShowDialog(CD3DInitialize* initialize, const CD3DSettings* settings,
                                HWND hWndParent) {
  m_initialize = initialize;
  if (settings) {
    m_settings = *settings;
  } else {
    m_settings = CD3DSettings{};
    m_settings.m_windowed = true;
    if (initialize && initialize->m_d3d) {
      initialize->m_d3d->GetAdapterDisplayMode(0, &m_settings.GetCurrentSettings().m_displayMode);
    }
  }
  return static_cast<int>(DialogBoxParamA(GetModuleHandleA(nullptr),
                                          MAKEINTRESOURCEA(IDD_DIRECT3D_SETTINGS), hWndParent,
                                          StaticDialogProc, reinterpret_cast<LPARAM>(this)));
}

INT_PTR CALLBACK CD3DSettingsDlg::StaticDialogProc(HWND hDlg, UINT message, WPARAM wParam,
                                                   LPARAM lParam) {
  if (message == WM_INITDIALOG) SetWindowLongA(hDlg, GWL_USERDATA, lParam);
  auto* dialog = reinterpret_cast<CD3DSettingsDlg*>(GetWindowLongA(hDlg, GWL_USERDATA));
  if (!dialog) return 0;
  return dialog->DialogProc(hDlg, message, wParam, lParam);
}

INT_PTR CD3DSettingsDlg::DialogProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
  if (message == WM_INITDIALOG) {
    OnInitDialog(hDlg);
    return 1;
  }
  if (message != WM_COMMAND) return 0;

  const int control = LOWORD(wParam);
  const bool changed = HIWORD(wParam) == CBN_SELCHANGE;
  switch (control) {
    case IDOK:
      EndDialog(hDlg, IDOK);
      break;
    case IDCANCEL:
      EndDialog(hDlg, IDCANCEL);
      break;
    case IDC_WINDOW:
    case IDC_FULLSCREEN:
      OnWindowedChanged();
      break;
    default:
      if (!changed) break;
      switch (control) {
        case IDC_ADAPTER_COMBO:
          OnAdapterChanged();
          break;
        case IDC_DEVICE_COMBO:
          OnDeviceChanged();
          break;
        case IDC_ADAPTERFORMAT_COMBO:
          OnAdapterFormatChanged();
          break;
        case IDC_RESOLUTION_COMBO:
          OnResolutionChanged();
          break;
        case IDC_REFRESHRATE_COMBO:
          OnRefreshRateChanged();
          break;
        case IDC_BACKBUFFERFORMAT_COMBO:
          OnBackBufferChanged();
          break;
        case IDC_MULTISAMPLE_QUALITY_COMBO:
          OnMultiSampleQualityChanged();
          break;
        case IDC_DEPTHSTENCILFORMAT_COMBO:
          OnDepthStencilChanged();
          break;
        case IDC_MULTISAMPLE_TYPE_COMBO:
          OnMultiSampleTypeChanged();
          break;
        case IDC_VERTEXPROCESSING_COMBO:
          OnVertexProcessingChanged();
          break;
        case IDC_PRESENTINTERVAL_COMBO:
          OnPresentIntervalChanged();
          break;
        default:
          break;
      }
      break;
  }
  return 1;
}

// ---- list operations --------------------------------------------------------

void CD3DSettingsDlg::ComboAddItem(int id, ULONG_PTR data, LPCSTR text) {
  const HWND combo = GetDlgItem(m_hDlg, id);
  const LRESULT index = SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
  SendMessageA(combo, CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(data));
}

ULONG_PTR CD3DSettingsDlg::ComboGetSelectedData(int id) {
  const HWND combo = GetDlgItem(m_hDlg, id);
  const LRESULT index = SendMessageA(combo, CB_GETCURSEL, 0, 0);
  if (index < 0) return 0;
  return static_cast<ULONG_PTR>(SendMessageA(combo, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

int CD3DSettingsDlg::ComboGetCount(int id) {
  return static_cast<int>(SendMessageA(GetDlgItem(m_hDlg, id), CB_GETCOUNT, 0, 0));
}

void CD3DSettingsDlg::ComboSelectIndex(int id, int index) {
  const HWND combo = GetDlgItem(m_hDlg, id);
  SendMessageA(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
  PostMessageA(m_hDlg, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
}

void CD3DSettingsDlg::ComboSelectData(int id, ULONG_PTR data) {
  const HWND combo = GetDlgItem(m_hDlg, id);
  const int count = ComboGetCount(id);
  for (int index = 0; index < count; ++index) {
    if (static_cast<ULONG_PTR>(
            SendMessageA(combo, CB_GETITEMDATA, static_cast<WPARAM>(index), 0)) == data) {
      ComboSelectIndex(id, index);
      return;
    }
  }
}

void CD3DSettingsDlg::ComboClear(int id) {
  SendMessageA(GetDlgItem(m_hDlg, id), CB_RESETCONTENT, 0, 0);
}

bool CD3DSettingsDlg::ComboContainsText(int id, LPCSTR text) {
  const HWND combo = GetDlgItem(m_hDlg, id);
  char entry[s_maxComparedText];
  const int count = ComboGetCount(id);
  for (int index = 0; index < count; ++index) {
    const LRESULT length = SendMessageA(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0);
    if (length < 0 || length >= s_maxComparedText) continue;
    SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(entry));
    if (lstrcmpA(entry, text) == 0) return true;
  }
  return false;
}
