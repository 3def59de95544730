// The overlay's ImGui context, its input from the layer's event hook, and the
// UI frames. Input is fed from events, not polled: events pushed by a test or
// already read by the layer never reach SDL's own mouse state, and mouse look
// warps the pointer, which a poll would mistake for motion.
#include "platform/win32/overlay/Win32Overlay.h"

#include <SDL.h>
#include <imgui.h>

#include <algorithm>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/sdl/Win32DisplayScale.h"
#include "platform/win32/overlay/Win32OverlayRenderer.h"
#include "platform/win32/overlay/Win32OverlayState.h"

namespace win32::overlay {

namespace {

constexpr int kButtons = 3;  // left, right, middle: ImGui's 0, 1, 2

struct Input {
  bool held[kButtons] = {};
  bool pressed[kButtons] = {};  // pressed since the last frame
  bool tookPress[kButtons] = {};
  SDL_Keymod mod = KMOD_NONE;
};

Input s_input;
OverlayRenderer s_renderer;
bool s_inFrame = false;
Uint64 s_lastFrame = 0;

// ImGui's named keys on SDL scan codes; ImGui reads KeysDown by these.
const struct {
  ImGuiKey key;
  SDL_Scancode scancode;
} kKeyMap[] = {
    {ImGuiKey_Tab, SDL_SCANCODE_TAB},
    {ImGuiKey_LeftArrow, SDL_SCANCODE_LEFT},
    {ImGuiKey_RightArrow, SDL_SCANCODE_RIGHT},
    {ImGuiKey_UpArrow, SDL_SCANCODE_UP},
    {ImGuiKey_DownArrow, SDL_SCANCODE_DOWN},
    {ImGuiKey_PageUp, SDL_SCANCODE_PAGEUP},
    {ImGuiKey_PageDown, SDL_SCANCODE_PAGEDOWN},
    {ImGuiKey_Home, SDL_SCANCODE_HOME},
    {ImGuiKey_End, SDL_SCANCODE_END},
    {ImGuiKey_Insert, SDL_SCANCODE_INSERT},
    {ImGuiKey_Delete, SDL_SCANCODE_DELETE},
    {ImGuiKey_Backspace, SDL_SCANCODE_BACKSPACE},
    {ImGuiKey_Space, SDL_SCANCODE_SPACE},
    {ImGuiKey_Enter, SDL_SCANCODE_RETURN},
    {ImGuiKey_Escape, SDL_SCANCODE_ESCAPE},
    {ImGuiKey_KeyPadEnter, SDL_SCANCODE_KP_ENTER},
    {ImGuiKey_A, SDL_SCANCODE_A},
    {ImGuiKey_C, SDL_SCANCODE_C},
    {ImGuiKey_V, SDL_SCANCODE_V},
    {ImGuiKey_X, SDL_SCANCODE_X},
    {ImGuiKey_Y, SDL_SCANCODE_Y},
    {ImGuiKey_Z, SDL_SCANCODE_Z},
};

HWND WindowOfId(Uint32 id) {
  return win32::WindowOf(SDL_GetWindowFromID(id));
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

// Letters and digits by the layout's key code, upper case; 0 for others.
char KeyLetter(SDL_Keycode sym) {
  if (sym >= SDLK_a && sym <= SDLK_z) return static_cast<char>('A' + (sym - SDLK_a));
  if (sym >= SDLK_0 && sym <= SDLK_9) return static_cast<char>(sym);
  return 0;
}

bool Button(const SDL_MouseButtonEvent& event) {
  OverlayState& state = State();
  ImGui::GetIO().MousePos = ImVec2(static_cast<float>(event.x), static_cast<float>(event.y));
  const int b = ButtonIndex(event.button);
  if (b < 0) return state.modal;
  if (event.type == SDL_MOUSEBUTTONDOWN) {
    s_input.held[b] = true;
    s_input.pressed[b] = true;
    const bool overBar = event.y < win32::MenuBarHeight(WindowOfId(event.windowID));
    s_input.tookPress[b] = state.modal || state.popupOpen || overBar;
    return s_input.tookPress[b];
  }
  s_input.held[b] = false;
  const bool took = state.modal || s_input.tookPress[b];
  s_input.tookPress[b] = false;
  return took;
}

bool Key(const SDL_KeyboardEvent& event) {
  OverlayState& state = State();
  const bool down = event.type == SDL_KEYDOWN;
  s_input.mod = static_cast<SDL_Keymod>(event.keysym.mod);
  const SDL_Scancode scancode = event.keysym.scancode;
  ImGuiIO& io = ImGui::GetIO();
  if (scancode >= 0 && scancode < static_cast<int>(IM_ARRAYSIZE(io.KeysDown)))
    io.KeysDown[scancode] = down;
  if (!down || state.modal) return state.modal;
  const char letter = KeyLetter(event.keysym.sym);
  if (state.popupOpen) {
    // An open menu has the keyboard, as on the desktop: nothing reaches the
    // world until it closes.
    if (event.keysym.sym == SDLK_ESCAPE) ++state.escapes;
    if (letter) state.accessKey = letter;
    return true;
  }
  if ((event.keysym.mod & KMOD_ALT) && letter &&
      IsBarAccessKey(WindowOfId(event.windowID), letter)) {
    state.altKey = letter;
    return true;
  }
  return false;
}

bool Hook(const SDL_Event& event, void*) {
  OverlayState& state = State();
  ImGuiIO& io = ImGui::GetIO();
  switch (event.type) {
    case SDL_MOUSEMOTION:
      io.MousePos = ImVec2(static_cast<float>(event.motion.x), static_cast<float>(event.motion.y));
      return state.modal;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
      return Button(event.button);
    case SDL_MOUSEWHEEL:
      io.MouseWheel += static_cast<float>(event.wheel.y);
      io.MouseWheelH += static_cast<float>(event.wheel.x);
      return state.modal || state.popupOpen;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      return Key(event.key);
    case SDL_TEXTINPUT:
      if (state.modal) io.AddInputCharactersUTF8(event.text.text);
      return state.modal;
    default:
      return false;
  }
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
  io.BackendFlags |= ImGuiBackendFlags_RendererHasVtxOffset;
  for (const auto& row : kKeyMap) io.KeyMap[row.key] = row.scancode;
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
  for (int b = 0; b < kButtons; ++b) {
    io.MouseDown[b] = s_input.held[b] || s_input.pressed[b];
    s_input.pressed[b] = false;
  }
  io.KeyCtrl = (s_input.mod & KMOD_CTRL) != 0;
  io.KeyShift = (s_input.mod & KMOD_SHIFT) != 0;
  io.KeyAlt = (s_input.mod & KMOD_ALT) != 0;
  io.KeySuper = (s_input.mod & KMOD_GUI) != 0;
  ImGui::NewFrame();
  s_inFrame = true;
  return true;
}

void RenderFrame(HWND hWnd) {
  if (!s_inFrame) return;
  s_inFrame = false;
  State().popupOpen = ImGui::IsPopupOpen("", ImGuiPopupFlags_AnyPopupId);
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
    // No bar, no popup: keys go to the program again.
    OverlayState& state = State();
    if (state.popupOpen) state.closeAll = true;
    state.popupOpen = false;
    return;
  }
  if (!BeginFrame(hWnd)) return;
  MenuBar(hWnd);
  RenderFrame(hWnd);
}

void SetModal(bool modal) {
  State().modal = modal;
}

bool PopupOpen() {
  return State().popupOpen;
}

void ReleaseGL() {
  if (ImGui::GetCurrentContext()) s_renderer.Release();
}

}  // namespace win32::overlay
