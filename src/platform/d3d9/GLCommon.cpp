// GL context holder, the one-time probe of GL limits, the window port and
// logging of the GL back end.
#include "platform/d3d9/GLCommon.h"

#include <SDL.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/sdl/Win32DisplayScale.h"

namespace d3d9gl {

void Log(LogLevel level, const char* where, const char* format, ...) {
  static const char* const kLevels[] = {"info", "warning", "error"};
  std::fprintf(stderr, "[d3d9 %s] %s: ", kLevels[int(level)], where);
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
  std::fputc('\n', stderr);
}

namespace {
#ifdef __EMSCRIPTEN__
constexpr bool kInPage = true;  // WebGL2 is the only GL a page has
#else
constexpr bool kInPage = false;
#endif
bool s_esContext = kInPage;
}  // namespace

void UseEsContext(bool es) {
  s_esContext = es || kInPage;
}

void SetContextAttributes() {
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, s_esContext ? 0 : 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK,
                      s_esContext ? SDL_GL_CONTEXT_PROFILE_ES : SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  // Drawing goes to the device's own framebuffer, which has its depth and
  // stencil; the window's takes nothing but the finished picture, so it
  // needs neither (SDL asks for 16 depth bits unless told).
  SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
  SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 0);
}

bool HasExtension(const char* name) {
  const char* bare = std::strncmp(name, "GL_", 3) == 0 ? name + 3 : name;
  GLint count = 0;
  glGetIntegerv(GL_NUM_EXTENSIONS, &count);
  for (GLint i = 0; i < count; ++i) {
    const char* e = reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, GLuint(i)));
    if (e == nullptr) continue;
    if (std::strncmp(e, "GL_", 3) == 0) e += 3;
    if (std::strcmp(e, bare) == 0) return true;
  }
  return false;
}

namespace {

// A renderbuffer of `samples` samples really gets that many.
bool SamplesWork(GLenum internalFormat, int samples) {
  GLuint rb = 0;
  glGenRenderbuffers(1, &rb);
  glBindRenderbuffer(GL_RENDERBUFFER, rb);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, internalFormat, 4, 4);
  GLint got = -1;
  glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &got);
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glDeleteRenderbuffers(1, &rb);
  while (glGetError() != GL_NO_ERROR) {
  }
  return got == samples;
}

bool ColorRenderable(GLenum internalFormat) {
  GLuint fbo = 0, rb = 0;
  glGenFramebuffers(1, &fbo);
  glGenRenderbuffers(1, &rb);
  glBindFramebuffer(GL_FRAMEBUFFER, fbo);
  glBindRenderbuffer(GL_RENDERBUFFER, rb);
  glRenderbufferStorage(GL_RENDERBUFFER, internalFormat, 4, 4);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, rb);
  bool ok = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  glDeleteRenderbuffers(1, &rb);
  glDeleteFramebuffers(1, &fbo);
  while (glGetError() != GL_NO_ERROR) {
  }
  return ok;
}

