// RecordingDevice: a fake IDirect3DDevice9 for tests that need no GPU.
//
// Every device call is appended to a log as a DeviceCall (method name plus its
// arguments as numbers), so a test can compare what the code under test sent
// with what it should have sent; locks of the resources it made are not. The fake also keeps the current render,
// sampler and stage states as last set, and makes buffers
// and textures with real memory, so Lock/LockRect work and the contents can
// be read back.
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
// floats, and pointers as their address (use Ptr()).
struct DeviceCall {
  std::string method;
  std::vector<double> args;

  DeviceCall(std::string m, std::vector<double> a = {}) : method(std::move(m)), args(std::move(a)) {}
  bool operator==(const DeviceCall& o) const { return method == o.method && args == o.args; }
};

// Expected sequences are built from parts: calls + calls.
using DeviceCalls = std::vector<DeviceCall>;
inline DeviceCalls operator+(DeviceCalls a, const DeviceCalls& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

inline double Ptr(const void* p) { return static_cast<double>(reinterpret_cast<std::uintptr_t>(p)); }
// A render state and a texture stage state as the log holds them.
inline DeviceCall RS(DWORD state, DWORD value) { return {"SetRenderState", {double(state), double(value)}}; }
inline DeviceCall Tss(DWORD stage, DWORD type, DWORD value) {
  return {"SetTextureStageState", {double(stage), double(type), double(value)}};
}

inline std::ostream& operator<<(std::ostream& os, const DeviceCall& c) {
  os << c.method << "(";
  for (std::size_t i = 0; i < c.args.size(); ++i) {
    // Whole numbers (enums, counts, addresses) print exactly, in full.
    const double v = c.args[i];
    os << (i ? ", " : "");
    if (v == static_cast<double>(static_cast<long long>(v))) os << static_cast<long long>(v);
    else os << v;
  }
  return os << ")";
}

namespace detail {

// What the device and the resources it made share, so a resource may outlive
// the device object without dangling.
struct SharedLog {
  std::vector<DeviceCall> calls;
  int liveResources = 0;
};

// One reference from Create*; the last Release deletes and is counted.
template <class Interface>
class FakeResource : public Interface {
 public:
  ULONG AddRef() override { return ++refs_; }
  ULONG Release() override {
    const ULONG left = --refs_;
    if (left == 0) {
      --log_->liveResources;
      delete this;
    }
    return left;
  }

 protected:
  explicit FakeResource(std::shared_ptr<SharedLog> log) : log_(std::move(log)) { ++log_->liveResources; }
  ~FakeResource() override = default;
  std::shared_ptr<SharedLog> log_;

 private:
  ULONG refs_ = 1;
};

template <class Interface>
class FakeBuffer : public FakeResource<Interface> {
 public:
  FakeBuffer(std::shared_ptr<SharedLog> log, UINT length, DWORD usage, D3DPOOL pool)
      : FakeResource<Interface>(std::move(log)), bytes_(length), usage_(usage), pool_(pool) {}
  HRESULT Lock(UINT offset, UINT size, void** data, DWORD) override {
    if (data == nullptr || offset > bytes_.size() || (size != 0 && offset + size > bytes_.size()))
      return D3DERR_INVALIDCALL;
    *data = bytes_.data() + offset;
    locked_ = true;
    return D3D_OK;
  }
  HRESULT Unlock() override {
    if (!locked_) return D3DERR_INVALIDCALL;
    locked_ = false;
    return D3D_OK;
  }

  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }
  DWORD Usage() const { return usage_; }
  D3DPOOL Pool() const { return pool_; }

 private:
  std::vector<std::uint8_t> bytes_;
  DWORD usage_;
  D3DPOOL pool_;
  bool locked_ = false;
};

// A mip chain of 4-byte texels whatever the format: room for every format the
// D3DX loaders write.
class FakeTexture : public FakeResource<IDirect3DTexture9> {
 public:
  FakeTexture(std::shared_ptr<SharedLog> log, UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format,
              D3DPOOL pool)
      : FakeResource(std::move(log)), usage_(usage), format_(format), pool_(pool) {
    UINT full = 1;
    for (UINT s = w > h ? w : h; s > 1; s >>= 1) ++full;
    if (levels == 0 || levels > full) levels = full;
    for (UINT i = 0; i < levels; ++i, w /= 2, h /= 2) {
      const UINT lw = w > 1 ? w : 1, lh = h > 1 ? h : 1;
      levels_.push_back({lw, lh, std::vector<std::uint8_t>(std::size_t(lw) * lh * 4)});
    }
  }
  DWORD GetLevelCount() override { return DWORD(levels_.size()); }
  HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override {
    if (level >= levels_.size() || desc == nullptr) return D3DERR_INVALIDCALL;
    *desc = D3DSURFACE_DESC{format_, D3DRTYPE_SURFACE, usage_, pool_, D3DMULTISAMPLE_NONE, 0,
                            levels_[level].width, levels_[level].height};
    return D3D_OK;
  }
  HRESULT LockRect(UINT level, D3DLOCKED_RECT* rect, const RECT* area, DWORD) override {
    if (level >= levels_.size() || rect == nullptr || area != nullptr) return D3DERR_INVALIDCALL;
    rect->Pitch = INT(levels_[level].width * 4);
    rect->pBits = levels_[level].texels.data();
    return D3D_OK;
  }
  HRESULT UnlockRect(UINT level) override {
    return level < levels_.size() ? D3D_OK : D3DERR_INVALIDCALL;
  }

 private:
  struct Level {
    UINT width, height;
    std::vector<std::uint8_t> texels;
  };
  std::vector<Level> levels_;
  DWORD usage_;
  D3DFORMAT format_;
  D3DPOOL pool_;
};

}  // namespace detail

