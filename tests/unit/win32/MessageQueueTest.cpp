// Message order: posted messages are FIFO, a quit comes after them and
// before the next frame, scripted input arrives before its frame, and the
// fixed-step clock advances once per frame.
#include <gtest/gtest.h>

#include "Win32TestSupport.h"

using namespace win32test;

namespace {

class MessageQueue : public ::testing::Test {
 protected:
  void SetUp() override { StartScripted(); }
  void TearDown() override {
    if (IsWindow(m_hWnd)) DestroyWindow(m_hWnd);
  }
  HWND m_hWnd = nullptr;
};

TEST_F(MessageQueue, PostedMessagesComeInOrderThenQuitThenAFrame) {
  m_hWnd = MakeWindow();
  ASSERT_NE(m_hWnd, nullptr);
  PostMessageA(m_hWnd, WM_USER + 1, 0, 0);
  PostQuitMessage(7);
  PostMessageA(m_hWnd, WM_USER + 2, 0, 0);  // posted after the quit, still taken before it
  EXPECT_EQ(Take().message, WM_USER + 1u);
  EXPECT_EQ(Take().message, WM_USER + 2u);
  const MSG quit = Take();
  EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(quit.wParam, 7u);
  EXPECT_EQ(win32::script::FramesStarted(), 0u) << "no frame may start while messages wait";
  EXPECT_EQ(Take().message, 0u);
  EXPECT_EQ(win32::script::FramesStarted(), 1u);
}

TEST_F(MessageQueue, PeekWithoutRemovalLeavesTheMessageAndStartsNoFrame) {
  PostMessageA(nullptr, WM_USER, 1, 2);  // a thread message
  EXPECT_EQ(Take(PM_NOREMOVE).message, static_cast<UINT>(WM_USER));
  MSG msg = Take();
  EXPECT_EQ(msg.message, static_cast<UINT>(WM_USER));
  EXPECT_EQ(msg.hwnd, nullptr);
  EXPECT_EQ(DispatchMessageA(&msg), 0);
  EXPECT_EQ(Take(PM_NOREMOVE).message, 0u);
  EXPECT_EQ(win32::script::FramesStarted(), 0u);
}

TEST_F(MessageQueue, ScriptedEventsArriveBeforeTheirFrame) {
  m_hWnd = MakeWindow();
  win32::script::KeyDown(0, 'Z');
  win32::script::PostAt(2, WM_USER + 5, 11, 22);
  win32::script::KeyUp(2, 'Z');

  const std::vector<MSG> before0 = DrainUntilFrame();  // frame 0 starts
  EXPECT_EQ(MessagesOf(before0), std::vector<UINT>{WM_KEYDOWN});
  EXPECT_EQ(before0.at(0).wParam, static_cast<WPARAM>('Z'));
  EXPECT_EQ(before0.at(0).hwnd, m_hWnd);
  EXPECT_LT(GetKeyState('Z'), 0);

  EXPECT_TRUE(DrainUntilFrame().empty());  // frame 1: nothing scheduled
  EXPECT_LT(GetKeyState('Z'), 0) << "a key stays held between its events";

  const std::vector<MSG> before2 = DrainUntilFrame();
  EXPECT_EQ(MessagesOf(before2), (std::vector<UINT>{WM_USER + 5, WM_KEYUP}));
  EXPECT_EQ(before2.at(0).lParam, 22);
  EXPECT_EQ(GetKeyState('Z') & 0x8000, 0);
  EXPECT_EQ(win32::script::FramesStarted(), 3u);
}

TEST_F(MessageQueue, HoldKeysReleasesTheOthersAndPressesTheNewOnes) {
  m_hWnd = MakeWindow();
  win32::script::HoldKeys(0, {VK_UP, 'Z'});
  win32::script::HoldKeys(1, {VK_UP, VK_LSHIFT});
  BYTE keys[256];
  DrainUntilFrame();
  ASSERT_TRUE(GetKeyboardState(keys));
  EXPECT_TRUE(keys[VK_UP] & keys['Z'] & 0x80);
  DrainUntilFrame();
  ASSERT_TRUE(GetKeyboardState(keys));
  EXPECT_TRUE(keys[VK_UP] & 0x80);
  EXPECT_FALSE(keys['Z'] & 0x80);
  EXPECT_TRUE(keys[VK_SHIFT] & 0x80) << "the generic shift follows the left one";
  EXPECT_NE(GetKeyState(VK_SHIFT) & 0xFF00, 0);
}

TEST_F(MessageQueue, FixedStepClockAdvancesOncePerFrame) {
  LARGE_INTEGER frequency;
  ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
  LARGE_INTEGER before, after;
  QueryPerformanceCounter(&before);
  const DWORD msBefore = timeGetTime();
  DrainUntilFrame();
  QueryPerformanceCounter(&after);
  EXPECT_EQ(after.QuadPart - before.QuadPart, frequency.QuadPart / 60 + 1);  // 1/60 s, rounded
  win32::script::SetFixedStep(0.25);
  DrainUntilFrame();
  DrainUntilFrame();
  EXPECT_EQ(timeGetTime() - msBefore, 516u);  // 16.67 ms + 2 x 250 ms
}

TEST_F(MessageQueue, FrameLimitAsksForQuit) {
  win32::script::Options options;
  options.realWindows = false;
  options.maxFrames = 2;
  win32::script::Enable(options);
  std::uint32_t callbacks = 0;
  win32::script::SetFrameCallback([&callbacks](std::uint32_t frame) { EXPECT_EQ(frame, callbacks++); });
  DrainUntilFrame();
  DrainUntilFrame();
  EXPECT_EQ(MessagesOf(DrainUntilFrame()), std::vector<UINT>{WM_QUIT});
  EXPECT_EQ(callbacks, 3u);
  win32::script::SetFrameCallback(nullptr);
}

TEST_F(MessageQueue, MouseButtonsAndCursorFollowTheScript) {
  m_hWnd = MakeWindow();
  ShowWindow(m_hWnd, SW_SHOW);
  RECT rect;
  GetWindowRect(m_hWnd, &rect);
  POINT start, now;
  GetCursorPos(&start);
  win32::script::MoveCursor(0, 5, -3);
  win32::script::KeyDown(0, VK_LBUTTON);
  const std::vector<MSG> taken = DrainUntilFrame();
  ASSERT_EQ(MessagesOf(taken), (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN}));
  EXPECT_EQ(taken[1].wParam & MK_LBUTTON, static_cast<WPARAM>(MK_LBUTTON));
  EXPECT_EQ(GET_X_LPARAM(taken[1].lParam), start.x + 5 - rect.left);
  EXPECT_EQ(GET_Y_LPARAM(taken[1].lParam), start.y - 3 - rect.top);
  GetCursorPos(&now);
  EXPECT_EQ(now.x, start.x + 5);
  SetCursorPos(1, 2);
  GetCursorPos(&now);
  EXPECT_EQ(now.y, 2);
}

