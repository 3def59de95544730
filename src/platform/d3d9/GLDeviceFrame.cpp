// Device life and frames: the context on the window, the offscreen back
// buffer, Clear, scenes, Present into the client area, Reset, and the
// lost-device protocol of a full-screen device; plus the back-end hooks.
#include <SDL.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/d3d9/GLDevice.h"
#include "platform/win32/overlay/Win32Overlay.h"
#include "platform/win32/sdl/Win32Page.h"

namespace d3d9gl {

namespace {
// The window's overlay UI (its menu bar) unless a test puts its own hook in.
void DrawOverlay(HWND hWnd, void*) {
  win32::overlay::DrawWindowOverlay(hWnd);
}

PresentHook s_presentHook = &DrawOverlay;
void* s_presentHookUser = nullptr;

// The device whose frame the window shows now: a modal dialog shows it again
// under itself.
GLDevice* s_shown = nullptr;

bool DrawLastFrame(HWND hWnd) {
  return s_shown && s_shown->ShowLastFrame(hWnd);
}

// The first frames of a device are when a driver builds most of what it
// keeps: on software GL, LLVM compiles each new shader state and frees tens
// of MB of working memory that glibc keeps inside the process. Giving free
// pages back after presents 1, 2, 4, ... 1024 catches that while it is new,
// at a cost of 1 to 2.5 ms each, and none after the first minute or so.
void ReturnFreedMemory(std::uint32_t presents) {
#ifdef __GLIBC__
  if (presents <= 1024 && (presents & (presents - 1)) == 0) malloc_trim(0);
#else
  (void)presents;
#endif
}

}  // namespace

// ---- life ------------------------------------------------------------------

GLDevice::GLDevice(std::shared_ptr<GLCore> core, HWND window)
    : core_(std::move(core)), window_(window) {}

GLDevice::~GLDevice() {
  bool current = core_->MakeCurrent();
  for (int i = 0; i < batch_.textureCount; ++i) batch_.textures[i]->Release();
  batch_.textureCount = 0;
  batch_.vertexCount = 0;
  DropBackground();
  ReleaseBindings();
  if (current) {
    DestroyBackBuffer();
    shaders_.Clear();
    if (vao_) glDeleteVertexArrays(1, &vao_);
    // The overlay's GL objects live in this context too.
    win32::overlay::ReleaseGL();
    glDeleteSamplers(kShaderStages, samplers_);
    if (streamVb_) glDeleteBuffers(1, &streamVb_);
    if (streamIb_) glDeleteBuffers(1, &streamIb_);
    // Releasing a full-screen device gives the desktop its mode back.
    if (!pp_.Windowed) SDL_SetWindowFullscreen(core_->Window(), 0);
  }
  core_->owner = nullptr;
  if (s_shown == this) s_shown = nullptr;
}

HRESULT GLDevice::Create(HWND focusWindow, DWORD behaviorFlags, D3DPRESENT_PARAMETERS* pp,
                         IDirect3DDevice9** out) {
  if (out == nullptr || pp == nullptr) return D3DERR_INVALIDCALL;
  *out = nullptr;
  DWORD vp =
      behaviorFlags & (D3DCREATE_SOFTWARE_VERTEXPROCESSING | D3DCREATE_HARDWARE_VERTEXPROCESSING |
                       D3DCREATE_MIXED_VERTEXPROCESSING);
  if (vp != D3DCREATE_SOFTWARE_VERTEXPROCESSING && vp != D3DCREATE_HARDWARE_VERTEXPROCESSING &&
      vp != D3DCREATE_MIXED_VERTEXPROCESSING)
    return D3DERR_INVALIDCALL;  // exactly one kind of vertex processing
  HWND hwnd = pp->hDeviceWindow ? pp->hDeviceWindow : focusWindow;
  SDL_Window* window = SdlWindowOf(hwnd);
  if (window == nullptr) {
    Log(LogLevel::Error, "IDirect3D9::CreateDevice", "the window has no SDL window to draw into");
    return D3DERR_INVALIDCALL;
  }
  if (!Limits().valid) return D3DERR_NOTAVAILABLE;
  SetContextAttributes();
  SDL_GLContext context = SDL_GL_CreateContext(window);
  if (context == nullptr) {
    Log(LogLevel::Error, "IDirect3D9::CreateDevice", "no GL context: %s", SDL_GetError());
    return D3DERR_NOTAVAILABLE;
  }
  auto core = std::make_shared<GLCore>(window, context);
  auto* device = new GLDevice(core, hwnd);
  core->owner = device;
  device->InitGL();
  HRESULT hr = device->ApplyPresentParameters(*pp);
  if (FAILED(hr)) {
    device->Release();
    return hr;
  }
  device->SetDefaults();
  *out = device;
  return D3D_OK;
}

void GLDevice::InitGL() {
  glGenVertexArrays(1, &vao_);
  glBindVertexArray(vao_);
  glEnableVertexAttribArray(kAttrPosition);
  // Constant values of attributes a vertex lacks: opaque white, (0, 0), slot 0.
  glVertexAttrib4f(kAttrColor, 1.0f, 1.0f, 1.0f, 1.0f);
  glVertexAttrib4f(kAttrTex0, 0.0f, 0.0f, 0.0f, 1.0f);
  glVertexAttrib4f(kAttrTex1, 0.0f, 0.0f, 0.0f, 1.0f);
  glVertexAttribI4ui(kAttrSlot, 0, 0, 0, 0);
  glGenSamplers(kShaderStages, samplers_);
  // The streaming buffers of UP draws; StreamWrite gives them storage.
  glGenBuffers(1, &streamVb_);
  glGenBuffers(1, &streamIb_);
  // Clockwise on screen is the platform's front face; the image is kept
  // upright in the framebuffer, so GL sees the same winding.
  glFrontFace(GL_CW);
  if (Limits().provokingVertex) glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
}

ULONG GLDevice::AddRef() {
  return ++refs_;
}

ULONG GLDevice::Release() {
  ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

GLDevice* GLDevice::From(IDirect3DDevice9* device) {
  return dynamic_cast<GLDevice*>(device);
}

// ---- back buffer ---------------------------------------------------------------

void GLDevice::DestroyBackBuffer() {
  if (fbo_) glDeleteFramebuffers(1, &fbo_);
  if (resolveFbo_) glDeleteFramebuffers(1, &resolveFbo_);
  GLuint rbs[] = {colorRb_, depthRb_, resolveRb_};
  for (GLuint rb : rbs)
    if (rb) glDeleteRenderbuffers(1, &rb);
  fbo_ = resolveFbo_ = colorRb_ = depthRb_ = resolveRb_ = 0;
  ownStencil_ = freshDepth_ = false;
}

bool GLDevice::MakeBackBuffer(UINT width, UINT height, D3DFORMAT color, D3DMULTISAMPLE_TYPE ms,
                              DWORD quality, BOOL depth, D3DFORMAT depthFormat) {
  DestroyBackBuffer();
  int samples = 0;
  if (ms == D3DMULTISAMPLE_NONMASKABLE) {
    // Quality level q is the (q+1)-th sample count the machine supports.
    DWORD level = 0;
    for (int n = 2; n <= 16; ++n)
      if ((Limits().sampleCounts >> n & 1) && level++ == quality) samples = n;
  } else if (ms >= D3DMULTISAMPLE_2_SAMPLES) {
    samples = int(ms);
  }
  auto storage = [&](GLuint rb, GLenum format, int n) {
    glBindRenderbuffer(GL_RENDERBUFFER, rb);
    if (n > 0)
      glRenderbufferStorageMultisample(GL_RENDERBUFFER, n, format, GLsizei(width), GLsizei(height));
    else
      glRenderbufferStorage(GL_RENDERBUFFER, format, GLsizei(width), GLsizei(height));
  };
  glGenFramebuffers(1, &fbo_);
  glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
  glGenRenderbuffers(1, &colorRb_);
  storage(colorRb_, BackBufferInternalFormat(color), samples);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colorRb_);
  if (depth) {
    const GLenum twin = DepthStencilTwin(depthFormat);
    ownStencil_ = twin != 0;
    const GLenum df = ownStencil_ ? twin : DepthInternalFormat(depthFormat);
    glGenRenderbuffers(1, &depthRb_);
    storage(depthRb_, df, samples);
    glFramebufferRenderbuffer(
        GL_FRAMEBUFFER,
        df == GL_DEPTH24_STENCIL8 ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
        GL_RENDERBUFFER, depthRb_);
  }
  bool ok = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (ok && samples > 0) {
    glGenFramebuffers(1, &resolveFbo_);
    glBindFramebuffer(GL_FRAMEBUFFER, resolveFbo_);
    glGenRenderbuffers(1, &resolveRb_);
    storage(resolveRb_, BackBufferInternalFormat(color), 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, resolveRb_);
    ok = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
  }
  if (!ok) {
    Log(LogLevel::Error, "GLDevice::MakeBackBuffer", "incomplete %ux%u back buffer (%d samples)",
        width, height, samples);
    DestroyBackBuffer();
    return false;
  }
  bbWidth_ = width;
  bbHeight_ = height;
  // A new back buffer reads black, with depth at its far value.
  glDisable(GL_SCISSOR_TEST);
  glDepthMask(GL_TRUE);
  gl_.depthMask = 1;
  fixedDirty_ = true;
  glClearColor(0, 0, 0, 0);
  glClearDepthf(1.0f);
  glClear(GL_COLOR_BUFFER_BIT | (depth ? GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT : 0));
  return true;
}

GLuint GLDevice::ResolvedFramebuffer() {
  if (resolveFbo_ == 0) return fbo_;
  glBindFramebuffer(GL_READ_FRAMEBUFFER, fbo_);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolveFbo_);
  glBlitFramebuffer(0, 0, GLint(bbWidth_), GLint(bbHeight_), 0, 0, GLint(bbWidth_),
                    GLint(bbHeight_), GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
  return resolveFbo_;
}

HRESULT GLDevice::ApplyPresentParameters(D3DPRESENT_PARAMETERS& pp) {
  SDL_Window* window = core_->Window();
  if (pp.BackBufferFormat == D3DFMT_UNKNOWN && pp.Windowed) pp.BackBufferFormat = D3DFMT_X8R8G8B8;
  if (BackBufferInternalFormat(pp.BackBufferFormat) == 0 || pp.BackBufferCount > 1 ||
      pp.SwapEffect < D3DSWAPEFFECT_DISCARD || pp.SwapEffect > D3DSWAPEFFECT_COPY ||
      (pp.EnableAutoDepthStencil && DepthInternalFormat(pp.AutoDepthStencilFormat) == 0))
    return D3DERR_INVALIDCALL;
  if (pp.MultiSampleType == D3DMULTISAMPLE_NONMASKABLE) {
    DWORD levels = 0;
    for (int n = 2; n <= 16; ++n) levels += Limits().sampleCounts >> n & 1;
    if (pp.MultiSampleQuality >= levels) return D3DERR_INVALIDCALL;
  } else if (pp.MultiSampleType != D3DMULTISAMPLE_NONE &&
             (pp.MultiSampleType > 16 || !(Limits().sampleCounts >> pp.MultiSampleType & 1) ||
              pp.MultiSampleQuality != 0)) {
    return D3DERR_INVALIDCALL;
  }
  int interval;
  switch (pp.PresentationInterval) {
    case D3DPRESENT_INTERVAL_IMMEDIATE:
      interval = 0;
      break;
    case D3DPRESENT_INTERVAL_DEFAULT:
    case D3DPRESENT_INTERVAL_ONE:
      interval = 1;
      break;
    default:
      return D3DERR_INVALIDCALL;  // SDL swaps every frame or immediately
  }
  if (!pp.Windowed) {
    if (pp.BackBufferWidth == 0 || pp.BackBufferHeight == 0) return D3DERR_INVALIDCALL;
    SDL_DisplayMode want{SDL_PIXELFORMAT_UNKNOWN, int(pp.BackBufferWidth), int(pp.BackBufferHeight),
                         int(pp.FullScreen_RefreshRateInHz), nullptr};
    SDL_DisplayMode mode;
    int display = SDL_GetWindowDisplayIndex(window);
    if (SDL_GetClosestDisplayMode(display < 0 ? 0 : display, &want, &mode) == nullptr)
      return D3DERR_INVALIDCALL;
    if (SDL_SetWindowDisplayMode(window, &mode) != 0 ||
        SDL_SetWindowFullscreen(window, SDL_WINDOW_FULLSCREEN) != 0) {
      Log(LogLevel::Error, "GLDevice::Reset", "cannot go full screen at %dx%d: %s", mode.w, mode.h,
          SDL_GetError());
      return D3DERR_NOTAVAILABLE;
    }
  } else {
    if (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN) SDL_SetWindowFullscreen(window, 0);
    ClientArea area = ClientAreaOf(window_, window);
    if (pp.BackBufferWidth == 0) pp.BackBufferWidth = UINT(std::max(area.width, 1));
    if (pp.BackBufferHeight == 0) pp.BackBufferHeight = UINT(std::max(area.height, 1));
  }
  if (GLint(pp.BackBufferWidth) > Limits().maxTextureSize ||
      GLint(pp.BackBufferHeight) > Limits().maxTextureSize)
    return D3DERR_INVALIDCALL;
  pp.BackBufferCount = 1;
  if (!MakeBackBuffer(pp.BackBufferWidth, pp.BackBufferHeight, pp.BackBufferFormat,
                      pp.MultiSampleType, pp.MultiSampleQuality, pp.EnableAutoDepthStencil,
                      pp.AutoDepthStencilFormat))
    return D3DERR_OUTOFVIDEOMEMORY;
  if (!Limits().page) SDL_GL_SetSwapInterval(interval);
  pp_ = pp;
  return D3D_OK;
}

// ---- frames --------------------------------------------------------------------

HRESULT GLDevice::BeginScene() {
  if (inScene_) return D3DERR_INVALIDCALL;
  inScene_ = true;
  return D3D_OK;
}

HRESULT GLDevice::EndScene() {
  if (!inScene_) return D3DERR_INVALIDCALL;
  inScene_ = false;
  FlushPending();
  return D3D_OK;
}

HRESULT GLDevice::Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                        DWORD stencil) {
  if ((count > 0 && rects == nullptr) ||
      (flags & ~DWORD(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL)))
    return D3DERR_INVALIDCALL;
  if ((flags & D3DCLEAR_ZBUFFER) && depthRb_ == 0) return D3DERR_INVALIDCALL;
  if ((flags & D3DCLEAR_STENCIL) && pp_.AutoDepthStencilFormat != D3DFMT_D24S8)
    return D3DERR_INVALIDCALL;
  if (lost_ || !core_->MakeCurrent()) return D3D_OK;
  FlushPending();
  GLbitfield mask = 0;
  if (flags & D3DCLEAR_TARGET) mask |= GL_COLOR_BUFFER_BIT;
  if (flags & D3DCLEAR_ZBUFFER) mask |= GL_DEPTH_BUFFER_BIT;
  if (flags & D3DCLEAR_STENCIL) mask |= GL_STENCIL_BUFFER_BIT;
  // The stencil the back end keeps for itself is cleared with the depth
  // (packed beside it, this costs nothing more); the device has no stencil
  // states, so what a caller clears it to is never seen.
  if (ownStencil_ && (flags & D3DCLEAR_ZBUFFER)) {
    mask |= GL_STENCIL_BUFFER_BIT;
    stencil = 0;
  }
  glClearColor(float((color >> 16) & 0xFF) / 255.0f, float((color >> 8) & 0xFF) / 255.0f,
               float(color & 0xFF) / 255.0f, float(color >> 24) / 255.0f);
  glClearDepthf(std::clamp(z, 0.0f, 1.0f));
  glClearStencil(GLint(stencil));
  // The platform clears whatever the depth write state says.
  glDepthMask(GL_TRUE);
  gl_.depthMask = 1;
  fixedDirty_ = true;
  glEnable(GL_SCISSOR_TEST);
  // Cleared rectangles are cut to the viewport; Y counts from the top.
  LONG vx1 = LONG(state_.viewport.X), vy1 = LONG(state_.viewport.Y);
  LONG vx2 = vx1 + LONG(state_.viewport.Width), vy2 = vy1 + LONG(state_.viewport.Height);
  D3DRECT whole{vx1, vy1, vx2, vy2};
  bool everyPixel = false;
  for (DWORD i = 0; i < std::max<DWORD>(count, 1); ++i) {
    const D3DRECT& r = count ? rects[i] : whole;
    LONG x1 = std::max(r.x1, vx1), y1 = std::max(r.y1, vy1), x2 = std::min(r.x2, vx2),
         y2 = std::min(r.y2, vy2);
    if (x2 <= x1 || y2 <= y1) continue;
    glScissor(x1, GLint(bbHeight_) - y2, x2 - x1, y2 - y1);
    glClear(mask);
    everyPixel =
        everyPixel || (x1 == 0 && y1 == 0 && UINT(x2) == bbWidth_ && UINT(y2) == bbHeight_);
  }
  freshDepth_ = !PlainPath() && ownStencil_ && (flags & D3DCLEAR_ZBUFFER) && everyPixel;
  glDisable(GL_SCISSOR_TEST);
  return D3D_OK;
}