using FakeVertexBuffer = detail::FakeBuffer<IDirect3DVertexBuffer9>;
using FakeIndexBuffer = detail::FakeBuffer<IDirect3DIndexBuffer9>;

// Only for buffers this fake made.
inline FakeVertexBuffer* AsFake(IDirect3DVertexBuffer9* vb) { return static_cast<FakeVertexBuffer*>(vb); }
inline FakeIndexBuffer* AsFake(IDirect3DIndexBuffer9* ib) { return static_cast<FakeIndexBuffer*>(ib); }

class RecordingDevice : public IDirect3DDevice9 {
 public:
  // ---- switches a test may set -------------------------------------------------
  HRESULT resetResult = D3D_OK;

  RecordingDevice() : log_(std::make_shared<detail::SharedLog>()) {}
  ~RecordingDevice() override {
    for (auto& t : textures_)
      if (t.second) t.second->Release();
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
  void ClearLog() {
    log_->calls.clear();
    upVertices_.clear();
  }
  // The vertices of the draw-th DrawPrimitiveUP since the last ClearLog, read
  // back as the caller's vertex type.
  template <class Vertex>
  std::vector<Vertex> UpVertices(std::size_t draw) const {
    const std::vector<std::uint8_t>& bytes = upVertices_.at(draw);
    std::vector<Vertex> out(bytes.size() / sizeof(Vertex));
    if (!out.empty()) std::memcpy(out.data(), bytes.data(), out.size() * sizeof(Vertex));
    return out;
  }

  // ---- current state ---------------------------------------------------------------
  ULONG RefCount() const { return refs_; }
  int LiveResources() const { return log_->liveResources; }
  // States as last set. One never set reads kUnset, not the platform's
  // default, so that a forgotten call cannot pass for the value a test expects.
  static constexpr DWORD kUnset = 0xFFFFFFFFu;
  DWORD RenderState(D3DRENDERSTATETYPE s) const { return Lookup(renderStates_, DWORD(s), kUnset); }
  DWORD SamplerState(DWORD sampler, D3DSAMPLERSTATETYPE t) const { return Lookup(samplerStates_, {sampler, t}, kUnset); }
  DWORD StageState(DWORD stage, D3DTEXTURESTAGESTATETYPE t) const { return Lookup(stageStates_, {stage, t}, kUnset); }
  const D3DPRESENT_PARAMETERS& LastResetParameters() const { return lastReset_; }

  // ---- IDirect3DDevice9 ---------------------------------------------------------------
  ULONG AddRef() override { return ++refs_; }
  // The fake lives on the test's stack: a count of zero is only a number.
  ULONG Release() override { return refs_ > 0 ? --refs_ : 0; }

  HRESULT TestCooperativeLevel() override {
    Log("TestCooperativeLevel");
    return D3D_OK;
  }
  HRESULT Reset(D3DPRESENT_PARAMETERS* pp) override {
    if (pp == nullptr) return Log("Reset", {0}), D3DERR_INVALIDCALL;
    Log("Reset", {double(pp->BackBufferWidth), double(pp->BackBufferHeight), double(pp->BackBufferFormat),
                  double(pp->MultiSampleType), double(pp->Windowed), double(pp->AutoDepthStencilFormat),
                  double(pp->PresentationInterval)});
    lastReset_ = *pp;
    return resetResult;
  }
  HRESULT Present(const RECT* src, const RECT* dst, HWND wnd, const void* dirty) override {
    Log("Present", {Ptr(src), Ptr(dst), Ptr(wnd), Ptr(dirty)});
    return D3D_OK;
  }

  HRESULT CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                        IDirect3DTexture9** out, HANDLE* shared) override {
    Log("CreateTexture", {double(w), double(h), double(levels), double(usage), double(format), double(pool)});
    return Create(out, shared, w * h,
                  [&] { return new detail::FakeTexture(log_, w, h, levels, usage, format, pool); });
  }
  HRESULT CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool, IDirect3DVertexBuffer9** out,
                             HANDLE* shared) override {
    Log("CreateVertexBuffer", {double(length), double(usage), double(fvf), double(pool)});
    return Create(out, shared, length,
                  [&] { return new FakeVertexBuffer(log_, length, usage, pool); });
  }
  HRESULT CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool, IDirect3DIndexBuffer9** out,
                            HANDLE* shared) override {
    Log("CreateIndexBuffer", {double(length), double(usage), double(format), double(pool)});
    return Create(out, shared, length,
                  [&] { return new FakeIndexBuffer(log_, length, usage, pool); });
  }

  HRESULT BeginScene() override {
    Log("BeginScene");
    return std::exchange(inScene_, true) ? D3DERR_INVALIDCALL : D3D_OK;
  }
  HRESULT EndScene() override {
    Log("EndScene");
    return std::exchange(inScene_, false) ? D3D_OK : D3DERR_INVALIDCALL;
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
    return m == nullptr ? D3DERR_INVALIDCALL : D3D_OK;
  }
  HRESULT SetViewport(const D3DVIEWPORT9* vp) override {
    if (vp == nullptr) return Log("SetViewport"), D3DERR_INVALIDCALL;
    Log("SetViewport", {double(vp->X), double(vp->Y), double(vp->Width), double(vp->Height), double(vp->MinZ),
                        double(vp->MaxZ)});
    return D3D_OK;
  }
  HRESULT SetRenderState(D3DRENDERSTATETYPE s, DWORD v) override {
    Log("SetRenderState", {double(s), double(v)});
    renderStates_[s] = v;
    return D3D_OK;
  }
  HRESULT SetTexture(DWORD stage, IDirect3DBaseTexture9* t) override {
    Log("SetTexture", {double(stage), Ptr(t)});
    Bind(textures_[stage], t);
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
    return D3D_OK;
  }
  HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* vb, UINT offset, UINT stride) override {
    Log("SetStreamSource", {double(stream), Ptr(vb), double(offset), double(stride)});
    if (stream != 0) return D3DERR_INVALIDCALL;
    Bind(stream_, vb);
    return D3D_OK;
  }
  HRESULT SetIndices(IDirect3DIndexBuffer9* ib) override {
    Log("SetIndices", {Ptr(ib)});
    Bind(indices_, ib);
    return D3D_OK;
  }
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base, UINT minIndex, UINT numVertices, UINT start,
                               UINT count) override {
    Log("DrawIndexedPrimitive",
        {double(type), double(base), double(minIndex), double(numVertices), double(start), double(count)});
    return stream_ && indices_ ? D3D_OK : D3DERR_INVALIDCALL;
  }
  HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT count, const void* vertices, UINT stride) override {
    Log("DrawPrimitiveUP", {double(type), double(count), double(stride)});
    if (vertices == nullptr || count == 0 || stride == 0) return D3DERR_INVALIDCALL;
    // Strips and fans; the lists and points are not kept.
    const auto* bytes = static_cast<const std::uint8_t*>(vertices);
    const bool stripOrFan = type == D3DPT_TRIANGLESTRIP || type == D3DPT_TRIANGLEFAN;
    upVertices_.emplace_back(bytes, bytes + (stripOrFan ? std::size_t(count + 2) * stride : 0));
    return D3D_OK;
  }

 private:
  void Log(const char* method, std::vector<double> args = {}) { log_->calls.push_back({method, std::move(args)}); }
  // Hands out a new resource unless the arguments are bad or a failure is due.
  template <class T, class Make>
  HRESULT Create(T** out, HANDLE* shared, UINT size, Make make) {
    if (out == nullptr || shared != nullptr || size == 0) return D3DERR_INVALIDCALL;
    *out = make();
    return D3D_OK;
  }
  template <class Map>
  static typename Map::mapped_type Lookup(const Map& map, const typename Map::key_type& key,
                                          typename Map::mapped_type fallback) {
    auto it = map.find(key);
    return it != map.end() ? it->second : fallback;
  }
  // A bound resource holds one reference.
  template <class T>
  static void Bind(T*& slot, T* resource) {
    if (resource) resource->AddRef();
    if (slot) slot->Release();
    slot = resource;
  }

  std::shared_ptr<detail::SharedLog> log_;
  ULONG refs_ = 1;
  bool inScene_ = false;
  std::map<DWORD, DWORD> renderStates_;
  std::map<std::pair<DWORD, DWORD>, DWORD> samplerStates_;
  std::map<std::pair<DWORD, DWORD>, DWORD> stageStates_;
  std::map<DWORD, IDirect3DBaseTexture9*> textures_;
  std::vector<std::vector<std::uint8_t>> upVertices_;
  IDirect3DVertexBuffer9* stream_ = nullptr;
  IDirect3DIndexBuffer9* indices_ = nullptr;
  D3DPRESENT_PARAMETERS lastReset_{};
};

}  // namespace karvo_test
