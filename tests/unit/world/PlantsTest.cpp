// Trees, weeds, flowers and towers on a recording device: the quads' corners
// as the player moves about a plant, the kinds' textures, and the one sort
// pass a frame.
#include <algorithm>
#include <cmath>

#include "WorldFixture.h"
#include "platform/crt/crt.h"

using karvo_test::DeviceCalls;

namespace {

class Plants : public karvo_test::WorldFixture {
 protected:
  // The corners' x, y, z, u, v of draw i, with the plants' opaque diffuse checked.
  std::vector<std::vector<float>> Corners(std::size_t draw, DWORD diffuse = 0xFF000000u) {
    std::vector<std::vector<float>> out;
    for (const CVertex& v : device.UpVertices<CVertex>(draw)) {
      EXPECT_EQ(v.m_diffuse, diffuse);
      out.push_back({v.m_x, v.m_y, v.m_z, v.m_tu, v.m_tv});
    }
    return out;
  }
  static void ExpectNear(const std::vector<std::vector<float>>& got,
                         const std::vector<std::vector<float>>& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i)
      for (std::size_t k = 0; k < 5; ++k)
        EXPECT_NEAR(got[i][k], want[i][k], 1e-3) << "corner " << i << " " << k;
  }
};

TEST_F(Plants, TreesAndWeedsTurnAboutTheirFootTowardsThePlayer) {
  const float r = 50.0f / std::sqrt(2.0f);
  // Player (x, z) against the foot (1000, 2000); the corners 1 and 2 at the foot (x, z).
  const struct {
    float px, pz, x1, z1, x2, z2;
  } rows[] = {{1500, 2000, 1000, 2050, 1000, 1950},                 // east: the quad lies along z
              {500, 2500, 1000 + r, 2000 + r, 1000 - r, 2000 - r},  // north-west, theta -45 degrees
              {1000, 1500, 950, 2000, 1050, 2000},    // in line to the south: a quarter turn
              {1000, 2500, 1050, 2000, 950, 2000},    // in line to the north
              {1000, 2000, 1000, 2000, 1000, 2000}};  // at the foot: no angle, no area
  for (const auto& row : rows) {
    player.SetPosition(D3DXVECTOR3(row.px, 0.0f, row.pz));
    camera->SetPosition(
        D3DXVECTOR3(-9000.0f, 0.0f, 0.0f));  // the viewer is the player, not the camera
    device.ClearLog();
    terrain->DrawTree(1000, 100, 2000, 1, 100, camera);
    terrain->DrawWeed(1000, 100, 2000, 2, 100, camera);
    for (std::size_t draw : {0u, 1u})
      ExpectNear(Corners(draw), {{row.x1, 100, row.z1, 0, 1},
                                 {row.x2, 100, row.z2, 1, 1},
                                 {row.x2, 220, row.z2, 1, 0},
                                 {row.x1, 220, row.z1, 0, 0}});
  }
  const DeviceCalls states{
      RS(D3DRS_ALPHABLENDENABLE, TRUE),          RS(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA),
      RS(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA), {"SetFVF", {0x142}},
      RS(D3DRS_CULLMODE, D3DCULL_NONE),          Fan()};
  EXPECT_EQ(device.Calls(), DeviceCalls{Bind(terrain->m_treeTexture)} + states +
                                DeviceCalls{Bind(terrain->m_weed5Texture)} + states);

  // Each kind its picture; an unknown kind binds nothing and still draws, a
  // tree of it on a quad of nothing. The big tree is twice as big.
  const struct {
    bool tree;
    int kind;
    const IDirect3DTexture9* texture;
    float top;
  } kinds[] = {{true, 3, terrain->m_tree3Texture, 220},
               {true, 2, terrain->m_treeTexture, 340},
               {false, 1, terrain->m_weed4Texture, 220},
               {true, 0, nullptr, 0},
               {true, 7, nullptr, 0},
               {false, 3, nullptr, 220}};
  for (const auto& k : kinds) {
    device.ClearLog();
    if (k.tree)
      terrain->DrawTree(1000, 100, 2000, k.kind, 100, camera);
    else
      terrain->DrawWeed(1000, 100, 2000, k.kind, 100, camera);
    EXPECT_EQ(device.Calls(), k.texture ? DeviceCalls{Bind(k.texture)} + states : states) << k.kind;
    EXPECT_EQ(device.UpVertices<CVertex>(0)[2].m_y, k.top) << k.kind;
  }
}

