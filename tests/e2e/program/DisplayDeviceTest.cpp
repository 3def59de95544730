// The display device on the real back end, in the one scripted run: a lost
// device that is reset and draws the same world again. (The window and
// device of the start are the menu bar test's.)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ProgramRun.h"

namespace program_test {
namespace {

constexpr std::uint32_t kClearColour = 0x79D3FF;

using Size = std::pair<long, long>;

// Largest difference of one colour channel between two pixels.
int ChannelDifference(std::uint32_t a, std::uint32_t b) {
  int largest = 0;
  for (int shift = 0; shift < 24; shift += 8)
    largest = std::max(largest, std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)));
  return largest;
}

TEST(DisplayDevice, ALostDeviceSkipsFramesUntilItCanBeResetThenDrawsTheSameWorld) {
  const ProgramRun& run = ProgramRun::Get();
  const FrameRecord *loss = run.At(kLossAt), *allowed = run.At(kResetAllowedAt), *drawn = run.At(kRestoreAt);
  const FrameRecord* failed = run.At(kLossAt + 1);
  ASSERT_TRUE(loss && allowed && drawn && failed);
  EXPECT_FALSE(loss->deviceLost);
  EXPECT_EQ(run.levelWhileLost, D3DERR_DEVICELOST);
  EXPECT_EQ(run.levelOnceAllowed, D3DERR_DEVICENOTRESET);

  // From the failed Present on, frames end before input and drawing: nothing
  // is presented and the held Up key moves nothing.
  for (std::uint32_t frame = kLossAt + 1; frame <= kResetAllowedAt; ++frame) {
    const FrameRecord* r = run.At(frame);
    ASSERT_NE(r, nullptr);
    EXPECT_TRUE(r->deviceLost && r->presents == loss->presents && r->position == failed->position)
        << "frame " << frame;
  }
  // The frame in which the reset was possible reset, and drew.
  EXPECT_FALSE(drawn->deviceLost);
  EXPECT_EQ(drawn->presents, allowed->presents + 1);

  // (Where ResetDisplay puts the window is the display unit tests' concern.)
  // Back at its former size, the window shows what it showed before the
  // loss: the ground's textures and buffers came through the reset. The
  // world's figures and rain move by frame, so a few pixels may differ.
  // The user's resize reached the device.
  EXPECT_EQ(Size(run.beforeLoss.width, run.beforeLoss.height), Size(kSmallWidth, kSmallHeight - run.menuBarHeight));
  ASSERT_EQ(Size(run.afterRestore.width, run.afterRestore.height), Size(run.beforeLoss.width, run.beforeLoss.height));
  ASSERT_FALSE(run.beforeLoss.argb.empty());
  EXPECT_LT(std::count_if(run.beforeLoss.argb.begin(), run.beforeLoss.argb.end(),
                          [](std::uint32_t pixel) { return (pixel & 0xFFFFFF) == kClearColour; }),
            long(run.beforeLoss.argb.size() / 100))
      << "a world drawn, not the clear colour";
  std::size_t differing = 0;
  for (std::size_t i = 0; i < run.beforeLoss.argb.size(); ++i)
    differing += ChannelDifference(run.beforeLoss.argb[i], run.afterRestore.argb[i]) > 8;
  EXPECT_LT(differing, run.beforeLoss.argb.size() / 100) << differing << " pixels differ";
}

}  // namespace
}  // namespace program_test
