// D3DX 9 texture loaders: an image file (jpg or png) into a texture of the
// given device, with a full mip chain. Back end: stb_image (D3DXTexture*.cpp).
#pragma once

#include "platform/d3d9/d3d9.h"

// "Use the default": sizes from the file, rounded up to powers of two; a full
// mip chain; default filters.
#define D3DX_DEFAULT ((UINT)-1)

#define D3DX_FILTER_NONE 0x00000001
#define D3DX_FILTER_POINT 0x00000002
#define D3DX_FILTER_LINEAR 0x00000003
#define D3DX_FILTER_TRIANGLE 0x00000004
#define D3DX_FILTER_BOX 0x00000005

#define _FACDD 0x876
#define MAKE_DDHRESULT(code) ((HRESULT)(0x88760000u | (code)))
// The file is missing, unreadable, or not an image this layer can decode.
#define D3DXERR_INVALIDDATA MAKE_DDHRESULT(2905)  // 0x88760B59

enum D3DXIMAGE_FILEFORMAT : DWORD {
  D3DXIFF_BMP = 0,
  D3DXIFF_JPG = 1,
  D3DXIFF_TGA = 2,
  D3DXIFF_PNG = 3,
};

// What the loader found in the file, before any scaling.
struct D3DXIMAGE_INFO {
  UINT Width;
  UINT Height;
  UINT Depth;
  UINT MipLevels;
  D3DFORMAT Format;
  D3DRESOURCETYPE ResourceType;
  D3DXIMAGE_FILEFORMAT ImageFileFormat;
};

struct PALETTEENTRY;

// Loads pSrcFile with every setting at its default (D3DX_DEFAULT sizes and
// mips, format from the file, managed pool, no colour key).
HRESULT D3DXCreateTextureFromFileA(IDirect3DDevice9* pDevice, const char* pSrcFile,
                                   IDirect3DTexture9** ppTexture);

// Loads pSrcFile. Width/Height D3DX_DEFAULT: the file's size rounded up to a
// power of two; MipLevels D3DX_DEFAULT or 0: the full chain down to 1x1;
// Format D3DFMT_UNKNOWN: X8R8G8B8, or A8R8G8B8 when the file has alpha or a
// colour key is given. ColorKey 0 means none; otherwise a texel whose 32-bit
// ARGB equals it exactly (a file without alpha reads as alpha 0xFF) becomes
// 0x00000000. pSrcInfo may be null; pPalette is never written (no
// palettized formats are made).
// A missing, unreadable or corrupt file gives D3DXERR_INVALIDDATA.
HRESULT D3DXCreateTextureFromFileExA(IDirect3DDevice9* pDevice, const char* pSrcFile, UINT Width,
                                     UINT Height, UINT MipLevels, DWORD Usage, D3DFORMAT Format,
                                     D3DPOOL Pool, DWORD Filter, DWORD MipFilter, D3DCOLOR ColorKey,
                                     D3DXIMAGE_INFO* pSrcInfo, PALETTEENTRY* pPalette,
                                     IDirect3DTexture9** ppTexture);
