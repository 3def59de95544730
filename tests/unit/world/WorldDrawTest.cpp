// Towers, plants, figures and the scene's order on a recording device: the
// quads' corners as the player stands about a plant, the kinds' pictures, a
// figure's wing corners, one sort pass a frame, and RenderScene's call
// sequence on both sides of 855.0; the drops' states, the wing beat and the
// flock's turns, the random one included.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <new>
#include <tuple>

#include "app/GameApp.h"
#include "platform/crt/crt.h"
#include "support/RecordingDevice.h"
#include "terrain/Vertex.h"

using Calls = karvo_test::DeviceCalls;
using karvo_test::RS, karvo_test::Tss;

namespace {

Calls Bind(const void* texture) {
  return {{"SetTexture", {0, karvo_test::Ptr(texture)}}};
}
const Calls kBlend{RS(D3DRS_ALPHABLENDENABLE, 1),
                   RS(D3DRS_SRCBLEND, 5),
                   RS(D3DRS_DESTBLEND, 6),
                   {"SetFVF", {0x142}}};
const Calls kQuad{RS(D3DRS_CULLMODE, D3DCULL_NONE),
                  {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}}};

class WorldDraw : public ::testing::Test {
 protected:
  WorldDraw() {
    t.SetDevice(&device, true);
    for (IDirect3DTexture9** m :
         {&t.m_baseTexture, &t.m_wallTexture, &t.m_wallTexture2, &t.m_treeTexture,
          &t.m_tree3Texture, &t.m_weed4Texture, &t.m_weed5Texture, &t.m_flower2Texture,
          &t.m_wingLeftTexture, &t.m_wingRightTexture})
      device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, m, nullptr);
    player.SetCameraMode(CAM_MODE_1ST_PERSON);
    camera = player.GetCamera();
  }
  // The corners' positions of a draw, one after another.
  void Near(std::size_t draw, const std::vector<float>& want) const {
    std::vector<float> got;
    for (const CVertex& v : device.UpVertices<CVertex>(draw))
      got.insert(got.end(), {v.m_x, v.m_y, v.m_z});
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], 1e-3) << i;
  }
  // One figure: blending on, then both wings with the right wing's picture.
  Calls Wings() const {
    return Calls{RS(D3DRS_ALPHABLENDENABLE, 1), RS(D3DRS_SRCBLEND, 5), RS(D3DRS_DESTBLEND, 6)} +
           Bind(t.m_wingRightTexture) + kQuad + Bind(t.m_wingRightTexture) + kQuad;
  }
  Calls Recorded(const std::function<void()>& draw) {
    device.ClearLog();
    draw();
    return device.Calls();
  }

  ~WorldDraw() override { t.~CTerrain(); }

  karvo_test::RecordingDevice device;  // outlives the terrain, which releases into it
  std::unique_ptr<char[]> storage_{new char[sizeof(CTerrain)]()};
  CTerrain& t = *new (storage_.get()) CTerrain();  // zero-filled, as inside g_App
  CPlayer player;
  CCamera* camera = nullptr;
};

TEST_F(WorldDraw, TreesAndWeedsTurnTowardsThePlayerAndEachKindHasItsPicture) {
  const float r = 50.0f / std::sqrt(2.0f);
  const float rows[][6] = {
      {1500, 2000, 1000, 2050, 1000, 1950},                 // player east; corner 1 and 2 at x, z
      {500, 2500, 1000 + r, 2000 + r, 1000 - r, 2000 - r},  // north-west: -45 degrees
      {1000, 1500, 950, 2000, 1050, 2000},                  // in line, south: a quarter turn
      {1000, 2500, 1050, 2000, 950, 2000}};                 // in line, north
  for (const auto& w : rows) {
    player.SetPosition(D3DXVECTOR3(w[0], 0, w[1]));
    camera->SetPosition(D3DXVECTOR3(-9000, 0, 0));  // the viewer is the player, not the camera
    Recorded([&] {
      t.DrawTree(1000, 100, 2000, 1, 100, camera);
      t.DrawWeed(1000, 100, 2000, 2, 100, camera);
    });
    for (std::size_t draw : {0u, 1u})
      Near(draw, {w[2], 100, w[3], w[4], 100, w[5], w[4], 220, w[5], w[2], 220, w[3]});
  }
  // Another kind binds nothing and still draws, a tree of it on a quad of
  // nothing; the big tree (kind 2) shows the broadleaf picture twice as big.
  // Kind (negative: a weed), the picture bound and the top's height.
  const std::tuple<int, const void*, float> kinds[] = {
      {1, t.m_treeTexture, 220}, {3, t.m_tree3Texture, 220},
      {2, t.m_treeTexture, 340}, {-1, t.m_weed4Texture, 220},
      {0, nullptr, 0},           {-3, nullptr, 220}};
  for (const auto& [kind, texture, top] : kinds) {
    const Calls calls = Recorded([&] {
      kind < 0 ? t.DrawWeed(1000, 100, 2000, -kind, 100, camera)
               : t.DrawTree(1000, 100, 2000, kind, 100, camera);
    });
    EXPECT_EQ(calls, (texture ? Bind(texture) : Calls{}) + kBlend + kQuad) << kind;
    EXPECT_EQ(device.UpVertices<CVertex>(0)[2].m_y, top) << kind;
  }
}

