// The menu bar of a window, drawn with ImGui from the menu data through the
// Win32 menu calls: popups, separators, item texts with their underlined
// access keys, radio marks (MF_CHECKED) as bullets on the left, greyed
// entries and popups (MF_GRAYED). A chosen item posts WM_COMMAND.
//
// Keyboard, as on the desktop: Alt+letter opens a popup of the bar; while a
// popup is open a letter chooses the entry of the innermost popup whose access
// key it is (opening it, when it is a popup), and Escape closes that popup.
#include <imgui.h>
#include <imgui_internal.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/overlay/Win32Overlay.h"
#include "platform/win32/overlay/Win32OverlayState.h"

namespace win32::overlay {

namespace {

// An entry's text as shown (ampersands taken out) and the place of the
// underlined letter in it, or -1.
struct Label {
  std::string shown;
  int underline = -1;
  char key = 0;
};

Label MakeLabel(const char* text) {
  Label label;
  for (const char* c = text; *c; ++c) {
    if (*c == '&' && c[1] == '&') {
      label.shown += '&';
      ++c;
    } else if (*c == '&' && c[1] && label.underline < 0) {
      label.underline = static_cast<int>(label.shown.size());
      label.key = static_cast<char>(std::toupper(static_cast<unsigned char>(c[1])));
    } else if (*c != '&') {
      label.shown += *c;
    }
  }
  return label;
}

std::string EntryText(HMENU menu, int position) {
  char text[256] = {};
  GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
  return text;
}

// Draws the line under the access key of a label whose text starts at `at`.
void Underline(const Label& label, ImVec2 at, bool enabled) {
  if (label.underline < 0) return;
  const std::string& s = label.shown;
  const float x0 = at.x + ImGui::CalcTextSize(s.c_str(), s.c_str() + label.underline).x;
  const float x1 =
      x0 + ImGui::CalcTextSize(s.c_str() + label.underline, s.c_str() + label.underline + 1).x;
  const float y = at.y + ImGui::GetFontSize();
  const ImU32 color = ImGui::GetColorU32(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled);
  ImGui::GetWindowDrawList()->AddLine(ImVec2(x0, y), ImVec2(x1 - 1.0f, y), color);
}

// A radio mark: a bullet in the column before the text.
void Bullet(ImVec2 at, bool enabled) {
  const float size = ImGui::GetFontSize();
  const ImU32 color = ImGui::GetColorU32(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled);
  ImGui::GetWindowDrawList()->AddCircleFilled(ImVec2(at.x + size * 0.4f, at.y + size * 0.5f),
                                              size * 0.2f, color);
}

void RecordPlace(HMENU menu, int position) {
  const ImVec2 min = ImGui::GetItemRectMin();
  const ImVec2 max = ImGui::GetItemRectMax();
  State().drawn[{menu, position}] = {static_cast<LONG>(min.x), static_cast<LONG>(min.y),
                                     static_cast<LONG>(max.x), static_cast<LONG>(max.y)};
}

// The column of bullets: every entry of a popup reserves it, so texts align.
constexpr const char* kMarkColumn = "  ";

void Popup(HWND hWnd, HMENU menu);

// One entry of a popup at `position`. A pending access key acts on it here
// when this popup was the innermost one.
void Entry(HWND hWnd, HMENU menu, int position, char key) {
  const UINT state = GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION);
  if (state & MF_SEPARATOR) {
    ImGui::Separator();
    return;
  }
  const Label label = MakeLabel(EntryText(menu, position).c_str());
  const bool enabled = (state & (MF_GRAYED | MF_DISABLED)) == 0;
  const bool chosenByKey = key != 0 && enabled && label.key == key;
  const std::string id = label.shown + "##" + std::to_string(position);
  const ImVec2 at = ImGui::GetCursorScreenPos();
  const float offsetLabel = ImGui::GetCurrentWindow()->DC.MenuColumns.OffsetLabel;
  HMENU popup = GetSubMenu(menu, position);
  if (popup) {
    if (chosenByKey) ImGui::OpenPopup(id.c_str());
    // Once the popup has ended, the last item is this entry again and the
    // drawing goes to this popup's window, not the child's.
    if (ImGui::BeginMenuEx(id.c_str(), kMarkColumn, enabled)) {
      Popup(hWnd, popup);
      ImGui::EndMenu();
    }
    RecordPlace(menu, position);
    Underline(label, ImVec2(at.x + offsetLabel, at.y), enabled);
    return;
  }
  const UINT command = GetMenuItemID(menu, position);
  const bool clicked = ImGui::MenuItemEx(id.c_str(), kMarkColumn, nullptr, false, enabled);
  RecordPlace(menu, position);
  Underline(label, ImVec2(at.x + offsetLabel, at.y), enabled);
  if (state & MF_CHECKED)
    Bullet(ImVec2(at.x + ImGui::GetCurrentWindow()->DC.MenuColumns.OffsetIcon, at.y), enabled);
  if (chosenByKey) ImGui::CloseCurrentPopup();  // the whole chain of popups
  if (clicked || chosenByKey) PostMessageA(hWnd, WM_COMMAND, command, 0);
}

void Popup(HWND hWnd, HMENU menu) {
  OverlayState& state = State();
  // Only the innermost popup of the last frame answers a key; the key is
  // used up either way.
  char key = 0;
  if (menu == state.innermost && state.accessKey) {
    key = state.accessKey;
    state.accessKey = 0;
  }
  state.innermostThisFrame = menu;
  const int count = GetMenuItemCount(menu);
  for (int i = 0; i < count; ++i) Entry(hWnd, menu, i, key);
}

}  // namespace

