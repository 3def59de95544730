// The menu bar's model (see Win32MenuNavigator.h). It reads the menus only
// through the Win32 menu calls, so what it opens and greys is what the
// program set.
#include "platform/win32/overlay/Win32MenuNavigator.h"

#include <string>

#include "platform/win32/overlay/Win32AccessLabel.h"

namespace win32::overlay {

namespace {

using Kind = InputEvent::Kind;

UINT StateOf(HMENU menu, int position) {
  return GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION);
}

bool IsSeparator(HMENU menu, int position) {
  return (StateOf(menu, position) & MF_SEPARATOR) != 0;
}

bool IsGreyed(HMENU menu, int position) {
  return (StateOf(menu, position) & (MF_GRAYED | MF_DISABLED)) != 0;
}

int Count(HMENU menu) {
  return menu ? GetMenuItemCount(menu) : 0;
}

BYTE KeyOf(HMENU menu, int position) {
  char text[256] = {};
  GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
  return AccessKey(text);
}

// The next entry from `from` in direction `step` (wrapping) that is not a
// separator; from -1 the first, -1 when there is none.
int NextEntry(HMENU menu, int from, int step) {
  const int count = Count(menu);
  int at = from < 0 ? (step > 0 ? -1 : count) : from;
  for (int i = 0; i < count; ++i) {
    at = (at + step + count) % count;
    if (!IsSeparator(menu, at)) return at;
  }
  return -1;
}

int LastEntry(HMENU menu) {
  return NextEntry(menu, -1, -1);
}

int TitleWithKey(HMENU bar, BYTE key) {
  for (int i = 0; i < Count(bar); ++i) {
    if (!IsGreyed(bar, i) && KeyOf(bar, i) == key) return i;
  }
  return -1;
}

}  // namespace

MenuNavigator::Outcome MenuNavigator::Handle(HMENU bar, const InputEvent& event) {
  if (!bar) {
    Reset();
    altAlone_ = false;
    return {};
  }
  switch (event.kind) {
    case Kind::KeyDown:
      return KeyDown(bar, event);
    case Kind::KeyUp: {
      if (event.vk != VK_MENU) return {Active()};
      // Alt tapped alone enters menu mode, or leaves it.
      const bool tap = altAlone_;
      altAlone_ = false;
      if (!tap) return {Active()};
      if (Active()) {
        Reset();
      } else if (Count(bar) > 0) {
        barHighlight_ = 0;
      }
      return {true};
    }
    case Kind::MouseMove:
      MouseMove(bar, event);
      return {};
    case Kind::MouseDown:
      altAlone_ = false;
      return MouseDown(bar, event);
    case Kind::MouseUp:
      return MouseUp(event);
    case Kind::Wheel:
      return {PopupOpen()};
    case Kind::FocusLost:
      Reset();
      altAlone_ = false;
      return {};
  }
  return {};
}

void MenuNavigator::Reset() {
  barHighlight_ = -1;
  levels_.clear();
}

MenuNavigator::Outcome MenuNavigator::KeyDown(HMENU bar, const InputEvent& event) {
  const BYTE vk = event.vk;
  if (vk == VK_MENU) {
    if (!event.repeat) altAlone_ = true;
    return {Active()};
  }
  altAlone_ = false;
  if (vk == VK_SHIFT || vk == VK_CONTROL) return {Active()};
  if (vk == VK_F10 && !event.shift && !event.ctrl) {
    if (Active()) {
      Reset();
    } else if (Count(bar) > 0) {
      barHighlight_ = 0;
    }
    return {true};
  }
  if (!Active()) {
    // Alt with a letter of the bar opens that title; anything else is the program's.
    const int title = event.alt && !event.ctrl && IsCharacterKey(vk) ? TitleWithKey(bar, vk) : -1;
    return title < 0 ? Outcome{} : OpenTitle(bar, title, true);
  }
  return PopupOpen() ? PopupKey(bar, vk) : BarKey(bar, vk);
}

