// The settings dialog worked from the keyboard, as a person would: the whole
// program on the SDL back end (Xvfb in ./test.sh), SDL key events pushed at
// the start of the dialog's turns. Alt+M goes to the multisample type list,
// Down picks the next type, Tab twice reaches the vertex processing list,
// Down picks the next kind, Enter is OK; a second dialog ends with Escape.
#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iterator>

#include "app/GameApp.h"
#include "device/D3DSettingsDlg.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/Win32Overlay.h"

namespace {

__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

struct Record {
  CD3DSettings start{}, afterOk{}, afterEscape{};
  IDirect3DDevice9 *startDevice = nullptr, *okDevice = nullptr, *escapeDevice = nullptr;
  int presents = 0, dialogs = 0;
} s_record;

void Key(Uint32 type, SDL_Keycode sym, Uint16 mod = KMOD_NONE) {
  SDL_Event e{};
  e.key = {type, 0, SDL_GetWindowID(win32::SdlWindowOf(g_App.m_hWnd)),
           Uint8(type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED), 0, 0, 0,
           {SDL_GetScancodeFromKey(sym), sym, mod, 0}};
  SDL_PushEvent(&e);
}

// Every other turn: a key goes down, then up at the next, so that a turn
// sees it held.
void OnTurn(HWND, std::uint32_t turn, void*) {
  static const struct { SDL_Keycode sym; Uint16 mod; } okPlan[] = {{SDLK_LALT, KMOD_LALT}, {SDLK_m, KMOD_LALT}, {SDLK_DOWN, 0},  {SDLK_TAB, 0},
                {SDLK_TAB, 0},          {SDLK_DOWN, 0},      {SDLK_RETURN, 0}},
    escapePlan[] = {{SDLK_ESCAPE, 0}};
  if (turn == 0) ++s_record.dialogs;
  const auto* plan = s_record.dialogs == 1 ? okPlan : escapePlan;
  const std::uint32_t steps = s_record.dialogs == 1 ? std::size(okPlan) : std::size(escapePlan);
  const std::uint32_t step = turn / 4;
  if (turn % 4 == 1 && step < steps) Key(SDL_KEYDOWN, plan[step].sym, plan[step].mod);
  // Alt stays down over the letter.
  if (turn % 4 == 3 && step < steps && !(s_record.dialogs == 1 && step == 0)) {
    Key(SDL_KEYUP, plan[step].sym, plan[step].mod);
    if (s_record.dialogs == 1 && step == 1) Key(SDL_KEYUP, SDLK_LALT);
  }
}

void OnPresent(HWND hWnd, void*) {
  win32::overlay::DrawWindowOverlay(hWnd);
  const int present = ++s_record.presents;
  if (present == 3) s_record.start = g_App.m_settings, s_record.startDevice = g_App.m_device;
  if (present == 3 || present == 6) PostMessageA(hWnd, WM_COMMAND, 40009, 0);
  if (present == 5) s_record.afterOk = g_App.m_settings, s_record.okDevice = g_App.m_device;
  if (present == 8) {
    s_record.afterEscape = g_App.m_settings, s_record.escapeDevice = g_App.m_device;
    PostMessageA(hWnd, WM_CLOSE, 0, 0);
  }
  if (present > 300) PostQuitMessage(0);  // guards a hang only: the plan ends at the 8th
}

TEST(DialogKeys, AltKeyArrowsTabAndEnterChangeTheDeviceAndEscapeCancels) {
  d3d9gl::SetPresentHook(&OnPresent, nullptr);
  win32::SetDialogTurnHook(&OnTurn, nullptr);
  const Record& r = s_record;
  EXPECT_EQ(WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT), 0);
  ASSERT_LE(r.presents, 300) << "the run hung: WM_CLOSE did not end it";
  ASSERT_EQ(r.dialogs, 2);
  const CD3DDisplaySettings &start = r.start.GetCurrentSettings(),
                            &ok = r.afterOk.GetCurrentSettings();
  EXPECT_NE(ok.m_multiSampleType, start.m_multiSampleType);
  EXPECT_NE(ok.m_vertexProcessing, start.m_vertexProcessing);
  EXPECT_EQ(ok.m_presentInterval, start.m_presentInterval);
  EXPECT_NE(r.okDevice, r.startDevice);
  EXPECT_EQ(r.escapeDevice, r.okDevice);
  EXPECT_EQ(std::memcmp(&r.afterEscape, &r.afterOk, sizeof(CD3DSettings)), 0);
}

}  // namespace
