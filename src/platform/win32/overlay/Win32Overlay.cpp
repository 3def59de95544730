// The overlay's ImGui context, its input from the layer's event hook, and the
// UI frames. Input is taken from events, not polled: events pushed by a test
// or already read by the layer never reach SDL's own state, a key that goes
// down and up within one frame would be lost to a poll, and mouse look warps
// the pointer, which a poll would mistake for motion. ImGui itself gets only
// the pointer's place, for hover colours: the menu and dialog models decide.
#include "platform/win32/overlay/Win32Overlay.h"

#include <SDL.h>
#include <imgui.h>

#include <algorithm>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32State.h"
#include "platform/win32/overlay/Win32OverlayRenderer.h"
#include "platform/win32/overlay/Win32OverlayState.h"
#include "platform/win32/sdl/Win32DisplayScale.h"

namespace win32::overlay {

namespace {

OverlayRenderer s_renderer;
BackdropHook s_backdrop = nullptr;
bool s_inFrame = false;
Uint64 s_lastFrame = 0;

HWND WindowOfId(Uint32 id) {
  return win32::WindowOf(SDL_GetWindowFromID(id));
}

// The menu bar the window shows: none in full screen.
HMENU BarOf(HWND hWnd) {
  return win32::MenuBarHeight(hWnd) > 0 ? GetMenu(hWnd) : nullptr;
}

int ButtonIndex(Uint8 button) {
  switch (button) {
    case SDL_BUTTON_LEFT:
      return 0;
    case SDL_BUTTON_RIGHT:
      return 1;
    case SDL_BUTTON_MIDDLE:
      return 2;
    default:
      return -1;
  }
}

// The models' view of an SDL event, and the window it belongs to; false for
// events that they do not take part in.
bool ToInput(const SDL_Event& event, InputEvent* input, HWND* hWnd) {
  using Kind = InputEvent::Kind;
  switch (event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP: {
      const SDL_Keysym& key = event.key.keysym;
      const BYTE vk =
          win32::detail::GenericKey(win32::detail::VirtualKeyOfSdl(key.sym, key.scancode));
      if (vk == 0) return false;
      *input = InputEvent::Key(event.type == SDL_KEYDOWN, vk, (key.mod & KMOD_ALT) != 0,
                               (key.mod & KMOD_SHIFT) != 0);
      input->ctrl = (key.mod & KMOD_CTRL) != 0;
      input->repeat = event.key.repeat != 0;
      *hWnd = WindowOfId(event.key.windowID);
      return true;
    }
    case SDL_MOUSEMOTION:
      *input = InputEvent::Mouse(Kind::MouseMove, event.motion.x, event.motion.y);
      *hWnd = WindowOfId(event.motion.windowID);
      return true;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: {
      const int button = ButtonIndex(event.button.button);
      if (button < 0) return false;
      *input =
          InputEvent::Mouse(event.type == SDL_MOUSEBUTTONDOWN ? Kind::MouseDown : Kind::MouseUp,
                            event.button.x, event.button.y, button);
      *hWnd = WindowOfId(event.button.windowID);
      return true;
    }
    case SDL_MOUSEWHEEL: {
      const ImVec2 at = ImGui::GetIO().MousePos;
      *input = InputEvent::Mouse(Kind::Wheel, static_cast<int>(at.x), static_cast<int>(at.y));
      input->wheel = event.wheel.y;
      *hWnd = WindowOfId(event.wheel.windowID);
      return true;
    }
    case SDL_WINDOWEVENT:
      if (event.window.event != SDL_WINDOWEVENT_FOCUS_LOST) return false;
      input->kind = Kind::FocusLost;
      *hWnd = WindowOfId(event.window.windowID);
      return true;
    default:
      return false;
  }
}

bool Hook(const SDL_Event& event, void*) {
  OverlayState& state = State();
  InputEvent input;
  HWND hWnd = nullptr;
  const bool window = event.type == SDL_WINDOWEVENT;
  if (!ToInput(event, &input, &hWnd)) return state.modal && !window;
  if (input.kind != InputEvent::Kind::KeyDown && input.kind != InputEvent::Kind::KeyUp &&
      input.kind != InputEvent::Kind::FocusLost)
    ImGui::GetIO().MousePos = ImVec2(static_cast<float>(input.x), static_cast<float>(input.y));
  if (state.modal) {
    state.dialogInput.push_back({input, event});
    return !window;
  }
  const MenuNavigator::Outcome outcome = state.menu.Handle(BarOf(hWnd), input);
  if (outcome.command) PostMessageA(hWnd, WM_COMMAND, outcome.command, 0);
  return outcome.taken;
}

void EnsureContext() {
  if (ImGui::GetCurrentContext()) return;
  IMGUI_CHECKVERSION();
  ImGui::CreateContext();
  ImGuiIO& io = ImGui::GetIO();
  io.IniFilename = nullptr;  // the program writes no file
  io.LogFilename = nullptr;
  io.BackendPlatformName = "karvo-win32";
  io.BackendRendererName = "karvo-gl33";
  ImGui::StyleColorsLight();
  ImGuiStyle& style = ImGui::GetStyle();
  style.PopupBorderSize = 1.0f;
  style.WindowRounding = 0.0f;
  style.PopupRounding = 0.0f;
  // The font is rasterised at the drawable's density and drawn back at the
  // window's units, so its glyphs land on whole pixels and stay sharp.
  const win32::DisplayScale& scale = win32::CurrentDisplayScale();
  style.ScaleAllSizes(scale.ui);
  ImFontConfig font;
  font.SizePixels = win32::UiFontPixels(scale) * scale.pixels;
  io.Fonts->AddFontDefault(&font);
  io.Fonts->Build();
  io.FontGlobalScale = 1.0f / scale.pixels;
  // The bar's height, one frame of this font, was set with the first window.
  win32::SetEventHook(&Hook, nullptr);
}

}  // namespace

OverlayState& State() {
  static OverlayState state;
  return state;
}

bool BeginFrame(HWND hWnd) {
  SDL_Window* window = win32::SdlWindowOf(hWnd);
  if (!window || s_inFrame) return false;
  EnsureContext();
  ImGuiIO& io = ImGui::GetIO();
  int width = 0;
  int height = 0;
  int drawableWidth = 0;
  int drawableHeight = 0;
  SDL_GetWindowSize(window, &width, &height);
  SDL_GL_GetDrawableSize(window, &drawableWidth, &drawableHeight);
  io.DisplaySize =
      ImVec2(static_cast<float>(std::max(width, 1)), static_cast<float>(std::max(height, 1)));
  io.DisplayFramebufferScale =
      ImVec2(width > 0 ? static_cast<float>(drawableWidth) / width : 1.0f,
             height > 0 ? static_cast<float>(drawableHeight) / height : 1.0f);
  const Uint64 now = SDL_GetPerformanceCounter();
  const double step = s_lastFrame
                          ? static_cast<double>(now - s_lastFrame) / SDL_GetPerformanceFrequency()
                          : 1.0 / 60;
  io.DeltaTime = static_cast<float>(std::max(step, 1e-4));
  s_lastFrame = now;
  ImGui::NewFrame();
  s_inFrame = true;
  return true;
}

void RenderFrame(HWND hWnd) {
  if (!s_inFrame) return;
  s_inFrame = false;
  ImGui::Render();
  SDL_Window* window = win32::SdlWindowOf(hWnd);
  if (!window) return;
  int drawableWidth = 0;
  int drawableHeight = 0;
  SDL_GL_GetDrawableSize(window, &drawableWidth, &drawableHeight);
  s_renderer.Render(*ImGui::GetDrawData(), drawableWidth, drawableHeight);
}

void DrawWindowOverlay(HWND hWnd) {
  if (win32::MenuBarHeight(hWnd) == 0) {
    // No bar (full screen): the menu leaves, and keys go to the program again.
    State().menu.Reset();
    return;
  }
  if (!BeginFrame(hWnd)) return;
  MenuBar(hWnd);
  RenderFrame(hWnd);
}

void SetModal(bool modal) {
  State().modal = modal;
}

void SetBackdropHook(BackdropHook hook) {
  s_backdrop = hook;
}

bool DrawBackdrop(HWND hWnd) {
  return s_backdrop && s_backdrop(hWnd);
}

void ReleaseGL() {
  if (ImGui::GetCurrentContext()) s_renderer.Release();
}

}  // namespace win32::overlay
