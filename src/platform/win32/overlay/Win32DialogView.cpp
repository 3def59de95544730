// The person's front end of a modal dialog: the dialog drawn with the shared
// ImGui overlay into its owner's window, one frame per turn of the dialog's
// loop, which swaps by itself since no Present runs meanwhile. Controls sit
// where the resource puts them, in dialog units (see kUnitX), scaled down
// when the window is smaller. The keyboard
// works as on the desktop: Tab walks the controls in the resource's order,
// the arrows step through a list that has the focus, Alt and an access key
// go to the control of that key, Enter is the default button, Escape Cancel.
#include <SDL.h>
#include <epoxy/gl.h>
#include <imgui.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/win32/Win32DialogState.h"
#include "platform/win32/sdl/Win32DisplayScale.h"
#include "platform/win32/overlay/Win32Overlay.h"

using namespace win32::detail;
using win32::DialogControlInfo;
using win32::DialogItemKind;

namespace {

// Pixels per dialog unit. Tahoma 8 at 96 dpi gives 1.5 across and 1.625
// down; ImGui's fixed-width default font needs about 2 across for the
// resource's labels to fit, and down keeps Tahoma's ratio so the layout
// keeps the resource's proportions.
constexpr float kUnitX = 2.0f;
constexpr float kUnitY = kUnitX * 1.625f / 1.5f;
constexpr float kMargin = 8.0f;  // pixels kept free around the dialog in a small window
constexpr float kBackground[3] = {0.18f, 0.2f, 0.24f};

// What the keyboard asked for before the frame, carried into it.
struct Keyboard {
  int focused = -1;                   // control with the focus in the last frame
  int focusNext = -1;                 // control to give the focus to in this frame
  bool keys[SDL_NUM_SCANCODES] = {};  // held at the last turn
};
Keyboard s_keyboard;

win32::DialogTurnHook s_turnHook = nullptr;
void* s_turnHookUser = nullptr;

std::string WithoutAmpersand(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '&' && i + 1 < text.size()) ++i;
    out += text[i];
  }
  return out;
}

// The access key of a control text, upper case; 0 without one.
char AccessKeyOf(const std::string& text) {
  const std::size_t at = text.find('&');
  if (at == std::string::npos || at + 1 >= text.size() || text[at + 1] == '&') return 0;
  const char key = text[at + 1];
  return key >= 'a' && key <= 'z' ? static_cast<char>(key - 'a' + 'A') : key;
}

// Text with the access key underlined, as the desktop draws labels.
void DrawAccessText(ImDrawList* list, ImVec2 at, const std::string& text, ImU32 colour) {
  const std::string plain = WithoutAmpersand(text);
  list->AddText(at, colour, plain.c_str());
  const std::size_t key = text.find('&');
  if (key == std::string::npos || key + 1 >= text.size()) return;
  const float left = ImGui::CalcTextSize(plain.c_str(), plain.c_str() + key).x;
  const float right = ImGui::CalcTextSize(plain.c_str(), plain.c_str() + key + 1).x;
  const float y = at.y + ImGui::GetFontSize();
  list->AddLine(ImVec2(at.x + left, y), ImVec2(at.x + right, y), colour);
}

// A key that went down since the last turn; it is then kept from ImGui's
// own navigation, which would move the focus instead.
bool Pressed(SDL_Scancode key) {
  ImGuiIO& io = ImGui::GetIO();
  const bool down = io.KeysDown[key];
  const bool pressed = down && !s_keyboard.keys[key];
  s_keyboard.keys[key] = down;
  if (pressed) io.KeysDown[key] = false, s_keyboard.keys[key] = false;
  return pressed;
}

