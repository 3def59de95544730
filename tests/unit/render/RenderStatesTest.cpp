// ValidateRenderOptions on scripted device caps, ApplyRenderStates against a
// recording device, and the menu marks that UpdateMenuChecks leaves.
#include <gtest/gtest.h>

#include <vector>

#include "AppUnderTest.h"
#include "CapsDirect3D.h"
#include "support/RecordingDevice.h"
#include "view/Cam1stPerson.h"

using karvo_test::DeviceCall;
using karvo_test::RecordingDevice;

namespace {

class RenderStates : public ::testing::Test {
 protected:
  void SetUp() override {
    app->m_d3d = &d3d;
    app->m_device = &device;
  }
  void TearDown() override {
    app->m_d3d = nullptr;
    app->m_device = nullptr;
    app->m_camera = nullptr;
  }

  CapsDirect3D d3d;
  RecordingDevice device;
  AppUnderTest app;
};

DeviceCall RS(D3DRENDERSTATETYPE state, DWORD value) { return {"SetRenderState", {double(state), double(value)}}; }
DeviceCall SS(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
  return {"SetSamplerState", {double(sampler), double(type), double(value)}};
}
DeviceCall TSS(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
  return {"SetTextureStageState", {double(stage), double(type), double(value)}};
}

}  // namespace

// ---- ValidateRenderOptions on scripted caps -------------------------------------

TEST_F(RenderStates, OneTextureStageForcesTwoPassesAndGreysSinglePass) {
  d3d.caps.MaxSimultaneousTextures = 1;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_FALSE(app->m_singlePass);
  EXPECT_EQ(app->m_maxTextures, 0u);
  EXPECT_TRUE(app.Greyed(40022));
  EXPECT_FALSE(app.Greyed(40023));  // Multi Pass is never greyed

  app->UpdateMenuChecks();
  EXPECT_TRUE(app.Checked(40023));
  EXPECT_FALSE(app.Checked(40022));
  EXPECT_TRUE(app.RenderStatesPopupGreyed(5));  // Color Blending Ops means nothing in two passes

  d3d.caps.MaxSimultaneousTextures = 4;  // a later device can again, the user chooses it
  app->m_singlePass = true;
  ASSERT_TRUE(app->ValidateRenderOptions());
  app->UpdateMenuChecks();
  EXPECT_EQ(app->m_maxTextures, 4u);
  EXPECT_FALSE(app.Greyed(40022));
  EXPECT_TRUE(app.Checked(40022));
  EXPECT_FALSE(app.RenderStatesPopupGreyed(5));
}

TEST_F(RenderStates, AnisotropyTwelveAllowsUpToEight) {
  d3d.caps.MaxAnisotropy = 12;
  app->m_maxAnisotropy = 16;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_maxAnisotropyLimit, 8u);
  EXPECT_EQ(app->m_maxAnisotropy, 8u);
  for (UINT command = 40039; command <= 40042; ++command) EXPECT_FALSE(app.Greyed(command)) << command;
  for (UINT command = 40043; command <= 40045; ++command) EXPECT_TRUE(app.Greyed(command)) << command;
  app->UpdateMenuChecks();
  EXPECT_TRUE(app.Checked(40042));
  EXPECT_FALSE(app.Checked(40043));

  app->m_maxAnisotropy = 4;  // within the limit: kept
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_maxAnisotropy, 4u);
}

TEST_F(RenderStates, NoAnisotropyGreysTheGroupAndSetsZero) {
  app->UpdateMenuChecks();
  ASSERT_TRUE(app.Checked(40039));  // the start value 1

  d3d.caps.MaxAnisotropy = 0;
  app->ApplyRenderStates();
  EXPECT_EQ(app->m_maxAnisotropyLimit, 0u);
  EXPECT_EQ(app->m_maxAnisotropy, 0u);
  for (UINT command = 40039; command <= 40045; ++command) EXPECT_TRUE(app.Greyed(command)) << command;
  EXPECT_EQ(device.SamplerState(0, D3DSAMP_MAXANISOTROPY), 0u);
  EXPECT_EQ(device.SamplerState(1, D3DSAMP_MAXANISOTROPY), 0u);

  // 0 is no menu value: no item of the group is marked anew.
  app->UpdateMenuChecks();
  EXPECT_TRUE(app.Checked(40039));
  for (UINT command = 40040; command <= 40045; ++command) EXPECT_FALSE(app.Checked(command)) << command;
}

TEST_F(RenderStates, MissingFilterIsReplacedByTheBestNotTheNearest) {
  d3d.caps.TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFANISOTROPIC |
                               D3DPTFILTERCAPS_MAGFPOINT | D3DPTFILTERCAPS_MIPFPOINT;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_minFilter, D3DTEXF_ANISOTROPIC);
  EXPECT_EQ(app->m_magFilter, D3DTEXF_POINT);
  EXPECT_EQ(app->m_mipFilter, D3DTEXF_POINT);
  EXPECT_TRUE(app.Greyed(40033));
  EXPECT_FALSE(app.Greyed(40034));
  EXPECT_FALSE(app.Greyed(40031));  // "None" is never greyed
  EXPECT_FALSE(app.Greyed(40019));

  // A device without any filtering falls back to none, which always works.
  d3d.caps.TextureFilterCaps = 0;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_minFilter, D3DTEXF_NONE);
  EXPECT_EQ(app->m_magFilter, D3DTEXF_NONE);
  EXPECT_EQ(app->m_mipFilter, D3DTEXF_NONE);

  // The correction lasts: a better device later does not bring linear back.
  d3d.caps = CapsDirect3D::FullCaps();
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_minFilter, D3DTEXF_NONE);
}

