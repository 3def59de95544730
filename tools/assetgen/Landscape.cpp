#include "Landscape.h"

#include <algorithm>
#include <cmath>

#include "Noise.h"

namespace assetgen {
namespace {

// Signed distance to a rounded box (centre, half extents, corner radius), in
// grid cells; negative inside.
float SdRoundBox(float x, float z, float cx, float cz, float hx, float hz, float r)
{
    const float qx = std::fabs(x - cx) - hx + r;
    const float qz = std::fabs(z - cz) - hz + r;
    const float ox = std::max(qx, 0.0f);
    const float oz = std::max(qz, 0.0f);
    return std::sqrt(ox * ox + oz * oz) + std::min(std::max(qx, qz), 0.0f) - r;
}

float SdCircle(float x, float z, float cx, float cz, float r)
{
    return std::hypot(x - cx, z - cz) - r;
}

// A smooth bump: 1 at the centre, 0 from radius r on, steepest half way, so
// that a mountain has its rock on its flanks and a gentle foot.
float Bell(float x, float z, float cx, float cz, float r)
{
    const float t = std::clamp(1.0f - std::hypot(x - cx, z - cz) / r, 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

struct Island { float x, z, r; };
struct Peak { float x, z, r, height; };

// Islands off the east coast; the first carries a small volcano.
constexpr Island kIslands[] = {
    {182, 118, 15}, {224, 158, 10}, {163, 172, 8}, {207, 72, 11}, {240, 112, 6},
};

// Mountains, in grid cells and samples above the hills. The north-west massif
// and the north-east range rise well above 3000 units.
constexpr Peak kPeaks[] = {
    {64, 212, 46, 175}, {24, 166, 28, 125}, {214, 234, 36, 150},
    {196, 10, 30, 100}, {182, 118, 12, 48}, {120, 150, 24, 50},
};

// The height of one grid point in samples, before rounding.
float HeightSample(float x, float z)
{
    // Coordinates bent by low-frequency noise, so that coasts and mountains
    // lose the round and straight lines they are laid out with.
    const float wx = x + 13.0f * Fbm(x / 60.0f, z / 60.0f, 0.25f, 3);
    const float wz = z + 13.0f * Fbm(x / 60.0f, z / 60.0f, 5.25f, 3);

    // Water bodies: the open sea in the east and the bay that reaches west
    // from it, shallow enough for the towers' feet to stand in it.
    const float warp = 5.0f * Fbm(x / 22.0f, z / 22.0f, 0.5f, 4);
    const float ocean = SdRoundBox(wx, wz, 212.0f, 115.0f, 67.0f, 85.0f, 32.0f) + warp;
    const float bay = SdRoundBox(wx, wz, 88.0f, 64.0f, 60.0f, 22.0f, 15.0f) + warp;

    float land = std::min(ocean, bay); // distance inland, negative at sea
    for (const Island& island : kIslands)
        land = std::max(land, -(SdCircle(wx, wz, island.x, island.z, island.r) + 0.8f * warp));

    if (land < 0.0f) {
        // The sea bed falls quickly from the beach, deeper in the open sea.
        const float open = SmoothStep(4.0f, -24.0f, ocean);
        const float maxDepth = 18.0f + 28.0f * open;
        const float scale = 5.0f + 9.0f * open;
        const float depth = maxDepth * (1.0f - std::exp(land / scale));
        const float ripples = 1.5f * Fbm(x / 9.0f, z / 9.0f, 3.5f, 3) * SmoothStep(0.0f, -6.0f, land);
        return Landscape::kWaterSample - depth + ripples;
    }

    // Land: a beach first, then rolling hills, then the mountains.
    const float beach = 1.3f * std::min(land, 5.0f);
    const float inland = SmoothStep(2.0f, 28.0f, land);
    // The start meadow in the south-west corner stays gentle.
    const float meadow = Bell(x, z, 22.0f, 22.0f, 30.0f);
    const float rolling = 0.5f + 0.5f * Fbm(x / 48.0f, z / 48.0f, 1.5f, 5);
    const float hills = inland * (1.0f - 0.75f * meadow) * (8.0f + 30.0f * rolling);
    // Mountains bend further than the coast, into ridges and spurs.
    const float mx = wx + 14.0f * Fbm(x / 30.0f, z / 30.0f, 13.25f, 3);
    const float mz = wz + 14.0f * Fbm(x / 30.0f, z / 30.0f, 17.25f, 3);
    float mountains = 0.0f;
    for (const Peak& peak : kPeaks) {
        const float bell = Bell(mx, mz, peak.x, peak.z, peak.r);
        if (bell > 0.0f)
            mountains += peak.height * bell * (0.5f + 0.5f * Ridge(x / 26.0f, z / 26.0f, 7.5f, 5));
    }
    mountains *= SmoothStep(0.0f, 12.0f, land);
    const float grain = 0.8f * Fbm(x / 6.0f, z / 6.0f, 9.5f, 2);
    return Landscape::kWaterSample + 0.6f + beach + hills + mountains + grain;
}


// Thermal relaxation: wherever two neighbours differ by more than `talus`
// samples, part of the excess slides down. A few passes take the noise's
// rare cliff walls back to steep but walkable-looking slopes.
void Relax(std::vector<float>& h, int n, float talus, int passes)
{
    for (int pass = 0; pass < passes; ++pass) {
        for (int row = 0; row < n; ++row) {
            for (int col = 0; col < n; ++col) {
                float& here = h[static_cast<size_t>(row) * n + col];
                const int neighbours[2][2] = {{col + 1, row}, {col, row + 1}};
                for (const auto& nb : neighbours) {
                    if (nb[0] >= n || nb[1] >= n)
                        continue;
                    float& there = h[static_cast<size_t>(nb[1]) * n + nb[0]];
                    const float diff = here - there;
                    if (std::fabs(diff) <= talus)
                        continue;
                    const float move = (std::fabs(diff) - talus) * 0.25f * (diff > 0 ? 1.0f : -1.0f);
                    here -= move;
                    there += move;
                }
            }
        }
    }
}

} // namespace

Landscape Landscape::Generate()
{
    std::vector<float> heights(static_cast<size_t>(kSize) * kSize);
    for (int row = 0; row < kSize; ++row)
        for (int col = 0; col < kSize; ++col)
            heights[static_cast<size_t>(row) * kSize + col] =
                HeightSample(static_cast<float>(col), static_cast<float>(row));
    Relax(heights, kSize, 10.0f, 12);

    Landscape map;
    map.m_samples.resize(heights.size());
    for (size_t i = 0; i < heights.size(); ++i)
        map.m_samples[i] = static_cast<uint8_t>(std::clamp(std::lround(heights[i]), 0L, 255L));
    return map;
}

uint8_t Landscape::Sample(int col, int row) const
{
    col = std::clamp(col, 0, kSize - 1);
    row = std::clamp(row, 0, kSize - 1);
    return m_samples[static_cast<size_t>(row) * kSize + col];
}

float Landscape::HeightAt(float col, float row) const
{
    const int c = static_cast<int>(std::floor(col));
    const int r = static_cast<int>(std::floor(row));
    const float fx = col - c;
    const float fz = row - r;
    const float top = Lerp(Sample(c, r), Sample(c + 1, r), fx);
    const float bottom = Lerp(Sample(c, r + 1), Sample(c + 1, r + 1), fx);
    return Lerp(top, bottom, fz) * kStep;
}

} // namespace assetgen
