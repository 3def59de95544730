// The person's front end of a modal dialog: the dialog drawn with the shared
// ImGui overlay into its owner's window over the world's last frame, dimmed,
// one frame per turn of the dialog's loop, which swaps by itself since no
// Present runs meanwhile. Controls sit where the resource puts them, in
// dialog units (see kUnitX), scaled down when the window is smaller.
//
// Input is the dialog model's (Win32DialogNavigator.h): the overlay queues
// every event while the dialog is up, and each turn of the loop hands the
// model one of them, so that what a choice sets off (the lists it refills)
// runs before the next key, as posted messages come before input on the
// desktop. ImGui only draws.
#include <SDL.h>
#include <imgui.h>
#include <imgui_internal.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/gl/GLApi.h"
#include "platform/win32/Win32DialogState.h"
#include "platform/win32/overlay/Win32AccessLabel.h"
#include "platform/win32/overlay/Win32Overlay.h"
#include "platform/win32/overlay/Win32OverlayState.h"
#include "platform/win32/sdl/Win32DisplayScale.h"
#include "platform/win32/sdl/Win32Page.h"

using namespace win32::detail;
using win32::DialogControlInfo;
using win32::DialogItemKind;
using win32::overlay::DialogNavigator;

namespace {

// Pixels per dialog unit. Tahoma 8 at 96 dpi gives 1.5 across and 1.625
// down; ImGui's fixed-width default font needs about 2 across for the
// resource's labels to fit, and down keeps Tahoma's ratio so the layout
// keeps the resource's proportions.
constexpr float kUnitX = 2.0f;
constexpr float kUnitY = kUnitX * 1.625f / 1.5f;
constexpr float kMargin = 8.0f;  // pixels kept free around the dialog in a small window
// The window's colour under a dialog when there is no frame of the world to show.
constexpr float kBackground[3] = {0.18f, 0.2f, 0.24f};
// The world under a modal dialog is dimmed by this much black.
constexpr ImU32 kDim = IM_COL32(0, 0, 0, 96);

win32::DialogTurnHook s_turnHook = nullptr;
void* s_turnHookUser = nullptr;

DialogNavigator& Navigator() {
  return win32::overlay::State().dialog;
}

RECT ToRect(ImVec2 min, ImVec2 max) {
  return {static_cast<LONG>(min.x), static_cast<LONG>(min.y), static_cast<LONG>(max.x),
          static_cast<LONG>(max.y)};
}

ImU32 TextColour(bool enabled) {
  return ImGui::GetColorU32(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled);
}

void DrawGroupBox(const DialogControlInfo& control, ImVec2 min, ImVec2 size) {
  ImDrawList* list = ImGui::GetWindowDrawList();
  const float half = ImGui::GetFontSize() / 2;
  const win32::overlay::AccessLabel label = win32::overlay::MakeAccessLabel(control.text);
  const float width = ImGui::CalcTextSize(label.shown.c_str()).x;
  list->AddRect(ImVec2(min.x, min.y + half), ImVec2(min.x + size.x, min.y + size.y),
                ImGui::GetColorU32(ImGuiCol_Border));
  const float ui = win32::CurrentDisplayScale().ui;  // the caption's gap grows with the font
  list->AddRectFilled(ImVec2(min.x + 6 * ui, min.y),
                      ImVec2(min.x + (10 * ui) + width, min.y + 2 * half),
                      ImGui::GetColorU32(ImGuiCol_WindowBg));
  win32::overlay::DrawAccessLabel(list, ImVec2(min.x + 8 * ui, min.y), label, TextColour(true));
}

// Draws one control; gives where a click reaches it.
ImRect DrawControl(const DialogControlInfo& control, ImVec2 min, ImVec2 size) {
  ImDrawList* list = ImGui::GetWindowDrawList();
  ImGui::SetCursorScreenPos(min);
  ImGui::BeginDisabled(!control.enabled);
  ImRect place(min, ImVec2(min.x + size.x, min.y + size.y));
  switch (control.kind) {
    case DialogItemKind::GroupBox:
      DrawGroupBox(control, min, size);
      break;
    case DialogItemKind::Label:
      win32::overlay::DrawAccessLabel(list, min, win32::overlay::MakeAccessLabel(control.text),
                                      TextColour(true));
      break;
    case DialogItemKind::DropDownList: {
      // The closed box is one line high; the resource's height is the open list's.
      ImGui::SetNextItemWidth(size.x);
      const char* shown = control.selected >= 0 ? control.entries[control.selected].c_str() : "";
      if (ImGui::BeginCombo("##list", shown))
        ImGui::EndCombo();  // drawn only: it never opens itself
      place = ImRect(ImGui::GetItemRectMin(), ImGui::GetItemRectMax());
      break;
    }
    case DialogItemKind::AutoRadioButton: {
      ImGui::RadioButton("##radio", control.checked);
      const ImVec2 at(ImGui::GetItemRectMax().x + ImGui::GetStyle().ItemInnerSpacing.x,
                      ImGui::GetItemRectMin().y + ImGui::GetStyle().FramePadding.y);
      win32::overlay::DrawAccessLabel(list, at, win32::overlay::MakeAccessLabel(control.text),
                                      TextColour(control.enabled));
      break;
    }
    case DialogItemKind::DefaultButton:
    case DialogItemKind::Button:
      ImGui::Button(win32::overlay::MakeAccessLabel(control.text).shown.c_str(), size);
      if (control.kind == DialogItemKind::DefaultButton) {
        list->AddRect(ImGui::GetItemRectMin(), ImGui::GetItemRectMax(),
                      ImGui::GetColorU32(ImGuiCol_NavHighlight), 0.0f, 0, 2.0f);
      }
      place = ImRect(ImGui::GetItemRectMin(), ImGui::GetItemRectMax());
      break;
  }
  ImGui::EndDisabled();
  return place;
}

// The focus: a thin frame around the control, as the desktop's focus rectangle.
void DrawFocus(const ImRect& place) {
  ImGui::GetWindowDrawList()->AddRect(ImVec2(place.Min.x - 2, place.Min.y - 2),
                                      ImVec2(place.Max.x + 2, place.Max.y + 2),
                                      ImGui::GetColorU32(ImGuiCol_NavHighlight), 0.0f, 0, 1.0f);
}

// The open list: below its box (above it when the window has no room), its
// rows from the first shown, the highlighted one marked, a thumb on the
// right when not all rows fit.
void DrawOpenList(const DialogControlInfo& control, const ImRect& box) {
  DialogNavigator& nav = Navigator();
  const int count = static_cast<int>(control.entries.size());
  const int rows = std::min(count, DialogNavigator::VisibleRows(control));
  const float row = ImGui::GetTextLineHeightWithSpacing();
  const float height = rows * row + 2;
  float top = box.Max.y;
  if (top + height > ImGui::GetIO().DisplaySize.y) top = std::max(0.0f, box.Min.y - height);
  const ImRect panel(ImVec2(box.Min.x, top), ImVec2(box.Max.x, top + height));
  ImDrawList* list = ImGui::GetForegroundDrawList();
  list->AddRectFilled(panel.Min, panel.Max, ImGui::GetColorU32(ImGuiCol_PopupBg));
  list->AddRect(panel.Min, panel.Max, ImGui::GetColorU32(ImGuiCol_Border));
  const float padding = ImGui::GetStyle().FramePadding.x;
  for (int i = 0; i < rows; ++i) {
    const int entry = nav.FirstShown() + i;
    if (entry >= count) break;
    const ImVec2 min(panel.Min.x + 1, panel.Min.y + 1 + i * row);
    if (entry == nav.Highlight())
      list->AddRectFilled(min, ImVec2(panel.Max.x - 1, min.y + row),
                          ImGui::GetColorU32(ImGuiCol_HeaderHovered));
    list->AddText(ImGui::GetFont(), ImGui::GetFontSize(),
                  ImVec2(min.x + padding, min.y + (row - ImGui::GetFontSize()) / 2),
                  TextColour(true), control.entries[entry].c_str());
  }
  if (rows < count) {
    const float thumb = height * rows / count;
    const float at = panel.Min.y + (height - thumb) * nav.FirstShown() / (count - rows);
    list->AddRectFilled(ImVec2(panel.Max.x - 4, at), ImVec2(panel.Max.x - 1, at + thumb),
                        ImGui::GetColorU32(ImGuiCol_ScrollbarGrab));
  }
  nav.SetListPlace(
      ToRect(ImVec2(panel.Min.x, panel.Min.y + 1), ImVec2(panel.Max.x, panel.Max.y - 1)),
      static_cast<int>(row));
}

// The caption's close box, at its right end.
void DrawCloseBox() {
  const float side = ImGui::GetFrameHeight();
  const ImVec2 max(ImGui::GetWindowPos().x + ImGui::GetWindowSize().x,
                   ImGui::GetWindowPos().y + side);
  const ImVec2 min(max.x - side, max.y - side);
  ImDrawList* list = ImGui::GetWindowDrawList();
  list->PushClipRect(min, max);  // the caption lies outside the window's own clip
  const ImVec2 mouse = ImGui::GetIO().MousePos;
  if (mouse.x >= min.x && mouse.x < max.x && mouse.y >= min.y && mouse.y < max.y)
    list->AddRectFilled(min, max, ImGui::GetColorU32(ImGuiCol_ButtonHovered));
  const float inset = side * 0.3f;
  const ImU32 colour = ImGui::GetColorU32(ImGuiCol_Text);
  list->AddLine(ImVec2(min.x + inset, min.y + inset), ImVec2(max.x - inset, max.y - inset), colour);
  list->AddLine(ImVec2(min.x + inset, max.y - inset), ImVec2(max.x - inset, min.y + inset), colour);
  list->PopClipRect();
  Navigator().SetCloseBoxPlace(ToRect(min, max));
}

// Draws the dialog as it stands, centred in the window, over the window's
// menu bar and a dimmed world.
void DrawFrame(const win32::DialogInfo& info) {
  const win32::DialogResource& resource = *info.resource;
  const ImGuiIO& io = ImGui::GetIO();
  win32::overlay::MenuBar(info.owner);
  ImGui::GetBackgroundDrawList()->AddRectFilled(ImVec2(0, 0), io.DisplaySize, kDim);
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
                                 ImGuiWindowFlags_NoScrollbar | ImGuiWindowFlags_NoNav;
  DialogNavigator& nav = Navigator();
  nav.ForgetPlaces();
  ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(0, 0));
  if (ImGui::Begin(resource.caption, nullptr, flags)) {
    DrawCloseBox();
    // The text shrinks with the layout, or the labels would run into the lists.
    ImGui::SetWindowFontScale(shrink);
    const ImVec2 origin(ImGui::GetWindowPos().x, ImGui::GetWindowPos().y + title);
    ImRect openBox;
    for (std::size_t i = 0; i < info.controls.size(); ++i) {
      const DialogControlInfo& control = info.controls[i];
      const int index = static_cast<int>(i);
      ImGui::PushID(index);
      const ImRect place = DrawControl(
          control, ImVec2(origin.x + control.x * scale.x, origin.y + control.y * scale.y),
          ImVec2(control.cx * scale.x, control.cy * scale.y));
      ImGui::PopID();
      nav.SetControlPlace(index, ToRect(place.Min, place.Max));
      if (index == nav.Focused()) DrawFocus(place);
      if (index == nav.OpenList()) openBox = place;
    }
    if (nav.OpenList() >= 0) DrawOpenList(info.controls[nav.OpenList()], openBox);
  }
  ImGui::End();
  ImGui::PopStyleVar();
}

