// The messages a record-only window gets: posted messages in order, then a
// quit, and only then a frame; WM_SIZE at the first showing and inside
// SetWindowPos, only for a new size, with the platform's packing.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/win32/Win32Backend.h"
#include "platform/win32/script/Win32Script.h"

namespace {

using SizeMessages = std::vector<std::pair<WPARAM, LPARAM>>;

SizeMessages s_sizes;  // the WM_SIZE messages the window got

LRESULT CALLBACK RecordSizes(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE) s_sizes.emplace_back(wParam, lParam);
  return DefWindowProcA(hWnd, message, wParam, lParam);
}

// The next message that PeekMessageA takes; message 0 when the queue is empty.
MSG Take(UINT remove = PM_REMOVE) {
  MSG msg{};
  return PeekMessageA(&msg, nullptr, 0, 0, remove) ? msg : MSG{};
}

class WindowMessages : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Enable({.realWindows = false});
    s_sizes.clear();
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = RecordSizes;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "karvo-test";
    RegisterClassA(&windowClass);  // 0 after the first test: the class stays
    m_hWnd = CreateWindowExA(0, "karvo-test", "test", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 1200, 700,
                             nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  }
  void TearDown() override { DestroyWindow(m_hWnd); }
  HWND m_hWnd = nullptr;
};

TEST_F(WindowMessages, PostedMessagesComeInOrderThenQuitThenAFrame) {
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

TEST_F(WindowMessages, WmSizeComesAtTheFirstShowingAndInsideSetWindowPosOnlyForANewSize) {
  EXPECT_TRUE(s_sizes.empty()) << "no WM_SIZE before the window is shown";
  EXPECT_FALSE(ShowWindow(m_hWnd, SW_SHOW));
  EXPECT_TRUE(ShowWindow(m_hWnd, SW_SHOW));  // the same size again tells nothing new
  ASSERT_TRUE(SetWindowPos(m_hWnd, HWND_NOTOPMOST, 50, 50, 400, 400, SWP_SHOWWINDOW | SWP_NOACTIVATE));
  SetWindowPos(m_hWnd, nullptr, 0, 0, 400, 400, SWP_NOZORDER);  // a move alone
  ShowWindow(m_hWnd, SW_MINIMIZE);
  EXPECT_TRUE(win32::IsMinimized(m_hWnd));
  ShowWindow(m_hWnd, SW_RESTORE);
  EXPECT_EQ(s_sizes, (SizeMessages{{SIZE_RESTORED, MAKELPARAM(1200, 700)}, {SIZE_RESTORED, MAKELPARAM(400, 400)},
                                   {SIZE_MINIMIZED, 0}, {SIZE_RESTORED, MAKELPARAM(400, 400)}}));
}

}  // namespace
