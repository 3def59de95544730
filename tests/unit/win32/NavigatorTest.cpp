// The menu bar's and the dialog's keyboard models, fed the program's own menu
// and dialog resources. Every key is a quick tap: its press and release
// follow each other with nothing between, as automation and remote desktops
// send them. A row's keys are written as "alt+R i s 1": "alt+R" is R with Alt
// held, "alt" alone is the Alt key tapped.
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "app/Resources.h"
#include "device/D3DSettingsDlg.h"
#include "platform/win32/overlay/Win32DialogNavigator.h"
#include "platform/win32/overlay/Win32MenuNavigator.h"
#include "platform/win32/script/Win32Script.h"

namespace {

using win32::overlay::InputEvent;

// A close box drawn at the dialog's top left, ten pixels wide.
constexpr RECT kCloseBox = {0, 0, 10, 10};

// The events of one row: each token a press and a release.
std::vector<InputEvent> Taps(const std::string& keys) {
  static const std::map<std::string, BYTE> named = {
      {"alt", VK_MENU},     {"f4", VK_F4},       {"f10", VK_F10},     {"esc", VK_ESCAPE},
      {"enter", VK_RETURN}, {"space", VK_SPACE}, {"tab", VK_TAB},     {"up", VK_UP},
      {"down", VK_DOWN},    {"left", VK_LEFT},   {"right", VK_RIGHT}, {"home", VK_HOME},
      {"end", VK_END},      {"prior", VK_PRIOR}, {"next", VK_NEXT}};
  std::vector<InputEvent> events;
  std::istringstream in(keys);
  for (std::string token; in >> token;) {
    if (token == "closebox") {
      for (auto kind : {InputEvent::Kind::MouseDown, InputEvent::Kind::MouseUp})
        events.push_back(InputEvent::Mouse(kind, 5, 5));
      continue;
    }
    const bool alt = token.rfind("alt+", 0) == 0, shift = token.rfind("shift+", 0) == 0;
    const std::string key = token.substr(alt ? 4 : shift ? 6 : 0);
    const BYTE vk = named.count(key) ? named.at(key) : BYTE(std::toupper(key[0]));
    events.push_back(InputEvent::Key(true, vk, alt, shift));
    events.push_back(InputEvent::Key(false, vk, alt, shift));
  }
  return events;
}

std::string Name(BYTE vk) {
  return vk == VK_ESCAPE ? "esc" : vk == VK_UP ? "up" : std::string(1, char(vk));
}

HMENU MainMenu() {
  RegisterResources();
  static HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_MAIN_MENU));
  return menu;
}

TEST(MenuNavigator, KeysChooseAndHighlightAsANativeMenuBar) {
  const struct {
    const char* keys;
    std::vector<UINT> commands;   // chosen, in order
    int bar;                      // highlighted title afterwards, -1 out of menu mode
    std::vector<int> highlights;  // of the open popups, the bar's first
    const char* world;            // presses the menu left to the program
  } rows[] = {
      // clang-format off
      {"alt", {}, 0, {}, ""},
      {"f10", {}, 0, {}, ""},
      {"alt alt", {}, -1, {}, ""},
      {"alt right right right", {}, 0, {}, ""},  // three titles: back to File
      {"alt left", {}, 2, {}, ""},
      {"alt right right down right down enter", {40014}, -1, {}, ""},  // Wireframe
      {"alt right right down up right down enter", {40023}, -1, {}, ""},  // up wraps to Render Mode: Multi Pass
      {"alt+R i s 1", {}, 2, {2, 3, 0}, ""},  // "&1" and "&16" share the key: highlight, no choice
      {"alt+R i s 1 1", {}, 2, {2, 3, 4}, ""},
      {"alt+R i s 1 enter", {40039}, -1, {}, ""},
      {"alt+R i enter end enter", {}, 2, {2, 0, 3}, ""},  // Anisotropic is greyed (below)
      {"alt+R i left left", {}, 1, {0}, ""},  // Left closes a sub-popup, then goes to Camera
      {"alt+C down space", {40011}, -1, {}, ""},
      {"alt+F x", {40006}, -1, {}, ""},  // a letter right after Alt+F is the popup's
      {"alt+F esc", {}, 0, {}, ""},
      {"alt+F esc esc esc", {}, -1, {}, "esc"},  // one Escape a level: only the last reaches the world
      {"alt+Q up", {}, -1, {}, "Q up"},  // no title has Q
      // clang-format on
  };
  HMENU bar = MainMenu();
  EnableMenuItem(bar, 40034, MF_BYCOMMAND | MF_GRAYED);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.keys);
    win32::overlay::MenuNavigator nav;
    std::vector<UINT> commands;
    std::string world;
    const std::vector<InputEvent> events = Taps(row.keys);
    for (const InputEvent& event : events) {
      const auto outcome = nav.Handle(bar, event);
      if (outcome.command) commands.push_back(outcome.command);
      if (event.kind == InputEvent::Kind::KeyDown && !outcome.taken && event.vk != VK_MENU)
        world += (world.empty() ? "" : " ") + Name(event.vk);
    }
    EXPECT_EQ(commands, row.commands);
    EXPECT_EQ(nav.BarHighlight(), row.bar);
    std::vector<int> highlights;
    for (const auto& level : nav.Levels()) highlights.push_back(level.highlight);
    EXPECT_EQ(highlights, row.highlights);
    EXPECT_EQ(world, row.world);
  }
}

