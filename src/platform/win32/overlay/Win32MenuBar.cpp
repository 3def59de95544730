// The menu bar of a window, drawn with ImGui's draw lists from the menu data
// (read through the Win32 menu calls) and the bar's model: titles, the open
// popups with separators, texts with their underlined access keys, radio
// marks (MF_CHECKED) as bullets on the left, arrows on popup entries, greyed
// entries (MF_GRAYED), and the highlight. It decides nothing: keys and clicks
// go to the model (Win32MenuNavigator.h), which is told here where each
// thing was drawn.
#include <imgui.h>
#include <imgui_internal.h>

#include <algorithm>
#include <string>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/overlay/Win32AccessLabel.h"
#include "platform/win32/overlay/Win32Overlay.h"
#include "platform/win32/overlay/Win32OverlayState.h"

namespace win32::overlay {

namespace {

AccessLabel LabelOf(HMENU menu, int position) {
  char text[256] = {};
  GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
  return MakeAccessLabel(text);
}

RECT ToRect(ImVec2 min, ImVec2 max) {
  return {static_cast<LONG>(min.x), static_cast<LONG>(min.y), static_cast<LONG>(max.x),
          static_cast<LONG>(max.y)};
}

ImU32 TextColour(bool enabled) {
  return ImGui::GetColorU32(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled);
}

// Sizes of a popup, from the style and font of the frame.
struct PopupMetrics {
  ImVec2 padding;
  float entry = 0, separator = 0, mark = 0, arrow = 0;
  PopupMetrics() {
    const ImGuiStyle& style = ImGui::GetStyle();
    padding = style.WindowPadding;
    entry = ImGui::GetFontSize() + style.ItemSpacing.y;
    separator = style.ItemSpacing.y + 1.0f;
    mark = ImGui::GetFontSize();
    arrow = ImGui::GetFontSize() + style.ItemSpacing.x;
  }
};

ImVec2 PopupSize(HMENU menu, const PopupMetrics& m) {
  float text = 0, height = 0;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    if (GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_SEPARATOR) {
      height += m.separator;
    } else {
      text = std::max(text, ImGui::CalcTextSize(LabelOf(menu, i).shown.c_str()).x);
      height += m.entry;
    }
  }
  return ImVec2(2 * m.padding.x + m.mark + text + m.arrow, 2 * m.padding.y + height);
}

struct DrawnPopup {
  ImRect panel;
  ImRect open;  // the entry whose popup is open beside it
};

// Draws the popup of `menu` with its top left at `at`, kept inside the
// window's height; `highlight` is the highlighted position or -1, `open`
// the entry whose sub-popup is open, or -1.
DrawnPopup DrawPopup(HMENU menu, ImVec2 at, int highlight, int open, MenuNavigator& nav) {
  const PopupMetrics m;
  const ImVec2 size = PopupSize(menu, m);
  const ImVec2 display = ImGui::GetIO().DisplaySize;
  at.y = std::max(0.0f, std::min(at.y, display.y - size.y));
  ImDrawList* list = ImGui::GetBackgroundDrawList();
  DrawnPopup drawn;
  drawn.panel = ImRect(at, ImVec2(at.x + size.x, at.y + size.y));
  const ImVec2 max = drawn.panel.Max;
  list->AddRectFilled(at, max, ImGui::GetColorU32(ImGuiCol_PopupBg));
  list->AddRect(at, max, ImGui::GetColorU32(ImGuiCol_Border));
  nav.SetPanelPlace(menu, ToRect(at, max));
  float y = at.y + m.padding.y;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    const UINT state = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
    if (state & MF_SEPARATOR) {
      const float middle = IM_FLOOR(y + m.separator / 2);
      list->AddLine(ImVec2(at.x + 1, middle), ImVec2(max.x - 1, middle),
                    ImGui::GetColorU32(ImGuiCol_Separator));
      y += m.separator;
      continue;
    }
    const ImRect entry(at.x + m.padding.x / 2, y, max.x - m.padding.x / 2, y + m.entry);
    if (i == highlight)
      list->AddRectFilled(entry.Min, entry.Max, ImGui::GetColorU32(ImGuiCol_HeaderHovered));
    if (i == open) drawn.open = entry;
    nav.SetEntryPlace(menu, i, ToRect(entry.Min, entry.Max));
    const bool enabled = (state & (MF_GRAYED | MF_DISABLED)) == 0;
    const float textTop = y + (m.entry - ImGui::GetFontSize()) / 2;
    const float left = at.x + m.padding.x;
    if (state & MF_CHECKED) {
      list->AddCircleFilled(ImVec2(left + m.mark * 0.4f, textTop + m.mark * 0.5f), m.mark * 0.2f,
                            TextColour(enabled));
    }
    DrawAccessLabel(list, ImVec2(left + m.mark, textTop), LabelOf(menu, i), TextColour(enabled));
    if (state & MF_POPUP) {
      ImGui::RenderArrow(list, ImVec2(max.x - m.padding.x - ImGui::GetFontSize(), textTop),
                         TextColour(enabled), ImGuiDir_Right);
    }
    y += m.entry;
  }
  return drawn;
}

