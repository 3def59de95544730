// Drawing against a recording device, on a fresh application: the render
// options (ValidateRenderOptions on scripted device caps, ApplyRenderStates,
// the menu marks that UpdateMenuChecks leaves), the sky box (its six draws
// around the camera and its restores), the body box (a new build, and
// CPlayer::Render only in third person), and the ground (CTerrain::Render:
// the two texture layers in one pass or two, the per-block frustum test in
// both passes, and the state the second pass leaves behind even when nothing
// was drawn). (The capture tool's command line is tried by every run of the
// draw tests.)
//
// Menu commands: 40013/14 solid/wireframe, 40019-21 mip none/point/linear,
// 40022/23 single/multi pass, 40024-30 ADDSIGNED, ADDSIGNED2X, ADD, SUBTRACT,
// MODULATE, MODULATE2X, MODULATE4X, 40031-34 min and 40035-38 mag none/point/
// linear/anisotropic, 40039-45 anisotropy 1 to 64.
#include <gtest/gtest.h>

#include <stb/stb_image_write.h>

#include <filesystem>
#include <string>
#include <vector>

#include "AppUnderTest.h"
#include "support/FakeDirect3D.h"
#include "support/RecordingDevice.h"
#include "support/WorkDir.h"
#include "terrain/Vertex.h"
#include "view/Cam1stPerson.h"

using Calls = karvo_test::DeviceCalls;
using karvo_test::DeviceCall, karvo_test::Ptr, karvo_test::RS, karvo_test::Tss;

namespace {

class RenderStates : public ::testing::Test {
 protected:
  RenderStates() {
    app->m_d3d = &d3d;
    app->m_device = &device;
  }
  ~RenderStates() override {
    app->ReleaseWorld();
    app->m_d3d = nullptr;
    app->m_device = nullptr;
    app->m_camera = nullptr;
  }

  FakeDirect3D d3d{{FakeDirect3D::GoodAdapter()}};
  karvo_test::RecordingDevice device;
  AppUnderTest app;
  D3DCAPS9& caps = d3d.adapters[0].devices[D3DDEVTYPE_HAL];
};
using Boxes = RenderStates;

}  // namespace

// ---- ValidateRenderOptions on scripted caps -------------------------------------

TEST_F(RenderStates, OneTextureStageForcesTwoPassesAndGreysSinglePass) {
  caps.MaxSimultaneousTextures = 1;
  ASSERT_TRUE(app->ValidateRenderOptions());
  app->UpdateMenuChecks();
  EXPECT_FALSE(app->m_singlePass);
  EXPECT_EQ(app.Greyed(40022, 40023), "10");  // Multi Pass is never greyed
  EXPECT_TRUE(app.RenderStatesPopupGreyed(5));  // Color Blending Ops means nothing in two passes

  caps.MaxSimultaneousTextures = 4;  // a later device can again, the user chooses it
  app->m_singlePass = true;
  ASSERT_TRUE(app->ValidateRenderOptions());
  app->UpdateMenuChecks();
  EXPECT_EQ(app.Greyed(40022, 40023), "00");
  EXPECT_FALSE(app.RenderStatesPopupGreyed(5));
}

TEST_F(RenderStates, AnisotropyIsCutToTheLargestMenuStepTheDeviceHas) {
  const struct {
    DWORD deviceMax, chosen, limit, kept;
    const char *greyed, *checked;
  } cases[] = {
      {12, 16, 8, 8, "0000111", "0001000"},
      {12, 4, 8, 4, "0000111", "0010000"},  // within the limit: kept
      // None at all: the group is grey and 0 is no menu value, so the mark stays.
      {0, 1, 0, 0, "1111111", "1000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.deviceMax);
    caps.MaxAnisotropy = c.deviceMax;
    app->m_maxAnisotropy = c.chosen;
    app->UpdateMenuChecks();
    app->ApplyRenderStates();
    app->UpdateMenuChecks();
    EXPECT_EQ(app->m_maxAnisotropyLimit, c.limit);
    EXPECT_EQ(app->m_maxAnisotropy, c.kept);
    EXPECT_EQ(device.SamplerState(0, D3DSAMP_MAXANISOTROPY), c.kept);
    EXPECT_EQ(device.SamplerState(1, D3DSAMP_MAXANISOTROPY), c.kept);
    EXPECT_EQ(app.Greyed(40039, 40045), c.greyed);
    EXPECT_EQ(app.Checked(40039, 40045), c.checked);
  }
}

TEST_F(RenderStates, MissingFilterIsReplacedByTheBestNotTheNearest) {
  caps.TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFANISOTROPIC | D3DPTFILTERCAPS_MAGFPOINT |
                           D3DPTFILTERCAPS_MIPFPOINT;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_TRUE(app->m_minFilter == D3DTEXF_ANISOTROPIC && app->m_magFilter == D3DTEXF_POINT &&
              app->m_mipFilter == D3DTEXF_POINT);
  EXPECT_EQ(app.Greyed(40019, 40021), "001");  // "None" is never greyed
  EXPECT_EQ(app.Greyed(40031, 40038), "00100011");

  // A device without any filtering falls back to none, which always works.
  caps.TextureFilterCaps = 0;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_magFilter, D3DTEXF_NONE);
}

