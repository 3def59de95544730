// Real SDL windows behind the records (needs a display): the SDL window
// follows placement, title and style.
#include <SDL.h>
#include <gtest/gtest.h>

#include <utility>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/script/Win32Script.h"

TEST(SdlWindows, TheSdlWindowFollowsTheRecord) {
  win32::script::Disable();
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = DefWindowProcA;
  windowClass.lpszClassName = "karvo-sdl-test";
  RegisterClassA(&windowClass);
  HWND hWnd = CreateWindowExA(0, "karvo-sdl-test", "first", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                              CW_USEDEFAULT, 320, 240, nullptr, nullptr, nullptr, nullptr);
  SDL_Window* sdl = win32::SdlWindowOf(hWnd);
  ASSERT_NE(sdl, nullptr);
  EXPECT_EQ(SDL_GetWindowFlags(sdl) & (SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN), SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
  SetWindowTextA(hWnd, "second");
  EXPECT_STREQ(SDL_GetWindowTitle(sdl), "second");
  SetWindowPos(hWnd, HWND_NOTOPMOST, 50, 50, 400, 300, SWP_SHOWWINDOW | SWP_NOACTIVATE);
  SetWindowLongA(hWnd, GWL_STYLE, static_cast<LONG>(WS_VISIBLE | WS_POPUP));
  EXPECT_EQ(SDL_GetWindowFlags(sdl) & (SDL_WINDOW_HIDDEN | SDL_WINDOW_BORDERLESS), Uint32(SDL_WINDOW_BORDERLESS));
  int width = 0, height = 0;
  SDL_GetWindowSize(sdl, &width, &height);
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(400, 300));
  EXPECT_TRUE(DestroyWindow(hWnd));
}
