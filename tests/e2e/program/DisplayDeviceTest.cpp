// The display device on the real back end, in the one scripted run: the
// enumeration of the machine, the window and device that OpenDisplay makes,
// and a lost device that is reset and draws the same world again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "ProgramRun.h"
#include "device/VertexProcessingType.h"

namespace program_test {
namespace {

constexpr std::uint32_t kClearColour = 0x79D3FF;

bool Contains(const std::vector<std::uint32_t>& list, std::uint32_t value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

// Largest difference of one colour channel between two pixels.
int ChannelDifference(std::uint32_t a, std::uint32_t b) {
  int largest = 0;
  for (int shift = 0; shift < 24; shift += 8)
    largest = std::max(largest, std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)));
  return largest;
}

TEST(DisplayDevice, TheRealMachineEnumeratesAnAdapterWithADeviceAndOptions) {
  const ProgramRun& run = ProgramRun::Get();
  EXPECT_EQ(run.enumerateResult, S_OK);
  ASSERT_GE(run.adapterCount, 1u);
  EXPECT_FALSE(run.firstAdapterModes.empty());
  EXPECT_GE(run.firstAdapterDevices, 1u);
  ASSERT_FALSE(run.options.empty());

  bool windowedOnTheDesktop = false;
  for (const OptionSummary& option : run.options) {
    windowedOnTheDesktop |= option.windowed && option.adapterFormat == run.desktopMode.Format;
    EXPECT_GE(option.depthFormats, 1u);
    EXPECT_EQ(option.multiSampleQualities, option.multiSampleTypes);
    EXPECT_FALSE(option.vertexProcessing.empty());
    EXPECT_FALSE(Contains(option.vertexProcessing, MIXED_VP));
    EXPECT_TRUE(Contains(option.vertexProcessing, SOFTWARE_VP));
    EXPECT_TRUE(Contains(option.presentIntervals, D3DPRESENT_INTERVAL_DEFAULT));
    if (option.windowed) {
      EXPECT_FALSE(Contains(option.presentIntervals, D3DPRESENT_INTERVAL_TWO));
      EXPECT_FALSE(Contains(option.presentIntervals, D3DPRESENT_INTERVAL_THREE));
      EXPECT_FALSE(Contains(option.presentIntervals, D3DPRESENT_INTERVAL_FOUR));
    }
  }
  EXPECT_TRUE(windowedOnTheDesktop);
}

TEST(DisplayDevice, OpenDisplayStartsInA1200By700WindowWithTheMenuAndADeviceOfItsClientArea) {
  const ProgramRun& run = ProgramRun::Get();
  EXPECT_EQ(run.windowRect.right - run.windowRect.left, 1200);
  EXPECT_EQ(run.windowRect.bottom - run.windowRect.top, 700);
  EXPECT_EQ(run.sdlWidth, 1200);
  EXPECT_EQ(run.sdlHeight, 700);
  EXPECT_TRUE(run.windowVisible);
  EXPECT_TRUE(run.sdlShown);

  // The menu is attached in a window and takes the top of it; the client
  // area below is the viewport and the back buffer.
  EXPECT_GT(run.menuBarHeight, 0);
  EXPECT_EQ(run.clientRect.left, 0);
  EXPECT_EQ(run.clientRect.top, 0);
  EXPECT_EQ(run.clientRect.right, 1200);
  EXPECT_EQ(run.clientRect.bottom, 700 - run.menuBarHeight);
  EXPECT_EQ(run.viewWidth, 1200u);
  EXPECT_EQ(run.viewHeight, std::uint32_t(700 - run.menuBarHeight));
  EXPECT_EQ(run.backBufferWidth, 1200u);
  EXPECT_EQ(run.backBufferHeight, UINT(700 - run.menuBarHeight));

  // Window settings on the desktop's mode; the full-screen set was prepared
  // too, on one of the adapter's modes of its own format.
  EXPECT_TRUE(run.settings.m_windowed);
  const CD3DDisplaySettings& windowed = run.settings.m_windowedSettings;
  EXPECT_EQ(windowed.m_displayMode.Format, run.desktopMode.Format);
  EXPECT_EQ(windowed.m_displayMode.Width, run.desktopMode.Width);
  EXPECT_EQ(windowed.m_backBufferFormat, run.desktopMode.Format);
  const D3DDISPLAYMODE& full = run.settings.m_fullscreenSettings.m_displayMode;
  bool known = false;
  for (const D3DDISPLAYMODE& mode : run.firstAdapterModes)
    known |= mode.Width == full.Width && mode.Height == full.Height &&
             mode.RefreshRate == full.RefreshRate && mode.Format == full.Format;
  EXPECT_TRUE(known) << full.Width << "x" << full.Height << " @" << full.RefreshRate;
}

TEST(DisplayDevice, ALostDeviceSkipsFramesUntilItCanBeResetThenDrawsTheSameWorld) {
  const ProgramRun& run = ProgramRun::Get();
  const FrameRecord* loss = run.At(kLossAt);
  const FrameRecord* reset = run.At(kResetAllowedAt);
  const FrameRecord* drawn = run.At(kRestoreAt);
  ASSERT_TRUE(loss && reset && drawn);
  EXPECT_FALSE(loss->deviceLost);
  EXPECT_EQ(run.levelWhileLost, D3DERR_DEVICELOST);
  EXPECT_EQ(run.levelOnceAllowed, D3DERR_DEVICENOTRESET);

  // From the failed Present on, frames end before input and drawing: nothing
  // is presented and the held Up key moves nothing.
  const FrameRecord* failed = run.At(kLossAt + 1);
  ASSERT_NE(failed, nullptr);
  for (std::uint32_t frame = kLossAt + 1; frame <= kResetAllowedAt; ++frame) {
    const FrameRecord* r = run.At(frame);
    ASSERT_NE(r, nullptr);
    EXPECT_TRUE(r->deviceLost) << "frame " << frame;
    EXPECT_EQ(r->presents, loss->presents) << "frame " << frame;
    EXPECT_EQ(r->position, failed->position) << "frame " << frame;
  }
  // The frame in which the reset was possible reset, and drew.
  EXPECT_FALSE(drawn->deviceLost);
  EXPECT_EQ(drawn->presents, reset->presents + 1);

  // ResetDisplay puts a window at (50, 50), 400 by 400; the device draws
  // its client area.
  EXPECT_EQ(run.windowAfterReset.left, 50);
  EXPECT_EQ(run.windowAfterReset.top, 50);
  EXPECT_EQ(run.windowAfterReset.right, 450);
  EXPECT_EQ(run.windowAfterReset.bottom, 450);
  EXPECT_EQ(run.afterReset.width, UINT(run.clientAfterReset.right));
  EXPECT_EQ(run.afterReset.height, UINT(run.clientAfterReset.bottom));
  std::set<std::uint32_t> colours;
  std::size_t clear = 0;
  for (std::uint32_t pixel : run.afterReset.argb) {
    colours.insert(pixel & 0xFFFFFF);
    clear += (pixel & 0xFFFFFF) == kClearColour;
  }
  EXPECT_GT(colours.size(), 500u);  // sky and textured ground, not a flat fill
  EXPECT_LT(clear, run.afterReset.argb.size() / 100);

  // Back at its former size, the window shows what it showed before the
  // loss: the ground's textures and buffers came through the reset. The
  // world's figures and rain move by frame, so a few pixels may differ.
  EXPECT_EQ(run.smallWindowRect.right - run.smallWindowRect.left, kSmallWidth);
  EXPECT_EQ(run.beforeLoss.width, UINT(kSmallWidth));  // the user's resize reached the device
  EXPECT_EQ(run.beforeLoss.height, UINT(kSmallHeight - run.menuBarHeight));
  ASSERT_EQ(run.afterRestore.width, run.beforeLoss.width);
  ASSERT_EQ(run.afterRestore.height, run.beforeLoss.height);
  ASSERT_FALSE(run.beforeLoss.argb.empty());
  std::size_t differing = 0;
  for (std::size_t i = 0; i < run.beforeLoss.argb.size(); ++i)
    differing += ChannelDifference(run.beforeLoss.argb[i], run.afterRestore.argb[i]) > 8;
  EXPECT_LT(differing, run.beforeLoss.argb.size() / 100) << differing << " pixels differ";
}

}  // namespace
}  // namespace program_test
