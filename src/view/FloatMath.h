// The scalar helpers of the game layer: the two stored angle factors and the
// float wrappers of square root, absolute value and arc cosine.
//
// The game layer speaks degrees and the D3DX calls radians; every conversion
// is one multiplication by one of these stored single-precision factors, never
// by a more exact value, so that turns add up the same way on every build.
// The wrappers compute in double precision and store back as float.
#pragma once

#include <cmath>

// pi / 180 and 180 / pi, as the nearest single-precision values.
constexpr float DEGREES_TO_RADIANS = 0.01745329238474369f;
constexpr float RADIANS_TO_DEGREES = 57.2957763671875f;

inline float FloatSqrt(float value) { return static_cast<float>(std::sqrt(static_cast<double>(value))); }
inline float FloatAbs(float value) { return static_cast<float>(std::fabs(static_cast<double>(value))); }

// Arc cosine in radians; the argument is clamped to -1..1 so that a dot product
// of unit vectors a rounding step above 1 gives 0 rather than NaN.
inline float FloatAcos(float value) {
  double v = static_cast<double>(value);
  if (v > 1.0) v = 1.0;
  if (v < -1.0) v = -1.0;
  return static_cast<float>(std::acos(v));
}
