// The landscape must make the game's fixed places work: the start, the flower
// meadow, the big tree, the towers, and room for the trees and weeds that the
// placing scatters at random.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <queue>

#include "AssetFiles.h"
#include "platform/crt/crt.h"

using assettest::HeightMap;

namespace {

constexpr float kWater = 864.0f;

bool InTowerZone(float x, float z) {
  return ((x > 1800 && x < 4200) || (x > 5800 && x < 8200)) && z > 2800 && z < 5200;
}

class Landscape : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { s_map = new HeightMap(assettest::LoadHeightMap()); }
  static void TearDownTestSuite() { delete s_map; }
  // Every test needs the whole grid of 257 x 257 samples.
  void SetUp() override { ASSERT_TRUE(Map().Valid()); }
  static const HeightMap& Map() { return *s_map; }

 private:
  static HeightMap* s_map;
};

HeightMap* Landscape::s_map = nullptr;

// Share of the samples of grid lines lo..hi (both ways) that `pick` accepts.
template <class Pick>
double Share(int lo, int hi, Pick pick) {
  int hits = 0, all = 0;
  for (int r = lo; r <= hi; ++r)
    for (int c = lo; c <= hi; ++c, ++all) hits += pick(c, r);
  return static_cast<double>(hits) / all;
}

TEST_F(Landscape, StartLooksOverOpenCountryToTheSea) {
  const float start = Map().GetHeight(1500, 1500);
  EXPECT_GT(start, 872.0f + 40.0f) << "the start must be dry land, clear of the shore band";
  // Yaw 45 looks along +x +z. Nothing along the way rises into the view,
  // and the sea comes within a few thousand units.
  float highest = 0.0f, firstWater = -1.0f;
  for (float d = 64.0f; d < 6000.0f; d += 32.0f) {
    const float h = Map().GetHeight(1500 + d * 0.7071f, 1500 + d * 0.7071f);
    highest = std::max(highest, h);
    if (h < kWater && firstWater < 0.0f) firstWater = d;
  }
  std::printf("start ground %.0f, first water ahead at %.0f, highest ground ahead %.0f\n", start, firstWater,
              highest);
  EXPECT_LT(highest, start + 150.0f);
  EXPECT_GT(firstWater, 500.0f) << "some open country before the water";
  EXPECT_LT(firstWater, 4000.0f);
}

TEST_F(Landscape, MeadowAndBigTreeStandOnHighGround) {
  int high = 0, all = 0;
  for (int x = 700; x <= 2199; x += 7)
    for (int z = 700; z <= 2199; z += 7, ++all) high += Map().GetHeight(float(x), float(z)) > 900.0f;
  std::printf("flower meadow above 900: %.3f\n", static_cast<double>(high) / all);
  EXPECT_GT(static_cast<double>(high) / all, 0.97);
  EXPECT_GT(Map().GetHeight(1500, 7000), 900.0f) << "the big tree stands on land";
}

TEST_F(Landscape, TowersStandInTheWaterWithTheirFeetInTheGround) {
  for (const float x0 : {2000.0f, 6000.0f}) {
    const float x1 = x0 + 2000.0f, z0 = 3000.0f, z1 = 5000.0f;
    int wet = 0, all = 0;
    float lowest = 1e9f;
    for (int k = 0; k <= 400; ++k) {
      const float x = x0 + k * 5.0f, z = z0 + k * 5.0f;
      for (const auto& [px, pz] : {std::pair{x, z0}, {x, z1}, {x0, z}, {x1, z}}) {
        const float h = Map().GetHeight(px, pz);
        lowest = std::min(lowest, h);
        wet += h < kWater;
        ++all;
      }
    }
    const double wetShare = static_cast<double>(wet) / all;
    std::printf("tower at x %.0f: %.2f of its walls stand in water, lowest ground %.0f\n", x0, wetShare, lowest);
    EXPECT_GT(lowest, 500.0f + 16.0f) << "the walls' feet at 500 must be under the ground";
    EXPECT_GT(wetShare, 0.3) << "a tower stands in a bay or at a shore";
  }
}

