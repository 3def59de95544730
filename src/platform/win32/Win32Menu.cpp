// Menus, icons and cursors as plain data: the module's resources, the menu
// trees built from them, their enabled and checked states, and attaching a
// menu bar to a window. Drawing the bar is the overlay's work (see
// Win32Backend.h); here a menu is only what the calls can read and change.
#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/win32/Win32Resources.h"
#include "platform/win32/Win32State.h"

struct MenuItem {
  UINT id = 0;
  std::string text;
  bool separator = false;
  HMENU popup = nullptr;
  UINT state = 0;  // MF_GRAYED | MF_DISABLED | MF_CHECKED
};

struct HMENU__ {
  std::vector<MenuItem> items;
};

using namespace win32::detail;

namespace {

struct StoredEntry {
  win32::MenuEntryKind kind;
  UINT id;
  std::string text;
};

std::map<UINT, std::vector<StoredEntry>>& MenuResources() {
  static auto* resources = new std::map<UINT, std::vector<StoredEntry>>;  // lives to the end
  return *resources;
}

std::map<UINT, HICON__>& IconResources() {
  // Loaded icons are shared, as the platform's are; they live to the end.
  static auto* icons = new std::map<UINT, HICON__>;
  return *icons;
}

std::set<HMENU>& LiveMenus() {
  static auto* menus = new std::set<HMENU>;  // lives to the end
  return *menus;
}

HICON__ s_applicationIcon{0, 0, {}, true};
HICON__ s_arrowCursor{0, 0, {}, true};

bool IsModule(HINSTANCE hInstance) { return hInstance && hInstance == GetModuleHandleA(nullptr); }

// Builds the menu of entries[pos..] up to the End that closes it.
HMENU BuildMenu(const std::vector<StoredEntry>& entries, std::size_t& pos) {
  auto* menu = new HMENU__;
  LiveMenus().insert(menu);
  while (pos < entries.size()) {
    const StoredEntry& entry = entries[pos++];
    MenuItem item;
    switch (entry.kind) {
      case win32::MenuEntryKind::End:
        return menu;
      case win32::MenuEntryKind::Separator:
        item.separator = true;
        break;
      case win32::MenuEntryKind::Item:
        item.id = entry.id;
        item.text = entry.text;
        break;
      case win32::MenuEntryKind::Popup:
        item.text = entry.text;
        item.popup = BuildMenu(entries, pos);
        break;
    }
    menu->items.push_back(std::move(item));
  }
  return menu;
}

MenuItem* FindByCommand(HMENU menu, UINT id, HMENU* owner, int* position) {
  if (!win32::detail::IsMenu(menu)) return nullptr;
  for (std::size_t i = 0; i < menu->items.size(); ++i) {
    MenuItem& item = menu->items[i];
    if (!item.separator && !item.popup && item.id == id) {
      if (owner) *owner = menu;
      if (position) *position = static_cast<int>(i);
      return &item;
    }
    if (item.popup) {
      if (MenuItem* found = FindByCommand(item.popup, id, owner, position)) return found;
    }
  }
  return nullptr;
}

MenuItem* FindItem(HMENU menu, UINT item, UINT flags) {
  if (!win32::detail::IsMenu(menu)) return nullptr;
  if (flags & MF_BYPOSITION) {
    if (item >= menu->items.size()) return nullptr;
    return &menu->items[item];
  }
  return FindByCommand(menu, item, nullptr, nullptr);
}

}  // namespace

namespace win32 {

bool RegisterMenuResource(UINT id, const MenuEntry* entries, std::size_t count) {
  if (!entries || count == 0) return false;
  std::vector<StoredEntry> stored;
  int depth = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const MenuEntry& entry = entries[i];
    const bool needsText = entry.kind == MenuEntryKind::Item || entry.kind == MenuEntryKind::Popup;
    if (needsText && !entry.text) return false;
    if (entry.kind == MenuEntryKind::Popup) ++depth;
    if (entry.kind == MenuEntryKind::End && --depth < 0) return false;
    stored.push_back({entry.kind, entry.id, entry.text ? entry.text : ""});
  }
  if (depth != 0) return false;
  MenuResources()[id] = std::move(stored);
  return true;
}

bool RegisterIconResource(UINT id, const IconImage& image) {
  if (image.width <= 0 || image.height <= 0 || image.width > 1024 || image.height > 1024 ||
      !image.pixels) {
    return false;
  }
  HICON__ icon;
  icon.width = image.width;
  icon.height = image.height;
  icon.pixels.assign(image.pixels, image.pixels + image.width * image.height);
  IconResources()[id] = std::move(icon);
  return true;
}

}  // namespace win32

namespace win32::detail {

bool IsMenu(HMENU hMenu) { return hMenu && LiveMenus().count(hMenu) != 0; }

}  // namespace win32::detail

HMENU LoadMenuA(HINSTANCE hInstance, LPCSTR lpMenuName) {
  if (!IsModule(hInstance) || !IS_INTRESOURCE(lpMenuName)) return nullptr;
  auto found = MenuResources().find(static_cast<UINT>(reinterpret_cast<ULONG_PTR>(lpMenuName)));
  if (found == MenuResources().end()) return nullptr;
  std::size_t pos = 0;
  return BuildMenu(found->second, pos);
}

