// Internal to the GL back end: one table from D3DFORMAT to what GL needs to
// store, upload and render it.
#pragma once

#include <epoxy/gl.h>

#include "platform/d3d9/d3d9.h"

namespace d3d9gl {

struct TextureFormat {
  D3DFORMAT format;
  GLenum internalFormat;
  GLenum dataFormat;  // 0 for block-compressed formats
  GLenum dataType;
  UINT bytesPerTexel;  // bytes per 4x4 block for compressed formats
  bool compressed;
  bool opaque;  // no alpha in the format: alpha reads as 1
};

// The texture formats this back end can create; null for any other.
const TextureFormat* FindTextureFormat(D3DFORMAT format);
// Bytes of one level: pitch times rows (rows of blocks when compressed).
UINT LevelPitch(const TextureFormat& f, UINT width);
UINT LevelRows(const TextureFormat& f, UINT height);

// Colour renderbuffer format of a back buffer format; 0 when not supported.
GLenum BackBufferInternalFormat(D3DFORMAT format);
// Depth renderbuffer format of a depth format; 0 when not supported.
GLenum DepthInternalFormat(D3DFORMAT format);
// The same depth precision with an 8-bit stencil beside it at no extra size,
// for the back end's own use of the stencil; 0 where there is no such twin.
GLenum DepthStencilTwin(D3DFORMAT format);
// Display formats of modes: 32/24-bit, 16-bit and 15-bit desktops.
bool IsDisplayFormat(D3DFORMAT format);
// Whether a back buffer of `backBuffer` may be shown on a display of
// `adapterFormat` (same channel layout, alpha optional).
bool BackBufferFitsDisplay(D3DFORMAT adapterFormat, D3DFORMAT backBuffer);

}  // namespace d3d9gl
