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
//    the overlay installs with its context. Every key and mouse event goes,
//    in order, to the model of the menu bar (Win32MenuNavigator.h) or, while
//    SetModal(true) is in force, to the open dialog's (its view queues them,
//    Win32DialogView.cpp); the models decide what a key or click does, and
//    ImGui only draws. A press and release within one frame are one press.
//    The overlay takes (so that no window message comes of it):
//      * every key while the menu is active (menu mode, or a popup open),
//        Alt+letter of a title, F10, and the Alt tap that enters menu mode;
//      * presses on the bar, presses while the menu is active, and the
//        release of every press it took;
//      * everything but window events while a modal dialog is up.
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

// What lies under a modal dialog: draws the last frame shown in the window
// into its default framebuffer and gives true, or gives false when it has
// none. The GL device puts this in (it keeps the frames); the dialog view
// restores the bindings and viewport it changes.
using BackdropHook = bool (*)(HWND hWnd);
void SetBackdropHook(BackdropHook hook);

// Where the entry at `position` of a menu was drawn in the last UI frame,
// in the window's coordinates (the bar's top at 0); false when it was not
// drawn. Tests click the real bar by it.
bool EntryRect(HMENU menu, int position, RECT* rect);

// The GL context current now is about to be deleted: free the overlay's GL
// objects if they belong to it.
void ReleaseGL();

}  // namespace win32::overlay
