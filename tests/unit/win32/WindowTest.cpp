// Windows: the creation messages, window longs, WM_SIZE at the first showing
// and inside SetWindowPos with its packing, the menu bar's share of the
// window, minimising, closing and destruction.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "Win32TestSupport.h"
#include "platform/win32/Win32Backend.h"
#include "platform/win32/Win32Resources.h"

using namespace win32test;

namespace {

class Windows : public ::testing::Test {
 protected:
  void SetUp() override { StartScripted(); }
  void TearDown() override {
    if (IsWindow(m_hWnd)) DestroyWindow(m_hWnd);
  }
  std::vector<Received> Sizes() const {
    std::vector<Received> sizes;
    for (const Received& received : Log()) {
      if (received.message == WM_SIZE) sizes.push_back(received);
    }
    return sizes;
  }
  HWND m_hWnd = nullptr;
};

TEST_F(Windows, CreationSendsNcCreateThenCreateWithTheParameter) {
  int owner = 0;
  m_hWnd = MakeWindow(&owner);
  ASSERT_NE(m_hWnd, nullptr);
  const std::vector<UINT> expected = {WM_NCCREATE, WM_CREATE};
  EXPECT_EQ(Messages(), expected) << "no WM_SIZE before the window is shown";
  EXPECT_EQ(Log()[0].createParam, &owner);
  EXPECT_EQ(Log()[1].createParam, &owner);
  EXPECT_FALSE(IsWindowVisible(m_hWnd));

  EXPECT_EQ(SetWindowLongA(m_hWnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(&owner)), 0);
  EXPECT_EQ(reinterpret_cast<int*>(GetWindowLongA(m_hWnd, GWL_USERDATA)), &owner);
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongA(m_hWnd, GWL_STYLE)), static_cast<DWORD>(WS_OVERLAPPEDWINDOW));
}

TEST_F(Windows, UnknownClassOrRefusedCreationGivesNoWindow) {
  EXPECT_EQ(CreateWindowExA(0, "no-such-class", "x", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr),
            nullptr);
  WNDCLASSA refusing = {};
  refusing.lpfnWndProc = [](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
    return message == WM_CREATE ? -1 : TRUE;
  };
  refusing.lpszClassName = "karvo-refusing";
  RegisterClassA(&refusing);
  EXPECT_EQ(RegisterClassA(&refusing), 0) << "a class name is registered once";
  EXPECT_EQ(CreateWindowExA(0, "karvo-refusing", "x", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr),
            nullptr);
}

TEST_F(Windows, FirstShowingSendsTheClientSize) {
  m_hWnd = MakeWindow();
  Log().clear();
  EXPECT_FALSE(ShowWindow(m_hWnd, SW_SHOW));
  const std::vector<Received> sizes = Sizes();
  ASSERT_EQ(sizes.size(), 1u);
  EXPECT_EQ(sizes[0].wParam, static_cast<WPARAM>(SIZE_RESTORED));
  EXPECT_EQ(LOWORD(sizes[0].lParam), 1200);
  EXPECT_EQ(HIWORD(sizes[0].lParam), 700);
  EXPECT_TRUE(ShowWindow(m_hWnd, SW_SHOW));
  EXPECT_EQ(Sizes().size(), 1u) << "showing again with the same size tells nothing new";
}

TEST_F(Windows, SetWindowPosDeliversWmSizeInsideTheCall) {
  m_hWnd = MakeWindow();
  ShowWindow(m_hWnd, SW_SHOW);
  Log().clear();
  ASSERT_TRUE(SetWindowPos(m_hWnd, HWND_NOTOPMOST, 50, 50, 400, 400, SWP_SHOWWINDOW | SWP_NOACTIVATE));
  std::vector<Received> sizes = Sizes();  // before any PeekMessageA
  ASSERT_EQ(sizes.size(), 1u);
  EXPECT_EQ(sizes[0].lParam, MAKELPARAM(400, 400));
  RECT rect;
  GetWindowRect(m_hWnd, &rect);
  EXPECT_EQ(rect.left, 50);
  EXPECT_EQ(rect.bottom, 450);

  SetWindowPos(m_hWnd, nullptr, 0, 0, 400, 400, SWP_NOZORDER);
  EXPECT_EQ(Sizes().size(), 1u) << "a move without a new size sends no WM_SIZE";
  SetWindowPos(m_hWnd, nullptr, 0, 0, 1280, 800, SWP_NOZORDER);
  sizes = Sizes();
  ASSERT_EQ(sizes.size(), 2u);
  EXPECT_EQ(LOWORD(sizes[1].lParam), 1280);
  EXPECT_EQ(HIWORD(sizes[1].lParam), 800);
}

