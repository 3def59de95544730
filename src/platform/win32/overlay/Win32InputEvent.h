// One input event as the overlay's menu and dialog models take it: a key by
// its virtual key, or the mouse in the window's coordinates (the bar's top
// at 0). The models see every event in the order it happened, so a key that
// goes down and up within one frame is one press, as on the desktop.
#pragma once

#include "platform/win32/windows.h"

namespace win32::overlay {

struct InputEvent {
  enum class Kind { KeyDown, KeyUp, MouseMove, MouseDown, MouseUp, Wheel, FocusLost };
  Kind kind = Kind::KeyDown;
  // Keys: the generic virtual key (VK_MENU for either Alt, VK_SHIFT for
  // either Shift); letters are 'A'..'Z' and digits '0'..'9' by the layout.
  BYTE vk = 0;
  bool alt = false, shift = false, ctrl = false;  // held with the key
  bool repeat = false;                            // the key's auto-repeat
  // Mouse: where, which button (0 left, 1 right, 2 middle), wheel steps up.
  int x = 0, y = 0;
  int button = 0;
  int wheel = 0;

  static InputEvent Key(bool down, BYTE vk, bool alt = false, bool shift = false) {
    InputEvent event;
    event.kind = down ? Kind::KeyDown : Kind::KeyUp;
    event.vk = vk;
    event.alt = alt;
    event.shift = shift;
    return event;
  }
  static InputEvent Mouse(Kind kind, int x, int y, int button = 0) {
    InputEvent event;
    event.kind = kind;
    event.x = x;
    event.y = y;
    event.button = button;
    return event;
  }
};

// Whether a virtual key is a letter or a digit: what access keys and typed
// searches are made of.
inline bool IsCharacterKey(BYTE vk) {
  return (vk >= 'A' && vk <= 'Z') || (vk >= '0' && vk <= '9');
}

inline bool Inside(const RECT& rect, int x, int y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

}  // namespace win32::overlay