// A sub-popup opens beside its entry, on the left when the right has no room.
ImVec2 BesideEntry(const DrawnPopup& parent, HMENU popup) {
  const PopupMetrics m;
  const float width = PopupSize(popup, m).x;
  float x = parent.panel.Max.x - 1;
  if (x + width > ImGui::GetIO().DisplaySize.x) x = std::max(0.0f, parent.panel.Min.x - width + 1);
  return ImVec2(x, parent.open.Min.y - m.padding.y);
}

// The position in `menu` of the entry that opens `popup`, or -1.
int PositionOf(HMENU menu, HMENU popup) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    if (GetSubMenu(menu, i) == popup) return i;
  }
  return -1;
}

}  // namespace

bool EntryRect(HMENU menu, int position, RECT* rect) {
  return State().menu.EntryPlace(menu, position, rect);
}

bool PopupOpen() {
  return State().menu.PopupOpen();
}

void MenuBar(HWND hWnd) {
  const int barHeight = win32::MenuBarHeight(hWnd);
  HMENU bar = barHeight > 0 ? GetMenu(hWnd) : nullptr;
  if (!bar) return;
  MenuNavigator& nav = State().menu;
  nav.ForgetPlaces();
  const ImGuiStyle& style = ImGui::GetStyle();
  const float height = static_cast<float>(barHeight);
  const float width = ImGui::GetIO().DisplaySize.x;
  ImDrawList* list = ImGui::GetBackgroundDrawList();
  list->AddRectFilled(ImVec2(0, 0), ImVec2(width, height), ImGui::GetColorU32(ImGuiCol_MenuBarBg));
  nav.SetBarPlace(ToRect(ImVec2(0, 0), ImVec2(width, height)));
  // Titles as ImGui lays out a main menu bar: text after half an item
  // spacing, the highlight over the text and that spacing on both sides.
  const float spacing = style.ItemSpacing.x;
  float x = std::max(style.WindowPadding.x, spacing);
  const float textTop = IM_FLOOR((height - ImGui::GetFontSize()) / 2);
  ImRect openTitle;
  for (int i = 0; i < GetMenuItemCount(bar); ++i) {
    const AccessLabel label = LabelOf(bar, i);
    const float textWidth = ImGui::CalcTextSize(label.shown.c_str()).x;
    const ImRect title(x - spacing / 2, 0, x + textWidth + spacing / 2, height);
    if (i == nav.BarHighlight()) {
      list->AddRectFilled(title.Min, title.Max, ImGui::GetColorU32(ImGuiCol_HeaderHovered));
      openTitle = title;
    }
    nav.SetTitlePlace(i, ToRect(title.Min, title.Max));
    nav.SetEntryPlace(bar, i, ToRect(title.Min, title.Max));
    const bool enabled =
        (GetMenuState(bar, static_cast<UINT>(i), MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED)) == 0;
    DrawAccessLabel(list, ImVec2(x, textTop), label, TextColour(enabled));
    x += textWidth + 2 * spacing;
  }
  // The open popups, each beside the entry that opened it.
  const auto& levels = nav.Levels();
  ImVec2 at(openTitle.Min.x, height);
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const bool deeper = i + 1 < levels.size();
    const int open = deeper ? PositionOf(levels[i].menu, levels[i + 1].menu) : -1;
    const DrawnPopup drawn = DrawPopup(levels[i].menu, at, levels[i].highlight, open, nav);
    if (deeper) at = BesideEntry(drawn, levels[i + 1].menu);
  }
}

}  // namespace win32::overlay
