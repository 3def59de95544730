// The SDL back end: real input and the machine's clock. SDL events become
// window messages (one row per event kind in Translate), keys and buttons
// update the key table, and the counter is the monotonic clock in
// nanoseconds.
#include <SDL.h>

#include <chrono>

#include "platform/win32/Win32State.h"
#include "platform/win32/sdl/Win32Page.h"
#include "platform/win32/sdl/Win32SdlGamepad.h"

namespace win32::detail {

namespace {

Window* WindowOfEvent(Uint32 windowId) {
  if (windowId != 0) {
    if (Window* window = FromHandle(win32::WindowOf(SDL_GetWindowFromID(windowId)))) return window;
  }
  return TargetWindow();
}

HWND HandleOrNull(Window* window) {
  return window ? HandleOf(window) : nullptr;
}

void WindowEvent(const SDL_WindowEvent& event) {
  Window* window = FromHandle(win32::WindowOf(SDL_GetWindowFromID(event.windowID)));
  if (!window || window->destroying) return;
  RECT& rect = window->rect;
  switch (event.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
      rect.right = rect.left + event.data1;
      rect.bottom = rect.top + event.data2;
      PostSizeIfChanged(*window);
      break;
    case SDL_WINDOWEVENT_MOVED: {
      const LONG width = rect.right - rect.left;
      const LONG height = rect.bottom - rect.top;
      rect = {event.data1, event.data2, event.data1 + width, event.data2 + height};
      break;
    }
    case SDL_WINDOWEVENT_MINIMIZED:
      window->minimized = true;
      PostSizeIfChanged(*window);
      break;
    case SDL_WINDOWEVENT_MAXIMIZED:
      window->minimized = false;
      window->maximized = true;
      PostSizeIfChanged(*window);
      break;
    case SDL_WINDOWEVENT_RESTORED:
      window->minimized = false;
      window->maximized = false;
      PostSizeIfChanged(*window);
      break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
      window->focused = true;
      break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
      // Keys released while another window has the focus never reach us.
      window->focused = false;
      ClearKeys();
      break;
    case SDL_WINDOWEVENT_CLOSE:
      Post(HandleOf(window), WM_CLOSE, 0, 0);
      break;
    default:
      break;
  }
}

void KeyEvent(const SDL_KeyboardEvent& event, bool taken) {
  const BYTE vk = VirtualKeyOfSdl(event.keysym.sym, event.keysym.scancode);
  if (vk == 0) return;
  const bool down = event.type == SDL_KEYDOWN;
  if (down && taken) return;  // the overlay has the keyboard
  if (taken) {
    SetKeyHeld(vk, false);
    return;
  }
  const BYTE* keys = GetState().asyncKeys;
  const bool wasDown = (keys[vk] & 0x80) != 0;
  const bool alt = (keys[VK_MENU] & 0x80) != 0;
  // Modifier keys report their generic code in messages, their sided code in
  // the table.
  const BYTE messageKey = GenericKey(vk);
  UINT message = down ? WM_KEYDOWN : WM_KEYUP;
  if (alt || messageKey == VK_MENU || messageKey == VK_F10)
    message = down ? WM_SYSKEYDOWN : WM_SYSKEYUP;
  PostKey(HandleOrNull(WindowOfEvent(event.windowID)), message, messageKey,
          KeyMessageLParam(down, wasDown, 0, IsExtendedKey(vk)), {vk, down});
}

void ButtonEvent(const SDL_MouseButtonEvent& event, bool taken) {
  BYTE vk = 0;
  UINT downMessage = 0;
  switch (event.button) {
    case SDL_BUTTON_LEFT:
      vk = VK_LBUTTON;
      downMessage = WM_LBUTTONDOWN;
      break;
    case SDL_BUTTON_RIGHT:
      vk = VK_RBUTTON;
      downMessage = WM_RBUTTONDOWN;
      break;
    case SDL_BUTTON_MIDDLE:
      vk = VK_MBUTTON;
      downMessage = WM_MBUTTONDOWN;
      break;
    default:
      return;
  }
  const bool down = event.type == SDL_MOUSEBUTTONDOWN;
  if (down && taken) return;
  SetKeyHeld(vk, down);
  if (taken) return;
  Window* window = WindowOfEvent(event.windowID);
  const int y = event.y - win32::MenuBarHeight(HandleOrNull(window));
  // Each up message follows its down message by one.
  Post(HandleOrNull(window), down ? downMessage : downMessage + 1, MouseKeyFlags(),
       MAKELPARAM(event.x, y));
}

// Mouse events move the back end's cursor (see SdlBackEnd::Cursor).
void CursorMoved(const SDL_Event& event);

// Gives whether the overlay took the event.
bool Translate(const SDL_Event& event) {
  // Controllers are the layer's own input: the overlay never sees them.
  if (Gamepad().Handle(event, SdlSource().Counter())) return false;
  State& state = GetState();
  // Window events go to the hook too (a menu closes when the window loses
  // the focus), but are never taken: the layer's state must follow them.
  const bool taken = state.hook && event.type != SDL_QUIT && state.hook(event, state.hookUser) &&
                     event.type != SDL_WINDOWEVENT;
  switch (event.type) {
    case SDL_WINDOWEVENT:
      WindowEvent(event.window);
      break;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      KeyEvent(event.key, taken);
      break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
      CursorMoved(event);
      ButtonEvent(event.button, taken);
      break;
    case SDL_MOUSEMOTION:
      CursorMoved(event);
      if (!taken) {
        Window* window = WindowOfEvent(event.motion.windowID);
        const int y = event.motion.y - win32::MenuBarHeight(HandleOrNull(window));
        Post(HandleOrNull(window), WM_MOUSEMOVE, MouseKeyFlags(), MAKELPARAM(event.motion.x, y));
      }
      break;
    case SDL_QUIT:
      // The last window was closed, or the process was asked to end
      // (SIGINT, SIGTERM): the same road as the close box.
      if (Window* window = TargetWindow()) Post(HandleOf(window), WM_CLOSE, 0, 0);
      break;
    default:
      break;
  }
  return taken;
}

class SdlBackEnd final : public Source {
 public:
  void Pump() override {
    if (!SDL_WasInit(SDL_INIT_EVENTS)) return;
    Gamepad().Start();
    SDL_Event event;
    std::deque<Posted>& queue = GetState().queue;
    while (SDL_PollEvent(&event)) {
      const std::size_t before = queue.size();
      // A taken event makes no message of its own, so a message now is a
      // menu command it chose. The command runs before the input behind it,
      // as posted messages come before input on the desktop: that input may
      // be for the dialog the command opens.
      if (Translate(event) && queue.size() > before) break;
    }
    Gamepad().Tick(Counter());
  }

