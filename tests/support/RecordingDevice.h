// RecordingDevice: a fake IDirect3DDevice9 for tests that need no GPU.
//
// Every device call is appended to a log as a DeviceCall (method name plus its
// arguments as numbers), so a test can compare what the code under test sent
// with what it should have sent. The fake also keeps the current state (render,
// sampler and stage states with the platform's defaults, bound texture,
// streams, transforms, viewport, FVF), and makes buffers and textures with real
// memory, so Lock/LockRect work and the contents can be read back.
//
// Reference counts behave like the platform's: Create* hands out one
// reference, SetTexture/SetStreamSource/SetIndices hold one while bound.
// LiveResources() tells how many buffers and textures are still alive.
//
// Header-only on purpose: a test just includes "support/RecordingDevice.h".
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "platform/d3d9/d3d9.h"

namespace karvo_test {

// One recorded call. Arguments are numbers in call order: enum values, counts,
// floats, and pointers as their address (use Ptr()). Equality compares the
// method and the arguments only; `data` holds a copy of DrawPrimitiveUP's
// vertices (vertex count times stride bytes).
struct DeviceCall {
  std::string method;
  std::vector<double> args;
  std::vector<std::uint8_t> data;

  DeviceCall() = default;
  DeviceCall(std::string m, std::vector<double> a = {}) : method(std::move(m)), args(std::move(a)) {}
  bool operator==(const DeviceCall& o) const { return method == o.method && args == o.args; }
};

inline double Ptr(const void* p) { return static_cast<double>(reinterpret_cast<std::uintptr_t>(p)); }

inline std::ostream& operator<<(std::ostream& os, const DeviceCall& c) {
  os << c.method << "(";
  for (std::size_t i = 0; i < c.args.size(); ++i) {
    double v = c.args[i];
    os << (i ? ", " : "");
    // Whole numbers (enums, counts, addresses) print exactly, in full.
    if (v == static_cast<double>(static_cast<long long>(v)))
      os << static_cast<long long>(v);
    else
      os << v;
  }
  return os << ")";
}

// Vertices that `count` primitives of `type` take.
inline UINT VerticesFor(D3DPRIMITIVETYPE type, UINT count) {
  switch (type) {
    case D3DPT_POINTLIST: return count;
    case D3DPT_LINELIST: return count * 2;
    case D3DPT_LINESTRIP: return count + 1;
    case D3DPT_TRIANGLELIST: return count * 3;
    case D3DPT_TRIANGLESTRIP:
    case D3DPT_TRIANGLEFAN: return count + 2;
  }
  return 0;
}

namespace detail {

// What the device and the resources it made share, so a resource may outlive
// the device object without dangling.
struct SharedLog {
  std::vector<DeviceCall> calls;
  int liveResources = 0;
  HRESULT lockResult = D3D_OK;
};

template <class Interface>
class FakeBuffer : public Interface {
 public:
  FakeBuffer(std::shared_ptr<SharedLog> log, const char* kind, UINT length, DWORD usage, DWORD format,
             D3DPOOL pool)
      : log_(std::move(log)), kind_(kind), bytes_(length), usage_(usage), format_(format), pool_(pool) {
    ++log_->liveResources;
  }
  ULONG AddRef() override { return ++refs_; }
  ULONG Release() override {
    ULONG left = --refs_;
    if (left == 0) {
      --log_->liveResources;
      delete this;
    }
    return left;
  }
  HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override {
    log_->calls.push_back({kind_ + ".Lock", {double(offset), double(size), double(flags)}});
    if (data == nullptr || offset > bytes_.size() || (size != 0 && offset + size > bytes_.size()))
      return D3DERR_INVALIDCALL;
    if (log_->lockResult < 0) return log_->lockResult;
    *data = bytes_.data() + offset;
    locked_ = true;
    return D3D_OK;
  }
  HRESULT Unlock() override {
    log_->calls.push_back({kind_ + ".Unlock"});
    if (!locked_) return D3DERR_INVALIDCALL;
    locked_ = false;
    return D3D_OK;
  }

  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }
  DWORD Usage() const { return usage_; }
  DWORD Format() const { return format_; }  // FVF of a vertex buffer, D3DFORMAT of an index buffer
  D3DPOOL Pool() const { return pool_; }
  ULONG RefCount() const { return refs_; }
  bool Locked() const { return locked_; }

