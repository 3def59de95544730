// The picture of the program's icon (resource 102): a hill over the sea under
// a blue sky. It is drawn from a formula rather than stored, so the desktop
// entry's icons at 48, 128 and 256 pixels are the same picture as the 32-pixel
// window icon, sharp at every size.
#pragma once

#include <cstdint>

// Fills size x size ARGB pixels (0xAARRGGBB, rows from the top). Size 32 is
// the window icon; other sizes scale the same shapes. Does nothing for a size
// below 1 or a null buffer.
void DrawIconPicture(std::uint32_t* pixels, int size);