TEST_F(RenderStates, ColourOpFallsBackInMenuOrderAndFailsWithNone) {
  d3d.caps.TextureOpCaps = D3DTEXOPCAPS_SUBTRACT | D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_MODULATE;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_colorOp, D3DTOP_MODULATE);  // before Add, though Add's value is higher
  EXPECT_TRUE(app.Greyed(40024));
  EXPECT_TRUE(app.Greyed(40029));
  EXPECT_FALSE(app.Greyed(40028));
  app->UpdateMenuChecks();
  EXPECT_TRUE(app.Checked(40028));

  app->m_colorOp = D3DTOP_SUBTRACT;  // supported: kept
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_colorOp, D3DTOP_SUBTRACT);

  d3d.caps.TextureOpCaps = 0;
  EXPECT_FALSE(app->ValidateRenderOptions());
}

TEST_F(RenderStates, TextureFormatsAreSearchedBestFirstOnTheDisplayFormat) {
  d3d.textureFormats = {D3DFMT_R5G6B5, D3DFMT_X8R8G8B8, D3DFMT_A4R4G4B4, D3DFMT_A1R5G5B5};
  app->m_settings.GetCurrentSettings().m_displayMode.Format = D3DFMT_R5G6B5;
  ASSERT_TRUE(app->ValidateRenderOptions());
  EXPECT_EQ(app->m_textureFormat, D3DFMT_X8R8G8B8);
  EXPECT_EQ(app->m_alphaFormat, D3DFMT_A1R5G5B5);
  ASSERT_EQ(d3d.formatQueries.size(), 5u);  // DXT1, X8R8G8B8; DXT3, A8R8G8B8, A1R5G5B5
  for (const auto& query : d3d.formatQueries) {
    EXPECT_EQ(query.adapterFormat, D3DFMT_R5G6B5);
    EXPECT_EQ(query.usage, 0u);
    EXPECT_EQ(query.resource, D3DRTYPE_TEXTURE);
    EXPECT_EQ(query.type, D3DDEVTYPE_HAL);
  }
}

TEST_F(RenderStates, MissingTextureFormatsShowABoxAndFail) {
  d3d.textureFormats = {D3DFMT_A8R8G8B8};
  testing::internal::CaptureStderr();
  EXPECT_FALSE(app->ValidateRenderOptions());
  std::string box = testing::internal::GetCapturedStderr();
  EXPECT_NE(box.find("No valid texture formats could be found."), std::string::npos) << box;
  EXPECT_NE(box.find("Error."), std::string::npos) << box;

  d3d.textureFormats = {D3DFMT_X1R5G5B5};
  testing::internal::CaptureStderr();
  EXPECT_FALSE(app->ValidateRenderOptions());
  box = testing::internal::GetCapturedStderr();
  EXPECT_NE(box.find("No valid alpha texture formats could be found."), std::string::npos) << box;
}

TEST_F(RenderStates, FailedValidationLeavesTheDeviceAlone) {
  d3d.capsFail = true;
  testing::internal::CaptureStderr();
  app->ApplyRenderStates();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // no box for a caps failure
  EXPECT_TRUE(device.Calls().empty());

  d3d.capsFail = false;
  d3d.caps.TextureOpCaps = 0;
  app->ApplyRenderStates();
  EXPECT_TRUE(device.Calls().empty());
}

// ---- ApplyRenderStates: the exact base state ------------------------------------

TEST_F(RenderStates, SinglePassBaseStateInOrder) {
  app->m_fillMode = D3DFILL_WIREFRAME;
  app->m_colorOp = D3DTOP_MODULATE2X;
  app->m_mipFilter = D3DTEXF_POINT;
  app->m_maxAnisotropy = 4;
  app->ApplyRenderStates();
  const std::vector<DeviceCall> expected = {
      RS(D3DRS_ZENABLE, D3DZB_TRUE),
      RS(D3DRS_DITHERENABLE, TRUE),
      RS(D3DRS_SHADEMODE, D3DSHADE_GOURAUD),
      RS(D3DRS_CULLMODE, D3DCULL_CCW),
      RS(D3DRS_LIGHTING, FALSE),
      SS(0, D3DSAMP_MINFILTER, D3DTEXF_LINEAR),
      SS(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR),
      SS(0, D3DSAMP_MIPFILTER, D3DTEXF_POINT),
      SS(0, D3DSAMP_MAXANISOTROPY, 4),
      TSS(0, D3DTSS_COLORARG1, D3DTA_TEXTURE),
      TSS(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1),
      TSS(0, D3DTSS_TEXCOORDINDEX, 0),
      TSS(1, D3DTSS_COLORARG1, D3DTA_CURRENT),
      TSS(1, D3DTSS_COLORARG2, D3DTA_TEXTURE),
      TSS(1, D3DTSS_COLOROP, D3DTOP_MODULATE2X),
      TSS(1, D3DTSS_TEXCOORDINDEX, 1),
      SS(1, D3DSAMP_MINFILTER, D3DTEXF_LINEAR),
      SS(1, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR),
      SS(1, D3DSAMP_MIPFILTER, D3DTEXF_POINT),
      SS(1, D3DSAMP_MAXANISOTROPY, 4),
      RS(D3DRS_FILLMODE, D3DFILL_WIREFRAME),
      {"SetFVF", {double(D3DFVF_XYZ | D3DFVF_TEX2)}},
  };
  EXPECT_EQ(device.Calls(), expected);
  EXPECT_TRUE(app->m_terrain.m_singlePass);
}

