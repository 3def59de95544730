// Window classes and windows: creation with WM_NCCREATE / WM_CREATE, styles,
// placement with WM_SIZE delivered into the call, titles, window and class
// longs. The SDL window behind each record is driven through
// sdl/Win32SdlWindow.cpp; record-only windows (scripted runs without a display)
// skip those calls.
#include <algorithm>
#include <cstring>

#include "platform/win32/Win32State.h"

using namespace win32::detail;

namespace {

// The process's one module: its address is the HINSTANCE of the program.
char s_module;

// Stock brushes: distinct addresses, never freed.
char s_stockBrushes[5];

constexpr int kDefaultX = 100;
constexpr int kDefaultY = 100;
constexpr int kDefaultWidth = 640;
constexpr int kDefaultHeight = 480;

bool IsVisible(const Window& window) { return (window.style & WS_VISIBLE) != 0; }

// Marks the window visible; true when it was hidden before.
bool MakeVisible(Window& window) {
  if (IsVisible(window)) return false;
  window.style |= WS_VISIBLE;
  if (window.sdl) SdlShow(window.sdl, true);
  window.focused = true;
  SendMessageA(HandleOf(&window), WM_SHOWWINDOW, TRUE, 0);
  return true;
}

void MakeHidden(Window& window) {
  if (!IsVisible(window)) return;
  window.style &= ~static_cast<DWORD>(WS_VISIBLE);
  if (window.sdl) SdlShow(window.sdl, false);
  window.focused = false;
  SendMessageA(HandleOf(&window), WM_SHOWWINDOW, FALSE, 0);
}

}  // namespace

HMODULE GetModuleHandleA(LPCSTR lpModuleName) {
  if (lpModuleName) return nullptr;
  return reinterpret_cast<HMODULE>(&s_module);
}

ATOM RegisterClassA(const WNDCLASSA* lpWndClass) {
  if (!lpWndClass || !lpWndClass->lpfnWndProc || !lpWndClass->lpszClassName ||
      IS_INTRESOURCE(lpWndClass->lpszClassName) || !*lpWndClass->lpszClassName) {
    return 0;
  }
  State& state = GetState();
  const std::string name = lpWndClass->lpszClassName;
  if (state.classes.count(name)) return 0;  // the name is taken
  auto cls = std::make_unique<WindowClass>();
  cls->name = name;
  cls->style = lpWndClass->style;
  cls->proc = lpWndClass->lpfnWndProc;
  cls->instance = lpWndClass->hInstance;
  cls->icon = lpWndClass->hIcon;
  cls->cursor = lpWndClass->hCursor;
  cls->brush = lpWndClass->hbrBackground;
  state.classes.emplace(name, std::move(cls));
  static ATOM s_nextAtom = 0xC000;
  return s_nextAtom++;
}

BOOL UnregisterClassA(LPCSTR lpClassName, HINSTANCE) {
  if (!lpClassName || IS_INTRESOURCE(lpClassName)) return FALSE;
  State& state = GetState();
  auto it = state.classes.find(lpClassName);
  if (it == state.classes.end() || it->second->windowCount > 0) return FALSE;
  state.classes.erase(it);
  return TRUE;
}

HGDIOBJ GetStockObject(int i) {
  if (i < WHITE_BRUSH || i > BLACK_BRUSH) return nullptr;
  return &s_stockBrushes[i];
}

HWND CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName, DWORD dwStyle, int X,
                     int Y, int nWidth, int nHeight, HWND hWndParent, HMENU hMenu,
                     HINSTANCE hInstance, LPVOID lpParam) {
  if (!lpClassName || IS_INTRESOURCE(lpClassName)) return nullptr;
  State& state = GetState();
  auto found = state.classes.find(lpClassName);
  if (found == state.classes.end()) return nullptr;

  auto record = std::make_unique<Window>();
  Window& window = *record;
  window.cls = found->second.get();
  window.proc = window.cls->proc;
  window.title = lpWindowName ? lpWindowName : "";
  window.style = dwStyle & ~static_cast<DWORD>(WS_VISIBLE);  // shown below, with its messages
  window.exStyle = dwExStyle;
  if (X == CW_USEDEFAULT) {
    X = kDefaultX;
    Y = kDefaultY;
  }
  if (nWidth == CW_USEDEFAULT) {
    nWidth = kDefaultWidth;
    nHeight = kDefaultHeight;
  }
  window.rect = {X, Y, X + std::max(0, nWidth), Y + std::max(0, nHeight)};

  if (GetSource().RealWindows()) {
    window.sdl = SdlCreate(window);
    if (!window.sdl) return nullptr;
  }
  state.windows.push_back(std::move(record));
  window.cls->windowCount++;
  HWND hWnd = HandleOf(&window);

  CREATESTRUCTA create = {};
  create.lpCreateParams = lpParam;
  create.hInstance = hInstance;
  create.hMenu = hMenu;
  create.hwndParent = hWndParent;
  create.cx = window.rect.right - window.rect.left;
  create.cy = window.rect.bottom - window.rect.top;
  create.x = window.rect.left;
  create.y = window.rect.top;
  create.style = static_cast<LONG>(dwStyle);
  create.lpszName = lpWindowName;
  create.lpszClass = lpClassName;
  create.dwExStyle = dwExStyle;
  const LPARAM createParam = reinterpret_cast<LPARAM>(&create);

  if (!SendMessageA(hWnd, WM_NCCREATE, 0, createParam)) {
    DestroyWindow(hWnd);
    return nullptr;
  }
  if (SendMessageA(hWnd, WM_CREATE, 0, createParam) == -1) {
    DestroyWindow(hWnd);
    return nullptr;
  }
  if (!FromHandle(hWnd)) return nullptr;  // the procedure destroyed it
  if (hMenu && !(dwStyle & WS_CHILD)) SetMenu(hWnd, hMenu);
  if (dwStyle & WS_VISIBLE) {
    MakeVisible(window);
    SendSizeIfChanged(window, true);
  }
  return hWnd;
}

