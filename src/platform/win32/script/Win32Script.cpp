// The scripted back end: a schedule of input by frame and a fixed-step clock
// (see Win32Script.h for the contract).
#include "platform/win32/script/Win32Script.h"

#include <SDL.h>

#include <cmath>
#include <map>
#include <vector>

#include "platform/win32/Win32DialogState.h"
#include "platform/win32/Win32State.h"
#include "platform/win32/sdl/Win32SdlGamepad.h"

namespace win32::detail {

namespace {

enum class EventKind { KeyDown, KeyUp, Hold, Cursor, Post };

struct ScriptEvent {
  EventKind kind = EventKind::Post;
  BYTE vk = 0;
  std::vector<BYTE> keys;  // Hold
  int dx = 0;
  int dy = 0;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
};

LONGLONG ToCounts(double seconds) {
  return static_cast<LONGLONG>(std::llround(seconds * static_cast<double>(kCounterFrequency)));
}

bool IsButton(BYTE vk) {
  return vk == VK_LBUTTON || vk == VK_RBUTTON || vk == VK_MBUTTON;
}

BYTE MessageKey(BYTE vk) {
  if (vk == VK_LSHIFT || vk == VK_RSHIFT) return VK_SHIFT;
  if (vk == VK_LCONTROL || vk == VK_RCONTROL) return VK_CONTROL;
  if (vk == VK_LMENU || vk == VK_RMENU) return VK_MENU;
  return vk;
}

class ScriptBackEnd final : public Source {
 public:
  void Start(const win32::script::Options& options) {
    m_options = options;
    m_step = ToCounts(options.fixedStep);
    m_counter = ToCounts(options.clockStart);
    m_frames = 0;
    m_delivered = false;
    m_quitRequested = false;
    m_cursor = options.cursorStart;
    m_schedule.clear();
    m_callback = nullptr;
  }

  void Stop() {
    m_schedule.clear();
    m_callback = nullptr;
  }

  void Schedule(std::uint32_t frame, ScriptEvent event) {
    m_schedule.emplace(frame, std::move(event));
  }
  void SetStep(double seconds) { m_step = ToCounts(seconds); }
  std::uint32_t Frames() const { return m_frames; }
  void SetCallback(std::function<void(std::uint32_t)> callback) {
    m_callback = std::move(callback);
  }

  void Pump() override {
    DropSdlInput();
    if (m_options.maxFrames != 0 && m_frames >= m_options.maxFrames) {
      // The caller chose the limit, so reaching it is the normal end of the
      // run and says nothing.
      if (!m_quitRequested) {
        m_quitRequested = true;
        PostQuitMessage(0);
      }
      return;
    }
    if (m_delivered) return;
    m_delivered = true;
    // This frame's events and any scheduled for frames already gone by.
    auto end = m_schedule.upper_bound(m_frames);
    for (auto it = m_schedule.begin(); it != end; ++it) Apply(it->second);
    m_schedule.erase(m_schedule.begin(), end);
  }

  // PeekMessageA calls Pump, which delivered this frame's events, just before.
  void FrameBoundary() override {
    const std::uint32_t frame = m_frames;
    ++m_frames;
    m_counter += m_step;
    m_delivered = false;
    if (m_callback) m_callback(frame);
  }

  LONGLONG Counter() override { return m_counter; }
  POINT Cursor() override { return m_cursor; }
  void SetCursorPosition(int x, int y) override { m_cursor = {x, y}; }
  bool RealWindows() override { return m_options.realWindows; }
  void CaptureMouse(bool) override {}
  void ShowCursor(bool) override {}

 private:
  // SDL still queues events for real windows (exposure, the pointer of the
  // machine); none of them may disturb a scripted run. Controller events are
  // the exception: nothing else plays a controller, so a test can drive one
  // on the fixed clock.
  void DropSdlInput() {
    if (!SDL_WasInit(SDL_INIT_EVENTS)) return;
    SDL_Event event;
    while (SDL_PollEvent(&event)) Gamepad().Handle(event, m_counter);
    Gamepad().Tick(m_counter);
  }

  static HWND Target() {
    Window* window = TargetWindow();
    return window ? HandleOf(window) : nullptr;
  }

  POINT ClientCursor(HWND hWnd) const {
    POINT point = m_cursor;
    if (hWnd) ScreenToClient(hWnd, &point);
    return point;
  }

  void Press(BYTE vk, bool down) {
    const bool held = (GetState().keys[vk] & 0x80) != 0;
    if (held == down) return;
    SetKeyHeld(vk, down);
    HWND target = Target();
    if (IsButton(vk)) {
      UINT message = vk == VK_LBUTTON   ? WM_LBUTTONDOWN
                     : vk == VK_RBUTTON ? WM_RBUTTONDOWN
                                        : WM_MBUTTONDOWN;
      if (!down) message += 1;
      const POINT point = ClientCursor(target);
      Post(target, message, MouseKeyFlags(), MAKELPARAM(point.x, point.y));
    } else {
      Post(target, down ? WM_KEYDOWN : WM_KEYUP, MessageKey(vk),
           KeyMessageLParam(down, held, 0, IsExtendedKey(vk)));
    }
  }

