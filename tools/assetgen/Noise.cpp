#include "Noise.h"

#include <cmath>

#include <stb_perlin.h>

namespace assetgen {

uint64_t Random::Next()
{
    uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

double Random::Gauss()
{
    double sum = 0.0;
    for (int i = 0; i < 6; ++i)
        sum += Unit();
    return (sum - 3.0) * std::sqrt(2.0);
}

float Fbm(float x, float y, float z, int octaves)
{
    return stb_perlin_fbm_noise3(x, y, z, 2.0f, 0.5f, octaves);
}

float Ridge(float x, float y, float z, int octaves)
{
    return stb_perlin_ridge_noise3(x, y, z, 2.0f, 0.5f, 1.0f, octaves);
}

float TileFbm(float x, float y, float z, int period, int octaves)
{
    float sum = 0.0f;
    float amplitude = 1.0f;
    float frequency = 1.0f;
    int wrap = period;
    for (int i = 0; i < octaves && wrap <= 256; ++i) {
        sum += amplitude * stb_perlin_noise3(x * frequency, y * frequency, z, wrap, wrap, 0);
        amplitude *= 0.5f;
        frequency *= 2.0f;
        wrap *= 2;
    }
    return sum;
}

} // namespace assetgen
