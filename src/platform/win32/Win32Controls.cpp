// The dialog controls as data: drop-down lists with their entries, data words
// and selection; buttons with their check marks. What a person does with them
// comes in through UserSelect and UserClick, and what stands in them goes out
// through DescribeDialog (see Win32Dialogs.h).
#include <cstring>

#include "platform/win32/Win32DialogState.h"

using namespace win32::detail;

namespace {

using win32::DialogItemKind;

bool ValidIndex(const Control& control, WPARAM index) {
  return index < control.entries.size();
}

LRESULT ListMessage(Control& control, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case CB_ADDSTRING: {
      if (!lParam) return CB_ERR;
      control.entries.push_back({reinterpret_cast<LPCSTR>(lParam), 0});
      return static_cast<LRESULT>(control.entries.size() - 1);
    }
    case CB_SETITEMDATA:
      if (!ValidIndex(control, wParam)) return CB_ERR;
      control.entries[wParam].data = lParam;
      return CB_OKAY;
    case CB_GETITEMDATA:
      return ValidIndex(control, wParam) ? control.entries[wParam].data : CB_ERR;
    case CB_GETCOUNT:
      return static_cast<LRESULT>(control.entries.size());
    case CB_GETCURSEL:
      return control.selected;
    case CB_SETCURSEL:
      // An index out of range clears the selection, as on the platform.
      control.selected = ValidIndex(control, wParam) ? static_cast<int>(wParam) : CB_ERR;
      return control.selected;
    case CB_RESETCONTENT:
      control.entries.clear();
      control.selected = CB_ERR;
      return CB_OKAY;
    case CB_GETLBTEXTLEN:
      return ValidIndex(control, wParam) ? static_cast<LRESULT>(control.entries[wParam].text.size())
                                         : CB_ERR;
    case CB_GETLBTEXT: {
      if (!ValidIndex(control, wParam) || !lParam) return CB_ERR;
      const std::string& text = control.entries[wParam].text;
      std::memcpy(reinterpret_cast<char*>(lParam), text.c_str(), text.size() + 1);
      return static_cast<LRESULT>(text.size());
    }
    default:
      return 0;
  }
}

LRESULT ButtonMessage(HWND hWnd, Control& control, UINT message, WPARAM wParam) {
  switch (message) {
    case BM_GETCHECK:
      return control.checked ? BST_CHECKED : BST_UNCHECKED;
    case BM_SETCHECK:
      control.checked = wParam == BST_CHECKED;
      return 0;
    case BM_CLICK:
      win32::UserClick(hWnd);
      return 0;
    default:
      return 0;
  }
}

}  // namespace

namespace win32::detail {

std::map<HWND, Control>& Controls() {
  static auto* controls = new std::map<HWND, Control>;  // lives to the end
  return *controls;
}

Control* FindControl(HWND hWnd) {
  const auto found = Controls().find(hWnd);
  return found == Controls().end() ? nullptr : &found->second;
}

LRESULT CALLBACK ControlProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCDESTROY) {
    Controls().erase(hWnd);
    return 0;
  }
  Control* control = FindControl(hWnd);
  if (!control) return 0;
  if (control->kind == DialogItemKind::DropDownList)
    return ListMessage(*control, message, wParam, lParam);
  return ButtonMessage(hWnd, *control, message, wParam);
}

}  // namespace win32::detail

namespace win32 {

DialogInfo DescribeDialog(HWND dialog) {
  DialogInfo info;
  const Dialog* record = FindDialog(dialog);
  if (!record) return info;
  info.resource = record->resource;
  info.owner = record->owner;
  for (std::size_t i = 0; i < record->controls.size(); ++i) {
    const HWND handle = record->controls[i];
    const Control* control = FindControl(handle);
    const Window* window = FromHandle(handle);
    if (!control || !window || i >= record->resource->count) continue;
    const DialogItem& item = record->resource->items[i];
    DialogControlInfo out;
    out.handle = handle;
    out.kind = control->kind;
    out.id = item.id;
    out.text = window->title;
    out.x = item.x;
    out.y = item.y;
    out.cx = item.cx;
    out.cy = item.cy;
    out.enabled = IsWindowEnabled(handle) != FALSE;
    out.checked = control->checked;
    for (const ListEntry& entry : control->entries) out.entries.push_back(entry.text);
    out.selected = control->selected;
    info.controls.push_back(std::move(out));
  }
  return info;
}

void UserSelect(HWND list, int index) {
  Control* control = FindControl(list);
  if (!control || control->kind != DialogItemKind::DropDownList || !IsWindowEnabled(list)) return;
  if (index < 0 || static_cast<std::size_t>(index) >= control->entries.size()) return;
  control->selected = index;
  SendMessageA(control->dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(list));
}

void UserClick(HWND button) {
  Control* control = FindControl(button);
  if (!control || control->kind == DialogItemKind::DropDownList || !IsWindowEnabled(button)) return;
  if (control->kind == DialogItemKind::AutoRadioButton) {
    // The run of radio buttons around this one in tab order is its group.
    const Dialog* dialog = FindDialog(control->dialog);
    const auto& order = dialog->controls;
    std::size_t at = 0;
    while (order[at] != button) ++at;
    std::size_t first = at;
    while (first > 0 && FindControl(order[first - 1])->kind == DialogItemKind::AutoRadioButton)
      --first;
    for (std::size_t i = first; i < order.size(); ++i) {
      Control* other = FindControl(order[i]);
      if (other->kind != DialogItemKind::AutoRadioButton) break;
      other->checked = order[i] == button;
    }
  }
  SendMessageA(control->dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED),
               reinterpret_cast<LPARAM>(button));
}

}  // namespace win32
