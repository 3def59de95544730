// Internal to the GL back end: IDirect3DDevice9 on an OpenGL 3.3 core
// context. Split by aspect:
//   GLDeviceFrame.cpp      creation, back buffer, Clear, scenes, Present,
//                          Reset, the lost-device protocol, test hooks
//   GLDeviceState.cpp      setters (record only) and the platform's defaults
//   GLDeviceResources.cpp  Create* of textures and buffers
//   GLDeviceDraw.cpp       translation of the recorded state at draw time,
//                          indexed draws, merged UP draws
//   GLDeviceBackground.cpp the background (sky) drawn after what covers it
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/d3d9/GLCommon.h"
#include "platform/d3d9/GLResources.h"
#include "platform/d3d9/GLShaders.h"

namespace d3d9gl {

// The three corners of triangle `i` of a list, strip or fan, as positions in
// the call's vertex order; odd strip triangles swap their first two, which
// keeps every triangle's winding.
inline void TriangleCorners(D3DPRIMITIVETYPE type, std::uint32_t i, std::uint32_t (&c)[3]) {
  if (type == D3DPT_TRIANGLELIST) {
    c[0] = 3 * i, c[1] = 3 * i + 1, c[2] = 3 * i + 2;
  } else if (type == D3DPT_TRIANGLEFAN) {
    c[0] = 0, c[1] = i + 1, c[2] = i + 2;
  } else if (i % 2 == 0) {
    c[0] = i, c[1] = i + 1, c[2] = i + 2;
  } else {
    c[0] = i + 1, c[1] = i, c[2] = i + 2;
  }
}

constexpr int kRenderStates = 256;
constexpr int kStages = 8;     // stages the device records (the first two are drawn)
constexpr int kSamplers = 16;  // samplers the device records
constexpr int kSamplerStates = 16;
constexpr int kStageStates = 32;

class GLDevice final : public IDirect3DDevice9 {
 public:
  // Makes the context on the window, the back buffer and the defaults.
  static HRESULT Create(HWND focusWindow, DWORD behaviorFlags, D3DPRESENT_PARAMETERS* pp,
                        IDirect3DDevice9** out);
  // The GL device behind an interface pointer; null for any other device.
  static GLDevice* From(IDirect3DDevice9* device);

