// stb_image for the web build. On the desktop Debian's libstb carries the
// implementation; here it is compiled from the same header.
#define STB_IMAGE_IMPLEMENTATION
#include <stb_image.h>
