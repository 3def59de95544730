// Modal dialogs: the dialog resources, DialogBoxParamA with its own message
// loop, and the dialog calls on control ids. The controls themselves are in
// Win32Controls.cpp; who answers a dialog is the front end's business (see
// Win32Dialogs.h).
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "platform/win32/Win32DialogState.h"

using namespace win32::detail;

namespace {

std::map<UINT, win32::DialogResource>& DialogResources() {
  static auto* resources = new std::map<UINT, win32::DialogResource>;  // lives to the end
  return *resources;
}

const char* ClassOf(win32::DialogItemKind kind) {
  switch (kind) {
    case win32::DialogItemKind::DropDownList:
      return "COMBOBOX";
    case win32::DialogItemKind::Label:
      return "STATIC";
    default:
      return "BUTTON";
  }
}

DWORD StyleOf(win32::DialogItemKind kind) {
  using K = win32::DialogItemKind;
  const DWORD child = WS_CHILD | WS_VISIBLE;
  switch (kind) {
    case K::DefaultButton:
      return child | WS_TABSTOP | BS_DEFPUSHBUTTON;
    case K::Button:
      return child | WS_TABSTOP | BS_PUSHBUTTON;
    case K::GroupBox:
      return child | BS_GROUPBOX;
    case K::DropDownList:
      return child | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST;
    case K::AutoRadioButton:
      return child | WS_TABSTOP | BS_AUTORADIOBUTTON;
    case K::Label:
    default:
      return child;
  }
}

// The dialog's own window procedure: hands every message to the dialog
// procedure, as the platform's dialog manager does.
LRESULT CALLBACK DialogWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  Dialog* dialog = FindDialog(hWnd);
  if (!dialog || !dialog->proc) return 0;
  return dialog->proc(hWnd, message, wParam, lParam);
}

// Takes the oldest message posted to the dialog or one of its controls.
bool TakeDialogMessage(HWND hDlg, const Dialog& dialog, MSG* out) {
  auto& queue = GetState().queue;
  const auto ours = [&](const Posted& posted) {
    return posted.msg.hwnd == hDlg || std::find(dialog.controls.begin(), dialog.controls.end(),
                                                posted.msg.hwnd) != dialog.controls.end();
  };
  const auto found = std::find_if(queue.begin(), queue.end(), ours);
  if (found == queue.end()) return false;
  *out = TakeOut(found);
  return true;
}

// The window a dialog without an owner is drawn in: the program's newest
// top-level window.
HWND DefaultOwner() {
  auto& windows = GetState().windows;
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    if (!(*it)->destroying && !((*it)->style & WS_CHILD) && !FindDialog(HandleOf(it->get())))
      return HandleOf(it->get());
  }
  return nullptr;
}

// A script that keeps answering without ending the dialog is stopped here.
constexpr std::uint32_t kScriptTurnLimit = 10000;

// One turn of whoever answers the dialog; Cancel when nobody does.
void FrontEndTurn(HWND hDlg) {
  if (win32::IsScripted()) {
    const std::uint32_t turn = FindDialog(hDlg)->turns++;
    if (turn < kScriptTurnLimit && ScriptDialogTurn(hDlg, turn)) return;
    std::fprintf(stderr, "win32 script: no action for the open dialog, pressing Cancel\n");
  } else {
    FindDialog(hDlg)->turns++;
    DialogViewTurn(hDlg);
    return;
  }
  EndDialog(hDlg, IDCANCEL);
}

}  // namespace

namespace win32 {

bool RegisterDialogResource(UINT id, const DialogResource& dialog) {
  if (!dialog.items || dialog.count == 0 || !dialog.caption) return false;
  for (std::size_t i = 0; i < dialog.count; ++i) {
    if (!dialog.items[i].text && dialog.items[i].kind != DialogItemKind::DropDownList) return false;
  }
  DialogResources()[id] = dialog;
  return true;
}

const DialogResource* FindDialogResource(UINT id) {
  const auto found = DialogResources().find(id);
  return found == DialogResources().end() ? nullptr : &found->second;
}

}  // namespace win32

namespace win32::detail {

std::map<HWND, Dialog>& Dialogs() {
  static auto* dialogs = new std::map<HWND, Dialog>;  // lives to the end
  return *dialogs;
}

Dialog* FindDialog(HWND hWnd) {
  const auto found = Dialogs().find(hWnd);
  return found == Dialogs().end() ? nullptr : &found->second;
}

HWND CreateChildRecord(const char* className, WNDPROC proc, DWORD style, const std::string& text,
                       LONG_PTR id) {
  State& state = GetState();
  auto& cls = state.classes[className];
  if (!cls) {
    // The system's own classes, registered on first use.
    cls = std::make_unique<WindowClass>();
    cls->name = className;
    cls->proc = proc;
  }
  auto record = std::make_unique<Window>();
  record->cls = cls.get();
  record->proc = proc;
  record->title = text;
  record->style = style;
  record->id = id;
  cls->windowCount++;
  const HWND handle = HandleOf(record.get());
  state.windows.push_back(std::move(record));
  return handle;
}

}  // namespace win32::detail

