// CTimer on the scripted fixed-step clock: each frame boundary moves the
// counter by exactly the step that the test sets.
#include <gtest/gtest.h>

#include "app/Timer.h"
#include "platform/win32/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

// Lets `seconds` pass on the scripted clock: one frame boundary.
void Pass(double seconds) {
  win32::script::SetFixedStep(seconds);
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
  }
}

class Timer : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Options options;
    options.realWindows = false;
    win32::script::Enable(options);
  }
  // Ticks after each of the given frame lengths.
  void Frames(CTimer& timer, double seconds, int count) {
    for (int i = 0; i < count; ++i) {
      Pass(seconds);
      timer.Tick(0.0f);
    }
  }
};

TEST_F(Timer, FirstTickAfterALongStartIsNotRecorded) {
  CTimer timer;
  EXPECT_EQ(timer.GetTimeElapsed(), 0.0f);
  Frames(timer, 1.5, 1);
  EXPECT_EQ(timer.GetTimeElapsed(), 0.0f);
  Frames(timer, 0.02, 1);
  EXPECT_NEAR(timer.GetTimeElapsed(), 0.02f, 1e-6f);
}

TEST_F(Timer, AStallDoesNotEnterTheMeanAndTheNextFrameMeasuresOnlyItself) {
  CTimer timer;
  Frames(timer, 0.02, 1);
  Frames(timer, 2.0, 1);
  EXPECT_NEAR(timer.GetTimeElapsed(), 0.02f, 1e-6f);
  Frames(timer, 0.04, 1);
  EXPECT_NEAR(timer.GetTimeElapsed(), 0.03f, 1e-6f);
}

TEST_F(Timer, FramesLongerThanASecondBeyondTheMeanNeverAdapt) {
  CTimer timer;
  Frames(timer, 0.01, 3);
  Frames(timer, 1.2, 20);
  EXPECT_NEAR(timer.GetTimeElapsed(), 0.01f, 1e-6f);
}

TEST_F(Timer, TheMeanIsOverTheFramesThereAreUpToFifty) {
  CTimer timer;
  Frames(timer, 0.010, 1);
  Frames(timer, 0.020, 1);
  Frames(timer, 0.060, 1);
  EXPECT_NEAR(timer.GetTimeElapsed(), 0.030f, 1e-6f);  // over three, not fifty

  CTimer full;
  Frames(full, 0.05, 10);
  Frames(full, 0.01, 49);
  EXPECT_NEAR(full.GetTimeElapsed(), (0.05f + 49 * 0.01f) / 50, 1e-6f);
  Frames(full, 0.01, 1);  // the last 0.05 falls out
  EXPECT_NEAR(full.GetTimeElapsed(), 0.01f, 1e-6f);
}

TEST_F(Timer, TheRateWindowSumsTheMeanNotTheClock) {
  CTimer timer;
  // 0.125 s frames: after frame n the window holds n - 1 means (the mean as
  // the previous Tick left it), so it passes one second at frame 10.
  Frames(timer, 0.125, 3);
  // A 3-second stall adds one more mean, not 3 seconds: no rate yet.
  Frames(timer, 3.0, 1);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 0u);
  Frames(timer, 0.125, 5);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 0u);
  Frames(timer, 0.125, 1);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 10u);
  // The next window starts empty and counts again from one.
  Frames(timer, 0.125, 8);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 10u);
  Frames(timer, 0.125, 1);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 9u);
}

TEST_F(Timer, WithNoFrameRecordedTheRateStaysZero) {
  CTimer timer;
  Frames(timer, 1.5, 5);
  EXPECT_EQ(timer.GetTimeElapsed(), 0.0f);
  EXPECT_EQ(timer.GetFrameRate(nullptr), 0u);
}

TEST_F(Timer, FrameRateText) {
  CTimer timer;
  char text[16] = "unchanged";
  EXPECT_EQ(timer.GetFrameRate(text), 0u);
  EXPECT_STREQ(text, "0 FPS");
  Frames(timer, 0.01, 102);  // a window of 0.01 s means closes at frame 102
  ASSERT_EQ(timer.GetFrameRate(nullptr), 102u);
  EXPECT_EQ(timer.GetFrameRate(text), 102u);
  EXPECT_STREQ(text, "102 FPS");
}

}  // namespace
