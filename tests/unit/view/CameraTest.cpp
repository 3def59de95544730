// CCamera: defaults, what the dirty flags let through, the device calls and
// the frustum test with its exact boundary, one corner per plane.
#include <gtest/gtest.h>

#include "support/RecordingDevice.h"
#include "view/Cam1stPerson.h"
#include "view/FloatMath.h"

namespace {

using karvo_test::RecordingDevice;

D3DXMATRIX Identity() {
  D3DXMATRIX m;
  return *D3DXMatrixIdentity(&m);
}

TEST(Camera, NewCameraHasUnitViewAndDefaultProjection) {
  CCam1stPerson camera(nullptr);
  EXPECT_EQ(camera.GetViewMatrix(), Identity());
  D3DXMATRIX expected;
  D3DXMatrixPerspectiveFovLH(&expected, 60.0f * DEGREES_TO_RADIANS, 640.0f / 480.0f, 1.0f, 10000.0f);
  EXPECT_EQ(camera.GetProjMatrix(), expected);
  EXPECT_EQ(camera.GetViewport().Width, 640u);
  EXPECT_EQ(camera.GetViewport().MaxZ, 1.0f);
}

TEST(Camera, ViewRebuildRepairsAxesOnlyWhenAsked) {
  CCam1stPerson camera(nullptr);
  camera.SetPosition(D3DXVECTOR3(1.0f, 2.0f, 3.0f));
  camera.GetViewMatrix();
  const D3DXVECTOR3 upBefore = camera.GetUp();
  camera.SetPosition(D3DXVECTOR3(4.0f, 5.0f, 6.0f));
  EXPECT_EQ(camera.GetUp(), upBefore);
  const D3DXMATRIX& view = camera.GetViewMatrix();
  EXPECT_FLOAT_EQ(view._41, -4.0f);
  EXPECT_FLOAT_EQ(view._43, -6.0f);
  // A second read without a change gives the same matrix.
  const D3DXMATRIX first = view;
  EXPECT_EQ(camera.GetViewMatrix(), first);
}

TEST(Camera, ViewportAndTransformsReachOnlyAGivenDevice) {
  RecordingDevice device;
  CCam1stPerson camera(nullptr);
  camera.SetViewport(10, 20, 800, 400, 1.01f, 5000.0f, nullptr);
  camera.UpdateRenderView(nullptr);
  EXPECT_TRUE(device.Calls().empty());
  EXPECT_FLOAT_EQ(camera.GetProjMatrix()._11, camera.GetProjMatrix()._22 / 2.0f);

  camera.SetViewport(0, 0, 320, 240, 1.0f, 50.0f, &device);
  camera.UpdateRenderView(&device);
  camera.UpdateRenderProj(&device);
  ASSERT_EQ(device.CallsNamed("SetViewport").size(), 1u);
  ASSERT_EQ(device.CallsNamed("SetTransform").size(), 2u);
  EXPECT_EQ(D3DXMATRIX(device.Transform(D3DTS_PROJECTION)), camera.GetProjMatrix());
  EXPECT_EQ(D3DXMATRIX(device.Transform(D3DTS_VIEW)), camera.GetViewMatrix());
}

// Camera at the origin looking along +z, 90 degree view on a square viewport:
// the side planes are x = +-z and y = +-z, near z = 1, far z = 100 * 100.
class Frustum : public ::testing::Test {
 protected:
  void SetUp() override {
    camera.SetViewport(0, 0, 100, 100, 1.0f, 100.0f, nullptr);
    camera.SetFOV(90.0f);
  }
  bool Box(float x0, float y0, float z0, float x1, float y1, float z1) {
    return camera.BoundsInFrustum(D3DXVECTOR3(x0, y0, z0), D3DXVECTOR3(x1, y1, z1));
  }
  CCam1stPerson camera{nullptr};
};

TEST_F(Frustum, EachPlaneRejectsOnlyWhatLiesWhollyBeyondIt) {
  EXPECT_TRUE(Box(-1, -1, -1, 1, 1, 1));  // around the camera
  EXPECT_FALSE(Box(-5, -5, -20, 5, 5, -2));  // behind it
  // left, right, bottom, top: a box reaching 0.5 across passes, one 0.5 short fails
  EXPECT_TRUE(Box(-12, -1, 10, -9.5f, 1, 10));
  EXPECT_FALSE(Box(-12, -1, 10, -10.5f, 1, 10));
  EXPECT_TRUE(Box(9.5f, -1, 10, 12, 1, 10));
  EXPECT_FALSE(Box(10.5f, -1, 10, 12, 1, 10));
  EXPECT_TRUE(Box(-1, -12, 10, 1, -9.5f, 10));
  EXPECT_FALSE(Box(-1, -12, 10, 1, -10.5f, 10));
  EXPECT_TRUE(Box(-1, 9.5f, 10, 1, 12, 10));
  EXPECT_FALSE(Box(-1, 10.5f, 10, 1, 12, 10));
  // far plane at 100 x the far clip of 100
  EXPECT_TRUE(Box(-1, -1, 9990, 1, 1, 10100));
  EXPECT_FALSE(Box(-1, -1, 10010, 1, 1, 10100));
  // A corner at exactly zero distance, on the near plane z = 1, is inside.
  EXPECT_TRUE(Box(-0.1f, -0.1f, 0.5f, 0.1f, 0.1f, 1.0f));
  EXPECT_FALSE(Box(-0.1f, -0.1f, 0.5f, 0.1f, 0.1f, 0.999f));
  // Outside the left and the top plane in part, wholly outside neither.
  EXPECT_TRUE(Box(-30, 9, 10, -9, 30, 20));
}

TEST_F(Frustum, FovChangeAloneKeepsTheOldPlanes) {
  EXPECT_FALSE(Box(11, -1, 10, 12, 1, 10));
  camera.SetFOV(120.0f);
  EXPECT_FALSE(Box(11, -1, 10, 12, 1, 10));  // planes still those of 90 degrees
  camera.SetPosition(D3DXVECTOR3(0, 0, 0));  // marks the frustum stale
  EXPECT_TRUE(Box(11, -1, 10, 12, 1, 10));
}

}  // namespace
