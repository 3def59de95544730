// Present parameters from the set in force, and what a window leaves to the
// device.
#include <gtest/gtest.h>

#include <cstring>

#include "device/D3DInitialize.h"

namespace {

CD3DSettings TwoSets() {
  CD3DSettings settings{};
  CD3DDisplaySettings& w = settings.m_windowedSettings;
  w.m_displayMode = {1600, 1000, 60, D3DFMT_X8R8G8B8};
  w.m_backBufferFormat = D3DFMT_X8R8G8B8;
  w.m_depthStencilFormat = D3DFMT_D24S8;
  w.m_multiSampleType = D3DMULTISAMPLE_4_SAMPLES;
  w.m_multiSampleQuality = 2;
  w.m_presentInterval = D3DPRESENT_INTERVAL_ONE;
  CD3DDisplaySettings& f = settings.m_fullscreenSettings;
  f.m_displayMode = {1280, 800, 75, D3DFMT_R5G6B5};
  f.m_backBufferFormat = D3DFMT_R5G6B5;
  f.m_depthStencilFormat = D3DFMT_D16;
  f.m_multiSampleType = D3DMULTISAMPLE_NONE;
  f.m_presentInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  return settings;
}

TEST(PresentParameters, WindowLeavesSizeAndRateToTheDevice) {
  CD3DSettings settings = TwoSets();
  settings.m_windowed = true;
  CD3DInitialize init;
  D3DPRESENT_PARAMETERS params;
  std::memset(&params, 0xAB, sizeof params);
  init.BuildPresentParameters(params, settings, 0);
  EXPECT_EQ(params.BackBufferWidth, 0u);
  EXPECT_EQ(params.BackBufferHeight, 0u);
  EXPECT_EQ(params.FullScreen_RefreshRateInHz, 0u);
  EXPECT_EQ(params.BackBufferFormat, D3DFMT_X8R8G8B8);
  EXPECT_EQ(params.BackBufferCount, 1u);
  EXPECT_EQ(params.MultiSampleType, D3DMULTISAMPLE_4_SAMPLES);
  EXPECT_EQ(params.MultiSampleQuality, 2u);
  EXPECT_EQ(params.SwapEffect, D3DSWAPEFFECT_DISCARD);
  EXPECT_EQ(params.hDeviceWindow, nullptr);
  EXPECT_TRUE(params.Windowed);
  EXPECT_TRUE(params.EnableAutoDepthStencil);
  EXPECT_EQ(params.AutoDepthStencilFormat, D3DFMT_D24S8);
  EXPECT_EQ(params.Flags, static_cast<DWORD>(D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL));
  EXPECT_EQ(params.PresentationInterval, static_cast<UINT>(D3DPRESENT_INTERVAL_ONE));
}

TEST(PresentParameters, FullScreenTakesTheDisplayMode) {
  CD3DSettings settings = TwoSets();
  settings.m_windowed = false;
  CD3DInitialize init;
  D3DPRESENT_PARAMETERS params;
  init.BuildPresentParameters(params, settings, 0x1);
  EXPECT_EQ(params.BackBufferWidth, 1280u);
  EXPECT_EQ(params.BackBufferHeight, 800u);
  EXPECT_EQ(params.FullScreen_RefreshRateInHz, 75u);
  EXPECT_EQ(params.BackBufferFormat, D3DFMT_R5G6B5);
  EXPECT_EQ(params.AutoDepthStencilFormat, D3DFMT_D16);
  EXPECT_FALSE(params.Windowed);
  EXPECT_EQ(params.Flags, static_cast<DWORD>(0x1 | D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL));
  EXPECT_EQ(params.PresentationInterval, static_cast<UINT>(D3DPRESENT_INTERVAL_IMMEDIATE));
}

}  // namespace
