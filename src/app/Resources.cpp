// Menu 101 as a flat resource list, and icon 102: the icon picture drawn once
// into 32 x 32 ARGB pixels.
#include "app/Resources.h"

#include <cstdint>
#include <iterator>

#include "app/IconPicture.h"
#include "platform/win32/Win32Resources.h"

namespace {

using win32::MenuEntry;
using win32::MenuEntryKind;

constexpr MenuEntryKind P = MenuEntryKind::Popup;
constexpr MenuEntryKind I = MenuEntryKind::Item;
constexpr MenuEntryKind S = MenuEntryKind::Separator;
constexpr MenuEntryKind E = MenuEntryKind::End;

// Item texts are exact, with the ampersand of the access key. The popups of
// "&Render States" sit at fixed positions that the render-state code greys
// by position: 0 Fill Mode, 2 Filter, 3 Mip Filter, 5 Color Blending Ops,
// 6 Render Mode.
const MenuEntry kMainMenu[] = {
    {P, 0, "&File"},
    {I, 40009, "&Change Device"},
    {S, 0, nullptr},
    {I, 40006, "E&xit"},
    {E, 0, nullptr},

    {P, 0, "&Camera"},
    {I, 40010, "&First Person Mode"},
    {I, 40011, "&Space Craft Mode"},
    {I, 40012, "&Third Person Mode"},
    {E, 0, nullptr},

    {P, 0, "&Render States"},
    {P, 0, "&Fill Mode"},
    {I, 40013, "&Solid"},
    {I, 40014, "&Wireframe"},
    {E, 0, nullptr},
    {S, 0, nullptr},
    {P, 0, "F&ilter"},
    {P, 0, "Mi&nification"},
    {I, 40031, "&None"},
    {I, 40032, "&Point"},
    {I, 40033, "&Linear"},
    {I, 40034, "&Anisotropic"},
    {E, 0, nullptr},
    {P, 0, "&Magnification"},
    {I, 40035, "&None"},
    {I, 40036, "&Point"},
    {I, 40037, "&Linear"},
    {I, 40038, "&Anisotropic"},
    {E, 0, nullptr},
    {S, 0, nullptr},
    {P, 0, "&Set Max Anisotropy"},
    {I, 40039, "&1"},
    {I, 40040, "&2"},
    {I, 40041, "&4"},
    {I, 40042, "&8"},
    {I, 40043, "&16"},
    {I, 40044, "&32"},
    {I, 40045, "&64"},
    {E, 0, nullptr},
    {E, 0, nullptr},
    {P, 0, "&Mip Filter"},
    {I, 40019, "&None"},
    {I, 40020, "&Point"},
    {I, 40021, "&Linear"},
    {E, 0, nullptr},
    {S, 0, nullptr},
    {P, 0, "&Color Blending Ops"},
    {I, 40024, "A&dd Signed"},
    {I, 40025, "Add Si&gned 2x"},
    {I, 40026, "&Add"},
    {I, 40027, "&Subtract"},
    {I, 40028, "&Modulate"},
    {I, 40029, "Modulate &2x"},
    {I, 40030, "Modulate &4x"},
    {E, 0, nullptr},
    {P, 0, "Render Mode"},
    {I, 40022, "&Single Pass"},
    {I, 40023, "&Multi Pass"},
    {E, 0, nullptr},
    {E, 0, nullptr},
};

constexpr int kIconSize = 32;

}  // namespace

bool RegisterResources() {
  static std::uint32_t s_iconPixels[kIconSize * kIconSize];
  DrawIconPicture(s_iconPixels, kIconSize);
  const bool menu = win32::RegisterMenuResource(IDR_MAIN_MENU, kMainMenu, std::size(kMainMenu));
  const bool icon = win32::RegisterIconResource(IDI_MAIN_ICON, {kIconSize, kIconSize, s_iconPixels});
  return menu && icon;
}
