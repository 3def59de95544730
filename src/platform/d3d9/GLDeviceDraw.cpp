// Draw-time translation: recorded state becomes a program, GL fixed state,
// samplers and bindings, each sent only when it differs from what GL has.
// DrawPrimitiveUP calls are merged: consecutive calls with equal state share
// one GL draw from a streaming buffer, their stage-0 textures spread over
// several units and chosen per vertex, so the order of the calls is kept.
#include <cstring>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

namespace {

// Vertices of one merged draw at most: keeps a flush's upload bounded and
// every index within 16 bits, half the index data of 32-bit ones to write,
// upload and fetch.
constexpr std::uint32_t kBatchVertexLimit = 1u << 16;
// Least storage of the two stream buffers. Each time one fills, its storage
// is orphaned and the GL keeps it until the draws that read it are done, so
// on software GL, where that storage is process memory, every MB here costs
// about two resident; but storage that fills every frame or two is new
// memory each time, paid in page faults. A frame of the world sends some
// 0.5 MB of vertices and 0.1 MB of indices, as do the 5,000 quads of the
// merging benchmark. 4 MB each cost 8 MB more than these sizes.
constexpr std::size_t kStreamVertexBytes = std::size_t(2) << 20;
constexpr std::size_t kStreamIndexBytes = std::size_t(512) << 10;
// More primitives than this in one call is a caller error, not a draw.
constexpr UINT kMaxPrimitives = 1u << 22;

UINT VerticesFor(D3DPRIMITIVETYPE type, UINT count) {
  switch (type) {
    case D3DPT_POINTLIST:
      return count;
    case D3DPT_LINELIST:
      return count * 2;
    case D3DPT_LINESTRIP:
      return count + 1;
    case D3DPT_TRIANGLELIST:
      return count * 3;
    case D3DPT_TRIANGLESTRIP:
    case D3DPT_TRIANGLEFAN:
      return count + 2;
  }
  return 0;
}

GLenum ModeOf(D3DPRIMITIVETYPE type) {
  switch (type) {
    case D3DPT_POINTLIST:
      return GL_POINTS;
    case D3DPT_LINELIST:
      return GL_LINES;
    case D3DPT_LINESTRIP:
      return GL_LINE_STRIP;
    case D3DPT_TRIANGLELIST:
      return GL_TRIANGLES;
    case D3DPT_TRIANGLESTRIP:
      return GL_TRIANGLE_STRIP;
    case D3DPT_TRIANGLEFAN:
      return GL_TRIANGLE_FAN;
  }
  return GL_TRIANGLES;
}

GLenum BlendFactor(DWORD b) {
  switch (b) {
    case D3DBLEND_ZERO:
      return GL_ZERO;
    case D3DBLEND_ONE:
      return GL_ONE;
    case D3DBLEND_SRCCOLOR:
      return GL_SRC_COLOR;
    case D3DBLEND_INVSRCCOLOR:
      return GL_ONE_MINUS_SRC_COLOR;
    case D3DBLEND_SRCALPHA:
      return GL_SRC_ALPHA;
    case D3DBLEND_INVSRCALPHA:
      return GL_ONE_MINUS_SRC_ALPHA;
    case D3DBLEND_DESTALPHA:
      return GL_DST_ALPHA;
    case D3DBLEND_INVDESTALPHA:
      return GL_ONE_MINUS_DST_ALPHA;
    case D3DBLEND_DESTCOLOR: return GL_DST_COLOR;
    case D3DBLEND_INVDESTCOLOR: return GL_ONE_MINUS_DST_COLOR;
    default:
      return GL_ONE;
  }
}

GLenum DepthFunc(DWORD f) {
  switch (f) {
    case D3DCMP_NEVER:
      return GL_NEVER;
    case D3DCMP_LESS:
      return GL_LESS;
    case D3DCMP_EQUAL:
      return GL_EQUAL;
    case D3DCMP_LESSEQUAL:
      return GL_LEQUAL;
    case D3DCMP_GREATER:
      return GL_GREATER;
    case D3DCMP_NOTEQUAL:
      return GL_NOTEQUAL;
    case D3DCMP_GREATEREQUAL:
      return GL_GEQUAL;
    default:
      return GL_ALWAYS;
  }
}

GLint AddressMode(DWORD a) {
  switch (a) {
    case D3DTADDRESS_CLAMP:
      return GL_CLAMP_TO_EDGE;
    case D3DTADDRESS_MIRROR:
      return GL_MIRRORED_REPEAT;
    default:
      return GL_REPEAT;
  }
}

void Multiply(const D3DMATRIX& a, const D3DMATRIX& b, D3DMATRIX& out) {
  D3DMATRIX r{};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      r.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j] +
                  a.m[i][3] * b.m[3][j];
  out = r;
}

}  // namespace