TEST_F(RenderStates, ColourOpFallsBackInMenuOrderAndFailsWithNone) {
  caps.TextureOpCaps = D3DTEXOPCAPS_SUBTRACT | D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_MODULATE | D3DTEXOPCAPS_ADDSIGNED2X |
                       D3DTEXOPCAPS_MODULATE4X;
  ASSERT_TRUE(app->ValidateRenderOptions());
  app->UpdateMenuChecks();
  EXPECT_EQ(app->m_colorOp, D3DTOP_MODULATE);  // before Add, though Add's value is higher
  EXPECT_EQ(app.Greyed(40024, 40030), "1000010");  // each entry by its own capability, 2X apart from 4X

  app->m_colorOp = D3DTOP_SUBTRACT;  // supported: kept
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_colorOp, D3DTOP_SUBTRACT);

  caps.TextureOpCaps = 0;
  EXPECT_FALSE(app->ValidateRenderOptions());
}

TEST_F(RenderStates, TextureFormatsAreSearchedBestFirstOnTheDisplayFormat) {
  d3d.adapters[0].textureFormats = {D3DFMT_R5G6B5, D3DFMT_X8R8G8B8, D3DFMT_A4R4G4B4, D3DFMT_A1R5G5B5};
  app->m_settings.GetCurrentSettings().m_displayMode.Format = D3DFMT_R5G6B5;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_textureFormat, D3DFMT_X8R8G8B8);
  EXPECT_EQ(app->m_alphaFormat, D3DFMT_A1R5G5B5);
  constexpr D3DFORMAT R5 = D3DFMT_R5G6B5;
  EXPECT_EQ(d3d.formatQueries, (std::vector<std::pair<D3DFORMAT, D3DFORMAT>>{
                                   {R5, D3DFMT_DXT1}, {R5, D3DFMT_X8R8G8B8}, {R5, D3DFMT_DXT3},
                                   {R5, D3DFMT_A8R8G8B8}, {R5, D3DFMT_A1R5G5B5}}));
}

TEST_F(RenderStates, MissingTextureFormatsShowABoxAndFail) {
  const std::pair<D3DFORMAT, const char*> cases[] = {
      {D3DFMT_A8R8G8B8, "Error.: No valid texture formats could be found."},
      {D3DFMT_X1R5G5B5, "Error.: No valid alpha texture formats could be found."}};
  for (const auto& [only, box] : cases) {
    d3d.adapters[0].textureFormats = {only};
    testing::internal::CaptureStderr();
    EXPECT_FALSE(app->ValidateRenderOptions());
    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_NE(written.find(box), std::string::npos) << written;
  }
}