// The settings dialog's resource under a procedure that fills its lists with
// known entries and notes every notification, as "1001=2" (a list's new
// selection), "click 1006", "ok" or "cancel".
std::vector<std::string> s_notes;

INT_PTR CALLBACK NotingProc(HWND dlg, UINT message, WPARAM wParam, LPARAM) {
  static const char* const kWords[] = {
      "Alpha", "Beta",    "Bravo", "Charlie", "Delta",  "Echo",     "Foxtrot", "Golf",   "Hotel",
      "India", "Juliett", "Kilo",  "Lima",    "Mike",   "November", "Oscar",   "Papa",   "Quebec",
      "Romeo", "Sierra",  "Tango", "Uniform", "Victor", "Whiskey",  "X-ray",   "Yankee", "Zulu"};
  if (message == WM_INITDIALOG) {
    for (int id = IDC_ADAPTER_COMBO; id <= IDC_PRESENTINTERVAL_COMBO; ++id) {
      for (const char* word : kWords) SendDlgItemMessageA(dlg, id, CB_ADDSTRING, 0, LPARAM(word));
      SendDlgItemMessageA(dlg, id, CB_SETCURSEL, 0, 0);
    }
    EnableWindow(GetDlgItem(dlg, IDC_ADAPTERFORMAT_COMBO), FALSE);
    CheckRadioButton(dlg, IDC_WINDOW, IDC_FULLSCREEN, IDC_WINDOW);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (id == IDOK || id == IDCANCEL) {
    s_notes.push_back(id == IDOK ? "ok" : "cancel");
    EndDialog(dlg, id);
  } else if (HIWORD(wParam) == CBN_SELCHANGE) {
    s_notes.push_back(std::to_string(id) + "=" +
                      std::to_string(SendDlgItemMessageA(dlg, id, CB_GETCURSEL, 0, 0)));
  } else {
    s_notes.push_back("click " + std::to_string(id));
  }
  return TRUE;
}

TEST(DialogNavigator, QuickTapsMoveTheFocusAndChooseAsInANativeDialog) {
  const struct {
    const char* keys;
    const char* notes;  // what the dialog heard, in order
    int focus;          // control id with the focus afterwards
    int openList;       // id of the open list, 0 for none
  } rows[] = {
      // clang-format off
      {"tab tab tab tab", "", IDC_RESOLUTION_COMBO, 0},  // OK, Cancel, adapter, device; format is disabled
      {"shift+tab", "", IDC_PRESENTINTERVAL_COMBO, 0},
      {"alt+A down", "1001=1", IDC_ADAPTER_COMBO, 0},  // a label's key goes to its list
      {"alt+A up", "", IDC_ADAPTER_COMBO, 0},
      {"alt+A right right left end home", "1001=1 1001=2 1001=1 1001=26 1001=0", IDC_ADAPTER_COMBO, 0},
      {"alt+A next next next prior", "1001=10 1001=20 1001=26 1001=16", IDC_ADAPTER_COMBO, 0},
      {"alt+A b b b z 9", "1001=1 1001=2 1001=1 1001=26", IDC_ADAPTER_COMBO, 0},
      {"alt+A alt+down down down", "", IDC_ADAPTER_COMBO, IDC_ADAPTER_COMBO},
      {"alt+A alt+down down down enter", "1001=2", IDC_ADAPTER_COMBO, 0},  // Enter chooses in the open list
      {"alt+A f4 c enter", "1001=3", IDC_ADAPTER_COMBO, 0},
      {"alt+A f4 down esc", "", IDC_ADAPTER_COMBO, 0},
      {"alt+A f4 down esc esc", "cancel", IDCANCEL, 0},
      {"alt+A enter", "ok", IDOK, 0},
      {"tab enter", "cancel", IDCANCEL, 0},
      {"tab space", "cancel", IDCANCEL, 0},
      {"alt+W down down", "click 1006 click 1008 click 1006", IDC_WINDOW, 0},
      {"alt+F space", "click 1008 click 1008", IDC_FULLSCREEN, 0},
      {"alt+M", "", IDC_MULTISAMPLE_TYPE_COMBO, 0},
      {"closebox", "cancel", IDCANCEL, 0},
      // clang-format on
  };
  RegisterResources();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.keys);
    s_notes.clear();
    win32::script::Enable({.realWindows = false});
    win32::overlay::DialogNavigator nav;
    const std::vector<InputEvent> events = Taps(row.keys);
    // One event a turn, as the dialog's view hands them on: what an event
    // sets off is dispatched before the next.
    int focus = 0, open = 0;
    win32::script::SetDialogCallback([&](HWND dlg, std::uint32_t turn) {
      if (turn == 0) nav.Open(dlg), nav.SetCloseBoxPlace(kCloseBox);
      if (turn >= events.size()) return EndDialog(dlg, 0), true;
      nav.Handle(events[turn]);
      const win32::DialogInfo info = win32::DescribeDialog(dlg);
      focus = nav.Focused() >= 0 ? info.controls[nav.Focused()].id : 0;
      open = nav.OpenList() >= 0 ? info.controls[nav.OpenList()].id : 0;
      return true;
    });
    DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_DIRECT3D_SETTINGS), nullptr,
                    NotingProc, 0);
    std::string notes;
    for (const std::string& note : s_notes) notes += (notes.empty() ? "" : " ") + note;
    EXPECT_EQ(notes, row.notes);
    EXPECT_EQ(focus, row.focus);
    EXPECT_EQ(open, row.openList);
  }
  win32::script::Disable();
}

}  // namespace