D3DMATRIX GLDevice::WorldViewProjection() const {
  D3DMATRIX wv, wvp;
  Multiply(state_.world, state_.view, wv);
  Multiply(wv, state_.proj, wvp);
  return wvp;
}

GLDevice::Layout GLDevice::LayoutOf(DWORD fvf) {
  Layout l;
  DWORD position = fvf & D3DFVF_POSITION_MASK;
  if (position == D3DFVF_XYZ)
    l.size = 12;
  else if (position == D3DFVF_XYZRHW)
    l.size = 16, l.rhw = true;
  else
    return l;
  // Only position, diffuse and 2D texture sets are part of this layer.
  if (fvf & ~DWORD(D3DFVF_POSITION_MASK | D3DFVF_DIFFUSE | D3DFVF_TEXCOUNT_MASK)) return l;
  if (fvf & D3DFVF_DIFFUSE) {
    l.hasColor = true;
    l.color = l.size;
    l.size += 4;
  }
  l.texSets = (fvf & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
  if (l.texSets > 8) return l;
  l.tex0 = l.size;
  l.tex1 = l.size + 8;
  l.size += 8 * l.texSets;
  l.valid = true;
  return l;
}

void GLDevice::BindTexture(GLuint unit, GLuint name) {
  if (boundTextures_[unit] == name) return;
  glActiveTexture(GL_TEXTURE0 + unit);
  glBindTexture(GL_TEXTURE_2D, name);
  boundTextures_[unit] = name;
}

void GLDevice::BindForDrawing(GLuint unit, GLTexture* texture) {
  texture->DefineZeroLevels();
  BindTexture(unit, texture->name());
}

void GLDevice::ForgetTexture(GLuint name) {
  for (GLuint& b : boundTextures_)
    if (b == name) b = 0;  // GL unbinds a deleted texture from every unit
}

void GLDevice::ApplySampler(int stage, GLuint unitFirst, GLuint unitCount) {
  GLuint s = samplers_[stage];
  if (samplerDirty_[stage]) {
    const DWORD* st = state_.ss[stage];
    DWORD minF = st[D3DSAMP_MINFILTER], magF = st[D3DSAMP_MAGFILTER], mipF = st[D3DSAMP_MIPFILTER];
    bool minLinear = minF == D3DTEXF_LINEAR || minF == D3DTEXF_ANISOTROPIC;
    GLint glMin;
    if (mipF == D3DTEXF_POINT)
      glMin = minLinear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
    else if (mipF == D3DTEXF_LINEAR || mipF == D3DTEXF_ANISOTROPIC)
      glMin = minLinear ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
    else
      glMin = minLinear ? GL_LINEAR : GL_NEAREST;  // D3DTEXF_NONE: the top level only
    glSamplerParameteri(s, GL_TEXTURE_MIN_FILTER, glMin);
    glSamplerParameteri(
        s, GL_TEXTURE_MAG_FILTER,
        magF == D3DTEXF_LINEAR || magF == D3DTEXF_ANISOTROPIC ? GL_LINEAR : GL_NEAREST);
    glSamplerParameteri(s, GL_TEXTURE_WRAP_S, AddressMode(st[D3DSAMP_ADDRESSU]));
    glSamplerParameteri(s, GL_TEXTURE_WRAP_T, AddressMode(st[D3DSAMP_ADDRESSV]));
    if (Limits().anisotropic) {
      float a = 1.0f;
      if (minF == D3DTEXF_ANISOTROPIC || magF == D3DTEXF_ANISOTROPIC) {
        a = float(st[D3DSAMP_MAXANISOTROPY]);
        if (a < 1.0f) a = 1.0f;
        if (a > Limits().maxAnisotropy) a = Limits().maxAnisotropy;
      }
      glSamplerParameterf(s, GL_TEXTURE_MAX_ANISOTROPY, a);
    }
    samplerDirty_[stage] = false;
  }
  for (GLuint u = unitFirst; u < unitFirst + unitCount; ++u) {
    if (boundSamplers_[u] != s) {
      glBindSampler(u, s);
      boundSamplers_[u] = s;
    }
  }
}

void GLDevice::ApplyFixedState() {
  auto set = [](int& cached, int value, auto apply) {
    if (cached != value) {
      apply(value);
      cached = value;
    }
  };
  auto enable = [](GLenum cap) { return [cap](int on) { on ? glEnable(cap) : glDisable(cap); }; };
  set(gl_.blend, state_.rs[D3DRS_ALPHABLENDENABLE] != 0, enable(GL_BLEND));
  if (gl_.srcBlend != int(state_.rs[D3DRS_SRCBLEND]) ||
      gl_.dstBlend != int(state_.rs[D3DRS_DESTBLEND])) {
    glBlendFunc(BlendFactor(state_.rs[D3DRS_SRCBLEND]), BlendFactor(state_.rs[D3DRS_DESTBLEND]));
    gl_.srcBlend = int(state_.rs[D3DRS_SRCBLEND]);
    gl_.dstBlend = int(state_.rs[D3DRS_DESTBLEND]);
  }
  set(gl_.depthTest, state_.rs[D3DRS_ZENABLE] != D3DZB_FALSE && depthRb_ != 0,
      enable(GL_DEPTH_TEST));
  set(gl_.depthMask, state_.rs[D3DRS_ZWRITEENABLE] != 0,
      [](int on) { glDepthMask(on ? GL_TRUE : GL_FALSE); });
  set(gl_.depthFunc, int(state_.rs[D3DRS_ZFUNC]), [](int f) { glDepthFunc(DepthFunc(DWORD(f))); });
  // Front faces are clockwise on screen (glFrontFace(GL_CW) at start-up):
  // D3DCULL_CCW culls the back, D3DCULL_CW the front.
  set(gl_.cull, int(state_.rs[D3DRS_CULLMODE]), [](int c) {
    if (c == D3DCULL_CW || c == D3DCULL_CCW) {
      glEnable(GL_CULL_FACE);
      glCullFace(c == D3DCULL_CCW ? GL_BACK : GL_FRONT);
    } else {
      glDisable(GL_CULL_FACE);
    }
  });
  // Without polygon modes the draws themselves give wireframe (DrawsEdges).
  if (Limits().polygonMode) {
    set(gl_.fill, int(state_.rs[D3DRS_FILLMODE]), [](int f) {
      glPolygonMode(GL_FRONT_AND_BACK, f == D3DFILL_WIREFRAME ? GL_LINE
                                       : f == D3DFILL_POINT   ? GL_POINT
                                                              : GL_FILL);
    });
  }
  set(gl_.dither, state_.rs[D3DRS_DITHERENABLE] != 0, enable(GL_DITHER));
  fixedDirty_ = false;
}

bool GLDevice::PrepareDraw(IDirect3DBaseTexture9* const* stage0, int stage0Count) {
  // A blending draw must find the held-back background below it.
  if (!background_.empty() && !replaying_ && state_.rs[D3DRS_ALPHABLENDENABLE]) DrawBackground();
  freshDepth_ = false;
  ApplyStencil(replaying_ ? kStencilUnmarked : background_.empty() ? kStencilOff : kStencilMark);
  StageState stages[kShaderStages];
  for (int i = 0; i < kShaderStages; ++i) {
    const DWORD* t = state_.tss[i];
    stages[i] =
        StageState{t[D3DTSS_COLOROP],       t[D3DTSS_COLORARG1],          t[D3DTSS_COLORARG2],
                   t[D3DTSS_ALPHAOP],       t[D3DTSS_ALPHAARG1],          t[D3DTSS_ALPHAARG2],
                   t[D3DTSS_TEXCOORDINDEX], state_.textures[i] != nullptr};
  }
  stages[0].hasTexture = stage0Count > 0;
  ShaderKey key = MakeShaderKey(stages, state_.fvf, stage0Count,
                                state_.rs[D3DRS_SHADEMODE] == D3DSHADE_FLAT, indexSlots_);
  key.es = Limits().es;
  ShaderProgram* prog = shaders_.Get(key);
  if (prog == nullptr) return false;
  if (currentProgram_ != prog->program) {
    glUseProgram(prog->program);
    currentProgram_ = prog->program;
  }
  if (prog->wvpSerial != wvpSerial_) {
    const D3DMATRIX wvp = WorldViewProjection();
    // Row-major data read as column-major is the transpose: see the shader.
    glUniformMatrix4fv(prog->wvp, 1, GL_FALSE, &wvp.m[0][0]);
    prog->wvpSerial = wvpSerial_;
  }
  if (prog->viewportSerial != viewportSerial_) {
    glUniform4f(prog->viewport, float(state_.viewport.X), float(state_.viewport.Y),
                float(state_.viewport.Width), float(state_.viewport.Height));
    prog->viewportSerial = viewportSerial_;
  }
  if (fixedDirty_) ApplyFixedState();
  if (viewportDirty_) {
    // The platform counts Y from the top, GL from the bottom.
    glViewport(GLint(state_.viewport.X),
               GLint(bbHeight_ - state_.viewport.Y - state_.viewport.Height),
               GLsizei(state_.viewport.Width), GLsizei(state_.viewport.Height));
    glDepthRangef(state_.viewport.MinZ, state_.viewport.MaxZ);
    viewportDirty_ = false;
  }
  if (key.stages[0].hasTexture) {
    GLuint units = key.slots > 1 ? key.slots : 1;
    ApplySampler(0, 0, units);
    for (GLuint i = 0; i < units; ++i) BindForDrawing(i, static_cast<GLTexture*>(stage0[i]));
  }
  if (key.stages[1].hasTexture) {
    ApplySampler(1, kStage1Unit, 1);
    BindForDrawing(kStage1Unit, static_cast<GLTexture*>(state_.textures[1]));
  }
  return true;
}

void GLDevice::BindVertexLayout(GLuint buffer, const Layout& l, UINT stride, std::size_t offset,
                                bool slotted) {
  glBindBuffer(GL_ARRAY_BUFFER, buffer);
  auto at = [offset](UINT o) { return reinterpret_cast<const void*>(offset + o); };
  glVertexAttribPointer(kAttrPosition, l.rhw ? 4 : 3, GL_FLOAT, GL_FALSE, GLsizei(stride), at(0));
  if (l.hasColor) {
    glEnableVertexAttribArray(kAttrColor);
    // D3DCOLOR words are bytes B, G, R, A in memory; OpenGL ES reads them as
    // R, G, B, A and the shader swaps them.
    glVertexAttribPointer(kAttrColor, Limits().es ? 4 : GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE,
                          GLsizei(stride), at(l.color));
  } else {
    glDisableVertexAttribArray(kAttrColor);  // the constant opaque white
  }
  for (UINT i = 0; i < 2; ++i) {
    GLuint loc = i == 0 ? kAttrTex0 : kAttrTex1;
    if (i < l.texSets) {
      glEnableVertexAttribArray(loc);
      glVertexAttribPointer(loc, 2, GL_FLOAT, GL_FALSE, GLsizei(stride),
                            at(i == 0 ? l.tex0 : l.tex1));
    } else {
      glDisableVertexAttribArray(loc);
    }
  }
  if (!slotted) glDisableVertexAttribArray(kAttrSlot);
}

std::size_t GLDevice::StreamWrite(GLuint& buffer, std::size_t& offset, std::size_t& capacity,
                                  GLenum target, const void* data, std::size_t bytes,
                                  std::size_t align) {
  if (target == GL_ELEMENT_ARRAY_BUFFER) currentElementBuffer_ = buffer;
  glBindBuffer(target, buffer);
  offset = (offset + align - 1) / align * align;
  if (offset + bytes > capacity) {
    // Orphan the old storage: draws still reading it keep it, we write anew.
    const std::size_t least =
        target == GL_ELEMENT_ARRAY_BUFFER ? kStreamIndexBytes : kStreamVertexBytes;
    capacity = std::max(capacity, std::max(least, bytes * 2));
    glBufferData(target, GLsizeiptr(capacity), nullptr, GL_STREAM_DRAW);
    offset = 0;
  }
  glBufferSubData(target, GLintptr(offset), GLsizeiptr(bytes), data);
  std::size_t at = offset;
  offset += bytes;
  return at;
}

void GLDevice::FlushBatch() {
  if (batch_.vertexCount == 0) return;
  Batch& b = batch_;
  Layout layout = LayoutOf(b.fvf);
  if (core_->MakeCurrent() && PrepareDraw(b.textures, b.textureCount)) {
    std::size_t vOff = StreamWrite(streamVb_, streamVbOffset_, streamVbCapacity_, GL_ARRAY_BUFFER,
                                   b.vertices.data(), b.vertices.size(), 16);
    std::size_t sOff = StreamWrite(streamVb_, streamVbOffset_, streamVbCapacity_, GL_ARRAY_BUFFER,
                                   b.slots.data(), b.slots.size(), 4);
    std::size_t iOff =
        StreamWrite(streamIb_, streamIbOffset_, streamIbCapacity_, GL_ELEMENT_ARRAY_BUFFER,
                    b.indices.data(), b.indices.size() * 2, 2);
    BindVertexLayout(streamVb_, layout, b.stride, vOff, true);
    glEnableVertexAttribArray(kAttrSlot);
    glVertexAttribIPointer(kAttrSlot, 1, GL_UNSIGNED_BYTE, 1, reinterpret_cast<const void*>(sOff));
    if (DrawsEdges(D3DPT_TRIANGLELIST)) {
      DrawEdges(D3DPT_TRIANGLELIST, UINT(b.indices.size() / 3),
                std::vector<std::uint32_t>(b.indices.begin(), b.indices.end()), b.vertices.data(),
                b.stride, layout.rhw);
    } else {
      glDrawElements(GL_TRIANGLES, GLsizei(b.indices.size()), GL_UNSIGNED_SHORT,
                     reinterpret_cast<const void*>(iOff));
      ++stats_.glDrawCalls;
    }
    ++stats_.upGlDraws;
  }
  for (int i = 0; i < b.textureCount; ++i) {
    b.textures[i]->Release();
    b.textures[i] = nullptr;
  }
  b.textureCount = 0;
  b.vertexCount = 0;
  b.vertices.clear();
  b.slots.clear();
  b.indices.clear();
}

void GLDevice::DrawUnbatched(D3DPRIMITIVETYPE type, UINT primCount, const void* data, UINT stride) {
  Layout layout = LayoutOf(state_.fvf);
  if (!PrepareDraw(state_.textures, state_.textures[0] != nullptr ? 1 : 0)) return;
  UINT n = VerticesFor(type, primCount);
  std::size_t off = StreamWrite(streamVb_, streamVbOffset_, streamVbCapacity_, GL_ARRAY_BUFFER,
                                data, std::size_t(n) * stride, 16);
  BindVertexLayout(streamVb_, layout, stride, off, false);
  if (DrawsEdges(type)) {
    std::vector<std::uint32_t> numbers(n);
    for (UINT i = 0; i < n; ++i) numbers[i] = i;
    DrawEdges(type, primCount, numbers, static_cast<const std::uint8_t*>(data), stride, layout.rhw);
  } else {
    glDrawArrays(ModeOf(type), 0, GLsizei(n));
    ++stats_.glDrawCalls;
  }
  ++stats_.upGlDraws;
}

HRESULT GLDevice::DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primCount, const void* data,
                                  UINT stride) {
  Layout layout = LayoutOf(state_.fvf);
  UINT n = VerticesFor(type, primCount);
  if (data == nullptr || primCount == 0 || primCount > kMaxPrimitives || n == 0 || !layout.valid ||
      stride < layout.size)
    return D3DERR_INVALIDCALL;
  // The platform leaves stream 0 unset after a UP draw.
  if (state_.stream) {
    state_.stream->Release();
    state_.stream = nullptr;
    state_.streamOffset = state_.streamStride = 0;
  }
  if (lost_ || !core_->MakeCurrent()) return D3D_OK;
  ++stats_.upCalls;
  // Lines and points, and a call too big for any merged draw, go alone.
  if ((type != D3DPT_TRIANGLELIST && type != D3DPT_TRIANGLESTRIP && type != D3DPT_TRIANGLEFAN) ||
      n > kBatchVertexLimit) {
    FlushBatch();
    DrawUnbatched(type, primCount, data, stride);
    return D3D_OK;
  }
  Batch& b = batch_;
  if (b.vertexCount &&
      (b.fvf != state_.fvf || b.stride != stride || b.vertexCount + n > kBatchVertexLimit))
    FlushBatch();
  IDirect3DBaseTexture9* tex = state_.textures[0];
  std::uint8_t slot = 0;
  if (tex) {
    int found = -1;
    for (int i = 0; i < b.textureCount; ++i)
      if (b.textures[i] == tex) found = i;
    if (found < 0) {
      if (b.textureCount == kBatchTextures) FlushBatch();
      found = b.textureCount++;
      b.textures[found] = tex;
      tex->AddRef();
    }
    slot = std::uint8_t(found);
  }
  if (b.vertexCount == 0) {
    b.fvf = state_.fvf;
    b.stride = stride;
  }
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  b.vertices.insert(b.vertices.end(), bytes, bytes + std::size_t(n) * stride);
  b.slots.insert(b.slots.end(), n, slot);
  std::uint32_t base = b.vertexCount;
  for (UINT i = 0; i < primCount; ++i) {
    std::uint32_t t[3];
    TriangleCorners(type, i, t);
    for (std::uint32_t v : t) b.indices.push_back(std::uint16_t(base + v));
  }
  b.vertexCount += n;
  return D3D_OK;
}