TEST_F(MessageQueue, MessageBoxWritesToStandardErrorAndDoesNotBlock) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBoxA(nullptr, "Device creation failed.", "Fatal Error!", MB_ICONERROR), IDOK);
  EXPECT_EQ(MessageBoxA(nullptr, "text only", nullptr, MB_OK), IDOK);
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(written.find("Fatal Error!: Device creation failed."), std::string::npos);
  EXPECT_NE(written.find("Error: text only"), std::string::npos);
}

TEST_F(MessageQueue, BadArgumentsFailCleanly) {
  MSG msg = {};
  EXPECT_FALSE(PeekMessageA(nullptr, nullptr, 0, 0, PM_REMOVE));
  EXPECT_FALSE(PostMessageA(reinterpret_cast<HWND>(&msg), WM_USER, 0, 0));
  msg.hwnd = reinterpret_cast<HWND>(&msg);
  msg.message = WM_USER;
  EXPECT_EQ(DispatchMessageA(&msg), 0);
  EXPECT_EQ(SendMessageA(nullptr, WM_USER, 0, 0), 0);
  EXPECT_FALSE(GetKeyboardState(nullptr));
  EXPECT_EQ(GetKeyState(-1), 0);
  EXPECT_EQ(GetKeyState(300), 0);
  EXPECT_FALSE(GetCursorPos(nullptr));
  EXPECT_FALSE(QueryPerformanceCounter(nullptr));
}

}  // namespace