  // ---- IDirect3DDevice9 --------------------------------------------------
  ULONG AddRef() override;
  ULONG Release() override;
  HRESULT TestCooperativeLevel() override;
  HRESULT Reset(D3DPRESENT_PARAMETERS* pp) override;
  HRESULT Present(const RECT* src, const RECT* dst, HWND wnd, const void* dirty) override;
  HRESULT CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                        IDirect3DTexture9** out, HANDLE* shared) override;
  HRESULT CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool,
                             IDirect3DVertexBuffer9** out, HANDLE* shared) override;
  HRESULT CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                            IDirect3DIndexBuffer9** out, HANDLE* shared) override;
  HRESULT BeginScene() override;
  HRESULT EndScene() override;
  HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                DWORD stencil) override;
  HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override;
  HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
  HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override;
  HRESULT SetTexture(DWORD stage, IDirect3DBaseTexture9* texture) override;
  HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) override;
  HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) override;
  HRESULT SetFVF(DWORD fvf) override;
  HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* vb, UINT offset,
                          UINT stride) override;
  HRESULT SetIndices(IDirect3DIndexBuffer9* ib) override;
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT baseVertex, UINT minIndex,
                               UINT numVertices, UINT startIndex, UINT primCount) override;
  HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primCount, const void* data,
                          UINT stride) override;

  // ---- back-end hooks ------------------------------------------------------
  void FlushBatch();                // carries out pending merged draws
  void FlushPending();              // merged draws, then held-back background draws
  void ForgetTexture(GLuint name);  // a GL texture is about to be deleted
  void ForgetElementBuffer() { currentElementBuffer_ = ~0u; }  // a resource bound its own
  bool ReadBack(std::vector<std::uint8_t>& rgba, UINT& width, UINT& height);
  // Draws the last presented frame into the default framebuffer of its
  // window again, as under a modal dialog; false for another window or when
  // there is none to show.
  bool ShowLastFrame(HWND hWnd);
  void SimulateLost(bool canResetNow);
  void UseSlotTests() { indexSlots_ = false; }
  void AllowReset() { simulatedCanReset_ = true; }
  FrameStats Stats() const;

 private:
  explicit GLDevice(std::shared_ptr<GLCore> core, HWND window);
  ~GLDevice() override;

  // Frame (GLDeviceFrame.cpp).
  HRESULT ApplyPresentParameters(D3DPRESENT_PARAMETERS& pp);
  bool MakeBackBuffer(UINT width, UINT height, D3DFORMAT color, D3DMULTISAMPLE_TYPE ms,
                      DWORD quality, BOOL depth, D3DFORMAT depthFormat);
  void DestroyBackBuffer();
  GLuint ResolvedFramebuffer();  // single-sample copy of the back buffer
  void ShowBackBuffer();         // into the window's client area, the rest black
  bool LossConditionHolds();     // a full-screen window minimised or unfocused
  void InitGL();

  // State (GLDeviceState.cpp).
  void SetDefaults();
  void ReleaseBindings();
  void Touch() {  // an effective state change: the pending merged draw goes first
    if (batch_.vertexCount) FlushBatch();
  }

  // Background draws (GLDeviceBackground.cpp). A draw that writes no depth,
  // made before anything else after the depth is cleared (the sky), is held
  // back while the draws after it overwrite what they cover (no blending);
  // those mark the pixels they write in the stencil, and the held-back draws
  // then go where nothing is marked, just before the first draw that blends.
  // The picture is the same, but the pixels that the opaque ground covers
  // anyway are never shaded for the background.
  struct HeldDraw;
  enum StencilUse { kStencilOff, kStencilMark, kStencilUnmarked };
  bool WritesDepth() const;
  void HoldBackground(D3DPRIMITIVETYPE type, INT baseVertex, UINT startIndex, UINT primCount);
  void DrawBackground();  // the held-back draws, where nothing is marked
  void DropBackground();  // forgets them without drawing
  void SwapState(HeldDraw& held);
  void ApplyStencil(int use);

  // Draw (GLDeviceDraw.cpp).
  struct Layout {
    UINT size = 0, color = 0, tex0 = 0, tex1 = 0;  // byte offsets; 0 = absent (colour/tex)
    bool hasColor = false;
    UINT texSets = 0;
    bool rhw = false;
    bool valid = false;
  };
  static Layout LayoutOf(DWORD fvf);
  // Program, fixed state, viewport, samplers and textures for a draw whose
  // stage-0 textures are `stage0[0..stage0Count)` (unit i holds the i-th).
  bool PrepareDraw(IDirect3DBaseTexture9* const* stage0, int stage0Count);
  D3DMATRIX WorldViewProjection() const;
  void BindVertexLayout(GLuint buffer, const Layout& layout, UINT stride, std::size_t offset,
                        bool slotted);
  void ApplyFixedState();
  void ApplySampler(int stage, GLuint unitFirst, GLuint unitCount);
  void BindTexture(GLuint unit, GLuint name);
  void BindForDrawing(GLuint unit, GLTexture* texture);
  void DrawUnbatched(D3DPRIMITIVETYPE type, UINT primCount, const void* data, UINT stride);
  // The GL draw of a checked DrawIndexedPrimitive with the state recorded now.
  void DrawIndexed(D3DPRIMITIVETYPE type, INT baseVertex, UINT startIndex, UINT primCount);
  std::size_t StreamWrite(GLuint& buffer, std::size_t& offset, std::size_t& capacity, GLenum target,
                          const void* data, std::size_t bytes, std::size_t align);

  // Index lists the GL cannot take as they are (GLDeviceIndices.cpp): a base
  // vertex that no attribute offset can carry, and wireframe on a GL without
  // polygon modes (WebGL2 in most browsers), drawn as the edges of the
  // triangles that culling keeps. `vertices` are the draw's vertex bytes,
  // `numbers` its vertex numbers in primitive order.
  bool DrawsEdges(D3DPRIMITIVETYPE type) const;
  void DrawEdges(D3DPRIMITIVETYPE type, UINT primCount, const std::vector<std::uint32_t>& numbers,
                 const std::uint8_t* vertices, UINT stride, bool rhw);
  void DrawNumbered(GLenum mode, const std::vector<std::uint32_t>& numbers);

  // ---- members ---------------------------------------------------------------
  std::shared_ptr<GLCore> core_;
  HWND window_;
  ULONG refs_ = 1;

  // Presentation and back buffer.
  D3DPRESENT_PARAMETERS pp_{};
  GLuint fbo_ = 0, colorRb_ = 0, depthRb_ = 0;  // the back buffer
  GLuint resolveFbo_ = 0, resolveRb_ = 0;       // its single-sample copy when multisampled
  UINT bbWidth_ = 0, bbHeight_ = 0;
  bool inScene_ = false;
  bool lost_ = false;
  bool simulatedLoss_ = false, simulatedCanReset_ = false;
  bool indexSlots_ = Limits().slotIndexedSamplers;
  bool sawFocus_ = false;
  bool ownStencil_ = false;  // the depth buffer has a stencil for the back end's use
  bool freshDepth_ = false;  // depth and stencil cleared, nothing drawn since
  bool replaying_ = false;   // the held-back draws are being drawn
  std::vector<std::unique_ptr<HeldDraw>> background_;

  // Recorded state: what the setters record and the next draw translates.
  // One record, so that a held-back draw keeps it whole.
  struct RecordedState {
    DWORD rs[kRenderStates] = {};
    DWORD tss[kStages][kStageStates] = {};
    DWORD ss[kSamplers][kSamplerStates] = {};
    IDirect3DBaseTexture9* textures[kSamplers] = {};
    D3DMATRIX world{}, view{}, proj{};
    D3DVIEWPORT9 viewport{};
    DWORD fvf = 0;
    GLVertexBuffer* stream = nullptr;
    UINT streamOffset = 0, streamStride = 0;
    GLIndexBuffer* indices = nullptr;
  } state_;
  // A background draw held back: the state it was made under, and its call.
  struct HeldDraw {
    RecordedState state;
    D3DPRIMITIVETYPE type;
    INT baseVertex;
    UINT startIndex, primCount;
  };

  // Serial numbers tell programs and samplers what they last saw.
  std::uint64_t wvpSerial_ = 1, viewportSerial_ = 1;
  bool fixedDirty_ = true;
  bool samplerDirty_[kShaderStages] = {true, true};
  bool viewportDirty_ = true;

  // GL objects and what is bound, so no GL call repeats a binding.
  ShaderCache shaders_;
  GLuint vao_ = 0;
  GLuint samplers_[kShaderStages] = {};
  GLuint boundTextures_[kStage1Unit + 1] = {};
  GLuint boundSamplers_[kStage1Unit + 1] = {};
  GLuint currentProgram_ = 0;
  GLuint currentElementBuffer_ = 0;
  GLuint streamVb_ = 0, streamIb_ = 0;
  std::size_t streamVbOffset_ = 0, streamVbCapacity_ = 0;
  std::size_t streamIbOffset_ = 0, streamIbCapacity_ = 0;
  struct GLFixed {  // GL fixed-function state as last set
    int blend = -1, srcBlend = -1, dstBlend = -1, depthTest = -1, depthMask = -1, depthFunc = -1;
    int cull = -1, fill = -1, dither = -1, stencil = -1;
  } gl_;

  // Pending merged UP draw: vertices in the caller's layout, one texture slot
  // per vertex, triangle-list indices.
  struct Batch {
    DWORD fvf = 0;
    UINT stride = 0;
    std::uint32_t vertexCount = 0;
    std::vector<std::uint8_t> vertices;
    std::vector<std::uint8_t> slots;
    std::vector<std::uint16_t> indices;  // kBatchVertexLimit keeps them within 16 bits
    IDirect3DBaseTexture9* textures[kBatchTextures] = {};
    int textureCount = 0;  // none: stage 0 has no texture for these draws
  } batch_;

  FrameStats stats_;
};

}  // namespace d3d9gl
