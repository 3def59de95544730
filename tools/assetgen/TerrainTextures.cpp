#include "TerrainTextures.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <vector>

#include "Noise.h"
#include "Raster.h"
#include "Sun.h"

namespace assetgen {
namespace {

constexpr int kBaseSize = 2048;
constexpr float kWater = Landscape::kWaterSample * Landscape::kStep; // 864

// Light and slope per grid point, from central differences, so that the
// painted shading is smooth across cells rather than showing the grid.
struct GroundShape
{
    std::vector<float> light; // 1.0 on flat ground
    std::vector<float> slope; // rise over run

    float At(const std::vector<float>& field, float col, float row) const
    {
        const int n = Landscape::kSize;
        const int c = std::clamp(static_cast<int>(col), 0, n - 2);
        const int r = std::clamp(static_cast<int>(row), 0, n - 2);
        const float fx = std::clamp(col - c, 0.0f, 1.0f);
        const float fz = std::clamp(row - r, 0.0f, 1.0f);
        const auto f = [&](int cc, int rr) { return field[static_cast<size_t>(rr) * n + cc]; };
        return Lerp(Lerp(f(c, r), f(c + 1, r), fx), Lerp(f(c, r + 1), f(c + 1, r + 1), fx), fz);
    }
};

GroundShape MeasureGround(const Landscape& map)
{
    const int n = Landscape::kSize;
    const Direction sun = SunDirection();
    const float flat = 0.42f + 0.58f * sun.y;
    GroundShape shape;
    shape.light.resize(static_cast<size_t>(n) * n);
    shape.slope.resize(static_cast<size_t>(n) * n);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            const float gx = (map.Sample(c + 1, r) - map.Sample(c - 1, r)) * Landscape::kStep / (2.0f * Landscape::kCell);
            const float gz = (map.Sample(c, r + 1) - map.Sample(c, r - 1)) * Landscape::kStep / (2.0f * Landscape::kCell);
            const float len = std::sqrt(gx * gx + 1.0f + gz * gz);
            const float ndl = std::max(0.0f, (-gx * sun.x + sun.y - gz * sun.z) / len);
            shape.light[static_cast<size_t>(r) * n + c] = (0.42f + 0.58f * ndl) / flat;
            shape.slope[static_cast<size_t>(r) * n + c] = std::sqrt(gx * gx + gz * gz);
        }
    }
    return shape;
}

const Color kDeepBed = Color::Bytes(38, 60, 70);
const Color kBed = Color::Bytes(94, 108, 84);
const Color kWetSand = Color::Bytes(172, 158, 116);
const Color kSand = Color::Bytes(216, 200, 152);
const Color kGrassLight = Color::Bytes(124, 160, 64);
const Color kGrass = Color::Bytes(86, 130, 50);
const Color kForest = Color::Bytes(48, 90, 42);
const Color kForestDark = Color::Bytes(34, 66, 34);
const Color kRock = Color::Bytes(130, 120, 108);
const Color kRockDark = Color::Bytes(92, 86, 80);
const Color kSnow = Color::Bytes(236, 240, 247);

Color GroundColor(const Landscape& map, const GroundShape& shape, float col, float row)
{
    const float h = map.HeightAt(col, row);
    const float patches = Fbm(col / 5.0f, row / 5.0f, 11.5f, 4);
    const float fine = Fbm(col * 1.3f, row * 1.3f, 21.5f, 2);
    const float slope = shape.At(shape.slope, col, row);

    Color c;
    if (h < kWater) {
        const float depth = kWater - h;
        c = depth < 120.0f ? Mix(kWetSand, kBed, depth / 120.0f)
                           : Mix(kBed, kDeepBed, SmoothStep(120.0f, 520.0f, depth));
        c = c.Scaled(1.0f + 0.08f * patches);
    } else {
        const float jitter = 40.0f * patches;
        c = Mix(kGrassLight, kGrass, SmoothStep(-0.35f, 0.45f, patches + 0.3f * fine));
        const float forest = SmoothStep(1100.0f, 1450.0f, h + 4.0f * jitter) *
            SmoothStep(-0.1f, 0.3f, Fbm(col / 9.0f, row / 9.0f, 31.5f, 3)) *
            (1.0f - SmoothStep(2150.0f, 2450.0f, h + 3.0f * jitter));
        c = Mix(c, Mix(kForest, kForestDark, Clamp01(0.5f + fine)), forest);
        const float rock = std::max(SmoothStep(0.9f, 1.35f, slope + 0.2f * fine),
                                    SmoothStep(2200.0f, 2700.0f, h + 4.0f * jitter));
        c = Mix(c, Mix(kRock, kRockDark, Clamp01(0.5f + patches)), rock);
        const float snow = SmoothStep(2750.0f, 2950.0f, h + 5.0f * jitter) * (1.0f - SmoothStep(0.9f, 1.4f, slope));
        c = Mix(c, kSnow, snow);
        const float sand = 1.0f - SmoothStep(895.0f, 935.0f, h + 0.5f * jitter);
        c = Mix(c, Mix(kWetSand, kSand, SmoothStep(864.0f, 884.0f, h)), sand);
    }
    const float grain = 1.0f + 0.05f * fine;
    return c.Scaled(shape.At(shape.light, col, row) * grain);
}

} // namespace