BOOL DestroyMenu(HMENU hMenu) {
  if (!IsMenu(hMenu)) return FALSE;
  LiveMenus().erase(hMenu);
  for (MenuItem& item : hMenu->items) {
    if (item.popup) DestroyMenu(item.popup);
  }
  delete hMenu;
  return TRUE;
}

BOOL SetMenu(HWND hWnd, HMENU hMenu) {
  Window* window = FromHandle(hWnd);
  if (!window || (hMenu && !IsMenu(hMenu))) return FALSE;
  window->menu = hMenu;
  // The client area gives room to the bar or takes it back.
  SendSizeIfChanged(*window, false);
  return TRUE;
}

HMENU GetMenu(HWND hWnd) {
  Window* window = FromHandle(hWnd);
  if (!window || !IsMenu(window->menu)) return nullptr;
  return window->menu;
}

HMENU GetSubMenu(HMENU hMenu, int nPos) {
  if (!IsMenu(hMenu) || nPos < 0 || static_cast<std::size_t>(nPos) >= hMenu->items.size()) {
    return nullptr;
  }
  HMENU popup = hMenu->items[nPos].popup;
  return IsMenu(popup) ? popup : nullptr;
}

int GetMenuItemCount(HMENU hMenu) {
  if (!IsMenu(hMenu)) return -1;
  return static_cast<int>(hMenu->items.size());
}

UINT GetMenuItemID(HMENU hMenu, int nPos) {
  if (!IsMenu(hMenu) || nPos < 0 || static_cast<std::size_t>(nPos) >= hMenu->items.size()) {
    return 0xFFFFFFFFu;
  }
  const MenuItem& item = hMenu->items[nPos];
  if (item.popup) return 0xFFFFFFFFu;
  return item.separator ? 0 : item.id;
}

UINT GetMenuState(HMENU hMenu, UINT uId, UINT uFlags) {
  const MenuItem* item = FindItem(hMenu, uId, uFlags);
  if (!item) return 0xFFFFFFFFu;
  UINT state = item->state;
  if (item->popup) state |= MF_POPUP;
  if (item->separator) state |= MF_SEPARATOR;
  return state;
}

int GetMenuStringA(HMENU hMenu, UINT uIDItem, LPSTR lpString, int cchMax, UINT flags) {
  const MenuItem* item = FindItem(hMenu, uIDItem, flags);
  if (!item) return 0;
  if (!lpString || cchMax <= 0) return static_cast<int>(item->text.size());
  const std::size_t count = std::min(item->text.size(), static_cast<std::size_t>(cchMax - 1));
  std::memcpy(lpString, item->text.data(), count);
  lpString[count] = '\0';
  return static_cast<int>(count);
}

BOOL EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable) {
  MenuItem* item = FindItem(hMenu, uIDEnableItem, uEnable);
  if (!item) return -1;
  const UINT mask = MF_GRAYED | MF_DISABLED;
  const UINT former = item->state & mask;
  item->state = (item->state & ~mask) | (uEnable & mask);
  return static_cast<BOOL>(former);
}

BOOL CheckMenuRadioItem(HMENU hmenu, UINT idFirst, UINT idLast, UINT idCheck, UINT flags) {
  HMENU owner = nullptr;
  int first = 0;
  int last = 0;
  int check = 0;
  if (flags & MF_BYPOSITION) {
    if (!IsMenu(hmenu)) return FALSE;
    owner = hmenu;
    first = static_cast<int>(idFirst);
    last = static_cast<int>(idLast);
    check = static_cast<int>(idCheck);
    if (last >= static_cast<int>(owner->items.size())) return FALSE;
  } else {
    // The group is the run of items between the first and the last command,
    // in the menu that holds them both.
    HMENU lastOwner = nullptr;
    HMENU checkOwner = nullptr;
    if (!FindByCommand(hmenu, idFirst, &owner, &first) ||
        !FindByCommand(hmenu, idLast, &lastOwner, &last) ||
        !FindByCommand(hmenu, idCheck, &checkOwner, &check) || owner != lastOwner ||
        owner != checkOwner) {
      return FALSE;
    }
  }
  if (first > last || check < first || check > last) return FALSE;
  for (int i = first; i <= last; ++i) {
    MenuItem& item = owner->items[i];
    if (i == check) {
      item.state |= MF_CHECKED;
    } else {
      item.state &= ~static_cast<UINT>(MF_CHECKED);
    }
  }
  return TRUE;
}

HICON LoadIconA(HINSTANCE hInstance, LPCSTR lpIconName) {
  if (!hInstance) return lpIconName == IDI_APPLICATION ? &s_applicationIcon : nullptr;
  if (!IsModule(hInstance) || !IS_INTRESOURCE(lpIconName)) return nullptr;
  auto found = IconResources().find(static_cast<UINT>(reinterpret_cast<ULONG_PTR>(lpIconName)));
  if (found == IconResources().end()) return nullptr;
  return &found->second;
}

BOOL DestroyIcon(HICON hIcon) {
  // Loaded icons are shared for the life of the process: nothing to free.
  return hIcon ? TRUE : FALSE;
}

HCURSOR LoadCursorA(HINSTANCE hInstance, LPCSTR lpCursorName) {
  if (hInstance || lpCursorName != IDC_ARROW) return nullptr;
  return &s_arrowCursor;
}
