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
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/d3d9/d3d9.h"

namespace {

constexpr int kWidth = 640, kHeight = 480;
constexpr int kQuads = 5000;
constexpr int kColumns = 100, kRows = 50;
constexpr std::uint32_t kDrawBudget = 20;  // GL draws a frame for the 5,000 quads
constexpr double kTimeBudget = 1.5;        // times the limit

struct CVertex {  // the world's own layout, 0x142
  float x, y, z;
  std::uint32_t diffuse;
  float u, v;
};
constexpr DWORD kFVF = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;

SDL_Window* g_window = nullptr;
void* LookupWindow(HWND) { return g_window; }

// Quads on a grid in clip space, a few pixels each, as fans of four.
std::vector<CVertex> MakeQuads() {
  std::vector<CVertex> v;
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
  if (FAILED(device->CreateTexture(16, 16, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &t, nullptr))) return nullptr;
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

// ---- the limit: plain GL ---------------------------------------------------------

const char* kVertexShader =
    "#version 330 core\n"
    "layout(location = 0) in vec3 a_position;\n"
    "layout(location = 1) in vec4 a_color;\n"
    "layout(location = 2) in vec2 a_tex;\n"
    "uniform mat4 u_wvp;\n"
    "out vec4 v_color;\nout vec2 v_tex;\n"
    "void main() { gl_Position = u_wvp * vec4(a_position, 1.0); v_color = a_color; v_tex = a_tex; }\n";
const char* kFragmentShader =
    "#version 330 core\n"
    "uniform sampler2D u_texture;\n"
    "in vec4 v_color;\nin vec2 v_tex;\nout vec4 o_color;\n"
    "void main() { vec4 t = texture(u_texture, v_tex); o_color = vec4(t.rgb, t.a * v_color.a); }\n";

// One program, one vertex array, one streaming vertex buffer and a fixed
// index buffer; the frame uploads the vertices and draws them at once. The
// device's GL bindings are put back afterwards, since it remembers them.
class PlainGL {
 public:
  bool Init(const std::vector<CVertex>& vertices) {
    vertices_ = &vertices;
    GLuint vs = Compile(GL_VERTEX_SHADER, kVertexShader), fs = Compile(GL_FRAGMENT_SHADER, kFragmentShader);
    if (!vs || !fs) return false;
    program_ = glCreateProgram();
    glAttachShader(program_, vs);
    glAttachShader(program_, fs);
    glLinkProgram(program_);
    glDeleteShader(vs);
    glDeleteShader(fs);
    GLint ok = 0;
    glGetProgramiv(program_, GL_LINK_STATUS, &ok);
    if (!ok) return false;
    Saved saved = Save();
    glUseProgram(program_);
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glUniformMatrix4fv(glGetUniformLocation(program_, "u_wvp"), 1, GL_FALSE, identity);
    glUniform1i(glGetUniformLocation(program_, "u_texture"), 0);
    glGenVertexArrays(1, &vao_);
    glBindVertexArray(vao_);
    glGenBuffers(1, &vbo_);
    glGenBuffers(1, &ibo_);
    std::vector<std::uint32_t> indices;
    for (std::uint32_t q = 0; q < kQuads; ++q)
      for (std::uint32_t k : {0u, 1u, 2u, 0u, 2u, 3u}) indices.push_back(4 * q + k);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ibo_);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(indices.size() * 4), indices.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    const GLsizei stride = sizeof(CVertex);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offsetof(CVertex, x)));
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, stride, reinterpret_cast<void*>(offsetof(CVertex, diffuse)));
    glEnableVertexAttribArray(2);
    glVertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offsetof(CVertex, u)));
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    std::vector<std::uint32_t> texels(16 * 16, 0xFF40A040u);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    Restore(saved);
    return glGetError() == GL_NO_ERROR;
  }

  void Draw() {
    Saved saved = Save();
    glUseProgram(program_);
    glBindVertexArray(vao_);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glBindSampler(0, 0);
    glViewport(0, 0, kWidth, kHeight);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_CULL_FACE);
    std::size_t bytes = vertices_->size() * sizeof(CVertex);
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(bytes), nullptr, GL_STREAM_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 0, GLsizeiptr(bytes), vertices_->data());
    glDrawElements(GL_TRIANGLES, kQuads * 6, GL_UNSIGNED_INT, nullptr);
    Restore(saved);
  }

 private:
  struct Saved {
    GLint program, vao, arrayBuffer, activeTexture, texture0, sampler0, blend, src, dst, cull;
    GLint viewport[4];
  };
  static Saved Save() {
    Saved s{};
    glGetIntegerv(GL_CURRENT_PROGRAM, &s.program);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &s.vao);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &s.arrayBuffer);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &s.activeTexture);
    glActiveTexture(GL_TEXTURE0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &s.texture0);
    glGetIntegerv(GL_SAMPLER_BINDING, &s.sampler0);
    s.blend = glIsEnabled(GL_BLEND);
    s.cull = glIsEnabled(GL_CULL_FACE);
    glGetIntegerv(GL_BLEND_SRC_RGB, &s.src);
    glGetIntegerv(GL_BLEND_DST_RGB, &s.dst);
    glGetIntegerv(GL_VIEWPORT, s.viewport);
    return s;
  }
  static void Restore(const Saved& s) {
    glUseProgram(GLuint(s.program));
    glBindVertexArray(GLuint(s.vao));
    glBindBuffer(GL_ARRAY_BUFFER, GLuint(s.arrayBuffer));
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, GLuint(s.texture0));
    glBindSampler(0, GLuint(s.sampler0));
    glActiveTexture(GLenum(s.activeTexture));
    s.blend ? glEnable(GL_BLEND) : glDisable(GL_BLEND);
    s.cull ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
    glBlendFunc(GLenum(s.src), GLenum(s.dst));
    glViewport(s.viewport[0], s.viewport[1], s.viewport[2], s.viewport[3]);
  }
  static GLuint Compile(GLenum type, const char* text) {
    GLuint s = glCreateShader(type);
    glShaderSource(s, 1, &text, nullptr);
    glCompileShader(s);
    GLint ok = 0;
    glGetShaderiv(s, GL_COMPILE_STATUS, &ok);
    if (!ok) {
      glDeleteShader(s);
      return 0;
    }
    return s;
  }

  const std::vector<CVertex>* vertices_ = nullptr;
  GLuint program_ = 0, vao_ = 0, vbo_ = 0, ibo_ = 0, texture_ = 0;
};

