// Back-end contract of the win32 layer's dialogs, for the front ends that let
// a person (the ImGui overlay) or a script (tests, the capture tool) work a
// modal dialog. System code never includes this.
//
// Contract:
//  - DialogBoxParamA makes the dialog and its controls as window records
//    without SDL windows of their own, sends WM_INITDIALOG, and then runs its
//    own loop: messages posted to the dialog or its controls are dispatched
//    one at a time, FIFO; whenever none waits, the front end gets one turn.
//    No other window's messages are taken and no frame of the program runs.
//  - The front end is the script's dialog callback while the scripted back
//    end is in force, else the person's, drawn with ImGui. A turn draws the dialog
//    (into the owner's SDL window, or the program's window when it has no
//    owner), reads the person's input and acts through UserSelect and
//    UserClick, as the real controls would. A front end that has nothing to
//    give (no SDL window or GL context to draw with, no callback, a callback
//    that answers false) makes the dialog end with IDCANCEL: a headless run
//    never waits.
//  - Descriptions are read fresh at each turn; handles stay good until the
//    dialog ends.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/win32/Win32Resources.h"
#include "platform/win32/windows.h"

namespace win32 {

struct DialogControlInfo {
  HWND handle = nullptr;
  DialogItemKind kind = DialogItemKind::Label;
  int id = -1;
  std::string text;
  short x = 0, y = 0, cx = 0, cy = 0;  // dialog units
  bool enabled = true;
  bool checked = false;              // radio buttons
  std::vector<std::string> entries;  // lists
  int selected = -1;                 // lists: CB_ERR when nothing is selected
};

struct DialogInfo {
  const DialogResource* resource = nullptr;
  HWND owner = nullptr;                     // the window it is drawn in
  std::vector<DialogControlInfo> controls;  // in tab order
};

// What stands in a dialog now; an empty record for a handle that is not an
// open dialog.
DialogInfo DescribeDialog(HWND dialog);

// A person's selection in a list: the entry becomes the selection and the
// dialog hears CBN_SELCHANGE at once. Nothing for a disabled list or a bad index.
void UserSelect(HWND list, int index);
// A person's click: a radio button is checked and the others of its run
// unchecked, then the dialog hears BN_CLICKED. Nothing when disabled.
void UserClick(HWND button);

// Draws one frame of the open dialog into its owner's window with the GL
// context that is current (the device's) and swaps; with rgba, width and
// height given, reads the frame back first (RGBA, top row first). False when
// the dialog or its window cannot be drawn.
bool DrawDialog(HWND dialog, std::vector<std::uint8_t>* rgba, int* width, int* height);

// Called at the start of each turn of the person's front end (not the
// script's), before it reads the input: tests push SDL events here. The turn
// counts from 0 in each dialog. Null removes it.
using DialogTurnHook = void (*)(HWND dialog, std::uint32_t turn, void* user);
void SetDialogTurnHook(DialogTurnHook hook, void* user);

}  // namespace win32
