// Internal to the overlay: what its input side (Win32Overlay.cpp) and the
// menu bar (Win32MenuBar.cpp) share between frames.
#pragma once

#include <map>
#include <utility>

#include "platform/win32/windows.h"

namespace win32::overlay {

struct OverlayState {
  // Keys the overlay took, for the menu bar of the next frame: a letter or
  // digit of an access key (upper case), Escapes, and Alt+letter of the bar.
  char accessKey = 0;
  int escapes = 0;  // each closes one popup, the innermost first
  char altKey = 0;
  // The innermost popup that was open at the end of the last frame; the
  // access key of the next frame chooses among its items.
  HMENU innermost = nullptr;
  HMENU innermostThisFrame = nullptr;
  // The bar went away (full screen) with a popup open: close all at its return.
  bool closeAll = false;
  bool popupOpen = false;
  // Where each entry was drawn in the last frame, by menu and position.
  std::map<std::pair<HMENU, int>, RECT> drawn;
  bool modal = false;
};

OverlayState& State();

// The access key of a menu text: the letter after the first single '&',
// upper case; 0 when there is none.
char AccessKey(const char* text);

// Whether a letter is the access key of a popup of the window's bar.
bool IsBarAccessKey(HWND hWnd, char key);

}  // namespace win32::overlay