// Keys of the desktop dialog, before ImGui sees the frame's input.
void DesktopKeys(HWND dialog, const win32::DialogInfo& info) {
  const auto& controls = info.controls;
  const bool popup = win32::overlay::PopupOpen();
  const int focused = s_keyboard.focused;
  const DialogControlInfo* current =
      focused >= 0 && focused < static_cast<int>(controls.size()) ? &controls[focused] : nullptr;
  if (!popup && current && current->kind == DialogItemKind::DropDownList) {
    if (Pressed(SDL_SCANCODE_UP))
      win32::UserSelect(current->handle, std::max(current->selected - 1, 0));
    if (Pressed(SDL_SCANCODE_DOWN)) win32::UserSelect(current->handle, current->selected + 1);
  }
  if (!popup && Pressed(SDL_SCANCODE_TAB)) {
    // The next (Shift: the former) enabled control that takes the focus, in
    // the resource's order; ImGui's own tabbing reaches text fields only.
    const ImGuiIO& io = ImGui::GetIO();
    const int step = io.KeysDown[SDL_SCANCODE_LSHIFT] || io.KeysDown[SDL_SCANCODE_RSHIFT] ? -1 : 1;
    const int count = static_cast<int>(controls.size());
    for (int i = 1; i <= count; ++i) {
      const int next =
          ((focused < 0 ? (step > 0 ? -1 : 0) : focused) + step * i + 2 * count) % count;
      const DialogItemKind kind = controls[next].kind;
      if (controls[next].enabled && kind != DialogItemKind::Label &&
          kind != DialogItemKind::GroupBox) {
        s_keyboard.focusNext = next;
        break;
      }
    }
  }
  if (!popup && Pressed(SDL_SCANCODE_ESCAPE)) win32::UserClick(GetDlgItem(dialog, IDCANCEL));
  if (!popup && (Pressed(SDL_SCANCODE_RETURN) || Pressed(SDL_SCANCODE_KP_ENTER))) {
    // A focused push button answers Enter; otherwise the default button does.
    const bool button = current && (current->kind == DialogItemKind::Button ||
                                    current->kind == DialogItemKind::DefaultButton);
    win32::UserClick(button ? current->handle : GetDlgItem(dialog, IDOK));
  }
  // The frame's Alt flag comes with the next frame; the key table is now.
  const ImGuiIO& io = ImGui::GetIO();
  if (!io.KeysDown[SDL_SCANCODE_LALT] && !io.KeysDown[SDL_SCANCODE_RALT]) return;
  for (int scancode = SDL_SCANCODE_A; scancode <= SDL_SCANCODE_0; ++scancode) {
    const SDL_Keycode sym = SDL_GetKeyFromScancode(static_cast<SDL_Scancode>(scancode));
    if (!Pressed(static_cast<SDL_Scancode>(scancode)) || sym > 0x7F) continue;
    const char key = static_cast<char>(sym >= 'a' && sym <= 'z' ? sym - 'a' + 'A' : sym);
    for (std::size_t i = 0; i < controls.size(); ++i) {
      if (AccessKeyOf(controls[i].text) != key) continue;
      // A label hands its key on to the control after it.
      const std::size_t target = controls[i].kind == DialogItemKind::Label ? i + 1 : i;
      if (target >= controls.size()) break;
      s_keyboard.focusNext = static_cast<int>(target);
      if (controls[target].kind != DialogItemKind::DropDownList)
        win32::UserClick(controls[target].handle);
      break;
    }
  }
}