GLLimits Probe() {
  GLLimits l;
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
    Log(LogLevel::Error, "Limits", "SDL video: %s", SDL_GetError());
    return l;
  }
  SDL_Window* oldWindow = SDL_GL_GetCurrentWindow();
  SDL_GLContext oldContext = SDL_GL_GetCurrentContext();
  SetContextAttributes();
  SDL_Window* w =
      SDL_CreateWindow("karvo-gl-probe", 0, 0, 16, 16, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
  SDL_GLContext c = w ? SDL_GL_CreateContext(w) : nullptr;
  if (c == nullptr) {
    Log(LogLevel::Error, "Limits", "no %s context: %s",
        s_esContext ? "OpenGL ES 3.0" : "OpenGL 3.3 core", SDL_GetError());
    if (w) SDL_DestroyWindow(w);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    return l;
  }
  std::snprintf(l.renderer, sizeof l.renderer, "%s",
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  std::snprintf(l.version, sizeof l.version, "%s",
                reinterpret_cast<const char*>(glGetString(GL_VERSION)));
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &l.maxTextureSize);
  glGetIntegerv(GL_MAX_SAMPLES, &l.maxSamples);
  for (int n = 2; n <= 16 && n <= l.maxSamples; ++n)
    if (SamplesWork(GL_RGBA8, n) && SamplesWork(GL_DEPTH24_STENCIL8, n)) l.sampleCounts |= 1u << n;
  l.es = std::strncmp(l.version, "OpenGL ES", 9) == 0;
  l.page = kInPage;
  l.polygonMode = !l.es || HasExtension("WEBGL_polygon_mode");
  l.provokingVertex = !l.es || HasExtension("WEBGL_provoking_vertex");
  l.anisotropic = HasExtension("GL_ARB_texture_filter_anisotropic") ||
                  HasExtension("GL_EXT_texture_filter_anisotropic");
  if (l.anisotropic) glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY, &l.maxAnisotropy);
  l.s3tc = HasExtension("GL_EXT_texture_compression_s3tc") ||
           HasExtension("WEBGL_compressed_texture_s3tc");
  // Indexing a sampler array by a varying needs GLSL 4.00 or the extension;
  // OpenGL ES 3.0 has neither.
  l.slotIndexedSamplers =
      !l.es && std::strncmp(l.renderer, "llvmpipe", 8) == 0 && HasExtension("GL_ARB_gpu_shader5");
  l.rgb565Renderable = ColorRenderable(GL_RGB565);
  l.rgb5a1Renderable = ColorRenderable(GL_RGB5_A1);
  // A page shows a frame at each of the browser's animation frames, which is
  // the display's rate: interval one, and only that.
  l.swapImmediate = !l.page && SDL_GL_SetSwapInterval(0) == 0;
  l.swapOne = l.page || SDL_GL_SetSwapInterval(1) == 0;
  while (glGetError() != GL_NO_ERROR) {
  }
  l.valid = true;
  SDL_GL_DeleteContext(c);
  SDL_DestroyWindow(w);
  if (oldContext) SDL_GL_MakeCurrent(oldWindow, oldContext);
  // The video subsystem stays up: the Direct3D object and devices need it.
  return l;
}

WindowLookup s_lookup = nullptr;

}  // namespace

const GLLimits& Limits() {
  static const GLLimits limits = Probe();
  return limits;
}

GLCore::~GLCore() {
  // A page's canvas keeps its one WebGL context: deleting it would also take
  // the canvas's input handlers with it. The next device gets it again.
  if (context_ && SDL_WasInit(SDL_INIT_VIDEO) && !kInPage) {
    if (SDL_GL_GetCurrentContext() == context_) SDL_GL_MakeCurrent(window_, nullptr);
    SDL_GL_DeleteContext(static_cast<SDL_GLContext>(context_));
  }
}

bool GLCore::MakeCurrent() {
  if (SDL_GL_GetCurrentContext() == context_) return true;
  return SDL_GL_MakeCurrent(window_, static_cast<SDL_GLContext>(context_)) == 0;
}

void SetWindowLookup(WindowLookup lookup) {
  s_lookup = lookup;
}

SDL_Window* SdlWindowOf(HWND hWnd) {
  if (s_lookup) return static_cast<SDL_Window*>(s_lookup(hWnd));
  return win32::SdlWindowOf(hWnd);
}

ClientArea ClientAreaOf(HWND hWnd, SDL_Window* window) {
  ClientArea a;
  int dw = 0, dh = 0;
  SDL_GL_GetDrawableSize(window, &dw, &dh);
  a.width = dw;
  a.height = dh;
  if (s_lookup == nullptr) {
    // The menu bar takes the top rows; GL counts rows from the bottom, so the
    // client area starts at row 0 and is that much lower.
    // The bar is measured in window units; a scaling compositor gives more pixels.
    const int bar =
        static_cast<int>(win32::MenuBarHeight(hWnd) * win32::CurrentDisplayScale().pixels);
    if (bar > 0 && bar < dh) a.height = dh - bar;
  }
  return a;
}

bool IsMinimized(HWND hWnd, SDL_Window* window) {
  if (s_lookup == nullptr) return win32::IsMinimized(hWnd);
  return (SDL_GetWindowFlags(window) & SDL_WINDOW_MINIMIZED) != 0;
}

bool HasFocus(HWND hWnd, SDL_Window* window) {
  if (s_lookup == nullptr) return win32::HasFocus(hWnd);
  return (SDL_GetWindowFlags(window) & SDL_WINDOW_INPUT_FOCUS) != 0;
}

UINT FullMipLevels(UINT width, UINT height) {
  UINT side = width > height ? width : height, levels = 1;
  while (side > 1) {
    side >>= 1;
    ++levels;
  }
  return levels;
}

}  // namespace d3d9gl