TEST_F(RenderStates, FailedValidationLeavesTheDeviceAlone) {
  caps.TextureOpCaps = 0;
  app->ApplyRenderStates();
  d3d.FailOn(FakeDirect3D::CALL_GetDeviceCaps, D3DERR_NOTAVAILABLE, 0, true);
  testing::internal::CaptureStderr();
  app->ApplyRenderStates();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // no box for a caps failure
  EXPECT_TRUE(device.Calls().empty());
  MSG quit;
  EXPECT_TRUE(PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the run goes on without its states";
}

// ---- ApplyRenderStates --------------------------------------------------------------

TEST_F(RenderStates, StageOneBlendsTheDetailInOnePassAndIsOffInTwo) {
  app->m_singlePass = false;
  app->m_terrain.SetSinglePass(true);
  app->ApplyRenderStates();
  EXPECT_EQ(device.StageState(1, D3DTSS_COLOROP), DWORD(D3DTOP_DISABLE));
  EXPECT_EQ(device.CallsNamed("SetTexture"), (Calls{{"SetTexture", {1, 0}}}));
  EXPECT_FALSE(app->m_terrain.m_singlePass);

  app->m_singlePass = true;
  app->m_fillMode = D3DFILL_WIREFRAME;
  app->m_colorOp = D3DTOP_MODULATE2X;
  app->m_mipFilter = D3DTEXF_POINT;
  app->m_maxAnisotropy = 4;
  app->m_minFilter = D3DTEXF_POINT;  // each sampler value from its own option
  app->ApplyRenderStates();
  EXPECT_EQ(device.StageState(1, D3DTSS_COLOROP), DWORD(D3DTOP_MODULATE2X));
  EXPECT_EQ(device.StageState(1, D3DTSS_TEXCOORDINDEX), 1u);
  for (DWORD stage : {0u, 1u}) {
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MINFILTER), DWORD(D3DTEXF_POINT));
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MAGFILTER), DWORD(D3DTEXF_LINEAR));
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MIPFILTER), DWORD(D3DTEXF_POINT));
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MAXANISOTROPY), 4u);
  }
  EXPECT_EQ(device.RenderState(D3DRS_FILLMODE), DWORD(D3DFILL_WIREFRAME));
  EXPECT_TRUE(app->m_terrain.m_singlePass);
  // The base every drawer starts from: depth tested, dithered, Gouraud, counter-clockwise culling, unlit;
  // stage 0 shows the ground's texture as it is, stage 1 lays the detail over that.
  const std::pair<D3DRENDERSTATETYPE, DWORD> base[] = {{D3DRS_ZENABLE, D3DZB_TRUE}, {D3DRS_DITHERENABLE, TRUE},
      {D3DRS_SHADEMODE, D3DSHADE_GOURAUD}, {D3DRS_CULLMODE, D3DCULL_CCW}, {D3DRS_LIGHTING, FALSE}};
  for (const auto& [state, value] : base) EXPECT_EQ(device.RenderState(state), value) << state;
  EXPECT_TRUE(device.StageState(0, D3DTSS_COLORARG1) == D3DTA_TEXTURE &&
              device.StageState(0, D3DTSS_COLOROP) == D3DTOP_SELECTARG1 &&
              device.StageState(0, D3DTSS_TEXCOORDINDEX) == 0);
  EXPECT_TRUE(device.StageState(1, D3DTSS_COLORARG1) == D3DTA_CURRENT &&
              device.StageState(1, D3DTSS_COLORARG2) == D3DTA_TEXTURE);
}

TEST_F(RenderStates, CameraGetsViewAndProjectionAndTheMenuItsMarks) {
  // Without a camera (a WM_SIZE during OpenDisplay) the menu keeps its marks.
  app->m_fillMode = D3DFILL_WIREFRAME;
  app->ApplyRenderStates();
  EXPECT_EQ(app.Checked(40013, 40014), "00");
  EXPECT_EQ(device.Count("SetTransform"), 0u);

  CCam1stPerson camera(nullptr);
  app->m_camera = &camera;
  device.ClearLog();
  app->ApplyRenderStates();
  EXPECT_EQ(device.Count("SetTransform"), 2u);  // view and projection
  EXPECT_TRUE(camera.GetNearClip() == 1.01f && camera.GetFarClip() == 5000.0f);
  // The start values: linear filters, ADDSIGNED, one pass, anisotropy 1.
  EXPECT_EQ(app.Checked(40013, 40014), "01");
  EXPECT_EQ(app.Checked(40019, 40045), "001" "10" "1000000" "0010" "0010" "1000000");
}

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
  EXPECT_EQ(device.CallsNamed("SetTransform"), (Calls{transform(100.0f, 901.3f, -50.0f), transform(1, 2, 3)}));
  // The depth is not written while the faces draw, and is again afterwards;
  // the address modes go from clamp back to wrap, as the ground needs.
  EXPECT_EQ(device.CallsNamed("SetRenderState"),
            (Calls{RS(D3DRS_LIGHTING, FALSE), RS(D3DRS_ZWRITEENABLE, FALSE), RS(D3DRS_ZWRITEENABLE, TRUE)}));
  EXPECT_EQ(device.SamplerState(0, D3DSAMP_ADDRESSU), DWORD(D3DTADDRESS_WRAP));
  EXPECT_EQ(device.SamplerState(0, D3DSAMP_ADDRESSV), DWORD(D3DTADDRESS_WRAP));
  const auto address = [](DWORD mode) {
    return Calls{{"SetSamplerState", {0, D3DSAMP_ADDRESSU, double(mode)}},
                 {"SetSamplerState", {0, D3DSAMP_ADDRESSV, double(mode)}}};
  };
  EXPECT_EQ(device.CallsNamed("SetSamplerState"), address(D3DTADDRESS_CLAMP) + address(D3DTADDRESS_WRAP));
  const Calls draws = device.CallsNamed("DrawIndexedPrimitive"), textures = device.CallsNamed("SetTexture");
  ASSERT_EQ(draws.size(), 6u);
  for (int face = 0; face < 6; ++face) {
    EXPECT_EQ(draws[face].args, (std::vector<double>{D3DPT_TRIANGLESTRIP, 0, 0, 24, double(face * 4), 2}));
    EXPECT_EQ(textures[face].args[1], Ptr(app->m_skyTextures[face])) << face;
  }
  // Stage 1 is off while the faces draw, so the detail is not laid over the sky.
  EXPECT_EQ(device.CallsNamed("SetTextureStageState"),
            (Calls{Tss(1, D3DTSS_COLOROP, D3DTOP_DISABLE), Tss(1, D3DTSS_COLOROP, D3DTOP_MODULATE)}));

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

