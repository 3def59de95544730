// ValidateRenderOptions on scripted device caps, ApplyRenderStates against a
// recording device, and the menu marks that UpdateMenuChecks leaves.
//
// Menu commands: 40013/14 solid/wireframe, 40019-21 mip none/point/linear,
// 40022/23 single/multi pass, 40024-30 ADDSIGNED, ADDSIGNED2X, ADD, SUBTRACT,
// MODULATE, MODULATE2X, MODULATE4X, 40031-34 min and 40035-38 mag none/point/
// linear/anisotropic, 40039-45 anisotropy 1 to 64.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AppUnderTest.h"
#include "support/FakeDirect3D.h"
#include "support/RecordingDevice.h"
#include "view/Cam1stPerson.h"

using Calls = karvo_test::DeviceCalls;

namespace {

class RenderStates : public ::testing::Test {
 protected:
  RenderStates() {
    app->m_d3d = &d3d;
    app->m_device = &device;
  }
  ~RenderStates() override {
    app->m_d3d = nullptr;
    app->m_device = nullptr;
    app->m_camera = nullptr;
  }

  FakeDirect3D d3d{{FakeDirect3D::GoodAdapter()}};
  karvo_test::RecordingDevice device;
  AppUnderTest app;
  D3DCAPS9& caps = d3d.adapters[0].devices[D3DDEVTYPE_HAL];
};

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
  caps.TextureOpCaps = D3DTEXOPCAPS_SUBTRACT | D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_MODULATE;
  ASSERT_TRUE(app->ValidateRenderOptions());
  app->UpdateMenuChecks();
  EXPECT_EQ(app->m_colorOp, D3DTOP_MODULATE);  // before Add, though Add's value is higher
  EXPECT_EQ(app.Greyed(40024, 40030), "1100011");

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
  app->ApplyRenderStates();
  EXPECT_EQ(device.StageState(1, D3DTSS_COLOROP), DWORD(D3DTOP_MODULATE2X));
  EXPECT_EQ(device.StageState(1, D3DTSS_TEXCOORDINDEX), 1u);
  for (DWORD stage : {0u, 1u}) {
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MIPFILTER), DWORD(D3DTEXF_POINT));
    EXPECT_EQ(device.SamplerState(stage, D3DSAMP_MAXANISOTROPY), 4u);
  }
  EXPECT_EQ(device.RenderState(D3DRS_FILLMODE), DWORD(D3DFILL_WIREFRAME));
  EXPECT_TRUE(app->m_terrain.m_singlePass);
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
