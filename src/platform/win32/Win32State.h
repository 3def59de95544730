// Internal to the win32 layer: the state that all calls share (windows,
// classes, message queue, key table, capture, cursor) and the contract
// between the common code and its two input/clock back ends (sdl/,
// script/). No SDL types here: SDL windows are handled through the
// functions of sdl/Win32SdlWindow.cpp.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/windows.h"

namespace win32::detail {}  // namespace win32::detail

// Icons and cursors: an ARGB image, or a stock object of the system.
struct HICON__ {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  // 0xAARRGGBB, rows from the top
  bool stock = false;
};

namespace win32::detail {

struct WindowClass {
  std::string name;
  UINT style = 0;
  WNDPROC proc = nullptr;
  HINSTANCE instance = nullptr;
  HICON icon = nullptr;
  HCURSOR cursor = nullptr;
  HBRUSH brush = nullptr;
  int windowCount = 0;
};

struct Window {
  WindowClass* cls = nullptr;
  WNDPROC proc = nullptr;
  std::string title;
  DWORD style = 0;
  DWORD exStyle = 0;
  LONG_PTR userData = 0;
  LONG_PTR id = 0;
  RECT rect = {0, 0, 0, 0};  // outer rectangle, screen coordinates
  HMENU menu = nullptr;
  // Visibility is the WS_VISIBLE bit of `style`, as the platform keeps it.
  bool minimized = false;
  bool maximized = false;
  bool focused = false;
  bool destroying = false;
  // What the last WM_SIZE told, so that a size is reported once.
  bool sizeSent = false;
  WPARAM lastSizeType = SIZE_RESTORED;
  LONG lastClientWidth = -1;
  LONG lastClientHeight = -1;
  SDL_Window* sdl = nullptr;
};

// Where input and time come from. The SDL back end reads real events and the
// machine's clock; the scripted one plays a schedule on a fixed-step clock.
class Source {
 public:
  virtual ~Source() = default;
  // PeekMessageA found no posted message and no quit: bring in new input
  // (post messages, update the key table).
  virtual void Pump() = 0;
  // Still nothing to deliver: the caller runs a frame next.
  virtual void FrameBoundary() = 0;
  // Performance counter in counts of 10^9 per second.
  virtual LONGLONG Counter() = 0;
  virtual POINT Cursor() = 0;
  virtual void SetCursorPosition(int x, int y) = 0;
  // Whether new windows are SDL windows.
  virtual bool RealWindows() = 0;
  // The real mouse follows the capture and cursor visibility.
  virtual void CaptureMouse(bool on) = 0;
  virtual void ShowCursor(bool shown) = 0;
};

Source& SdlSource();
Source& ScriptSource();

constexpr LONGLONG kCounterFrequency = 1000000000;

// A posted message, and for a key message the key's new state: the table
// that GetKeyState reads takes it when the message is read, as a thread's key
// state follows the key messages it reads. A press and release within one
// frame thus still show Shift held to the WM_KEYDOWN of the Enter pressed
// with it.
struct KeyChange {
  BYTE vk = 0;  // 0: no key
  bool down = false;
};
struct Posted {
  MSG msg;
  KeyChange key;
};

struct State {
  std::map<std::string, std::unique_ptr<WindowClass>> classes;
  std::vector<std::unique_ptr<Window>> windows;  // in creation order
  std::deque<Posted> queue;
  bool quitPending = false;
  int quitCode = 0;
  BYTE keys[256] = {};       // as of the messages read (GetKeyState, GetKeyboardState)
  BYTE asyncKeys[256] = {};  // as of the input taken in (GetAsyncKeyState)
  HWND capture = nullptr;
  HCURSOR cursor = nullptr;
  int menuBarHeight = 19;
  Source* source = nullptr;
  EventHook hook = nullptr;
  void* hookUser = nullptr;
};

State& GetState();
Source& GetSource();

// Handles: a window handle is the address of its record; only live records
// are accepted.
Window* FromHandle(HWND hWnd);
inline HWND HandleOf(Window* window) {
  return reinterpret_cast<HWND>(window);
}
// The window that scripted input goes to: the last created that still lives.
Window* TargetWindow();

// Client size of a window: its outer size less the menu bar.
void ClientSize(const Window& window, LONG* width, LONG* height);
// Sends WM_SIZE when the client size or the size type differs from what the
// window was last told, or when it was never told and `firstShow` is set.
void SendSizeIfChanged(Window& window, bool firstShow);
// Posts instead of sending (used from event pumping and bar-height changes).
void PostSizeIfChanged(Window& window);

// Key tables: held (0x80) and toggle (0x01) bits, with VK_SHIFT, VK_CONTROL
// and VK_MENU following their left and right keys. SetKeyHeld changes both
// tables now (input that makes no message); ClearKeys releases every key in
// both, and in the key messages not read yet.
void SetKeyHeld(BYTE vk, bool held);
void ClearKeys();
// lParam of WM_KEYDOWN / WM_KEYUP for a key, packed as the platform does.
LPARAM KeyMessageLParam(bool down, bool wasDown, BYTE scanCode, bool extended);
// MK_* flags of the mouse buttons and modifier keys held now.
WPARAM MouseKeyFlags();

// Queue helpers.
void Post(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
// Posts a key message: the key's state changes now in the asynchronous table,
// and in the other one when the message is read.
void PostKey(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, KeyChange key);
// Takes a posted message out of the queue, applying its key change.
MSG TakeOut(std::deque<Posted>::iterator it);

// Menus (Win32Menu.cpp): whether a handle is a live menu.
bool IsMenu(HMENU hMenu);

// Keyboard table of the SDL back end (sdl/Win32SdlKeys.cpp): the virtual key of an
// SDL key code, falling back on the scan code's key position for keys that
// the layout gives no Latin letter or digit. 0 for keys without one.
BYTE VirtualKeyOfSdl(int keycode, int scancode);
// The generic key of a sided one (VK_LSHIFT gives VK_SHIFT, VK_RMENU
// VK_MENU), as key messages carry it; other keys as they are.
BYTE GenericKey(BYTE vk);
// Whether the platform marks the key as extended (bit 24 of the key lParam).
bool IsExtendedKey(BYTE vk);

// ---- SDL windows (sdl/Win32SdlWindow.cpp) -------------------------------------
bool SdlVideoAvailable();
SDL_Window* SdlCreate(const Window& window);
void SdlDestroy(SDL_Window* sdl);
void SdlShow(SDL_Window* sdl, bool shown);
void SdlMinimize(SDL_Window* sdl);
void SdlRestore(SDL_Window* sdl);
void SdlSetGeometry(SDL_Window* sdl, const RECT& rect);
void SdlSetTitle(SDL_Window* sdl, const std::string& title);
void SdlSetStyle(SDL_Window* sdl, DWORD style);
void SdlSetIcon(SDL_Window* sdl, HICON icon);
void SdlShowMessageBox(const char* caption, const char* text, UINT type);
bool SdlMessageBoxCanBeAnswered();

}  // namespace win32::detail