MenuNavigator::Outcome MenuNavigator::BarKey(HMENU bar, BYTE vk) {
  const int count = Count(bar);
  switch (vk) {
    case VK_LEFT:
    case VK_RIGHT:
      barHighlight_ = (barHighlight_ + (vk == VK_RIGHT ? 1 : -1) + count) % count;
      return {true};
    case VK_DOWN:
    case VK_UP:
    case VK_RETURN:
      return OpenTitle(bar, barHighlight_, true);
    case VK_ESCAPE:
      Reset();
      return {true};
    default:
      if (IsCharacterKey(vk)) {
        const int title = TitleWithKey(bar, vk);
        if (title >= 0) return OpenTitle(bar, title, true);
      }
      return {true};
  }
}

MenuNavigator::Outcome MenuNavigator::PopupKey(HMENU bar, BYTE vk) {
  Level& top = levels_.back();
  switch (vk) {
    case VK_UP:
    case VK_DOWN:
      top.highlight = NextEntry(top.menu, top.highlight, vk == VK_DOWN ? 1 : -1);
      top.fresh = false;
      return {true};
    case VK_HOME:
    case VK_END:
      top.highlight = vk == VK_HOME ? NextEntry(top.menu, -1, 1) : LastEntry(top.menu);
      top.fresh = false;
      return {true};
    case VK_RIGHT:
      if (top.highlight >= 0 && GetSubMenu(top.menu, top.highlight) &&
          !IsGreyed(top.menu, top.highlight))
        return ChooseHighlighted();
      return StepTitle(bar, 1);
    case VK_LEFT:
      if (levels_.size() > 1) {
        levels_.pop_back();
        return {true};
      }
      return StepTitle(bar, -1);
    case VK_RETURN:
    case VK_SPACE:
      return ChooseHighlighted();
    case VK_ESCAPE:
      // The title stays highlighted when its popup closes: one more Escape leaves the bar.
      levels_.pop_back();
      return {true};
    default:
      return IsCharacterKey(vk) ? ChooseByKey(vk) : Outcome{true};
  }
}

MenuNavigator::Outcome MenuNavigator::OpenTitle(HMENU bar, int position, bool highlightFirst) {
  levels_.clear();
  barHighlight_ = position;
  if (IsGreyed(bar, position)) return {true};
  HMENU popup = GetSubMenu(bar, position);
  if (!popup) return Chosen(GetMenuItemID(bar, position));
  levels_.push_back({popup, highlightFirst ? NextEntry(popup, -1, 1) : -1, true});
  return {true};
}

MenuNavigator::Outcome MenuNavigator::StepTitle(HMENU bar, int step) {
  const int count = Count(bar);
  return OpenTitle(bar, (barHighlight_ + step + count) % count, true);
}

MenuNavigator::Outcome MenuNavigator::ChooseHighlighted() {
  const Level top = levels_.back();
  if (top.highlight < 0 || IsGreyed(top.menu, top.highlight)) return {true};
  if (HMENU popup = GetSubMenu(top.menu, top.highlight)) {
    levels_.back().fresh = false;
    levels_.push_back({popup, NextEntry(popup, -1, 1), true});
    return {true};
  }
  return Chosen(GetMenuItemID(top.menu, top.highlight));
}

MenuNavigator::Outcome MenuNavigator::ChooseByKey(BYTE key) {
  Level& top = levels_.back();
  std::vector<int> matches;
  for (int i = 0; i < Count(top.menu); ++i) {
    if (!IsSeparator(top.menu, i) && KeyOf(top.menu, i) == key) matches.push_back(i);
  }
  if (matches.empty()) return {true};
  if (matches.size() == 1) {
    top.highlight = matches.front();
    top.fresh = false;
    return ChooseHighlighted();
  }
  // Shared keys cycle: the next entry after the highlight that has the key.
  int next = matches.front();
  if (!top.fresh) {
    for (int match : matches) {
      if (match > top.highlight) {
        next = match;
        break;
      }
    }
  }
  top.highlight = next;
  top.fresh = false;
  return {true};
}

MenuNavigator::Outcome MenuNavigator::Chosen(UINT command) {
  Reset();
  return {true, command};
}

// ---- mouse ----------------------------------------------------------------------

