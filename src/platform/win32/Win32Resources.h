// Module resources: what a resource compiler would link into the program.
// The program registers its menus and icons once at start (src/app/Resources),
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

// False when the data is malformed (unbalanced Popup/End, no text, empty).
bool RegisterMenuResource(UINT id, const MenuEntry* entries, std::size_t count);
bool RegisterIconResource(UINT id, const IconImage& image);

}  // namespace win32
