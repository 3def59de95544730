// The three camera modes: taking over from another camera (levelling after
// a space craft), the turns and orbits, and the third person chase with lag.
#include <gtest/gtest.h>

#include <cmath>

#include "view/Cam1stPerson.h"
#include "view/Cam3rdPerson.h"
#include "view/CamSpaceCraft.h"
#include "view/Player.h"

namespace {

void ExpectVec(const D3DXVECTOR3& v, float x, float y, float z, float tol = 1e-5f) {
  EXPECT_NEAR(v.x, x, tol);
  EXPECT_NEAR(v.y, y, tol);
  EXPECT_NEAR(v.z, z, tol);
}

float Length(const D3DXVECTOR3& v) { return D3DXVec3Length(&v); }

// A space craft player pitched and rolled, so that its camera is tilted.
struct TiltedShip {
  TiltedShip() {
    player.SetCameraMode(CAM_MODE_SPACE_CRAFT);
    player.Rotate(30.0f, 20.0f, 15.0f);
  }
  CPlayer player;
};

TEST(CameraModes, LevelAfterSpaceCraftButNeverIntoIt) {
  TiltedShip ship;
  const CCamera& tilted = *ship.player.GetCamera();
  ASSERT_GT(std::fabs(tilted.GetLook().y), 0.1f);

  CCam1stPerson walker(&tilted);
  ExpectVec(walker.GetUp(), 0, 1, 0);
  EXPECT_EQ(walker.GetLook().y, 0.0f);
  EXPECT_EQ(walker.GetRight().y, 0.0f);
  EXPECT_NEAR(Length(walker.GetLook()), 1.0f, 1e-6f);
  EXPECT_NEAR(Length(walker.GetRight()), 1.0f, 1e-6f);
  EXPECT_EQ(walker.GetPosition(), tilted.GetPosition());

  CCam3rdPerson chaser(&tilted);
  ExpectVec(chaser.GetUp(), 0, 1, 0);

  CCamSpaceCraft ship2(&tilted);
  EXPECT_EQ(ship2.GetLook(), tilted.GetLook());
  EXPECT_EQ(ship2.GetUp(), tilted.GetUp());

  // From a non-ship camera the axes come over unchanged.
  CCam1stPerson again(&chaser);
  EXPECT_EQ(again.GetLook(), chaser.GetLook());
}

TEST(CameraModes, TakeOverCopiesLensViewportAndVolume) {
  CCam1stPerson source(nullptr);
  source.SetFOV(80.0f);
  source.SetViewport(5, 6, 300, 200, 1.01f, 5000.0f, nullptr);
  source.SetVolumeInfo({D3DXVECTOR3(-3, -2, -3), D3DXVECTOR3(3, 10, 3)});
  CCam3rdPerson copy(&source);
  EXPECT_EQ(copy.GetFOV(), 80.0f);
  EXPECT_EQ(copy.GetNearClip(), 1.01f);
  EXPECT_EQ(copy.GetFarClip(), 5000.0f);
  EXPECT_EQ(copy.GetViewport().Height, 200u);
  EXPECT_EQ(copy.GetVolumeInfo().m_max, D3DXVECTOR3(3, 10, 3));
}

TEST(CameraModes, ThirdPersonIgnoresMoveAndRotateAndUnattachedCamerasDoNotTurn) {
  CPlayer player;
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  CCamera* chaser = player.GetCamera();
  CCam1stPerson first(nullptr);
  CCamSpaceCraft ship(nullptr);
  chaser->SetPosition(D3DXVECTOR3(1, 2, 3));
  chaser->Move(D3DXVECTOR3(10, 10, 10));
  EXPECT_EQ(chaser->GetPosition(), D3DXVECTOR3(1, 2, 3));
  for (CCamera* camera : {chaser, static_cast<CCamera*>(&first), static_cast<CCamera*>(&ship)}) {
    camera->Rotate(10, 20, 30);
    EXPECT_EQ(camera->GetLook(), D3DXVECTOR3(0, 0, 1)) << camera->GetCameraMode();
  }
}

TEST(CameraModes, FirstPersonRollSwingsRoundThePlayerPitchAndYawDoNot) {
  CPlayer player;
  player.SetCameraMode(CAM_MODE_1ST_PERSON);
  player.SetCameraOffset(D3DXVECTOR3(0, 10, 0));
  CCamera* camera = player.GetCamera();
  camera->Rotate(30, 40, 0);
  ExpectVec(camera->GetPosition(), 0, 10, 0);
  camera->Rotate(0, 0, 90);  // about the player's look (0, 0, 1)
  ExpectVec(camera->GetPosition(), -10, 0, 0);
}

TEST(CameraModes, SpaceCraftTurnsOrbitAboutThePlayersAxes) {
  CPlayer player;
  player.SetCameraMode(CAM_MODE_SPACE_CRAFT);
  player.SetCameraOffset(D3DXVECTOR3(0, 0, -10));
  CCamera* camera = player.GetCamera();
  camera->Rotate(0, 90, 0);  // yaw about (0, 1, 0): -z goes to -x
  ExpectVec(camera->GetPosition(), -10, 0, 0);
  ExpectVec(camera->GetLook(), 1, 0, 0);
  ExpectVec(camera->GetUp(), 0, 1, 0);
}

TEST(CameraModes, ZeroTurnStillMarksTheFrustumStale) {
  CPlayer player;
  player.SetCameraMode(CAM_MODE_1ST_PERSON);
  CCamera* camera = player.GetCamera();
  const D3DXVECTOR3 lo(11, -1, 10), hi(12, 1, 10);
  camera->SetViewport(0, 0, 100, 100, 1.0f, 100.0f, nullptr);
  camera->SetFOV(90.0f);
  EXPECT_FALSE(camera->BoundsInFrustum(lo, hi));
  camera->SetFOV(120.0f);
  EXPECT_FALSE(camera->BoundsInFrustum(lo, hi));
  camera->Rotate(0, 0, 0);
  EXPECT_EQ(camera->GetLook(), D3DXVECTOR3(0, 0, 1));
  EXPECT_TRUE(camera->BoundsInFrustum(lo, hi));
}

// Third person chase: the ideal point is the offset (0, 0, -10) behind the player.
class Chase : public ::testing::Test {
 protected:
  void SetUp() override {
    player.SetCameraMode(CAM_MODE_3RD_PERSON);
    player.SetCameraOffset(D3DXVECTOR3(0, 0, -10));
    camera = player.GetCamera();
    camera->SetPosition(D3DXVECTOR3(0, 0, -30));  // 20 short of the ideal point
  }
  CPlayer player;
  CCamera* camera = nullptr;
};

TEST_F(Chase, NoLagOrAlmostThereArrivesAtOnceAndLooksAtThePlayer) {
  camera->Update(0.001f, 0.0f);
  ExpectVec(camera->GetPosition(), 0, 0, -10);
  ExpectVec(camera->GetLook(), 0, 0, 1);
  camera->SetPosition(D3DXVECTOR3(0, 0, -10.005f));
  camera->Update(0.0001f, 0.25f);
  EXPECT_EQ(camera->GetPosition(), D3DXVECTOR3(0, 0, -10));
}

TEST_F(Chase, LagCoversTheTimeShareAndNeverOvershoots) {
  camera->Update(0.05f, 0.25f);  // a fifth of the way
  ExpectVec(camera->GetPosition(), 0, 0, -26);
  camera->Update(0.5f, 0.25f);  // ratio 2: stops exactly on the ideal point
  EXPECT_EQ(camera->GetPosition(), D3DXVECTOR3(0, 0, -10));
}

TEST_F(Chase, ExactlyThereChangesNothingNotEvenTheLook) {
  camera->SetPosition(D3DXVECTOR3(0, 0, -10));
  static_cast<CCam3rdPerson*>(camera)->SetLookAt(D3DXVECTOR3(5, 0, 0));
  const D3DXVECTOR3 look = camera->GetLook();
  camera->Update(0.1f, 0.25f);
  EXPECT_EQ(camera->GetLook(), look);
}

}  // namespace
