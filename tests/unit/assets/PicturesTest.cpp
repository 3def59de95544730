// The 23 pictures: they load, have sizes the texture loader takes as they
// are, keep the colour-key rules, and show what they are for.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "AssetFiles.h"

using assettest::LoadPicture;
using assettest::Picture;

namespace {

const char* const kKeyed[] = {"tree.png",   "tree3.png",   "krilo_right.png", "krilo_left.png", "weads4.png",
                              "weads5.png", "flower1.png", "flower2.png",     "flower3.png",    "preservativ.png"};
const char* const kOpaque[] = {"Base_Texture_BigPoint.jpg", "Detail_Texture.jpg", "Water_Texture.jpg",
                               "skyscraperwall.jpg",        "skyscraperwall2.jpg", "beard.jpg",
                               "SkyBox_Front.jpg",          "SkyBox_Back.jpg",    "SkyBox_Left.jpg",
                               "SkyBox_Right.jpg",          "SkyBox_Top.jpg",     "SkyBox_Bottom.jpg"};

// Pixels of a picture that `pick` accepts, as a share of all.
template <class Pick>
double Share(const Picture& p, Pick pick) {
  long hits = 0;
  for (int y = 0; y < p.height; ++y)
    for (int x = 0; x < p.width; ++x) hits += pick(p.At(x, y));
  return static_cast<double>(hits) / (static_cast<double>(p.width) * p.height);
}

TEST(Pictures, AllLoadWithPowerOfTwoSides) {
  auto powerOfTwo = [](int v) { return v > 0 && (v & (v - 1)) == 0; };
  std::vector<std::string> all(std::begin(kKeyed), std::end(kKeyed));
  all.insert(all.end(), std::begin(kOpaque), std::end(kOpaque));
  all.push_back("rain.png");
  ASSERT_EQ(all.size(), 23u);
  for (const std::string& name : all) {
    const Picture p = LoadPicture(name);
    ASSERT_GT(p.width, 0) << name << " does not load";
    EXPECT_TRUE(powerOfTwo(p.width) && powerOfTwo(p.height)) << name << " " << p.width << "x" << p.height;
    EXPECT_TRUE(name.rfind("SkyBox_", 0) != 0 || (p.width == p.height && p.width >= 512)) << name << " is a sky face";
  }
  EXPECT_GE(LoadPicture("Base_Texture_BigPoint.jpg").width, 2048) << "the base map is stretched over the world";
}

TEST(Pictures, KeyedPicturesStoreTransparencyAsKeyWhite) {
  for (const char* name : kKeyed) {
    const Picture p = LoadPicture(name);
    ASSERT_EQ(p.channels, 4) << name << " needs an alpha channel";
    EXPECT_EQ(Share(p, [](const uint8_t* px) { return px[3] == 0 && (px[0] & px[1] & px[2]) != 255; }), 0.0)
        << name << ": transparent pixels must be white so that the key clears them";
    EXPECT_GT(Share(p, [](const uint8_t* px) { return px[3] == 0; }), 0.05) << name;
    EXPECT_GT(Share(p, [](const uint8_t* px) { return px[3] == 255; }), 0.05) << name;
  }
}

TEST(Pictures, RainIsAStreakOnTheExactKeyBackground) {
  const Picture p = LoadPicture("rain.png");
  ASSERT_EQ(p.channels, 4);
  auto isKey = [](const uint8_t* px) { return px[0] == 0x00 && px[1] == 0x00 && px[2] == 0xFF && px[3] == 0x64; };
  EXPECT_TRUE(isKey(p.At(0, 0)));
  const double key = Share(p, isKey);
  EXPECT_GT(key, 1.0 / 3);
  EXPECT_LT(key, 0.95);
  EXPECT_EQ(Share(p, [&](const uint8_t* px) { return !isKey(px) && px[0] <= 100; }), 0.0)
      << "streak pixels are light, not a near miss of the key";
  int streakRows = 0;
  for (int y = 0; y < p.height; ++y) streakRows += p.At(p.width / 2, y)[3] != 0x64;
  EXPECT_GT(streakRows, p.height * 9 / 10) << "the streak runs from top to bottom";
}

TEST(Pictures, WingHingesOnItsBottomRowAndTheLeftOneIsItsMirror) {
  const Picture right = LoadPicture("krilo_right.png"), left = LoadPicture("krilo_left.png");
  ASSERT_GT(right.width, 0);
  ASSERT_EQ(left.width, right.width);
  ASSERT_EQ(left.height, right.height);
  // Width of the visible part of one row, as a share of the row.
  auto coverage = [&](int y) {
    int visible = 0;
    for (int x = 0; x < right.width; ++x) visible += right.At(x, y)[3] > 128;
    return static_cast<double>(visible) / right.width;
  };
  EXPECT_GT(coverage(right.height - 1), 0.6) << "the hinge, v = 1, spans the wing's root";
  EXPECT_LT(coverage(2), 0.35) << "the tip, v = 0, is narrow";
  for (int y = 0; y < right.height; ++y)
    for (int x = 0; x < right.width; ++x)
      ASSERT_EQ(std::memcmp(right.At(x, y), left.At(right.width - 1 - x, y), 4), 0) << x << "," << y;
}

// Mean difference across the wrap-around seam, against the mean difference
// of neighbouring columns and rows inside: near 1 for a seamless tile.
double SeamRatio(const Picture& p) {
  double inside = 0, seam = 0;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      const int nx = (x + 1) % p.width, ny = (y + 1) % p.height;
      (nx == 0 ? seam : inside) += std::abs(p.At(x, y)[1] - p.At(nx, y)[1]);
      (ny == 0 ? seam : inside) += std::abs(p.At(x, y)[1] - p.At(x, ny)[1]);
    }
  }
  const double seamCount = p.width + p.height;
  return (seam / seamCount) / (inside / (2.0 * p.width * p.height - seamCount));
}

