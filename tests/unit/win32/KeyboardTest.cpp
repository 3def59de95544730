// The key table of the SDL back end: SDL key codes to virtual keys (layout
// aware, with the key position for non-Latin layouts), real SDL key events to
// WM_KEYDOWN / WM_KEYUP with the platform's lParam, held and toggle bits.
#include <SDL.h>
#include <gtest/gtest.h>

#include "Win32TestSupport.h"
#include "platform/win32/Win32State.h"

using win32::detail::VirtualKeyOfSdl;
using win32test::Take;

namespace {

TEST(KeyTable, LettersFollowTheLayoutAndOtherKeysTheirRow) {
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_z, SDL_SCANCODE_Z), 'Z');
  // On an AZERTY keyboard the key in the Q position types 'a': it is VK 'A'.
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_a, SDL_SCANCODE_Q), 'A');
  // A Cyrillic letter falls back on the key's position.
  EXPECT_EQ(VirtualKeyOfSdl(0x44F /* я */, SDL_SCANCODE_Z), 'Z');
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_0, SDL_SCANCODE_0), '0');
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_UP, SDL_SCANCODE_UP), VK_UP);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_LEFT, SDL_SCANCODE_LEFT), VK_LEFT);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_ESCAPE, SDL_SCANCODE_ESCAPE), VK_ESCAPE);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_RETURN, SDL_SCANCODE_RETURN), VK_RETURN);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_KP_ENTER, SDL_SCANCODE_KP_ENTER), VK_RETURN);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_RSHIFT, SDL_SCANCODE_RSHIFT), VK_RSHIFT);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_F12, SDL_SCANCODE_F12), VK_F12);
  EXPECT_EQ(VirtualKeyOfSdl(SDLK_VOLUMEUP, SDL_SCANCODE_VOLUMEUP), 0);
}

class SdlKeyEvents : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Disable();
    ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_EVENTS), 0) << SDL_GetError();
    while (Take().message != 0) {
    }
  }
  void TearDown() override { SDL_QuitSubSystem(SDL_INIT_EVENTS); }

  static void PushKey(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode, Uint8 repeat = 0) {
    SDL_Event event = {};
    event.type = type;
    event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.key.repeat = repeat;
    event.key.keysym.sym = sym;
    event.key.keysym.scancode = scancode;
    ASSERT_EQ(SDL_PushEvent(&event), 1);
  }
};

TEST_F(SdlKeyEvents, KeyEventsBecomeMessagesAndTheTable) {
  PushKey(SDL_KEYDOWN, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  PushKey(SDL_KEYDOWN, SDLK_RETURN, SDL_SCANCODE_RETURN);
  PushKey(SDL_KEYDOWN, SDLK_RETURN, SDL_SCANCODE_RETURN, 1);
  MSG msg = Take();
  EXPECT_EQ(msg.message, static_cast<UINT>(WM_KEYDOWN));
  EXPECT_EQ(msg.wParam, static_cast<WPARAM>(VK_SHIFT)) << "messages carry the generic shift";
  msg = Take();
  EXPECT_EQ(msg.wParam, static_cast<WPARAM>(VK_RETURN));
  EXPECT_EQ(msg.lParam & 0xFFFF, 1) << "repeat count";
  EXPECT_EQ(msg.lParam & (1 << 30), 0) << "first press: the key was up";
  EXPECT_NE(Take().lParam & (1 << 30), 0) << "auto-repeat: the key was down";

  EXPECT_NE(GetKeyState(VK_SHIFT) & 0xFF00, 0);
  EXPECT_NE(GetKeyState(VK_LSHIFT) & 0xFF00, 0);
  BYTE keys[256];
  GetKeyboardState(keys);
  EXPECT_EQ(keys[VK_RETURN] & 0x80, 0x80);

  PushKey(SDL_KEYUP, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  PushKey(SDL_KEYUP, SDLK_RETURN, SDL_SCANCODE_RETURN);
  msg = Take();
  EXPECT_EQ(msg.message, static_cast<UINT>(WM_KEYUP));
  EXPECT_EQ(static_cast<DWORD>(msg.lParam) >> 30, 3u) << "release: previous state and transition set";
  EXPECT_EQ(Take().message, static_cast<UINT>(WM_KEYUP));
  EXPECT_EQ(GetKeyState(VK_SHIFT) & 0xFF00, 0);
  EXPECT_EQ(GetKeyState(VK_RETURN) & 0x8000, 0);
  EXPECT_EQ(GetKeyState(VK_RETURN) & 1, 1) << "one press toggles";
  EXPECT_EQ(Take().message, 0u);
}

bool TakeEverything(const SDL_Event&, void*) { return true; }

TEST_F(SdlKeyEvents, AKeyTakenByTheOverlayMakesNoMessageButItsReleaseCounts) {
  PushKey(SDL_KEYDOWN, SDLK_x, SDL_SCANCODE_X);
  EXPECT_EQ(Take().message, static_cast<UINT>(WM_KEYDOWN));
  EXPECT_LT(GetKeyState('X'), 0);
  win32::SetEventHook(TakeEverything, nullptr);
  PushKey(SDL_KEYDOWN, SDLK_j, SDL_SCANCODE_J);
  PushKey(SDL_KEYUP, SDLK_x, SDL_SCANCODE_X);
  EXPECT_EQ(Take().message, 0u);
  win32::SetEventHook(nullptr, nullptr);
  EXPECT_EQ(GetKeyState('J') & 0x8000, 0);
  EXPECT_EQ(GetKeyState('X') & 0x8000, 0) << "a release never leaves a key stuck";
}

}  // namespace
