// SDL key codes to virtual keys, one row per key. SDL key codes follow the
// keyboard layout, as the platform's virtual keys do: on an AZERTY keyboard
// the key labelled Z gives 'Z'. Layouts without Latin letters fall back on
// the key's position (its scan code), which is what the platform does there.
#include <SDL.h>

#include "platform/win32/Win32State.h"

namespace win32::detail {

namespace {

struct KeyRow {
  SDL_Keycode sdl;
  BYTE vk;
};

constexpr KeyRow kKeys[] = {
    {SDLK_BACKSPACE, VK_BACK},
    {SDLK_TAB, VK_TAB},
    {SDLK_RETURN, VK_RETURN},
    {SDLK_KP_ENTER, VK_RETURN},
    {SDLK_PAUSE, VK_PAUSE},
    {SDLK_CAPSLOCK, VK_CAPITAL},
    {SDLK_ESCAPE, VK_ESCAPE},
    {SDLK_SPACE, VK_SPACE},
    {SDLK_PAGEUP, VK_PRIOR},
    {SDLK_PAGEDOWN, VK_NEXT},
    {SDLK_END, VK_END},
    {SDLK_HOME, VK_HOME},
    {SDLK_LEFT, VK_LEFT},
    {SDLK_UP, VK_UP},
    {SDLK_RIGHT, VK_RIGHT},
    {SDLK_DOWN, VK_DOWN},
    {SDLK_PRINTSCREEN, VK_SNAPSHOT},
    {SDLK_INSERT, VK_INSERT},
    {SDLK_DELETE, VK_DELETE},
    {SDLK_LGUI, VK_LWIN},
    {SDLK_RGUI, VK_RWIN},
    {SDLK_APPLICATION, VK_APPS},
    {SDLK_KP_0, VK_NUMPAD0},
    {SDLK_KP_1, VK_NUMPAD1},
    {SDLK_KP_2, VK_NUMPAD2},
    {SDLK_KP_3, VK_NUMPAD3},
    {SDLK_KP_4, VK_NUMPAD4},
    {SDLK_KP_5, VK_NUMPAD5},
    {SDLK_KP_6, VK_NUMPAD6},
    {SDLK_KP_7, VK_NUMPAD7},
    {SDLK_KP_8, VK_NUMPAD8},
    {SDLK_KP_9, VK_NUMPAD9},
    {SDLK_KP_MULTIPLY, VK_MULTIPLY},
    {SDLK_KP_PLUS, VK_ADD},
    {SDLK_KP_MINUS, VK_SUBTRACT},
    {SDLK_KP_PERIOD, VK_DECIMAL},
    {SDLK_KP_DIVIDE, VK_DIVIDE},
    {SDLK_F1, VK_F1},
    {SDLK_F2, VK_F2},
    {SDLK_F3, VK_F3},
    {SDLK_F4, VK_F4},
    {SDLK_F5, VK_F5},
    {SDLK_F6, VK_F6},
    {SDLK_F7, VK_F7},
    {SDLK_F8, VK_F8},
    {SDLK_F9, VK_F9},
    {SDLK_F10, VK_F10},
    {SDLK_F11, VK_F11},
    {SDLK_F12, VK_F12},
    {SDLK_NUMLOCKCLEAR, VK_NUMLOCK},
    {SDLK_SCROLLLOCK, VK_SCROLL},
    {SDLK_LSHIFT, VK_LSHIFT},
    {SDLK_RSHIFT, VK_RSHIFT},
    {SDLK_LCTRL, VK_LCONTROL},
    {SDLK_RCTRL, VK_RCONTROL},
    {SDLK_LALT, VK_LMENU},
    {SDLK_RALT, VK_RMENU},
    {SDLK_SEMICOLON, VK_OEM_1},
    {SDLK_EQUALS, VK_OEM_PLUS},
    {SDLK_PLUS, VK_OEM_PLUS},
    {SDLK_COMMA, VK_OEM_COMMA},
    {SDLK_MINUS, VK_OEM_MINUS},
    {SDLK_PERIOD, VK_OEM_PERIOD},
    {SDLK_SLASH, VK_OEM_2},
    {SDLK_BACKQUOTE, VK_OEM_3},
    {SDLK_LEFTBRACKET, VK_OEM_4},
    {SDLK_BACKSLASH, VK_OEM_5},
    {SDLK_RIGHTBRACKET, VK_OEM_6},
    {SDLK_QUOTE, VK_OEM_7},
};

// Keys that the platform marks as extended (bit 24 of a key message's lParam).
constexpr BYTE kExtended[] = {VK_PRIOR,  VK_NEXT, VK_END,    VK_HOME,  VK_LEFT,   VK_UP,
                              VK_RIGHT,  VK_DOWN, VK_INSERT, VK_DELETE, VK_DIVIDE, VK_NUMLOCK,
                              VK_RCONTROL, VK_RMENU, VK_LWIN, VK_RWIN,  VK_APPS,   VK_SNAPSHOT};

}  // namespace

BYTE VirtualKeyOfSdl(int keycode, int scancode) {
  if (keycode >= SDLK_a && keycode <= SDLK_z) return static_cast<BYTE>('A' + (keycode - SDLK_a));
  if (keycode >= SDLK_0 && keycode <= SDLK_9) return static_cast<BYTE>('0' + (keycode - SDLK_0));
  for (const KeyRow& row : kKeys) {
    if (row.sdl == keycode) return row.vk;
  }
  // A key whose layout character is not Latin (Cyrillic, Greek, ...): its
  // position decides, as on a US keyboard.
  if (scancode >= SDL_SCANCODE_A && scancode <= SDL_SCANCODE_Z) {
    return static_cast<BYTE>('A' + (scancode - SDL_SCANCODE_A));
  }
  if (scancode >= SDL_SCANCODE_1 && scancode <= SDL_SCANCODE_9) {
    return static_cast<BYTE>('1' + (scancode - SDL_SCANCODE_1));
  }
  if (scancode == SDL_SCANCODE_0) return '0';
  return 0;
}

BYTE GenericKey(BYTE vk) {
  switch (vk) {
    case VK_LSHIFT:
    case VK_RSHIFT:
      return VK_SHIFT;
    case VK_LCONTROL:
    case VK_RCONTROL:
      return VK_CONTROL;
    case VK_LMENU:
    case VK_RMENU:
      return VK_MENU;
    default:
      return vk;
  }
}

bool IsExtendedKey(BYTE vk) {
  for (BYTE extended : kExtended) {
    if (extended == vk) return true;
  }
  return false;
}

}  // namespace win32::detail
