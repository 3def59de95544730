// CD3DSettingsDlg: the modal dialog "Direct3D Settings" (resource 103), in
// which the user walks the enumeration tree: adapter, device type, window or
// full screen, display format, resolution and rate, back buffer and depth
// formats, multisampling, vertex processing and present interval.
//
// It is a cascade of lists: each list's change handler stores its value in
// the working copy of the settings and refills the lists below it; a refill
// selects an entry, which posts that list's own change event, so the events
// run in queue order behind the handler that raised them. The whole contact
// with the list widgets is the Combo* operations below, on the platform's
// combo-box messages; the caller takes the copy back only after OK.
#pragma once

#include <cstdint>

#include "device/D3DInitialize.h"
#include "device/D3DSettings.h"
#include "platform/win32/windows.h"

// The dialog resource and its controls.
constexpr UINT IDD_DIRECT3D_SETTINGS = 103;
constexpr int IDC_ADAPTER_COMBO = 1001;
constexpr int IDC_DEVICE_COMBO = 1002;
constexpr int IDC_ADAPTERFORMAT_COMBO = 1003;
constexpr int IDC_RESOLUTION_COMBO = 1004;
constexpr int IDC_REFRESHRATE_COMBO = 1005;
constexpr int IDC_WINDOW = 1006;
constexpr int IDC_FULLSCREEN = 1008;
constexpr int IDC_BACKBUFFERFORMAT_COMBO = 1009;
constexpr int IDC_MULTISAMPLE_QUALITY_COMBO = 1010;
constexpr int IDC_DEPTHSTENCILFORMAT_COMBO = 1011;
constexpr int IDC_MULTISAMPLE_TYPE_COMBO = 1012;
constexpr int IDC_VERTEXPROCESSING_COMBO = 1013;
constexpr int IDC_PRESENTINTERVAL_COMBO = 1014;

class CD3DSettingsDlg {
 public:
  CD3DSettingsDlg();
  virtual ~CD3DSettingsDlg();

  // Runs the dialog to its end: IDOK (1) or IDCANCEL (2). The object must
  // have been enumerated. Null settings start windowed on adapter 0 with its
  // present display mode, all else zero.
  int ShowDialog(CD3DInitialize* initialize, const CD3DSettings* settings, HWND hWndParent);
  // The working copy; meant to be taken after IDOK.
  CD3DSettings GetSettings() const { return m_settings; }

  // Finds the object in GWL_USERDATA, stored there at WM_INITDIALOG.
  static INT_PTR CALLBACK StaticDialogProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam);
  INT_PTR DialogProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam);

  // ---- list operations, by control id -------------------------------------
  void ComboAddItem(int id, ULONG_PTR data, LPCSTR text);
  // The data word of the selected entry; 0 when nothing is selected.
  ULONG_PTR ComboGetSelectedData(int id);
  int ComboGetCount(int id);
  // Selects and posts the list's CBN_SELCHANGE.
  void ComboSelectIndex(int id, int index);
  // Selects the first entry with that data word as above; nothing at all
  // when there is none.
  void ComboSelectData(int id, ULONG_PTR data);
  // Empties the list; no event.
  void ComboClear(int id);
  // Whether an entry has exactly this text; entries of 255 characters or
  // more are not compared.
  bool ComboContainsText(int id, LPCSTR text);

  CD3DInitialize* m_initialize;
  HWND m_hDlg;
  CD3DSettings m_settings;

 private:
  // ---- the cascade ---------------------------------------------------------
  void OnInitDialog(HWND hDlg);
  void OnAdapterChanged();
  void OnDeviceChanged();
  void OnWindowedChanged();
  void OnAdapterFormatChanged();
  void OnResolutionChanged();
  void OnRefreshRateChanged();
  void OnBackBufferChanged();
  void OnDepthStencilChanged();
  void OnMultiSampleTypeChanged();
  void OnMultiSampleQualityChanged();
  void OnVertexProcessingChanged();
  void OnPresentIntervalChanged();

  // After a refill: entry 0 when the value of the settings was not there.
  void SelectFirstIfNone(int id);
  CD3DAdapterRecord* SelectedAdapter();
  CD3DDeviceRecord* SelectedDevice();
};
