// CPlayer: the walking step and its obstacles, turning limits, the physics
// step in its order, camera mode changes and the callback lists. Keys come
// from the scripted win32 back end.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/win32/Win32Script.h"
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
  win32::script::Options options;
  options.realWindows = false;
  win32::script::Enable(options);
  win32::script::HoldKeys(0, keys);
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
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
  // A fresh walker at (x, 900, z) turned by heading takes one step of 10
  // units along its look; where it ends.
  static D3DXVECTOR3 StepFrom(float x, float z, float heading = 0.0f) {
    CPlayer walker;
    walker.SetCameraMode(CAM_MODE_1ST_PERSON);
    walker.Rotate(0.0f, heading, 0.0f);
    walker.SetPosition(D3DXVECTOR3(x, 900.0f, z));
    walker.MoveByFlags(MOVE_FORWARD, 100.0f);
    return walker.GetPosition();
  }
  CPlayer player;
};

TEST_F(Player, WalkingStepIsATenthAlongLookOrRightAndSumsMoveNothing) {
  player.MoveByFlags(MOVE_FORWARD, 100.0f);
  ExpectVec(player.GetPosition(), 5000, 900, 8010);
  player.MoveByFlags(MOVE_RIGHT, 50.0f);
  ExpectVec(player.GetPosition(), 5005, 900, 8010);
  player.MoveByFlags(MOVE_BACKWARD, 100.0f);
  player.MoveByFlags(MOVE_LEFT, 50.0f);
  ExpectVec(player.GetPosition(), 5000, 900, 8000);
  player.MoveByFlags(MOVE_FORWARD | MOVE_RIGHT, 100.0f);
  player.MoveByFlags(0, 100.0f);
  ExpectVec(player.GetPosition(), 5000, 900, 8000);
  ExpectVec(player.GetCamera()->GetPosition(), 5000, 900, 8000);
}

TEST_F(Player, MapLimitsCutOneAxisAndTheirEdgesAreAllowed) {
  ExpectVec(StepFrom(990.0f, 5000.0f), 990.0f, 900.0f, 5010.0f);  // x already out: z still walks
  ExpectVec(StepFrom(1010.0f, 5000.0f, -90.0f), 1000.0f, 900.0f, 5000.0f);  // to exactly 1000
  ExpectVec(StepFrom(1005.0f, 5000.0f, -90.0f), 1005.0f, 900.0f, 5000.0f);  // 995: refused
  // Diagonal into the x limit: z still moves.
  ExpectVec(StepFrom(1005.0f, 5000.0f, -45.0f), 1005.0f, 900.0f, 5007.0711f);
  ExpectVec(StepFrom(14995.0f, 14995.0f, 45.0f), 14995.0f, 900.0f, 14995.0f);
}

TEST_F(Player, TowersAndTheBigTreeRefuseTheWholeStep) {
  ExpectVec(StepFrom(1988.0f, 3500.0f, 90.0f), 1998.0f, 900.0f, 3500.0f);  // onto 1998: outside
  ExpectVec(StepFrom(1989.0f, 3500.0f, 90.0f), 1989.0f, 900.0f, 3500.0f);  // 1999: inside
  ExpectVec(StepFrom(6010.0f, 2990.0f, 0.0f), 6010.0f, 900.0f, 2990.0f);  // z 3000 in the second
  // The tree circle, radius 130 about (1500, 7000): exactly 130 is allowed.
  ExpectVec(StepFrom(1500.0f, 6860.0f, 0.0f), 1500.0f, 900.0f, 6870.0f);
  ExpectVec(StepFrom(1500.0f, 6861.0f, 0.0f), 1500.0f, 900.0f, 6861.0f);
}

TEST_F(Player, SLiftsOnlyBelow872AlsoWithoutADirection) {
  HoldKeys({0x53});
  player.SetPosition(D3DXVECTOR3(5000.0f, 860.0f, 8000.0f));
  player.MoveByFlags(0, 10.0f);
  ExpectVec(player.GetPosition(), 5000.0f, 862.5f, 8000.0f);
  player.SetPosition(D3DXVECTOR3(5000.0f, 872.0f, 8000.0f));
  player.MoveByFlags(MOVE_FORWARD, 100.0f);
  ExpectVec(player.GetPosition(), 5000.0f, 872.0f, 8010.0f);
}

