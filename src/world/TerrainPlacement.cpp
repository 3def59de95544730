// The placing of the world's objects on a freshly built terrain: trees on the
// high ground, weeds under the water, a cloud of rain, the flock of figures
// and a flower meadow. Pure logic on the height map and the shared random
// sequence; the five steps run in a fixed order so that one map always gives
// one world.
#include <cstdio>

#include "platform/crt/crt.h"
#include "terrain/Terrain.h"

namespace {

// Candidate positions of trees and weeds: multiples of 10 from 0 to 16430.
constexpr int GRID_STEPS = 1644;
constexpr float TREE_GROUND = 900.0f;    // trees and flowers need more than this
constexpr float WEED_GROUND = 770.0f;    // weeds need less than this
constexpr float TREE_SINK = 50.0f;       // a tree's foot sits this far underground
constexpr float WEED_SINK = 25.0f;
constexpr float FLOWER_LIFT = 1.0f;
constexpr int FLOWERS_IN_USE = 300;
// A map with hardly any sea floor would keep a weed slot drawing for ever;
// after this many refused candidates the slot takes its last candidate. Such a
// map has no room for weeds at all, so once a slot has reached the bound the
// remaining slots take their first candidate instead of a million more each.
constexpr int WEED_TRIES = 1000000;

// The two towers' footprints with a margin of 200; every side is strict.
bool InTowerZone(int x, int z) {
  if (z <= 2800 || z >= 5200) return false;
  return (x > 1800 && x < 4200) || (x > 5800 && x < 8200);
}

float Whole(int value) { return static_cast<float>(value); }

}  // namespace

void CTerrain::PlaceTrees() {
  for (int i = 0; i < MAX_TREES - 1; ++i) {
    const int x = (crt::rand() % GRID_STEPS) * 10;
    const int z = (crt::rand() % GRID_STEPS) * 10;
    const int size = crt::rand() % 300 + 400;
    const float ground = GetHeight(Whole(x), Whole(z), false);
    if (ground <= TREE_GROUND || InTowerZone(x, z)) continue;
    const int kind = (crt::rand() % 2 == 0) ? 1 : 3;
    m_trees[i] = {Whole(x), ground - TREE_SINK, Whole(z), kind, Whole(size)};
  }
  // The big tree always takes the last slot, wherever the ground is.
  const int bigSize = crt::rand() % 300 + 400;
  m_trees[MAX_TREES - 1] = {1500.0f, GetHeight(1500.0f, 7000.0f, false) - TREE_SINK, 7000.0f, 2,
                            Whole(bigSize)};
  m_treeCount = MAX_TREES;
}

void CTerrain::PlaceWeeds() {
  int tryLimit = WEED_TRIES;
  for (int i = 0; i < MAX_WEEDS; ++i) {
    for (int tries = 1;; ++tries) {
      const int x = (crt::rand() % GRID_STEPS) * 10;
      const int z = (crt::rand() % GRID_STEPS) * 10;
      const int size = crt::rand() % 50 + 40;
      const float ground = GetHeight(Whole(x), Whole(z), false);
      const bool refused = ground >= WEED_GROUND || InTowerZone(x, z);
      if (refused && tries < tryLimit) continue;
      if (refused && tryLimit > 1) {
        std::fprintf(stderr,
                     "CTerrain::PlaceWeeds: no sea floor below %.1f in %d tries for weed %d; "
                     "it and the weeds after it stand where they were drawn\n",
                     WEED_GROUND, WEED_TRIES, i);
        tryLimit = 1;
      }
      const int kind = (crt::rand() % 2 == 0) ? 1 : 2;
      m_weeds[i] = {Whole(x), ground - WEED_SINK, Whole(z), kind, Whole(size)};
      break;
    }
  }
  m_weedCount = MAX_WEEDS;
}

void CTerrain::PlaceRain() {
  m_rainEnabled = true;
  for (CRainDrop& drop : m_rain) {
    const int x = crt::rand() % 2000 + 500;
    const int z = crt::rand() % 2000 + 500;
    const int y = crt::rand() % 2000 + 1700;
    drop = {Whole(x), Whole(y), Whole(z)};
  }
  m_rainCount = MAX_RAIN;
}

void CTerrain::PlaceFigures() {
  for (CFlyingFigure& figure : m_figures) {
    const int x = (crt::rand() % 10000) * 10 - 40000;
    const int z = (crt::rand() % 10000) * 10 - 40000;
    const int size = crt::rand() % 100 + 100;
    const int y = crt::rand() % 3000 + 29000;
    const int heading = crt::rand() % 360;
    figure = {Whole(x), Whole(y), Whole(z), Whole(heading), Whole(size), Whole(heading)};
  }
}

void CTerrain::PlaceFlowers() {
  for (int i = 0; i < FLOWERS_IN_USE; ++i) {
    const int x = crt::rand() % 1500 + 700;
    const int z = crt::rand() % 1500 + 700;
    const int size = crt::rand() % 3 + 4;
    const float ground = GetHeight(Whole(x), Whole(z), false);
    if (ground <= TREE_GROUND) continue;
    const int kind = crt::rand() % 3 + 1;
    m_flowers[i] = {Whole(x), ground + FLOWER_LIFT, Whole(z), kind, Whole(size)};
  }
  m_flowerCount = FLOWERS_IN_USE;
}
