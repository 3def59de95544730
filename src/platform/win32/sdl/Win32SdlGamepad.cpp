// SDL game controllers as keys (see Win32SdlGamepad.h).
#include "platform/win32/sdl/Win32SdlGamepad.h"

#include <SDL.h>

namespace win32::detail {

namespace {

// Past a quarter of its travel a stick counts as held that way.
constexpr Sint16 kDeadZone = 8192;
// Back must be held this long before it ends the walk: a slip of the thumb
// must not.
constexpr LONGLONG kEscapeHold = kCounterFrequency;

// One row per key that a controller can hold; its index is its bit in Pad::held.
struct Binding {
  BYTE vk;
  int axis;    // SDL_GameControllerAxis, or -1 for a button
  int sign;    // the axis direction: -1 or +1
  int button;  // SDL_GameControllerButton, or -1 for an axis
};

constexpr Binding kBindings[] = {
    {VK_UP, SDL_CONTROLLER_AXIS_LEFTY, -1, -1},
    {VK_DOWN, SDL_CONTROLLER_AXIS_LEFTY, +1, -1},
    {'Z', SDL_CONTROLLER_AXIS_LEFTX, -1, -1},
    {'X', SDL_CONTROLLER_AXIS_LEFTX, +1, -1},
    {VK_LEFT, SDL_CONTROLLER_AXIS_RIGHTX, -1, -1},
    {VK_RIGHT, SDL_CONTROLLER_AXIS_RIGHTX, +1, -1},
    {'Q', SDL_CONTROLLER_AXIS_RIGHTY, -1, -1},  // stick up looks up
    {'A', SDL_CONTROLLER_AXIS_RIGHTY, +1, -1},
    {'J', -1, 0, SDL_CONTROLLER_BUTTON_A},
    {'S', -1, 0, SDL_CONTROLLER_BUTTON_B},
    {'T', -1, 0, SDL_CONTROLLER_BUTTON_Y},
};

constexpr std::uint32_t Bit(std::size_t row) { return std::uint32_t{1} << row; }

// A key going down or up as the keyboard would report it.
void PressKey(BYTE vk, bool down) {
  const bool wasDown = (GetState().keys[vk] & 0x80) != 0;
  SetKeyHeld(vk, down);
  Window* window = TargetWindow();
  Post(window ? HandleOf(window) : nullptr, down ? WM_KEYDOWN : WM_KEYUP, vk,
       KeyMessageLParam(down, wasDown, 0, IsExtendedKey(vk)));
}

}  // namespace

void SdlGamepad::Start() {
  if (m_started || !SDL_WasInit(SDL_INIT_EVENTS)) return;
  m_started = true;
  // Without controller support (no joystick driver) the program simply has no
  // gamepad; nothing else depends on it.
  SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER);
}

bool SdlGamepad::Handle(const SDL_Event& event, LONGLONG now) {
  switch (event.type) {
    case SDL_CONTROLLERDEVICEADDED:
      // Opening keeps the controller's events coming; its pad record starts
      // with its first axis or button event.
      SDL_GameControllerOpen(event.cdevice.which);
      return true;
    case SDL_CONTROLLERDEVICEREMOVED:
      Remove(event.cdevice.which);
      if (SDL_GameController* controller = SDL_GameControllerFromInstanceID(event.cdevice.which))
        SDL_GameControllerClose(controller);
      return true;
    case SDL_CONTROLLERAXISMOTION: {
      Pad& pad = m_pads[event.caxis.which];
      std::uint32_t held = pad.held;
      for (std::size_t row = 0; row < std::size(kBindings); ++row) {
        const Binding& b = kBindings[row];
        if (b.axis != event.caxis.axis) continue;
        const bool past = b.sign < 0 ? event.caxis.value < -kDeadZone : event.caxis.value > kDeadZone;
        held = past ? held | Bit(row) : held & ~Bit(row);
      }
      SetHeld(pad, held);
      return true;
    }
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP: {
      Pad& pad = m_pads[event.cbutton.which];
      const bool down = event.type == SDL_CONTROLLERBUTTONDOWN;
      if (event.cbutton.button == SDL_CONTROLLER_BUTTON_BACK) {
        if (down && !pad.backDown) pad.backSince = now;
        pad.backDown = down;
        pad.escapeSent = pad.escapeSent && down;
        return true;
      }
      std::uint32_t held = pad.held;
      for (std::size_t row = 0; row < std::size(kBindings); ++row) {
        if (kBindings[row].button == event.cbutton.button) held = down ? held | Bit(row) : held & ~Bit(row);
      }
      SetHeld(pad, held);
      return true;
    }
    default:
      return false;
  }
}

void SdlGamepad::Tick(LONGLONG now) {
  for (auto& [id, pad] : m_pads) {
    if (!pad.backDown || pad.escapeSent || now - pad.backSince < kEscapeHold) continue;
    pad.escapeSent = true;
    PressKey(VK_ESCAPE, true);
    PressKey(VK_ESCAPE, false);
  }
}

void SdlGamepad::SetHeld(Pad& pad, std::uint32_t held) {
  const std::uint32_t before = HeldByAll();
  pad.held = held;
  const std::uint32_t after = HeldByAll();
  for (std::size_t row = 0; row < std::size(kBindings); ++row) {
    if ((before ^ after) & Bit(row)) PressKey(kBindings[row].vk, (after & Bit(row)) != 0);
  }
}

void SdlGamepad::Remove(std::int32_t id) {
  const auto pad = m_pads.find(id);
  if (pad == m_pads.end()) return;
  SetHeld(pad->second, 0);
  m_pads.erase(pad);
}

std::uint32_t SdlGamepad::HeldByAll() const {
  std::uint32_t held = 0;
  for (const auto& [id, pad] : m_pads) held |= pad.held;
  return held;
}

SdlGamepad& Gamepad() {
  static SdlGamepad* gamepad = new SdlGamepad;  // never destroyed: see GetState
  return *gamepad;
}

}  // namespace win32::detail
