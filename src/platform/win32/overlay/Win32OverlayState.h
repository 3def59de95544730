// Internal to the overlay: what its input side (Win32Overlay.cpp), the menu
// bar (Win32MenuBar.cpp) and the dialog view (Win32DialogView.cpp) share.
#pragma once

#include <SDL.h>

#include <deque>

#include "platform/win32/overlay/Win32DialogNavigator.h"
#include "platform/win32/overlay/Win32MenuNavigator.h"

namespace win32::overlay {

struct OverlayState {
  MenuNavigator menu;
  DialogNavigator dialog;
  // Input for the open dialog, in order, each with the SDL event it came
  // from: the dialog takes one per turn of its loop, and what it has not
  // taken when it ends goes back to SDL's queue for the window.
  struct DialogInput {
    InputEvent input;
    SDL_Event event;
  };
  std::deque<DialogInput> dialogInput;
  bool modal = false;
};

OverlayState& State();

// Draws the window's last frame into its default framebuffer, as the
// backdrop of a modal dialog; false when nobody can (no backdrop hook, or
// no frame of this window).
bool DrawBackdrop(HWND hWnd);

}  // namespace win32::overlay
