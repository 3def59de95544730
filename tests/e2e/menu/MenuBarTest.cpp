// The menu bar of the real program, used as a person would: the whole
// program runs on the SDL back end (Xvfb in ./test.sh), and SDL mouse and key
// events are pushed at the places where the bar drew its entries. A present
// hook draws the bar as the program does, reads the window and plays the
// next step of the plan. One run per process (there is one g_App); each test
// reads what the run recorded.
#include <SDL.h>
#include <epoxy/gl.h>
#include <gtest/gtest.h>
#include <stb/stb_image_write.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "app/GameApp.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Overlay.h"
#include "view/Camera.h"

namespace {

constexpr int kSettle = 4;  // frames between two steps: popups open a frame late
constexpr int kFrameLimit = 600;

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> rgb;  // 0xRRGGBB, top row first
};

struct Record {
  Picture solid, wireframe, firstPerson, thirdPerson;
  int wireframeMode = 0;
  int cameraMode = 0;
  bool singlePassAfterMulti = true;
  UINT colourPopupState = 0;
  int darkText[2] = {};  // dark pixels on the rows of Color Blending Ops, Render Mode
  bool popupOpenAfterAlt = false, popupOpenAfterEscape = true, runningAfterEscape = false;
  D3DXVECTOR3 beforeUp, afterUp;
  bool captureWhileOpen = true;
  bool exited = false;
  int exitCode = -1;
  int frames = 0;
};

Record s_record;
std::vector<std::function<void()>> s_plan;
std::size_t s_step = 0;
int s_wait = 0;

CGameApp& App() {
  return *GetGameApp();
}
Uint32 WindowId() {
  return SDL_GetWindowID(win32::SdlWindowOf(App().m_hWnd));
}

void Push(SDL_Event event) {
  SDL_PushEvent(&event);
}

void Click(int x, int y) {
  SDL_Event e{};
  e.motion = {SDL_MOUSEMOTION, 0, WindowId(), 0, 0, x, y, 0, 0};
  Push(e);
  for (Uint32 type : {SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP}) {
    e = {};
    e.button = {type,
                0,
                WindowId(),
                0,
                SDL_BUTTON_LEFT,
                static_cast<Uint8>(type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED),
                1,
                0,
                x,
                y};
    Push(e);
  }
}

void Key(Uint32 type, SDL_Keycode sym, Uint16 mod = KMOD_NONE) {
  SDL_Event e{};
  e.key.type = type;
  e.key.windowID = WindowId();
  e.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
  e.key.keysym.sym = sym;
  e.key.keysym.scancode = SDL_GetScancodeFromKey(sym);
  e.key.keysym.mod = mod;
  Push(e);
}

void Tap(SDL_Keycode sym, Uint16 mod = KMOD_NONE) {
  Key(SDL_KEYDOWN, sym, mod);
  Key(SDL_KEYUP, sym, mod);
}

// Clicks the middle of an entry drawn in the last frame: `path` walks from
// the bar down the popups by position.
void ClickEntry(std::initializer_list<int> path) {
  HMENU menu = App().m_hMenu;
  HMENU owner = menu;
  int last = -1;
  for (int position : path) {
    owner = menu;
    last = position;
    menu = GetSubMenu(menu, position);
  }
  RECT r{};
  if (!win32::overlay::EntryRect(owner, last, &r)) {
    ADD_FAILURE() << "entry " << last << " was not drawn";
    return;
  }
  Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
}

Picture BackBuffer() {
  Picture p;
  std::vector<std::uint32_t> argb;
  UINT w = 0, h = 0;
  d3d9gl::ReadBackBuffer(App().m_device, argb, w, h);
  p.width = static_cast<int>(w);
  p.height = static_cast<int>(h);
  for (std::uint32_t c : argb) p.rgb.push_back(c & 0xFFFFFF);
  return p;
}

