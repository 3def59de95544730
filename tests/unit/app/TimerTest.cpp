// CTimer on the scripted fixed-step clock: each frame boundary moves the
// counter by exactly the step that the test sets.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "app/Timer.h"
#include "platform/win32/script/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

TEST(Timer, MeanRateAndRateTextAfterRunsOfFramesFromAFreshTimer) {
  using Runs = std::vector<std::pair<double, int>>;  // frame length, count
  const struct { Runs runs; float elapsed; unsigned rate; } cases[] = {
      {{{1.5, 1}}, 0.0f, 0},  // the first tick after a long start is not recorded
      {{{1.0, 1}}, 0.0f, 0},  {{{0.999, 1}}, 0.999f, 0},  // a full second from the mean is out
      {{{1.5, 1}, {0.02, 1}}, 0.02f, 0},
      {{{1.5, 5}}, 0.0f, 0},  // with nothing recorded the rate stays 0
      {{{0.02, 1}, {2.0, 1}}, 0.02f, 0},  // a stall stays out of the mean...
      {{{0.02, 1}, {2.0, 1}, {0.04, 1}}, 0.03f, 0},  // ...and the next frame measures only itself
      {{{0.01, 3}, {1.2, 20}}, 0.01f, 0},  // a second beyond the mean: it never adapts
      {{{0.01, 1}, {0.02, 1}, {0.06, 1}}, 0.03f, 0},  // over three frames, not fifty
      {{{0.05, 10}, {0.01, 49}}, (0.05f + 49 * 0.01f) / 50, 26},
      {{{0.05, 10}, {0.01, 50}}, 0.01f, 26},  // the last 0.05 has fallen out
      // The rate window sums the mean, not the clock: after frame n it holds
      // n - 1 means, and a 3-second stall adds one more mean, not 3 seconds.
      {{{0.125, 3}, {3.0, 1}, {0.125, 5}}, 0.125f, 0},
      {{{0.125, 3}, {3.0, 1}, {0.125, 6}}, 0.125f, 10},
      {{{0.125, 3}, {3.0, 1}, {0.125, 15}}, 0.125f, 9},  // the next window counts from one
      {{{0.01, 102}}, 0.01f, 102},  // a window of 0.01 s means closes at frame 102
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    win32::script::Enable({.realWindows = false});
    CTimer timer;
    for (const auto& [seconds, count] : c.runs)
      for (int i = 0; i < count; ++i) {  // each frame's boundary moves the clock by `seconds`
        win32::script::SetFixedStep(seconds);
        for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);) {
        }
        timer.Tick(0.0f);
      }
    EXPECT_NEAR(timer.GetTimeElapsed(), c.elapsed, 1e-6f);
    char text[16] = "unchanged";
    EXPECT_EQ(timer.GetFrameRate(text), c.rate);
    EXPECT_EQ(text, std::to_string(c.rate) + " FPS");
  }
}

}  // namespace
