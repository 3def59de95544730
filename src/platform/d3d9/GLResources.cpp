// Textures and buffers of the GL back end.
#include "platform/d3d9/GLResources.h"

#include <cstring>
#include <type_traits>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

// ---- GLTexture ----------------------------------------------------------------

GLTexture::GLTexture(std::shared_ptr<GLCore> core, UINT width, UINT height, UINT levels,
                     DWORD usage, const TextureFormat& format, D3DPOOL pool)
    : core_(std::move(core)), format_(format), usage_(usage), pool_(pool) {
  if (pool_ == D3DPOOL_DEFAULT) ++core_->defaultPoolResources;
  if (!core_->MakeCurrent()) return;
  while (glGetError() != GL_NO_ERROR) {
  }
  glGenTextures(1, &name_);
  glActiveTexture(kUploadTextureUnit);
  glBindTexture(GL_TEXTURE_2D, name_);
  UINT w = width, h = height;
  for (UINT i = 0; i < levels; ++i) {
    Level l{w, h, LevelPitch(format, w), LevelRows(format, h), {}};
    if (format.compressed) {
      l.data.assign(std::size_t(l.pitch) * l.rows, 0);
      glCompressedTexImage2D(GL_TEXTURE_2D, GLint(i), format.internalFormat, GLsizei(w), GLsizei(h),
                             0, GLsizei(l.data.size()), l.data.data());
    } else {
      glTexImage2D(GL_TEXTURE_2D, GLint(i), GLint(format.internalFormat), GLsizei(w), GLsizei(h), 0,
                   format.dataFormat, format.dataType, nullptr);
    }
    levels_.push_back(std::move(l));
    w = w > 1 ? w / 2 : 1;
    h = h > 1 ? h / 2 : 1;
  }
  // Without this a texture with fewer levels than a full chain is incomplete
  // under a mip filter and samples black.
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, GLint(levels) - 1);
  if (format.opaque && !Limits().es) glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_A, GL_ONE);
  // New texels read as zero. An uncompressed level gets its zeros in GL only
  // if it is drawn before anything is written to it: a loaded picture writes
  // every level at once, and zeros sent first would double the cost of its
  // upload (38 ms for the 2048x2048 ground picture on software GL).
  zeroLevelsUndefined_ = !format.compressed;
  if (glGetError() != GL_NO_ERROR) {
    Log(LogLevel::Error, "GLTexture::GLTexture", "GL refused a %ux%u texture of %u levels", width,
        height, levels);
    glDeleteTextures(1, &name_);
    name_ = 0;
    return;
  }
  for (Level& l : levels_) DropCopy(l);
}

// GL keeps the texels through everything this layer lets happen to a device
// (a reset keeps the context; a new device gets new textures), so an
// uncompressed level needs no second copy in system memory between locks: on
// software GL, where the texture store is process memory too, the copy would
// double what every picture costs. Compressed levels keep theirs, as a driver
// may hold them decompressed and could not give the same blocks back.
// OpenGL ES cannot read texels back (no glGetTexImage), so there every level
// keeps its copy.
void GLTexture::DropCopy(Level& l) {
  if (!format_.compressed && !Limits().es) std::vector<std::uint8_t>().swap(l.data);
}

// A lock of a level whose copy was dropped reads the texels back from GL,
// unless nothing was ever written there: a new texture's first lock (a
// picture being loaded) costs no read-back.
bool GLTexture::RestoreCopy(UINT level) {
  Level& l = levels_[level];
  if (!l.data.empty()) return true;
  l.data.assign(std::size_t(l.pitch) * l.rows, 0);
  if (l.zero) return true;
  if (!core_->MakeCurrent()) return false;
  glActiveTexture(kUploadTextureUnit);
  glBindTexture(GL_TEXTURE_2D, name_);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  if constexpr (karvo_gl::kDesktopApi)
    glGetTexImage(GL_TEXTURE_2D, GLint(level), format_.dataFormat, format_.dataType, l.data.data());
  return true;
}

void GLTexture::DefineZeroLevels() {
  if (!zeroLevelsUndefined_ || name_ == 0 || !core_->MakeCurrent()) return;
  zeroLevelsUndefined_ = false;
  glActiveTexture(kUploadTextureUnit);
  glBindTexture(GL_TEXTURE_2D, name_);
  for (UINT i = 0; i < levels_.size(); ++i) {
    Level& l = levels_[i];
    if (!l.zero) continue;
    if (l.locked) {  // its unlock writes it, unless the lock only reads
      zeroLevelsUndefined_ = true;
      continue;
    }
    l.data.assign(std::size_t(l.pitch) * l.rows, 0);
    Upload(i);
    DropCopy(l);
  }
}

GLTexture::~GLTexture() {
  if (pool_ == D3DPOOL_DEFAULT) --core_->defaultPoolResources;
  if (name_ && core_->MakeCurrent()) {
    if (core_->owner) core_->owner->ForgetTexture(name_);
    glDeleteTextures(1, &name_);
  }
}

ULONG GLTexture::AddRef() {
  return ++refs_;
}

ULONG GLTexture::Release() {
  ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

DWORD GLTexture::GetLevelCount() {
  return DWORD(levels_.size());
}

HRESULT GLTexture::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) {
  if (desc == nullptr || level >= levels_.size()) return D3DERR_INVALIDCALL;
  *desc = D3DSURFACE_DESC{
      format_.format,       D3DRTYPE_SURFACE,     usage_, pool_, D3DMULTISAMPLE_NONE, 0,
      levels_[level].width, levels_[level].height};
  return D3D_OK;
}