void MenuNavigator::ForgetPlaces() {
  barPlace_ = {0, 0, 0, 0};
  titles_.clear();
  panels_.clear();
  entries_.clear();
}

bool MenuNavigator::EntryPlace(HMENU menu, int position, RECT* rect) const {
  const auto found = entries_.find({menu, position});
  if (found == entries_.end() || !rect) return false;
  *rect = found->second;
  return true;
}

int MenuNavigator::TitleAt(int x, int y) const {
  for (const auto& [position, rect] : titles_) {
    if (Inside(rect, x, y)) return position;
  }
  return -1;
}

bool MenuNavigator::EntryAt(int x, int y, std::size_t* level, int* position) const {
  // The innermost popup lies on top of the others.
  for (std::size_t i = levels_.size(); i-- > 0;) {
    const auto panel = panels_.find(levels_[i].menu);
    if (panel == panels_.end() || !Inside(panel->second, x, y)) continue;
    *level = i;
    *position = -1;
    for (int p = 0; p < Count(levels_[i].menu); ++p) {
      const auto entry = entries_.find({levels_[i].menu, p});
      if (entry != entries_.end() && Inside(entry->second, x, y)) *position = p;
    }
    return true;
  }
  return false;
}

void MenuNavigator::MouseMove(HMENU bar, const InputEvent& event) {
  const int title = TitleAt(event.x, event.y);
  if (title >= 0 && Active() && title != barHighlight_) {
    // Along the bar a highlight follows the pointer; an open popup gives way
    // to the title's.
    if (PopupOpen()) {
      OpenTitle(bar, title, false);
    } else {
      barHighlight_ = title;
    }
    return;
  }
  std::size_t level = 0;
  int position = -1;
  if (!EntryAt(event.x, event.y, &level, &position)) return;
  const bool alreadyOpen = position >= 0 && level + 1 < levels_.size() &&
                           levels_[level + 1].menu == GetSubMenu(levels_[level].menu, position);
  if (alreadyOpen) return;
  levels_.resize(level + 1);
  Level& at = levels_[level];
  at.highlight = position >= 0 && !IsSeparator(at.menu, position) ? position : -1;
  at.fresh = false;
  // Resting on a popup entry opens it.
  HMENU popup = at.highlight >= 0 && !IsGreyed(at.menu, at.highlight)
                    ? GetSubMenu(at.menu, at.highlight)
                    : nullptr;
  if (popup) levels_.push_back({popup, -1, false});
}

MenuNavigator::Outcome MenuNavigator::MouseDown(HMENU bar, const InputEvent& event) {
  bool& taken = pressTaken_[event.button % 3];
  taken = true;
  const int title = TitleAt(event.x, event.y);
  if (title >= 0) {
    // A second press on the open title closes it.
    if (PopupOpen() && title == barHighlight_) {
      Reset();
      return {true};
    }
    return OpenTitle(bar, title, false);
  }
  std::size_t level = 0;
  int position = -1;
  if (EntryAt(event.x, event.y, &level, &position)) return {true};  // chosen on release
  // A press anywhere else closes the menu, and goes no further; presses on the
  // bar's empty part are the bar's too.
  const bool wasActive = Active();
  Reset();
  taken = wasActive || Inside(barPlace_, event.x, event.y);
  return {taken};
}

MenuNavigator::Outcome MenuNavigator::MouseUp(const InputEvent& event) {
  // Only a release whose press was ours chooses: a press in the world (mouse
  // look) keeps its release whatever opened meanwhile.
  bool& taken = pressTaken_[event.button % 3];
  const bool ours = taken;
  taken = false;
  std::size_t level = 0;
  int position = -1;
  if (!ours || !EntryAt(event.x, event.y, &level, &position) || position < 0) return {ours};
  // A release on the popup entry whose popup is open keeps it so; on another
  // entry it chooses that one.
  HMENU popup = GetSubMenu(levels_[level].menu, position);
  if (popup && level + 1 < levels_.size() && levels_[level + 1].menu == popup) return {true};
  levels_.resize(level + 1);
  levels_[level].highlight = position;
  levels_[level].fresh = false;
  return ChooseHighlighted();
}

}  // namespace win32::overlay
