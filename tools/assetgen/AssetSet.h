// The whole set of game assets and where each file goes.
#pragma once

#include <filesystem>

namespace assetgen {

// Writes Data/HeightMap.raw, the 23 pictures under Data/ and the 29 mp3 files
// under music/ and speech/mp3/ into `root`, creating the folders. Prints what
// failed to stderr and returns false on any failure.
bool WriteAllAssets(const std::filesystem::path& root);

} // namespace assetgen