TEST_F(Player, PitchAndRollAreTrimmedYawWraps) {
  player.Rotate(80.0f, 0.0f, 0.0f);
  const float lookYBefore = player.GetCamera()->GetLook().y;
  player.Rotate(20.0f, 0.0f, 0.0f);
  EXPECT_EQ(player.GetPitch(), 89.0f);
  // The camera turned by the 9 degrees that fit: from 80 down to 89.
  EXPECT_NEAR(lookYBefore, -std::sin(80.0f * 0.0174532924f), 1e-4f);
  EXPECT_NEAR(player.GetCamera()->GetLook().y, -std::sin(89.0f * 0.0174532924f), 1e-4f);
  ExpectVec(player.GetUp(), 0, 1, 0);  // the body stays upright

  player.Rotate(0.0f, 0.0f, -25.0f);
  EXPECT_EQ(player.GetRoll(), -20.0f);
  player.Rotate(0.0f, 350.0f, 0.0f);
  player.Rotate(0.0f, 20.0f, 0.0f);
  EXPECT_EQ(player.GetYaw(), 10.0f);
  player.Rotate(0.0f, 350.0f, 0.0f);
  EXPECT_EQ(player.GetYaw(), 360.0f);
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
  EXPECT_GE(player.GetVelocity().x, 0.0f);
  EXPECT_LE(player.GetVelocity().z, 0.0f);
  player.Update(0.1f);
  EXPECT_EQ(player.GetVelocity(), D3DXVECTOR3(0.0f, 0.0f, 0.0f));
}

// A player callback that lifts the body: the camera's update of the same
// frame already sees it.
void Lift(void* context, CPlayer* player, float) {
  player->SetPosition(player->GetPosition() + D3DXVECTOR3(0.0f, 100.0f, 0.0f));
  static_cast<std::vector<int>*>(context)->push_back(1);
}
void Record(void* context, CPlayer*, float) { static_cast<std::vector<int>*>(context)->push_back(2); }
void RecordCamera(void* context, CCamera* camera, float) {
  static_cast<std::vector<int>*>(context)->push_back(camera->GetCameraMode() == CAM_MODE_3RD_PERSON ? 3 : -3);
}

TEST_F(Player, CallbacksRunInOrderAndRemoveKeepsTheRest) {
  std::vector<int> calls;
  int other = 0;
  player.AddPlayerCallback(Record, &other);
  player.AddPlayerCallback(Lift, &calls);
  player.AddPlayerCallback(Record, &calls);
  player.AddCameraCallback(RecordCamera, &calls);
  player.RemovePlayerCallback(Record, &other);
  player.RemovePlayerCallback(Record, &other);  // no longer there: nothing happens
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  player.SetCameraOffset(D3DXVECTOR3(0.0f, 0.0f, -10.0f));
  player.Update(0.01f);
  EXPECT_EQ(calls, (std::vector<int>{1, 2, 3}));
  ExpectVec(player.GetCamera()->GetPosition(), 5000.0f, 1000.0f, 7990.0f);
}

TEST_F(Player, CameraModeChanges) {
  CCamera* first = player.GetCamera();
  EXPECT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  EXPECT_EQ(player.GetCamera(), first);
  EXPECT_FALSE(player.SetCameraMode(static_cast<CCameraMode>(0)));
  EXPECT_FALSE(player.SetCameraMode(static_cast<CCameraMode>(4)));
  EXPECT_EQ(player.GetCamera(), first);

  // To third person: the body keeps its axes and pitch.
  player.Rotate(30.0f, 0.0f, 0.0f);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  EXPECT_EQ(player.GetCamera()->GetCameraMode(), CAM_MODE_3RD_PERSON);
  EXPECT_EQ(player.GetCamera()->GetPlayer(), &player);
  EXPECT_EQ(player.GetPitch(), 30.0f);
  ExpectVec(player.GetLook(), 0, 0, 1);

  // Back to first person, then to the ship: it takes the camera's pitch.
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_SPACE_CRAFT));
  EXPECT_EQ(player.GetLook(), player.GetCamera()->GetLook());
  EXPECT_LT(player.GetLook().y, -0.4f);
}

TEST_F(Player, LeavingTheShipStandsUprightWithYawFromTheLook) {
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_SPACE_CRAFT));
  player.Rotate(10.0f, -90.0f, 5.0f);  // look ends near (-1, y, 0)
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  ExpectVec(player.GetUp(), 0, 1, 0);
  EXPECT_EQ(player.GetLook().y, 0.0f);
  EXPECT_EQ(player.GetPitch(), 0.0f);
  EXPECT_NEAR(player.GetYaw(), -90.0f, 1e-3f);

  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_SPACE_CRAFT));
  player.Rotate(0.0f, 90.0f, 0.0f);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  EXPECT_NEAR(player.GetYaw(), 0.0f, 1e-3f);
}

}  // namespace
