// The icon's picture on a 32-unit canvas, sampled at the requested size.
#include "app/IconPicture.h"

#include <cmath>

namespace {

constexpr double kCanvas = 32.0;

// Sky fading to pale at the horizon, the sea below it, a green hill with a
// lighter crest rising out of the sea. (u, v) is the canvas position.
std::uint32_t ColourAt(double u, double v) {
  const double hill = 13.0 + 9.0 * std::sin((u + 4.0) * 3.14159265 / 28.0);
  if (kCanvas - v <= hill) {
    const bool crest = kCanvas - v > hill - 2.0;
    return crest ? 0xFF7FC75Au : 0xFF3E8E2Fu;
  }
  if (v >= 24.0) return 0xFF2F6FB8u;
  const std::uint32_t fade = static_cast<std::uint32_t>(v * 4.0);
  return 0xFF000000u | ((0x50u + fade) << 16) | ((0x90u + fade) << 8) | 0xF0u;
}

}  // namespace

void DrawIconPicture(std::uint32_t* pixels, int size) {
  if (pixels == nullptr || size < 1) return;
  const double scale = kCanvas / size;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) pixels[y * size + x] = ColourAt(x * scale, y * scale);
  }
}
