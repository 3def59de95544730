// The menu bar of the real program used with the mouse: clicks at the places
// where the bar drew its entries, the settings dialog drawn over the world,
// Escapes tapped as automation sends them (press and release in one frame),
// what the open menu takes from the world, mouse look, and the picture
// following a resized window. (What each key does in the menus and the dialog,
// and what a device change keeps, are the navigators' and the window
// procedure's unit tests.)
#include <gtest/gtest.h>

#include "e2e/menu/SdlPlan.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/overlay/Win32Overlay.h"

namespace {

using namespace sdl_plan;

// Clicks the middle of an entry drawn in the last frame: `path` goes from the
// bar down the popups by position.
void ClickEntry(const std::vector<int>& path) {
  HMENU menu = App().m_hMenu, owner = menu;
  for (int position : path) owner = menu, menu = GetSubMenu(menu, position);
  RECT r{};
  ASSERT_TRUE(win32::overlay::EntryRect(owner, path.back(), &r));
  Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
}

// The settings dialog as its first turn drew it, 0xRRGGBB; then it is cancelled.
Picture s_dialog;
void OnDialogTurn(HWND dialog, std::uint32_t turn, void*) {
  if (turn != 0) return;
  std::vector<std::uint8_t> rgba;
  int width = 0, height = 0;
  win32::DrawDialog(dialog, &rgba, &width, &height);
  for (std::size_t i = 0; i + 3 < rgba.size(); i += 4)
    s_dialog.push_back(std::uint32_t(rgba[i]) << 16 | std::uint32_t(rgba[i + 1]) << 8 | rgba[i + 2]);
  EndDialog(dialog, IDCANCEL);
}

// One step per click, from the bar down: {2, 0, 1} is Render States, Fill
// Mode, Wireframe.
void ClickThrough(std::vector<int> path) {
  for (std::size_t n = 1; n <= path.size(); ++n)
    Then([=] { ClickEntry(std::vector<int>(path.begin(), path.begin() + std::ptrdiff_t(n))); });
}

// At the start and after a size change: a back buffer of the new client size, shown one to one
// below the bar (no stretching), and neither black nor the clear colour.
void ExpectPictureFollowsTheWindow(int width, int height) {
  UINT w = 0, h = 0;
  const Picture back = BackBuffer(&w, &h);
  const Picture shown = Window();
  const int bar = win32::MenuBarHeight(App().m_hWnd);
  ASSERT_EQ(int(w), width);
  ASSERT_EQ(int(h), height - bar);
  ASSERT_EQ(shown.size(), std::size_t(width) * height);
  EXPECT_TRUE(std::equal(back.begin(), back.end(), shown.begin() + std::ptrdiff_t(bar) * width));
  EXPECT_LT(Share(back, 0), 0.01);
  EXPECT_LT(Share(back, kClear), 0.01);
}

TEST(MenuBar, UsedByMouseInTheRealProgram) {
  // Bar: 0 File, 1 Camera, 2 Render States; Render States: 0 Fill Mode,
  // 2 Filter, 5 Color Blending Ops, 6 Render Mode.
  Picture before;
  D3DXVECTOR3 position;
  float yaw = 0.0f;
  win32::SetDialogTurnHook(&OnDialogTurn, nullptr);
  Then([&] {
    // The start: a window of 1200 x 700, the bar at its top, the device's
    // back buffer the client area below it.
    EXPECT_TRUE(App().m_settings.m_windowed);
    ExpectPictureFollowsTheWindow(1200, 700);
    before = BackBuffer();
  });
  ClickThrough({2, 0, 1});  // Wireframe
  Then([&] {
    EXPECT_EQ(App().m_fillMode, D3DFILL_WIREFRAME);
    // Lines leave the clear colour between them; solid ground shows none.
    EXPECT_LT(Share(before, kClear), 0.01);
    EXPECT_GT(Share(BackBuffer(), kClear), 0.2);
  });
  ClickThrough({0, 0});  // Change Device
  Then([] {
    ASSERT_FALSE(s_dialog.empty()) << "no settings dialog";
    EXPECT_LT(Share(s_dialog, 0x2E333D), 0.01) << "a bare background, not the world dimmed";
  });
  ClickThrough({2, 0, 0});  // Solid
  ClickThrough({2, 6, 1});  // Multi Pass
  Then([] {
    EXPECT_FALSE(App().m_singlePass);
    EXPECT_TRUE(GetMenuState(GetSubMenu(App().m_hMenu, 2), 5, MF_BYPOSITION) & MF_GRAYED);
  });
  // The README's picture: open down to the marks of Minification, with Color
  // Blending Ops greyed.
  ClickThrough({2, 2, 0});
  Then([] {
    Window(KARVO_SHOT_DIR "/render-states.png", 720, 260);
    for (int popup = 0; popup < 3; ++popup) Key(SDLK_ESCAPE);  // quick taps: one popup each, the run goes on
  });
  Then([&] {
    EXPECT_FALSE(win32::overlay::PopupOpen());
    ClickEntry({1});  // Camera
  });
  Then([&] {
    EXPECT_TRUE(win32::overlay::PopupOpen());
    // Up held and a click into the world while the popup is open: the menu
    // takes both, so no step and no mouse look.
    position = App().m_player.GetPosition();
    Key(SDLK_UP, KMOD_NONE, true, false);
    Click(600, 500);
  });
  Then([&] {
    EXPECT_TRUE(App().m_player.GetPosition().x == position.x &&
                App().m_player.GetPosition().z == position.z);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_FALSE(win32::overlay::PopupOpen()) << "a click outside closes the popup";
    Key(SDLK_UP, KMOD_NONE, false, true);
    // Mouse look by relative motion only: the pointer itself never moves
    // here, as where a warp fails.
    Mouse(SDL_MOUSEBUTTONDOWN, 600, 400);
  });
  Then([&] { yaw = App().m_player.GetYaw(), Mouse(SDL_MOUSEMOTION, 600, 400, 30); });
  Then([&] {
    EXPECT_FLOAT_EQ(App().m_player.GetYaw(), yaw + 10.0f) << "30 pixels are 10 degrees";
    yaw = App().m_player.GetYaw();
  });
  Then([&] {
    EXPECT_FLOAT_EQ(App().m_player.GetYaw(), yaw) << "the view kept turning";
    Mouse(SDL_MOUSEBUTTONUP, 600, 400);
    SDL_SetWindowSize(Sdl(), 640, 480);  // as a drag of the border does
  });
  Await([] { return WindowIs(640, 480); });
  Then([] { ExpectPictureFollowsTheWindow(640, 480), SDL_SetWindowSize(Sdl(), 1200, 700); });
  Await([] { return WindowIs(1200, 700); });
  Then([] { ExpectPictureFollowsTheWindow(1200, 700); });
  ClickThrough({0, 2});  // File, Exit
  RunPlan();
}

}  // namespace