TEST_F(Landscape, FirstWorldFindsGroundForTreesAndSeaFloorForWeeds) {
  // The first world is placed from the random source's start state; count
  // what the placing rules find on this map: position, size, then a kind for
  // what is placed.
  auto draw = [] {
    const float x = float((crt::rand() % 1644) * 10), z = float((crt::rand() % 1644) * 10);
    crt::rand();  // size
    return std::pair{x, z};
  };
  crt::srand(1);
  int trees = 0;
  for (int i = 0; i < 999; ++i) {
    const auto [x, z] = draw();
    if (Map().GetHeight(x, z) <= 900.0f || InTowerZone(x, z)) continue;
    crt::rand();  // kind
    ++trees;
  }
  crt::rand();  // the big tree's size
  long tries = 0;
  for (int i = 0; i < 1000 && tries < 1000000; ++i, crt::rand() /* kind */) {
    for (bool placed = false; !placed; ++tries) {
      const auto [x, z] = draw();
      placed = Map().GetHeight(x, z) < 770.0f && !InTowerZone(x, z);
    }
  }
  std::printf("first world: %d of 999 tree candidates placed, 1000 weeds in %ld tries\n", trees, tries);
  EXPECT_GT(trees, 600) << "most tree candidates find ground above 900";
  EXPECT_LT(tries, 6000) << "the weeds find sea floor below 770 quickly";
}

TEST_F(Landscape, WalkableSquareHasCoastBeachesMountainsAndIslands) {
  // Grid lines 16 .. 234 span the walkable square 1000 .. 15000.
  int peak = 0;
  const double water = Share(16, 234, [&](int c, int r) {
    peak = std::max(peak, Map().Sample(c, r) * 16);
    return Map().Sample(c, r) < 54;
  });
  const double beach = Share(16, 234, [&](int c, int r) {
    return Map().Sample(c, r) >= 54 && Map().Sample(c, r) <= 57;  // at or just above the water line
  });
  EXPECT_GT(water, 0.15);
  EXPECT_LT(water, 0.5);
  EXPECT_GT(beach, 0.01);
  EXPECT_GT(peak, 3400);

  // Separate summits above 3000, at least 40 cells apart.
  std::vector<std::pair<int, int>> summits;
  for (int r = 1; r < 256; ++r) {
    for (int c = 1; c < 256; ++c) {
      const int s = Map().Sample(c, r);
      bool top = s * 16 > 3000;
      for (int dr = -4; dr <= 4 && top; ++dr)
        for (int dc = -4; dc <= 4 && top; ++dc)
          top = Map().Sample(std::clamp(c + dc, 0, 256), std::clamp(r + dr, 0, 256)) <= s;
      if (top && std::none_of(summits.begin(), summits.end(),
                              [&](auto p) { return std::hypot(p.first - c, p.second - r) < 40; }))
        summits.emplace_back(c, r);
    }
  }

  // Islands: pieces of land (of 25 samples or more) that the sea cuts off
  // from the mainland, the largest piece.
  std::vector<bool> seen(257 * 257);
  std::vector<int> sizes;
  auto land = [&](int c, int r) { return c >= 0 && r >= 0 && c <= 256 && r <= 256 && Map().Sample(c, r) >= 55; };
  for (int start = 0; start < 257 * 257; ++start) {
    if (seen[start] || !land(start % 257, start / 257)) continue;
    int size = 0;
    std::queue<int> open;
    for (open.push(start), seen[start] = true; !open.empty(); open.pop(), ++size) {
      const int c = open.front() % 257, r = open.front() / 257;
      for (const auto& [nc, nr] : {std::pair{c + 1, r}, {c - 1, r}, {c, r + 1}, {c, r - 1}}) {
        if (land(nc, nr) && !seen[nr * 257 + nc]) {
          seen[nr * 257 + nc] = true;
          open.push(nr * 257 + nc);
        }
      }
    }
    sizes.push_back(size);
  }
  std::sort(sizes.rbegin(), sizes.rend());
  const long islands = sizes.empty() ? 0 : std::count_if(sizes.begin() + 1, sizes.end(), [](int s) { return s >= 25; });
  std::printf("walkable square: water %.2f, beach %.3f, highest %d; summits above 3000: %zu, islands: %ld\n", water,
              beach, peak, summits.size(), islands);
  EXPECT_GE(summits.size(), 2u) << "a few mountains";
  EXPECT_GE(islands, 2);
}

TEST_F(Landscape, SlopesStayBelowCliffWalls) {
  int steepest = 0;
  long steep = 0, pairs = 0;
  for (int r = 0; r < 257; ++r) {
    for (int c = 0; c < 257; ++c) {
      for (const auto& [nc, nr] : {std::pair{c + 1, r}, {c, r + 1}}) {
        if (nc > 256 || nr > 256) continue;
        const int d = std::abs(Map().Sample(c, r) - Map().Sample(nc, nr));
        steepest = std::max(steepest, d);
        steep += d > 8;
        ++pairs;
      }
    }
  }
  const double share = static_cast<double>(steep) / pairs;
  std::printf("steepest step %d samples (%d units over 64), %.4f of steps above 8\n", steepest, steepest * 16, share);
  EXPECT_LE(steepest, 12);
  EXPECT_LT(share, 0.01);
}

}  // namespace
