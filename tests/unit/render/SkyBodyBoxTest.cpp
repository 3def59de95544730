// The sky box (its build, its six draws and its restores) and the body box
// (its build after the seed, and CPlayer::Render only in third person),
// against a recording device.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <stb/stb_image_write.h>
#include <unistd.h>

#include "platform/crt/crt.h"
#include "AppUnderTest.h"
#include "support/RecordingDevice.h"
#include "terrain/Vertex.h"

using karvo_test::AsFake;
using karvo_test::DeviceCall;
using karvo_test::Ptr;
using karvo_test::RecordingDevice;

namespace {

const char* const kFaces[] = {"Front", "Back", "Left", "Right", "Top", "Bottom"};

// Runs a test inside a fresh folder with Data/SkyBox_*.jpg images, and goes
// back to the old working directory afterwards.
class SkyFolder {
 public:
  SkyFolder()
      : old_(std::filesystem::current_path()),
        dir_(std::filesystem::temp_directory_path() /
             ("karvo-sky-" + std::to_string(getpid()) + "-" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    std::filesystem::create_directories(dir_ / "Data");
    std::filesystem::current_path(dir_);
    const unsigned char pixels[4 * 4 * 3] = {};
    for (const char* face : kFaces)
      stbi_write_jpg((std::string("Data/SkyBox_") + face + ".jpg").c_str(), 4, 4, 3, pixels, 90);
  }
  ~SkyFolder() {
    std::filesystem::current_path(old_);
    std::filesystem::remove_all(dir_);
  }

 private:
  std::filesystem::path old_, dir_;
};

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

TEST_F(Boxes, SkyBoxFacesLookIntoTheCube) {
  SkyFolder folder;
  ASSERT_TRUE(app->BuildSkyBox());
  const CMesh& mesh = app->m_skyMesh;
  const auto& vertexBytes = AsFake(mesh.m_vertexBuffer)->Bytes();
  const auto& indexBytes = AsFake(mesh.m_indexBuffer)->Bytes();
  ASSERT_EQ(vertexBytes.size() + indexBytes.size(), 24u * 30u);
  const auto* vertices = reinterpret_cast<const CTerrainVertex*>(vertexBytes.data());
  const auto* indices = reinterpret_cast<const std::uint16_t*>(indexBytes.data());
  for (int face = 0; face < 6; ++face) {
    // The strip's two triangles (0 1 3) and (1 3 2, drawn as 3 1 2) must be
    // clockwise seen from the centre: the culling of the base state keeps them.
    const std::uint16_t* strip = indices + face * 4;
    const int first = face * 4;
    EXPECT_EQ(std::vector<int>(strip, strip + 4), (std::vector<int>{first, first + 1, first + 3, first + 2}));
    D3DXVECTOR3 corner[3], normal;
    for (int k = 0; k < 3; ++k) corner[k] = {vertices[strip[k]].m_x, vertices[strip[k]].m_y, vertices[strip[k]].m_z};
    const D3DXVECTOR3 ab = corner[1] - corner[0], ac = corner[2] - corner[0];
    EXPECT_LT(D3DXVec3Dot(D3DXVec3Cross(&normal, &ab, &ac), &corner[0]), 0.0f) << kFaces[face] << " faces the centre";
    // Every corner lies on the cube of side 20; the top of the images is up
    // on the four side faces.
    for (int k = 0; k < 4; ++k) EXPECT_EQ(std::abs(vertices[first + k].m_x * vertices[first + k].m_y * vertices[first + k].m_z), 1000.0f);
    EXPECT_TRUE(face >= 4 || (vertices[first].m_y == 10.0f && vertices[first].m_tv == 0.0f)) << kFaces[face];
  }
}

TEST_F(Boxes, MissingSkyImageFailsTheBuildButKeepsTheOthers) {
  SkyFolder folder;
  std::filesystem::remove("Data/SkyBox_Top.jpg");
  EXPECT_FALSE(app->BuildSkyBox());
  for (int face = 0; face < 6; ++face) {
    EXPECT_EQ(app->m_skyTextures[face] == nullptr, face == 4) << kFaces[face];
  }
  app->ReleaseWorld();
  for (IDirect3DTexture9* texture : app->m_skyTextures) EXPECT_EQ(texture, nullptr);
}

TEST_F(Boxes, SkyBoxDrawsSixFacesAroundTheCameraAndRestores) {
  SkyFolder folder;
  ASSERT_TRUE(app->BuildSkyBox());
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
  const CMesh& mesh = app->m_skyMesh;
  std::vector<DeviceCall> expected = {
      transform(100.0f, 900.0f + 1.3f, -50.0f),
      {"SetRenderState", {double(D3DRS_LIGHTING), FALSE}},
      {"SetRenderState", {double(D3DRS_ZWRITEENABLE), FALSE}},
      {"SetSamplerState", {0, double(D3DSAMP_ADDRESSU), double(D3DTADDRESS_CLAMP)}},
      {"SetSamplerState", {0, double(D3DSAMP_ADDRESSV), double(D3DTADDRESS_CLAMP)}},
      {"SetTextureStageState", {1, double(D3DTSS_COLOROP), double(D3DTOP_DISABLE)}},
      {"SetFVF", {0x202}},
      {"SetIndices", {Ptr(mesh.m_indexBuffer)}},
      {"SetStreamSource", {0, Ptr(mesh.m_vertexBuffer), 0, 28}},
  };
  for (int face = 0; face < 6; ++face) {
    expected.push_back({"SetTexture", {0, Ptr(app->m_skyTextures[face])}});
    expected.push_back({"DrawIndexedPrimitive", {double(D3DPT_TRIANGLESTRIP), 0, 0, 24, double(face * 4), 2}});
  }
  expected.push_back({"SetSamplerState", {0, double(D3DSAMP_ADDRESSU), double(D3DTADDRESS_WRAP)}});
  expected.push_back({"SetSamplerState", {0, double(D3DSAMP_ADDRESSV), double(D3DTADDRESS_WRAP)}});
  expected.push_back({"SetRenderState", {double(D3DRS_ZWRITEENABLE), TRUE}});
  expected.push_back(transform(1.0f, 2.0f, 3.0f));
  expected.push_back({"SetTextureStageState", {1, double(D3DTSS_COLOROP), double(D3DTOP_MODULATE)}});
  EXPECT_EQ(device.Calls(), expected);

  // Two passes: stage 1 is off already and stays off.
  app->m_singlePass = false;
  device.ClearLog();
  app->RenderSkyBox();
  EXPECT_EQ(device.Count("SetTextureStageState"), 0u);
  EXPECT_EQ(device.Count("DrawIndexedPrimitive"), 6u);

  // Without a camera there is nothing to stand around.
  app->m_camera = nullptr;
  device.ClearLog();
  app->RenderSkyBox();
  EXPECT_TRUE(device.Calls().empty());
}

// ---- body box ----------------------------------------------------------------------

TEST_F(Boxes, BodyBoxTakesItsColoursFromTheSeededSource) {
  crt::srand(1);
  ASSERT_TRUE(app->BuildBodyBox());
  const CMesh& mesh = app->m_bodyMesh;

  const auto& vertexBytes = AsFake(mesh.m_vertexBuffer)->Bytes();
  const auto& indexBytes = AsFake(mesh.m_indexBuffer)->Bytes();
  ASSERT_EQ(indexBytes.size(), 16u * 2u);
  const auto* vertices = reinterpret_cast<const CVertex*>(vertexBytes.data());
  // rand() gives 41, 18467, 6334 from state 1: spread over 24 bits, opaque.
  EXPECT_EQ(vertices[0].m_diffuse, 0xFF005200u);
  EXPECT_EQ(vertices[1].m_diffuse, 0xFF90471Fu);
  EXPECT_EQ(vertices[2].m_diffuse, 0xFF317C62u);
  // A box 6 wide, 6 deep and 20 high with its foot at 0.
  EXPECT_EQ(mesh.m_boundsMin, D3DXVECTOR3(-3.0f, 0.0f, -3.0f));
  EXPECT_EQ(mesh.m_boundsMax, D3DXVECTOR3(3.0f, 20.0f, 3.0f));
  const std::uint16_t strip[16] = {5, 6, 4, 7, 0, 3, 1, 2, 3, 7, 2, 6, 1, 5, 0, 4};
  EXPECT_EQ(0, std::memcmp(indexBytes.data(), strip, sizeof(strip)));

  // A second build replaces the buffers and takes new colours.
  ASSERT_TRUE(app->BuildBodyBox());
  EXPECT_EQ(device.LiveResources(), 2);
  const auto* again = reinterpret_cast<const CVertex*>(AsFake(app->m_bodyMesh.m_vertexBuffer)->Bytes().data());
  EXPECT_EQ(again[0].m_diffuse, 0xFFD2A5A4u);  // the ninth result, 26962

  device.createsBeforeFailure = 0;
  EXPECT_FALSE(app->BuildBodyBox());
}

TEST_F(Boxes, BodyIsDrawnOnlyInThirdPerson) {
  crt::srand(7);
  ASSERT_TRUE(app->BuildBodyBox());
  CPlayer& player = app->m_player;
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  player.SetPosition(D3DXVECTOR3(2000.0f, 950.0f, 3000.0f));
  player.Rotate(0.0f, 30.0f, 0.0f);
  device.ClearLog();

  player.Render(&device);

  const D3DXVECTOR3& r = player.GetRight();
  const D3DXVECTOR3& u = player.GetUp();
  const D3DXVECTOR3& l = player.GetLook();
  const CMesh& mesh = app->m_bodyMesh;
  const std::vector<DeviceCall> expected = {
      {"SetTransform",
       {double(D3DTS_WORLD), r.x, r.y, r.z, 0, u.x, u.y, u.z, 0, l.x, l.y, l.z, 0, 2000, 940, 3000, 1}},
      {"SetFVF", {0x142}},
      {"SetStreamSource", {0, Ptr(mesh.m_vertexBuffer), 0, 24}},
      {"SetIndices", {Ptr(mesh.m_indexBuffer)}},
      {"SetTexture", {0, 0}},
      {"SetTexture", {1, 0}},
      {"DrawIndexedPrimitive", {double(D3DPT_TRIANGLESTRIP), 0, 0, 8, 0, 14}},
  };
  EXPECT_EQ(device.Calls(), expected);

  // Inside the body the box is not drawn and nothing is touched; nor
  // without a body or a device.
  device.ClearLog();
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
  player.Render(&device);
  ASSERT_TRUE(player.SetCameraMode(CAM_MODE_3RD_PERSON));
  player.Render(nullptr);
  player.SetBodyObject(nullptr);
  player.Render(&device);
  EXPECT_TRUE(device.Calls().empty());
}
