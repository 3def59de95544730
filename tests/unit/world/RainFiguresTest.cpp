// Rain and the flock: the drop's three states and its rebirth, the wing beat,
// the figures' turn rules and height sort, and the quads both draw.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

#include "platform/crt/crt.h"
#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Player.h"

using karvo_test::DeviceCalls;
using karvo_test::Ptr;

namespace {

// A CTerrain in zero-filled storage as inside g_App, with a player to centre on.
class RainFigures : public ::testing::Test {
 protected:
  void SetUp() override {
    terrain = new (storage_.get()) CTerrain();
    terrain->SetDevice(&device, true);
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED,
                                   &terrain->m_rainTexture, nullptr),
              0);
    ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
    for (CRainDrop& drop : terrain->m_rain) drop.m_y = 5000.0f;  // all falling, none reborn
    device.ClearLog();
  }
  void TearDown() override { terrain->~CTerrain(); }

  std::unique_ptr<void, decltype(&std::free)> storage_{std::calloc(1, sizeof(CTerrain)),
                                                       &std::free};
  karvo_test::RecordingDevice device;
  CPlayer player;
  CTerrain* terrain = nullptr;
};

TEST_F(RainFigures, DropFallsRestsOrIsRebornAroundThePlayer) {
  // 958.5 + 41 - 1000 = -0.5 must truncate to 0, 12.25 + 467 - 1000 to -520.
  player.SetPosition(D3DXVECTOR3(958.5f, 3000.0f, 12.25f));
  struct Case {
    float y;
    bool enabled;
    CRainDrop after;
    int draws;
  } cases[] = {
      {1000.5f, true, {7.0f, 984.5f, 9.0f}, 0},  // still above: one more fall
      {1000.0f, false, {7.0f, 1000.0f, 9.0f}, 0},
      {1000.0f, true, {0.0f, 3034.0f, -520.0f}, 3},  // draws 41, 18467, 6334
  };
  for (const Case& c : cases) {
    crt::srand(1);
    for (int i = 0; i < c.draws; ++i) crt::rand();
    const std::uint32_t stateAfter = crt::randState();
    terrain->m_rain[5] = {7.0f, c.y, 9.0f};
    terrain->m_rainEnabled = c.enabled;
    crt::srand(1);
    terrain->UpdateRain(player.GetCamera());
    EXPECT_EQ(crt::randState(), stateAfter) << c.y;
    const CRainDrop& drop = terrain->m_rain[5];
    EXPECT_EQ(drop.m_x, c.after.m_x) << c.y;
    EXPECT_EQ(drop.m_y, c.after.m_y) << c.y;
    EXPECT_EQ(drop.m_z, c.after.m_z) << c.y;
    EXPECT_EQ(terrain->m_rainCount, 2000);
  }
}

