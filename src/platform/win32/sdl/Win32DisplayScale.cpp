// The desktop's scale for the layer's own UI (see Win32DisplayScale.h): read from
// the drawable's density, Xft.dpi or GDK_SCALE, rounded to quarters.
#include "platform/win32/sdl/Win32DisplayScale.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace win32 {
namespace {

// Dear ImGui's default font and frame padding, which the layout is made for.
constexpr float kFontPixels = 13.0f;
constexpr float kFramePadding = 3.0f;
constexpr float kDesktopDpi = 96.0f;

DisplayScale s_current;

// The value of "Xft.dpi:" in an X resource string, or 0.
float XftDpi(const char* resources) {
  constexpr char kKey[] = "Xft.dpi:";
  for (const char* line = resources; line && *line;) {
    if (std::strncmp(line, kKey, sizeof kKey - 1) == 0) return std::strtof(line + sizeof kKey - 1, nullptr);
    line = std::strchr(line, '\n');
    if (line) ++line;
  }
  return 0.0f;
}

float QuarterSteps(float factor) {
  if (!std::isfinite(factor)) return 1.0f;
  return std::clamp(std::round(factor * 4.0f) / 4.0f, 1.0f, 4.0f);
}

// The X server's resource string, through the libX11 that SDL has loaded for
// its own use: no X headers or link dependency of ours. Empty off X11.
struct XResources {
  void* library = nullptr;
  void* display = nullptr;
  char* text = nullptr;
  int (*close)(void*) = nullptr;

  XResources() {
    const char* driver = SDL_GetCurrentVideoDriver();
    if (!driver || std::strcmp(driver, "x11") != 0) return;
    library = SDL_LoadObject("libX11.so.6");
    if (!library) return;
    auto open = reinterpret_cast<void* (*)(const char*)>(SDL_LoadFunction(library, "XOpenDisplay"));
    auto read = reinterpret_cast<char* (*)(void*)>(SDL_LoadFunction(library, "XResourceManagerString"));
    close = reinterpret_cast<int (*)(void*)>(SDL_LoadFunction(library, "XCloseDisplay"));
    if (!open || !read || !close) return;
    display = open(nullptr);
    if (display) text = read(display);  // owned by the display
  }
  ~XResources() {
    if (display) close(display);
    if (library) SDL_UnloadObject(library);
  }
  XResources(const XResources&) = delete;
  XResources& operator=(const XResources&) = delete;
};

}  // namespace

DisplayScale ScaleFrom(const char* xResources, const char* gdkScale, int windowWidth,
                       int drawableWidth) {
  DisplayScale scale;
  if (windowWidth > 0 && drawableWidth > windowWidth)
    scale.pixels = static_cast<float>(drawableWidth) / static_cast<float>(windowWidth);
  if (scale.pixels > 1.0f) return scale;  // window units are already the compositor's points
  const float dpi = XftDpi(xResources);
  if (dpi > 0.0f) {
    scale.ui = QuarterSteps(dpi / kDesktopDpi);
  } else if (gdkScale && *gdkScale) {
    scale.ui = QuarterSteps(std::strtof(gdkScale, nullptr));
  }
  return scale;
}

DisplayScale QueryDisplayScale(SDL_Window* window) {
  int width = 0, height = 0, drawableWidth = 0, drawableHeight = 0;
  SDL_GetWindowSize(window, &width, &height);
  SDL_GL_GetDrawableSize(window, &drawableWidth, &drawableHeight);
  const XResources resources;
  return ScaleFrom(resources.text, std::getenv("GDK_SCALE"), width, drawableWidth);
}

void SetDisplayScale(const DisplayScale& scale) { s_current = scale; }

const DisplayScale& CurrentDisplayScale() { return s_current; }

float UiFontPixels(const DisplayScale& scale) { return kFontPixels * scale.ui; }

int MenuBarHeightFor(const DisplayScale& scale) {
  return static_cast<int>(UiFontPixels(scale) + 2.0f * kFramePadding * scale.ui);
}

}  // namespace win32