bool GLDevice::LossConditionHolds() {
  if (pp_.Windowed) {
    sawFocus_ = false;
    return false;
  }
  SDL_Window* w = core_->Window();
  bool focus = HasFocus(window_, w);
  if (focus) sawFocus_ = true;
  // A window that never had focus (a headless run) cannot lose it.
  return IsMinimized(window_, w) || (sawFocus_ && !focus);
}

HRESULT GLDevice::Present(const RECT* src, const RECT* dst, HWND wnd, const void* dirty) {
  if (src != nullptr || dst != nullptr || wnd != nullptr || dirty != nullptr)
    return D3DERR_INVALIDCALL;
  if (!core_->MakeCurrent()) return D3DERR_DEVICELOST;
  FlushPending();
  if (lost_ || simulatedLoss_) return D3DERR_DEVICELOST;
  if (LossConditionHolds()) {
    lost_ = true;
    return D3DERR_DEVICELOST;
  }
  ShowBackBuffer();
  viewportDirty_ = true;
  if (s_presentHook) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    s_presentHook(window_, s_presentHookUser);
    // The overlay may leave any GL state: forget what we believe is bound.
    glBindVertexArray(vao_);
    currentProgram_ = 0;
    glUseProgram(0);
    currentElementBuffer_ = ~0u;
    std::fill(std::begin(boundTextures_), std::end(boundTextures_), ~0u);
    std::fill(std::begin(boundSamplers_), std::end(boundSamplers_), ~0u);
    gl_ = GLFixed{};
    fixedDirty_ = true;
    glDisable(GL_SCISSOR_TEST);
    glFrontFace(GL_CW);
    for (auto& d : samplerDirty_) d = true;
  }
  SDL_GL_SwapWindow(core_->Window());
  win32::page::AwaitAnimationFrame();
  glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
  s_shown = this;
  win32::overlay::SetBackdropHook(&DrawLastFrame);
  stats_.lastFrameGlDrawCalls = std::exchange(stats_.glDrawCalls, 0);
  stats_.lastFrameUpCalls = std::exchange(stats_.upCalls, 0);
  stats_.lastFrameUpGlDraws = std::exchange(stats_.upGlDraws, 0);
  ++stats_.presents;
  ReturnFreedMemory(stats_.presents);
  return D3D_OK;
}

