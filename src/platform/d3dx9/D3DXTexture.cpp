// D3DXCreateTextureFromFileA / ExA: decode, colour key, size to the texture,
// build the mip chain, and fill a texture made by the given device through its
// own CreateTexture and LockRect. So the loaders work on any device, the GL
// back end and test fakes alike.
#include <cstring>
#include <utility>

#include "platform/crt/AssetReport.h"
#include "platform/d3dx9/D3DXTextureImage.h"
#include "platform/d3dx9/d3dx9tex.h"

namespace {

// Bytes a texel of the format takes; false for formats this loader does not
// write.
bool BytesPerTexel(D3DFORMAT f, UINT& bytes) {
  switch (f) {
    case D3DFMT_A8R8G8B8:
    case D3DFMT_X8R8G8B8: bytes = 4; return true;
    case D3DFMT_R5G6B5:
    case D3DFMT_X1R5G5B5:
    case D3DFMT_A1R5G5B5:
    case D3DFMT_A4R4G4B4: bytes = 2; return true;
    default: return false;
  }
}

// The 16-bit formats; FillLevel copies the 32-bit ones a row at a time.
void Pack16(D3DFORMAT f, std::uint32_t argb, std::uint8_t* dst) {
  std::uint32_t a = argb >> 24, r = (argb >> 16) & 0xFF, g = (argb >> 8) & 0xFF, b = argb & 0xFF;
  std::uint16_t v16 = 0;
  switch (f) {
    case D3DFMT_R5G6B5: v16 = std::uint16_t(((r >> 3) << 11) | ((g >> 2) << 5) | (b >> 3)); break;
    case D3DFMT_X1R5G5B5: v16 = std::uint16_t(0x8000 | ((r >> 3) << 10) | ((g >> 3) << 5) | (b >> 3)); break;
    case D3DFMT_A1R5G5B5:
      v16 = std::uint16_t(((a >= 128) << 15) | ((r >> 3) << 10) | ((g >> 3) << 5) | (b >> 3));
      break;
    case D3DFMT_A4R4G4B4: v16 = std::uint16_t(((a >> 4) << 12) | ((r >> 4) << 8) | ((g >> 4) << 4) | (b >> 4)); break;
    default: return;
  }
  std::memcpy(dst, &v16, 2);
}

HRESULT FillLevel(IDirect3DTexture9* texture, UINT level, D3DFORMAT format, UINT bytes, const d3dx::ArgbImage& image) {
  D3DLOCKED_RECT locked{};
  HRESULT hr = texture->LockRect(level, &locked, nullptr, 0);
  if (FAILED(hr)) return hr;
  if (locked.pBits == nullptr || locked.Pitch < INT(image.width * bytes)) {
    texture->UnlockRect(level);
    return D3DERR_INVALIDCALL;
  }
  auto* rows = static_cast<std::uint8_t*>(locked.pBits);
  for (std::uint32_t y = 0; y < image.height; ++y) {
    std::uint8_t* row = rows + std::size_t(y) * std::size_t(locked.Pitch);
    const std::uint32_t* source = image.texels.data() + std::size_t(y) * image.width;
    // The two 32-bit formats, which every picture here loads into, copy whole
    // rows; the 16-bit ones pack texel by texel.
    if (format == D3DFMT_A8R8G8B8) {
      std::memcpy(row, source, std::size_t(image.width) * 4);
    } else if (format == D3DFMT_X8R8G8B8) {
      for (std::uint32_t x = 0; x < image.width; ++x) {
        const std::uint32_t opaque = source[x] | 0xFF000000u;
        std::memcpy(row + std::size_t(x) * 4, &opaque, 4);
      }
    } else {
      for (std::uint32_t x = 0; x < image.width; ++x) Pack16(format, source[x], row + std::size_t(x) * bytes);
    }
  }
  return texture->UnlockRect(level);
}

}  // namespace

HRESULT D3DXCreateTextureFromFileExA(IDirect3DDevice9* pDevice, const char* pSrcFile, UINT Width, UINT Height,
                                     UINT MipLevels, DWORD Usage, D3DFORMAT Format, D3DPOOL Pool, DWORD Filter,
                                     DWORD MipFilter, D3DCOLOR ColorKey, D3DXIMAGE_INFO* pSrcInfo,
                                     PALETTEENTRY* pPalette, IDirect3DTexture9** ppTexture) {
  // Filters: resizing is always bilinear and mips are 2x2 boxes, which is
  // what the default filters give for power-of-two rounding.
  (void)Filter;
  (void)MipFilter;
  // No palettized formats are made, so there is never a palette to return.
  (void)pPalette;
  if (pDevice == nullptr || pSrcFile == nullptr || ppTexture == nullptr) return D3DERR_INVALIDCALL;
  *ppTexture = nullptr;

  d3dx::DecodedImage decoded;
  std::string error;
  if (!d3dx::DecodeImageFile(pSrcFile, decoded, error)) {
    crt::ReportAsset(pSrcFile, error);
    return D3DXERR_INVALIDDATA;
  }
  d3dx::ArgbImage& image = decoded.image;
  if (pSrcInfo != nullptr) {
    *pSrcInfo = D3DXIMAGE_INFO{image.width,
                               image.height,
                               1,
                               1,
                               decoded.hasAlpha ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8,
                               D3DRTYPE_TEXTURE,
                               decoded.kind == d3dx::ImageKind::Jpeg ? D3DXIFF_JPG : D3DXIFF_PNG};
  }

  // The key is compared with the file's own texels, before any filtering, so
  // keyed texels blend towards transparent black at the edges as they should.
  d3dx::ApplyColorKey(image, ColorKey);

  if (Format == D3DFMT_UNKNOWN) Format = decoded.hasAlpha || ColorKey != 0 ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
  UINT bytes = 0;
  if (!BytesPerTexel(Format, bytes)) return D3DERR_INVALIDCALL;

  UINT width = (Width == D3DX_DEFAULT || Width == 0) ? d3dx::NextPowerOfTwo(image.width) : Width;
  UINT height = (Height == D3DX_DEFAULT || Height == 0) ? d3dx::NextPowerOfTwo(image.height) : Height;
  UINT full = d3dx::FullMipCount(width, height);
  UINT levels = (MipLevels == D3DX_DEFAULT || MipLevels == 0 || MipLevels > full) ? full : MipLevels;

  IDirect3DTexture9* texture = nullptr;
  HRESULT hr = pDevice->CreateTexture(width, height, levels, Usage, Format, Pool, &texture, nullptr);
  if (FAILED(hr) || texture == nullptr) return FAILED(hr) ? hr : D3DERR_INVALIDCALL;

  d3dx::ArgbImage level = d3dx::Resample(std::move(image), width, height);
  UINT made = texture->GetLevelCount();
  for (UINT i = 0; i < made; ++i) {
    if (i > 0) level = d3dx::HalveBox(level);
    hr = FillLevel(texture, i, Format, bytes, level);
    if (FAILED(hr)) {
      texture->Release();
      return hr;
    }
  }
  *ppTexture = texture;
  return D3D_OK;
}

HRESULT D3DXCreateTextureFromFileA(IDirect3DDevice9* pDevice, const char* pSrcFile, IDirect3DTexture9** ppTexture) {
  return D3DXCreateTextureFromFileExA(pDevice, pSrcFile, D3DX_DEFAULT, D3DX_DEFAULT, D3DX_DEFAULT, 0, D3DFMT_UNKNOWN,
                                      D3DPOOL_MANAGED, D3DX_DEFAULT, D3DX_DEFAULT, 0, nullptr, nullptr, ppTexture);
}