char AccessKey(const char* text) {
  return text ? MakeLabel(text).key : 0;
}

bool IsBarAccessKey(HWND hWnd, char key) {
  HMENU bar = win32::MenuBarHeight(hWnd) > 0 ? GetMenu(hWnd) : nullptr;
  const int count = bar ? GetMenuItemCount(bar) : 0;
  for (int i = 0; i < count; ++i) {
    const UINT state = GetMenuState(bar, static_cast<UINT>(i), MF_BYPOSITION);
    if (!(state & (MF_GRAYED | MF_DISABLED)) && AccessKey(EntryText(bar, i).c_str()) == key)
      return true;
  }
  return false;
}

bool EntryRect(HMENU menu, int position, RECT* rect) {
  const auto found = State().drawn.find({menu, position});
  if (found == State().drawn.end() || !rect) return false;
  *rect = found->second;
  return true;
}

void MenuBar(HWND hWnd) {
  HMENU bar = win32::MenuBarHeight(hWnd) > 0 ? GetMenu(hWnd) : nullptr;
  if (!bar) return;
  OverlayState& state = State();
  ImGuiContext& g = *ImGui::GetCurrentContext();
  const int open = g.OpenPopupStack.Size;
  const int close = state.closeAll ? open : std::min(state.escapes, open);
  if (close > 0) ImGui::ClosePopupToLevel(open - close, true);
  state.escapes = 0;
  state.closeAll = false;
  state.innermostThisFrame = nullptr;
  state.drawn.clear();
  if (!ImGui::BeginMainMenuBar()) return;
  const char altKey = state.altKey;
  state.altKey = 0;
  const int count = GetMenuItemCount(bar);
  for (int i = 0; i < count; ++i) {
    const UINT itemState = GetMenuState(bar, static_cast<UINT>(i), MF_BYPOSITION);
    HMENU popup = GetSubMenu(bar, i);
    const Label label = MakeLabel(EntryText(bar, i).c_str());
    const bool enabled = (itemState & (MF_GRAYED | MF_DISABLED)) == 0;
    const std::string id = label.shown + "##bar" + std::to_string(i);
    if (altKey && enabled && label.key == altKey) ImGui::OpenPopup(id.c_str());
    // In the bar the text starts half an item spacing after the cursor.
    ImVec2 at = ImGui::GetCursorScreenPos();
    at.x += IM_FLOOR(ImGui::GetStyle().ItemSpacing.x * 0.5f);
    at.y += ImGui::GetCurrentWindow()->DC.CurrLineTextBaseOffset;
    if (popup) {
      if (ImGui::BeginMenu(id.c_str(), enabled)) {
        Popup(hWnd, popup);
        ImGui::EndMenu();
      }
      RecordPlace(bar, i);
      Underline(label, at, enabled);
    } else if (ImGui::MenuItem(id.c_str(), nullptr, false, enabled)) {
      PostMessageA(hWnd, WM_COMMAND, GetMenuItemID(bar, i), 0);
    }
  }
  ImGui::EndMainMenuBar();
  // A key that found no open popup (the popup closed meanwhile) is dropped.
  state.accessKey = 0;
  state.innermost = state.innermostThisFrame;
}

}  // namespace win32::overlay