TEST(Pictures, DetailIsASeamlessGreyCentredOn128AndWaterSeamlessAndBlue) {
  const Picture p = LoadPicture("Detail_Texture.jpg");
  ASSERT_GT(p.width, 0);
  double sumSq = 0, tint = 0, step = 0;  // step: to the next texel, the grain at the feet
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      const uint8_t* px = p.At(x, y);
      sumSq += px[1] * px[1];
      step += std::abs(px[1] - p.At((x + 1) % p.width, y)[1]);
      tint += std::abs(px[0] - px[1]) + std::abs(px[2] - px[1]);
    }
  }
  const double n = static_cast<double>(p.width) * p.height, mean = p.Mean(1);
  const double deviation = std::sqrt(sumSq / n - mean * mean);
  std::printf("detail: mean %.2f, deviation %.1f, texel step %.1f, seam ratio %.2f\n", mean,
              deviation, step / n, SeamRatio(p));
  EXPECT_NEAR(mean, 128.0, 2.0)
      << "ADDSIGNED adds (t - 0.5): the mean must keep the base's brightness";
  EXPECT_GT(deviation, 15.0) << "a soft cloud reads as an even smear near the eye";
  EXPECT_GT(step / n, 10.0);
  EXPECT_LT(deviation, 40.0);
  EXPECT_LT(tint / n, 3.0) << "grey";
  EXPECT_LT(SeamRatio(p), 1.6);

  const Picture water = LoadPicture("Water_Texture.jpg");
  ASSERT_GT(water.width, 0);
  std::printf("water seam ratio %.2f\n", SeamRatio(water));
  EXPECT_GT(water.Mean(2), water.Mean(0) * 1.5);
  EXPECT_LT(SeamRatio(water), 1.6);
}

