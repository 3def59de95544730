// The sky box (its six draws around the camera and its restores) and the
// body box (a new build, and CPlayer::Render only in third person), against
// a recording device.
#include <gtest/gtest.h>

#include <vector>

#include "AppUnderTest.h"
#include "support/RecordingDevice.h"
#include "terrain/Vertex.h"

using karvo_test::AsFake;
using karvo_test::DeviceCall;
using karvo_test::DeviceCalls;
using karvo_test::Ptr;
using karvo_test::RS;
using karvo_test::RecordingDevice;

namespace {

class Boxes : public ::testing::Test {
 protected:
  void SetUp() override { app->m_device = &device; }
  void TearDown() override {
    app->ReleaseWorld();
    app->m_device = nullptr;
    app->m_camera = nullptr;
  }

  RecordingDevice device;
  AppUnderTest app;
};

}  // namespace

// ---- sky box ---------------------------------------------------------------------

TEST_F(Boxes, SkyBoxDrawsSixFacesAroundTheCameraAndRestores) {
  // The cube is built before the images are read (there are none here); the
  // faces get pictures of our own.
  static_cast<void>(app->BuildSkyBox());
  for (IDirect3DTexture9*& texture : app->m_skyTextures)
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_X8R8G8B8, D3DPOOL_MANAGED, &texture, nullptr), 0);
  ASSERT_TRUE(app->m_player.SetCameraMode(CAM_MODE_1ST_PERSON));
  app->m_player.SetPosition(D3DXVECTOR3(100.0f, 900.0f, -50.0f));
  app->m_player.Rotate(20.0f, 40.0f, 0.0f);  // turning the camera turns nothing in the cube
  app->m_camera = app->m_player.GetCamera();
  app->m_colorOp = D3DTOP_MODULATE;
  D3DXMatrixTranslation(&app->m_worldMatrix, 1.0f, 2.0f, 3.0f);
  device.ClearLog();

  app->RenderSkyBox();

  auto transform = [](float x, float y, float z) {
    return DeviceCall{"SetTransform", {double(D3DTS_WORLD), 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1}};
  };
  EXPECT_EQ(device.CallsNamed("SetTransform"), (DeviceCalls{transform(100.0f, 901.3f, -50.0f), transform(1, 2, 3)}));
  // The depth is not written while the faces draw, and is again afterwards;
  // the address modes go from clamp back to wrap, as the ground needs.
  EXPECT_EQ(device.CallsNamed("SetRenderState"),
            (DeviceCalls{RS(D3DRS_LIGHTING, FALSE), RS(D3DRS_ZWRITEENABLE, FALSE), RS(D3DRS_ZWRITEENABLE, TRUE)}));
  EXPECT_EQ(device.SamplerState(0, D3DSAMP_ADDRESSU), DWORD(D3DTADDRESS_WRAP));
  EXPECT_EQ(device.SamplerState(0, D3DSAMP_ADDRESSV), DWORD(D3DTADDRESS_WRAP));
  EXPECT_EQ(device.Count("SetSamplerState"), 4u);
  const DeviceCalls draws = device.CallsNamed("DrawIndexedPrimitive"), textures = device.CallsNamed("SetTexture");
  ASSERT_EQ(draws.size(), 6u);
  for (int face = 0; face < 6; ++face) {
    EXPECT_EQ(draws[face].args, (std::vector<double>{D3DPT_TRIANGLESTRIP, 0, 0, 24, double(face * 4), 2}));
    EXPECT_EQ(textures[face].args[1], Ptr(app->m_skyTextures[face])) << face;
  }
  EXPECT_EQ(device.StageState(1, D3DTSS_COLOROP), DWORD(D3DTOP_MODULATE));

  // Two passes: stage 1 is off already and stays off.
  app->m_singlePass = false;
  device.ClearLog();
  app->RenderSkyBox();
  EXPECT_EQ(device.Count("SetTextureStageState"), 0u);

  // Without a camera there is nothing to stand around.
  app->m_camera = nullptr;
  device.ClearLog();
  app->RenderSkyBox();
  EXPECT_TRUE(device.Calls().empty());
}

// ---- body box ----------------------------------------------------------------------

TEST_F(Boxes, BodyBoxIsDrawnOnlyInThirdPersonAndTakesNewColoursOnEachBuild) {
  ASSERT_TRUE(app->BuildBodyBox());
  const DWORD firstColour = reinterpret_cast<const CVertex*>(AsFake(app->m_bodyMesh.m_vertexBuffer)->Bytes().data())->m_diffuse;
  ASSERT_TRUE(app->BuildBodyBox());
  EXPECT_EQ(device.LiveResources(), 2);
  EXPECT_NE(reinterpret_cast<const CVertex*>(AsFake(app->m_bodyMesh.m_vertexBuffer)->Bytes().data())->m_diffuse,
            firstColour);
  // A box 6 wide, 6 deep and 20 high with its foot at 0.
  EXPECT_EQ(app->m_bodyMesh.m_boundsMin, D3DXVECTOR3(-3.0f, 0.0f, -3.0f));
  EXPECT_EQ(app->m_bodyMesh.m_boundsMax, D3DXVECTOR3(3.0f, 20.0f, 3.0f));

  CPlayer& player = app->m_player;
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  player.SetPosition(D3DXVECTOR3(2000.0f, 950.0f, 3000.0f));
  player.Rotate(0.0f, 30.0f, 0.0f);
  device.ClearLog();
  player.Render(&device);
  // The body turns with the player and stands 10 below the eye.
  const D3DXVECTOR3& r = player.GetRight();
  const D3DXVECTOR3& u = player.GetUp();
  const D3DXVECTOR3& l = player.GetLook();
  EXPECT_EQ(device.CallsNamed("SetTransform").at(0).args,
            (std::vector<double>{D3DTS_WORLD, r.x, r.y, r.z, 0, u.x, u.y, u.z, 0, l.x, l.y, l.z, 0, 2000, 940, 3000, 1}));
  EXPECT_EQ(device.CallsNamed("DrawIndexedPrimitive").at(0).args,
            (std::vector<double>{D3DPT_TRIANGLESTRIP, 0, 0, 8, 0, 14}));

  // Inside the body the box is not drawn and nothing is touched.
  device.ClearLog();
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  player.Render(&device);
  EXPECT_TRUE(device.Calls().empty());
}
