// The program on the SDL back end, played by a plan of steps (SdlPlan.h).
#include "e2e/menu/SdlPlan.h"

#include <epoxy/gl.h>
#include <gtest/gtest.h>
#include <stb/stb_image_write.h>

#include <algorithm>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/overlay/Win32Overlay.h"

namespace sdl_plan {

namespace {

constexpr int kSettle = 4;  // frames between two steps: what a step set off shows by then
// Ends a plan that got stuck. A hang guard only: a run takes about a minute
// on a busy machine. A count of frames would not do, as quick frames make the
// trailing camera take many.
constexpr Uint64 kHangTicks = 10 * 60 * 1000;

std::vector<std::function<void()>> s_plan;
std::size_t s_step = 0;
int s_wait = 0;
bool s_hung = false;

void OnPresent(HWND hWnd, void*) {
  win32::overlay::DrawWindowOverlay(hWnd);
  if (SDL_GetTicks64() > kHangTicks) {
    s_hung = true;
    return PostQuitMessage(0);
  }
  if (s_wait-- > 0 || s_step >= s_plan.size()) return;
  s_plan[s_step++]();
  s_wait = kSettle;
}

}  // namespace

CGameApp& App() {
  return *GetGameApp();
}
SDL_Window* Sdl() {
  return win32::SdlWindowOf(App().m_hWnd);
}

void Push(SDL_Event event) {
  event.key.windowID = SDL_GetWindowID(Sdl());  // the same place in every event kind used
  SDL_PushEvent(&event);
}

void Mouse(Uint32 type, int x, int y, int dx) {
  SDL_Event e{};
  if (type == SDL_MOUSEMOTION) {
    e.motion = {type, 0, 0, 0, 0, x, y, dx, 0};
  } else {
    e.button = {type, 0, 0, 0, SDL_BUTTON_LEFT, Uint8(type == SDL_MOUSEBUTTONDOWN), 1, 0, x, y};
  }
  Push(e);
}

void Click(int x, int y) {
  for (Uint32 type : {SDL_MOUSEMOTION, SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP}) Mouse(type, x, y);
}

void Key(SDL_Keycode sym, Uint16 mod, bool down, bool up) {
  SDL_Event e{};
  e.key.keysym = {SDL_GetScancodeFromKey(sym), sym, mod, 0};
  for (Uint32 type : {SDL_KEYDOWN, SDL_KEYUP}) {
    e.key.type = type;
    e.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    if (type == SDL_KEYDOWN ? down : up) Push(e);
  }
}

Picture BackBuffer(UINT* width, UINT* height) {
  Picture argb;
  UINT w = 0, h = 0;
  d3d9gl::ReadBackBuffer(App().m_device, argb, width ? *width : w, height ? *height : h);
  for (std::uint32_t& c : argb) c &= 0xFFFFFF;
  return argb;
}

Picture Window(const char* file, int width, int height) {
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(Sdl(), &w, &h);
  std::vector<unsigned char> rgb(std::size_t(w) * h * 3);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, w, h, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
  Picture p(std::size_t(w) * h);
  for (std::size_t i = 0; i < p.size(); ++i) {
    const std::size_t from = ((h - 1 - i / w) * w + i % w) * 3;  // GL's rows run upwards
    p[i] = std::uint32_t(rgb[from]) << 16 | std::uint32_t(rgb[from + 1]) << 8 | rgb[from + 2];
  }
  stbi_flip_vertically_on_write(1);
  if (file && w >= width && h >= height)
    stbi_write_png(file, width, height, 3, rgb.data() + std::size_t(h - height) * w * 3, w * 3);
  return p;
}

double Share(const Picture& p, std::uint32_t colour) {
  return p.empty() ? 0.0 : double(std::count(p.begin(), p.end(), colour)) / double(p.size());
}

void Then(std::function<void()> step) {
  s_plan.push_back(std::move(step));
}

void Await(std::function<bool()> ready) {
  Then([ready] {
    if (!ready()) --s_step;  // the same step again after the settling frames
  });
}

bool WindowIs(int width, int height) {
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(Sdl(), &w, &h);
  return w == width && h == height;
}

void RunPlan() {
  d3d9gl::SetPresentHook(&OnPresent, nullptr);
  EXPECT_EQ(WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT), 0);
  EXPECT_EQ(s_step, s_plan.size()) << "the run ended early";
  EXPECT_FALSE(s_hung) << "the run hung: the program did not end after its last step";
}

}  // namespace sdl_plan