 private:
  ~FakeBuffer() override = default;
  std::shared_ptr<SharedLog> log_;
  std::string kind_;
  std::vector<std::uint8_t> bytes_;
  DWORD usage_;
  DWORD format_;
  D3DPOOL pool_;
  ULONG refs_ = 1;
  bool locked_ = false;
};

inline UINT BytesPerTexel(D3DFORMAT f) {
  switch (f) {
    case D3DFMT_A8R8G8B8:
    case D3DFMT_X8R8G8B8:
    case D3DFMT_A8B8G8R8:
    case D3DFMT_X8B8G8R8:
    case D3DFMT_A2R10G10B10: return 4;
    case D3DFMT_R8G8B8: return 3;
    case D3DFMT_L8:
    case D3DFMT_A8: return 1;
    default: return 2;
  }
}

class FakeTexture : public IDirect3DTexture9 {
 public:
  FakeTexture(std::shared_ptr<SharedLog> log, UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format,
              D3DPOOL pool)
      : log_(std::move(log)), usage_(usage), format_(format), pool_(pool) {
    ++log_->liveResources;
    UINT full = 1;
    for (UINT s = w > h ? w : h; s > 1; s >>= 1) ++full;
    if (levels == 0 || levels > full) levels = full;
    for (UINT i = 0; i < levels; ++i) {
      Level l;
      l.width = w > 1 ? w : 1;
      l.height = h > 1 ? h : 1;
      bool dxt = format == D3DFMT_DXT1 || format == D3DFMT_DXT3 || format == D3DFMT_DXT5;
      if (dxt) {
        l.pitch = ((l.width + 3) / 4) * (format == D3DFMT_DXT1 ? 8 : 16);
        l.texels.resize(std::size_t(l.pitch) * ((l.height + 3) / 4));
      } else {
        l.pitch = l.width * BytesPerTexel(format);
        l.texels.resize(std::size_t(l.pitch) * l.height);
      }
      levels_.push_back(std::move(l));
      w /= 2;
      h /= 2;
    }
  }
  ULONG AddRef() override { return ++refs_; }
  ULONG Release() override {
    ULONG left = --refs_;
    if (left == 0) {
      --log_->liveResources;
      delete this;
    }
    return left;
  }
  DWORD GetLevelCount() override { return DWORD(levels_.size()); }
  HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override {
    if (level >= levels_.size() || desc == nullptr) return D3DERR_INVALIDCALL;
    *desc = D3DSURFACE_DESC{format_, D3DRTYPE_SURFACE, usage_, pool_, D3DMULTISAMPLE_NONE, 0,
                            levels_[level].width, levels_[level].height};
    return D3D_OK;
  }
  HRESULT LockRect(UINT level, D3DLOCKED_RECT* rect, const RECT* area, DWORD flags) override {
    log_->calls.push_back({"Texture.LockRect", {double(level), Ptr(area), double(flags)}});
    if (level >= levels_.size() || rect == nullptr || area != nullptr) return D3DERR_INVALIDCALL;
    if (log_->lockResult < 0) return log_->lockResult;
    rect->Pitch = INT(levels_[level].pitch);
    rect->pBits = levels_[level].texels.data();
    return D3D_OK;
  }
  HRESULT UnlockRect(UINT level) override {
    log_->calls.push_back({"Texture.UnlockRect", {double(level)}});
    return level < levels_.size() ? D3D_OK : D3DERR_INVALIDCALL;
  }

  // Texel (x, y) of a level as a 32-bit word (4-byte formats only).
  std::uint32_t Texel(UINT level, UINT x, UINT y) const {
    std::uint32_t v = 0;
    const Level& l = levels_.at(level);
    std::memcpy(&v, l.texels.data() + std::size_t(y) * l.pitch + std::size_t(x) * 4, 4);
    return v;
  }
  D3DFORMAT Format() const { return format_; }
  D3DPOOL Pool() const { return pool_; }
  ULONG RefCount() const { return refs_; }

 private:
  struct Level {
    UINT width = 0, height = 0, pitch = 0;
    std::vector<std::uint8_t> texels;
  };
  ~FakeTexture() override = default;
  std::shared_ptr<SharedLog> log_;
  std::vector<Level> levels_;
  DWORD usage_;
  D3DFORMAT format_;
  D3DPOOL pool_;
  ULONG refs_ = 1;
};

}  // namespace detail

using FakeVertexBuffer = detail::FakeBuffer<IDirect3DVertexBuffer9>;
using FakeIndexBuffer = detail::FakeBuffer<IDirect3DIndexBuffer9>;
using FakeTexture = detail::FakeTexture;

