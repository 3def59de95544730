// The display device on the real back end, in the one scripted run: a lost
// device skips its frames until it can be reset, then draws. (The window and
// device of the start are the menu bar test's; that managed textures and
// buffers come through a reset is the GL device's back buffer test, and that
// a reset is followed by the render states the window procedure's.)
#include <gtest/gtest.h>

#include "ProgramRun.h"

namespace program_test {
namespace {

TEST(DisplayDevice, ALostDeviceSkipsFramesUntilItCanBeResetThenDraws) {
  const ProgramRun& run = ProgramRun::Get();
  const FrameRecord *loss = run.At(kLossAt), *allowed = run.At(kResetAllowedAt), *drawn = run.At(kDrawnAt);
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
}

}  // namespace
}  // namespace program_test
