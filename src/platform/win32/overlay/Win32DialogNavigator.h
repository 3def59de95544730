// The model of an open modal dialog: which control has the focus, which
// drop-down list is open and which of its entries is highlighted, changed by
// key and mouse events one at a time, as a native dialog answers them. It
// acts on the dialog only as a person's hand would, through win32::UserSelect
// and win32::UserClick (Win32Dialogs.h), so every change sends the same
// notification as a mouse choice. The drawer (Win32DialogView.cpp) shows
// this state and hands back where it drew each control.
//
// Keys:
//  - Tab / Shift+Tab: the next / previous enabled control, in the
//    resource's order.
//  - Enter: the focused push button, else the default button (OK); in an
//    open list it chooses the highlighted entry and closes the list.
//  - Escape: closes an open list, else Cancel. Space presses the focused
//    button or checks the focused radio button.
//  - A closed drop-down list with the focus: Up/Left and Down/Right step the
//    selection, Home/End go to the ends, PgUp/PgDn a list's height; a letter
//    or digit goes to the next entry that begins with it. Alt+Down and F4
//    open the list; in it the same keys move the highlight.
//  - Arrows on a radio button move to the next one of its group and check it.
//  - Alt and an underlined letter: a label's goes to the control after it, a
//    button's presses it, a radio button's checks it. Without Alt, where the
//    focus is not on a list, the letter alone does the same.
// The mouse presses buttons and radio buttons on release, opens a list on
// press and chooses in it on release, and the caption's close box is Cancel.
#pragma once

#include <map>

#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/overlay/Win32InputEvent.h"

namespace win32::overlay {

class DialogNavigator {
 public:
  // Starts on a dialog that has just opened: the focus on its first control
  // that takes it, no list open.
  void Open(HWND dialog);
  HWND Dialog() const { return dialog_; }

  // Acts on one event in the open dialog.
  void Handle(const InputEvent& event);

  int Focused() const { return focused_; }        // control index in tab order, or -1
  int OpenList() const { return openList_; }      // index of the open list, or -1
  int Highlight() const { return highlight_; }    // highlighted entry of the open list
  int FirstShown() const { return firstShown_; }  // the open list's top row

  // Rows an open list shows: its height in the resource, less the closed box.
  static int VisibleRows(const DialogControlInfo& list);

  // ---- where the last frame drew things, for the mouse --------------------
  void ForgetPlaces();
  void SetControlPlace(int index, const RECT& rect) { controls_[index] = rect; }
  void SetCloseBoxPlace(const RECT& rect) { closeBox_ = rect; }
  // The open list's rows: the first at `rows.top`, each `rowHeight` high.
  void SetListPlace(const RECT& rows, int rowHeight) {
    listRows_ = rows;
    rowHeight_ = rowHeight;
  }

 private:
  void KeyDown(const DialogInfo& info, const InputEvent& event);
  void OpenListKey(const DialogInfo& info, const InputEvent& event);
  void MouseDown(const DialogInfo& info, const InputEvent& event);
  void MouseUp(const DialogInfo& info, const InputEvent& event);

  void MoveFocus(const DialogInfo& info, int step);
  // Where a list key takes the selection (or highlight) `from`; -1 for a key
  // that does not move in a list.
  int ListTarget(const DialogControlInfo& list, int from, const InputEvent& event) const;
  void StepRadio(const DialogInfo& info, int step);
  bool AccessKeyGoesTo(const DialogInfo& info, BYTE key);
  void ShowList(const DialogControlInfo& list, int index);
  // Closes the open list, choosing its highlighted entry when `choose`.
  void CloseList(const DialogInfo& info, bool choose);
  void Press(const DialogInfo& info, int index);
  int ControlAt(const DialogInfo& info, int x, int y) const;
  int RowAt(const DialogInfo& info, int x, int y) const;

  HWND dialog_ = nullptr;
  int focused_ = -1;
  int openList_ = -1;
  int highlight_ = -1;
  int firstShown_ = 0;
  int pressed_ = -1;  // control under the left button's press
  bool pressedClose_ = false;
  std::map<int, RECT> controls_;
  RECT closeBox_ = {0, 0, 0, 0};
  RECT listRows_ = {0, 0, 0, 0};
  int rowHeight_ = 0;
};

}  // namespace win32::overlay