TEST_F(Windows, TheMenuBarTakesItsShareOfTheClientArea) {
  static const win32::MenuEntry kMenu[] = {{win32::MenuEntryKind::Popup, 0, "&File"},
                                           {win32::MenuEntryKind::Item, 40006, "E&xit"},
                                           {win32::MenuEntryKind::End, 0, nullptr}};
  ASSERT_TRUE(win32::RegisterMenuResource(900, kMenu, 3));
  m_hWnd = MakeWindow();
  HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(900));
  ASSERT_NE(menu, nullptr);
  ASSERT_TRUE(SetMenu(m_hWnd, menu));
  EXPECT_TRUE(Sizes().empty()) << "a window never shown is not told its size";
  ShowWindow(m_hWnd, SW_SHOW);
  const int bar = win32::MenuBarHeight(m_hWnd);
  EXPECT_GT(bar, 0);
  RECT client;
  GetClientRect(m_hWnd, &client);
  EXPECT_EQ(client.bottom, 700 - bar);
  ASSERT_EQ(Sizes().size(), 1u);
  EXPECT_EQ(HIWORD(Sizes()[0].lParam), 700 - bar);

  SetMenu(m_hWnd, nullptr);  // the way to full screen takes the menu off
  ASSERT_EQ(Sizes().size(), 2u);
  EXPECT_EQ(HIWORD(Sizes()[1].lParam), 700);
  EXPECT_EQ(win32::MenuBarHeight(m_hWnd), 0);
  DestroyMenu(menu);
}

TEST_F(Windows, MinimiseAndRestore) {
  m_hWnd = MakeWindow();
  ShowWindow(m_hWnd, SW_SHOW);
  Log().clear();
  ShowWindow(m_hWnd, SW_MINIMIZE);
  EXPECT_TRUE(IsIconic(m_hWnd));
  EXPECT_TRUE(win32::IsMinimized(m_hWnd));
  ShowWindow(m_hWnd, SW_RESTORE);
  const std::vector<Received> sizes = Sizes();
  ASSERT_EQ(sizes.size(), 2u);
  EXPECT_EQ(sizes[0].wParam, static_cast<WPARAM>(SIZE_MINIMIZED));
  EXPECT_EQ(sizes[1].wParam, static_cast<WPARAM>(SIZE_RESTORED));
  EXPECT_EQ(sizes[1].lParam, MAKELPARAM(1200, 700));
}

TEST_F(Windows, TitleReadsBackAndIsCutToTheBuffer) {
  m_hWnd = MakeWindow();
  ASSERT_TRUE(SetWindowTextA(m_hWnd, "Karvo Terrain :: Marnovets P.D."));
  char title[64];
  EXPECT_EQ(GetWindowTextA(m_hWnd, title, sizeof title), 31);
  EXPECT_STREQ(title, "Karvo Terrain :: Marnovets P.D.");
  char shortTitle[6];
  EXPECT_EQ(GetWindowTextA(m_hWnd, shortTitle, sizeof shortTitle), 5);
  EXPECT_STREQ(shortTitle, "Karvo");
  EXPECT_EQ(GetWindowTextA(nullptr, title, sizeof title), 0);
}

TEST_F(Windows, CloseDestroysByDefaultAndDestroyTellsTheWindow) {
  m_hWnd = MakeWindow();
  SetCapture(m_hWnd);
  EXPECT_EQ(GetCapture(), m_hWnd);
  Log().clear();
  EXPECT_EQ(SendMessageA(m_hWnd, WM_CLOSE, 0, 0), 0);
  EXPECT_FALSE(IsWindow(m_hWnd));
  const std::vector<UINT> messages = Messages();
  ASSERT_GE(messages.size(), 2u);
  EXPECT_EQ(messages[0], static_cast<UINT>(WM_CLOSE));
  EXPECT_NE(std::find(messages.begin(), messages.end(), static_cast<UINT>(WM_DESTROY)), messages.end());
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_FALSE(DestroyWindow(m_hWnd)) << "a second destruction fails cleanly";
  EXPECT_FALSE(SetWindowPos(m_hWnd, nullptr, 0, 0, 1, 1, 0));
  EXPECT_FALSE(SetMenu(m_hWnd, nullptr));
}

}  // namespace
