// The model of an open modal dialog (see Win32DialogNavigator.h). It reads
// the dialog fresh at every event, since each choice refills the lists below
// it, and acts only through UserSelect and UserClick.
#include "platform/win32/overlay/Win32DialogNavigator.h"

#include <algorithm>
#include <cctype>

#include "platform/win32/overlay/Win32AccessLabel.h"

namespace win32::overlay {

namespace {

using Kind = InputEvent::Kind;
using Item = DialogItemKind;

// A drop-down list in dialog units: the closed box, then one row per line
// of the dialog's 8-unit font.
constexpr int kClosedBoxUnits = 12;
constexpr int kRowUnits = 8;

bool TakesFocus(const DialogControlInfo& control) {
  return control.kind != Item::Label && control.kind != Item::GroupBox;
}

bool IsButton(const DialogControlInfo& control) {
  return control.kind == Item::Button || control.kind == Item::DefaultButton;
}

bool IsArrow(BYTE vk) {
  return vk == VK_UP || vk == VK_DOWN || vk == VK_LEFT || vk == VK_RIGHT;
}

int IndexOfId(const DialogInfo& info, int id) {
  for (std::size_t i = 0; i < info.controls.size(); ++i) {
    if (info.controls[i].id == id) return static_cast<int>(i);
  }
  return -1;
}

const DialogControlInfo* At(const DialogInfo& info, int index) {
  return index >= 0 && index < static_cast<int>(info.controls.size()) ? &info.controls[index]
                                                                      : nullptr;
}

BYTE FirstKey(const std::string& text) {
  return text.empty() ? 0 : static_cast<BYTE>(std::toupper(static_cast<unsigned char>(text[0])));
}

}  // namespace

int DialogNavigator::VisibleRows(const DialogControlInfo& list) {
  return std::max(1, (list.cy - kClosedBoxUnits) / kRowUnits);
}

void DialogNavigator::Open(HWND dialog) {
  *this = DialogNavigator{};
  dialog_ = dialog;
  const DialogInfo info = DescribeDialog(dialog);
  MoveFocus(info, 1);
}

void DialogNavigator::Handle(const InputEvent& event) {
  const DialogInfo info = DescribeDialog(dialog_);
  // A refill may have emptied or disabled the open list.
  const DialogControlInfo* open = At(info, openList_);
  if (!open || !open->enabled || open->entries.empty()) openList_ = -1, open = nullptr;
  switch (event.kind) {
    case Kind::KeyDown:
      if (openList_ >= 0) {
        OpenListKey(info, event);
      } else {
        KeyDown(info, event);
      }
      break;
    case Kind::MouseMove:
      if (const int row = RowAt(info, event.x, event.y); row >= 0) highlight_ = row;
      break;
    case Kind::MouseDown:
      if (event.button == 0) MouseDown(info, event);
      break;
    case Kind::MouseUp:
      if (event.button == 0) MouseUp(info, event);
      break;
    case Kind::Wheel:
      if (open) {
        const int last = static_cast<int>(open->entries.size()) - VisibleRows(*open);
        firstShown_ = std::clamp(firstShown_ - event.wheel, 0, std::max(last, 0));
      }
      break;
    case Kind::FocusLost:
      openList_ = -1;
      break;
    case Kind::KeyUp:
      break;
  }
}

void DialogNavigator::KeyDown(const DialogInfo& info, const InputEvent& event) {
  const BYTE vk = event.vk;
  const DialogControlInfo* focused = At(info, focused_);
  switch (vk) {
    case VK_TAB:
      MoveFocus(info, event.shift ? -1 : 1);
      return;
    case VK_RETURN:
      // A focused push button answers Enter; otherwise the default button does.
      Press(info, focused && IsButton(*focused) ? focused_ : IndexOfId(info, IDOK));
      return;
    case VK_ESCAPE:
      Press(info, IndexOfId(info, IDCANCEL));
      return;
    case VK_SPACE:
      if (focused && focused->kind != Item::DropDownList) Press(info, focused_);
      return;
    default:
      break;
  }
  if (focused && focused->kind == Item::DropDownList) {
    if (vk == VK_F4 || (event.alt && (vk == VK_DOWN || vk == VK_UP))) {
      ShowList(*focused, focused_);
      return;
    }
    const int to = event.alt ? -1 : ListTarget(*focused, focused->selected, event);
    if (to >= 0) {
      if (to != focused->selected) UserSelect(focused->handle, to);
      return;
    }
  }
  if (focused && focused->kind == Item::AutoRadioButton && IsArrow(vk)) {
    StepRadio(info, vk == VK_UP || vk == VK_LEFT ? -1 : 1);
    return;
  }
  if (IsCharacterKey(vk) && !event.ctrl) AccessKeyGoesTo(info, vk);
}

void DialogNavigator::OpenListKey(const DialogInfo& info, const InputEvent& event) {
  const DialogControlInfo& list = info.controls[openList_];
  const BYTE vk = event.vk;
  if (vk == VK_RETURN || vk == VK_F4 || (event.alt && (vk == VK_DOWN || vk == VK_UP))) {
    CloseList(info, true);
  } else if (vk == VK_ESCAPE) {
    CloseList(info, false);
  } else if (vk == VK_TAB) {
    CloseList(info, true);
    MoveFocus(info, event.shift ? -1 : 1);
  } else if (const int to = ListTarget(list, highlight_, event); to >= 0) {
    highlight_ = to;
    // The highlight stays among the rows shown.
    const int rows = VisibleRows(list);
    firstShown_ = std::clamp(firstShown_, highlight_ - rows + 1, highlight_);
  }
}

int DialogNavigator::ListTarget(const DialogControlInfo& list, int from,
                                const InputEvent& event) const {
  const int count = static_cast<int>(list.entries.size());
  if (count == 0) return -1;
  const int page = std::max(1, VisibleRows(list) - 1);
  switch (event.vk) {
    case VK_UP:
    case VK_LEFT:
      return std::max(from - 1, 0);
    case VK_DOWN:
    case VK_RIGHT:
      return std::min(from + 1, count - 1);
    case VK_HOME:
      return 0;
    case VK_END:
      return count - 1;
    case VK_PRIOR:
      return std::max(from - page, 0);
    case VK_NEXT:
      return std::min(std::max(from, 0) + page, count - 1);
    default:
      break;
  }
  if (!IsCharacterKey(event.vk) || event.ctrl) return -1;
  // A typed character: the next entry after this one that begins with it.
  for (int i = 1; i <= count; ++i) {
    const int at = (std::max(from, -1) + i) % count;
    if (FirstKey(list.entries[at]) == event.vk) return at;
  }
  return std::max(from, 0);
}

void DialogNavigator::MoveFocus(const DialogInfo& info, int step) {
  const int count = static_cast<int>(info.controls.size());
  const int from = focused_ >= 0 ? focused_ : (step > 0 ? -1 : count);
  for (int i = 1; i <= count; ++i) {
    const int at = ((from + step * i) % count + count) % count;
    if (TakesFocus(info.controls[at]) && info.controls[at].enabled) {
      focused_ = at;
      return;
    }
  }
}

void DialogNavigator::StepRadio(const DialogInfo& info, int step) {
  // The group is the run of radio buttons around the focused one.
  int first = focused_, last = focused_;
  while (first > 0 && info.controls[first - 1].kind == Item::AutoRadioButton) --first;
  while (last + 1 < static_cast<int>(info.controls.size()) &&
         info.controls[last + 1].kind == Item::AutoRadioButton)
    ++last;
  const int size = last - first + 1;
  for (int i = 1; i < size; ++i) {
    const int at = first + ((focused_ - first + step * i) % size + size) % size;
    if (info.controls[at].enabled) {
      Press(info, at);
      return;
    }
  }
}

bool DialogNavigator::AccessKeyGoesTo(const DialogInfo& info, BYTE key) {
  for (std::size_t i = 0; i < info.controls.size(); ++i) {
    if (AccessKey(info.controls[i].text) != key) continue;
    // A label hands its key on to the control after it.
    int target = static_cast<int>(i);
    while (target < static_cast<int>(info.controls.size()) && !TakesFocus(info.controls[target]))
      ++target;
    const DialogControlInfo* control = At(info, target);
    if (!control || !control->enabled) return true;
    if (control->kind == Item::DropDownList) {
      focused_ = target;
    } else {
      Press(info, target);
    }
    return true;
  }
  return false;
}

void DialogNavigator::ShowList(const DialogControlInfo& list, int index) {
  if (!list.enabled || list.entries.empty()) return;
  openList_ = index;
  highlight_ = std::max(list.selected, 0);
  const int last = static_cast<int>(list.entries.size()) - VisibleRows(list);
  firstShown_ = std::clamp(highlight_, 0, std::max(last, 0));
}

void DialogNavigator::CloseList(const DialogInfo& info, bool choose) {
  const DialogControlInfo* list = At(info, openList_);
  const int chosen = highlight_;
  openList_ = -1;
  highlight_ = -1;
  if (choose && list && chosen >= 0 && chosen != list->selected) UserSelect(list->handle, chosen);
}

void DialogNavigator::Press(const DialogInfo& info, int index) {
  const DialogControlInfo* control = At(info, index);
  if (!control || !control->enabled) return;
  focused_ = index;
  UserClick(control->handle);
}

// ---- mouse ----------------------------------------------------------------------

void DialogNavigator::ForgetPlaces() {
  controls_.clear();
  closeBox_ = {0, 0, 0, 0};
  listRows_ = {0, 0, 0, 0};
  rowHeight_ = 0;
}

int DialogNavigator::ControlAt(const DialogInfo& info, int x, int y) const {
  for (const auto& [index, rect] : controls_) {
    const DialogControlInfo* control = At(info, index);
    if (control && TakesFocus(*control) && Inside(rect, x, y)) return index;
  }
  return -1;
}

int DialogNavigator::RowAt(const DialogInfo& info, int x, int y) const {
  const DialogControlInfo* list = At(info, openList_);
  if (!list || rowHeight_ <= 0 || !Inside(listRows_, x, y)) return -1;
  const int row = firstShown_ + (y - listRows_.top) / rowHeight_;
  return row < static_cast<int>(list->entries.size()) ? row : -1;
}

void DialogNavigator::MouseDown(const DialogInfo& info, const InputEvent& event) {
  pressed_ = -1;
  pressedClose_ = false;
  if (openList_ >= 0) {
    // In the list the release chooses; anywhere else the press only closes it.
    if (RowAt(info, event.x, event.y) < 0) CloseList(info, false);
    return;
  }
  if (Inside(closeBox_, event.x, event.y)) {
    pressedClose_ = true;
    return;
  }
  const int at = ControlAt(info, event.x, event.y);
  if (at < 0 || !info.controls[at].enabled) return;
  focused_ = at;
  if (info.controls[at].kind == Item::DropDownList) {
    ShowList(info.controls[at], at);
  } else {
    pressed_ = at;
  }
}

void DialogNavigator::MouseUp(const DialogInfo& info, const InputEvent& event) {
  if (openList_ >= 0) {
    if (const int row = RowAt(info, event.x, event.y); row >= 0) {
      highlight_ = row;
      CloseList(info, true);
    }
    return;
  }
  // A press counts where it is released: on the same control or close box.
  if (pressedClose_ && Inside(closeBox_, event.x, event.y)) {
    Press(info, IndexOfId(info, IDCANCEL));
  } else if (pressed_ >= 0 && ControlAt(info, event.x, event.y) == pressed_) {
    Press(info, pressed_);
  }
  pressed_ = -1;
  pressedClose_ = false;
}

}  // namespace win32::overlay