TEST_F(RenderStates, MultiPassDisablesStageOneAndDropsItsTexture) {
  app->m_singlePass = false;
  app->m_terrain.SetSinglePass(true);
  app->ApplyRenderStates();
  const std::vector<DeviceCall> expected = {
      RS(D3DRS_ZENABLE, D3DZB_TRUE),
      RS(D3DRS_DITHERENABLE, TRUE),
      RS(D3DRS_SHADEMODE, D3DSHADE_GOURAUD),
      RS(D3DRS_CULLMODE, D3DCULL_CCW),
      RS(D3DRS_LIGHTING, FALSE),
      SS(0, D3DSAMP_MINFILTER, D3DTEXF_LINEAR),
      SS(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR),
      SS(0, D3DSAMP_MIPFILTER, D3DTEXF_LINEAR),
      SS(0, D3DSAMP_MAXANISOTROPY, 1),
      TSS(0, D3DTSS_COLORARG1, D3DTA_TEXTURE),
      TSS(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1),
      TSS(0, D3DTSS_TEXCOORDINDEX, 0),
      TSS(1, D3DTSS_COLOROP, D3DTOP_DISABLE),
      {"SetTexture", {1, 0}},
      RS(D3DRS_FILLMODE, D3DFILL_SOLID),
      {"SetFVF", {double(D3DFVF_XYZ | D3DFVF_TEX2)}},
  };
  EXPECT_EQ(device.Calls(), expected);
  EXPECT_FALSE(app->m_terrain.m_singlePass);
}

TEST_F(RenderStates, CameraGetsViewAndProjectionAndTheMenuItsMarks) {
  // Without a camera (a WM_SIZE during OpenDisplay) the menu keeps its marks.
  app->m_fillMode = D3DFILL_WIREFRAME;
  app->ApplyRenderStates();
  EXPECT_FALSE(app.Checked(40014));
  EXPECT_EQ(device.Count("SetTransform"), 0u);

  CCam1stPerson camera(nullptr);
  app->m_camera = &camera;
  device.ClearLog();
  app->ApplyRenderStates();
  const auto transforms = device.CallsNamed("SetTransform");
  ASSERT_EQ(transforms.size(), 2u);
  EXPECT_EQ(transforms[0].args[0], double(D3DTS_VIEW));
  EXPECT_EQ(transforms[1].args[0], double(D3DTS_PROJECTION));
  EXPECT_FLOAT_EQ(camera.GetNearClip(), 1.01f);
  EXPECT_FLOAT_EQ(camera.GetFarClip(), 5000.0f);
  EXPECT_TRUE(app.Checked(40014));
  EXPECT_TRUE(app.Checked(40033));
  EXPECT_TRUE(app.Checked(40037));
  EXPECT_TRUE(app.Checked(40021));
  EXPECT_TRUE(app.Checked(40024));
  EXPECT_TRUE(app.Checked(40022));
  EXPECT_TRUE(app.Checked(40039));
}

// ---- UpdateMenuChecks: one mark a group ---------------------------------------

TEST_F(RenderStates, EachColourOpMarksItsOwnEntry) {
  const struct {
    D3DTEXTUREOP op;
    UINT command;
  } rows[] = {{D3DTOP_MODULATE, 40028},    {D3DTOP_MODULATE2X, 40029}, {D3DTOP_MODULATE4X, 40030},
              {D3DTOP_ADD, 40026},         {D3DTOP_ADDSIGNED, 40024},  {D3DTOP_ADDSIGNED2X, 40025},
              {D3DTOP_SUBTRACT, 40027}};
  for (const auto& row : rows) {
    app->m_colorOp = row.op;
    app->UpdateMenuChecks();
    for (UINT command = 40024; command <= 40030; ++command) {
      EXPECT_EQ(app.Checked(command), command == row.command) << "op " << row.op << " item " << command;
    }
  }
  // A value outside the list leaves the group's mark where it was.
  app->m_colorOp = D3DTOP_SELECTARG1;
  app->m_minFilter = static_cast<D3DTEXTUREFILTERTYPE>(7);
  app->UpdateMenuChecks();
  EXPECT_TRUE(app.Checked(40027));
  EXPECT_TRUE(app.Checked(40033));
}