HRESULT GLDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT baseVertex, UINT minIndex,
                                       UINT numVertices, UINT startIndex, UINT primCount) {
  (void)minIndex;
  (void)numVertices;  // hints only: the real range is checked below
  Layout layout = LayoutOf(state_.fvf);
  UINT n = VerticesFor(type, primCount);
  if (state_.stream == nullptr || state_.indices == nullptr || !layout.valid || primCount == 0 ||
      primCount > kMaxPrimitives || state_.streamStride < layout.size)
    return D3DERR_INVALIDCALL;
  UINT indexSize = state_.indices->format() == D3DFMT_INDEX32 ? 4 : 2;
  if ((std::size_t(startIndex) + n) * indexSize > state_.indices->length())
    return D3DERR_INVALIDCALL;
  // Every index must name a vertex of the buffer: GL would read past it.
  const std::uint8_t* ib = state_.indices->bytes().data() + std::size_t(startIndex) * indexSize;
  std::uint32_t lo = 0xFFFFFFFFu, hi = 0;
  for (UINT i = 0; i < n; ++i) {
    std::uint32_t v;
    if (indexSize == 2) {
      std::uint16_t s;
      std::memcpy(&s, ib + 2 * i, 2);
      v = s;
    } else {
      std::memcpy(&v, ib + 4 * i, 4);
    }
    lo = v < lo ? v : lo;
    hi = v > hi ? v : hi;
  }
  std::int64_t vertices = std::int64_t(state_.stream->length() -
                                       std::min(state_.streamOffset, state_.stream->length())) /
                          state_.streamStride;
  if (std::int64_t(baseVertex) + lo < 0 || std::int64_t(baseVertex) + hi >= vertices)
    return D3DERR_INVALIDCALL;
  if (lost_ || !core_->MakeCurrent()) return D3D_OK;
  FlushBatch();
  if (freshDepth_ && !WritesDepth())
    HoldBackground(type, baseVertex, startIndex, primCount);
  else
    DrawIndexed(type, baseVertex, startIndex, primCount);
  return D3D_OK;
}

