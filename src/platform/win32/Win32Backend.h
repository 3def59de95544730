// Back-end contract of the win32 layer, for the other back ends only: the GL
// device (which makes its context on our windows and draws the menu overlay),
// the overlay UI, and the capture tool. System code never includes this.
//
// Contract:
//  - Every window that CreateWindowExA makes is a real SDL window created with
//    SDL_WINDOW_OPENGL, hidden until shown, unless the scripted back end runs
//    with record-only windows (script::Options::realWindows false); then
//    SdlWindowOf gives null and a device cannot draw into it.
//  - SDL's window size is the window's outer size (GetWindowRect). When a menu
//    is attached, a menu bar of MenuBarHeight pixels lies at the top of the
//    SDL window and the client area (GetClientRect, the back buffer of a
//    windowed device) is the rest below it: the device draws the client area
//    at SDL-window y = MenuBarHeight(hWnd).
//  - The layer never switches the display mode. WS_POPUP gives a borderless
//    window and SetWindowPos places it; the device back end makes it full
//    screen (SDL_SetWindowFullscreen) when a non-windowed device is created or
//    reset, and windowed again on the way back.
//  - The SDL back end reads SDL events when PeekMessageA finds no posted
//    message. Each event goes first to the event hook (the overlay UI); when
//    the hook takes it, it does not become a window message. Key and button
//    releases still update the key table, and window events (size, close,
//    focus) are never taken, so the layer's state stays true.
//  - The menu is plain data reachable through the Win32 menu calls
//    (GetMenu, GetMenuItemCount, GetMenuItemID, GetMenuStringA,
//    GetMenuState, GetSubMenu). A chosen entry is reported with
//    PostMessageA(hWnd, WM_COMMAND, id, 0).
//  - All calls on the main thread.
#pragma once

#include "platform/win32/windows.h"

struct SDL_Window;
union SDL_Event;

namespace win32 {

// The SDL window behind a window handle; null for a bad handle or a
// record-only window.
SDL_Window* SdlWindowOf(HWND hWnd);

// The window handle of an SDL window of ours; null for any other.
HWND WindowOf(SDL_Window* window);

// Window state that decides whether a full-screen device is lost.
bool IsMinimized(HWND hWnd);
bool HasFocus(HWND hWnd);

// True while the scripted back end is in force (win32::script::Enable).
bool IsScripted();

// Called for every SDL event before it becomes a message; return true to take
// the event (it then makes no message). Null removes the hook.
using EventHook = bool (*)(const SDL_Event& event, void* user);
void SetEventHook(EventHook hook, void* user);

// Height in pixels of the menu bar that the overlay draws (default 19, the
// height of a Dear ImGui menu bar with the default font and style). Windows
// with a menu get WM_SIZE for the new client size when it changes.
void SetMenuBarHeight(int pixels);
// The bar's height in this window: 0 when no menu is attached.
int MenuBarHeight(HWND hWnd);

}  // namespace win32
