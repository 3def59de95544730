// The image side of the D3DX texture loaders, free of any device: decoding a
// jpg or png file into 32-bit ARGB, the colour key, resampling to the texture
// size and the mip chain. Back-end internal; system code uses d3dx9tex.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace d3dx {

// A picture of 32-bit ARGB words (0xAARRGGBB), row by row, top row first.
struct ArgbImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint32_t> texels;

  std::uint32_t At(std::uint32_t x, std::uint32_t y) const { return texels[std::size_t(y) * width + x]; }
};

enum class ImageKind { Jpeg, Png, Other };

struct DecodedImage {
  ArgbImage image;
  bool hasAlpha = false;  // the file carries an alpha channel
  ImageKind kind = ImageKind::Other;
};

// Reads and decodes a file; a path with backslashes is opened with forward
// slashes. False for a missing, unreadable, truncated or corrupt file, or one
// larger than the layer accepts; `error` then says why.
bool DecodeImageFile(const std::string& path, DecodedImage& out, std::string& error);
// The same for bytes already in memory.
bool DecodeImageMemory(const std::uint8_t* bytes, std::size_t size, DecodedImage& out, std::string& error);

// Every texel whose ARGB equals `key` exactly becomes 0x00000000. Gives the
// number of texels replaced. A key of 0 is "no key": nothing changes.
std::size_t ApplyColorKey(ArgbImage& image, std::uint32_t key);

// Smallest power of two not below n (n >= 1).
std::uint32_t NextPowerOfTwo(std::uint32_t n);
// Number of levels of a full mip chain down to 1x1.
std::uint32_t FullMipCount(std::uint32_t width, std::uint32_t height);

// Resamples to width x height: bilinear at texel centres, edges clamped.
// Same size gives a copy.
ArgbImage Resample(ArgbImage src, std::uint32_t width, std::uint32_t height);
// The next mip level: each texel the average of a 2x2 box (a 1-wide side
// stays 1 wide); channels are averaged on their own, rounding to nearest.
ArgbImage HalveBox(const ArgbImage& src);

}  // namespace d3dx
