#include "AssetFiles.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include <stb_image.h>

namespace assettest {

std::filesystem::path AssetDir() { return KARVO_ASSET_DIR; }

std::vector<uint8_t> ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

double Picture::Mean(int channel, int y0, int y1) const {
  if (y1 < 0) y1 = height;
  double sum = 0;
  for (int y = y0; y < y1; ++y)
    for (int x = 0; x < width; ++x) sum += At(x, y)[channel];
  return sum / (static_cast<double>(y1 - y0) * width);
}

Picture LoadPicture(const std::string& name) {
  Picture picture;
  int w = 0, h = 0, n = 0;
  stbi_uc* pixels = stbi_load((AssetDir() / "Data" / name).string().c_str(), &w, &h, &n, 4);
  if (!pixels) return picture;
  picture = {w, h, n, std::vector<uint8_t>(pixels, pixels + static_cast<size_t>(w) * h * 4)};
  stbi_image_free(pixels);
  return picture;
}

std::vector<float> DecodeMp3(const std::filesystem::path& path) {
  std::vector<float> samples;
  const std::string command =
      "sox -q '" + path.string() + "' -t raw -e signed-integer -b 16 -c 1 -r 22050 - 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return samples;
  int16_t buffer[4096];
  for (size_t got; (got = fread(buffer, sizeof(int16_t), 4096, pipe)) > 0;)
    for (size_t i = 0; i < got; ++i) samples.push_back(buffer[i] / 32768.0f);
  if (pclose(pipe) != 0) samples.clear();
  return samples;
}

float HeightMap::GetHeight(float x, float z) const {
  const float gx = x / 64.0f, gz = z / 64.0f;
  if (gx < 0.0f || gz < 0.0f || gx >= kSize || gz >= kSize) return 0.0f;
  const int ix = static_cast<int>(gx), iz = static_cast<int>(gz);
  const float fx = gx - ix, fz = gz - iz;
  // Corners beyond the last column or row read the edge of the map.
  auto h = [&](int c, int r) { return Sample(std::min(c, kSize - 1), std::min(r, kSize - 1)) * 16.0f; };
  const float h10 = h(ix + 1, iz), h01 = h(ix, iz + 1);
  float h00, h11;
  if (fx >= 1.0f - fz) {
    h11 = h(ix + 1, iz + 1);
    h00 = h01 - h11 + h10;
  } else {
    h00 = h(ix, iz);
    h11 = h10 - h00 + h01;
  }
  const float top = (h10 - h00) * fx + h00, bottom = (h11 - h01) * fx + h01;
  return (bottom - top) * fz + top;
}

HeightMap LoadHeightMap() { return HeightMap(ReadFile(AssetDir() / "Data" / "HeightMap.raw")); }

}  // namespace assettest
