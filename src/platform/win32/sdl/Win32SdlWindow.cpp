// The SDL windows behind window records, and the real message box. Shared by
// both back ends: a scripted run draws into real windows too.
#include <SDL.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/win32/Win32State.h"
#include "platform/win32/sdl/Win32DisplayScale.h"
#include "platform/win32/sdl/Win32Page.h"

namespace win32::detail {

namespace {

// Bordered when the style has a caption or a sizing frame; a WS_POPUP window
// without them is borderless.
bool Bordered(DWORD style) {
  return (style & (WS_CAPTION | WS_THICKFRAME)) != 0;
}

int AtLeastOne(LONG value) {
  return value > 0 ? static_cast<int>(value) : 1;
}

}  // namespace

bool SdlVideoAvailable() {
  if (SDL_WasInit(SDL_INIT_VIDEO)) return true;
  // Initialised once for the life of the process; the GL back end keeps its
  // own reference. No quit at the last window: a later window would pay for a
  // new connection to the display.
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
    std::fprintf(stderr, "win32: no window system: %s\n", SDL_GetError());
    return false;
  }
  return true;
}

SDL_Window* SdlCreate(const Window& window) {
  if (!SdlVideoAvailable()) return nullptr;
  // A compositor that scales windows gives the drawable its full pixel count.
  Uint32 flags = SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_ALLOW_HIGHDPI;
  if (window.style & WS_THICKFRAME) flags |= SDL_WINDOW_RESIZABLE;
  if (!Bordered(window.style)) flags |= SDL_WINDOW_BORDERLESS;
  const RECT& rect = window.rect;
  SDL_Window* sdl = SDL_CreateWindow(window.title.c_str(), rect.left, rect.top,
                                     AtLeastOne(rect.right - rect.left),
                                     AtLeastOne(rect.bottom - rect.top), flags);
  if (!sdl) {
    std::fprintf(stderr, "win32: CreateWindowExA: %s\n", SDL_GetError());
    return nullptr;
  }
  // One scale for the run, from the first window: the UI's font is built once.
  static bool s_scaleTaken = false;
  if (!s_scaleTaken) {
    s_scaleTaken = true;
    SetDisplayScale(QueryDisplayScale(sdl));
    SetMenuBarHeight(MenuBarHeightFor(CurrentDisplayScale()));
  }
  return sdl;
}

void SdlDestroy(SDL_Window* sdl) {
  SDL_DestroyWindow(sdl);
}

void SdlShow(SDL_Window* sdl, bool shown) {
  if (shown) {
    SDL_ShowWindow(sdl);
  } else {
    SDL_HideWindow(sdl);
  }
}

void SdlMinimize(SDL_Window* sdl) {
  SDL_MinimizeWindow(sdl);
}

void SdlRestore(SDL_Window* sdl) {
  SDL_RestoreWindow(sdl);
}

void SdlSetGeometry(SDL_Window* sdl, const RECT& rect) {
  SDL_SetWindowPosition(sdl, rect.left, rect.top);
  SDL_SetWindowSize(sdl, AtLeastOne(rect.right - rect.left), AtLeastOne(rect.bottom - rect.top));
}

void SdlSetTitle(SDL_Window* sdl, const std::string& title) {
  SDL_SetWindowTitle(sdl, title.c_str());
}

void SdlSetStyle(SDL_Window* sdl, DWORD style) {
  SDL_SetWindowBordered(sdl, Bordered(style) ? SDL_TRUE : SDL_FALSE);
  SDL_SetWindowResizable(sdl, (style & WS_THICKFRAME) ? SDL_TRUE : SDL_FALSE);
}

void SdlSetIcon(SDL_Window* sdl, HICON icon) {
  if (!icon || icon->pixels.empty()) return;
  SDL_Surface* surface =
      SDL_CreateRGBSurfaceWithFormatFrom(icon->pixels.data(), icon->width, icon->height, 32,
                                         icon->width * 4, SDL_PIXELFORMAT_ARGB8888);
  if (!surface) return;
  SDL_SetWindowIcon(sdl, surface);
  SDL_FreeSurface(surface);
}

bool SdlMessageBoxCanBeAnswered() {
  if (page::InPage()) return true;  // the page shows it to whoever has it open
  // KARVO_MESSAGE_BOX=1 or 0 decides outright. Otherwise a box is shown only
  // to a person: a terminal on stdin, a display that is not a virtual one of
  // xvfb-run, and no CI run.
  if (const char* setting = std::getenv("KARVO_MESSAGE_BOX")) return std::strcmp(setting, "1") == 0;
  if (std::getenv("CI")) return false;
  if (!isatty(STDIN_FILENO)) return false;
  const char* display = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  if ((!display || !*display) && (!wayland || !*wayland)) return false;
  const char* xauthority = std::getenv("XAUTHORITY");
  if (xauthority && std::strstr(xauthority, "xvfb-run")) return false;
  return true;
}

void SdlShowMessageBox(const char* caption, const char* text, UINT type) {
  Uint32 flags = SDL_MESSAGEBOX_INFORMATION;
  const UINT icon = type & 0xF0;
  if (page::ShowMessage(caption, text, icon == MB_ICONERROR)) return;
  if (icon == MB_ICONERROR) {
    flags = SDL_MESSAGEBOX_ERROR;
  } else if (icon == MB_ICONEXCLAMATION) {
    flags = SDL_MESSAGEBOX_WARNING;
  }
  SDL_ShowSimpleMessageBox(flags, caption, text, nullptr);
}

}  // namespace win32::detail