TEST_F(Boxes, EachSkyFaceLoadsItsOwnImageAndAllSixAreTriedAfterAFailure) {
  // Face i's image is 2^i pixels wide; Left's is missing, which fails the build and stops no other face.
  const std::filesystem::path home = std::filesystem::current_path();
  const std::filesystem::path folder = test_support::WorkDir("karvo_sky_", "keep");
  std::filesystem::create_directories(folder / "Data");
  const char* const faces[] = {"Front", "Back", "Left", "Right", "Top", "Bottom"};
  const std::string pixels(3u << 5, 'x');
  for (int i = 0; i < 6; ++i) {
    const std::string file = (folder / "Data" / (std::string("SkyBox_") + faces[i] + ".jpg")).string();
    EXPECT_TRUE(i == 2 || stbi_write_png(file.c_str(), 1 << i, 1, 3, pixels.data(), 3 << i)) << file;
  }
  std::filesystem::current_path(folder);
  EXPECT_FALSE(app->BuildSkyBox());
  std::filesystem::current_path(home);
  for (int i = 0; i < 6; ++i) {
    D3DSURFACE_DESC desc{};
    if (app->m_skyTextures[i] != nullptr) app->m_skyTextures[i]->GetLevelDesc(0, &desc);
    EXPECT_EQ(desc.Width, i == 2 ? 0u : 1u << i) << faces[i];
  }
}

// ---- body box ----------------------------------------------------------------------