void DrawControl(const DialogControlInfo& control, int index, ImVec2 origin, ImVec2 scale) {
  ImDrawList* list = ImGui::GetWindowDrawList();
  const ImVec2 min(origin.x + control.x * scale.x, origin.y + control.y * scale.y);
  const ImVec2 size(control.cx * scale.x, control.cy * scale.y);
  const ImU32 text = ImGui::GetColorU32(ImGuiCol_Text);
  ImGui::SetCursorScreenPos(min);
  ImGui::PushID(index);
  if (s_keyboard.focusNext == index) ImGui::SetKeyboardFocusHere();
  ImGui::BeginDisabled(!control.enabled);
  switch (control.kind) {
    case DialogItemKind::GroupBox: {
      const float half = ImGui::GetFontSize() / 2;
      const std::string plain = WithoutAmpersand(control.text);
      const float width = ImGui::CalcTextSize(plain.c_str()).x;
      list->AddRect(ImVec2(min.x, min.y + half), ImVec2(min.x + size.x, min.y + size.y),
                    ImGui::GetColorU32(ImGuiCol_Border));
      const float ui = win32::CurrentDisplayScale().ui;  // the caption's gap grows with the font
      list->AddRectFilled(ImVec2(min.x + 6 * ui, min.y), ImVec2(min.x + (10 * ui) + width, min.y + 2 * half),
                          ImGui::GetColorU32(ImGuiCol_WindowBg));
      DrawAccessText(list, ImVec2(min.x + 8 * ui, min.y), control.text, text);
      break;
    }
    case DialogItemKind::Label:
      DrawAccessText(list, min, control.text, text);
      break;
    case DialogItemKind::DropDownList: {
      // The list's closed height is one line; cy is the open list's.
      ImGui::SetNextItemWidth(size.x);
      const char* shown = control.selected >= 0 ? control.entries[control.selected].c_str() : "";
      if (ImGui::BeginCombo("##list", shown)) {
        for (std::size_t i = 0; i < control.entries.size(); ++i) {
          const bool selected = static_cast<int>(i) == control.selected;
          if (ImGui::Selectable(control.entries[i].c_str(), selected))
            win32::UserSelect(control.handle, static_cast<int>(i));
          if (selected) ImGui::SetItemDefaultFocus();
        }
        ImGui::EndCombo();
      }
      break;
    }
    case DialogItemKind::AutoRadioButton: {
      if (ImGui::RadioButton("##radio", control.checked)) win32::UserClick(control.handle);
      const ImVec2 at(ImGui::GetItemRectMax().x + ImGui::GetStyle().ItemInnerSpacing.x,
                      ImGui::GetItemRectMin().y + ImGui::GetStyle().FramePadding.y);
      DrawAccessText(list, at, control.text,
                     ImGui::GetColorU32(control.enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled));
      break;
    }
    case DialogItemKind::DefaultButton:
    case DialogItemKind::Button:
      if (ImGui::Button(WithoutAmpersand(control.text).c_str(), size))
        win32::UserClick(control.handle);
      if (control.kind == DialogItemKind::DefaultButton) {
        list->AddRect(ImGui::GetItemRectMin(), ImGui::GetItemRectMax(),
                      ImGui::GetColorU32(ImGuiCol_NavHighlight), 0.0f, 0, 2.0f);
      }
      break;
  }
  if (ImGui::IsItemFocused() && control.kind != DialogItemKind::Label &&
      control.kind != DialogItemKind::GroupBox) {
    s_keyboard.focused = index;
  }
  ImGui::EndDisabled();
  ImGui::PopID();
}

