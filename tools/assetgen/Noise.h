// Deterministic randomness for the asset generator: a small seeded generator
// and fractal noise built on stb_perlin. Every asset draws from fixed seeds so
// that two builds write byte-identical files.
#pragma once

#include <cstdint>

namespace assetgen {

// SplitMix64: fast, well mixed, and the same sequence on every platform.
class Random
{
public:
    explicit Random(uint64_t seed) : m_state(seed) {}

    uint64_t Next();
    // Uniform in [0, 1).
    double Unit() { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }
    // Uniform in [lo, hi).
    double Range(double lo, double hi) { return lo + (hi - lo) * Unit(); }
    // Uniform whole number in [0, n); n must be above 0.
    int Below(int n) { return static_cast<int>(Next() % static_cast<uint64_t>(n)); }
    // Roughly normal, mean 0 and deviation 1 (sum of uniforms).
    double Gauss();

private:
    uint64_t m_state;
};

// Fractal Brownian motion of Perlin noise, about -1..1.
float Fbm(float x, float y, float z, int octaves);
// Ridged multifractal, about 0..1: sharp crests where the noise crosses zero.
float Ridge(float x, float y, float z, int octaves);
// Fbm that repeats every `period` units in x and y; period must be a power of
// two from 1 to 64 so that every octave wraps too.
float TileFbm(float x, float y, float z, int period, int octaves);

inline float Clamp01(float v) { return v < 0.0f ? 0.0f : (v > 1.0f ? 1.0f : v); }
inline float Lerp(float a, float b, float t) { return a + (b - a) * t; }
inline float SmoothStep(float e0, float e1, float x)
{
    const float t = Clamp01((x - e0) / (e1 - e0));
    return t * t * (3.0f - 2.0f * t);
}

} // namespace assetgen
