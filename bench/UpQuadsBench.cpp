// Cost of the plant draws: 5,000 tiny textured quads a frame, each its own
// DrawPrimitiveUP fan with the state calls the plants make before it (stage-0
// texture from three alternating ones, world transform, alpha blend states,
// vertex format, cull mode), against the limit: the same vertices sent as one
// plain GL draw on the same context. Prints GL draws and milliseconds per
// frame and the ratio to the limit.
//
//   karvo-bench-up-quads [--quick] [--frames N]
//
// --quick measures a few frames only (the ctest run). The exit status is
// non-zero when the device fails or the merged draws exceed the GL draw
// budget; the time ratio is reported, not enforced, as timings on a shared
// machine are noisy.
#include <SDL.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "PlainGLQuads.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/d3d9/d3d9.h"

namespace {

constexpr int kWidth = 640, kHeight = 480;
constexpr int kQuads = 5000;
constexpr int kColumns = 100, kRows = 50;
constexpr std::uint32_t kDrawBudget = 20;  // GL draws a frame for the 5,000 quads
constexpr double kTimeBudget = 1.5;        // times the limit

using bench::QuadVertex;
constexpr DWORD kFVF = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;

SDL_Window* g_window = nullptr;
void* LookupWindow(HWND) {
  return g_window;
}

// Quads on a grid in clip space, a few pixels each, as fans of four.
std::vector<QuadVertex> MakeQuads() {
  std::vector<QuadVertex> v;
  const float w = 2.0f / kColumns, h = 2.0f / kRows;
  for (int i = 0; i < kQuads; ++i) {
    float x = -1.0f + float(i % kColumns) * w, y = -1.0f + float(i / kColumns) * h;
    float x2 = x + w * 0.6f, y2 = y + h * 0.6f;
    v.push_back({x, y, 0.5f, 0xFF000000u, 0, 1});
    v.push_back({x2, y, 0.5f, 0xFF000000u, 1, 1});
    v.push_back({x2, y2, 0.5f, 0xFF000000u, 1, 0});
    v.push_back({x, y2, 0.5f, 0xFF000000u, 0, 0});
  }
  return v;
}

IDirect3DTexture9* MakeTexture(IDirect3DDevice9* device, std::uint32_t color) {
  IDirect3DTexture9* t = nullptr;
  if (FAILED(device->CreateTexture(16, 16, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &t, nullptr)))
    return nullptr;
  D3DLOCKED_RECT r{};
  t->LockRect(0, &r, nullptr, 0);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      // A keyed-out corner, as plant pictures have around their shapes.
      std::uint32_t texel = (x + y < 6) ? 0u : color;
      std::memcpy(static_cast<std::uint8_t*>(r.pBits) + y * r.Pitch + x * 4, &texel, 4);
    }
  t->UnlockRect(0);
  return t;
}

// ---- measurement -------------------------------------------------------------------

// One case of the table: how its frame is drawn and what its frames cost.
struct Case {
  const char* name;
  std::function<void()> draw;
  std::vector<double> ms;
  std::uint32_t glDraws = 0;

  double Median() {
    std::nth_element(ms.begin(), ms.begin() + std::ptrdiff_t(ms.size() / 2), ms.end());
    return ms[ms.size() / 2];
  }
};