// Only for resources this fake made.
inline FakeVertexBuffer* AsFake(IDirect3DVertexBuffer9* vb) { return static_cast<FakeVertexBuffer*>(vb); }
inline FakeIndexBuffer* AsFake(IDirect3DIndexBuffer9* ib) { return static_cast<FakeIndexBuffer*>(ib); }
inline FakeTexture* AsFake(IDirect3DTexture9* t) { return static_cast<FakeTexture*>(t); }

class RecordingDevice : public IDirect3DDevice9 {
 public:
  // ---- switches a test may set -------------------------------------------------
  HRESULT presentResult = D3D_OK;              // e.g. D3DERR_DEVICELOST
  HRESULT testCooperativeLevelResult = D3D_OK;  // e.g. D3DERR_DEVICENOTRESET
  HRESULT resetResult = D3D_OK;
  // Create* calls that succeed before the next ones fail with createFailure;
  // negative: never fail.
  int createsBeforeFailure = -1;
  HRESULT createFailure = D3DERR_OUTOFVIDEOMEMORY;

  RecordingDevice() : log_(std::make_shared<detail::SharedLog>()) {}
  ~RecordingDevice() override {
    for (auto& t : textures_) Unbind(t.second);
    if (stream_) stream_->Release();
    if (indices_) indices_->Release();
  }
  RecordingDevice(const RecordingDevice&) = delete;
  RecordingDevice& operator=(const RecordingDevice&) = delete;

  // ---- the log ---------------------------------------------------------------------
  const std::vector<DeviceCall>& Calls() const { return log_->calls; }
  std::vector<DeviceCall> CallsNamed(const std::string& method) const {
    std::vector<DeviceCall> out;
    for (const auto& c : log_->calls)
      if (c.method == method) out.push_back(c);
    return out;
  }
  std::size_t Count(const std::string& method) const { return CallsNamed(method).size(); }
  void ClearLog() { log_->calls.clear(); }
  // Makes every buffer and texture Lock fail with `hr` (D3D_OK: succeed again).
  void SetLockResult(HRESULT hr) { log_->lockResult = hr; }

  // ---- current state ---------------------------------------------------------------
  ULONG RefCount() const { return refs_; }
  int LiveResources() const { return log_->liveResources; }
  DWORD RenderState(D3DRENDERSTATETYPE s) const {
    auto it = renderStates_.find(s);
    if (it != renderStates_.end()) return it->second;
    switch (s) {
      case D3DRS_ZENABLE: return D3DZB_TRUE;
      case D3DRS_FILLMODE: return D3DFILL_SOLID;
      case D3DRS_SHADEMODE: return D3DSHADE_GOURAUD;
      case D3DRS_ZWRITEENABLE: return TRUE;
      case D3DRS_SRCBLEND: return D3DBLEND_ONE;
      case D3DRS_DESTBLEND: return D3DBLEND_ZERO;
      case D3DRS_CULLMODE: return D3DCULL_CCW;
      case D3DRS_ZFUNC: return D3DCMP_LESSEQUAL;
      case D3DRS_LIGHTING: return TRUE;
      default: return 0;
    }
  }
  DWORD SamplerState(DWORD sampler, D3DSAMPLERSTATETYPE t) const {
    auto it = samplerStates_.find({sampler, t});
    if (it != samplerStates_.end()) return it->second;
    switch (t) {
      case D3DSAMP_ADDRESSU:
      case D3DSAMP_ADDRESSV: return D3DTADDRESS_WRAP;
      case D3DSAMP_MAGFILTER:
      case D3DSAMP_MINFILTER: return D3DTEXF_POINT;
      case D3DSAMP_MIPFILTER: return D3DTEXF_NONE;
      case D3DSAMP_MAXANISOTROPY: return 1;
    }
    return 0;
  }
  DWORD StageState(DWORD stage, D3DTEXTURESTAGESTATETYPE t) const {
    auto it = stageStates_.find({stage, t});
    if (it != stageStates_.end()) return it->second;
    switch (t) {
      case D3DTSS_COLOROP: return stage == 0 ? D3DTOP_MODULATE : D3DTOP_DISABLE;
      case D3DTSS_ALPHAOP: return stage == 0 ? D3DTOP_SELECTARG1 : D3DTOP_DISABLE;
      case D3DTSS_COLORARG1:
      case D3DTSS_ALPHAARG1: return D3DTA_TEXTURE;
      case D3DTSS_COLORARG2:
      case D3DTSS_ALPHAARG2: return D3DTA_CURRENT;
      case D3DTSS_TEXCOORDINDEX: return stage;
    }
    return 0;
  }
  IDirect3DBaseTexture9* Texture(DWORD stage) const {
    auto it = textures_.find(stage);
    return it == textures_.end() ? nullptr : it->second;
  }
  // The last matrix set for `t`; identity when none was.
  D3DMATRIX Transform(D3DTRANSFORMSTATETYPE t) const {
    auto it = transforms_.find(DWORD(t));
    if (it != transforms_.end()) return it->second;
    D3DMATRIX m{};
    m._11 = m._22 = m._33 = m._44 = 1.0f;
    return m;
  }
  const D3DVIEWPORT9& Viewport() const { return viewport_; }
  DWORD FVF() const { return fvf_; }
  IDirect3DVertexBuffer9* StreamSource() const { return stream_; }
  UINT StreamStride() const { return streamStride_; }
  IDirect3DIndexBuffer9* Indices() const { return indices_; }
  bool InScene() const { return inScene_; }
  const D3DPRESENT_PARAMETERS& LastResetParameters() const { return lastReset_; }

