// The menu bar's model: which title is highlighted, which popups are open and
// which entry of each is highlighted, changed by key and mouse events one at
// a time, as a native menu bar answers them. The drawer (Win32MenuBar.cpp)
// shows this state and hands back where it drew each title, popup and entry,
// which is what the mouse is matched against.
//
// Keys, as on the desktop:
//  - Alt pressed and released with nothing between, or F10, enters menu mode
//    with the first title highlighted; again, it leaves. Alt+letter opens the
//    popup of the title with that access key.
//  - On the bar: Left/Right move along it and wrap; Down, Up or Enter open
//    the highlighted title's popup with its first entry highlighted; a letter
//    opens the title that has it.
//  - In a popup: Up/Down move over the entries (separators skipped, greyed
//    entries highlighted but never chosen), Home/End to the first and last;
//    Right opens a sub-popup or goes on to the next title's popup, Left
//    closes a sub-popup or goes back to the previous title's; Enter or Space
//    chooses. A letter chooses the entry with that access key when it is the
//    only one, and moves the highlight to the next entry that has it when
//    several do (from the top while the highlight is still where the popup
//    opened it).
//  - Escape closes the innermost popup, then leaves the bar.
// While the menu is active it takes every key; an event it does not take
// (Escape with no menu active) belongs to the program. All on the main thread.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "platform/win32/overlay/Win32InputEvent.h"
#include "platform/win32/windows.h"

namespace win32::overlay {

class MenuNavigator {
 public:
  struct Outcome {
    bool taken = false;  // the event is the menu's: no window message comes of it
    UINT command = 0;    // the command chosen by it, or 0
  };

  struct Level {
    HMENU menu = nullptr;
    int highlight = -1;  // position of the highlighted entry, or -1
    bool fresh = true;   // the highlight is still where opening put it
  };

  // Acts on one event for the window whose menu bar is `bar` (null when the
  // window shows no bar: the menu then leaves and takes nothing).
  Outcome Handle(HMENU bar, const InputEvent& event);

  // Leaves the menu: no title highlighted, no popup open.
  void Reset();

  bool Active() const { return barHighlight_ >= 0; }
  bool PopupOpen() const { return !levels_.empty(); }
  // The highlighted title, -1 outside menu mode.
  int BarHighlight() const { return barHighlight_; }
  // The open popups, the bar's first.
  const std::vector<Level>& Levels() const { return levels_; }

  // ---- where the last frame drew things, for the mouse --------------------
  void ForgetPlaces();
  void SetBarPlace(const RECT& rect) { barPlace_ = rect; }
  void SetTitlePlace(int position, const RECT& rect) { titles_[position] = rect; }
  void SetPanelPlace(HMENU menu, const RECT& rect) { panels_[menu] = rect; }
  void SetEntryPlace(HMENU menu, int position, const RECT& rect) {
    entries_[{menu, position}] = rect;
  }
  bool EntryPlace(HMENU menu, int position, RECT* rect) const;

 private:
  Outcome KeyDown(HMENU bar, const InputEvent& event);
  Outcome BarKey(HMENU bar, BYTE vk);
  Outcome PopupKey(HMENU bar, BYTE vk);
  Outcome MouseDown(HMENU bar, const InputEvent& event);
  Outcome MouseUp(const InputEvent& event);
  void MouseMove(HMENU bar, const InputEvent& event);

  // Opens the popup of title `position`, with its first entry highlighted
  // when `highlightFirst`; a greyed title is only highlighted, and a title
  // that is a command is chosen.
  Outcome OpenTitle(HMENU bar, int position, bool highlightFirst);
  // Goes to the next (+1) or previous (-1) title's popup.
  Outcome StepTitle(HMENU bar, int step);
  // Chooses the highlighted entry of the innermost popup: opens it when it is
  // a popup, gives its command when it is one; nothing when greyed.
  Outcome ChooseHighlighted();
  Outcome ChooseByKey(BYTE key);
  Outcome Chosen(UINT command);
  // Which title, or which entry of which open popup, lies at a point.
  int TitleAt(int x, int y) const;
  bool EntryAt(int x, int y, std::size_t* level, int* position) const;

  int barHighlight_ = -1;
  std::vector<Level> levels_;
  bool altAlone_ = false;    // Alt is down and nothing else happened since
  bool pressTaken_[3] = {};  // the press of each button was ours: so is its release
  RECT barPlace_ = {0, 0, 0, 0};
  std::map<int, RECT> titles_;
  std::map<HMENU, RECT> panels_;
  std::map<std::pair<HMENU, int>, RECT> entries_;
};

}  // namespace win32::overlay
