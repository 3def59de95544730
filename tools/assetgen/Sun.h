// The one sun of the world: the sky draws it and the base texture is shaded by
// it, so the light on the hills comes from where the sun stands.
#pragma once

#include <cmath>

namespace assetgen {

struct Direction
{
    float x, y, z;
};

inline Direction Normalized(float x, float y, float z)
{
    const float len = std::sqrt(x * x + y * y + z * z);
    return {x / len, y / len, z / len};
}

// Towards the sun: high in the south-east of the map (+x, -z), about 36
// degrees above the horizon, so the start view (towards +x, +z) is lit from
// the right.
inline Direction SunDirection() { return Normalized(0.62f, 0.58f, -0.53f); }

} // namespace assetgen
