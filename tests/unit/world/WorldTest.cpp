// The world on a recording device. Towers, plants, figures and the scene's
// order: the quads' corners as the player stands about a plant, the kinds'
// pictures, a figure's wing corners, one sort pass a frame, and RenderScene's
// call sequence on both sides of 855.0; the drops' states, the wing beat and
// the flock's turns, the random one included. The sea and the tint under it:
// the clip of the sea quad at the near plane, the states it sets and puts
// back, and the overlay's mapping to viewport pixels. The placing of trees
// and flowers: the shared random sequence, the height and zone rules, and
// what a rebuild keeps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <new>
#include <tuple>

#include "app/GameApp.h"
#include "platform/crt/crt.h"
#include "terrain/Vertex.h"
#include "unit/terrain/TerrainFixture.h"
#include "view/Camera.h"

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
          &t.m_wingLeftTexture, &t.m_wingRightTexture, &t.m_waterTexture})
      device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, m, nullptr);
    t.m_mapWidth = t.m_mapHeight = 257;  // the sea at 864 over the whole map
    t.m_scale = D3DXVECTOR3(64, 16, 64);
    player.SetCameraMode(CAM_MODE_1ST_PERSON);
    camera = player.GetCamera();
  }
  // A flat map on the world's grid (64 units a cell, 16 a sample step), by
  // default at 912, where trees grow.
  void FlatMap(std::uint8_t sample = 57) {
    karvo_test::MakeMap(t, 257, 257, [=](std::uint32_t, std::uint32_t) { return sample; });
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
  for (const float edge : {3.0f, -3.0f}) {  // exactly at a limit: no step, but the turn
    t.m_wingAngle = edge, t.m_wingDirection = edge > 0 ? 1 : 2;
    t.UpdateWings();
    EXPECT_TRUE(t.m_wingAngle == edge && t.m_wingDirection == (edge > 0 ? 2 : 1)) << edge;
  }

  // x, z, heading, target before and after; heading 0 flies towards -z. Last the seed: 41 % 200
  // of seed 1 is no random turn, 655 % 200 of seed 189 is one, to its next draw 7552 % 360.
  const float cases[][9] = {
      {68000.0f, 0, 0, 0, 68000.0f, -100, 0, 0, 1},   {68000.1f, 0, 0, 0, 68000.1f, -100, 3, 90, 1},
      {69000, 69100, 0, 0, 69000, 69000, 0, 0, 1},     // the corner: z wins
      {69990, 500, 270, 270, 69990, 500, 267, 90, 1},  // step refused, turns on the spot
      {0, 500, 10, 11, -17.36f, 401.52f, 11, 11, 1},   // up 3, down 3, then snapped
      {0, 500, 350, 10, 17.383f, 401.52f, 347, 10, 1},  // the long way, down
      {0, 500, 0, 0, 0, 400, 3, 352, 189},             // a random turn
      {0, 500, 0, 6, 0, 400, 3, 6, 1},                 // 3 short of the target: no snap yet
      {69900, 500, 270, 270, 70000, 500, 267, 90, 1},  // a step onto the airspace's edge is taken
      {-49900, 500, 90, 90, -50000, 500, 93, 270, 1},
      {-48000, 0, 0, 0, -48000, -100, 0, 0, 1},       {-48000.1f, 0, 0, 0, -48000.1f, -100, 3, 270, 1},
      {0, -47900, 0, 0, 0, -48000, 0, 0, 1},          {0, -47900.1f, 0, 0, 0, -48000.1f, 3, 180, 1},
      {0, 67900, 180, 180, 0, 68000, 180, 180, 1},    {0, 67900.1f, 180, 180, 0, 68000.1f, 177, 0, 1},
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

  // Slots 0 to 99 fly, no more.
  t.m_figures[99] = t.m_figures[100] = {0, 30000.0f, 500, 0, 150.0f, 0};
  t.UpdateFigures();
  EXPECT_TRUE(t.m_figures[99].m_z == 400 && t.m_figures[100].m_z == 500);

  // The sort moves a figure one place a frame, through all 250 slots; equal
  // heights (told apart by x) stay.
  for (int i = 0; i < 250; ++i) t.m_figures[i] = {float(i), i < 3 ? float(i + 1) : i == 249 ? 5.0f : 0.0f, 0, 0, 0, 0};
  t.SortFigures();
  EXPECT_TRUE(t.m_figures[0].m_y == 2 && t.m_figures[1].m_y == 3 && t.m_figures[2].m_y == 1);
  EXPECT_TRUE(t.m_figures[3].m_x == 3 && t.m_figures[248].m_y == 5);
}

// ---- the sea ----------------------------------------------------------------------

constexpr float LEVEL = 864.0f, SIDE = 16448.0f;  // 257 samples of 64 units
const D3DXVECTOR3 AHEAD(0.0f, 0.0f, 1.0f), UP(0.0f, 1.0f, 0.0f), DOWN(0.0f, -1.0f, 0.0f);

// A camera placed and aimed directly.
class AimedCamera : public CCamera {
 public:
  CCameraMode GetCameraMode() const override { return CAM_MODE_1ST_PERSON; }
  void Aim(float x, float y, float z, const D3DXVECTOR3& look = AHEAD, const D3DXVECTOR3& up = UP) {
    m_position = D3DXVECTOR3(x, y, z), m_look = look, m_up = up;
    m_viewDirty = true;
    GetViewMatrix(), GetProjMatrix();
  }
};

// The sea and its tint, seen by a camera placed and aimed directly.
class Water : public WorldDraw {
 protected:
  // The fan of the first UP draw, or nothing.
  template <class V>
  std::vector<V> Fan() {
    return device.Count("DrawPrimitiveUP") ? device.UpVertices<V>(0) : std::vector<V>{};
  }
  AimedCamera eye;
};

TEST_F(Water, SeaIsCutAtTheNearPlane) {
  // Corners 0 and 3 lie behind the eye: new points on x = 0 and x = 16448 at
  // the near plane, alpha 0xBF even on the edge from the clearer corner 2.
  eye.Aim(8000.0f, 900.0f, 8000.0f);
  device.ClearLog();
  t.DrawWater(&eye, LEVEL);
  // Alpha from the colour words, blended, seen from below too, no depth written; then put back.
  EXPECT_EQ(device.Calls(),
            (karvo_test::DeviceCalls{
                Tss(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE), Tss(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG1),
                RS(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA), RS(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA),
                RS(D3DRS_ALPHABLENDENABLE, TRUE), {"SetTexture", {0, karvo_test::Ptr(t.m_waterTexture)}},
                {"SetFVF", {0x142}}, RS(D3DRS_CULLMODE, D3DCULL_NONE), RS(D3DRS_ZWRITEENABLE, FALSE),
                {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}}, RS(D3DRS_ZWRITEENABLE, TRUE),
                RS(D3DRS_ALPHABLENDENABLE, FALSE), RS(D3DRS_CULLMODE, D3DCULL_CCW)}));
  const auto fan = Fan<CVertex>();
  ASSERT_EQ(fan.size(), 4u);
  const float rows[4][5] = {
      {0, 8001, 0xBF, 0, 8001 / SIDE}, {0, SIDE, 0xBF, 0, 1}, {SIDE, SIDE, 0xAF, 1, 1}, {SIDE, 8001, 0xBF, 1, 8001 / SIDE}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(fan[i].m_x == rows[i][0] && std::abs(fan[i].m_z - rows[i][1]) < 0.01f && fan[i].m_y == LEVEL &&
                fan[i].m_diffuse >> 24 == rows[i][2] && fan[i].m_tu == rows[i][3])
        << i;
    EXPECT_NEAR(fan[i].m_tv, rows[i][4], 1e-5) << i;
  }

  // The near plane through corners 0 and 3: the quad as it is, no new point.
  device.ClearLog();
  eye.Aim(8000.0f, 900.0f, -1.0f);
  t.DrawWater(&eye, LEVEL);
  ASSERT_EQ(Fan<CVertex>().size(), 4u);
  EXPECT_TRUE(Fan<CVertex>()[0].m_z == 0.0f && Fan<CVertex>()[3].m_z == 0.0f);

  device.ClearLog();  // all behind: not a single call
  eye.Aim(8000.0f, 900.0f, 20000.0f);
  t.DrawWater(&eye, LEVEL);
  EXPECT_TRUE(device.Calls().empty());
}

