// CD3DInitialize: the window and the device. All window calls and device
// creation and reset of the display layer sit here; nothing here shows a
// message, the callers decide what a failure means.
#include <cstdint>

#include "device/D3DInitialize.h"

namespace {

constexpr DWORD s_windowedStyle = WS_OVERLAPPEDWINDOW;
constexpr DWORD s_fullscreenStyle = WS_VISIBLE | WS_POPUP;

// Full screen: no menu, a bare popup covering the display mode.
void RestyleForFullScreen(HWND hWnd, const D3DDISPLAYMODE& mode) {
  SetMenu(hWnd, nullptr);
  SetWindowLongA(hWnd, GWL_STYLE, static_cast<LONG_PTR>(s_fullscreenStyle));
  SetWindowPos(hWnd, nullptr, 0, 0, static_cast<int>(mode.Width), static_cast<int>(mode.Height), SWP_NOZORDER);
}

}  // namespace

HRESULT CD3DInitialize::CreateDisplay(const CD3DSettings& settings, std::uint32_t createFlags, HWND hWnd,
                                      WNDPROC wndProc, LPCSTR title, std::uint32_t width, std::uint32_t height,
                                      LPVOID lParam) {
  const CD3DDisplaySettings& current = settings.GetCurrentSettings();

  if (!hWnd) {
    WNDCLASSA windowClass{};
    windowClass.style = CS_BYTEALIGNCLIENT | CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = wndProc;
    windowClass.cbClsExtra = 0;
    windowClass.cbWndExtra = 0;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hIcon = nullptr;
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    windowClass.lpszMenuName = nullptr;
    windowClass.lpszClassName = title;
    // A class left from an earlier window of the same title is as good.
    RegisterClassA(&windowClass);

    int x = CW_USEDEFAULT, y = CW_USEDEFAULT;
    int w = static_cast<int>(width), h = static_cast<int>(height);
    DWORD style = s_windowedStyle;
    if (!settings.m_windowed) {
      x = 0;
      y = 0;
      w = static_cast<int>(current.m_displayMode.Width);
      h = static_cast<int>(current.m_displayMode.Height);
      style = s_fullscreenStyle;
    }
    m_hWnd = CreateWindowExA(0, title, title, style, x, y, w, h, nullptr, nullptr, windowClass.hInstance, lParam);
    if (!m_hWnd) return E_FAIL;
  } else {
    m_hWnd = hWnd;
    if (!settings.m_windowed) {
      RestyleForFullScreen(m_hWnd, current.m_displayMode);
    } else {
      // Back from full screen: keep where the window is now.
      RECT rect{};
      GetWindowRect(m_hWnd, &rect);
      SetWindowLongA(m_hWnd, GWL_STYLE, static_cast<LONG_PTR>(s_windowedStyle));
      SetWindowPos(m_hWnd, HWND_NOTOPMOST, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                   SWP_SHOWWINDOW | SWP_NOACTIVATE);
    }
  }

  D3DPRESENT_PARAMETERS params;
  BuildPresentParameters(params, settings, 0);

  switch (current.m_vertexProcessing) {
    case PURE_HARDWARE_VP:
      createFlags |= D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_PUREDEVICE;
      break;
    case HARDWARE_VP:
      createFlags |= D3DCREATE_HARDWARE_VERTEXPROCESSING;
      break;
    case MIXED_VP:
      createFlags |= D3DCREATE_MIXED_VERTEXPROCESSING;
      break;
    case SOFTWARE_VP:
      createFlags |= D3DCREATE_SOFTWARE_VERTEXPROCESSING;
      break;
  }

  // A device of an earlier call would leak if simply overwritten.
  if (m_device) m_device->Release();
  m_device = nullptr;
  if (!m_d3d) return E_FAIL;
  const HRESULT hr = m_d3d->CreateDevice(current.m_adapterOrdinal, current.m_deviceType, m_hWnd, createFlags,
                                         &params, &m_device);
  if (FAILED(hr)) {
    if (m_device) m_device->Release();
    m_device = nullptr;
    return hr;
  }
  return S_OK;
}

HRESULT CD3DInitialize::ResetDisplay(IDirect3DDevice9* device, const CD3DSettings& settings, HWND hWnd) {
  D3DPRESENT_PARAMETERS params;
  BuildPresentParameters(params, settings, 0);

  if (hWnd) {
    if (!settings.m_windowed) {
      RestyleForFullScreen(hWnd, settings.GetCurrentSettings().m_displayMode);
    } else {
      // The old rectangle is gone after full screen; a small window at a
      // fixed place is where a reset into a window lands.
      SetWindowLongA(hWnd, GWL_STYLE, static_cast<LONG_PTR>(s_windowedStyle));
      SetWindowPos(hWnd, HWND_NOTOPMOST, 50, 50, 400, 400, SWP_SHOWWINDOW | SWP_NOACTIVATE);
    }
  }

  if (!device) return E_FAIL;
  const HRESULT hr = device->Reset(&params);
  return FAILED(hr) ? hr : S_OK;
}