// Lets a dialog's draw leave the GL state of the context (the device's) as it
// found it: the device keeps its own account of what is bound.
struct SavedTarget {
  GLint drawFramebuffer = 0, readFramebuffer = 0, viewport[4] = {};
  GLboolean scissor = GL_FALSE;
  SavedTarget() {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawFramebuffer);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &readFramebuffer);
    glGetIntegerv(GL_VIEWPORT, viewport);
    scissor = glIsEnabled(GL_SCISSOR_TEST);
  }
  ~SavedTarget() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawFramebuffer));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer));
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    if (scissor) glEnable(GL_SCISSOR_TEST);
  }
};

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
  if (Navigator().Dialog() != dialog) Navigator().Open(dialog);
  if (!overlay::BeginFrame(info.owner)) return false;
  DrawFrame(info);
  const SavedTarget saved;
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(window, &w, &h);
  if (!overlay::DrawBackdrop(info.owner)) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, w, h);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(kBackground[0], kBackground[1], kBackground[2], 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  glViewport(0, 0, w, h);
  glDisable(GL_SCISSOR_TEST);
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
  page::AwaitAnimationFrame();
  return true;
}

}  // namespace win32

namespace win32::detail {

void DialogViewTurn(HWND dialog) {
  // Closing the window (or a request to end the process) answers Cancel.
  const auto& queue = GetState().queue;
  const bool closing = std::any_of(queue.begin(), queue.end(), [](const Posted& posted) {
    return posted.msg.message == WM_CLOSE;
  });
  if (closing || !ImGui::GetCurrentContext()) {
    EndDialog(dialog, IDCANCEL);
    return;
  }
  overlay::OverlayState& state = overlay::State();
  if (Navigator().Dialog() != dialog) {
    // From the first turn on the dialog has all input, the menu none.
    state.menu.Reset();
    overlay::SetModal(true);
    Navigator().Open(dialog);
  }
  if (!state.dialogInput.empty()) {
    const overlay::InputEvent event = state.dialogInput.front().input;
    state.dialogInput.pop_front();
    Navigator().Handle(event);
    return;
  }
  if (s_turnHook) s_turnHook(dialog, FindDialog(dialog)->turns - 1, s_turnHookUser);
  GetSource().Pump();
  if (!state.dialogInput.empty() || FindDialog(dialog)->ended) return;
  if (!DrawDialog(dialog, nullptr, nullptr, nullptr)) {
    EndDialog(dialog, IDCANCEL);
    return;
  }
  // A page waited for the browser's next frame in DrawDialog.
  if (!page::InPage()) SDL_Delay(10);
}

void DialogViewClosed() {
  overlay::OverlayState& state = overlay::State();
  overlay::SetModal(false);
  Navigator() = DialogNavigator{};
  // Input the dialog did not get to belongs to the window again, ahead of
  // anything that came after it.
  if (state.dialogInput.empty() || !SDL_WasInit(SDL_INIT_EVENTS)) {
    state.dialogInput.clear();
    return;
  }
  std::vector<SDL_Event> later(256);
  const int count = SDL_PeepEvents(later.data(), static_cast<int>(later.size()), SDL_GETEVENT,
                                   SDL_FIRSTEVENT, SDL_LASTEVENT);
  for (auto& pending : state.dialogInput) SDL_PushEvent(&pending.event);
  for (int i = 0; i < count; ++i) SDL_PushEvent(&later[i]);
  state.dialogInput.clear();
}

}  // namespace win32::detail
