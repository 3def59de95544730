// D3DFORMAT to GL tables. Texel layouts match the platform's: A8R8G8B8 is a
// little-endian 32-bit ARGB word (bytes B, G, R, A), the 16-bit formats are
// words with red in the high bits, DXTn are S3TC blocks.
#include "platform/d3d9/GLFormats.h"

#include "platform/d3d9/GLCommon.h"

namespace d3d9gl {

namespace {

const TextureFormat kTextureFormats[] = {
    // format            internal                           data      type bytes compr. opaque
    // The 32-bit formats name no size: Mesa then stores them as B, G, R, A
    // bytes, the layout of the data, so uploads and read-backs are plain
    // copies; a sized GL_RGBA8 is stored R, G, B, A and every upload of a
    // picture swapped bytes texel by texel.
    {D3DFMT_A8R8G8B8, GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE, 4, false, false},
    {D3DFMT_X8R8G8B8, GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE, 4, false, true},
    {D3DFMT_R5G6B5, GL_RGB8, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 2, false, true},
    {D3DFMT_X1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, 2, false, true},
    {D3DFMT_A1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, 2, false, false},
    {D3DFMT_A4R4G4B4, GL_RGBA4, GL_BGRA, GL_UNSIGNED_SHORT_4_4_4_4_REV, 2, false, false},
    {D3DFMT_DXT1, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 0, 0, 8, true, false},
    {D3DFMT_DXT3, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, 0, 0, 16, true, false},
    {D3DFMT_DXT5, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 0, 0, 16, true, false},
};

// OpenGL ES takes bytes R, G, B, A and packed words with alpha in the lowest
// bits; the opaque formats get their alpha of 1 in the conversion, as ES has
// no swizzle to give it.
const TextureFormat kEsTextureFormats[] = {
    {D3DFMT_A8R8G8B8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4, false, false,
     TexelConversion::SwapRedBlue},
    {D3DFMT_X8R8G8B8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4, false, true,
     TexelConversion::SwapRedBlueOpaque},
    {D3DFMT_R5G6B5, GL_RGB565, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 2, false, true},
    {D3DFMT_X1R5G5B5, GL_RGB5_A1, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, 2, false, true,
     TexelConversion::Rotate1555Opaque},
    {D3DFMT_A1R5G5B5, GL_RGB5_A1, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, 2, false, false,
     TexelConversion::Rotate1555},
    {D3DFMT_A4R4G4B4, GL_RGBA4, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, 2, false, false,
     TexelConversion::Rotate4444},
    {D3DFMT_DXT1, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 0, 0, 8, true, false},
    {D3DFMT_DXT3, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, 0, 0, 16, true, false},
    {D3DFMT_DXT5, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 0, 0, 16, true, false},
};

}  // namespace

const std::uint8_t* ConvertTexels(const TextureFormat& f, const std::vector<std::uint8_t>& texels,
                                  std::vector<std::uint8_t>& scratch) {
  if (f.conversion == TexelConversion::None) return texels.data();
  scratch.resize(texels.size());
  const std::size_t n = texels.size();
  switch (f.conversion) {
    case TexelConversion::SwapRedBlue:
    case TexelConversion::SwapRedBlueOpaque: {
      const bool opaque = f.conversion == TexelConversion::SwapRedBlueOpaque;
      for (std::size_t i = 0; i + 3 < n; i += 4) {
        scratch[i] = texels[i + 2];
        scratch[i + 1] = texels[i + 1];
        scratch[i + 2] = texels[i];
        scratch[i + 3] = opaque ? 0xFF : texels[i + 3];
      }
      break;
    }
    default:
      for (std::size_t i = 0; i + 1 < n; i += 2) {
        std::uint16_t v = std::uint16_t(texels[i] | texels[i + 1] << 8), r;
        if (f.conversion == TexelConversion::Rotate4444)
          r = std::uint16_t(v << 4 | v >> 12);
        else
          r = std::uint16_t(v << 1 |
                            (f.conversion == TexelConversion::Rotate1555Opaque ? 1 : v >> 15));
        scratch[i] = std::uint8_t(r);
        scratch[i + 1] = std::uint8_t(r >> 8);
      }
  }
  return scratch.data();
}

const TextureFormat* FindTextureFormat(D3DFORMAT format) {
  for (const auto& f : Limits().es ? kEsTextureFormats : kTextureFormats) {
    if (f.format != format) continue;
    if (f.compressed && !Limits().s3tc) return nullptr;
    return &f;
  }
  return nullptr;
}

UINT LevelPitch(const TextureFormat& f, UINT width) {
  return f.compressed ? ((width + 3) / 4) * f.bytesPerTexel : width * f.bytesPerTexel;
}

UINT LevelRows(const TextureFormat& f, UINT height) {
  return f.compressed ? (height + 3) / 4 : height;
}

GLenum BackBufferInternalFormat(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_X8R8G8B8:
    case D3DFMT_A8R8G8B8:
      return GL_RGBA8;
    case D3DFMT_R5G6B5:
      return Limits().rgb565Renderable ? GL_RGB565 : 0;
    case D3DFMT_X1R5G5B5:
    case D3DFMT_A1R5G5B5:
      return Limits().rgb5a1Renderable ? GL_RGB5_A1 : 0;
    default:
      return 0;
  }
}

GLenum DepthInternalFormat(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_D16:
      return GL_DEPTH_COMPONENT16;
    case D3DFMT_D24X8:
      return GL_DEPTH_COMPONENT24;
    case D3DFMT_D24S8:
      return GL_DEPTH24_STENCIL8;
    case D3DFMT_D32:
      return GL_DEPTH_COMPONENT32F;
    default:
      return 0;  // D15S1, D24X4S4: no GL counterpart
  }
}

GLenum DepthStencilTwin(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_D24X8:
    case D3DFMT_D24S8:
      return GL_DEPTH24_STENCIL8;  // the same 32 bits a pixel
    // A 32-bit float depth gets its stencil only at 8 bytes a pixel. On
    // software GL that cost as much frame time as the stencil saved (10% more
    // under a sky that fills the view, 3.3 MB more at 1200 x 681), so D32
    // keeps its own format; D16 has no packed twin at all.
    default:
      return 0;
  }
}

bool IsDisplayFormat(D3DFORMAT format) {
  return format == D3DFMT_X8R8G8B8 || format == D3DFMT_R5G6B5 || format == D3DFMT_X1R5G5B5;
}

bool BackBufferFitsDisplay(D3DFORMAT adapterFormat, D3DFORMAT backBuffer) {
  switch (adapterFormat) {
    case D3DFMT_X8R8G8B8:
      return backBuffer == D3DFMT_X8R8G8B8 || backBuffer == D3DFMT_A8R8G8B8;
    case D3DFMT_R5G6B5:
      return backBuffer == D3DFMT_R5G6B5;
    case D3DFMT_X1R5G5B5:
      return backBuffer == D3DFMT_X1R5G5B5 || backBuffer == D3DFMT_A1R5G5B5;
    default:
      return false;
  }
}

}  // namespace d3d9gl
