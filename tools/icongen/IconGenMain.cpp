// karvo-icongen DIR: writes the program's icon as DIR/<N>x<N>/apps/karvo-terrain.png
// for the sizes of the desktop entry, in the hicolor theme's folder layout.
// The picture is the window icon's own (app/IconPicture.h).
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <stb_image_write.h>

#include "app/IconPicture.h"

namespace {

constexpr int kSizes[] = {48, 128, 256};

bool WriteIcon(const std::filesystem::path& root, int size) {
  std::vector<std::uint32_t> argb(static_cast<std::size_t>(size) * size);
  DrawIconPicture(argb.data(), size);
  std::vector<unsigned char> rgba;
  rgba.reserve(argb.size() * 4);
  for (const std::uint32_t p : argb) {
    rgba.push_back(static_cast<unsigned char>(p >> 16));
    rgba.push_back(static_cast<unsigned char>(p >> 8));
    rgba.push_back(static_cast<unsigned char>(p));
    rgba.push_back(static_cast<unsigned char>(p >> 24));
  }
  const std::string name = std::to_string(size) + "x" + std::to_string(size);
  const std::filesystem::path dir = root / name / "apps";
  std::error_code error;
  std::filesystem::create_directories(dir, error);
  const std::string file = (dir / "karvo-terrain.png").string();
  if (error || !stbi_write_png(file.c_str(), size, size, 4, rgba.data(), size * 4)) {
    std::fprintf(stderr, "karvo-icongen: cannot write %s\n", file.c_str());
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: karvo-icongen DIR\n");
    return 2;
  }
  for (const int size : kSizes) {
    if (!WriteIcon(argv[1], size)) return 1;
  }
  return 0;
}