void GLDevice::DrawIndexed(D3DPRIMITIVETYPE type, INT baseVertex, UINT startIndex, UINT primCount) {
  if (!PrepareDraw(state_.textures, state_.textures[0] != nullptr ? 1 : 0)) return;
  const Layout layout = LayoutOf(state_.fvf);
  const UINT indexSize = state_.indices->format() == D3DFMT_INDEX32 ? 4 : 2;
  const UINT stride = state_.streamStride;
  // The base vertex moves where the attributes start: one path for every GL,
  // OpenGL ES having no glDrawElementsBaseVertex.
  const std::int64_t first = std::int64_t(state_.streamOffset) + std::int64_t(baseVertex) * stride;
  const bool edges = DrawsEdges(type);
  if (first >= 0 && !edges) {
    BindVertexLayout(state_.stream->name(), layout, stride, std::size_t(first), false);
    if (currentElementBuffer_ != state_.indices->name()) {
      glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, state_.indices->name());
      currentElementBuffer_ = state_.indices->name();
    }
    glDrawElements(ModeOf(type), GLsizei(VerticesFor(type, primCount)),
                   indexSize == 2 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT,
                   reinterpret_cast<const void*>(std::size_t(startIndex) * indexSize));
    ++stats_.glDrawCalls;
    return;
  }
  // The indices with the base vertex added, counted from the stream offset.
  const UINT n = VerticesFor(type, primCount);
  const std::uint8_t* ib = state_.indices->bytes().data() + std::size_t(startIndex) * indexSize;
  std::vector<std::uint32_t> numbers(n);
  for (UINT i = 0; i < n; ++i) {
    std::uint32_t v = 0;
    std::memcpy(&v, ib + std::size_t(i) * indexSize, indexSize);  // little-endian, as the platform
    numbers[i] = std::uint32_t(std::int64_t(v) + baseVertex);
  }
  BindVertexLayout(state_.stream->name(), layout, stride, state_.streamOffset, false);
  if (edges)
    DrawEdges(type, primCount, numbers, state_.stream->bytes().data() + state_.streamOffset, stride,
              layout.rhw);
  else
    DrawNumbered(ModeOf(type), numbers);
}

}  // namespace d3d9gl
