// Module resources: what a resource compiler would link into the program.
// The program registers its menus, icons and dialogs once at start (src/app/Resources),
// and LoadMenuA / LoadIconA build handles from them by number. Registering a
// number again replaces the former data; the data must live for the process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/win32/windows.h"

namespace win32 {

// A menu as a flat list, like a resource script: Popup opens a level that a
// matching End closes; Item is a command; Separator a line.
enum class MenuEntryKind { Item, Separator, Popup, End };

struct MenuEntry {
  MenuEntryKind kind;
  UINT id;           // command number of an Item, 0 otherwise
  const char* text;  // item or popup text with its & access key; null for the others
};

// An icon image: width x height pixels, 0xAARRGGBB, rows from the top.
struct IconImage {
  int width;
  int height;
  const std::uint32_t* pixels;
};

// A dialog as a resource script writes it: the controls in tab order, their
// places in dialog units (a quarter of the font's mean character width
// across, an eighth of its height down).
enum class DialogItemKind { DefaultButton, Button, GroupBox, Label, DropDownList, AutoRadioButton };

struct DialogItem {
  DialogItemKind kind;
  int id;            // -1 for controls that are never asked for (labels, group boxes)
  const char* text;  // with its & access key; null for lists
  short x, y, cx, cy;
};

struct DialogResource {
  const char* caption;
  DWORD style;  // WS_ and DS_ flags of the dialog
  short cx, cy;
  const char* font;
  WORD pointSize;
  const DialogItem* items;
  std::size_t count;
};

// False when the data is malformed (unbalanced Popup/End, no text, empty).
bool RegisterMenuResource(UINT id, const MenuEntry* entries, std::size_t count);
bool RegisterIconResource(UINT id, const IconImage& image);
// False when the dialog has no items or an item that needs a text lacks it.
bool RegisterDialogResource(UINT id, const DialogResource& dialog);
// The registered dialog; null when there is none.
const DialogResource* FindDialogResource(UINT id);

}  // namespace win32
