// CGameApp::OpenDisplay: the Direct3D object, the enumeration, the first
// choice of settings, the window and the device. A failure here is fatal to
// the start: a message box says which step failed and Startup shuts down.
#include "app/GameApp.h"
#include "device/MyD3DInit.h"

namespace {

constexpr LPCSTR s_title = "Karvo Terrain :: Marnovets P.D.";
constexpr LPCSTR s_fatalCaption = "Fatal Error!";

// Resources of the module.
constexpr WORD s_menuResource = 101;
constexpr WORD s_iconResource = 102;

// Menu commands whose radio marks start set.
constexpr UINT s_cmdFirstPerson = 40010;
constexpr UINT s_cmdCameraLast = 40012;
constexpr UINT s_cmdSolid = 40013;
constexpr UINT s_cmdFillLast = 40014;

// The full-screen set is prepared for this size, the nearest mode the
// adapter has; the start itself is in a window of the size below.
constexpr UINT s_fullscreenWidth = 1280;
constexpr UINT s_fullscreenHeight = 800;
constexpr std::uint32_t s_windowWidth = 1200;
constexpr std::uint32_t s_windowHeight = 700;

}  // namespace

bool CGameApp::OpenDisplay() {
  CMyD3DInit initialize;

  m_d3d = Direct3DCreate9(D3D_SDK_VERSION);
  if (!m_d3d) {
    MessageBoxA(m_hWnd, "No compatible Direct3D object could be created.", s_fatalCaption, MB_ICONERROR);
    return false;
  }

  if (FAILED(initialize.Enumerate(m_d3d))) {
    MessageBoxA(m_hWnd, "Device enumeration failed. The application will now exit.", s_fatalCaption, MB_ICONERROR);
    return false;
  }

  // Both sets are prepared; the windowed search runs last, so when it finds
  // anything the start is in a window. A search that finds nothing leaves
  // its set as it was.
  D3DDISPLAYMODE matchMode{};
  matchMode.Width = s_fullscreenWidth;
  matchMode.Height = s_fullscreenHeight;
  matchMode.RefreshRate = 0;
  matchMode.Format = D3DFMT_UNKNOWN;
  initialize.FindBestFullScreenMode(m_settings, &matchMode, false, false);
  initialize.FindBestWindowedMode(m_settings, false, false);

  // The window procedure finds this object in WM_CREATE.
  if (FAILED(initialize.CreateDisplay(m_settings, 0, nullptr, StaticWindowProc, s_title, s_windowWidth,
                                      s_windowHeight, this))) {
    MessageBoxA(m_hWnd, "Device creation failed. The application will now exit.", s_fatalCaption, MB_ICONERROR);
    return false;
  }

  // Our own reference: the device outlives the local enumeration object.
  m_device = initialize.GetDevice();
  m_hWnd = initialize.GetWindow();

  const HINSTANCE module = GetModuleHandleA(nullptr);
  m_hIcon = LoadIconA(module, MAKEINTRESOURCEA(s_iconResource));
  m_hMenu = LoadMenuA(module, MAKEINTRESOURCEA(s_menuResource));
  SetClassLongA(m_hWnd, GCL_HICON, reinterpret_cast<LONG_PTR>(m_hIcon));
  // Full screen has no menu bar; it comes back with the window.
  if (m_settings.m_windowed) SetMenu(m_hWnd, m_hMenu);

  CheckMenuRadioItem(m_hMenu, s_cmdFirstPerson, s_cmdCameraLast, s_cmdFirstPerson, MF_BYCOMMAND);
  CheckMenuRadioItem(m_hMenu, s_cmdSolid, s_cmdFillLast, s_cmdSolid, MF_BYCOMMAND);

  RECT client{};
  GetClientRect(m_hWnd, &client);
  m_viewX = static_cast<std::uint32_t>(client.left);
  m_viewY = static_cast<std::uint32_t>(client.top);
  m_viewWidth = static_cast<std::uint32_t>(client.right - client.left);
  m_viewHeight = static_cast<std::uint32_t>(client.bottom - client.top);

  ShowWindow(m_hWnd, SW_SHOW);
  return true;
}