// The whole window as shown, bar included, written as a PNG for the README.
Picture Window(const char* file) {
  Picture p;
  SDL_GL_GetDrawableSize(win32::SdlWindowOf(App().m_hWnd), &p.width, &p.height);
  std::vector<unsigned char> rows(static_cast<std::size_t>(p.width) * p.height * 3);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, p.width, p.height, GL_RGB, GL_UNSIGNED_BYTE, rows.data());
  std::vector<unsigned char> flipped(rows.size());
  const std::size_t stride = static_cast<std::size_t>(p.width) * 3;
  for (int y = 0; y < p.height; ++y)
    std::copy_n(&rows[(p.height - 1 - y) * stride], stride, &flipped[y * stride]);
  for (std::size_t i = 0; i < flipped.size(); i += 3)
    p.rgb.push_back(std::uint32_t(flipped[i]) << 16 | std::uint32_t(flipped[i + 1]) << 8 |
                    flipped[i + 2]);
  if (file) stbi_write_png(file, p.width, p.height, 3, flipped.data(), static_cast<int>(stride));
  return p;
}

void OnPresent(HWND hWnd, void*) {
  win32::overlay::DrawWindowOverlay(hWnd);
  ++s_record.frames;
  if (s_record.frames > kFrameLimit) {
    PostQuitMessage(0);  // a plan that got stuck
    return;
  }
  if (s_wait-- > 0 || s_step >= s_plan.size()) return;
  s_plan[s_step++]();
  s_wait = kSettle;
}

// Positions: bar 0 File, 1 Camera, 2 Render States; in Render States 0 Fill
// Mode, 2 Filter, 5 Color Blending Ops, 6 Render Mode.
void MakePlan() {
  Record& r = s_record;
  s_plan = {
      [&] { r.solid = BackBuffer(); },
      [] { ClickEntry({2}); },
      [] {
        ClickEntry({2, 0});
      },
      [] {
        ClickEntry({2, 0, 1});
      },  // Wireframe
      [&] {
        r.wireframeMode = App().m_fillMode;
        r.wireframe = BackBuffer();
      },
      [] { ClickEntry({2}); },
      [] {
        ClickEntry({2, 0});
      },
      [] {
        ClickEntry({2, 0, 0});
      },  // Solid again
      [] { ClickEntry({2}); },
      [] {
        ClickEntry({2, 6});
      },
      [] {
        ClickEntry({2, 6, 1});
      },  // Multi Pass
      [&] {
        r.singlePassAfterMulti = App().m_singlePass;
        r.colourPopupState = GetMenuState(GetSubMenu(App().m_hMenu, 2), 5, MF_BYPOSITION);
      },
      // The picture for the README: Render States open down to the marks
      // of the minification filters, with the colour popup greyed.
      [] { ClickEntry({2}); },
      [] {
        ClickEntry({2, 2});
      },
      [] {
        ClickEntry({2, 2, 0});
      },
      [&] {
        const Picture shot = Window(KARVO_SHOT_DIR "/render-states-popup.png");
        // Dark text on the rows of the greyed popup (5) and of Render Mode (6).
        for (int position : {5, 6}) {
          RECT row{};
          win32::overlay::EntryRect(GetSubMenu(App().m_hMenu, 2), position, &row);
          for (int y = row.top; y < row.bottom; ++y)
            for (int x = row.left; x < row.right; ++x)
              r.darkText[position - 5] +=
                  (shot.rgb[static_cast<std::size_t>(y) * shot.width + x] & 0xC0C0C0) == 0;
        }
        Tap(SDLK_ESCAPE);
        Tap(SDLK_ESCAPE);
        Tap(SDLK_ESCAPE);
      },
      [&] { r.firstPerson = BackBuffer(); },
      // Alt+C, then T: the Camera popup by keyboard, Third Person Mode.
      [] { Tap(SDLK_c, KMOD_LALT); },
      [&] {
        r.popupOpenAfterAlt = win32::overlay::PopupOpen();
        r.beforeUp = App().m_player.GetPosition();
        // Held Up and a click into the world while the popup is open: the
        // menu takes both.
        Key(SDL_KEYDOWN, SDLK_UP);
        Click(600, 500);
      },
      [&] {
        r.afterUp = App().m_player.GetPosition();
        r.captureWhileOpen = GetCapture() != nullptr;
        Key(SDL_KEYUP, SDLK_UP);
        Tap(SDLK_c, KMOD_LALT);
      },
      [] { Tap(SDLK_t); },
      [&] { r.cameraMode = App().m_camera ? int(App().m_camera->GetCameraMode()) : 0; },
      [] {},
      [] {},
      [&] { r.thirdPerson = BackBuffer(); },
      // Escape closes the File popup and the run goes on; then Alt+F, X.
      [] { Tap(SDLK_f, KMOD_LALT); },
      [] { Tap(SDLK_ESCAPE); },
      [&] {
        r.popupOpenAfterEscape = win32::overlay::PopupOpen();
        r.runningAfterEscape = true;
        Tap(SDLK_f, KMOD_LALT);
      },
      [] { Tap(SDLK_x); },
  };
}