void GLDevice::ShowBackBuffer() {
  GLuint read = ResolvedFramebuffer();
  ClientArea area = ClientAreaOf(window_, core_->Window());
  glBindFramebuffer(GL_READ_FRAMEBUFFER, read);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  glViewport(0, 0, area.width, area.height);
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  bool sameSize = UINT(area.width) == bbWidth_ && UINT(area.height) == bbHeight_;
  glBlitFramebuffer(0, 0, GLint(bbWidth_), GLint(bbHeight_), area.x, area.y, area.x + area.width,
                    area.y + area.height, GL_COLOR_BUFFER_BIT, sameSize ? GL_NEAREST : GL_LINEAR);
}

bool GLDevice::ShowLastFrame(HWND hWnd) {
  if (hWnd != window_ || lost_ || fbo_ == 0 || !core_->MakeCurrent()) return false;
  FlushPending();
  ShowBackBuffer();
  return true;
}

HRESULT GLDevice::TestCooperativeLevel() {
  if (simulatedLoss_) return simulatedCanReset_ ? D3DERR_DEVICENOTRESET : D3DERR_DEVICELOST;
  if (lost_) {
    SDL_Window* w = core_->Window();
    bool stillLost = IsMinimized(window_, w) || (sawFocus_ && !HasFocus(window_, w));
    return stillLost ? D3DERR_DEVICELOST : D3DERR_DEVICENOTRESET;
  }
  if (LossConditionHolds()) {
    lost_ = true;
    return D3DERR_DEVICELOST;
  }
  return D3D_OK;
}