TEST_F(WorldDraw, AFlowerIsTwoStemsAndAHeadATowerFourWallsAndAFigureTwoWings) {
  EXPECT_EQ(Recorded([&] { t.DrawFlower(100, 50, 200, 2, 5); }),  // a = 0.5, b = 2.5
            kBlend + Bind(t.m_baseTexture) + kQuad + Bind(t.m_baseTexture) + kQuad +
                Bind(t.m_flower2Texture) + kQuad);
  Near(0, {99.5, 50, 199.5, 99.5, 30, 199.5, 100.5, 30, 199.5, 100.5, 50, 199.5});
  Near(1, {99.5, 50, 199.5, 99.5, 30, 199.5, 99.5, 30, 200.5, 99.5, 50, 200.5});
  Near(2, {97.5, 50, 197.5, 102.5, 50, 197.5, 102.5, 50, 202.5, 97.5, 50, 202.5});
  const Calls four = kQuad + kQuad + kQuad + kQuad, fvf{{"SetFVF", {0x142}}};
  EXPECT_EQ(Recorded([&] { t.DrawSkyscrapers(); }),
            Bind(t.m_wallTexture) + fvf + four + Bind(t.m_wallTexture2) + fvf + four);
  // Tower 2's wall at z = 3000; the picture on its side, a little clearer.
  Near(7, {6000, 500, 3000, 8000, 500, 3000, 8000, 28000, 3000, 6000, 28000, 3000});
  const CVertex c3 = device.UpVertices<CVertex>(0)[2];
  EXPECT_TRUE(c3.m_diffuse >> 24 == 0xAF && c3.m_tu == 1 && c3.m_tv == 1);
  // Size 100, wings at 1.5, heading 30: t = 1.5 * 100 / 5 = 30; a = 30 * 0.017452778 has sine
  // 0.499987 and cosine 0.866033, so the first wing's tip (-470, 30, -200) lands at
  // x = 1000 - 470 cos a - 200 sin a, z = 2000 + 470 sin a - 200 cos a.
  EXPECT_EQ(Recorded([&] { t.DrawFigure(1000, 30000, 2000, 100, 1.5f, 30); }), Wings());
  Near(0, {492.967, 30030, 2061.787, 900.003, 30000, 1826.793,  // tip, hinge, hinge, tip
           1099.997, 30000, 2173.207, 692.962, 30030, 2408.200});
  Near(1, {1307.038, 30030, 1591.800, 900.003, 30000, 1826.793,
           1099.997, 30000, 2173.207, 1507.033, 30030, 1938.213});
}

TEST_F(WorldDraw, OneSortPassAFrameCarriesTheNearestToTheEnd) {
  player.SetPosition(D3DXVECTOR3(0, 0, 0));
  // Distances 1, 5, 3, 3 (along z), 9; kind and size tell the records apart.
  const CPlantRecord start[] = {
      {1, 0, 0, 1, 1}, {5, 0, 0, 2, 2}, {3, 0, 0, 3, 3}, {0, 0, 3, 4, 4}, {9, 0, 0, 5, 5}};
  for (CPlantRecord* records : {t.m_trees, t.m_weeds}) {
    auto pass = [&](const CPlantRecord* from, int count) {
      std::copy(from, from + count, records);
      t.m_treeCount = t.m_weedCount = count;
      records == t.m_trees ? t.SortTrees(camera) : t.SortWeeds(camera);
      std::vector<float> ids;
      for (int i = 0; i < count; ++i)
        ids.push_back(float(records[i].m_kind) * 10 + records[i].m_size);
      return ids;
    };
    EXPECT_EQ(pass(start, 5), std::vector<float>({22, 33, 44, 55, 11}));
    EXPECT_EQ(pass(start + 2, 2), std::vector<float>({33, 44}));  // equal distances stay
  }
}