const Record& RunProgram() {
  static bool ran = false;
  if (!ran) {
    ran = true;
    MakePlan();
    d3d9gl::SetPresentHook(&OnPresent, nullptr);
    s_record.exitCode =
        WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT);
    s_record.exited = s_step == s_plan.size() && s_record.frames <= kFrameLimit;
  }
  return s_record;
}

double ShareOf(const Picture& p, std::uint32_t colour) {
  std::size_t n = 0;
  for (std::uint32_t c : p.rgb) n += c == colour;
  return p.rgb.empty() ? 0.0 : static_cast<double>(n) / p.rgb.size();
}

TEST(MenuBar, ClicksOnTheBarChooseWireframeAndMultiPass) {
  const Record& r = RunProgram();
  EXPECT_EQ(r.wireframeMode, D3DFILL_WIREFRAME);
  // Lines leave the clear colour between them; a solid frame shows none.
  EXPECT_LT(ShareOf(r.solid, 0x79D3FF), 0.01);
  EXPECT_GT(ShareOf(r.wireframe, 0x79D3FF), 0.2);
  EXPECT_FALSE(r.singlePassAfterMulti);
  EXPECT_EQ(r.colourPopupState & MF_GRAYED, UINT(MF_GRAYED));
  EXPECT_EQ(r.darkText[0], 0) << "the greyed popup's text is not grey";
  EXPECT_GT(r.darkText[1], 20);
}

TEST(MenuBar, AltLetterChoosesTheThirdPersonCameraAndTheMenuTakesWorldInput) {
  const Record& r = RunProgram();
  EXPECT_TRUE(r.popupOpenAfterAlt);
  EXPECT_EQ(r.cameraMode, CAM_MODE_3RD_PERSON);
  EXPECT_FALSE(r.captureWhileOpen) << "a click taken by the menu started mouse look";
  EXPECT_FLOAT_EQ(r.beforeUp.x, r.afterUp.x);
  EXPECT_FLOAT_EQ(r.beforeUp.z, r.afterUp.z);
  // The body box now stands in the middle of the picture.
  ASSERT_EQ(r.firstPerson.rgb.size(), r.thirdPerson.rgb.size());
  std::size_t changed = 0;
  const Picture& a = r.firstPerson;
  for (int y = a.height / 3; y < a.height; ++y)
    for (int x = a.width * 3 / 10; x < a.width * 7 / 10; ++x)
      changed += a.rgb[y * a.width + x] != r.thirdPerson.rgb[y * a.width + x];
  EXPECT_GT(changed, static_cast<std::size_t>(a.width * a.height / 20));
}

TEST(MenuBar, EscapeClosesThePopupAndFileExitEndsTheRunWithCodeZero) {
  const Record& r = RunProgram();
  EXPECT_FALSE(r.popupOpenAfterEscape);
  EXPECT_TRUE(r.runningAfterEscape);
  EXPECT_TRUE(r.exited) << "the run ended after " << r.frames << " frames at step " << s_step;
  EXPECT_EQ(r.exitCode, 0);
}

}  // namespace
