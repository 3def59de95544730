// CGameApp::ChangeDevice: the settings dialog, then on OK a new device in the
// same window and the world built again on it. The game state (player,
// camera, options, timer, sounds, counters) is not part of the world and is
// left as it is.
#include "app/GameApp.h"
#include "device/D3DSettingsDlg.h"
#include "device/MyD3DInit.h"

namespace {

constexpr LPCSTR s_fatalCaption = "Fatal Error!";

}  // namespace

void CGameApp::ChangeDevice() {
  // A fresh object: the dialog walks a tree listed anew, never one appended
  // to an older walk.
  CMyD3DInit initialize;
  CD3DSettingsDlg dialog;

  if (FAILED(initialize.Enumerate(m_d3d))) {
    MessageBoxA(m_hWnd, "Device enumeration failed. The application will now exit.", s_fatalCaption,
                MB_ICONERROR);
    PostQuitMessage(0);
    return;
  }

  // Modal: no frame runs and the timer stands still until it ends.
  if (dialog.ShowDialog(&initialize, &m_settings, nullptr) != IDOK) return;
  m_settings = dialog.GetSettings();

  // The terrain holds its own reference, so the old device lives on until
  // BuildWorld lets the old world go.
  if (m_device) m_device->Release();
  m_device = nullptr;

  if (FAILED(initialize.CreateDisplay(m_settings, 0, m_hWnd, nullptr, nullptr, CW_USEDEFAULT,
                                      CW_USEDEFAULT, nullptr))) {
    MessageBoxA(m_hWnd, "Device creation failed. The application will now exit.", s_fatalCaption,
                MB_ICONERROR);
    PostQuitMessage(0);
    return;
  }
  m_device = initialize.GetDevice();

  // Full screen took the menu off; a window gets it back.
  if (m_settings.m_windowed) SetMenu(m_hWnd, m_hMenu);
  BuildWorld();
  ApplyRenderStates();
}
