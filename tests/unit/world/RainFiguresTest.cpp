// Rain and the flock: the drop's three states and its rebirth, the wing beat,
// the figures' turn rules and height sort, and the quads both draw.
#include <cmath>

#include "WorldFixture.h"
#include "platform/crt/crt.h"

namespace {

class RainFigures : public karvo_test::WorldFixture {
 protected:
  void SetUp() override {
    WorldFixture::SetUp();
    for (CRainDrop& drop : terrain->m_rain) drop.m_y = 5000.0f;  // all falling, none reborn
  }
};

TEST_F(RainFigures, DropFallsRestsOrIsRebornAroundThePlayer) {
  // 958.5 + 41 - 1000 = -0.5 truncates to 0, 12.25 + 467 - 1000 to -520.
  player.SetPosition(D3DXVECTOR3(958.5f, 3000.0f, 12.25f));
  // y, rain on, then x, y, z after and the draws taken.
  const float cases[][6] = {{1000.5f, 1, 7, 984.5f, 9, 0},  // still above 1000: one more fall
                            {1000, 0, 7, 1000, 9, 0},
                            {1000, 1, 0, 3034, -520, 3}};  // draws 41, 18467, 6334
  for (const auto& c : cases) {
    crt::srand(1);
    for (int i = 0; i < c[5]; ++i) crt::rand();
    const std::uint32_t stateAfter = crt::randState();
    terrain->m_rain[5] = {7.0f, c[0], 9.0f};
    terrain->m_rainEnabled = c[1] != 0;
    crt::srand(1);
    terrain->UpdateRain(camera);
    const CRainDrop& d = terrain->m_rain[5];
    EXPECT_TRUE(d.m_x == c[2] && d.m_y == c[3] && d.m_z == c[4])
        << d.m_x << " " << d.m_y << " " << d.m_z;
    EXPECT_EQ(crt::randState(), stateAfter) << c[0];
  }
  // A streak 1 wide across the line to the player, 32 high; none on the player.
  terrain->DrawRainDrop(958.5f, 1200.0f, 50.0f, camera);
  terrain->DrawRainDrop(958.5f, 1200.0f, 12.25f, camera);
  ASSERT_EQ(device.Count("DrawPrimitiveUP"), 1u);
  const auto quad = device.UpVertices<CVertex>(0);
  EXPECT_TRUE(quad[0].m_x == 958.0f && quad[2].m_x == 959.0f && quad[2].m_y == 1232.0f &&
              quad[0].m_tv == 1.0f);
}

TEST_F(RainFigures, WingsBeatPastThreeEveryFortyFourFrames) {
  terrain->m_wingDirection = 1;
  float angles[100];
  for (float& angle : angles) terrain->UpdateWings(), angle = terrain->m_wingAngle;
  EXPECT_EQ(angles[9], 2.9999998f);     // ten steps stay below 3.0 ...
  EXPECT_NEAR(angles[10], 3.3f, 1e-5);  // ... so an eleventh is taken
  EXPECT_NEAR(angles[32], -3.3f, 1e-5);
  for (int i = 0; i < 56; ++i) EXPECT_NEAR(angles[i + 44], angles[i], 1e-5) << i;
}

TEST_F(RainFigures, FiguresTurnBackAtTheEdgesAndTurnThreeDegreesAFrame) {
  // Heading 0 flies towards -z and leaves x alone.
  // x, z, heading, target before and after; heading 0 flies towards -z.
  const float cases[][8] = {
      {68000.0f, 0, 0, 0, 68000.0f, -100, 0, 0},      {68000.1f, 0, 0, 0, 68000.1f, -100, 3, 90},
      {69000, 69100, 0, 0, 69000, 69000, 0, 0},        // the corner: z wins
      {-49000, -49000, 0, 0, -49000, -49100, 3, 180},  // and here too
      {69990, 500, 270, 270, 69990, 500, 267, 90},     // step refused, turns on the spot
      {0, 500, 10, 11, -17.36f, 401.52f, 11, 11},      // up 3, down 3, then snapped
      {0, 500, 350, 10, 17.383f, 401.52f, 347, 10},    // the long way, down
  };
  for (const auto& c : cases) {
    terrain->m_figures[0] = {c[0], 30000.0f, c[1], c[2], 150.0f, c[3]};
    crt::srand(1);  // 41 % 200 is no random turn
    terrain->UpdateFigures();
    const CFlyingFigure& f = terrain->m_figures[0];
    EXPECT_TRUE(std::abs(f.m_x - c[4]) < 0.01f && std::abs(f.m_z - c[5]) < 0.02f)
        << c[0] << " " << c[2];
    EXPECT_TRUE(f.m_heading == c[6] && f.m_targetHeading == c[7]) << c[0] << " " << c[2];
  }
}

TEST_F(RainFigures, SortMovesAFigureOnePlaceAFrameAndWingsTurnWithTheHeading) {
  for (int i = 0; i < 3; ++i) terrain->m_figures[i].m_y = float(i + 1);
  terrain->SortFigures();
  EXPECT_TRUE(terrain->m_figures[0].m_y == 2 && terrain->m_figures[1].m_y == 3 &&
              terrain->m_figures[2].m_y == 1);

  terrain->DrawFigure(1.0f, 2.0f, 3.0f, 100.0f, 3.0f, 90.0f);
  ASSERT_EQ(device.Count("DrawPrimitiveUP"), 2u);
  // At angle 3 (t = 60) the first wing's tip (-440, 60, -200) turns by 90 to about (-199, 62, 443).
  const CVertex tip = device.UpVertices<CVertex>(0)[0];
  EXPECT_TRUE(std::abs(tip.m_x + 199.0f) < 0.1f && tip.m_y == 62.0f &&
              std::abs(tip.m_z - 443.0f) < 0.1f);
}

}  // namespace