// Draws the dialog as it stands, centred in the window; the frame is left in
// the window's back buffer.
void DrawFrame(const win32::DialogInfo& info) {
  const win32::DialogResource& resource = *info.resource;
  const ImGuiIO& io = ImGui::GetIO();
  const float title = ImGui::GetFrameHeight();
  // Dialog units grow with the UI's font on a dense display.
  const float ui = win32::CurrentDisplayScale().ui;
  const ImVec2 unit(kUnitX * ui, kUnitY * ui);
  const ImVec2 natural(resource.cx * unit.x, resource.cy * unit.y + title);
  const float fit = std::min({1.0f, (io.DisplaySize.x - 2 * kMargin) / natural.x,
                              (io.DisplaySize.y - 2 * kMargin) / natural.y});
  const float shrink = std::max(fit, 0.1f);
  const ImVec2 scale(unit.x * shrink, unit.y * shrink);
  const ImVec2 size(resource.cx * scale.x, resource.cy * scale.y + title);
  ImGui::SetNextWindowPos(ImVec2((io.DisplaySize.x - size.x) / 2, (io.DisplaySize.y - size.y) / 2));
  ImGui::SetNextWindowSize(size);
  ImGui::SetNextWindowFocus();
  const ImGuiWindowFlags flags = ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoMove |
                                 ImGuiWindowFlags_NoCollapse | ImGuiWindowFlags_NoSavedSettings |
                                 ImGuiWindowFlags_NoScrollbar;
  ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(0, 0));
  if (ImGui::Begin(resource.caption, nullptr, flags)) {
    // The text shrinks with the layout, or the labels would run into the lists.
    ImGui::SetWindowFontScale(shrink);
    const ImVec2 origin(ImGui::GetWindowPos().x, ImGui::GetWindowPos().y + title);
    for (std::size_t i = 0; i < info.controls.size(); ++i)
      DrawControl(info.controls[i], static_cast<int>(i), origin, scale);
  }
  ImGui::End();
  ImGui::PopStyleVar();
  s_keyboard.focusNext = -1;
}

}  // namespace

namespace win32 {

void SetDialogTurnHook(DialogTurnHook hook, void* user) {
  s_turnHook = hook;
  s_turnHookUser = user;
}

bool DrawDialog(HWND dialog, std::vector<std::uint8_t>* rgba, int* width, int* height) {
  const DialogInfo info = DescribeDialog(dialog);
  SDL_Window* window = SdlWindowOf(info.owner);
  SDL_GLContext context = SDL_GL_GetCurrentContext();
  if (!info.resource || !window || !context || SDL_GL_MakeCurrent(window, context) != 0)
    return false;
  overlay::SetModal(true);
  if (!overlay::BeginFrame(info.owner)) return false;
  ImGui::GetIO().ConfigFlags |= ImGuiConfigFlags_NavEnableKeyboard;
  DrawFrame(info);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(window, &w, &h);
  glViewport(0, 0, w, h);
  glDisable(GL_SCISSOR_TEST);
  glClearColor(kBackground[0], kBackground[1], kBackground[2], 1.0f);
  glClear(GL_COLOR_BUFFER_BIT);
  overlay::RenderFrame(info.owner);
  if (rgba && width && height) {
    rgba->assign(static_cast<std::size_t>(w) * h * 4, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, rgba->data());
    // GL's rows run from the bottom.
    for (int y = 0; y < h / 2; ++y)
      std::swap_ranges(rgba->begin() + y * w * 4, rgba->begin() + (y + 1) * w * 4,
                       rgba->begin() + (h - 1 - y) * w * 4);
    *width = w;
    *height = h;
  }
  SDL_GL_SwapWindow(window);
  return true;
}

}  // namespace win32

namespace win32::detail {

void DialogViewTurn(HWND dialog) {
  const DialogInfo info = DescribeDialog(dialog);
  // Closing the window (or a request to end the process) answers Cancel.
  const auto& queue = GetState().queue;
  const bool closing = std::any_of(queue.begin(), queue.end(),
                                   [](const MSG& msg) { return msg.message == WM_CLOSE; });
  if (closing || !ImGui::GetCurrentContext()) {
    EndDialog(dialog, IDCANCEL);
    return;
  }
  if (s_turnHook) s_turnHook(dialog, FindDialog(dialog)->turns - 1, s_turnHookUser);
  GetSource().Pump();
  DesktopKeys(dialog, info);
  if (FindDialog(dialog)->ended) return;
  if (!DrawDialog(dialog, nullptr, nullptr, nullptr)) {
    EndDialog(dialog, IDCANCEL);
    return;
  }
  SDL_Delay(10);
}

void DialogViewClosed() {
  overlay::SetModal(false);
  if (ImGui::GetCurrentContext()) ImGui::GetIO().ConfigFlags &= ~ImGuiConfigFlags_NavEnableKeyboard;
  s_keyboard = Keyboard{};
}

}  // namespace win32::detail
