// The overlay UI of the win32 back end: one Dear ImGui context per process,
// drawn into our SDL windows on top of what the GL device shows. The menu bar
// of a window lives here, and so does any modal UI (the settings dialog) that
// must draw while no frame of the program runs. Back ends only; system code
// never includes this.
//
// Contract:
//  - The ImGui context, its font and style are made on the first BeginFrame
//    and live to the end of the process. Its settings file is off: the
//    program writes no file.
//  - Input comes from the win32 layer's event hook (Win32Backend.h), which
//    the overlay installs with its context. SDL events feed ImGui's mouse,
//    wheel and keys whether the overlay takes them or not. The overlay takes
//    (so that no window message comes of it):
//      * mouse presses over the menu bar or while a popup is open, and the
//        release of a press it took;
//      * every key press while a popup is open (Escape closes the innermost
//        popup, a letter chooses by access key), and Alt+letter when the
//        letter is the access key of a popup of the bar;
//      * everything but window events while SetModal(true) is in force.
//    Presses and releases that arrive within one frame are both seen: a
//    press is latched until the next BeginFrame.
//  - BeginFrame / RenderFrame bracket one UI frame, with a GL 3.3 context
//    current on the window. RenderFrame draws into the window's default
//    framebuffer over the whole window and saves and restores every GL state
//    it touches, so it can run inside the device's Present (the present
//    hook of D3D9GLBackend.h) or in a modal loop, which then swaps itself.
//  - The GL objects of the overlay belong to the context current at their
//    making. ReleaseGL, called with that context current before it is
//    deleted, frees them; a later frame in another context makes new ones.
//  - All on the main thread.
#pragma once

#include "platform/win32/windows.h"

namespace win32::overlay {

// Starts a UI frame for the window: its size, the time step and the input
// gathered since the last frame. False (and no frame) for a window without
// an SDL window or while a frame is already begun.
bool BeginFrame(HWND hWnd);

// Ends the UI frame begun by BeginFrame and draws it into the window.
void RenderFrame(HWND hWnd);

// The menu bar of the window's menu, inside a begun frame: nothing when the
// window has no menu. A chosen entry posts WM_COMMAND with its number.
void MenuBar(HWND hWnd);

// What the present hook does for a window: a frame with its menu bar, when
// it has one; nothing otherwise.
void DrawWindowOverlay(HWND hWnd);

// While on, the overlay takes every input event (a modal dialog is up).
void SetModal(bool modal);

// True while a popup of the menu bar is open.
bool PopupOpen();

// Where the entry at `position` of a menu was drawn in the last UI frame,
// in the window's coordinates (the bar's top at 0); false when it was not
// drawn. Tests click the real bar by it.
bool EntryRect(HMENU menu, int position, RECT* rect);

// The GL context current now is about to be deleted: free the overlay's GL
// objects if they belong to it.
void ReleaseGL();

}  // namespace win32::overlay
