// How large the layer draws its own UI (menu bar, dialogs) on the screen at
// hand. Two desktop settings ask for a larger UI:
//  - a compositor that scales windows (Wayland, macOS) gives the GL drawable
//    more pixels than the window has units; the back buffer takes the
//    drawable size, and the UI's font is rasterised at that density;
//  - an X11 desktop keeps one pixel a unit and says its density in the
//    Xft.dpi resource (96 is 1) or, failing that, in GDK_SCALE; the menu and
//    dialogs then grow by that factor, drawn with a font of that size.
// Mouse positions stay in window units, so mouse look keeps its speed in
// screen pixels wherever the compositor does not scale.
#pragma once

struct SDL_Window;

namespace win32 {

struct DisplayScale {
  float ui = 1.0f;      // UI size in window units against a 96-dpi screen
  float pixels = 1.0f;  // drawable pixels a window unit
};

// The scale that the desktop's settings give. xResources is the X server's
// resource string (null or empty when there is none), gdkScale the
// GDK_SCALE variable (null when unset). The UI factor is rounded to quarters
// and kept within 1 to 4: the layout is made for 96 dpi and no smaller.
DisplayScale ScaleFrom(const char* xResources, const char* gdkScale, int windowWidth,
                       int drawableWidth);

// ScaleFrom with this desktop's live settings and the window's sizes.
DisplayScale QueryDisplayScale(SDL_Window* window);

// The scale that the menu bar and dialogs are drawn at, taken when the first
// real window is made; 1 and 1 until then.
void SetDisplayScale(const DisplayScale& scale);
const DisplayScale& CurrentDisplayScale();

// Pixel size of the UI font and the bar's height in window units: a line of
// the font with the frame padding above and below.
float UiFontPixels(const DisplayScale& scale);
int MenuBarHeightFor(const DisplayScale& scale);

}  // namespace win32
