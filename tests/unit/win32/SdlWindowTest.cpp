// Real SDL windows behind the records (needs a display): the SDL window
// follows placement, title and style, and maps back to its handle.
#include <SDL.h>
#include <gtest/gtest.h>

#include "Win32TestSupport.h"
#include "platform/win32/Win32Backend.h"

namespace {

TEST(SdlWindows, TheSdlWindowFollowsTheRecord) {
  win32::script::Disable();
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = win32test::RecordingProc;
  windowClass.lpszClassName = "karvo-sdl-test";
  RegisterClassA(&windowClass);
  HWND hWnd = CreateWindowExA(0, "karvo-sdl-test", "first", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                              CW_USEDEFAULT, 320, 240, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(hWnd, nullptr);
  SDL_Window* sdl = win32::SdlWindowOf(hWnd);
  ASSERT_NE(sdl, nullptr);
  EXPECT_EQ(win32::WindowOf(sdl), hWnd);
  EXPECT_TRUE(SDL_GetWindowFlags(sdl) & SDL_WINDOW_OPENGL);
  EXPECT_TRUE(SDL_GetWindowFlags(sdl) & SDL_WINDOW_HIDDEN);

  ShowWindow(hWnd, SW_SHOW);
  EXPECT_FALSE(SDL_GetWindowFlags(sdl) & SDL_WINDOW_HIDDEN);
  SetWindowTextA(hWnd, "second");
  EXPECT_STREQ(SDL_GetWindowTitle(sdl), "second");
  SetWindowPos(hWnd, HWND_NOTOPMOST, 50, 50, 400, 300, SWP_SHOWWINDOW | SWP_NOACTIVATE);
  int width = 0;
  int height = 0;
  SDL_GetWindowSize(sdl, &width, &height);
  EXPECT_EQ(width, 400);
  EXPECT_EQ(height, 300);
  SetWindowLongA(hWnd, GWL_STYLE, static_cast<LONG>(WS_VISIBLE | WS_POPUP));
  EXPECT_TRUE(SDL_GetWindowFlags(sdl) & SDL_WINDOW_BORDERLESS);

  // Events of the window system do not disturb the size the record holds.
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&msg);
  RECT client;
  GetClientRect(hWnd, &client);
  EXPECT_EQ(client.right, 400);
  EXPECT_EQ(client.bottom, 300);

  EXPECT_TRUE(DestroyWindow(hWnd));
  EXPECT_EQ(win32::WindowOf(sdl), nullptr);
}

}  // namespace