// The box is built anew with each device, and each build colours it anew.
TEST_F(Boxes, BodyBoxIsDrawnOnlyInThirdPerson) {
  ASSERT_TRUE(app->BuildBodyBox());
  const std::vector<std::uint8_t> first = karvo_test::AsFake(app->m_bodyMesh.m_vertexBuffer)->Bytes();
  ASSERT_TRUE(app->BuildBodyBox());
  EXPECT_EQ(device.LiveResources(), 2) << "a rebuild releases the old buffers";
  EXPECT_NE(karvo_test::AsFake(app->m_bodyMesh.m_vertexBuffer)->Bytes(), first) << "the same corner colours";
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

// ---- the ground ----------------------------------------------------------------------

namespace {

// The application's terrain with three blocks: two in front of the camera
// and one behind it.
class TerrainRender : public RenderStates {
 protected:
  void SetUp() override {
    terrain->SetDevice(&device, true);
    ASSERT_EQ(terrain->AddBlockMeshes(3), 0);
    AddBlock(0, 0.0f, 200.0f);     // ahead
    AddBlock(1, 0.0f, -400.0f);    // behind
    AddBlock(2, 300.0f, 1200.0f);  // ahead, further
    terrain->m_blockPrimitiveCount = 2697;
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_X8R8G8B8, D3DPOOL_MANAGED, &terrain->m_baseTexture, nullptr), 0);
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_X8R8G8B8, D3DPOOL_MANAGED, &terrain->m_detailTexture, nullptr),
              0);

    ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
    player.SetPosition(D3DXVECTOR3(50.0f, 100.0f, 0.0f));
    camera = player.GetCamera();
    camera->SetViewport(0, 0, 640, 480, 1.01f, 5000.0f, nullptr);
    device.ClearLog();
  }
  // A block of two corner vertices whose box spans x0..x0+100, y 0..50, z0..z0+100.
  void AddBlock(std::uint32_t index, float x0, float z0) {
    CMesh* mesh = terrain->m_blockMeshes[index];
    mesh->SetVertexFormat(CTerrainVertex::FVF, sizeof(CTerrainVertex));
    ASSERT_EQ(mesh->AddVertices(2), 0);
    auto* vertices = reinterpret_cast<CTerrainVertex*>(mesh->m_vertices);
    vertices[0] = CTerrainVertex(x0, 0.0f, z0, 0.0f, 0.0f);
    vertices[1] = CTerrainVertex(x0 + 100.0f, 50.0f, z0 + 100.0f, 0.0f, 0.0f);
    ASSERT_EQ(mesh->AddIndices(2), 0);
    mesh->m_indices[0] = 0;
    mesh->m_indices[1] = 1;
    ASSERT_GE(mesh->BuildBuffers(&device, true, true), 0);
  }

  Calls BlockDraw(std::uint32_t index) const {
    const CMesh* mesh = terrain->m_blockMeshes[index];
    return {{"SetStreamSource", {0, Ptr(mesh->m_vertexBuffer), 0, 28}},
            {"SetIndices", {Ptr(mesh->m_indexBuffer)}},
            {"DrawIndexedPrimitive", {double(D3DPT_TRIANGLESTRIP), 0, 0, 1369, 0, 2697}}};
  }
  CTerrain* terrain = &app->m_terrain;
  CPlayer& player = app->m_player;  // owns the camera, which turns about the player
  CCamera* camera = nullptr;
};

}  // namespace

TEST_F(TerrainRender, OnePassDrawsBothTexturesTwoPassesBlendTheDetailOverTheSameBlocks) {
  // Block 1 lies behind the camera and is left out of both passes.
  const Calls blocks = BlockDraw(0) + BlockDraw(2);
  const DeviceCall base{"SetTexture", {0, Ptr(terrain->m_baseTexture)}}, fvf{"SetFVF", {0x202}};
  const Calls one = Calls{base, {"SetTexture", {1, Ptr(terrain->m_detailTexture)}}, fvf} + blocks;
  const Calls two = Calls{base, fvf} + blocks +
                    Calls{{"SetTexture", {0, Ptr(terrain->m_detailTexture)}}, Tss(0, D3DTSS_TEXCOORDINDEX, 1),
                          RS(D3DRS_SRCBLEND, D3DBLEND_DESTCOLOR), RS(D3DRS_DESTBLEND, D3DBLEND_SRCCOLOR),
                          RS(D3DRS_ALPHABLENDENABLE, TRUE)} +
                    blocks + Calls{Tss(0, D3DTSS_TEXCOORDINDEX, 0), RS(D3DRS_ALPHABLENDENABLE, FALSE)};
  for (const bool single : {true, false}) {
    SCOPED_TRACE(single);
    device.ClearLog();
    terrain->SetSinglePass(single);
    terrain->Render(camera);
    // The ground's calls; whatever the scene draws after them is not looked at.
    const Calls& expected = single ? one : two;
    ASSERT_GE(device.Calls().size(), expected.size());
    EXPECT_EQ(Calls(device.Calls().begin(), device.Calls().begin() + std::ptrdiff_t(expected.size())), expected);
  }
}

TEST_F(TerrainRender, NothingVisibleOrNothingBuiltDrawsNothingButTheSecondPassStillCleansUp) {
  player.Rotate(-89.0f, 0.0f, 0.0f);  // up into the sky
  terrain->SetSinglePass(false);
  terrain->Render(camera);
  EXPECT_EQ(device.Count("DrawIndexedPrimitive"), 0u);
  EXPECT_EQ(device.RenderState(D3DRS_ALPHABLENDENABLE), DWORD(FALSE));
  EXPECT_EQ(device.StageState(0, D3DTSS_TEXCOORDINDEX), 0u);

  terrain->ReleaseTerrain();  // drops the blocks and the device
  terrain->SetDevice(&device, true);
  device.ClearLog();
  terrain->Render(camera);
  EXPECT_EQ(device.Count("DrawIndexedPrimitive"), 0u);
}
