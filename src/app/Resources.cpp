// Menu 101 as a flat resource list, dialog 103 as a control table, and icon
// 102: the icon picture drawn once into 32 x 32 ARGB pixels.
#include "app/Resources.h"

#include <cstdint>
#include <iterator>

#include "app/IconPicture.h"
#include "device/D3DSettingsDlg.h"
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

// Dialog 103, "Direct3D Settings": the controls in tab order, places in
// dialog units. Labels carry the access keys of the lists that follow them.
using win32::DialogItem;
using win32::DialogItemKind;
constexpr DialogItemKind kDefault = DialogItemKind::DefaultButton;
constexpr DialogItemKind kButton = DialogItemKind::Button;
constexpr DialogItemKind kGroup = DialogItemKind::GroupBox;
constexpr DialogItemKind kLabel = DialogItemKind::Label;
constexpr DialogItemKind kList = DialogItemKind::DropDownList;
constexpr DialogItemKind kRadio = DialogItemKind::AutoRadioButton;

const DialogItem kSettingsItems[] = {
    {kDefault, IDOK, "OK", 368, 136, 50, 14},
    {kButton, IDCANCEL, "Cancel", 421, 136, 50, 14},
    {kGroup, -1, "Adapter and device", 7, 7, 196, 50},
    {kLabel, -1, "Display &Adapter:", 17, 20, 62, 8},
    {kList, IDC_ADAPTER_COMBO, nullptr, 83, 18, 114, 100},
    {kLabel, -1, "Render &Device:", 17, 38, 62, 8},
    {kList, IDC_DEVICE_COMBO, nullptr, 83, 36, 114, 100},
    {kGroup, -1, "Display mode settings", 7, 59, 196, 72},
    {kLabel, -1, "Adapter F&ormat:", 17, 75, 62, 8},
    {kList, IDC_ADAPTERFORMAT_COMBO, nullptr, 83, 73, 114, 100},
    {kLabel, -1, "&Resolution:", 17, 93, 62, 8},
    {kList, IDC_RESOLUTION_COMBO, nullptr, 83, 91, 64, 200},
    {kLabel, -1, "R&efresh Rate:", 17, 111, 62, 8},
    {kList, IDC_REFRESHRATE_COMBO, nullptr, 83, 109, 64, 200},
    {kRadio, IDC_WINDOW, "&Windowed", 151, 94, 47, 8},
    {kRadio, IDC_FULLSCREEN, "&Fullscreen", 151, 111, 47, 8},
    {kGroup, -1, "Device settings", 207, 7, 264, 124},
    {kLabel, -1, "&Back Buffer Format:", 219, 21, 95, 8},
    {kList, IDC_BACKBUFFERFORMAT_COMBO, nullptr, 320, 19, 142, 100},
    {kLabel, -1, "De&pth-Stencil Buffer Format:", 219, 39, 96, 8},
    {kList, IDC_DEPTHSTENCILFORMAT_COMBO, nullptr, 320, 37, 142, 100},
    {kLabel, -1, "&Multisample Type:", 219, 57, 96, 8},
    {kList, IDC_MULTISAMPLE_TYPE_COMBO, nullptr, 320, 55, 142, 100},
    {kLabel, -1, "Multisample &Quality:", 219, 75, 96, 8},
    {kList, IDC_MULTISAMPLE_QUALITY_COMBO, nullptr, 320, 73, 142, 100},
    {kLabel, -1, "&Vertex Processing:", 219, 93, 96, 8},
    {kList, IDC_VERTEXPROCESSING_COMBO, nullptr, 320, 91, 142, 100},
    {kLabel, -1, "Present &Interval:", 219, 111, 96, 8},
    {kList, IDC_PRESENTINTERVAL_COMBO, nullptr, 320, 109, 142, 100},
};

const win32::DialogResource kSettingsDialog = {
    "Direct3D Settings",
    WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER | DS_SETFONT,
    477,
    154,
    "Tahoma",
    8,
    kSettingsItems,
    std::size(kSettingsItems),
};

constexpr int kIconSize = 32;

}  // namespace

bool RegisterResources() {
  static std::uint32_t s_iconPixels[kIconSize * kIconSize];
  DrawIconPicture(s_iconPixels, kIconSize);
  const bool menu = win32::RegisterMenuResource(IDR_MAIN_MENU, kMainMenu, std::size(kMainMenu));
  const bool icon =
      win32::RegisterIconResource(IDI_MAIN_ICON, {kIconSize, kIconSize, s_iconPixels});
  const bool dialog = win32::RegisterDialogResource(IDD_DIRECT3D_SETTINGS, kSettingsDialog);
  return menu && icon && dialog;
}
