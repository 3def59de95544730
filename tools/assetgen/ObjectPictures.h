// Pictures of the things that stand in the world: trees, water plants,
// flowers, the figures' wings, rain, the two towers' walls, and the two
// pictures that are loaded but never drawn (beard, preservativ).
#pragma once

#include <filesystem>

namespace assetgen {

// Writes the 14 object pictures under `data`. Keyed pictures store their
// transparent pixels as white with alpha 0; the rain's background is exactly
// ARGB 0x640000FF, its colour key.
bool WriteObjectPictures(const std::filesystem::path& data);

} // namespace assetgen