BOOL DestroyWindow(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  if (!window || window->destroying) return FALSE;
  window->destroying = true;
  State& state = GetState();
  if (state.capture == hWnd) {
    state.capture = nullptr;
    GetSource().CaptureMouse(false);
  }
  SendMessageA(hWnd, WM_DESTROY, 0, 0);
  SendMessageA(hWnd, WM_NCDESTROY, 0, 0);
  // The platform destroys the menu that is still attached to a window.
  if (window->menu && IsMenu(window->menu)) DestroyMenu(window->menu);
  if (window->sdl) SdlDestroy(window->sdl);
  window->cls->windowCount--;
  auto& windows = state.windows;
  windows.erase(std::remove_if(windows.begin(), windows.end(),
                               [window](const auto& w) { return w.get() == window; }),
                windows.end());
  return TRUE;
}

BOOL IsWindow(HWND hWnd) { return FromHandle(hWnd) ? TRUE : FALSE; }

BOOL ShowWindow(HWND hWnd, int nCmdShow) {
  Window* window = FromHandle(hWnd);
  if (!window) return FALSE;
  const BOOL wasVisible = IsVisible(*window) ? TRUE : FALSE;
  switch (nCmdShow) {
    case SW_HIDE:
      MakeHidden(*window);
      return wasVisible;
    case SW_MINIMIZE:
    case SW_SHOWMINIMIZED:
      MakeVisible(*window);
      if (!window->minimized) {
        window->minimized = true;
        if (window->sdl) SdlMinimize(window->sdl);
      }
      SendSizeIfChanged(*window, true);
      return wasVisible;
    case SW_RESTORE:
    case SW_SHOWNORMAL:
      MakeVisible(*window);
      if (window->minimized || window->maximized) {
        window->minimized = false;
        window->maximized = false;
        if (window->sdl) SdlRestore(window->sdl);
      }
      SendSizeIfChanged(*window, true);
      return wasVisible;
    default:  // SW_SHOW, SW_SHOWNOACTIVATE, SW_SHOWDEFAULT, SW_SHOWMAXIMIZED
      MakeVisible(*window);
      SendSizeIfChanged(*window, true);
      return wasVisible;
  }
}

BOOL IsWindowVisible(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  return window && IsVisible(*window) ? TRUE : FALSE;
}

BOOL IsIconic(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  return window && window->minimized ? TRUE : FALSE;
}

BOOL UpdateWindow(HWND hWnd) { return IsWindow(hWnd); }

BOOL SetWindowTextA(HWND hWnd, LPCSTR lpString) {
  Window* window = FromHandle(hWnd);
  if (!window) return FALSE;
  window->title = lpString ? lpString : "";
  if (window->sdl) SdlSetTitle(window->sdl, window->title);
  return TRUE;
}

int GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount) {
  Window* window = FromHandle(hWnd);
  if (!window || !lpString || nMaxCount <= 0) return 0;
  const std::size_t count =
      std::min(window->title.size(), static_cast<std::size_t>(nMaxCount - 1));
  std::memcpy(lpString, window->title.data(), count);
  lpString[count] = '\0';
  return static_cast<int>(count);
}

LONG_PTR SetWindowLongA(HWND hWnd, int nIndex, LONG_PTR dwNewLong) {
  Window* window = FromHandle(hWnd);
  if (!window) return 0;
  LONG_PTR former = 0;
  switch (nIndex) {
    case GWL_STYLE: {
      former = static_cast<LONG_PTR>(static_cast<LONG>(window->style));
      // The visible bit only changes the record; showing and hiding the real
      // window is left to ShowWindow and SetWindowPos, which callers use next.
      window->style = static_cast<DWORD>(dwNewLong);
      if (window->sdl) SdlSetStyle(window->sdl, window->style);
      break;
    }
    case GWL_EXSTYLE:
      former = static_cast<LONG_PTR>(static_cast<LONG>(window->exStyle));
      window->exStyle = static_cast<DWORD>(dwNewLong);
      break;
    case GWL_USERDATA:
      former = window->userData;
      window->userData = dwNewLong;
      break;
    case GWL_WNDPROC:
      former = reinterpret_cast<LONG_PTR>(window->proc);
      if (dwNewLong) window->proc = reinterpret_cast<WNDPROC>(dwNewLong);
      break;
    case GWL_ID:
      former = window->id;
      window->id = dwNewLong;
      break;
    default:
      return 0;
  }
  return former;
}