TEST_F(WorldDraw, SceneGroupsChangePlacesAt855AndStage1IsOffOnlyAroundTheWater) {
  t.m_flowers[0] = {10, 5, 10, 1, 5};
  t.m_flowerCount = 1;
  t.m_trees[0] = t.m_weeds[0] = {100, 900, 500, 1, 400};
  t.m_treeCount = t.m_weedCount = 1;
  GetGameApp()->GetColorOp() = D3DTOP_MODULATE2X;
  const Calls alpha{Tss(0, D3DTSS_ALPHAOP, 4), Tss(0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE),
                    Tss(0, D3DTSS_ALPHAARG2, 0)};
  const Calls closing{RS(D3DRS_ZWRITEENABLE, 1), RS(D3DRS_ALPHABLENDENABLE, 0),
                      RS(D3DRS_CULLMODE, D3DCULL_CCW)};
  const Calls tree = Bind(t.m_treeTexture) + kBlend + kQuad, weed = Bind(t.m_weed4Texture) + kBlend + kQuad;
  t.m_mapWidth = t.m_mapHeight = 257;  // the sea at 864 over the whole map
  t.m_scale = D3DXVECTOR3(64, 16, 64);
  // The player's altitude and the third person camera's height (0: first person).
  const float views[][2] = {{854.99f, 0}, {855, 0}, {2000, 0}, {800, 874}, {800, 873.9f}};
  for (const auto& [altitude, cameraY] : views)
    for (const bool single : {true, false}) {
      if (cameraY != 0.0f) player.SetCameraMode(CAM_MODE_3RD_PERSON);
      camera = player.GetCamera();
      player.SetPosition(D3DXVECTOR3(150, altitude, 0));
      if (cameraY != 0.0f) camera->SetPosition(D3DXVECTOR3(150, cameraY, -300));
      t.SetSinglePass(single);
      t.m_rainEnabled = single;  // landed drops: reborn, or at rest and drawn all the same
      for (CRainDrop& drop : t.m_rain) drop = {400, 1000, 400};
      const Calls scene = Recorded([&] { t.RenderScene(camera); });
      // The drops as the update left them, then the first 100 figures.
      Calls sky = Recorded([&] {
        for (const CRainDrop& d : t.m_rain) t.DrawRainDrop(d.m_x, d.m_y, d.m_z, camera);
      });
      for (int i = 0; i < 100; ++i) sky = sky + Wings();
      const Calls upper = Recorded([&] { t.DrawSkyscrapers(); }) + alpha + sky + alpha +
                          Recorded([&] { t.DrawFlower(10, 5, 10, 1, 5); }) + alpha + tree;
      const Calls lower = alpha + weed;
      // The tint follows the camera, strictly below 874.
      const Calls water = Recorded([&] {
        t.DrawWater(camera, 864.0f);
        if (camera->GetPosition().y < 874.0f) camera->RenderWaterOverlay(&device, 1, 864.0f);
      });
      const Calls off = single ? Calls{Tss(1, D3DTSS_COLOROP, 1)} : Calls{};
      const Calls on = single ? Calls{Tss(1, D3DTSS_COLOROP, 5)} : Calls{};
      EXPECT_EQ(scene, (altitude >= 855 ? lower + off + water + on + upper
                                        : upper + off + water + on + lower) +
                           closing)
          << altitude << " " << cameraY;
      EXPECT_EQ(t.m_rain[0].m_y == 1000.0f, !single);
    }
}

TEST_F(WorldDraw, TheRainSwitchFlipsOnlyOn5555) {
  unsigned seed = 0;
  while ((crt::srand(seed), crt::rand() % 10000 != 5555)) ++seed;
  for (const unsigned s : {seed, seed + 1}) {
    crt::srand(s);
    t.m_rainEnabled = true;
    t.RenderScene(camera);
    EXPECT_EQ(t.m_rainEnabled, s != seed);
  }
}