TEST_F(Plants, AFlowerIsTwoStemsAndAFlatHead) {
  terrain->DrawFlower(100, 50, 200, 2, 5);  // a = 0.5, b = 2.5
  const DeviceCalls quad{RS(D3DRS_CULLMODE, D3DCULL_NONE), Fan()};
  EXPECT_EQ(device.Calls(), (DeviceCalls{RS(D3DRS_ALPHABLENDENABLE, TRUE),
                                         RS(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA),
                                         RS(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA),
                                         {"SetFVF", {0x142}},
                                         Bind(terrain->m_baseTexture)} +
                             quad + DeviceCalls{Bind(terrain->m_baseTexture)} + quad +
                             DeviceCalls{Bind(terrain->m_flower2Texture)} + quad));
  ExpectNear(Corners(0), {{99.5, 50, 199.5, 0, 1},
                          {99.5, 30, 199.5, 1, 1},
                          {100.5, 30, 199.5, 1, 0},
                          {100.5, 50, 199.5, 0, 0}});
  ExpectNear(Corners(1), {{99.5, 50, 199.5, 0, 1},
                          {99.5, 30, 199.5, 1, 1},
                          {99.5, 30, 200.5, 1, 0},
                          {99.5, 50, 200.5, 0, 0}});
  ExpectNear(Corners(2), {{97.5, 50, 197.5, 0, 1},
                          {102.5, 50, 197.5, 1, 1},
                          {102.5, 50, 202.5, 1, 0},
                          {97.5, 50, 202.5, 0, 0}});
  device.ClearLog();
  terrain->DrawFlower(0, 0, 0, 4, 5);  // no head picture of kind 4: the stems' stays bound
  EXPECT_EQ(device.Count("SetTexture"), 2u);
  EXPECT_EQ(device.Count("DrawPrimitiveUP"), 3u);
}

TEST_F(Plants, TowersAreEightWallsSeenFromBothSides) {
  terrain->DrawSkyscrapers();
  DeviceCalls walls;
  for (int i = 0; i < 4; ++i) walls = walls + DeviceCalls{RS(D3DRS_CULLMODE, D3DCULL_NONE), Fan()};
  EXPECT_EQ(device.Calls(),
            (DeviceCalls{Bind(terrain->m_wallTexture), {"SetFVF", {0x142}}} + walls +
             DeviceCalls{Bind(terrain->m_wallTexture2), {"SetFVF", {0x142}}} + walls));
  for (std::size_t draw = 0; draw < 8; ++draw) {
    const auto v = device.UpVertices<CVertex>(draw);
    EXPECT_EQ(v[2].m_diffuse, 0xAFFFFFFFu);  // corner 3 a little clearer, picture on its side
    EXPECT_EQ(
        std::vector<float>({v[0].m_tu, v[0].m_tv, v[1].m_tu, v[1].m_tv, v[2].m_tu, v[3].m_tv}),
        std::vector<float>({0, 0, 0, 1, 1, 0}));
  }
  const auto first = device.UpVertices<CVertex>(0), last = device.UpVertices<CVertex>(7);
  EXPECT_EQ(std::vector<float>({first[1].m_x, first[1].m_y, first[1].m_z, first[3].m_x,
                                first[3].m_y, first[3].m_z}),
            std::vector<float>({2000, 500, 5000, 2000, 7000, 3000}));  // tower 1, side x = 2000
  EXPECT_EQ(std::vector<float>(
                {last[1].m_x, last[1].m_y, last[1].m_z, last[3].m_x, last[3].m_y, last[3].m_z}),
            std::vector<float>({8000, 500, 3000, 6000, 28000, 3000}));  // tower 2, side z = 3000
}

TEST_F(Plants, OneSortPassAFrameCarriesTheNearestToTheEnd) {
  EXPECT_EQ(CTerrain::PointDistance(1, 2, 3, 4, 6, 15), 13.0f);
  player.SetPosition(D3DXVECTOR3(0, 0, 0));
  // Distances 1, 5, 3, 3 (along z, a different record), 9; kind tells them apart.
  const CPlantRecord start[] = {
      {1, 0, 0, 1, 10}, {5, 0, 0, 2, 20}, {3, 0, 0, 3, 30}, {0, 0, 3, 4, 40}, {9, 0, 0, 5, 50}};
  for (CPlantRecord* records : {terrain->m_trees, terrain->m_weeds}) {
    std::copy(std::begin(start), std::end(start), records);
    auto pass = [&](int count) {
      terrain->m_treeCount = terrain->m_weedCount = count;
      records == terrain->m_trees ? terrain->SortTrees(camera) : terrain->SortWeeds(camera);
      std::vector<int> ids;  // kind and size: whole records move
      for (int i = 0; i < count; ++i)
        ids.push_back(records[i].m_kind * 10 + int(records[i].m_size) / 10);
      return ids;
    };
    EXPECT_EQ(pass(5), std::vector<int>({22, 33, 44, 55, 11}));
    std::copy(start + 2, start + 4, records);
    EXPECT_EQ(pass(2), std::vector<int>({33, 44}));  // equal distances stay in their order
  }
  // From any order a still player sees far to near within count - 1 frames.
  crt::srand(3);
  for (int i = 0; i < 1000; ++i)
    terrain->m_trees[i] = {float(crt::rand()), 0, float(crt::rand()), 1, 1};
  terrain->m_treeCount = 1000;
  auto distance = [](const CPlantRecord& r) { return std::hypot(r.m_x, r.m_z); };
  for (int frame = 0; frame < 999; ++frame) terrain->SortTrees(camera);
  for (int i = 0; i + 1 < 1000; ++i)
    ASSERT_GE(distance(terrain->m_trees[i]), distance(terrain->m_trees[i + 1])) << i;
}

}  // namespace
