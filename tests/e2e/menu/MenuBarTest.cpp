// The real program used as a person would: it runs on the SDL back end (Xvfb
// in ./test.sh), and SDL mouse and key events are pushed at the places where
// the bar drew its entries. A present hook draws the bar as the program does,
// then plays the next step of a plan, a few frames apart; the steps check the
// frames that follow. One run per process: there is one g_App.
#include <SDL.h>
#include <epoxy/gl.h>
#include <gtest/gtest.h>
#include <stb/stb_image_write.h>

#include <functional>
#include <vector>

#include "app/GameApp.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Overlay.h"
#include "view/Camera.h"

namespace {

constexpr int kSettle = 4;  // frames between two steps: popups open a frame late
// Guards a hang only: the run takes about a minute on a busy machine. A count
// of frames would not do, as quick frames make the trailing camera take many.
constexpr Uint64 kHangTicks = 10 * 60 * 1000;
constexpr std::uint32_t kClear = 0x79D3FF;
constexpr int kShotWidth = 720, kShotHeight = 260;

using Picture = std::vector<std::uint32_t>;  // 0xRRGGBB, top row first

std::vector<std::function<void()>> s_plan;
std::size_t s_step = 0;
int s_wait = 0;
bool s_hung = false;

CGameApp& App() { return *GetGameApp(); }
SDL_Window* Sdl() { return win32::SdlWindowOf(App().m_hWnd); }

void Push(SDL_Event event) {
  event.key.windowID = SDL_GetWindowID(Sdl());  // the same place in every event kind used
  SDL_PushEvent(&event);
}

void Mouse(Uint32 type, int x, int y, int dx = 0) {
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

// A key goes down and up, or only down or only up.
void Key(SDL_Keycode sym, Uint16 mod = KMOD_NONE, bool down = true, bool up = true) {
  SDL_Event e{};
  e.key.keysym = {SDL_GetScancodeFromKey(sym), sym, mod, 0};
  for (Uint32 type : {SDL_KEYDOWN, SDL_KEYUP}) {
    e.key.type = type;
    e.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    if (type == SDL_KEYDOWN ? down : up) Push(e);
  }
}

// Clicks the middle of an entry drawn in the last frame: `path` goes from the
// bar down the popups by position.
void ClickEntry(const std::vector<int>& path) {
  HMENU menu = App().m_hMenu, owner = menu;
  for (int position : path) owner = menu, menu = GetSubMenu(menu, position);
  RECT r{};
  ASSERT_TRUE(win32::overlay::EntryRect(owner, path.back(), &r));
  Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
}

Picture BackBuffer(UINT* width = nullptr, UINT* height = nullptr) {
  Picture argb;
  UINT w = 0, h = 0;
  d3d9gl::ReadBackBuffer(App().m_device, argb, width ? *width : w, height ? *height : h);
  for (std::uint32_t& c : argb) c &= 0xFFFFFF;
  return argb;
}

// The window as shown, bar included; its top left written as a PNG when a file is given.
Picture Window(const char* file = nullptr) {
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
  if (file && w >= kShotWidth && h >= kShotHeight)  // the top left, where the popups open
    stbi_write_png(file, kShotWidth, kShotHeight, 3,
                   rgb.data() + std::size_t(h - kShotHeight) * w * 3, w * 3);
  return p;
}

double Share(const Picture& p, std::uint32_t colour) {
  return p.empty() ? 0.0 : double(std::count(p.begin(), p.end(), colour)) / double(p.size());
}

// After a size change: a back buffer of the new client size, shown one to one
// below the bar (no stretching), and neither black nor the clear colour.
void ExpectPictureFollowsTheWindow(int width, int height) {
  UINT w = 0, h = 0;
  const Picture back = BackBuffer(&w, &h);
  const Picture shown = Window();
  const int bar = win32::MenuBarHeight(App().m_hWnd);
  ASSERT_EQ(int(w), width);
  ASSERT_EQ(int(h), height - bar);
  ASSERT_EQ(shown.size(), std::size_t(width) * height);
  EXPECT_TRUE(std::equal(back.begin(), back.end(), shown.begin() + std::ptrdiff_t(bar) * width));
  EXPECT_LT(Share(back, 0), 0.01);
  EXPECT_LT(Share(back, kClear), 0.01);
}

void OnPresent(HWND hWnd, void*) {
  win32::overlay::DrawWindowOverlay(hWnd);
  if (SDL_GetTicks64() > kHangTicks) {  // a plan that got stuck
    s_hung = true;
    return PostQuitMessage(0);
  }
  if (s_wait-- > 0 || s_step >= s_plan.size()) return;
  s_plan[s_step++]();
  s_wait = kSettle;
}

void Then(std::function<void()> step) { s_plan.push_back(std::move(step)); }

// A step that holds the plan until `ready`, asked again every few frames: for
// what the X server or the game clock brings, which no count of frames promises.
void Await(std::function<bool()> ready) {
  Then([ready] {
    if (!ready()) --s_step;  // the same step again after the settling frames
  });
}

// The X server has given the window its new size.
bool WindowIs(int width, int height) {
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(Sdl(), &w, &h);
  return w == width && h == height;
}

// The trailing camera has closed in on its place behind the body, at a pace
// of game time.
bool CameraBehindTheBody() {
  const CPlayer& p = App().m_player;
  const D3DXVECTOR3& o = p.GetCameraOffset();
  D3DXVECTOR3 gap = p.GetPosition() + p.GetRight() * o.x + p.GetUp() * o.y + p.GetLook() * o.z -
                    p.GetCamera()->GetPosition();
  return D3DXVec3Length(&gap) < 1.0f;
}

// One step per click, from the bar down: {2, 0, 1} is Render States, Fill
// Mode, Wireframe.
void ClickThrough(std::vector<int> path) {
  for (std::size_t n = 1; n <= path.size(); ++n)
    Then([=] { ClickEntry(std::vector<int>(path.begin(), path.begin() + std::ptrdiff_t(n))); });
}

TEST(MenuBar, UsedByMouseAndKeyboardInTheRealProgram) {
  // Bar: 0 File, 1 Camera, 2 Render States; Render States: 0 Fill Mode,
  // 2 Filter, 5 Color Blending Ops, 6 Render Mode.
  Picture before;
  D3DXVECTOR3 position;
  float yaw = 0.0f;
  Then([&] { before = BackBuffer(); });
  ClickThrough({2, 0, 1});  // Wireframe
  Then([&] {
    EXPECT_EQ(App().m_fillMode, D3DFILL_WIREFRAME);
    // Lines leave the clear colour between them; solid ground shows none.
    EXPECT_LT(Share(before, kClear), 0.01);
    EXPECT_GT(Share(BackBuffer(), kClear), 0.2);
  });
  ClickThrough({2, 0, 0});  // Solid
  ClickThrough({2, 6, 1});  // Multi Pass
  Then([] {
    EXPECT_FALSE(App().m_singlePass);
    EXPECT_TRUE(GetMenuState(GetSubMenu(App().m_hMenu, 2), 5, MF_BYPOSITION) & MF_GRAYED);
  });
  // The README's picture: open down to the marks of Minification, with Color
  // Blending Ops greyed.
  ClickThrough({2, 2, 0});
  Then([] {
    Window(KARVO_SHOT_DIR "/render-states.png");
    for (int i = 0; i < 3; ++i) Key(SDLK_ESCAPE);  // one popup each, the run goes on
  });
  Then([&] {
    EXPECT_FALSE(win32::overlay::PopupOpen());
    before = BackBuffer();
    Key(SDLK_c, KMOD_LALT);
  });
  Then([&] {
    EXPECT_TRUE(win32::overlay::PopupOpen()) << "Alt+C opened no popup";
    // Up held and a click into the world while the popup is open: the menu
    // takes both, so no step and no mouse look.
    position = App().m_player.GetPosition();
    Key(SDLK_UP, KMOD_NONE, true, false);
    Click(600, 500);
  });
  Then([&] {
    EXPECT_TRUE(App().m_player.GetPosition().x == position.x && App().m_player.GetPosition().z == position.z);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_FALSE(win32::overlay::PopupOpen()) << "a click outside closes the popup";
    Key(SDLK_UP, KMOD_NONE, false, true);
    Key(SDLK_c, KMOD_LALT);
  });
  Then([] { Key(SDLK_t); });  // Third Person Mode, by its access key
  Await(CameraBehindTheBody);
  Then([&] {
    ASSERT_EQ(App().m_player.GetCameraMode(), CAM_MODE_3RD_PERSON);
    // The body box now stands in the middle of the picture.
    const Picture after = BackBuffer();
    ASSERT_EQ(after.size(), before.size());
    std::size_t changed = 0;
    for (std::size_t i = before.size() / 3; i < before.size(); ++i)
      changed += before[i] != after[i];
    EXPECT_GT(changed, before.size() / 10);
    // Mouse look by relative motion only: the pointer itself never moves
    // here, as where a warp fails.
    Mouse(SDL_MOUSEBUTTONDOWN, 600, 400);
  });
  Then([&] { yaw = App().m_player.GetYaw(), Mouse(SDL_MOUSEMOTION, 600, 400, 30); });
  Then([&] {
    EXPECT_FLOAT_EQ(App().m_player.GetYaw(), yaw + 10.0f) << "30 pixels are 10 degrees";
    yaw = App().m_player.GetYaw();
  });
  Then([&] {
    EXPECT_FLOAT_EQ(App().m_player.GetYaw(), yaw) << "the view kept turning";
    Mouse(SDL_MOUSEBUTTONUP, 600, 400);
    SDL_SetWindowSize(Sdl(), 640, 480);  // as a drag of the border does
  });
  Await([] { return WindowIs(640, 480); });
  Then([] { ExpectPictureFollowsTheWindow(640, 480), SDL_SetWindowSize(Sdl(), 1200, 700); });
  Await([] { return WindowIs(1200, 700); });
  Then([] { ExpectPictureFollowsTheWindow(1200, 700); });
  Then([] { Key(SDLK_f, KMOD_LALT); });
  Then([] { Key(SDLK_x); });  // E&xit
  d3d9gl::SetPresentHook(&OnPresent, nullptr);
  EXPECT_EQ(WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT), 0);
  EXPECT_EQ(s_step, s_plan.size()) << "the run ended early";
  EXPECT_FALSE(s_hung) << "the run hung: it did not end by File, Exit";
}

}  // namespace
