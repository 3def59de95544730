// Whole-program pixel tests of the drawing: the real program runs headless
// through karvo-capture on the generated world, and its frames are read back
// from PNG files.
//
// The start view is taken in a marked copy of the assets: the ground's base image is pure
// red and its detail image flat mid-grey (which both colour operations of the
// default passes turn into "no change"), and the six sky images are one flat
// dark blue. A pixel's colour then tells what it shows: ground, sky, the
// clear colour (a gap), or something else.
#include <gtest/gtest.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/AssetFolder.h"
#include "support/WorkDir.h"

namespace fs = std::filesystem;

namespace {

struct Rgb {
  int r, g, b;
};

struct Image {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;
  Rgb At(int x, int y) const {
    const unsigned char* p = &rgb[(static_cast<std::size_t>(y) * width + x) * 3];
    return {p[0], p[1], p[2]};
  }
};

// What a pixel of a marked frame shows.
enum class Kind { Ground, Sky, Clear, Wall, Wall2, Flower, Other };

constexpr Rgb kSky = {0, 0, 160};
constexpr Rgb kClear = {0x79, 0xD3, 0xFF};
constexpr Rgb kFlower = {255, 0, 255};

bool Near(Rgb a, Rgb b, int tolerance) {
  return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

Kind Classify(Rgb p) {
  if (p.r > 200 && p.g < 50 && p.b < 50) return Kind::Ground;
  if (Near(p, kSky, 24)) return Kind::Sky;
  if (Near(p, kClear, 3)) return Kind::Clear;
  // The walls, green and yellow, may be translucent (blending left on by the
  // weeds): told apart by hue.
  if (p.g > 120 && p.r < p.g * 6 / 10 && p.b < 90) return Kind::Wall;
  if (p.r > 120 && p.g > 120 && std::abs(p.r - p.g) < 40 && p.b < 90) return Kind::Wall2;
  if (Near(p, kFlower, 40)) return Kind::Flower;
  return Kind::Other;
}

// Share of the pixels of the rows [top, bottom) (fractions of the height)
// that are of kind.
double Share(const Image& image, Kind kind, double top = 0.0, double bottom = 1.0) {
  const int y0 = static_cast<int>(top * image.height), y1 = static_cast<int>(bottom * image.height);
  long count = 0;
  for (int y = y0; y < y1; ++y)
    for (int x = 0; x < image.width; ++x) count += Classify(image.At(x, y)) == kind;
  return y1 > y0 ? static_cast<double>(count) / (static_cast<double>(y1 - y0) * image.width) : 0.0;
}

fs::path WorkDir() { return test_support::WorkDir("karvo-draw-test-", "KARVO_KEEP_FRAMES"); }

// A flat picture of one colour: a JPEG, or a keyed PNG (alpha 0 gives white,
// the key colour).
void WriteFlat(const fs::path& path, Rgb c, int alpha = -1) {
  const bool png = alpha >= 0;
  const Rgb p = alpha == 0 ? Rgb{255, 255, 255} : c;
  std::vector<unsigned char> pixels;
  for (int i = 0; i < 64 * 64; ++i) {
    for (int v : {p.r, p.g, p.b, alpha}) pixels.push_back(static_cast<unsigned char>(v));
    if (!png) pixels.pop_back();
  }
  fs::remove(path);
  ASSERT_TRUE(png ? stbi_write_png(path.c_str(), 64, 64, 4, pixels.data(), 64 * 4)
                  : stbi_write_jpg(path.c_str(), 64, 64, 3, pixels.data(), 100))
      << path;
}

// A copy of the generated assets made of links, made once: the ground, its
// detail, the sky, the towers and the flower heads flat, the plants invisible.
// (That keyed texels never show is the texture loader's and the assets' tests'.)
fs::path MarkedAssets() {
  static std::unique_ptr<test_support::AssetFolder> folder;
  if (folder) return folder->Root();
  folder = std::make_unique<test_support::AssetFolder>(fs::current_path());  // the test runs in the assets folder
  const fs::path data = folder->Root() / "Data";
  WriteFlat(data / "Detail_Texture.jpg", {128, 128, 128});
  WriteFlat(data / "Base_Texture_BigPoint.jpg", {255, 0, 0});
  for (const char* face : {"Front", "Back", "Left", "Right", "Top", "Bottom"})
    WriteFlat(data / (std::string("SkyBox_") + face + ".jpg"), kSky);
  WriteFlat(data / "skyscraperwall.jpg", {0, 255, 0});
  WriteFlat(data / "skyscraperwall2.jpg", {255, 255, 0});
  for (const char* plant : {"tree.png", "tree3.png", "weads4.png", "weads5.png"})
    WriteFlat(data / plant, kFlower, 0);
  for (const char* flower : {"flower1.png", "flower2.png", "flower3.png"}) WriteFlat(data / flower, kFlower, 255);
  return folder->Root();
}

// Runs the capture tool in assets and reads back its first frame.
Image Capture(const fs::path& assets, const std::string& name) {
  const fs::path out = WorkDir() / "frames";
  const std::string command = "cd '" + assets.string() + "' && '" KARVO_CAPTURE "' --frames 1 --out '" +
                              out.string() + "' --prefix " + name + " > /dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  const fs::path path = out / (name + "_0001.png");
  Image image;
  int channels = 0;
  unsigned char* pixels = stbi_load(path.c_str(), &image.width, &image.height, &channels, 3);
  EXPECT_NE(pixels, nullptr) << path;
  if (pixels) {
    image.rgb.assign(pixels, pixels + static_cast<std::size_t>(image.width) * image.height * 3);
    stbi_image_free(pixels);
  }
  return image;
}

}  // namespace

TEST(Draw, StartViewShowsSkyAboveAndGroundBelowWithNoGaps) {
  const Image image = Capture(MarkedAssets(), "start");
  ASSERT_GT(image.width, 0);
  // The first look is 25 degrees down: ground in the lower part, sky above
  // it, where the far mountains may reach into the top rows.
  EXPECT_GT(Share(image, Kind::Ground, 0.75, 1.0), 0.95);
  // The towers rise into the top rows, flowers dot the meadow at the feet.
  EXPECT_GT(Share(image, Kind::Sky, 0.0, 0.1), 0.1);
  EXPECT_GT(Share(image, Kind::Sky, 0.0, 0.1) + Share(image, Kind::Ground, 0.0, 0.1) +
                Share(image, Kind::Wall, 0.0, 0.1) + Share(image, Kind::Wall2, 0.0, 0.1),
            0.99);
  EXPECT_GT(Share(image, Kind::Wall), 0.005);
  EXPECT_GT(Share(image, Kind::Wall2), 0.0005);
  EXPECT_GT(Share(image, Kind::Flower, 0.25, 1.0) * image.width * image.height, 20.0);
  // The clear colour must never show: the sky box closes round the eye.
  EXPECT_EQ(Share(image, Kind::Clear), 0.0);
}
