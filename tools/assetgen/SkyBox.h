// The six faces of the sky cube. Each pixel is painted from the direction in
// which the eye sees it on the cube the game draws (side 20, centred 1.3
// above the eye), so faces meet without seams whatever their orientation.
#pragma once

#include <filesystem>

namespace assetgen {

constexpr int kSkyFaceSize = 512;

// Writes Data/SkyBox_{Front,Back,Left,Right,Top,Bottom}.jpg under `data`.
bool WriteSkyBox(const std::filesystem::path& data);

} // namespace assetgen