TEST_F(WorldDraw, DropFallsRestsOrIsRebornAroundThePlayer) {
  // 958.5 + 41 - 1000 = -0.5 truncates to 0, 12.25 + 467 - 1000 to -520.
  for (CRainDrop& drop : t.m_rain) drop.m_y = 5000.0f;  // all falling, none reborn
  player.SetPosition(D3DXVECTOR3(958.5f, 3000.0f, 12.25f));
  // y, rain on, then x, y, z after and the draws taken.
  const float cases[][6] = {{1000.5f, 1, 7, 984.5f, 9, 0},  // still above 1000: one more fall
                            {1000, 0, 7, 1000, 9, 0},
                            {1000, 1, 0, 3034, -520, 3}};  // draws 41, 18467, 6334
  for (const auto& c : cases) {
    crt::srand(1);
    for (int i = 0; i < c[5]; ++i) crt::rand();
    const std::uint32_t stateAfter = crt::randState();
    t.m_rain[5] = {7.0f, c[0], 9.0f};
    t.m_rainEnabled = c[1] != 0;
    crt::srand(1);
    t.UpdateRain(camera);
    const CRainDrop& d = t.m_rain[5];
    EXPECT_TRUE(d.m_x == c[2] && d.m_y == c[3] && d.m_z == c[4])
        << d.m_x << " " << d.m_y << " " << d.m_z;
    EXPECT_EQ(crt::randState(), stateAfter) << c[0];
  }
  // A streak 1 wide across the line to the player, 32 high; none on the player.
  t.DrawRainDrop(958.5f, 1200.0f, 50.0f, camera);
  t.DrawRainDrop(958.5f, 1200.0f, 12.25f, camera);
  ASSERT_EQ(device.Count("DrawPrimitiveUP"), 1u);
  const auto quad = device.UpVertices<CVertex>(0);
  EXPECT_TRUE(quad[0].m_x == 958.0f && quad[2].m_x == 959.0f && quad[2].m_y == 1232.0f &&
              quad[0].m_tv == 1.0f);
}

TEST_F(WorldDraw, WingsBeatPastThreeEveryFortyFourFramesAndFiguresTurnThreeDegreesAFrame) {
  t.m_wingDirection = 1;
  float angles[100];
  for (float& angle : angles) t.UpdateWings(), angle = t.m_wingAngle;
  EXPECT_EQ(angles[9], 2.9999998f);     // ten steps stay below 3.0 ...
  EXPECT_NEAR(angles[10], 3.3f, 1e-5);  // ... so an eleventh is taken
  for (int i = 0; i < 56; ++i) EXPECT_NEAR(angles[i + 44], angles[i], 1e-5) << i;

  // x, z, heading, target before and after; heading 0 flies towards -z. Last the seed: 41 % 200
  // of seed 1 is no random turn, 655 % 200 of seed 189 is one, to its next draw 7552 % 360.
  const float cases[][9] = {
      {68000.0f, 0, 0, 0, 68000.0f, -100, 0, 0, 1},   {68000.1f, 0, 0, 0, 68000.1f, -100, 3, 90, 1},
      {69000, 69100, 0, 0, 69000, 69000, 0, 0, 1},     // the corner: z wins
      {69990, 500, 270, 270, 69990, 500, 267, 90, 1},  // step refused, turns on the spot
      {0, 500, 10, 11, -17.36f, 401.52f, 11, 11, 1},   // up 3, down 3, then snapped
      {0, 500, 350, 10, 17.383f, 401.52f, 347, 10, 1},  // the long way, down
      {0, 500, 0, 0, 0, 400, 3, 352, 189},             // a random turn
  };
  for (const auto& c : cases) {
    t.m_figures[0] = {c[0], 30000.0f, c[1], c[2], 150.0f, c[3]};
    crt::srand(unsigned(c[8]));
    t.UpdateFigures();
    const CFlyingFigure& f = t.m_figures[0];
    EXPECT_TRUE(std::abs(f.m_x - c[4]) < 0.01f && std::abs(f.m_z - c[5]) < 0.02f)
        << c[0] << " " << c[2];
    EXPECT_TRUE(f.m_heading == c[6] && f.m_targetHeading == c[7]) << c[0] << " " << c[2];
  }

  // The sort moves a figure one place a frame.
  for (int i = 0; i < 3; ++i) t.m_figures[i].m_y = float(i + 1);
  t.SortFigures();
  EXPECT_TRUE(t.m_figures[0].m_y == 2 && t.m_figures[1].m_y == 3 && t.m_figures[2].m_y == 1);
}

}  // namespace