// One frame of a case: clear, scene, draws, and glFinish so that the GL work
// is inside the time; Present stays out, as it costs the same for every case.
void RunFrame(IDirect3DDevice9* device, Case& c, bool measured) {
  using Clock = std::chrono::steady_clock;
  Clock::time_point start = Clock::now();
  device->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF336699u, 1.0f, 0);
  device->BeginScene();
  c.draw();
  device->EndScene();
  d3d9gl::Flush(device);
  glFinish();
  double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  device->Present(nullptr, nullptr, nullptr, nullptr);
  d3d9gl::FrameStats stats;
  d3d9gl::GetFrameStats(device, stats);
  if (measured) {
    c.ms.push_back(ms);
    c.glDraws = std::max(c.glDraws, stats.lastFrameGlDrawCalls);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int frames = 200;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--quick") {
      frames = 15;
    } else if (a == "--frames" && i + 1 < argc) {
      frames = std::max(1, std::atoi(argv[++i]));
    } else {
      std::fprintf(stderr, "usage: %s [--quick] [--frames N]\n", argv[0]);
      return 2;
    }
  }
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
    std::fprintf(stderr, "no video: %s\n", SDL_GetError());
    return 1;
  }
  g_window =
      SDL_CreateWindow("karvo-bench", 0, 0, kWidth, kHeight, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
  d3d9gl::SetWindowLookup(LookupWindow);
  IDirect3D9* d3d = Direct3DCreate9(D3D_SDK_VERSION);
  HWND hwnd = reinterpret_cast<HWND>(&g_window);
  D3DPRESENT_PARAMETERS pp{};
  pp.BackBufferWidth = kWidth;
  pp.BackBufferHeight = kHeight;
  pp.BackBufferFormat = D3DFMT_X8R8G8B8;
  pp.BackBufferCount = 1;
  pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
  pp.hDeviceWindow = hwnd;
  pp.Windowed = TRUE;
  pp.EnableAutoDepthStencil = TRUE;
  pp.AutoDepthStencilFormat = D3DFMT_D24S8;
  pp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  IDirect3DDevice9* device = nullptr;
  if (g_window == nullptr || d3d == nullptr ||
      FAILED(d3d->CreateDevice(0, D3DDEVTYPE_HAL, hwnd, D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp,
                               &device))) {
    std::fprintf(stderr, "no device\n");
    return 1;
  }

  const std::vector<QuadVertex> quads = MakeQuads();
  IDirect3DTexture9* textures[3] = {MakeTexture(device, 0xFF2E8B2Eu),
                                    MakeTexture(device, 0xFF6B8E23u),
                                    MakeTexture(device, 0xFF8B4513u)};
  D3DMATRIX world{};
  world._11 = world._22 = world._33 = world._44 = 1.0f;
  // What the frame sets before its plant loops: colour from the texture, alpha
  // from texture times diffuse.
  device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
  device->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);
  device->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_MODULATE);
  device->SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE);
  device->SetTextureStageState(0, D3DTSS_ALPHAARG2, D3DTA_DIFFUSE);
  device->SetTransform(D3DTS_VIEW, &world);
  device->SetTransform(D3DTS_PROJECTION, &world);

  auto plants = [&] {
    for (int i = 0; i < kQuads; ++i) {
      device->SetTexture(0, textures[i % 3]);
      device->SetTransform(D3DTS_WORLD, &world);
      device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
      device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
      device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
      device->SetFVF(kFVF);
      device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
      device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, &quads[std::size_t(i) * 4], sizeof(QuadVertex));
    }
  };
  bench::PlainGLQuads plain;
  if (!plain.Init(quads, kWidth, kHeight)) {
    std::fprintf(stderr, "the plain GL program does not build\n");
    return 1;
  }

  // The cases take turns frame by frame, after a few unmeasured rounds, so
  // that warming up and the load of others on the machine fall on both alike;
  // the median frame of each is reported.
  Case cases[] = {{"limit: one plain GL draw", [&] { plain.Draw(); }, {}},
                  {"5000 DrawPrimitiveUP fans, 3 textures", plants, {}}};
  for (int f = -5; f < frames; ++f)
    for (Case& c : cases) RunFrame(device, c, f >= 0);
  Case& limit = cases[0];
  Case& up = cases[1];
  limit.glDraws = 1;  // one glDrawElements, outside the device's count
  const double limitMs = limit.Median(), upMs = up.Median();

  std::printf("%d textured quads a frame, %dx%d, median of %d frames, %s\n", kQuads, kWidth,
              kHeight, frames, reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  std::printf("%-44s %16s %10s %16s\n", "case", "GL draws/frame", "ms/frame", "ratio to limit");
  for (Case& c : cases)
    std::printf("%-44s %16u %10.3f %16.2f\n", c.name, c.glDraws, c.Median(), c.Median() / limitMs);
  bool drawsMet = up.glDraws <= kDrawBudget;
  bool timeMet = upMs <= kTimeBudget * limitMs;
  std::printf("targets: at most %u GL draws: %s; at most %.1fx the limit: %s\n", kDrawBudget,
              drawsMet ? "met" : "MISSED", kTimeBudget, timeMet ? "met" : "missed");

  for (IDirect3DTexture9* t : textures)
    if (t) t->Release();
  device->Release();
  d3d->Release();
  d3d9gl::SetWindowLookup(nullptr);
  SDL_DestroyWindow(g_window);
  return drawsMet ? 0 : 1;
}