HRESULT GLDevice::Reset(D3DPRESENT_PARAMETERS* pp) {
  if (pp == nullptr) return D3DERR_INVALIDCALL;
  if (!core_->MakeCurrent()) return D3DERR_DEVICELOST;
  FlushPending();
  // Default-pool resources must be released before a reset, as on the platform.
  if (core_->defaultPoolResources > 0) return D3DERR_INVALIDCALL;
  if (TestCooperativeLevel() == D3DERR_DEVICELOST) return D3DERR_DEVICELOST;
  ReleaseBindings();
  inScene_ = false;
  HRESULT hr = ApplyPresentParameters(*pp);
  if (FAILED(hr)) {
    lost_ = true;  // stays lost; a later Reset may succeed
    return hr;
  }
  lost_ = false;
  simulatedLoss_ = simulatedCanReset_ = false;
  sawFocus_ = false;
  SetDefaults();
  return D3D_OK;
}

// ---- back-end hooks ------------------------------------------------------------

bool GLDevice::ReadBack(std::vector<std::uint8_t>& rgba, UINT& width, UINT& height) {
  if (!core_->MakeCurrent() || fbo_ == 0) return false;
  FlushPending();
  GLuint read = ResolvedFramebuffer();
  glBindFramebuffer(GL_READ_FRAMEBUFFER, read);
  width = bbWidth_;
  height = bbHeight_;
  std::vector<std::uint8_t> rows(std::size_t(width) * height * 4);
  glReadPixels(0, 0, GLsizei(width), GLsizei(height), GL_RGBA, GL_UNSIGNED_BYTE, rows.data());
  glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
  // GL gives the bottom row first; the platform's surfaces start at the top.
  rgba.resize(rows.size());
  std::size_t stride = std::size_t(width) * 4;
  for (UINT y = 0; y < height; ++y)
    std::memcpy(rgba.data() + y * stride, rows.data() + (height - 1 - y) * stride, stride);
  if (pp_.BackBufferFormat == D3DFMT_X8R8G8B8 || pp_.BackBufferFormat == D3DFMT_R5G6B5 ||
      pp_.BackBufferFormat == D3DFMT_X1R5G5B5)
    for (std::size_t i = 3; i < rgba.size(); i += 4) rgba[i] = 0xFF;
  return true;
}

