// The life of the process in one scripted run: the window title before and
// after the first frame rate, the order of messages and frames in RunLoop,
// the end by Escape with exit code 0, and what Shutdown leaves.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

#include "ProgramRun.h"

namespace program_test {
namespace {

constexpr const char* kStartTitle = "Karvo Terrain :: Marnovets P.D.";

// The title as it should read for a rate and a position: x, z, then the
// height, each with six decimals.
std::string ExpectedTitle(std::uint32_t rate, const D3DXVECTOR3& position) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(6) << "Karvo Terrain - Marnovets P.D.  : " << rate
       << " FPS  : " << position.x << " : " << position.z << " : " << position.y;
  return text.str();
}

TEST(Lifecycle, TitleKeepsTheStartTextUntilTheFirstRateThenShowsRateXZAndHeight) {
  const ProgramRun& run = ProgramRun::Get();
  ASSERT_GT(run.frames.size(), 100u);
  EXPECT_EQ(run.startTitle, kStartTitle);

  // The first change comes with the first rate (when the rate window closes
  // is the timer's unit test).
  std::size_t first = 0;
  for (std::size_t i = 1; i < run.frames.size() && first == 0; ++i)
    if (run.frames[i].title != kStartTitle) first = i;
  ASSERT_NE(first, 0u) << "the title never changed";
  const FrameRecord &before = run.frames[first - 1], &after = run.frames[first];
  // Every tick so far counts, frames 0 to before.frame; the title shows the
  // position the frame started with (the end of the one before).
  const D3DXVECTOR3& p = before.position;
  ASSERT_NE(p.x, p.z) << "x and z must differ for the order to show";
  EXPECT_EQ(after.title, ExpectedTitle(before.frame + 1, p));

  // From then on the title changes exactly when the whole-number rate does.
  for (std::size_t i = first + 1; i < run.frames.size(); ++i) {
    const FrameRecord &previous = run.frames[i - 1], &current = run.frames[i];
    EXPECT_EQ(current.title, current.frameRate == previous.frameRate
                                 ? previous.title
                                 : ExpectedTitle(current.frameRate, previous.position))
        << "frame " << previous.frame;
  }
}

TEST(Lifecycle, MessagesGoBeforeFramesAndEscapeEndsTheLoopBeforeTheNextFrame) {
  const ProgramRun& run = ProgramRun::Get();
  for (const std::string& problem : run.problems) ADD_FAILURE() << problem;
  ASSERT_NE(run.escapeFrame, 0u);

  // Escape's key message went before its frame: the quit it posted was
  // found at once, so the frame never started.
  EXPECT_EQ(run.framesStarted, run.escapeFrame);
  EXPECT_EQ(run.frames.back().frame, run.escapeFrame - 1);

  // One frame between two boundaries, never more, however many key
  // messages were dispatched there. (What a lost device presents is the
  // display device test's.)
  for (std::size_t i = 1; i < run.frames.size(); ++i) ASSERT_EQ(run.frames[i].frame, run.frames[i - 1].frame + 1);
}

TEST(Lifecycle, NormalEndGivesZeroAndShutdownLeavesNothingBehind) {
  const ProgramRun& run = ProgramRun::Get();
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(run.deviceReleased && run.direct3DReleased && run.windowHandleCleared && run.windowGone);
  EXPECT_TRUE(run.terrainReleased);
  EXPECT_TRUE(run.shutdownAgain);  // a second Shutdown finds nothing to do and still succeeds
}

}  // namespace
}  // namespace program_test
