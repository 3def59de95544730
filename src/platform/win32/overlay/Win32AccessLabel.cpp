// Access-key texts (see Win32AccessLabel.h).
#include "platform/win32/overlay/Win32AccessLabel.h"

#include <imgui.h>

#include <cctype>

namespace win32::overlay {

AccessLabel MakeAccessLabel(const std::string& text) {
  AccessLabel label;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '&') {
      label.shown += c;
    } else if (i + 1 < text.size() && text[i + 1] == '&') {
      label.shown += '&';
      ++i;
    } else if (i + 1 < text.size() && label.underline < 0) {
      label.underline = static_cast<int>(label.shown.size());
      const unsigned char next = static_cast<unsigned char>(text[i + 1]);
      if (std::isalnum(next)) label.key = static_cast<BYTE>(std::toupper(next));
    }
  }
  return label;
}

void DrawAccessLabel(ImDrawList* list, const ImVec2& at, const AccessLabel& label, ImU32 colour) {
  const char* text = label.shown.c_str();
  list->AddText(ImGui::GetFont(), ImGui::GetFontSize(), at, colour, text);
  if (label.underline < 0) return;
  const float x0 = at.x + ImGui::CalcTextSize(text, text + label.underline).x;
  const float x1 = at.x + ImGui::CalcTextSize(text, text + label.underline + 1).x;
  const float y = at.y + ImGui::GetFontSize();
  list->AddLine(ImVec2(x0, y), ImVec2(x1 - 1.0f, y), colour);
}

}  // namespace win32::overlay