LONG_PTR GetWindowLongA(HWND hWnd, int nIndex) {
  Window* window = FromHandle(hWnd);
  if (!window) return 0;
  switch (nIndex) {
    case GWL_STYLE: {
      DWORD style = window->style;
      if (window->minimized) style |= WS_MINIMIZE;
      return static_cast<LONG_PTR>(static_cast<LONG>(style));
    }
    case GWL_EXSTYLE:
      return static_cast<LONG_PTR>(static_cast<LONG>(window->exStyle));
    case GWL_USERDATA:
      return window->userData;
    case GWL_WNDPROC:
      return reinterpret_cast<LONG_PTR>(window->proc);
    case GWL_ID:
      return window->id;
    default:
      return 0;
  }
}

ULONG_PTR SetClassLongA(HWND hWnd, int nIndex, LONG_PTR dwNewLong) {
  Window* window = FromHandle(hWnd);
  if (!window) return 0;
  WindowClass& cls = *window->cls;
  switch (nIndex) {
    case GCL_HICON: {
      const ULONG_PTR former = reinterpret_cast<ULONG_PTR>(cls.icon);
      cls.icon = reinterpret_cast<HICON>(dwNewLong);
      for (const auto& other : GetState().windows) {
        if (other->cls == &cls && other->sdl) SdlSetIcon(other->sdl, cls.icon);
      }
      return former;
    }
    case GCL_HCURSOR: {
      const ULONG_PTR former = reinterpret_cast<ULONG_PTR>(cls.cursor);
      cls.cursor = reinterpret_cast<HCURSOR>(dwNewLong);
      return former;
    }
    default:
      return 0;
  }
}

ULONG_PTR GetClassLongA(HWND hWnd, int nIndex) {
  Window* window = FromHandle(hWnd);
  if (!window) return 0;
  switch (nIndex) {
    case GCL_HICON:
      return reinterpret_cast<ULONG_PTR>(window->cls->icon);
    case GCL_HCURSOR:
      return reinterpret_cast<ULONG_PTR>(window->cls->cursor);
    default:
      return 0;
  }
}

BOOL SetWindowPos(HWND hWnd, HWND, int X, int Y, int cx, int cy, UINT uFlags) {
  Window* window = FromHandle(hWnd);
  if (!window) return FALSE;
  RECT& rect = window->rect;
  if (!(uFlags & SWP_NOMOVE)) {
    const LONG width = rect.right - rect.left;
    const LONG height = rect.bottom - rect.top;
    rect = {X, Y, X + width, Y + height};
  }
  if (!(uFlags & SWP_NOSIZE)) {
    rect.right = rect.left + std::max(0, cx);
    rect.bottom = rect.top + std::max(0, cy);
  }
  if (window->sdl && !(uFlags & SWP_NOMOVE && uFlags & SWP_NOSIZE)) SdlSetGeometry(window->sdl, rect);

  bool shownNow = false;
  if (uFlags & SWP_SHOWWINDOW) shownNow = MakeVisible(*window);
  if (uFlags & SWP_HIDEWINDOW) MakeHidden(*window);
  SendSizeIfChanged(*window, shownNow);
  return TRUE;
}

BOOL GetWindowRect(HWND hWnd, RECT* lpRect) {
  Window* window = FromHandle(hWnd);
  if (!window || !lpRect) return FALSE;
  *lpRect = window->rect;
  return TRUE;
}

BOOL GetClientRect(HWND hWnd, RECT* lpRect) {
  Window* window = FromHandle(hWnd);
  if (!window || !lpRect) return FALSE;
  LONG width = 0;
  LONG height = 0;
  ClientSize(*window, &width, &height);
  *lpRect = {0, 0, width, height};
  return TRUE;
}

BOOL ClientToScreen(HWND hWnd, POINT* lpPoint) {
  Window* window = FromHandle(hWnd);
  if (!window || !lpPoint) return FALSE;
  lpPoint->x += window->rect.left;
  lpPoint->y += window->rect.top + win32::MenuBarHeight(hWnd);
  return TRUE;
}

BOOL ScreenToClient(HWND hWnd, POINT* lpPoint) {
  Window* window = FromHandle(hWnd);
  if (!window || !lpPoint) return FALSE;
  lpPoint->x -= window->rect.left;
  lpPoint->y -= window->rect.top + win32::MenuBarHeight(hWnd);
  return TRUE;
}
