// Shared state of the win32 layer, the key table, size reporting, and the
// back-end queries of Win32Backend.h.
#include "platform/win32/Win32State.h"

#include <algorithm>

namespace win32::detail {

// The layer's state outlives every static object of the program: the
// application object may destroy its window from its destructor at exit.
State& GetState() {
  static State* state = new State;
  return *state;
}

Source& GetSource() {
  State& state = GetState();
  if (!state.source) state.source = &SdlSource();
  return *state.source;
}

Window* FromHandle(HWND hWnd) {
  if (!hWnd) return nullptr;
  for (const auto& window : GetState().windows) {
    if (HandleOf(window.get()) == hWnd) return window.get();
  }
  return nullptr;
}

Window* TargetWindow() {
  auto& windows = GetState().windows;
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    if (!(*it)->destroying) return it->get();
  }
  return nullptr;
}

void ClientSize(const Window& window, LONG* width, LONG* height) {
  const LONG bar = MenuBarHeight(HandleOf(const_cast<Window*>(&window)));
  *width = std::max<LONG>(0, window.rect.right - window.rect.left);
  *height = std::max<LONG>(0, window.rect.bottom - window.rect.top - bar);
}

namespace {

// The WM_SIZE that the window's state calls for, or false when it was told
// already (or, never shown yet, is not to be told before its first showing).
bool PendingSize(Window& window, bool firstShow, WPARAM* type, LPARAM* lParam) {
  LONG width = 0;
  LONG height = 0;
  ClientSize(window, &width, &height);
  WPARAM sizeType = SIZE_RESTORED;
  if (window.minimized) {
    sizeType = SIZE_MINIMIZED;
    width = 0;
    height = 0;
  } else if (window.maximized) {
    sizeType = SIZE_MAXIMIZED;
  }
  if (!window.sizeSent && !firstShow) return false;
  if (window.sizeSent && sizeType == window.lastSizeType && width == window.lastClientWidth &&
      height == window.lastClientHeight) {
    return false;
  }
  window.sizeSent = true;
  window.lastSizeType = sizeType;
  window.lastClientWidth = width;
  window.lastClientHeight = height;
  *type = sizeType;
  *lParam = MAKELPARAM(width, height);
  return true;
}

}  // namespace

void SendSizeIfChanged(Window& window, bool firstShow) {
  WPARAM type = 0;
  LPARAM lParam = 0;
  if (PendingSize(window, firstShow, &type, &lParam)) {
    SendMessageA(HandleOf(&window), WM_SIZE, type, lParam);
  }
}

void PostSizeIfChanged(Window& window) {
  WPARAM type = 0;
  LPARAM lParam = 0;
  if (PendingSize(window, false, &type, &lParam)) Post(HandleOf(&window), WM_SIZE, type, lParam);
}

// ---- key table ------------------------------------------------------------------

namespace {

void UpdateCombined(BYTE* keys, BYTE generic, BYTE left, BYTE right) {
  const bool held = (keys[left] & 0x80) || (keys[right] & 0x80);
  if (held && !(keys[generic] & 0x80)) keys[generic] ^= 0x01;
  keys[generic] = static_cast<BYTE>((keys[generic] & 0x01) | (held ? 0x80 : 0x00));
}

void SetTableKey(BYTE* keys, BYTE vk, bool held) {
  if (held && !(keys[vk] & 0x80)) keys[vk] ^= 0x01;  // toggles flip on each press
  keys[vk] = static_cast<BYTE>((keys[vk] & 0x01) | (held ? 0x80 : 0x00));
  switch (vk) {
    case VK_LSHIFT:
    case VK_RSHIFT:
      UpdateCombined(keys, VK_SHIFT, VK_LSHIFT, VK_RSHIFT);
      break;
    case VK_LCONTROL:
    case VK_RCONTROL:
      UpdateCombined(keys, VK_CONTROL, VK_LCONTROL, VK_RCONTROL);
      break;
    case VK_LMENU:
    case VK_RMENU:
      UpdateCombined(keys, VK_MENU, VK_LMENU, VK_RMENU);
      break;
    default:
      break;
  }
}

}  // namespace

void SetKeyHeld(BYTE vk, bool held) {
  SetTableKey(GetState().keys, vk, held);
  SetTableKey(GetState().asyncKeys, vk, held);
}

void ClearKeys() {
  State& state = GetState();
  for (int i = 0; i < 256; ++i) {  // toggles survive, held keys do not
    state.keys[i] &= 0x01;
    state.asyncKeys[i] &= 0x01;
  }
  for (Posted& posted : state.queue) posted.key = {};
}

void PostKey(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, KeyChange key) {
  SetTableKey(GetState().asyncKeys, key.vk, key.down);
  Post(hWnd, message, wParam, lParam);
  GetState().queue.back().key = key;
}

MSG TakeOut(std::deque<Posted>::iterator it) {
  const Posted posted = *it;
  GetState().queue.erase(it);
  if (posted.key.vk != 0) SetTableKey(GetState().keys, posted.key.vk, posted.key.down);
  return posted.msg;
}

LPARAM KeyMessageLParam(bool down, bool wasDown, BYTE scanCode, bool extended) {
  // Bits 0-15 repeat count, 16-23 scan code, 24 extended, 30 previous state,
  // 31 transition (1 for a release).
  DWORD value = 1u | (static_cast<DWORD>(scanCode) << 16);
  if (extended) value |= 1u << 24;
  if (wasDown || !down) value |= 1u << 30;
  if (!down) value |= 1u << 31;
  return static_cast<LPARAM>(value);
}

WPARAM MouseKeyFlags() {
  const BYTE* keys = GetState().keys;
  WPARAM flags = 0;
  if (keys[VK_LBUTTON] & 0x80) flags |= MK_LBUTTON;
  if (keys[VK_RBUTTON] & 0x80) flags |= MK_RBUTTON;
  if (keys[VK_MBUTTON] & 0x80) flags |= MK_MBUTTON;
  if (keys[VK_SHIFT] & 0x80) flags |= MK_SHIFT;
  if (keys[VK_CONTROL] & 0x80) flags |= MK_CONTROL;
  return flags;
}

}  // namespace win32::detail

// ---- back-end queries ---------------------------------------------------------------

namespace win32 {

using namespace detail;

SDL_Window* SdlWindowOf(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  return window ? window->sdl : nullptr;
}

HWND WindowOf(SDL_Window* sdl) {
  if (!sdl) return nullptr;
  for (const auto& window : GetState().windows) {
    if (window->sdl == sdl) return HandleOf(window.get());
  }
  return nullptr;
}

bool IsMinimized(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  return window && window->minimized;
}

bool HasFocus(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  return window && window->focused;
}

bool IsScripted() {
  return &GetSource() == &ScriptSource();
}

void SetEventHook(EventHook hook, void* user) {
  GetState().hook = hook;
  GetState().hookUser = hook ? user : nullptr;
}

void SetMenuBarHeight(int pixels) {
  State& state = GetState();
  const int height = std::max(0, pixels);
  if (height == state.menuBarHeight) return;
  state.menuBarHeight = height;
  for (const auto& window : state.windows) {
    if (window->menu && !window->destroying) PostSizeIfChanged(*window);
  }
}

int MenuBarHeight(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  if (!window || !window->menu || !IsMenu(window->menu)) return 0;
  return GetState().menuBarHeight;
}

}  // namespace win32
