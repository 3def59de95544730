// The placing of trees, weeds, rain, figures and flowers: the shared random
// sequence, the height and zone rules, and what a rebuild keeps.
#include <gtest/gtest.h>

#include <memory>

#include "platform/crt/crt.h"
#include "unit/terrain/TerrainFixture.h"

namespace {

using karvo_test::MakeMap;

// Samples on the world's 257 x 257 grid (64 units a cell, 16 a step).
constexpr std::uint8_t HIGH = 57;  // 912: trees and flowers grow
constexpr std::uint8_t LOW = 40;   // 640: weeds grow
constexpr std::uint8_t EDGE = 56;  // 896: nothing grows

std::unique_ptr<CTerrain> MakeTerrain(std::uint8_t (*sample)(std::uint32_t, std::uint32_t)) {
  auto terrain = std::make_unique<CTerrain>();
  MakeMap(*terrain, 257, 257, sample);
  return terrain;
}

// Land on the near half of the map (z below 8192), sea floor beyond.
std::uint8_t HalfLand(std::uint32_t, std::uint32_t row) { return row < 128 ? HIGH : LOW; }
std::uint8_t AllLow(std::uint32_t, std::uint32_t) { return LOW; }

bool InZone(float x, float z) {
  return z > 2800 && z < 5200 && ((x > 1800 && x < 4200) || (x > 5800 && x < 8200));
}

void PlaceAll(CTerrain& terrain) {
  terrain.PlaceTrees();
  terrain.PlaceWeeds();
  terrain.PlaceRain();
  terrain.PlaceFigures();
  terrain.PlaceFlowers();
}

TEST(Placement, FirstTreeComesFromTheFirstDrawsOfTheSequence) {
  auto terrain = MakeTerrain(HalfLand);
  crt::srand(1);  // draws 41, 18467, 6334, 26500, ...
  terrain->PlaceTrees();
  const CPlantRecord& first = terrain->m_trees[0];
  EXPECT_EQ(first.m_x, 410.0f);   // 41 % 1644 * 10
  EXPECT_EQ(first.m_z, 3830.0f);  // 18467 % 1644 * 10
  EXPECT_EQ(first.m_size, 434.0f);
  EXPECT_EQ(first.m_kind, 1);  // 26500 is even
  EXPECT_EQ(first.m_y, 912.0f - 50.0f);
}

TEST(Placement, RefusedTreesAndFlowersLeaveEmptySlotsAfterThreeDraws) {
  auto terrain = MakeTerrain(AllLow);
  crt::srand(7);
  for (int i = 0; i < 999 * 3 + 1; ++i) crt::rand();
  const std::uint32_t expected = crt::randState();
  crt::srand(7);
  terrain->PlaceTrees();
  EXPECT_EQ(crt::randState(), expected);
  for (int i = 0; i < 999; ++i) ASSERT_EQ(terrain->m_trees[i].m_kind, 0) << i;
  EXPECT_EQ(terrain->m_treeCount, 1000);

  const CPlantRecord& big = terrain->m_trees[999];
  EXPECT_EQ(big.m_kind, 2);
  EXPECT_EQ(big.m_x, 1500.0f);
  EXPECT_EQ(big.m_z, 7000.0f);
  EXPECT_EQ(big.m_y, 640.0f - 50.0f);  // the big tree takes no test
  EXPECT_GE(big.m_size, 400.0f);
  EXPECT_LE(big.m_size, 699.0f);

  terrain->PlaceFlowers();
  EXPECT_EQ(terrain->m_flowerCount, 300);
  for (const CPlantRecord& flower : terrain->m_flowers) ASSERT_EQ(flower.m_kind, 0);
}

TEST(Placement, ExactlyNineHundredRefusesATree) {
  auto terrain = MakeTerrain([](std::uint32_t, std::uint32_t) -> std::uint8_t { return EDGE; });
  terrain->m_scale.y = 900.0f / EDGE;  // every sample lies at 900.0 exactly
  ASSERT_EQ(terrain->GetHeight(640.0f, 640.0f, false), 900.0f);
  terrain->PlaceTrees();
  for (int i = 0; i < 999; ++i) ASSERT_EQ(terrain->m_trees[i].m_kind, 0) << i;
}

TEST(Placement, RecordsKeepTheirRules) {
  auto terrain = MakeTerrain(HalfLand);
  crt::srand(1);
  PlaceAll(*terrain);

  int trees = 0;
  for (int i = 0; i < 999; ++i) {
    const CPlantRecord& tree = terrain->m_trees[i];
    if (tree.m_kind == 0) continue;
    ++trees;
    ASSERT_TRUE(tree.m_kind == 1 || tree.m_kind == 3);
    ASSERT_LT(tree.m_z, 8192.0f);
    ASSERT_FALSE(InZone(tree.m_x, tree.m_z)) << tree.m_x << "," << tree.m_z;
    ASSERT_EQ(static_cast<int>(tree.m_x) % 10, 0);
    ASSERT_GE(tree.m_size, 400.0f);
    ASSERT_LE(tree.m_size, 699.0f);
  }
  // Half the map is land, less the two zones: about 470 of 999.
  EXPECT_GT(trees, 400);
  EXPECT_LT(trees, 560);

  EXPECT_EQ(terrain->m_weedCount, 1000);
  for (const CPlantRecord& weed : terrain->m_weeds) {
    ASSERT_TRUE(weed.m_kind == 1 || weed.m_kind == 2);
    ASSERT_LT(weed.m_y, 770.0f - 25.0f);
    ASSERT_FALSE(InZone(weed.m_x, weed.m_z));
    ASSERT_GE(weed.m_size, 40.0f);
    ASSERT_LE(weed.m_size, 89.0f);
  }

  EXPECT_TRUE(terrain->m_rainEnabled);
  EXPECT_EQ(terrain->m_rainCount, 2000);
  for (const CRainDrop& drop : terrain->m_rain) {
    ASSERT_GE(drop.m_x, 500.0f);
    ASSERT_LE(drop.m_x, 2499.0f);
    ASSERT_GE(drop.m_y, 1700.0f);
    ASSERT_LE(drop.m_y, 3699.0f);
  }

  for (const CFlyingFigure& figure : terrain->m_figures) {
    ASSERT_GE(figure.m_x, -40000.0f);
    ASSERT_LE(figure.m_z, 59990.0f);
    ASSERT_GE(figure.m_y, 29000.0f);
    ASSERT_LE(figure.m_y, 31999.0f);
    ASSERT_EQ(figure.m_heading, figure.m_targetHeading);
    ASSERT_LE(figure.m_heading, 359.0f);
  }

  int flowers = 0;
  for (int i = 0; i < 300; ++i) {
    const CPlantRecord& flower = terrain->m_flowers[i];
    ASSERT_GE(flower.m_kind, 1);
    ASSERT_LE(flower.m_kind, 3);
    ASSERT_EQ(flower.m_y, 913.0f);
    ++flowers;
  }
  EXPECT_EQ(flowers, 300);  // the meadow lies wholly on the land half
  EXPECT_EQ(terrain->m_flowers[300].m_kind, 0);
}

TEST(Placement, WeedsWithoutSeaFloorStopAtTheBoundAndSaySoOnce) {
  auto terrain = MakeTerrain([](std::uint32_t, std::uint32_t) -> std::uint8_t { return HIGH; });
  crt::srand(5);
  testing::internal::CaptureStderr();
  terrain->PlaceWeeds();
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(said.rfind("CTerrain::PlaceWeeds"), 0u) << said;  // once
  const std::uint32_t after = crt::randState();
  crt::srand(5);  // a million tries of three draws for the first slot, four draws each after
  for (int i = 0; i < 3 * 1000000 + 1 + 999 * 4; ++i) crt::rand();
  EXPECT_EQ(after, crt::randState());
}

TEST(Placement, SameSeedSameWorldAndARebuildKeepsRefusedSlots) {
  auto first = MakeTerrain(HalfLand);
  auto second = MakeTerrain(HalfLand);
  crt::srand(1);
  PlaceAll(*first);
  crt::srand(1);
  PlaceAll(*second);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(first->m_trees[i].m_x, second->m_trees[i].m_x);

  // The ground sinks: every new tree candidate fails and the old trees stay.
  std::fill_n(first->m_heightMap, 257 * 257, LOW);
  const CPlantRecord kept = first->m_trees[0];
  first->PlaceTrees();
  EXPECT_EQ(first->m_trees[0].m_x, kept.m_x);
  EXPECT_EQ(first->m_trees[0].m_kind, kept.m_kind);
}

}  // namespace