  void Hold(const std::vector<BYTE>& keys) {
    auto wanted = [&keys](BYTE vk) {
      for (BYTE key : keys) {
        if (key == vk || MessageKey(key) == vk) return true;
      }
      return false;
    };
    // A generic modifier held through its left or right key goes up with it.
    auto sided = [](int vk) {
      const BYTE* table = GetState().keys;
      if (vk == VK_SHIFT) return ((table[VK_LSHIFT] | table[VK_RSHIFT]) & 0x80) != 0;
      if (vk == VK_CONTROL) return ((table[VK_LCONTROL] | table[VK_RCONTROL]) & 0x80) != 0;
      if (vk == VK_MENU) return ((table[VK_LMENU] | table[VK_RMENU]) & 0x80) != 0;
      return false;
    };
    for (int vk = 1; vk < 256; ++vk) {
      if ((GetState().keys[vk] & 0x80) && !wanted(static_cast<BYTE>(vk)) && !sided(vk)) {
        Press(static_cast<BYTE>(vk), false);
      }
    }
    for (BYTE vk : keys) Press(vk, true);
  }

  void Apply(const ScriptEvent& event) {
    switch (event.kind) {
      case EventKind::KeyDown:
        Press(event.vk, true);
        break;
      case EventKind::KeyUp:
        Press(event.vk, false);
        break;
      case EventKind::Hold:
        Hold(event.keys);
        break;
      case EventKind::Cursor: {
        m_cursor.x += event.dx;
        m_cursor.y += event.dy;
        HWND target = Target();
        const POINT point = ClientCursor(target);
        Post(target, WM_MOUSEMOVE, MouseKeyFlags(), MAKELPARAM(point.x, point.y));
        break;
      }
      case EventKind::Post:
        Post(Target(), event.message, event.wParam, event.lParam);
        break;
    }
  }

  win32::script::Options m_options;
  LONGLONG m_step = 0;
  LONGLONG m_counter = 0;
  std::uint32_t m_frames = 0;
  bool m_delivered = false;
  bool m_quitRequested = false;
  POINT m_cursor = {0, 0};
  std::multimap<std::uint32_t, ScriptEvent> m_schedule;  // equal frames keep their order
  std::function<void(std::uint32_t)> m_callback;
};

ScriptBackEnd& Script() {
  static ScriptBackEnd* script = new ScriptBackEnd;  // never destroyed: see GetState
  return *script;
}

std::function<bool(HWND, std::uint32_t)>& DialogCallback() {
  static auto* callback =
      new std::function<bool(HWND, std::uint32_t)>;  // never destroyed: see GetState
  return *callback;
}

}  // namespace

Source& ScriptSource() {
  return Script();
}

bool ScriptDialogTurn(HWND dialog, std::uint32_t turn) {
  if (!DialogCallback()) return false;
  // Copied: the callback may set a new one.
  const auto callback = DialogCallback();
  return callback(dialog, turn);
}

}  // namespace win32::detail

namespace win32::script {

using namespace win32::detail;

void Enable(const Options& options) {
  State& state = GetState();
  state.queue.clear();
  state.quitPending = false;
  state.quitCode = 0;
  state.capture = nullptr;
  for (BYTE& key : state.keys) key = 0;
  for (BYTE& key : state.asyncKeys) key = 0;
  Script().Start(options);
  DialogCallback() = nullptr;
  state.source = &Script();
}

void Disable() {
  Script().Stop();
  GetState().source = &SdlSource();
}

bool IsEnabled() {
  return win32::IsScripted();
}

void SetFixedStep(double seconds) {
  Script().SetStep(seconds);
}

std::uint32_t FramesStarted() {
  return Script().Frames();
}

void KeyDown(std::uint32_t frame, BYTE vk) {
  ScriptEvent event;
  event.kind = EventKind::KeyDown;
  event.vk = vk;
  Script().Schedule(frame, std::move(event));
}

void KeyUp(std::uint32_t frame, BYTE vk) {
  ScriptEvent event;
  event.kind = EventKind::KeyUp;
  event.vk = vk;
  Script().Schedule(frame, std::move(event));
}

void HoldKeys(std::uint32_t frame, std::initializer_list<BYTE> vks) {
  ScriptEvent event;
  event.kind = EventKind::Hold;
  event.keys.assign(vks.begin(), vks.end());
  Script().Schedule(frame, std::move(event));
}

void MoveCursor(std::uint32_t frame, int dx, int dy) {
  ScriptEvent event;
  event.kind = EventKind::Cursor;
  event.dx = dx;
  event.dy = dy;
  Script().Schedule(frame, std::move(event));
}

void PostAt(std::uint32_t frame, UINT message, WPARAM wParam, LPARAM lParam) {
  ScriptEvent event;
  event.kind = EventKind::Post;
  event.message = message;
  event.wParam = wParam;
  event.lParam = lParam;
  Script().Schedule(frame, std::move(event));
}

void Command(std::uint32_t frame, UINT id) {
  PostAt(frame, WM_COMMAND, id, 0);
}

void SetFrameCallback(std::function<void(std::uint32_t frame)> callback) {
  Script().SetCallback(std::move(callback));
}

void SetDialogCallback(std::function<bool(HWND dialog, std::uint32_t turn)> callback) {
  DialogCallback() = std::move(callback);
}

}  // namespace win32::script