TEST(Pictures, BaseTextureIsColouredByTheHeightMap) {
  const Picture p = LoadPicture("Base_Texture_BigPoint.jpg");
  const assettest::HeightMap map = assettest::LoadHeightMap();
  ASSERT_GT(p.width, 0);
  ASSERT_TRUE(map.Valid());
  // Mean colours of sea bed, flat meadows and flat snow, read at the texels
  // of grid points (u = col / 256, v = row / 256).
  std::array<double, 3> sum[3] = {};
  int count[3] = {};
  const double scale = p.width / 256.0;
  for (int r = 2; r < 255; ++r) {
    for (int c = 2; c < 255; ++c) {
      const int s = map.Sample(c, r);
      const int flat = std::abs(map.Sample(c + 1, r) - map.Sample(c - 1, r)) +
                       std::abs(map.Sample(c, r + 1) - map.Sample(c, r - 1));
      const int kind = s < 35 ? 0 : (s >= 60 && s <= 75 && flat <= 2) ? 1 : (s > 200 && flat <= 6) ? 2 : -1;
      if (kind < 0) continue;
      const uint8_t* px = p.At(std::min(p.width - 1, int(c * scale)), std::min(p.height - 1, int(r * scale)));
      for (int k = 0; k < 3; ++k) sum[kind][k] += px[k];
      ++count[kind];
    }
  }
  ASSERT_TRUE(count[0] > 100 && count[1] > 100 && count[2] > 5);
  for (int kind = 0; kind < 3; ++kind)
    for (double& channel : sum[kind]) channel /= count[kind];
  const auto &sea = sum[0], &grass = sum[1], &snow = sum[2];
  std::printf("base colours: sea bed %.0f %.0f %.0f, grass %.0f %.0f %.0f, snow %.0f %.0f %.0f\n", sea[0], sea[1],
              sea[2], grass[0], grass[1], grass[2], snow[0], snow[1], snow[2]);
  EXPECT_GT(grass[1], grass[0]) << "meadows are green";
  EXPECT_GT(grass[1], grass[2]);
  EXPECT_GT(sea[2] - sea[0], grass[2] - grass[0] + 30) << "the deep sea bed is bluer than the meadows";
  EXPECT_GT(snow[0] + snow[1] + snow[2], 3 * 190.0) << "the highest peaks carry snow";
}

// Storeys on a facade: rows of windows (bluish glass or lit warm panes)
// between plain grey wall, counted along u (up the wall).
int CountStoreys(const Picture& p) {
  int rows = 0;
  bool inWindows = false;
  for (int x = 0; x < p.width; ++x) {
    int glass = 0;
    for (int y = 0; y < p.height; ++y) {
      const uint8_t* px = p.At(x, y);
      glass += px[2] > px[0] + 15 || (px[0] > 190 && px[2] + 40 < px[0]);
    }
    const double share = static_cast<double>(glass) / p.height;
    if (!inWindows && share > 0.4) ++rows, inWindows = true;
    else if (inWindows && share < 0.1) inWindows = false;
  }
  return rows;
}

TEST(Pictures, SecondTowerHasAboutFourTimesTheStoreys) {
  const int first = CountStoreys(LoadPicture("skyscraperwall.jpg"));
  const int second = CountStoreys(LoadPicture("skyscraperwall2.jpg"));
  std::printf("storeys: tower 1 %d, tower 2 %d\n", first, second);
  EXPECT_GE(first, 10);
  EXPECT_GT(second, first * 3.5);
  EXPECT_LT(second, first * 4.5);
}

// ---------------------------------------------------------------- sky box

