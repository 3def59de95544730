// Device setters: they only record. A call that changes nothing returns at
// once; a real change first lets a pending merged draw go out with the state
// it was recorded under, then marks what the next draw must translate.
#include <cstring>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

namespace {

D3DMATRIX Identity() {
  D3DMATRIX m{};
  m._11 = m._22 = m._33 = m._44 = 1.0f;
  return m;
}

bool SameMatrix(const D3DMATRIX& a, const D3DMATRIX& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Render states that decide GL fixed-function state (blend, depth, cull, fill,
// dither); the others that matter change the generated program.
bool IsFixedState(DWORD s) {
  switch (s) {
    case D3DRS_ZENABLE:
    case D3DRS_FILLMODE:
    case D3DRS_ZWRITEENABLE:
    case D3DRS_SRCBLEND:
    case D3DRS_DESTBLEND:
    case D3DRS_CULLMODE:
    case D3DRS_ZFUNC:
    case D3DRS_DITHERENABLE:
    case D3DRS_ALPHABLENDENABLE: return true;
    default: return false;
  }
}

}  // namespace

// The platform's documented defaults, the state of a new or reset device.
void GLDevice::SetDefaults() {
  std::memset(state_.rs, 0, sizeof state_.rs);
  state_.rs[D3DRS_ZENABLE] = pp_.EnableAutoDepthStencil ? D3DZB_TRUE : D3DZB_FALSE;
  state_.rs[D3DRS_FILLMODE] = D3DFILL_SOLID;
  state_.rs[D3DRS_SHADEMODE] = D3DSHADE_GOURAUD;
  state_.rs[D3DRS_ZWRITEENABLE] = TRUE;
  state_.rs[D3DRS_SRCBLEND] = D3DBLEND_ONE;
  state_.rs[D3DRS_DESTBLEND] = D3DBLEND_ZERO;
  state_.rs[D3DRS_CULLMODE] = D3DCULL_CCW;
  state_.rs[D3DRS_ZFUNC] = D3DCMP_LESSEQUAL;
  state_.rs[D3DRS_DITHERENABLE] = FALSE;
  state_.rs[D3DRS_ALPHABLENDENABLE] = FALSE;
  state_.rs[D3DRS_LIGHTING] = TRUE;

  for (int i = 0; i < kStages; ++i) {
    std::memset(state_.tss[i], 0, sizeof state_.tss[i]);
    state_.tss[i][D3DTSS_COLOROP] = i == 0 ? D3DTOP_MODULATE : D3DTOP_DISABLE;
    state_.tss[i][D3DTSS_COLORARG1] = D3DTA_TEXTURE;
    state_.tss[i][D3DTSS_COLORARG2] = D3DTA_CURRENT;
    state_.tss[i][D3DTSS_ALPHAOP] = i == 0 ? D3DTOP_SELECTARG1 : D3DTOP_DISABLE;
    state_.tss[i][D3DTSS_ALPHAARG1] = D3DTA_TEXTURE;
    state_.tss[i][D3DTSS_ALPHAARG2] = D3DTA_CURRENT;
    state_.tss[i][D3DTSS_TEXCOORDINDEX] = DWORD(i);
  }
  for (int i = 0; i < kSamplers; ++i) {
    std::memset(state_.ss[i], 0, sizeof state_.ss[i]);
    state_.ss[i][D3DSAMP_ADDRESSU] = D3DTADDRESS_WRAP;
    state_.ss[i][D3DSAMP_ADDRESSV] = D3DTADDRESS_WRAP;
    state_.ss[i][D3DSAMP_MAGFILTER] = D3DTEXF_POINT;
    state_.ss[i][D3DSAMP_MINFILTER] = D3DTEXF_POINT;
    state_.ss[i][D3DSAMP_MIPFILTER] = D3DTEXF_NONE;
    state_.ss[i][D3DSAMP_MAXANISOTROPY] = 1;
  }
  state_.world = state_.view = state_.proj = Identity();
  state_.viewport = D3DVIEWPORT9{0, 0, bbWidth_, bbHeight_, 0.0f, 1.0f};
  state_.fvf = 0;
  ++wvpSerial_;
  ++viewportSerial_;
  fixedDirty_ = viewportDirty_ = true;
  for (bool& d : samplerDirty_) d = true;
}

// Drops every binding the device holds a reference through.
void GLDevice::ReleaseBindings() {
  for (auto& t : state_.textures) {
    if (t) t->Release();
    t = nullptr;
  }
  if (state_.stream) state_.stream->Release();
  if (state_.indices) state_.indices->Release();
  state_.stream = nullptr;
  state_.indices = nullptr;
  state_.streamOffset = state_.streamStride = 0;
}

HRESULT GLDevice::SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* m) {
  if (m == nullptr) return D3DERR_INVALIDCALL;
  D3DMATRIX* target = nullptr;
  if (state == D3DTS_WORLD)
    target = &state_.world;
  else if (state == D3DTS_VIEW)
    target = &state_.view;
  else if (state == D3DTS_PROJECTION)
    target = &state_.proj;
  else
    return D3D_OK;  // texture and further world matrices: not part of this pipeline
  if (SameMatrix(*target, *m)) return D3D_OK;
  Touch();
  *target = *m;
  ++wvpSerial_;
  return D3D_OK;
}

HRESULT GLDevice::SetViewport(const D3DVIEWPORT9* vp) {
  if (vp == nullptr || vp->Width == 0 || vp->Height == 0 || vp->X + vp->Width > bbWidth_ ||
      vp->Y + vp->Height > bbHeight_ || vp->MinZ < 0.0f || vp->MaxZ > 1.0f || vp->MinZ > vp->MaxZ)
    return D3DERR_INVALIDCALL;
  if (std::memcmp(vp, &state_.viewport, sizeof state_.viewport) == 0) return D3D_OK;
  Touch();
  state_.viewport = *vp;
  ++viewportSerial_;
  viewportDirty_ = true;
  return D3D_OK;
}

HRESULT GLDevice::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
  if (DWORD(state) >= DWORD(kRenderStates)) return D3DERR_INVALIDCALL;
  if (state_.rs[state] == value) return D3D_OK;
  Touch();
  state_.rs[state] = value;
  if (IsFixedState(state)) fixedDirty_ = true;
  return D3D_OK;
}