TEST_F(Water, OverlayMapsTheViewportWithWholeHalvesAndTintsAllOfADiverLookingDown) {
  // Under the water the tint covers the viewport: the corner (-1, 1) lands on
  // X - (Width >> 1) + Width / 2, half a pixel left of X for an odd width. Looking
  // straight down it is one tint, 0xBF547686, once the near plane 1 below the eye is
  // under the water: at 864.5 too, at 900 not; another kind draws nothing.
  const struct {
    int kind;
    bool down;
    float y, width, left, right;
    std::uint32_t tint;
  } cases[] = {{1, false, 800, 640, 100, 740, 0xBF547687}, {1, false, 800, 641, 99.5f, 740.5f, 0xBF547687},
               {0, false, 800, 640, 0, 0, 0},              {1, true, 900, 640, 0, 0, 0},
               {1, true, 800, 640, 100, 740, 0xBF547686},  {1, true, 864.5f, 640, 100, 740, 0xBF547686}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    device.ClearLog();
    eye.SetViewport(100, 50, DWORD(c.width), 480, 1.0f, 100.0f, nullptr);
    eye.Aim(8000.0f, c.y, 8000.0f, c.down ? DOWN : AHEAD, c.down ? AHEAD : UP);
    eye.RenderWaterOverlay(&device, c.kind, LEVEL);
    EXPECT_EQ(device.Calls().front().args, (std::vector<double>{D3DRS_ZWRITEENABLE, FALSE}));
    EXPECT_EQ(device.Calls().back().args, (std::vector<double>{D3DRS_ZWRITEENABLE, TRUE}));
    const auto fan = Fan<CScreenVertex>();
    ASSERT_EQ(fan.size(), c.right ? 4u : 0u);
    if (fan.empty()) continue;
    EXPECT_TRUE(fan[0].m_x == c.left && fan[0].m_y == 50.0f && fan[2].m_x == c.right && fan[2].m_y == 530.0f);
    EXPECT_EQ(fan[0].m_diffuse, c.tint);
    // The tint's colour is the colour word's alone, blended; then blending off and stage 0's texture back.
    EXPECT_EQ(device.Calls(), (Calls{RS(D3DRS_ZWRITEENABLE, FALSE), Tss(0, D3DTSS_COLORARG1, D3DTA_DIFFUSE),
                                     RS(D3DRS_ALPHABLENDENABLE, TRUE), {"SetFVF", {0x44}},
                                     {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 20}}, RS(D3DRS_ALPHABLENDENABLE, FALSE),
                                     Tss(0, D3DTSS_COLORARG1, D3DTA_TEXTURE), RS(D3DRS_ZWRITEENABLE, TRUE)}));
  }
}

