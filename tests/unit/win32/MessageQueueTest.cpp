// Message order: posted messages are FIFO, a quit comes after them and
// before the next frame, scripted input arrives before its frame, and the
// fixed-step clock advances once per frame.
#include <gtest/gtest.h>

#include "Win32TestSupport.h"

using namespace win32test;

namespace {

class MessageQueue : public ::testing::Test {
 protected:
  void SetUp() override {
    StartScripted();
    m_hWnd = MakeWindow();
  }
  void TearDown() override {
    if (IsWindow(m_hWnd)) DestroyWindow(m_hWnd);
  }
  HWND m_hWnd = nullptr;
};

TEST_F(MessageQueue, PostedMessagesComeInOrderThenQuitThenAFrame) {
  PostMessageA(m_hWnd, WM_USER + 1, 0, 0);
  PostQuitMessage(7);
  PostMessageA(nullptr, WM_USER + 2, 0, 0);  // posted after the quit, still taken before it
  EXPECT_EQ(Take(PM_NOREMOVE).message, WM_USER + 1u);
  EXPECT_EQ(Take().message, WM_USER + 1u);
  EXPECT_EQ(Take().message, WM_USER + 2u);
  const MSG quit = Take();
  EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(quit.wParam, 7u);
  EXPECT_EQ(win32::script::FramesStarted(), 0u) << "no frame may start while messages wait";
  EXPECT_EQ(Take().message, 0u);
  EXPECT_EQ(win32::script::FramesStarted(), 1u);
}

TEST_F(MessageQueue, ScriptedEventsArriveBeforeTheirFrame) {
  win32::script::KeyDown(0, 'Z');
  win32::script::PostAt(2, WM_USER + 5, 11, 22);
  win32::script::KeyUp(2, 'Z');

  std::vector<MSG> before0;
  EXPECT_EQ(DrainUntilFrame(&before0), std::vector<UINT>{WM_KEYDOWN});  // frame 0 starts
  EXPECT_EQ(before0.at(0).hwnd, m_hWnd);
  EXPECT_TRUE(DrainUntilFrame().empty());  // frame 1: nothing scheduled
  EXPECT_LT(GetKeyState('Z'), 0) << "a key stays held between its events";
  EXPECT_EQ(DrainUntilFrame(), (std::vector<UINT>{WM_USER + 5, WM_KEYUP}));
  EXPECT_EQ(GetKeyState('Z') & 0x8000, 0);
}

TEST_F(MessageQueue, FixedStepClockAdvancesOncePerFrameAndAFrameLimitAsksForQuit) {
  LARGE_INTEGER frequency, before, after;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&before);
  const DWORD msBefore = timeGetTime();
  DrainUntilFrame();
  QueryPerformanceCounter(&after);
  EXPECT_EQ(after.QuadPart - before.QuadPart, frequency.QuadPart / 60 + 1);  // 1/60 s, rounded
  win32::script::SetFixedStep(0.25);
  DrainUntilFrame();
  DrainUntilFrame();
  EXPECT_EQ(timeGetTime() - msBefore, 516u);  // 16.67 ms + 2 x 250 ms

  win32::script::Enable({.realWindows = false, .maxFrames = 2});
  DrainUntilFrame();
  DrainUntilFrame();
  EXPECT_EQ(DrainUntilFrame(), std::vector<UINT>{WM_QUIT});
}

}  // namespace