INT_PTR DialogBoxParamA(HINSTANCE hInstance, LPCSTR lpTemplateName, HWND hWndParent,
                        DLGPROC lpDialogFunc, LPARAM dwInitParam) {
  if (hInstance != GetModuleHandleA(nullptr) || !IS_INTRESOURCE(lpTemplateName) || !lpDialogFunc)
    return -1;
  const win32::DialogResource* resource =
      win32::FindDialogResource(static_cast<UINT>(reinterpret_cast<ULONG_PTR>(lpTemplateName)));
  if (!resource) return -1;

  const HWND owner = FromHandle(hWndParent) ? hWndParent : DefaultOwner();
  const HWND hDlg =
      CreateChildRecord("#32770", DialogWindowProc, resource->style, resource->caption, 0);
  Dialog& dialog = Dialogs()[hDlg];
  dialog.resource = resource;
  dialog.proc = lpDialogFunc;
  dialog.owner = owner;
  for (std::size_t i = 0; i < resource->count; ++i) {
    const win32::DialogItem& item = resource->items[i];
    const HWND control = CreateChildRecord(ClassOf(item.kind), ControlProc, StyleOf(item.kind),
                                           item.text ? item.text : "", item.id);
    Controls()[control] = Control{hDlg, item.kind, {}, CB_ERR, false};
    dialog.controls.push_back(control);
  }

  SendMessageA(hDlg, WM_INITDIALOG, 0, dwInitParam);
  // The modal loop: the dialog's messages in order; when none waits, the
  // front end's turn. The caller's loop stands still meanwhile.
  while (!FindDialog(hDlg)->ended) {
    MSG msg;
    if (TakeDialogMessage(hDlg, *FindDialog(hDlg), &msg)) {
      DispatchMessageA(&msg);
    } else {
      FrontEndTurn(hDlg);
    }
  }

  DialogViewClosed();
  const INT_PTR result = FindDialog(hDlg)->result;
  const std::vector<HWND> controls = FindDialog(hDlg)->controls;
  for (HWND control : controls) DestroyWindow(control);
  DestroyWindow(hDlg);
  Dialogs().erase(hDlg);
  // Messages still posted to the dialog have no one to go to now.
  auto& queue = GetState().queue;
  queue.erase(std::remove_if(queue.begin(), queue.end(),
                             [&](const Posted& posted) {
                               return posted.msg.hwnd == hDlg ||
                                      std::find(controls.begin(), controls.end(),
                                                posted.msg.hwnd) != controls.end();
                             }),
              queue.end());
  return result;
}

BOOL EndDialog(HWND hDlg, INT_PTR nResult) {
  Dialog* dialog = FindDialog(hDlg);
  if (!dialog) return FALSE;
  dialog->ended = true;
  dialog->result = nResult;
  return TRUE;
}

HWND GetDlgItem(HWND hDlg, int nIDDlgItem) {
  const Dialog* dialog = FindDialog(hDlg);
  if (!dialog) return nullptr;
  for (HWND control : dialog->controls) {
    if (GetDlgCtrlID(control) == nIDDlgItem) return control;
  }
  return nullptr;
}

int GetDlgCtrlID(HWND hWnd) {
  const Window* window = FromHandle(hWnd);
  return window && (window->style & WS_CHILD) ? static_cast<int>(window->id) : 0;
}

LRESULT SendDlgItemMessageA(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam, LPARAM lParam) {
  const HWND control = GetDlgItem(hDlg, nIDDlgItem);
  return control ? SendMessageA(control, Msg, wParam, lParam) : 0;
}

BOOL EnableWindow(HWND hWnd, BOOL bEnable) {
  Window* window = FromHandle(hWnd);
  if (!window) return FALSE;
  const BOOL wasDisabled = (window->style & WS_DISABLED) ? TRUE : FALSE;
  if (bEnable) {
    window->style &= ~static_cast<DWORD>(WS_DISABLED);
  } else {
    window->style |= WS_DISABLED;
  }
  return wasDisabled;
}

BOOL IsWindowEnabled(HWND hWnd) {
  const Window* window = FromHandle(hWnd);
  return window && !(window->style & WS_DISABLED) ? TRUE : FALSE;
}

BOOL CheckRadioButton(HWND hDlg, int nIDFirstButton, int nIDLastButton, int nIDCheckButton) {
  const Dialog* dialog = FindDialog(hDlg);
  if (!dialog) return FALSE;
  for (HWND control : dialog->controls) {
    const int id = GetDlgCtrlID(control);
    if (id < nIDFirstButton || id > nIDLastButton) continue;
    SendMessageA(control, BM_SETCHECK, id == nIDCheckButton ? BST_CHECKED : BST_UNCHECKED, 0);
  }
  return TRUE;
}

UINT IsDlgButtonChecked(HWND hDlg, int nIDButton) {
  return static_cast<UINT>(SendDlgItemMessageA(hDlg, nIDButton, BM_GETCHECK, 0, 0));
}

int lstrcmpA(LPCSTR lpString1, LPCSTR lpString2) {
  if (!lpString1 || !lpString2) return (lpString1 ? 1 : 0) - (lpString2 ? 1 : 0);
  const int order = std::strcmp(lpString1, lpString2);
  return (order > 0) - (order < 0);
}