TEST_F(RainFigures, RainDropIsAnUprightStreakAcrossTheLineToThePlayer) {
  player.SetPosition(D3DXVECTOR3(100.0f, 0.0f, 0.0f));
  terrain->DrawRainDrop(100.0f, 1200.0f, 50.0f, player.GetCamera());  // straight ahead in +z
  terrain->DrawRainDrop(100.0f, 1200.0f, 0.0f, player.GetCamera());   // on the player: no angle
  const DeviceCalls drop = {{"SetTexture", {0, Ptr(terrain->m_rainTexture)}},
                            {"SetRenderState", {D3DRS_ALPHABLENDENABLE, TRUE}},
                            {"SetRenderState", {D3DRS_SRCBLEND, D3DBLEND_SRCALPHA}},
                            {"SetRenderState", {D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA}},
                            {"SetFVF", {0x142}},
                            {"SetRenderState", {D3DRS_CULLMODE, D3DCULL_NONE}}};
  const DeviceCalls draw = {{"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}}};
  EXPECT_EQ(device.Calls(), drop + draw + drop);
  const auto quad = device.UpVertices<CVertex>(0);
  ASSERT_EQ(quad.size(), 4u);
  const float expected[4][5] = {{99.5f, 1200, 50, 0, 1},
                                {100.5f, 1200, 50, 1, 1},
                                {100.5f, 1232, 50, 1, 0},
                                {99.5f, 1232, 50, 0, 0}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(quad[i].m_x, expected[i][0], 1e-5) << i;
    EXPECT_EQ(quad[i].m_y, expected[i][1]) << i;
    EXPECT_NEAR(quad[i].m_z, expected[i][2], 1e-5) << i;
    EXPECT_EQ(quad[i].m_tu, expected[i][3]) << i;
    EXPECT_EQ(quad[i].m_tv, expected[i][4]) << i;
    EXPECT_EQ(quad[i].m_diffuse, 0xFF000000u) << i;
  }
}

TEST_F(RainFigures, WingsBeatPastThreeEveryFortyFourFrames) {
  terrain->m_wingDirection = 1;
  float angles[100];
  for (float& angle : angles) {
    terrain->UpdateWings();
    angle = terrain->m_wingAngle;
  }
  EXPECT_EQ(angles[9], 2.9999998f);     // ten steps stay below 3.0 ...
  EXPECT_NEAR(angles[10], 3.3f, 1e-5);  // ... so an eleventh is taken
  EXPECT_NEAR(angles[32], -3.3f, 1e-5);
  for (int i = 0; i < 56; ++i) {
    EXPECT_NEAR(angles[i + 44], angles[i], 1e-5) << i;
    EXPECT_LE(std::abs(angles[i]), 3.31f) << i;
  }
}

TEST_F(RainFigures, FiguresTurnBackAtTheEdgesAndTurnThreeDegreesAFrame) {
  // Heading 0 flies towards -z and leaves x alone; NaN: position not checked.
  const float any = std::nanf("");
  const struct {
    float x, z, heading, target, afterX, afterZ, afterHeading, afterTarget;
  } cases[] = {
      {68000.0f, 0, 0, 0, 68000.0f, -100.0f, 0, 0},
      {68000.1f, 0, 0, 0, 68000.1f, -100.0f, 3, 90},
      {69000.0f, 69100.0f, 0, 0, 69000.0f, 69000.0f, 0, 0},  // z wins the corner
      {-49000.0f, -49000.0f, 0, 0, -49000.0f, -49100.0f, 3, 180},
      {69990.0f, 500.0f, 270, 270, 69990.0f, 500.0f, 267, 90},  // step refused, turns on the spot
      {100.0f, 500.0f, 10, 11, any, any, 11, 11},               // up 3, down 3, then snapped
      {100.0f, 500.0f, 350, 10, any, any, 347, 10},             // the long way, down
  };
  for (const auto& c : cases) {
    terrain->m_figures[0] = {c.x, 30000.0f, c.z, c.heading, 150.0f, c.target};
    crt::srand(1);  // 41 % 200 is no random turn
    terrain->UpdateFigures();
    const CFlyingFigure& f = terrain->m_figures[0];
    if (!std::isnan(c.afterX)) {
      EXPECT_FLOAT_EQ(f.m_x, c.afterX) << c.x;
      EXPECT_NEAR(f.m_z, c.afterZ, 0.02) << c.x;
    }
    EXPECT_EQ(f.m_heading, c.afterHeading) << c.x << " " << c.heading;
    EXPECT_EQ(f.m_targetHeading, c.afterTarget) << c.x << " " << c.heading;
    EXPECT_EQ(f.m_y, 30000.0f);
  }
}

TEST_F(RainFigures, SortMovesEachFigureOnePlaceAFrameAndWingsTurnWithTheHeading) {
  for (int i = 0; i < 3; ++i) terrain->m_figures[i].m_y = float(i + 1);
  terrain->SortFigures();
  EXPECT_EQ(terrain->m_figures[0].m_y, 2.0f);
  EXPECT_EQ(terrain->m_figures[1].m_y, 3.0f);
  EXPECT_EQ(terrain->m_figures[2].m_y, 1.0f);

  terrain->DrawFigure(1.0f, 2.0f, 3.0f, 100.0f, 0.0f, 0.0f);
  terrain->DrawFigure(1.0f, 2.0f, 3.0f, 100.0f, 3.0f, 90.0f);
  const DeviceCalls wing = {{"SetTexture", {0, Ptr(terrain->m_wingRightTexture)}},
                            {"SetRenderState", {D3DRS_CULLMODE, D3DCULL_NONE}},
                            {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}}};
  const DeviceCalls blend = {{"SetRenderState", {D3DRS_ALPHABLENDENABLE, TRUE}},
                             {"SetRenderState", {D3DRS_SRCBLEND, D3DBLEND_SRCALPHA}},
                             {"SetRenderState", {D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA}}};
  EXPECT_EQ(device.Calls(), blend + wing + wing + blend + wing + wing);
  // Flat wings at heading 0: tips 5s out on either side, the hinge 4s long along z.
  const auto first = device.UpVertices<CVertex>(0), second = device.UpVertices<CVertex>(1);
  EXPECT_EQ(first[0].m_x, -499.0f);
  EXPECT_EQ(first[0].m_z, -197.0f);
  EXPECT_EQ(first[2].m_z, 203.0f);
  EXPECT_EQ(second[3].m_x, 501.0f);
  EXPECT_EQ(second[3].m_y, 2.0f);
  // At heading 90 and angle 3 (t = 60) the second wing's tip (440, 60, 200)
  // turns to about (200, 60, -440).
  const auto turned = device.UpVertices<CVertex>(3);
  EXPECT_NEAR(turned[3].m_x, 201.0f, 0.1f);
  EXPECT_EQ(turned[3].m_y, 62.0f);
  EXPECT_NEAR(turned[3].m_z, -437.0f, 0.1f);
}

}  // namespace
