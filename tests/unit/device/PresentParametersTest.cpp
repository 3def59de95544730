// Present parameters from the set in force: a window leaves size and rate to
// the device, full screen takes the display mode.
#include <gtest/gtest.h>

#include <cstring>

#include "device/D3DInitialize.h"

namespace {

TEST(PresentParameters, FromTheSetInForce) {
  CD3DSettings settings{};
  settings.m_windowedSettings = {0, {1600, 1000, 60, D3DFMT_X8R8G8B8}, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8,
                                 D3DFMT_D24S8, D3DMULTISAMPLE_4_SAMPLES, 2, HARDWARE_VP, D3DPRESENT_INTERVAL_ONE};
  settings.m_fullscreenSettings = {0, {1280, 800, 75, D3DFMT_R5G6B5}, D3DDEVTYPE_HAL, D3DFMT_R5G6B5, D3DFMT_D16,
                                   D3DMULTISAMPLE_NONE, 0, HARDWARE_VP, D3DPRESENT_INTERVAL_IMMEDIATE};
  const struct {
    bool windowed;
    DWORD flags;
    UINT width, height, rate;
    D3DFORMAT format, depth;
    D3DMULTISAMPLE_TYPE samples;
    DWORD quality;
    UINT interval;
  } cases[] = {
      {true, 0, 0, 0, 0, D3DFMT_X8R8G8B8, D3DFMT_D24S8, D3DMULTISAMPLE_4_SAMPLES, 2, D3DPRESENT_INTERVAL_ONE},
      {false, 0x1, 1280, 800, 75, D3DFMT_R5G6B5, D3DFMT_D16, D3DMULTISAMPLE_NONE, 0, D3DPRESENT_INTERVAL_IMMEDIATE},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.windowed ? "windowed" : "full screen");
    settings.m_windowed = c.windowed;
    D3DPRESENT_PARAMETERS params;
    std::memset(&params, 0xAB, sizeof params);
    CD3DInitialize().BuildPresentParameters(params, settings, c.flags);
    EXPECT_EQ(params.BackBufferWidth, c.width);
    EXPECT_EQ(params.BackBufferHeight, c.height);
    EXPECT_EQ(params.FullScreen_RefreshRateInHz, c.rate);
    EXPECT_EQ(params.BackBufferFormat, c.format);
    EXPECT_EQ(params.BackBufferCount, 1u);
    EXPECT_EQ(params.MultiSampleType, c.samples);
    EXPECT_EQ(params.MultiSampleQuality, c.quality);
    EXPECT_EQ(params.SwapEffect, D3DSWAPEFFECT_DISCARD);
    EXPECT_EQ(params.hDeviceWindow, nullptr);
    EXPECT_EQ(params.Windowed, BOOL(c.windowed));
    EXPECT_EQ(params.EnableAutoDepthStencil, TRUE);
    EXPECT_EQ(params.AutoDepthStencilFormat, c.depth);
    EXPECT_EQ(params.Flags, c.flags | D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL);
    EXPECT_EQ(params.PresentationInterval, c.interval);
  }
}

}  // namespace