  void FrameBoundary() override { page::FrameBoundary(); }

  LONGLONG Counter() override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
  }

  // The cursor is ours, not the pointer's: mouse events move it, and while the
  // mouse is captured it follows their relative motion, with the pointer held
  // still by SDL's relative mode. SetCursorPos then needs no warp of the real
  // pointer, which some video drivers cannot do (Wayland, or a warp that
  // fails): the view never keeps turning on a warp that did not happen.
  POINT Cursor() override { return m_cursor; }

  void SetCursorPosition(int x, int y) override { m_cursor = {x, y}; }

  // A mouse event at (x, y) of the window, having moved by (dx, dy).
  void Moved(int x, int y, int dx, int dy, const Window* window) {
    if (m_captured) {
      m_cursor.x += dx;
      m_cursor.y += dy;
    } else if (window) {
      m_cursor = {window->rect.left + x, window->rect.top + y};
    }
  }

  bool RealWindows() override { return true; }

  void CaptureMouse(bool on) override {
    m_captured = on;
    if (SDL_WasInit(SDL_INIT_VIDEO)) SDL_SetRelativeMouseMode(on ? SDL_TRUE : SDL_FALSE);
  }

  void ShowCursor(bool shown) override {
    if (SDL_WasInit(SDL_INIT_VIDEO)) SDL_ShowCursor(shown ? SDL_ENABLE : SDL_DISABLE);
  }

 private:
  POINT m_cursor = {0, 0};
  bool m_captured = false;
};

SdlBackEnd& Backend() {
  static SdlBackEnd* source = new SdlBackEnd;  // never destroyed: see GetState
  return *source;
}

void CursorMoved(const SDL_Event& event) {
  if (event.type == SDL_MOUSEMOTION) {
    const SDL_MouseMotionEvent& m = event.motion;
    Backend().Moved(m.x, m.y, m.xrel, m.yrel, WindowOfEvent(m.windowID));
  } else {
    Backend().Moved(event.button.x, event.button.y, 0, 0, WindowOfEvent(event.button.windowID));
  }
}

}  // namespace

Source& SdlSource() {
  return Backend();
}

}  // namespace win32::detail