  // ---- IDirect3DDevice9 ---------------------------------------------------------------
  ULONG AddRef() override { return ++refs_; }
  // The fake lives on the test's stack: a count of zero is only a number.
  ULONG Release() override { return refs_ > 0 ? --refs_ : 0; }

  HRESULT TestCooperativeLevel() override {
    Log("TestCooperativeLevel");
    return testCooperativeLevelResult;
  }
  HRESULT Reset(D3DPRESENT_PARAMETERS* pp) override {
    if (pp == nullptr) {
      Log("Reset", {0});
      return D3DERR_INVALIDCALL;
    }
    Log("Reset", {double(pp->BackBufferWidth), double(pp->BackBufferHeight), double(pp->BackBufferFormat),
                  double(pp->MultiSampleType), double(pp->Windowed), double(pp->AutoDepthStencilFormat),
                  double(pp->PresentationInterval)});
    lastReset_ = *pp;
    return resetResult;
  }
  HRESULT Present(const RECT* src, const RECT* dst, HWND wnd, const void* dirty) override {
    Log("Present", {Ptr(src), Ptr(dst), Ptr(wnd), Ptr(dirty)});
    return presentResult;
  }

  HRESULT CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                        IDirect3DTexture9** out, HANDLE* shared) override {
    Log("CreateTexture", {double(w), double(h), double(levels), double(usage), double(format), double(pool)});
    if (out == nullptr || shared != nullptr || w == 0 || h == 0) return D3DERR_INVALIDCALL;
    *out = nullptr;
    if (!TakeCreate()) return createFailure;
    *out = new FakeTexture(log_, w, h, levels, usage, format, pool);
    return D3D_OK;
  }
  HRESULT CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool, IDirect3DVertexBuffer9** out,
                             HANDLE* shared) override {
    Log("CreateVertexBuffer", {double(length), double(usage), double(fvf), double(pool)});
    if (out == nullptr || shared != nullptr || length == 0) return D3DERR_INVALIDCALL;
    *out = nullptr;
    if (!TakeCreate()) return createFailure;
    *out = new FakeVertexBuffer(log_, "VertexBuffer", length, usage, fvf, pool);
    return D3D_OK;
  }
  HRESULT CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool, IDirect3DIndexBuffer9** out,
                            HANDLE* shared) override {
    Log("CreateIndexBuffer", {double(length), double(usage), double(format), double(pool)});
    if (out == nullptr || shared != nullptr || length == 0) return D3DERR_INVALIDCALL;
    *out = nullptr;
    if (!TakeCreate()) return createFailure;
    *out = new FakeIndexBuffer(log_, "IndexBuffer", length, usage, format, pool);
    return D3D_OK;
  }

  HRESULT BeginScene() override {
    Log("BeginScene");
    if (inScene_) return D3DERR_INVALIDCALL;
    inScene_ = true;
    return D3D_OK;
  }
  HRESULT EndScene() override {
    Log("EndScene");
    if (!inScene_) return D3DERR_INVALIDCALL;
    inScene_ = false;
    return D3D_OK;
  }
  HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z, DWORD stencil) override {
    Log("Clear", {double(count), Ptr(rects), double(flags), double(color), double(z), double(stencil)});
    return D3D_OK;
  }

  HRESULT SetTransform(D3DTRANSFORMSTATETYPE t, const D3DMATRIX* m) override {
    std::vector<double> args{double(t)};
    if (m != nullptr)
      for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) args.push_back(m->m[r][c]);
    Log("SetTransform", std::move(args));
    if (m == nullptr) return D3DERR_INVALIDCALL;
    transforms_[DWORD(t)] = *m;
    return D3D_OK;
  }
  HRESULT SetViewport(const D3DVIEWPORT9* vp) override {
    if (vp == nullptr) {
      Log("SetViewport");
      return D3DERR_INVALIDCALL;
    }
    Log("SetViewport", {double(vp->X), double(vp->Y), double(vp->Width), double(vp->Height), double(vp->MinZ),
                        double(vp->MaxZ)});
    viewport_ = *vp;
    return D3D_OK;
  }
  HRESULT SetRenderState(D3DRENDERSTATETYPE s, DWORD v) override {
    Log("SetRenderState", {double(s), double(v)});
    renderStates_[s] = v;
    return D3D_OK;
  }
  HRESULT SetTexture(DWORD stage, IDirect3DBaseTexture9* t) override {
    Log("SetTexture", {double(stage), Ptr(t)});
    if (t) t->AddRef();
    Unbind(textures_[stage]);
    textures_[stage] = t;
    return D3D_OK;
  }
  HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE t, DWORD v) override {
    Log("SetTextureStageState", {double(stage), double(t), double(v)});
    stageStates_[{stage, t}] = v;
    return D3D_OK;
  }
  HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE t, DWORD v) override {
    Log("SetSamplerState", {double(sampler), double(t), double(v)});
    samplerStates_[{sampler, t}] = v;
    return D3D_OK;
  }
  HRESULT SetFVF(DWORD fvf) override {
    Log("SetFVF", {double(fvf)});
    fvf_ = fvf;
    return D3D_OK;
  }
  HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* vb, UINT offset, UINT stride) override {
    Log("SetStreamSource", {double(stream), Ptr(vb), double(offset), double(stride)});
    if (stream != 0) return D3DERR_INVALIDCALL;
    if (vb) vb->AddRef();
    if (stream_) stream_->Release();
    stream_ = vb;
    streamStride_ = stride;
    return D3D_OK;
  }
  HRESULT SetIndices(IDirect3DIndexBuffer9* ib) override {
    Log("SetIndices", {Ptr(ib)});
    if (ib) ib->AddRef();
    if (indices_) indices_->Release();
    indices_ = ib;
    return D3D_OK;
  }
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base, UINT minIndex, UINT numVertices, UINT start,
                               UINT count) override {
    Log("DrawIndexedPrimitive",
        {double(type), double(base), double(minIndex), double(numVertices), double(start), double(count)});
    return stream_ && indices_ ? D3D_OK : D3DERR_INVALIDCALL;
  }
  HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT count, const void* vertices, UINT stride) override {
    DeviceCall c{"DrawPrimitiveUP", {double(type), double(count), double(stride)}};
    if (vertices == nullptr || count == 0 || stride == 0) {
      log_->calls.push_back(std::move(c));
      return D3DERR_INVALIDCALL;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(vertices);
    c.data.assign(bytes, bytes + std::size_t(VerticesFor(type, count)) * stride);
    log_->calls.push_back(std::move(c));
    return D3D_OK;
  }

 private:
  void Log(const char* method, std::vector<double> args = {}) { log_->calls.push_back({method, std::move(args)}); }
  bool TakeCreate() {
    if (createsBeforeFailure == 0) return false;
    if (createsBeforeFailure > 0) --createsBeforeFailure;
    return true;
  }
  static void Unbind(IDirect3DBaseTexture9* t) {
    if (t) t->Release();
  }

  std::shared_ptr<detail::SharedLog> log_;
  ULONG refs_ = 1;
  std::map<DWORD, DWORD> renderStates_;
  std::map<std::pair<DWORD, DWORD>, DWORD> samplerStates_;
  std::map<std::pair<DWORD, DWORD>, DWORD> stageStates_;
  std::map<DWORD, IDirect3DBaseTexture9*> textures_;
  std::map<DWORD, D3DMATRIX> transforms_;
  D3DVIEWPORT9 viewport_{0, 0, 0, 0, 0.0f, 1.0f};
  DWORD fvf_ = 0;
  IDirect3DVertexBuffer9* stream_ = nullptr;
  UINT streamStride_ = 0;
  IDirect3DIndexBuffer9* indices_ = nullptr;
  bool inScene_ = false;
  D3DPRESENT_PARAMETERS lastReset_{};
};

}  // namespace karvo_test