void GLDevice::SimulateLost(bool canResetNow) {
  FlushPending();
  lost_ = true;
  simulatedLoss_ = true;
  simulatedCanReset_ = canResetNow;
}

FrameStats GLDevice::Stats() const {
  FrameStats s = stats_;
  s.shaderPrograms = std::uint32_t(shaders_.size());
  return s;
}

bool ReadBackBufferRGBA(IDirect3DDevice9* device, std::vector<std::uint8_t>& rgba, UINT& width,
                        UINT& height) {
  GLDevice* d = GLDevice::From(device);
  return d != nullptr && d->ReadBack(rgba, width, height);
}

bool ReadBackBuffer(IDirect3DDevice9* device, std::vector<std::uint32_t>& argb, UINT& width,
                    UINT& height) {
  std::vector<std::uint8_t> rgba;
  if (!ReadBackBufferRGBA(device, rgba, width, height)) return false;
  argb.resize(rgba.size() / 4);
  for (std::size_t i = 0; i < argb.size(); ++i) {
    const std::uint8_t* p = &rgba[i * 4];
    argb[i] =
        std::uint32_t(p[3]) << 24 | std::uint32_t(p[0]) << 16 | std::uint32_t(p[1]) << 8 | p[2];
  }
  return true;
}

void SimulateDeviceLost(IDirect3DDevice9* device, bool canResetNow) {
  if (GLDevice* d = GLDevice::From(device)) d->SimulateLost(canResetNow);
}

void UseSlotTests(IDirect3DDevice9* device) {
  if (GLDevice* d = GLDevice::From(device)) d->UseSlotTests();
}

void AllowReset(IDirect3DDevice9* device) {
  if (GLDevice* d = GLDevice::From(device)) d->AllowReset();
}

bool GetFrameStats(IDirect3DDevice9* device, FrameStats& stats) {
  GLDevice* d = GLDevice::From(device);
  if (d == nullptr) return false;
  stats = d->Stats();
  return true;
}

void Flush(IDirect3DDevice9* device) {
  if (GLDevice* d = GLDevice::From(device)) d->FlushPending();
}

namespace {
bool s_plainPath = false;
bool s_offerDepth32 = true;
}  // namespace

void UsePlainPath(bool plain) {
  s_plainPath = plain;
}

bool PlainPath() {
  return s_plainPath;
}

void OfferDepth32(bool offer) {
  s_offerDepth32 = offer;
}

bool Depth32Offered() {
  return s_offerDepth32;
}

void SetPresentHook(PresentHook hook, void* user) {
  s_presentHook = hook ? hook : &DrawOverlay;
  s_presentHookUser = user;
}

}  // namespace d3d9gl