HRESULT GLDevice::SetTexture(DWORD stage, IDirect3DBaseTexture9* texture) {
  if (stage >= DWORD(kSamplers)) return D3DERR_INVALIDCALL;
  if (state_.textures[stage] == texture) return D3D_OK;
  if (texture != nullptr) {
    auto* gl = dynamic_cast<GLTexture*>(texture);
    if (gl == nullptr || gl->core() != core_) return D3DERR_INVALIDCALL;
  }
  // Stage 0 textures can change inside a merged draw (each vertex names its
  // texture), as long as the stage keeps having one.
  if (stage != 0 || (texture == nullptr) != (state_.textures[0] == nullptr)) Touch();
  if (texture) texture->AddRef();
  if (state_.textures[stage]) state_.textures[stage]->Release();
  state_.textures[stage] = texture;
  return D3D_OK;
}

HRESULT GLDevice::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
  if (stage >= DWORD(kStages) || DWORD(type) >= DWORD(kStageStates)) return D3DERR_INVALIDCALL;
  if (state_.tss[stage][type] == value) return D3D_OK;
  Touch();
  state_.tss[stage][type] = value;
  return D3D_OK;
}

HRESULT GLDevice::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
  if (sampler >= DWORD(kSamplers) || DWORD(type) >= DWORD(kSamplerStates)) return D3DERR_INVALIDCALL;
  if (state_.ss[sampler][type] == value) return D3D_OK;
  Touch();
  state_.ss[sampler][type] = value;
  if (sampler < DWORD(kShaderStages)) samplerDirty_[sampler] = true;
  return D3D_OK;
}

HRESULT GLDevice::SetFVF(DWORD fvf) {
  if (fvf == state_.fvf) return D3D_OK;
  Touch();
  state_.fvf = fvf;
  return D3D_OK;
}

HRESULT GLDevice::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* vb, UINT offset, UINT stride) {
  if (stream != 0) return D3DERR_INVALIDCALL;  // one stream: the fixed function reads stream 0
  auto* gl = static_cast<GLVertexBuffer*>(nullptr);
  if (vb != nullptr) {
    gl = dynamic_cast<GLVertexBuffer*>(vb);
    if (gl == nullptr || gl->core() != core_) return D3DERR_INVALIDCALL;
  }
  if (gl == state_.stream && offset == state_.streamOffset && stride == state_.streamStride)
    return D3D_OK;
  if (gl) gl->AddRef();
  if (state_.stream) state_.stream->Release();
  state_.stream = gl;
  state_.streamOffset = offset;
  state_.streamStride = stride;
  return D3D_OK;
}

HRESULT GLDevice::SetIndices(IDirect3DIndexBuffer9* ib) {
  auto* gl = static_cast<GLIndexBuffer*>(nullptr);
  if (ib != nullptr) {
    gl = dynamic_cast<GLIndexBuffer*>(ib);
    if (gl == nullptr || gl->core() != core_) return D3DERR_INVALIDCALL;
  }
  if (gl == state_.indices) return D3D_OK;
  if (gl) gl->AddRef();
  if (state_.indices) state_.indices->Release();
  state_.indices = gl;
  return D3D_OK;
}

}  // namespace d3d9gl
