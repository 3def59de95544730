// Menu and dialog texts with their access keys, as the platform writes them:
// "&File" shows "File" with the F underlined and F as its key; "&&" shows one
// ampersand. The models match keys with it, the drawers draw it.
#pragma once

#include <imgui.h>

#include <string>

#include "platform/win32/windows.h"

namespace win32::overlay {

struct AccessLabel {
  std::string shown;   // the text without its ampersands
  int underline = -1;  // the place of the underlined character in `shown`, or -1
  BYTE key = 0;        // the access key as a virtual key (upper case), or 0
};

AccessLabel MakeAccessLabel(const std::string& text);

// The access key of a text; 0 when it has none.
inline BYTE AccessKey(const std::string& text) {
  return MakeAccessLabel(text).key;
}

// Draws the label with ImGui's current font at `at`, its access key underlined.
void DrawAccessLabel(ImDrawList* list, const ImVec2& at, const AccessLabel& label, ImU32 colour);

}  // namespace win32::overlay
