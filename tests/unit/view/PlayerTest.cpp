// CPlayer: the walking step and its obstacles, the lift, turning limits, the
// physics step and camera mode changes. Keys come from the
// scripted win32 back end.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/win32/script/Win32Script.h"
#include "view/Player.h"

namespace {

void ExpectVec(const D3DXVECTOR3& v, float x, float y, float z, float tol = 1e-4f) {
  EXPECT_NEAR(v.x, x, tol);
  EXPECT_NEAR(v.y, y, tol);
  EXPECT_NEAR(v.z, z, tol);
}

// Starts a script with the given keys held from frame 0 and crosses into
// frame 0, so that GetKeyboardState reports them.
void HoldKeys(std::initializer_list<BYTE> keys) {
  win32::script::Enable({.realWindows = false});
  win32::script::HoldKeys(0, keys);
  for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);) {
  }
}

class Player : public ::testing::Test {
 protected:
  void SetUp() override {
    HoldKeys({});
    ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
    player.SetPosition(D3DXVECTOR3(5000.0f, 900.0f, 8000.0f));
  }
  void TearDown() override { win32::script::Disable(); }
  CPlayer player;
};

TEST_F(Player, AStepIsATenthAlongTheLookAndStopsAtLimitsTowersAndTheBigTree) {
  // x, z, heading, then x and z after one step forward over 100.
  const float steps[][5] = {
      {990, 5000, 0, 990, 5010},            // x already out: z still walks
      {1010, 5000, -90, 1000, 5000},        // to exactly 1000
      {1005, 5000, -90, 1005, 5000},        // 995: refused
      {1005, 5000, -45, 1005, 5007.0711f},  // diagonal into the limit: z still moves
      {14995, 14995, 45, 14995, 14995},
      {1988, 3500, 90, 1998, 3500}, {1989, 3500, 90, 1989, 3500},  // onto 1998: outside the first tower; 1999: refused
      {6010, 2990, 0, 6010, 2990},   // z 3000 in the second
      {1500, 6860, 0, 1500, 6870}, {1500, 6861, 0, 1500, 6861},  // exactly 130 from the big tree is allowed
      // Onto the map's other edges, and onto each tower edge, which lies outside the tower.
      {14990, 5000, 90, 15000, 5000}, {5000, 1010, 180, 5000, 1000}, {5000, 14990, 0, 5000, 15000},
      {3000, 2988, 0, 3000, 2998},    {3000, 5012, 180, 3000, 5002},  {4012, 4000, -90, 4002, 4000},
      {5988, 4000, 90, 5998, 4000},   {8012, 4000, -90, 8002, 4000}};
  for (const auto& s : steps) {
    CPlayer walker;
    walker.SetCameraMode(CAM_MODE_1ST_PERSON);
    walker.Rotate(0.0f, s[2], 0.0f);
    walker.SetPosition(D3DXVECTOR3(s[0], 900.0f, s[1]));
    walker.MoveByFlags(MOVE_FORWARD, 100.0f);
    SCOPED_TRACE(testing::Message() << s[0] << ", " << s[1]);
    ExpectVec(walker.GetPosition(), s[3], 900.0f, s[4]);
  }
  player.MoveByFlags(MOVE_RIGHT, 50.0f);
  player.MoveByFlags(MOVE_FORWARD | MOVE_RIGHT, 100.0f);  // no single direction: no step
  ExpectVec(player.GetCamera()->GetPosition(), 5005, 900, 8000);
}

TEST_F(Player, SLiftsOnlyBelow872AlsoWithoutADirection) {
  HoldKeys({0x53});
  // Height, direction, then height and z after.
  const float lifts[][4] = {{860, 0, 862.5f, 8000}, {871.9f, 0, 874.4f, 8000}, {872, MOVE_FORWARD, 872, 8010}};
  for (const auto& l : lifts) {
    player.SetPosition(D3DXVECTOR3(5000.0f, l[0], 8000.0f));
    player.MoveByFlags(static_cast<std::uint32_t>(l[1]), 100.0f);
    ExpectVec(player.GetPosition(), 5000.0f, l[2], l[3]);
  }
}

TEST_F(Player, PitchAndRollStopAtTheirLimitsOnBothSidesTheCameraTakesWhatFitsYawWrapsPast360AndBelow0) {
  // Two turns (pitch, yaw, roll each), then the angles they leave. The camera
  // turns only by the share that fits, seen in its look (pitch) and right (roll)
  // axes; the body stays upright.
  const struct { float first[3], second[3], pitch, yaw, roll; } turns[] = {
      {{80, 0, 0}, {20, 0, 0}, 89, 0, 0},  {{-80, 0, 0}, {-20, 0, 0}, -89, 0, 0},
      {{0, 0, 15}, {0, 0, 10}, 0, 0, 20},  {{0, 0, -15}, {0, 0, -10}, 0, 0, -20},
      {{0, 350, 0}, {0, 20, 0}, 0, 10, 0}, {{0, 350, 0}, {0, 10, 0}, 0, 360, 0},  // exactly 360 stays
      {{0, 10, 0}, {0, -10, 0}, 0, 0, 0},  {{0, 10, 0}, {0, -20, 0}, 0, 350, 0}};
  for (const auto& t : turns) {
    CPlayer turner;
    turner.SetCameraMode(CAM_MODE_1ST_PERSON);
    turner.Rotate(t.first[0], t.first[1], t.first[2]);
    turner.Rotate(t.second[0], t.second[1], t.second[2]);
    SCOPED_TRACE(&t - turns);
    EXPECT_TRUE(turner.GetPitch() == t.pitch && turner.GetYaw() == t.yaw && turner.GetRoll() == t.roll);
    EXPECT_NEAR(turner.GetCamera()->GetLook().y, -std::sin(t.pitch * 0.0174532924f), 1e-4f);
    EXPECT_NEAR(turner.GetCamera()->GetRight().y, std::sin(t.roll * 0.0174532924f), 1e-4f);
    ExpectVec(turner.GetUp(), 0, 1, 0);
  }
}

TEST_F(Player, UpdateCutsSpeedsKeepingSignsThenFriction) {
  player.SetFriction(0.0f);
  player.SetMaxVelocityY(400.0f);
  player.SetVelocity(D3DXVECTOR3(300.0f, -900.0f, 400.0f));
  player.Update(0.01f);
  ExpectVec(player.GetVelocity(), 75.0f, -400.0f, 100.0f);
  ExpectVec(player.GetPosition(), 5000.75f, 896.0f, 8001.0f);

  player.SetFriction(250.0f);
  player.SetVelocity(D3DXVECTOR3(6.0f, 0.0f, -8.0f));  // length 10 < 25 of friction
  player.Update(0.1f);
  ExpectVec(player.GetVelocity(), 0.0f, 0.0f, 0.0f, 1e-6f);
}

TEST_F(Player, ModeChangesKeepThePitchAndLeavingTheShipLevelsBodyAndCamera) {
  player.Rotate(30.0f, 0.0f, 0.0f);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  EXPECT_EQ(player.GetPitch(), 30.0f);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_SPACE_CRAFT));
  EXPECT_LT(player.GetLook().y, -0.4f);  // the ship takes the walker's pitch
  player.Rotate(10.0f, -90.0f, 5.0f);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  ExpectVec(player.GetUp(), 0, 1, 0);
  ExpectVec(player.GetCamera()->GetUp(), 0, 1, 0);
  EXPECT_TRUE(player.GetPitch() == 0.0f && player.GetCamera()->GetLook().y == 0.0f);
  EXPECT_NEAR(player.GetYaw(), -90.0f, 1e-3f);
}

}  // namespace
