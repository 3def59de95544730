// The cameras: the frustum test with its exact boundary, one corner per
// plane, and the third person chase with its lag.
#include <gtest/gtest.h>

#include "view/Cam1stPerson.h"
#include "view/Player.h"

namespace {

// Camera at the origin looking along +z, 90 degree view on a square viewport:
// the side planes are x = +-z and y = +-z, near z = 1, far z = 100 * 100.
TEST(Frustum, EachPlaneRejectsOnlyWhatLiesWhollyBeyondItUntilTheCameraMoves) {
  CCam1stPerson camera(nullptr);
  camera.SetViewport(0, 0, 100, 100, 1.0f, 100.0f, nullptr);
  camera.SetFOV(90.0f);
  // Box corners, then whether it is seen. Across a side plane a box reaching
  // 0.5 over passes and one 0.5 short fails.
  const float boxes[][7] = {
      {-1, -1, -1, 1, 1, 1, 1},        {-5, -5, -20, 5, 5, -2, 0},        // around the camera, behind it
      {-12, -1, 10, -9.5f, 1, 10, 1},  {-12, -1, 10, -10.5f, 1, 10, 0},   // left
      {9.5f, -1, 10, 12, 1, 10, 1},    {10.5f, -1, 10, 12, 1, 10, 0},     // right
      {-1, -12, 10, 1, -9.5f, 10, 1},  {-1, -12, 10, 1, -10.5f, 10, 0},   // bottom
      {-1, 9.5f, 10, 1, 12, 10, 1},    {-1, 10.5f, 10, 1, 12, 10, 0},     // top
      {-1, -1, 9990, 1, 1, 10100, 1},  {-1, -1, 10010, 1, 1, 10100, 0},   // far, at 100 x the far clip
      {-0.1f, -0.1f, 0.5f, 0.1f, 0.1f, 1, 1},  // a corner on the near plane is inside
      {-0.1f, -0.1f, 0.5f, 0.1f, 0.1f, 0.999f, 0},
      {-30, 9, 10, -9, 30, 20, 1}};  // partly beyond left and top only
  for (const auto& b : boxes)
    EXPECT_EQ(camera.BoundsInFrustum(D3DXVECTOR3(b[0], b[1], b[2]), D3DXVECTOR3(b[3], b[4], b[5])),
              b[6] != 0)
        << b[0] << " " << b[1] << " " << b[2] << " " << b[3] << " " << b[4] << " " << b[5];
  // A new field of view alone keeps the planes of 90 degrees.
  const D3DXVECTOR3 lo(11, -1, 10), hi(12, 1, 10);
  camera.SetFOV(120.0f);
  EXPECT_FALSE(camera.BoundsInFrustum(lo, hi));
  camera.SetPosition(D3DXVECTOR3(0, 0, 0));
  EXPECT_TRUE(camera.BoundsInFrustum(lo, hi));
}

// The chase's ideal point is the offset (0, 0, -10) behind the player.
TEST(Chase, LagCoversItsShareOfTheWayNeverOvershootsAndLooksAtThePlayer) {
  CPlayer player;
  player.SetCameraMode(CAM_MODE_3RD_PERSON);
  player.SetCameraOffset(D3DXVECTOR3(0, 0, -10));
  CCamera* camera = player.GetCamera();
  // z before, elapsed time, lag, z after.
  const float steps[][4] = {{-30, 0.05f, 0.25f, -26},          // a fifth of the way
                            {-26, 0.5f, 0.25f, -10},           // ratio 2: stops on the point
                            {-30, 0.001f, 0, -10},             // no lag: there at once
                            {-10.005f, 0.0001f, 0.25f, -10}};  // almost there: snaps
  for (const auto& s : steps) {
    camera->SetPosition(D3DXVECTOR3(0, 0, s[0]));
    camera->Update(s[1], s[2]);
    EXPECT_NEAR(camera->GetPosition().z, s[3], s[3] == -10 ? 0.0f : 1e-5f) << s[0];
  }
  EXPECT_NEAR(camera->GetLook().z, 1.0f, 1e-6f);
}

}  // namespace