// ---- measurement -------------------------------------------------------------------

struct Result {
  double msPerFrame;
  std::uint32_t glDraws;
};

// Times `frames` frames of `draw` (after a few unmeasured ones): clear, scene,
// draws, and glFinish so the GL work is inside the time; Present stays out,
// as it costs the same for every case. The median frame is reported: other
// work on the machine only ever adds time, to some frames.
Result Measure(IDirect3DDevice9* device, int frames, const std::function<void()>& draw) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> times;
  std::uint32_t draws = 0;
  for (int f = -5; f < frames; ++f) {
    Clock::time_point start = Clock::now();
    device->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF336699u, 1.0f, 0);
    device->BeginScene();
    draw();
    device->EndScene();
    d3d9gl::Flush(device);
    glFinish();
    double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    device->Present(nullptr, nullptr, nullptr, nullptr);
    d3d9gl::FrameStats stats;
    d3d9gl::GetFrameStats(device, stats);
    if (f >= 0) {
      times.push_back(ms);
      draws = std::max(draws, stats.lastFrameGlDrawCalls);
    }
  }
  std::nth_element(times.begin(), times.begin() + std::ptrdiff_t(times.size() / 2), times.end());
  return {times[times.size() / 2], draws};
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
  g_window = SDL_CreateWindow("karvo-bench", 0, 0, kWidth, kHeight, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
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
      FAILED(d3d->CreateDevice(0, D3DDEVTYPE_HAL, hwnd, D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp, &device))) {
    std::fprintf(stderr, "no device\n");
    return 1;
  }

  const std::vector<CVertex> quads = MakeQuads();
  IDirect3DTexture9* textures[3] = {MakeTexture(device, 0xFF2E8B2Eu), MakeTexture(device, 0xFF6B8E23u),
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
      device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, &quads[std::size_t(i) * 4], sizeof(CVertex));
    }
  };
  PlainGL plain;
  if (!plain.Init(quads)) {
    std::fprintf(stderr, "the plain GL program does not build\n");
    return 1;
  }

  Result limit = Measure(device, frames, [&] { plain.Draw(); });
  limit.glDraws = 1;  // one glDrawElements, outside the device's count
  Result up = Measure(device, frames, plants);

  std::printf("%d textured quads a frame, %dx%d, median of %d frames, %s\n", kQuads, kWidth, kHeight, frames,
              reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  std::printf("%-44s %16s %10s %16s\n", "case", "GL draws/frame", "ms/frame", "ratio to limit");
  std::printf("%-44s %16u %10.3f %16.2f\n", "limit: one plain GL draw", limit.glDraws, limit.msPerFrame, 1.0);
  std::printf("%-44s %16u %10.3f %16.2f\n", "5000 DrawPrimitiveUP fans, 3 textures", up.glDraws, up.msPerFrame,
              up.msPerFrame / limit.msPerFrame);
  bool drawsMet = up.glDraws <= kDrawBudget;
  bool timeMet = up.msPerFrame <= kTimeBudget * limit.msPerFrame;
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