HRESULT GLTexture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
  if (locked == nullptr || level >= levels_.size() || levels_[level].locked)
    return D3DERR_INVALIDCALL;
  Level& l = levels_[level];
  std::size_t offset = 0;
  if (rect != nullptr) {
    UINT block = format_.compressed ? 4 : 1;
    if (rect->left < 0 || rect->top < 0 || rect->right <= rect->left || rect->bottom <= rect->top ||
        UINT(rect->right) > l.width || UINT(rect->bottom) > l.height || rect->left % block ||
        rect->top % block)
      return D3DERR_INVALIDCALL;
    UINT bytes = format_.compressed ? format_.bytesPerTexel : format_.bytesPerTexel;
    offset = std::size_t(rect->top / block) * l.pitch + std::size_t(rect->left / block) * bytes;
  }
  if (!RestoreCopy(level)) return D3DERR_INVALIDCALL;
  l.locked = true;
  l.readOnly = (flags & D3DLOCK_READONLY) != 0;
  locked->Pitch = INT(l.pitch);
  locked->pBits = l.data.data() + offset;
  return D3D_OK;
}

HRESULT GLTexture::UnlockRect(UINT level) {
  if (level >= levels_.size() || !levels_[level].locked) return D3DERR_INVALIDCALL;
  Level& l = levels_[level];
  l.locked = false;
  if (name_ == 0 || !core_->MakeCurrent()) return D3D_OK;  // the copy is all there is
  if (!l.readOnly) {
    // Merged draws waiting with this texture must see its old texels.
    if (core_->owner) core_->owner->FlushPending();
    glActiveTexture(kUploadTextureUnit);
    glBindTexture(GL_TEXTURE_2D, name_);
    Upload(level);
    l.zero = false;
  }
  DropCopy(l);
  return D3D_OK;
}

void GLTexture::Upload(UINT level) {
  const Level& l = levels_[level];
  std::vector<std::uint8_t> scratch;
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  if (format_.compressed)
    glCompressedTexSubImage2D(GL_TEXTURE_2D, GLint(level), 0, 0, GLsizei(l.width),
                              GLsizei(l.height), format_.internalFormat, GLsizei(l.data.size()),
                              l.data.data());
  else
    glTexSubImage2D(GL_TEXTURE_2D, GLint(level), 0, 0, GLsizei(l.width), GLsizei(l.height),
                    format_.dataFormat, format_.dataType, ConvertTexels(format_, l.data, scratch));
}

// ---- GLBuffer -------------------------------------------------------------------

template <class Interface>
GLBuffer<Interface>::GLBuffer(std::shared_ptr<GLCore> core, UINT length, DWORD usage, DWORD format,
                              D3DPOOL pool)
    : core_(std::move(core)), data_(length, 0), usage_(usage), format_(format), pool_(pool) {
  if (pool_ == D3DPOOL_DEFAULT) ++core_->defaultPoolResources;
  if (!core_->MakeCurrent()) return;
  while (glGetError() != GL_NO_ERROR) {
  }
  glGenBuffers(1, &name_);
  glBufferData(BindForUpload(), GLsizeiptr(length), data_.data(),
               (usage & D3DUSAGE_DYNAMIC) ? GL_DYNAMIC_DRAW : GL_STATIC_DRAW);
  if (glGetError() != GL_NO_ERROR) {
    Log(LogLevel::Error, "GLBuffer::GLBuffer", "GL refused a buffer of %u bytes", length);
    glDeleteBuffers(1, &name_);
    name_ = 0;
  }
}

// WebGL fixes a buffer's kind at its first binding, and index data must never
// have been bound to another target: on OpenGL ES index buffers take the
// element binding, which the device then binds again before it draws.
template <class Interface>
GLenum GLBuffer<Interface>::BindForUpload() {
  if (std::is_same_v<Interface, IDirect3DIndexBuffer9> && Limits().es) {
    if (core_->owner) core_->owner->ForgetElementBuffer();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, name_);
    return GL_ELEMENT_ARRAY_BUFFER;
  }
  glBindBuffer(GL_COPY_WRITE_BUFFER, name_);
  return GL_COPY_WRITE_BUFFER;
}

template <class Interface>
GLBuffer<Interface>::~GLBuffer() {
  if (pool_ == D3DPOOL_DEFAULT) --core_->defaultPoolResources;
  if (name_ && core_->MakeCurrent()) {
    glDeleteBuffers(1, &name_);
  }
}

template <class Interface>
ULONG GLBuffer<Interface>::Release() {
  ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

template <class Interface>
HRESULT GLBuffer<Interface>::Lock(UINT offset, UINT size, void** out, DWORD flags) {
  if (out == nullptr || locked_) return D3DERR_INVALIDCALL;
  if (size == 0) size = offset <= data_.size() ? UINT(data_.size()) - offset : 0;
  if (std::size_t(offset) + size > data_.size() || (size == 0 && offset != 0))
    return D3DERR_INVALIDCALL;
  locked_ = true;
  readOnly_ = (flags & D3DLOCK_READONLY) != 0;
  lockOffset_ = offset;
  lockSize_ = size;
  *out = data_.data() + offset;
  return D3D_OK;
}

template <class Interface>
HRESULT GLBuffer<Interface>::Unlock() {
  if (!locked_) return D3DERR_INVALIDCALL;
  locked_ = false;
  if (!readOnly_ && name_ && lockSize_ > 0 && core_->MakeCurrent()) {
    // Draws held back with this buffer must see its old contents.
    if (core_->owner) core_->owner->FlushPending();
    glBufferSubData(BindForUpload(), GLintptr(lockOffset_), GLsizeiptr(lockSize_),
                    data_.data() + lockOffset_);
  }
  return D3D_OK;
}

template class GLBuffer<IDirect3DVertexBuffer9>;
template class GLBuffer<IDirect3DIndexBuffer9>;

}  // namespace d3d9gl
