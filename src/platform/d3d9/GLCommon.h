// Internal to the GL back end: the GL context holder shared by a device and
// its resources, what the machine's GL can do, the window port, logging.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/d3d9/d3d9.h"
#include "platform/gl/GLApi.h"

struct SDL_Window;

namespace d3d9gl {

class GLDevice;

// One log function for the layer: level and a "Class::Method" prefix, stderr.
enum class LogLevel { Info, Warn, Error };
void Log(LogLevel level, const char* where, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// What the GL implementation can do, read once from a probe context. Every
// difference between desktop OpenGL and OpenGL ES (a web page's WebGL2) that
// the drawing code must know is decided here, once.
struct GLLimits {
  bool valid = false;
  // OpenGL ES 3.0: GLSL ES shaders, textures uploaded as R, G, B, A bytes
  // (no BGRA, reversed packed formats or swizzle), no base vertex, no
  // glGetTexImage.
  bool es = false;
  // The context is a web page's canvas: it has one WebGL context for its
  // whole life, and the browser's animation frames pace the presents.
  bool page = false;
  // glPolygonMode is there (desktop GL; WEBGL_polygon_mode in a page).
  // Without it wireframe draws triangles as line lists.
  bool polygonMode = false;
  // glProvokingVertex is there; without it flat colour comes from the last
  // vertex of a triangle instead of the first.
  bool provokingVertex = false;
  char renderer[256] = {};
  char version[128] = {};
  GLint maxTextureSize = 0;
  GLint maxSamples = 0;
  std::uint32_t sampleCounts = 0;  // bit n: n samples work for RGBA8 and depth
  float maxAnisotropy = 1.0f;
  bool anisotropic = false;
  bool s3tc = false;
  bool rgb565Renderable = false;
  bool rgb5a1Renderable = false;
  bool swapImmediate = false;  // swap interval 0 can be set
  bool swapOne = false;        // swap interval 1 can be set
  // Software GL, which shades a triangle at a time, with sampler arrays that
  // take a non-constant index: a merged draw then picks its texture by slot.
  bool slotIndexedSamplers = false;
};
// Probes once per process (a hidden window and a 3.3 core context, or an
// OpenGL ES 3.0 one in a page or after UseEsContext).
const GLLimits& Limits();

// Sets the attributes of the context to make; call before SDL_GL_CreateContext.
void SetContextAttributes();
// Whether the context names an extension (with or without its "GL_" prefix).
bool HasExtension(const char* name);

// The GL context of one device. Resources share it, so a texture released
// after its device still deletes its GL names in the right context.
class GLCore {
 public:
  GLCore(SDL_Window* window, void* context) : window_(window), context_(context) {}
  ~GLCore();
  GLCore(const GLCore&) = delete;
  GLCore& operator=(const GLCore&) = delete;

  // Makes this context current if another one is. False when it cannot be
  // (window or video system gone): callers then skip their GL calls, which
  // lets resources be released safely at any time, even at process exit.
  bool MakeCurrent();
  SDL_Window* Window() const { return window_; }
  // The living device of this context, or null once it is gone. Resources
  // ask it to carry out pending draws before they change GL data.
  GLDevice* owner = nullptr;
  // Live D3DPOOL_DEFAULT resources: Reset refuses while there are any.
  int defaultPoolResources = 0;

 private:
  SDL_Window* window_;
  void* context_;
};

// Window port: the SDL window of a handle, and its client area in pixels of
// the GL drawable (origin bottom left, as glViewport counts).
SDL_Window* SdlWindowOf(HWND hWnd);
// Whether frames begun from now on take the plain path (UsePlainPath).
bool PlainPath();
// Whether D3DFMT_D32 is offered as a depth format (OfferDepth32).
bool Depth32Offered();

struct ClientArea {
  int x = 0, y = 0, width = 0, height = 0;
};
ClientArea ClientAreaOf(HWND hWnd, SDL_Window* window);
bool IsMinimized(HWND hWnd, SDL_Window* window);
bool HasFocus(HWND hWnd, SDL_Window* window);

// Full mip chain length for a size.
UINT FullMipLevels(UINT width, UINT height);

}  // namespace d3d9gl
