// Internal to the GL back end: textures and buffers. Buffers keep a system
// memory copy of their contents (Lock hands that out; Unlock uploads the
// locked part), so reads never stall on the GPU and index ranges can be
// checked. A texture level has its copy only while it is locked (compressed
// levels always): Lock reads it back from GL, Unlock uploads and drops it.
// Uploads go through GL_TEXTURE15 and GL_COPY_WRITE_BUFFER, which the device
// never uses for drawing, so they disturb no binding of the device; index
// buffers on OpenGL ES go through the element binding (see BindForUpload).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/d3d9/GLCommon.h"
#include "platform/d3d9/GLFormats.h"

namespace d3d9gl {

constexpr GLenum kUploadTextureUnit = GL_TEXTURE15;

class GLTexture final : public IDirect3DTexture9 {
 public:
  // Makes the GL texture with all levels allocated; valid() false on failure.
  GLTexture(std::shared_ptr<GLCore> core, UINT width, UINT height, UINT levels, DWORD usage,
            const TextureFormat& format, D3DPOOL pool);

  ULONG AddRef() override;
  ULONG Release() override;
  DWORD GetLevelCount() override;
  HRESULT GetLevelDesc(UINT Level, D3DSURFACE_DESC* pDesc) override;
  HRESULT LockRect(UINT Level, D3DLOCKED_RECT* pLockedRect, const RECT* pRect,
                   DWORD Flags) override;
  HRESULT UnlockRect(UINT Level) override;

  bool valid() const { return name_ != 0; }
  GLuint name() const { return name_; }
  const std::shared_ptr<GLCore>& core() const { return core_; }
  D3DPOOL pool() const { return pool_; }
  // Before a draw samples it: levels never written get their zero texels in GL.
  void DefineZeroLevels();

 private:
  struct Level {
    UINT width, height, pitch, rows;
    std::vector<std::uint8_t> data;
    bool locked = false;
    bool readOnly = false;
    bool zero = true;  // never written: its texels read as zero
  };
  ~GLTexture() override;
  void Upload(UINT level);
  void DropCopy(Level& l);
  bool RestoreCopy(UINT level);

  std::shared_ptr<GLCore> core_;
  GLuint name_ = 0;
  const TextureFormat& format_;
  DWORD usage_;
  D3DPOOL pool_;
  std::vector<Level> levels_;
  bool zeroLevelsUndefined_ = false;  // some level that reads as zero has no texels in GL yet
  ULONG refs_ = 1;
};

// Vertex and index buffers share everything but the interface.
template <class Interface>
class GLBuffer final : public Interface {
 public:
  GLBuffer(std::shared_ptr<GLCore> core, UINT length, DWORD usage, DWORD format, D3DPOOL pool);

  ULONG AddRef() override { return ++refs_; }
  ULONG Release() override;
  HRESULT Lock(UINT OffsetToLock, UINT SizeToLock, void** ppbData, DWORD Flags) override;
  HRESULT Unlock() override;

  bool valid() const { return name_ != 0; }
  GLuint name() const { return name_; }
  UINT length() const { return UINT(data_.size()); }
  const std::vector<std::uint8_t>& bytes() const { return data_; }  // system copy
  DWORD format() const { return format_; }  // FVF or D3DFORMAT of the indices
  D3DPOOL pool() const { return pool_; }
  const std::shared_ptr<GLCore>& core() const { return core_; }

 private:
  GLenum BindForUpload();
  ~GLBuffer() override;

  std::shared_ptr<GLCore> core_;
  GLuint name_ = 0;
  std::vector<std::uint8_t> data_;
  DWORD usage_;
  DWORD format_;
  D3DPOOL pool_;
  ULONG refs_ = 1;
  bool locked_ = false;
  bool readOnly_ = false;
  UINT lockOffset_ = 0, lockSize_ = 0;
};

using GLVertexBuffer = GLBuffer<IDirect3DVertexBuffer9>;
using GLIndexBuffer = GLBuffer<IDirect3DIndexBuffer9>;

}  // namespace d3d9gl