// The cube's corners of each face in texture-coordinate order (0,0), (1,0),
// (1,1), (0,1), as the sky box's vertices give them.
using Corner = std::array<float, 3>;
struct Face {
  const char* file;
  Corner v[4];
};
const Face kFaces[6] = {
    {"SkyBox_Front.jpg", {{-10, 10, 10}, {10, 10, 10}, {10, -10, 10}, {-10, -10, 10}}},
    {"SkyBox_Back.jpg", {{10, 10, -10}, {-10, 10, -10}, {-10, -10, -10}, {10, -10, -10}}},
    {"SkyBox_Left.jpg", {{-10, 10, -10}, {-10, 10, 10}, {-10, -10, 10}, {-10, -10, -10}}},
    {"SkyBox_Right.jpg", {{10, 10, 10}, {10, 10, -10}, {10, -10, -10}, {10, -10, 10}}},
    {"SkyBox_Top.jpg", {{-10, 10, -10}, {10, 10, -10}, {10, 10, 10}, {-10, 10, 10}}},
    {"SkyBox_Bottom.jpg", {{-10, -10, 10}, {10, -10, 10}, {10, -10, -10}, {-10, -10, -10}}},
};

// The edge texel of `face` at the cube point `c` (which lies on its border).
const uint8_t* TexelAt(const Picture& p, const Face& face, const Corner& c) {
  float u = 0, v = 0;
  for (int k = 0; k < 3; ++k) {
    u += (c[k] - face.v[0][k]) * (face.v[1][k] - face.v[0][k]) / 400.0f;
    v += (c[k] - face.v[0][k]) * (face.v[3][k] - face.v[0][k]) / 400.0f;
  }
  return p.At(static_cast<int>(std::lround(u * (p.width - 1))), static_cast<int>(std::lround(v * (p.height - 1))));
}

TEST(SkyBox, FacesAgreeAlongEverySharedEdge) {
  Picture pictures[6];
  for (int i = 0; i < 6; ++i) {
    pictures[i] = LoadPicture(kFaces[i].file);
    ASSERT_GT(pictures[i].width, 0) << kFaces[i].file;
  }
  int edges = 0;
  for (int a = 0; a < 6; ++a) {
    for (int b = a + 1; b < 6; ++b) {
      for (int k = 0; k < 4; ++k) {
        const Corner &p = kFaces[a].v[k], &q = kFaces[a].v[(k + 1) % 4];
        if (std::count_if(std::begin(kFaces[b].v), std::end(kFaces[b].v),
                          [&](const Corner& c) { return c == p || c == q; }) != 2)
          continue;
        ++edges;
        double total = 0;
        int worst = 0;
        constexpr int steps = 128;
        for (int s = 0; s <= steps; ++s) {
          const float t = static_cast<float>(s) / steps;
          const Corner c = {p[0] + t * (q[0] - p[0]), p[1] + t * (q[1] - p[1]), p[2] + t * (q[2] - p[2])};
          const uint8_t *x = TexelAt(pictures[a], kFaces[a], c), *y = TexelAt(pictures[b], kFaces[b], c);
          for (int ch = 0; ch < 3; ++ch) {
            total += std::abs(x[ch] - y[ch]);
            worst = std::max(worst, std::abs(x[ch] - y[ch]));
          }
        }
        EXPECT_LT(total / (3.0 * (steps + 1)), 4.0) << kFaces[a].file << " / " << kFaces[b].file;
        EXPECT_LT(worst, 24) << kFaces[a].file << " / " << kFaces[b].file;
      }
    }
  }
  EXPECT_EQ(edges, 12) << "every cube edge is shared by two faces";
}

TEST(SkyBox, SkyAboveIsBlueAndTheLowerHalfDim) {
  const Picture top = LoadPicture("SkyBox_Top.jpg"), bottom = LoadPicture("SkyBox_Bottom.jpg");
  const Picture front = LoadPicture("SkyBox_Front.jpg");
  ASSERT_TRUE(top.width > 0 && bottom.width > 0 && front.width > 0);
  EXPECT_GT(top.Mean(2), top.Mean(0) + 30) << "the zenith is blue";
  EXPECT_LT(bottom.Mean(2) + 60, top.Mean(2)) << "the lower half is dim";
  EXPECT_GT(front.Mean(2, 0, front.height / 4), front.Mean(2, front.height * 3 / 4) + 40)
      << "a side face is sky above and dim below";
}

}  // namespace
