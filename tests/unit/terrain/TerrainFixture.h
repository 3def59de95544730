// A terrain on a height map made in memory, bound to a recording device,
// for the block, height and ground-following tests.
#pragma once

#include <cstdlib>
#include <functional>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"

namespace karvo_test {

// Fills terrain with a width x height map whose sample at (col, row) is
// sample(col, row), at the world scale a load of that size gives.
inline void MakeMap(CTerrain& terrain, std::uint32_t width, std::uint32_t height,
                    const std::function<std::uint8_t(std::uint32_t, std::uint32_t)>& sample) {
  terrain.m_mapWidth = width;
  terrain.m_mapHeight = height;
  terrain.m_scale = D3DXVECTOR3((512u / (width - 1)) * 32.0f, 16.0f, (512u / (height - 1)) * 32.0f);
  terrain.m_heightMap = static_cast<std::uint8_t*>(std::malloc(std::size_t(width) * height));
  for (std::uint32_t row = 0; row < height; ++row)
    for (std::uint32_t col = 0; col < width; ++col) terrain.m_heightMap[row * width + col] = sample(col, row);
}

}  // namespace karvo_test
