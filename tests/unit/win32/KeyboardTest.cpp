// The key table of the SDL back end: SDL key codes to virtual keys (layout
// aware, with the key position for non-Latin layouts); real SDL key and button
// events to messages and held keys.
#include <SDL.h>
#include <gtest/gtest.h>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32State.h"
#include "platform/win32/script/Win32Script.h"

using win32::detail::VirtualKeyOfSdl;

namespace {

// The next message that PeekMessageA takes; message 0 when the queue is empty.
MSG Take() {
  MSG msg{};
  return PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE) ? msg : MSG{};
}

TEST(KeyTable, LettersFollowTheLayoutAndOtherKeysTheirRow) {
  const struct {
    SDL_Keycode sym;
    SDL_Scancode scancode;
    int vk;
  } cases[] = {
      // AZERTY: the key in the Q position types 'a'; a Cyrillic letter falls
      // back on the key's position.
      {SDLK_z, SDL_SCANCODE_Z, 'Z'},
      {SDLK_a, SDL_SCANCODE_Q, 'A'},
      {0x44F /* я */, SDL_SCANCODE_Z, 'Z'},
      {SDLK_0, SDL_SCANCODE_0, '0'},
      {SDLK_UP, SDL_SCANCODE_UP, VK_UP},
      {SDLK_LEFT, SDL_SCANCODE_LEFT, VK_LEFT},
      {SDLK_ESCAPE, SDL_SCANCODE_ESCAPE, VK_ESCAPE},
      {SDLK_KP_ENTER, SDL_SCANCODE_KP_ENTER, VK_RETURN},
      {SDLK_RSHIFT, SDL_SCANCODE_RSHIFT, VK_RSHIFT},
      {SDLK_F12, SDL_SCANCODE_F12, VK_F12},
      {SDLK_VOLUMEUP, SDL_SCANCODE_VOLUMEUP, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(VirtualKeyOfSdl(c.sym, c.scancode), c.vk) << c.sym;
}

// A key event as SDL queues it; a mouse button event when `scancode` is left out.
void Push(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode = SDL_SCANCODE_UNKNOWN) {
  SDL_Event event = {};
  event.type = type;
  if (scancode == SDL_SCANCODE_UNKNOWN) {
    event.button.button = static_cast<Uint8>(sym);
  } else {
    event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym = {scancode, sym, 0, 0};
  }
  ASSERT_EQ(SDL_PushEvent(&event), 1);
}

// Mouse buttons give their down and up messages. A key held when the overlay
// starts taking events (a menu opened with the mouse) must not stay down: its
// release still counts, without a message.
TEST(SdlEvents,
     ButtonsGiveTheirMessagesAndKeysAreHeldUntilReleasedEvenWhenTheOverlayTakesTheRelease) {
  win32::script::Disable();
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_EVENTS), 0) << SDL_GetError();
  while (Take().message != 0) {
  }
  const struct {
    Uint8 button;
    UINT down, up;
  } buttons[] = {{SDL_BUTTON_LEFT, WM_LBUTTONDOWN, WM_LBUTTONUP},
                 {SDL_BUTTON_RIGHT, WM_RBUTTONDOWN, WM_RBUTTONUP},
                 {SDL_BUTTON_MIDDLE, WM_MBUTTONDOWN, WM_MBUTTONUP}};
  for (const auto& b : buttons) {
    Push(SDL_MOUSEBUTTONDOWN, b.button);
    Push(SDL_MOUSEBUTTONUP, b.button);
    EXPECT_EQ(Take().message, b.down);
    EXPECT_EQ(Take().message, b.up);
  }

  Push(SDL_KEYDOWN, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  const MSG msg = Take();
  EXPECT_EQ(msg.message, static_cast<UINT>(WM_KEYDOWN));
  EXPECT_EQ(msg.wParam, static_cast<WPARAM>(VK_SHIFT)) << "messages carry the generic shift";
  EXPECT_NE(GetKeyState(VK_SHIFT) & 0x8000, 0);
  win32::SetEventHook([](const SDL_Event&, void*) { return true; },
                      nullptr);  // the overlay takes everything
  Push(SDL_KEYDOWN, SDLK_j, SDL_SCANCODE_J);
  Push(SDL_KEYUP, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  EXPECT_EQ(Take().message, 0u);
  win32::SetEventHook(nullptr, nullptr);
  EXPECT_EQ(GetKeyState('J') & 0x8000, 0);
  EXPECT_EQ(GetKeyState(VK_SHIFT) & 0x8000, 0);
  SDL_QuitSubSystem(SDL_INIT_EVENTS);
}

// GetKeyState follows the key messages as they are read, GetAsyncKeyState
// the input: Shift+Enter tapped within one frame still finds Shift held at
// the Enter's WM_KEYDOWN.
TEST(SdlEvents, KeyStateFollowsTheMessagesAsTheyAreRead) {
  win32::script::Disable();
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_EVENTS), 0) << SDL_GetError();
  Push(SDL_KEYDOWN, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  Push(SDL_KEYDOWN, SDLK_RETURN, SDL_SCANCODE_RETURN);
  Push(SDL_KEYUP, SDLK_RETURN, SDL_SCANCODE_RETURN);
  Push(SDL_KEYUP, SDLK_LSHIFT, SDL_SCANCODE_LSHIFT);
  const struct {
    WPARAM key;
    UINT message;
    bool shiftHeld;
  } reads[] = {{VK_SHIFT, WM_KEYDOWN, true},
               {VK_RETURN, WM_KEYDOWN, true},
               {VK_RETURN, WM_KEYUP, true},
               {VK_SHIFT, WM_KEYUP, false}};
  for (const auto& r : reads) {
    const MSG msg = Take();
    EXPECT_EQ(msg.message, r.message);
    EXPECT_EQ(msg.wParam, r.key);
    EXPECT_EQ((GetKeyState(VK_SHIFT) & 0x8000) != 0, r.shiftHeld) << r.key << " " << r.message;
    EXPECT_EQ(GetAsyncKeyState(VK_SHIFT) & 0x8000, 0) << "the input released it already";
  }
  SDL_QuitSubSystem(SDL_INIT_EVENTS);
}

// A taken event that chose a command (a message waits now) ends the pump: the
// events behind it wait for the command, which may open a dialog whose own
// hook is to see them, as quick taps of Alt+F, C, then a dialog key need.
TEST(SdlEvents, ACommandChosenByATakenEventRunsBeforeTheEventsBehindIt) {
  win32::script::Disable();
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_EVENTS), 0) << SDL_GetError();
  int dialogKeys = 0;
  win32::SetEventHook(
      [](const SDL_Event& e, void*) {
        if (e.type == SDL_KEYDOWN) PostMessageA(nullptr, WM_COMMAND, 40009, 0);
        return true;
      },
      nullptr);
  Push(SDL_KEYDOWN, SDLK_c, SDL_SCANCODE_C);
  Push(SDL_KEYDOWN, SDLK_m, SDL_SCANCODE_M);
  EXPECT_EQ(Take().message, static_cast<UINT>(WM_COMMAND));
  win32::SetEventHook(
      [](const SDL_Event& e, void* keys) {
        return *static_cast<int*>(keys) += e.type == SDL_KEYDOWN, true;
      },
      &dialogKeys);
  EXPECT_EQ(Take().message, 0u) << "the key behind the command chose one too";
  EXPECT_EQ(dialogKeys, 1);
  win32::SetEventHook(nullptr, nullptr);
  SDL_QuitSubSystem(SDL_INIT_EVENTS);
}

}  // namespace
