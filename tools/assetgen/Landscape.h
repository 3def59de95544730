// The world's height map: 257 x 257 samples of 16 world units each, one grid
// step of 64 units, the sea at sample 54 (864 units). The shape is laid out by
// hand around the places the game fixes (the start meadow, the two towers in a
// bay, the big tree) and roughened with noise.
#pragma once

#include <cstdint>
#include <vector>

namespace assetgen {

class Landscape
{
public:
    static constexpr int kSize = 257;
    static constexpr float kCell = 64.0f;      // world units per grid step
    static constexpr float kStep = 16.0f;      // world units per sample step
    static constexpr float kWaterSample = 54.0f;

    // Builds the one landscape of the game; the same on every call.
    static Landscape Generate();

    const std::vector<uint8_t>& Samples() const { return m_samples; }
    uint8_t Sample(int col, int row) const;     // clamped to the map
    // World height at grid position (col, row), bilinear between samples.
    float HeightAt(float col, float row) const;

private:
    std::vector<uint8_t> m_samples;
};

} // namespace assetgen