bool WriteBaseTexture(const std::string& path, const Landscape& map)
{
    const GroundShape shape = MeasureGround(map);
    std::vector<uint8_t> rgb(static_cast<size_t>(kBaseSize) * kBaseSize * 3);
    const float cellsPerPixel = static_cast<float>(Landscape::kSize - 1) / kBaseSize;
    const auto paint = [&](int firstRow, int step) {
        for (int y = firstRow; y < kBaseSize; y += step) {
            for (int x = 0; x < kBaseSize; ++x) {
                const Color c = GroundColor(map, shape, (x + 0.5f) * cellsPerPixel, (y + 0.5f) * cellsPerPixel);
                uint8_t* p = &rgb[(static_cast<size_t>(y) * kBaseSize + x) * 3];
                p[0] = ToByte(c.r);
                p[1] = ToByte(c.g);
                p[2] = ToByte(c.b);
            }
        }
    };
    std::thread helper(paint, 1, 2);
    paint(0, 2);
    helper.join();
    return WriteJpeg(path, kBaseSize, kBaseSize, rgb, 90);
}

bool WriteDetailTexture(const std::string& path)
{
    // The ground at the walker's feet: the picture repeats every 6 cells (384
    // units), so one texel is 0.75 units and the eye, 10 above the ground,
    // sees single texels near its feet. Soft patches alone read there as an
    // even smear; what reads as grass and soil is grain at the scale of a
    // texel: blades (short strokes, lit at one end and shadowed along one
    // side), specks of soil and a per-texel jitter, over gentle patches.
    // Everything wraps around the edges, so the tiles meet without a seam, and
    // the mean is shifted to exactly 128 so that ADDSIGNED keeps the base
    // colour's brightness on average (and far off, where the mips average the
    // grain away, nothing changes at all).
    constexpr int size = 512;
    std::vector<float> value(static_cast<size_t>(size) * size);
    const auto at = [&](int x, int y) -> float& {
        return value[static_cast<size_t>((y % size + size) % size) * size + (x % size + size) % size];
    };
    Random rng(0xD37A11);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const float u = x * 4.0f / size;
            const float v = y * 4.0f / size;
            const float patches = TileFbm(u, v, 0.5f, 4, 4);
            at(x, y) = 12.0f * patches + 24.0f * static_cast<float>(rng.Unit() - 0.5);
        }
    }
    // Blades: a stroke of 3 to 10 texels, darker at its root and lighter at
    // its tip, with a shadow beside it.
    for (int i = 0; i < 14000; ++i) {
        const float x0 = static_cast<float>(rng.Range(0, size));
        const float y0 = static_cast<float>(rng.Range(0, size));
        const float angle = static_cast<float>(rng.Range(0, 6.2831853));
        const int length = 3 + rng.Below(8);
        const float dx = std::cos(angle), dy = std::sin(angle);
        const float strength = static_cast<float>(rng.Range(0.6, 1.0));
        for (int t = 0; t < length; ++t) {
            const float along = static_cast<float>(t) / static_cast<float>(length - 1);
            const int x = static_cast<int>(std::floor(x0 + dx * t));
            const int y = static_cast<int>(std::floor(y0 + dy * t));
            at(x, y) += strength * (-30.0f + 76.0f * along);
            at(x + (dy > 0 ? 1 : -1), y) -= strength * 20.0f;
        }
    }
    // Specks of soil and small stones, one to three texels across.
    for (int i = 0; i < 1800; ++i) {
        const int x0 = rng.Below(size), y0 = rng.Below(size);
        const float shade = rng.Unit() < 0.7 ? -50.0f : 40.0f;
        const int radius = rng.Below(2);
        for (int y = -radius; y <= radius; ++y)
            for (int x = -radius; x <= radius; ++x) at(x0 + x, y0 + y) += shade;
    }
    double sum = 0.0;
    for (float f : value) sum += f;
    const float mean = static_cast<float>(sum / value.size());
    std::vector<uint8_t> rgb(static_cast<size_t>(size) * size * 3);
    for (size_t i = 0; i < value.size(); ++i) {
        const uint8_t g = static_cast<uint8_t>(std::clamp(std::lround(128.0f + value[i] - mean), 0L, 255L));
        rgb[i * 3 + 0] = rgb[i * 3 + 1] = rgb[i * 3 + 2] = g;
    }
    return WriteJpeg(path, size, size, rgb, 92);
}

bool WriteWaterTexture(const std::string& path)
{
    // Tiling swell and ripples on a blue-green sea, with a few bright crests.
    constexpr int size = 1024;
    std::vector<uint8_t> rgb(static_cast<size_t>(size) * size * 3);
    const Color deep = Color::Bytes(28, 78, 112);
    const Color shallow = Color::Bytes(56, 120, 140);
    const Color crest = Color::Bytes(190, 215, 225);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const float u = x * 4.0f / size;
            const float v = y * 4.0f / size;
            const float swell = TileFbm(u, v, 40.5f, 4, 3);
            const float ripple = TileFbm(u * 8.0f, v * 8.0f, 41.5f, 32, 3);
            const float ridge = 1.0f - std::fabs(TileFbm(u * 4.0f, v * 4.0f, 42.5f, 16, 2));
            Color c = Mix(deep, shallow, Clamp01(0.5f + 0.8f * swell));
            c = c.Scaled(1.0f + 0.10f * ripple);
            c = Mix(c, crest, 0.35f * SmoothStep(0.86f, 0.98f, ridge) * Clamp01(0.6f + swell));
            uint8_t* p = &rgb[(static_cast<size_t>(y) * size + x) * 3];
            p[0] = ToByte(c.r);
            p[1] = ToByte(c.g);
            p[2] = ToByte(c.b);
        }
    }
    return WriteJpeg(path, size, size, rgb, 90);
}

} // namespace assetgen
