// The placing of trees and flowers: the shared random sequence, the height
// and zone rules, and what a rebuild keeps.
#include <gtest/gtest.h>

#include <memory>

#include "platform/crt/crt.h"
#include "unit/terrain/TerrainFixture.h"

namespace {

// A flat map on the world's 257 x 257 grid (64 units a cell, 16 a sample
// step), by default at 912, where trees grow.
std::unique_ptr<CTerrain> MakeTerrain(std::uint8_t sample = 57) {
  auto terrain = std::make_unique<CTerrain>();
  karvo_test::MakeMap(*terrain, 257, 257, [=](std::uint32_t, std::uint32_t) { return sample; });
  return terrain;
}

// A seed whose first two draws put the first tree candidate at (x, z).
unsigned SeedFor(int x, int z) {
  for (unsigned seed = 0;; ++seed) {
    crt::srand(seed);
    if (crt::rand() % 1644 * 10 == x && crt::rand() % 1644 * 10 == z) return seed;
  }
}

TEST(Placement, FirstTreeComesFromTheFirstDrawsOfTheSequence) {
  auto terrain = MakeTerrain();
  crt::srand(1);  // draws 41, 18467, 6334, 26500, ...
  terrain->PlaceTrees();
  const CPlantRecord& first = terrain->m_trees[0];
  // 41 % 1644 * 10, 18467 % 1644 * 10, 6334 % 300 + 400; 26500 is even.
  EXPECT_TRUE(first.m_x == 410 && first.m_z == 3830 && first.m_size == 434 && first.m_kind == 1);
  EXPECT_EQ(first.m_y, 912.0f - 50.0f);
}

TEST(Placement, WeedsRefuseGroundOfExactly770AndDrawAgain) {
  // The first candidate, (410, 3830), on ground of 770; all else at 560.
  auto terrain = std::make_unique<CTerrain>();
  karvo_test::MakeMap(*terrain, 257, 257, [](std::uint32_t c, std::uint32_t r) { return std::uint8_t(c - 5 < 4 && r - 58 < 4 ? 55 : 40); });
  terrain->m_scale.y = 14.0f;
  crt::srand(1);  // 41, 18467, 6334 refused; then x from 26500, z from 19169
  terrain->PlaceWeeds();
  EXPECT_TRUE(terrain->m_weeds[0].m_x == 1960 && terrain->m_weeds[0].m_z == 10850);
}

TEST(Placement, TowerZonesAreOpenOnEverySide) {
  auto terrain = MakeTerrain();
  // The first candidate on both sides of each edge: z 2800 to 5200, x 1800 to 4200 and
  // 5800 to 8200, and the gap between the two zones.
  const struct { int x, z; bool placed; } rows[] = {
      {3000, 2800, true}, {3000, 2810, false}, {3000, 5190, false}, {3000, 5200, true},
      {1800, 4000, true}, {1810, 4000, false}, {4190, 4000, false}, {4200, 4000, true},
      {5800, 4000, true}, {5810, 4000, false}, {8190, 4000, false}, {8200, 4000, true},
      {5000, 4000, true}};
  for (const auto& r : rows) {
    crt::srand(SeedFor(r.x, r.z));
    terrain->m_trees[0] = {};
    terrain->PlaceTrees();
    EXPECT_EQ(terrain->m_trees[0].m_kind != 0, r.placed) << r.x << " " << r.z;
  }
}

// Every sample at 900.0 exactly: no tree nor flower may stand there.
TEST(Placement, GroundOfExactly900LeavesTreeAndFlowerSlotsAsTheyWereAfterThreeDraws) {
  auto terrain = MakeTerrain(56);
  terrain->m_scale.y = 900.0f / 56;
  ASSERT_EQ(terrain->GetHeight(640.0f, 640.0f, false), 900.0f);
  crt::srand(7);
  for (int i = 0; i < 999 * 3 + 1; ++i) crt::rand();
  const std::uint32_t expected = crt::randState();
  crt::srand(7);
  terrain->m_trees[5] = {1, 2, 3, 3, 450};  // left by an earlier build
  terrain->PlaceTrees();
  EXPECT_EQ(crt::randState(), expected);
  for (int i = 0; i < 999; ++i) ASSERT_EQ(terrain->m_trees[i].m_kind, i == 5 ? 3 : 0) << i;
  // The big tree takes no test.
  const CPlantRecord& big = terrain->m_trees[999];
  EXPECT_TRUE(big.m_kind == 2 && big.m_x == 1500.0f && big.m_z == 7000.0f && big.m_y == 850.0f);
  terrain->PlaceFlowers();
  EXPECT_TRUE(terrain->m_treeCount == 1000 && terrain->m_flowerCount == 300);
  for (const CPlantRecord& flower : terrain->m_flowers) ASSERT_EQ(flower.m_kind, 0);
}

}  // namespace
