// Windows: the creation messages, window longs, WM_SIZE at the first showing
// and inside SetWindowPos with its packing, the menu bar's share of the
// window, minimising, closing and destruction.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "Win32TestSupport.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Resources.h"

using namespace win32test;

namespace {

using SizeMessages = std::vector<std::pair<WPARAM, LPARAM>>;

class Windows : public ::testing::Test {
 protected:
  void SetUp() override { StartScripted(); }
  void TearDown() override {
    if (IsWindow(m_hWnd)) DestroyWindow(m_hWnd);
  }
  // The WM_SIZE messages received so far: (wParam, lParam).
  static SizeMessages Sizes() {
    SizeMessages sizes;
    for (const Received& received : Log())
      if (received.message == WM_SIZE) sizes.emplace_back(received.wParam, received.lParam);
    return sizes;
  }
  HWND m_hWnd = nullptr;
};

TEST_F(Windows, CreationSendsNcCreateThenCreateWithTheParameterAndTheTitleReadsBack) {
  EXPECT_EQ(CreateWindowExA(0, "no-such-class", "x", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr), nullptr);
  int owner = 0;
  m_hWnd = MakeWindow(&owner);
  EXPECT_EQ(Messages(), (std::vector<UINT>{WM_NCCREATE, WM_CREATE})) << "no WM_SIZE before the window is shown";
  EXPECT_EQ(Log()[1].createParam, &owner);
  EXPECT_EQ(SetWindowLongA(m_hWnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(&owner)), 0);
  EXPECT_EQ(reinterpret_cast<int*>(GetWindowLongA(m_hWnd, GWL_USERDATA)), &owner);

  ASSERT_TRUE(SetWindowTextA(m_hWnd, "Karvo Terrain :: Marnovets P.D."));
  char title[64], shortTitle[6];
  EXPECT_EQ(GetWindowTextA(m_hWnd, title, sizeof title), 31);
  EXPECT_STREQ(title, "Karvo Terrain :: Marnovets P.D.");
  EXPECT_EQ(GetWindowTextA(m_hWnd, shortTitle, sizeof shortTitle), 5);
  EXPECT_STREQ(shortTitle, "Karvo");
}

TEST_F(Windows, WmSizeComesAtTheFirstShowingAndInsideSetWindowPosOnlyForANewSize) {
  m_hWnd = MakeWindow();
  EXPECT_FALSE(ShowWindow(m_hWnd, SW_SHOW));
  EXPECT_TRUE(ShowWindow(m_hWnd, SW_SHOW));  // the same size again tells nothing new
  ASSERT_TRUE(SetWindowPos(m_hWnd, HWND_NOTOPMOST, 50, 50, 400, 400, SWP_SHOWWINDOW | SWP_NOACTIVATE));
  SetWindowPos(m_hWnd, nullptr, 0, 0, 400, 400, SWP_NOZORDER);  // a move alone
  ShowWindow(m_hWnd, SW_MINIMIZE);
  EXPECT_TRUE(win32::IsMinimized(m_hWnd));
  ShowWindow(m_hWnd, SW_RESTORE);
  EXPECT_EQ(Sizes(), (SizeMessages{{SIZE_RESTORED, MAKELPARAM(1200, 700)},
                                   {SIZE_RESTORED, MAKELPARAM(400, 400)},
                                   {SIZE_MINIMIZED, 0},
                                   {SIZE_RESTORED, MAKELPARAM(400, 400)}}));
}

TEST_F(Windows, TheMenuBarTakesItsShareOfTheClientArea) {
  static const win32::MenuEntry kMenu[] = {{win32::MenuEntryKind::Popup, 0, "&File"},
                                           {win32::MenuEntryKind::Item, 40006, "E&xit"},
                                           {win32::MenuEntryKind::End, 0, nullptr}};
  ASSERT_TRUE(win32::RegisterMenuResource(900, kMenu, 3));
  m_hWnd = MakeWindow();
  HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(900));
  ASSERT_TRUE(SetMenu(m_hWnd, menu));
  ShowWindow(m_hWnd, SW_SHOW);
  const int bar = win32::MenuBarHeight(m_hWnd);
  EXPECT_GT(bar, 0);
  SetMenu(m_hWnd, nullptr);  // the way to full screen takes the menu off
  EXPECT_EQ(Sizes(), (SizeMessages{{SIZE_RESTORED, MAKELPARAM(1200, 700 - bar)},  //
                                   {SIZE_RESTORED, MAKELPARAM(1200, 700)}}));
  DestroyMenu(menu);
}

TEST_F(Windows, CloseDestroysByDefaultAndDestroyTellsTheWindow) {
  m_hWnd = MakeWindow();
  SetCapture(m_hWnd);
  Log().clear();
  EXPECT_EQ(SendMessageA(m_hWnd, WM_CLOSE, 0, 0), 0);
  EXPECT_FALSE(IsWindow(m_hWnd));
  const std::vector<UINT> messages = Messages();
  ASSERT_GE(messages.size(), 2u);
  EXPECT_EQ(messages[0], static_cast<UINT>(WM_CLOSE));
  EXPECT_NE(std::find(messages.begin(), messages.end(), static_cast<UINT>(WM_DESTROY)), messages.end());
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_FALSE(DestroyWindow(m_hWnd)) << "a second destruction fails cleanly";
}

}  // namespace
