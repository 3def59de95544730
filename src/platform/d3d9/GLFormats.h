// Internal to the GL back end: one table from D3DFORMAT to what GL needs to
// store, upload and render it.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/d3d9/d3d9.h"
#include "platform/gl/GLApi.h"

namespace d3d9gl {

// How texels in the platform's layout become what the GL takes: OpenGL ES
// has no B, G, R, A byte order and no reversed packed formats.
enum class TexelConversion : std::uint8_t {
  None,
  SwapRedBlue,        // A8R8G8B8 words to R, G, B, A bytes
  SwapRedBlueOpaque,  // the same, alpha set to 1 (X8R8G8B8)
  Rotate1555,         // A1R5G5B5 to R5G5B5A1
  Rotate1555Opaque,   // the same, alpha set to 1 (X1R5G5B5)
  Rotate4444,         // A4R4G4B4 to R4G4B4A4
};

struct TextureFormat {
  D3DFORMAT format;
  GLenum internalFormat;
  GLenum dataFormat;  // 0 for block-compressed formats
  GLenum dataType;
  UINT bytesPerTexel;  // bytes per 4x4 block for compressed formats
  bool compressed;
  bool opaque;  // no alpha in the format: alpha reads as 1
  TexelConversion conversion = TexelConversion::None;
};

// The texture formats this back end can create on this context's GL; null
// for any other.
const TextureFormat* FindTextureFormat(D3DFORMAT format);
// Texels of a level in the platform's layout, as the GL takes them: `texels`
// itself when the format needs no conversion, else `scratch` filled.
const std::uint8_t* ConvertTexels(const TextureFormat& f, const std::vector<std::uint8_t>& texels,
                                  std::vector<std::uint8_t>& scratch);
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
