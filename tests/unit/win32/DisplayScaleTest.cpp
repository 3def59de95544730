// The UI scale a desktop asks for: X resources first, then GDK_SCALE, and a
// compositor that scales the drawable overrides both; the bar's height follows.
#include <gtest/gtest.h>

#include "platform/win32/sdl/Win32DisplayScale.h"

namespace {

TEST(DisplayScale, DesktopSettingsGiveTheUiFactorAndTheBarHeight) {
  const struct { const char *resources, *gdkScale; int window, drawable; float ui, pixels; int bar; } cases[] = {
      {nullptr, nullptr, 1200, 1200, 1.0f, 1.0f, 19},
      {"Xft.dpi:\t192\n", nullptr, 1200, 1200, 2.0f, 1.0f, 38},
      {"Xft.antialias:\t1\nXft.dpi:\t144\nXft.hinting:\t1\n", nullptr, 1200, 1200, 1.5f, 1.0f, 28},
      {"Xft.dpi:\t110\n", nullptr, 1200, 1200, 1.25f, 1.0f, 23},   // to the nearest quarter
      {"Xft.dpi:\t72\n", nullptr, 1200, 1200, 1.0f, 1.0f, 19},     // never below the layout's own
      {"Xft.dpi:\t1000\n", nullptr, 1200, 1200, 4.0f, 1.0f, 76},   // nor above four
      {"Xft.dpi:\t96\n", "2", 1200, 1200, 1.0f, 1.0f, 19},         // the X resource wins
      {"Xcursor.size:\t24\n", "2", 1200, 1200, 2.0f, 1.0f, 38},
      {nullptr, "x", 1200, 1200, 1.0f, 1.0f, 19},
      {"Xft.dpi:\t192\n", "2", 1200, 2400, 1.0f, 2.0f, 19},        // the compositor scales
      {nullptr, nullptr, 0, 2400, 1.0f, 1.0f, 19},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.resources ? c.resources : "-") + " / " + (c.gdkScale ? c.gdkScale : "-"));
    const win32::DisplayScale s = win32::ScaleFrom(c.resources, c.gdkScale, c.window, c.drawable);
    EXPECT_EQ(s.ui, c.ui);
    EXPECT_EQ(s.pixels, c.pixels);
    EXPECT_EQ(win32::MenuBarHeightFor(s), c.bar);
  }
}

}  // namespace
