// Pictures laid on the ground and the sea: the base colour map painted from
// the height map, the repeating grey detail texture and the water.
#pragma once

#include <string>

#include "Landscape.h"

namespace assetgen {

// Data/Base_Texture_BigPoint.jpg: 2048 x 2048, stretched once over the map.
bool WriteBaseTexture(const std::string& path, const Landscape& map);
// Data/Detail_Texture.jpg: seamless grey, mean 128, for ADDSIGNED/MODULATE2X.
bool WriteDetailTexture(const std::string& path);
// Data/Water_Texture.jpg: seamless sea surface, stretched once over the sea.
bool WriteWaterTexture(const std::string& path);

} // namespace assetgen
