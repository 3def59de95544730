// Game controllers for the win32 layer: SDL controller events become the
// virtual keys that the keyboard gives, so the program walks, looks, lifts,
// rises and talks with a controller without knowing of one.
//
//   left stick       up / down: VK_UP / VK_DOWN      left / right: 'Z' / 'X'
//   right stick      left / right: VK_LEFT / VK_RIGHT  up / down: 'Q' / 'A'
//   A  B  Y          'J' (lift)  'S' (rise in water)  'T' (speech)
//   Back, held 1 s   VK_ESCAPE pressed and released once
//
// A stick counts past a dead zone of a quarter of its travel. Keys go into the
// key table and post WM_KEYDOWN / WM_KEYUP as real keys do; a key that several
// controllers hold goes up when the last lets go. A controller that is
// unplugged lets go of everything it held. Internal to the layer.
#pragma once

#include <cstdint>
#include <map>

#include "platform/win32/Win32State.h"

namespace win32::detail {

class SdlGamepad {
 public:
  // Opens the controller subsystem once SDL's events run, so that controllers
  // plugged in now and later are reported. Safe to call often.
  void Start();
  // Takes a controller event (added, removed, axis, button) at clock reading
  // `now`; false for any other event.
  bool Handle(const SDL_Event& event, LONGLONG now);
  // Called when input is read: a Back button held long enough becomes Escape.
  void Tick(LONGLONG now);

 private:
  // What one controller holds: a bit per row of the table of keys.
  struct Pad {
    std::uint32_t held = 0;
    bool backDown = false;
    bool escapeSent = false;
    LONGLONG backSince = 0;
  };

  void SetHeld(Pad& pad, std::uint32_t held);
  void Remove(std::int32_t id);
  std::uint32_t HeldByAll() const;

  std::map<std::int32_t, Pad> m_pads;  // by SDL joystick instance id
  bool m_started = false;
};

SdlGamepad& Gamepad();

}  // namespace win32::detail
