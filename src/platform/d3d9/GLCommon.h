// Internal to the GL back end: the GL context holder shared by a device and
// its resources, what the machine's GL can do, the window port, logging.
#pragma once

#include <epoxy/gl.h>

#include <cstdint>
#include <memory>

#include "platform/d3d9/d3d9.h"

struct SDL_Window;

namespace d3d9gl {

class GLDevice;

// One log function for the layer: level and a "Class::Method" prefix, stderr.
enum class LogLevel { Info, Warn, Error };
void Log(LogLevel level, const char* where, const char* format, ...) __attribute__((format(printf, 3, 4)));

// What the GL implementation can do, read once from a probe context.
struct GLLimits {
  bool valid = false;
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
// Probes once per process (a hidden window and a 3.3 core context).
const GLLimits& Limits();

// Sets the attributes of a 3.3 core context; call before SDL_GL_CreateContext.
void SetContextAttributes();

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
