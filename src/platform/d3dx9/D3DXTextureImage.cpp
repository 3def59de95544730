// Decoding (stb_image), colour key, resampling and mips for the D3DX loaders.
#include "platform/d3dx9/D3DXTextureImage.h"

#include <stb_image.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/crt/AssetReport.h"

namespace d3dx {

namespace {

// Largest side accepted: far above any texture this program loads, and it
// keeps a hostile header from asking for gigabytes.
constexpr int kMaxSide = 16384;
// Files above this size are refused before reading.
constexpr long kMaxFileBytes = 256L * 1024 * 1024;

bool IsJpeg(const std::uint8_t* b, std::size_t n) { return n >= 3 && b[0] == 0xFF && b[1] == 0xD8 && b[2] == 0xFF; }
bool IsPng(const std::uint8_t* b, std::size_t n) {
  static const std::uint8_t sig[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
  return n >= 8 && std::memcmp(b, sig, 8) == 0;
}

// stb_image pads a JPEG that ends early with zero bits and "succeeds" with a
// picture half grey. A complete JPEG has its end-of-image marker after the
// first start-of-scan; inside scan data a 0xFF byte is always followed by 0x00
// or a restart marker, so FF D9 there can only be that marker.
bool JpegIsComplete(const std::uint8_t* b, std::size_t n) {
  // Walk the marker segments of the header up to the first start-of-scan.
  std::size_t i = 2;
  for (;;) {
    if (i + 1 >= n || b[i] != 0xFF) return false;
    std::uint8_t m = b[i + 1];
    if (m == 0xFF) {  // fill byte
      ++i;
      continue;
    }
    if (m == 0xDA) break;
    if (m == 0x01 || (m >= 0xD0 && m <= 0xD7)) {  // markers without a length
      i += 2;
      continue;
    }
    if (i + 3 >= n) return false;
    i += 2 + ((std::size_t(b[i + 2]) << 8) | b[i + 3]);
  }
  for (std::size_t j = i + 2; j + 1 < n; ++j)
    if (b[j] == 0xFF && b[j + 1] == 0xD9) return true;
  return false;
}

std::uint32_t Channel(std::uint32_t argb, int shift) {
  return (argb >> shift) & 0xFF;
}

// Filtering a keyed picture must not mix in the colour of its transparent
// texels (black after the key): that darkens every edge of a leaf or petal
// into a fringe, level by level down the mip chain. So colours are averaged
// weighted by their alpha, and alpha plainly. Where all four texels have the
// same alpha (an opaque picture) this is the plain average, to the bit.
std::uint32_t WeightedByAlpha(const std::uint32_t (&t)[4], const float (&w)[4]) {
  const bool sameAlpha = Channel(t[0], 24) == Channel(t[1], 24) &&
                         Channel(t[0], 24) == Channel(t[2], 24) &&
                         Channel(t[0], 24) == Channel(t[3], 24);
  float weight[4], total = 0.0f, alpha = 0.0f;
  for (int i = 0; i < 4; ++i) {
    weight[i] = sameAlpha ? w[i] : w[i] * float(Channel(t[i], 24));
    total += weight[i];
    alpha += w[i] * float(Channel(t[i], 24));
  }
  std::uint32_t out = std::uint32_t(std::clamp(alpha + 0.5f, 0.0f, 255.0f)) << 24;
  if (total <= 0.0f) return out;  // transparent all round: transparent black stays
  for (int shift = 0; shift < 24; shift += 8) {
    float v = 0.0f;
    for (int i = 0; i < 4; ++i) v += weight[i] * float(Channel(t[i], shift));
    out |= std::uint32_t(std::clamp(v / total + 0.5f, 0.0f, 255.0f)) << shift;
  }
  return out;
}

// The 2x2 box of a mip level, rounded to nearest, colours weighted by alpha.
std::uint32_t BoxByAlpha(const std::uint32_t (&t)[4]) {
  const std::uint32_t alpha = t[0] >> 24;
  if (alpha != 0 && (t[1] >> 24) == alpha && (t[2] >> 24) == alpha && (t[3] >> 24) == alpha) {
    // Equal weights cancel: each channel is (sum + 2) / 4, alpha included, to
    // the bit of the weighted form below. Two channels a word, each lane's
    // sum of four bytes fits its 16 bits.
    std::uint32_t even = 0x00020002u, odd = 0x00020002u;
    for (std::uint32_t v : t) {
      even += v & 0x00FF00FFu;
      odd += (v >> 8) & 0x00FF00FFu;
    }
    return ((even >> 2) & 0x00FF00FFu) | (((odd >> 2) & 0x00FF00FFu) << 8);
  }
  std::uint32_t alphaSum = 0;
  for (std::uint32_t v : t) alphaSum += Channel(v, 24);
  std::uint32_t out = ((alphaSum + 2) / 4) << 24;
  if (alphaSum == 0) return out;
  for (int shift = 0; shift < 24; shift += 8) {
    std::uint32_t sum = alphaSum / 2;
    for (std::uint32_t v : t) sum += Channel(v, shift) * Channel(v, 24);
    out |= (sum / alphaSum) << shift;
  }
  return out;
}

std::string ForwardSlashes(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// stb_image names its failures in a word or two of its own; say them plainly.
std::string PlainReason(const char* stbReason) {
  const std::string reason = stbReason ? stbReason : "";
  if (reason == "outofdata") return "the file ends early";
  if (reason == "outofmem") return "there is not enough memory to decode it";
  if (reason == "too large") return "the picture is too large";
  return "the picture data is damaged (" + (reason.empty() ? std::string("unknown fault") : reason) + ")";
}

}  // namespace

bool DecodeImageMemory(const std::uint8_t* bytes, std::size_t size, DecodedImage& out,
                       std::string& error) {
  out = DecodedImage{};
  if (bytes == nullptr || size == 0) {
    error = "the file is empty";
    return false;
  }
  if (size > std::size_t(kMaxFileBytes)) {
    error = "the file is too large for a picture";
    return false;
  }
  if (IsJpeg(bytes, size)) {
    out.kind = ImageKind::Jpeg;
    if (!JpegIsComplete(bytes, size)) {
      error = "the file ends early";
      return false;
    }
  } else if (IsPng(bytes, size)) {
    out.kind = ImageKind::Png;
  } else {
    error = "it is not a JPEG or PNG picture";
    return false;
  }
  int w = 0, h = 0, comp = 0;
  if (!stbi_info_from_memory(bytes, int(size), &w, &h, &comp) || w <= 0 || h <= 0) {
    error = PlainReason(stbi_failure_reason());
    return false;
  }
  if (w > kMaxSide || h > kMaxSide) {
    error = "the picture is too large";
    return false;
  }
  std::unique_ptr<stbi_uc, void (*)(void*)> rgba(
      stbi_load_from_memory(bytes, int(size), &w, &h, &comp, 4), stbi_image_free);
  if (!rgba) {
    error = PlainReason(stbi_failure_reason());
    return false;
  }
  out.hasAlpha = comp == 2 || comp == 4;
  out.image.width = std::uint32_t(w);
  out.image.height = std::uint32_t(h);
  out.image.texels.resize(std::size_t(w) * std::size_t(h));
  // stb's bytes R, G, B, A read as one little-endian word are A B G R: the
  // swap of R and B gives A R G B, in a loop the compiler turns into vector
  // code (a 2048x2048 picture is four million texels). A file without alpha
  // reads as opaque: stb fills 0xFF there already.
  static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "texel words are read little-endian");
  const stbi_uc* p = rgba.get();
  std::uint32_t* texels = out.image.texels.data();
  for (std::size_t i = 0; i < out.image.texels.size(); ++i) {
    std::uint32_t abgr;
    std::memcpy(&abgr, p + 4 * i, 4);
    texels[i] = (abgr & 0xFF00FF00u) | ((abgr >> 16) & 0xFFu) | ((abgr & 0xFFu) << 16);
  }
  return true;
}

bool DecodeImageFile(const std::string& path, DecodedImage& out, std::string& error) {
  std::string name = ForwardSlashes(path);
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(name.c_str(), "rb"), std::fclose);
  if (!f) {
    error = crt::DescribeOpenError(errno);
    return false;
  }
  if (std::fseek(f.get(), 0, SEEK_END) != 0) {
    error = "it cannot be read";
    return false;
  }
  long size = std::ftell(f.get());
  if (size <= 0 || size > kMaxFileBytes || std::fseek(f.get(), 0, SEEK_SET) != 0) {
    error = size == 0 ? "the file is empty" : size < 0 ? "it cannot be read" : "the file is too large for a picture";
    return false;
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  if (std::fread(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) {
    error = "it cannot be read";
    return false;
  }
  return DecodeImageMemory(bytes.data(), bytes.size(), out, error);
}

std::size_t ApplyColorKey(ArgbImage& image, std::uint32_t key) {
  if (key == 0) return 0;
  std::size_t n = 0;
  for (auto& t : image.texels) {
    if (t == key) {
      t = 0;
      ++n;
    }
  }
  return n;
}

std::uint32_t NextPowerOfTwo(std::uint32_t n) {
  std::uint32_t p = 1;
  while (p < n && p < 0x80000000u) p <<= 1;
  return p;
}

std::uint32_t FullMipCount(std::uint32_t width, std::uint32_t height) {
  std::uint32_t side = std::max(width, height), levels = 1;
  while (side > 1) {
    side >>= 1;
    ++levels;
  }
  return levels;
}

ArgbImage Resample(ArgbImage src, std::uint32_t width, std::uint32_t height) {
  if (src.width == width && src.height == height) return src;  // moved, not copied
  ArgbImage dst;
  dst.width = width;
  dst.height = height;
  dst.texels.resize(std::size_t(width) * height);
  if (src.width == 0 || src.height == 0) return dst;
  const float sx = float(src.width) / float(width), sy = float(src.height) / float(height);
  for (std::uint32_t y = 0; y < height; ++y) {
    float fy = std::clamp((float(y) + 0.5f) * sy - 0.5f, 0.0f, float(src.height - 1));
    std::uint32_t y0 = std::uint32_t(fy), y1 = std::min(y0 + 1, src.height - 1);
    float wy = fy - float(y0);
    for (std::uint32_t x = 0; x < width; ++x) {
      float fx = std::clamp((float(x) + 0.5f) * sx - 0.5f, 0.0f, float(src.width - 1));
      std::uint32_t x0 = std::uint32_t(fx), x1 = std::min(x0 + 1, src.width - 1);
      float wx = fx - float(x0);
      const std::uint32_t t[4] = {src.At(x0, y0), src.At(x1, y0), src.At(x0, y1), src.At(x1, y1)};
      const float w[4] = {(1 - wx) * (1 - wy), wx * (1 - wy), (1 - wx) * wy, wx * wy};
      const std::uint32_t out = WeightedByAlpha(t, w);
      dst.texels[std::size_t(y) * width + x] = out;
    }
  }
  return dst;
}

ArgbImage HalveBox(const ArgbImage& src) {
  ArgbImage dst;
  dst.width = std::max(1u, src.width / 2);
  dst.height = std::max(1u, src.height / 2);
  dst.texels.resize(std::size_t(dst.width) * dst.height);
  if (src.texels.empty()) return dst;
  for (std::uint32_t y = 0; y < dst.height; ++y) {
    std::uint32_t y0 = std::min(2 * y, src.height - 1), y1 = std::min(2 * y + 1, src.height - 1);
    for (std::uint32_t x = 0; x < dst.width; ++x) {
      std::uint32_t x0 = std::min(2 * x, src.width - 1), x1 = std::min(2 * x + 1, src.width - 1);
      const std::uint32_t t[4] = {src.At(x0, y0), src.At(x1, y0), src.At(x0, y1), src.At(x1, y1)};
      const std::uint32_t out = BoxByAlpha(t);
      dst.texels[std::size_t(y) * dst.width + x] = out;
    }
  }
  return dst;
}

}  // namespace d3dx
