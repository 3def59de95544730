// Internal to the win32 layer: what the dialog code (Win32Dialog.cpp) and the
// controls (Win32Controls.cpp) share. The dialog and its controls are window
// records; the data that only they have lives here, by handle.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/Win32State.h"

namespace win32::detail {

struct ListEntry {
  std::string text;
  LONG_PTR data = 0;
};

struct Control {
  HWND dialog = nullptr;
  DialogItemKind kind = DialogItemKind::Label;
  std::vector<ListEntry> entries;
  int selected = CB_ERR;
  bool checked = false;
};

struct Dialog {
  const DialogResource* resource = nullptr;
  DLGPROC proc = nullptr;
  HWND owner = nullptr;
  std::vector<HWND> controls;  // in tab order
  std::uint32_t turns = 0;     // of the front end, so far
  bool ended = false;
  INT_PTR result = 0;
};

std::map<HWND, Control>& Controls();
std::map<HWND, Dialog>& Dialogs();
Control* FindControl(HWND hWnd);
Dialog* FindDialog(HWND hWnd);

// Makes a record of a child window of the dialog whose procedure is `proc`.
HWND CreateChildRecord(const char* className, WNDPROC proc, DWORD style, const std::string& text,
                       LONG_PTR id);
// The procedure of every control record.
LRESULT CALLBACK ControlProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace win32::detail

namespace win32::detail {

// The script's turn in an open dialog (script/Win32Script.cpp): false when the
// script has nothing to do there.
bool ScriptDialogTurn(HWND dialog, std::uint32_t turn);

// The person's turn (overlay/Win32DialogView.cpp): reads the input, draws the dialog
// into its owner's window and swaps; ends the dialog with IDCANCEL when it
// cannot be drawn or the window is closing.
void DialogViewTurn(HWND dialog);
// The dialog's loop has ended: the overlay gives the input back.
void DialogViewClosed();

}  // namespace win32::detail