// ---- placing ----------------------------------------------------------------------

using Placement = WorldDraw;

// A seed whose first two draws put the first tree candidate at (x, z).
unsigned SeedFor(int x, int z) {
  for (unsigned seed = 0;; ++seed) {
    crt::srand(seed);
    if (crt::rand() % 1644 * 10 == x && crt::rand() % 1644 * 10 == z) return seed;
  }
}

TEST_F(Placement, FirstTreeComesFromTheFirstDrawsOfTheSequence) {
  FlatMap();
  crt::srand(1);  // draws 41, 18467, 6334, 26500, ...
  t.PlaceTrees();
  const CPlantRecord& first = t.m_trees[0];
  // 41 % 1644 * 10, 18467 % 1644 * 10, 6334 % 300 + 400; 26500 is even.
  EXPECT_TRUE(first.m_x == 410 && first.m_z == 3830 && first.m_size == 434 && first.m_kind == 1);
  EXPECT_EQ(first.m_y, 912.0f - 50.0f);
}

TEST_F(Placement, WeedsRefuseGroundOfExactly770AndDrawAgain) {
  // The first candidate, (410, 3830), on ground of 770; all else at 560.
  karvo_test::MakeMap(t, 257, 257, [](std::uint32_t c, std::uint32_t r) { return std::uint8_t(c - 5 < 4 && r - 58 < 4 ? 55 : 40); });
  t.m_scale.y = 14.0f;
  crt::srand(1);  // 41, 18467, 6334 refused; then x from 26500, z from 19169
  t.PlaceWeeds();
  EXPECT_TRUE(t.m_weeds[0].m_x == 1960 && t.m_weeds[0].m_z == 10850);
}

TEST_F(Placement, TowerZonesAreOpenOnEverySide) {
  FlatMap();
  // The first candidate on both sides of each edge: z 2800 to 5200, x 1800 to 4200 and
  // 5800 to 8200, and the gap between the two zones.
  const struct { int x, z; bool placed; } rows[] = {
      {3000, 2800, true}, {3000, 2810, false}, {3000, 5190, false}, {3000, 5200, true},
      {1800, 4000, true}, {1810, 4000, false}, {4190, 4000, false}, {4200, 4000, true},
      {5800, 4000, true}, {5810, 4000, false}, {8190, 4000, false}, {8200, 4000, true},
      {5000, 4000, true}};
  for (const auto& r : rows) {
    crt::srand(SeedFor(r.x, r.z));
    t.m_trees[0] = {};
    t.PlaceTrees();
    EXPECT_EQ(t.m_trees[0].m_kind != 0, r.placed) << r.x << " " << r.z;
  }
}

// Every sample at 900.0 exactly: no tree nor flower may stand there.
TEST_F(Placement, GroundOfExactly900LeavesTreeAndFlowerSlotsAsTheyWereAfterThreeDraws) {
  FlatMap(56);
  t.m_scale.y = 900.0f / 56;
  ASSERT_EQ(t.GetHeight(640.0f, 640.0f, false), 900.0f);
  crt::srand(7);
  for (int i = 0; i < 999 * 3 + 1; ++i) crt::rand();
  const std::uint32_t expected = crt::randState();
  crt::srand(7);
  t.m_trees[5] = {1, 2, 3, 3, 450};  // left by an earlier build
  t.PlaceTrees();
  EXPECT_EQ(crt::randState(), expected);
  for (int i = 0; i < 999; ++i) ASSERT_EQ(t.m_trees[i].m_kind, i == 5 ? 3 : 0) << i;
  // The big tree takes no test.
  const CPlantRecord& big = t.m_trees[999];
  EXPECT_TRUE(big.m_kind == 2 && big.m_x == 1500.0f && big.m_z == 7000.0f && big.m_y == 850.0f);
  t.PlaceFlowers();
  EXPECT_TRUE(t.m_treeCount == 1000 && t.m_flowerCount == 300);
  for (const CPlantRecord& flower : t.m_flowers) ASSERT_EQ(flower.m_kind, 0);
}

}  // namespace
