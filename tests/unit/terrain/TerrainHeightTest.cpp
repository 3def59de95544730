// GetHeight on the drawn triangles, and the two ground-following callbacks:
// the clamp, the walking/swimming switch at the water level, the chase
// camera held above the hills.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>

#include "platform/win32/script/Win32Script.h"
#include "TerrainFixture.h"
#include "view/Player.h"

namespace {

using karvo_test::MakeMap;

// 9 x 9 samples (x and z spacing 64) with one high sample at (1, 1) and one
// at (1, 3), the rest a slope so that grid points differ.
std::uint8_t Sample(std::uint32_t col, std::uint32_t row) {
  if ((col == 1 && row == 1) || (col == 1 && row == 3)) return 100;
  return static_cast<std::uint8_t>(col * 3 + row * 5);
}

class Height : public ::testing::Test {
 protected:
  void SetUp() override {
    MakeMap(*terrain, 9, 9, Sample);
    terrain->m_scale = D3DXVECTOR3(64.0f, 16.0f, 64.0f);  // the spacing of the world's map
  }
  std::unique_ptr<CTerrain> terrain = std::make_unique<CTerrain>();
};

TEST_F(Height, CellCentresEdgesAndOffTheMap) {
  // Cell (1, 1): h00 = 100 (high), h10 = 3*2+5, h01 = 3+10, h11 = 6+10; the
  // centre lies on the diagonal of the split.
  EXPECT_FLOAT_EQ(terrain->GetHeight(96.0f, 96.0f, false), (11 + 13) * 16.0f / 2.0f);
  EXPECT_FLOAT_EQ(terrain->GetHeight(96.0f, 96.0f, true), (1600.0f + 16 * 16.0f) / 2.0f);
  // Along the cell's edges both splits agree.
  for (float t : {0.1f, 0.5f, 0.75f}) {
    EXPECT_FLOAT_EQ(terrain->GetHeight(64.0f + 64.0f * t, 64.0f, false), terrain->GetHeight(64.0f + 64.0f * t, 64.0f, true));
    EXPECT_FLOAT_EQ(terrain->GetHeight(128.0f, 64.0f + 64.0f * t, false), terrain->GetHeight(128.0f, 64.0f + 64.0f * t, true));
  }
  EXPECT_TRUE(terrain->GetHeight(-1.0f, 100.0f, false) == 0.0f && terrain->GetHeight(100.0f, -0.5f, false) == 0.0f &&
              terrain->GetHeight(9 * 64.0f, 100.0f, false) == 0.0f);
}

// The ground-following callbacks, with the scripted keyboard.
class Ground : public Height {
 protected:
  void SetUp() override {
    Height::SetUp();
    win32::script::Options options;
    options.realWindows = false;
    win32::script::Enable(options);
    player.SetCameraMode(CAM_MODE_1ST_PERSON);
    player.SetVolumeInfo({D3DXVECTOR3(-3, -2, -3), D3DXVECTOR3(3, 10, 3)});
    player.SetFriction(1.0f);
  }
  void TearDown() override { win32::script::Disable(); }
  void Follow() { CTerrain::UpdatePlayer(terrain.get(), &player, 0.016f); }
  CPlayer player;
};

TEST_F(Ground, ClampUsesTheRowParityOfThePositionAndLeavesABodyAboveTheGround) {
  // z = 63.9 is still row 0 (even split), 127.9 row 1 (odd split); the two
  // splits differ there by more than a unit, so the wrong parity would show.
  for (auto [z, odd] : {std::pair{63.9f, false}, std::pair{127.9f, true}}) {
    ASSERT_GT(std::fabs(terrain->GetHeight(96.0f, z, true) - terrain->GetHeight(96.0f, z, false)), 1.0f);
    player.SetVelocity(D3DXVECTOR3(5.0f, -50.0f, 7.0f));
    player.SetPosition(D3DXVECTOR3(96.0f, 0.0f, z));
    Follow();
    EXPECT_FLOAT_EQ(player.GetPosition().y, terrain->GetHeight(96.0f, z, odd) + 2.0f) << z;
    EXPECT_EQ(player.GetVelocity(), D3DXVECTOR3(5.0f, 0.0f, 7.0f));
  }
  player.SetVelocity(D3DXVECTOR3(1.0f, 2.0f, 3.0f));
  player.SetPosition(D3DXVECTOR3(96.0f, 3000.0f, 96.0f));
  Follow();
  EXPECT_EQ(player.GetPosition(), D3DXVECTOR3(96.0f, 3000.0f, 96.0f));
  EXPECT_EQ(player.GetVelocity(), D3DXVECTOR3(1.0f, 2.0f, 3.0f));
}

TEST_F(Ground, WalkingFromExactlyTheWaterLevelSwimmingBelowOnlyInFirstPerson) {
  player.SetPosition(D3DXVECTOR3(300.0f, 864.0f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, -500.0f, 0.0f));
  EXPECT_EQ(player.GetMaxVelocityXZ(), 125.0f);
  player.SetPosition(D3DXVECTOR3(300.0f, 863.99f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, -260.0f, 0.0f));
  EXPECT_EQ(player.GetMaxVelocityXZ(), 40.0f);

  win32::script::HoldKeys(0, {0x53});  // S held: no pull downwards
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
  }
  Follow();
  EXPECT_EQ(player.GetGravity(), D3DXVECTOR3(0.0f, 0.0f, 0.0f));

  // Other camera modes keep the last values, even high above the water.
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  player.SetPosition(D3DXVECTOR3(300.0f, 2000.0f, 300.0f));
  Follow();
  EXPECT_EQ(player.GetMaxVelocityXZ(), 40.0f);
}

TEST_F(Ground, ChaseCameraRisesOutOfTheHillAndFacesThePlayer) {
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  CCamera* camera = player.GetCamera();
  camera->SetVolumeInfo({D3DXVECTOR3(-3, -2, -3), D3DXVECTOR3(3, 10, 3)});
  player.SetPosition(D3DXVECTOR3(300.0f, 2000.0f, 300.0f));
  camera->SetPosition(D3DXVECTOR3(64.0f, 10.0f, 64.0f));  // inside the hill at (1, 1)
  CTerrain::UpdateCamera(terrain.get(), camera, 0.016f);
  EXPECT_FLOAT_EQ(camera->GetPosition().y, 1602.0f);
  D3DXVECTOR3 toPlayer = player.GetPosition() - camera->GetPosition();
  D3DXVec3Normalize(&toPlayer, &toPlayer);
  EXPECT_NEAR(D3DXVec3Dot(&toPlayer, &camera->GetLook()), 1.0f, 1e-5f);
}

}  // namespace
