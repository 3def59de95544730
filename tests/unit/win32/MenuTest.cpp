// Menus as data: a resource becomes a tree that the calls read by command and
// by position; greying and radio marks; malformed resources and bad handles.
#include <gtest/gtest.h>

#include "Win32TestSupport.h"
#include "platform/win32/Win32Resources.h"

namespace {

using win32::MenuEntry;
using win32::MenuEntryKind;

const MenuEntry kMenu[] = {
    {MenuEntryKind::Popup, 0, "&Camera"},
    {MenuEntryKind::Item, 40010, "&First Person Mode"},
    {MenuEntryKind::Item, 40011, "&Space Craft Mode"},
    {MenuEntryKind::Item, 40012, "&Third Person Mode"},
    {MenuEntryKind::End, 0, nullptr},
    {MenuEntryKind::Popup, 0, "&Render States"},
    {MenuEntryKind::Popup, 0, "&Fill Mode"},
    {MenuEntryKind::Item, 40013, "&Solid"},
    {MenuEntryKind::Item, 40014, "&Wireframe"},
    {MenuEntryKind::End, 0, nullptr},
    {MenuEntryKind::Separator, 0, nullptr},
    {MenuEntryKind::Item, 40022, "&Single Pass"},
    {MenuEntryKind::End, 0, nullptr},
};

class Menus : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(win32::RegisterMenuResource(901, kMenu, std::size(kMenu)));
    m_menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(901));
    ASSERT_NE(m_menu, nullptr);
  }
  void TearDown() override { DestroyMenu(m_menu); }
  HMENU m_menu = nullptr;
};

TEST_F(Menus, TheTreeReadsBackByPositionAndCommand) {
  ASSERT_EQ(GetMenuItemCount(m_menu), 2);
  HMENU states = GetSubMenu(m_menu, 1);
  ASSERT_NE(states, nullptr);
  EXPECT_EQ(GetMenuItemCount(states), 3);
  EXPECT_EQ(GetMenuItemID(states, 0), 0xFFFFFFFFu);  // a popup
  EXPECT_EQ(GetMenuItemID(states, 1), 0u);           // a separator
  EXPECT_EQ(GetMenuItemID(states, 2), 40022u);
  EXPECT_EQ(GetMenuState(states, 1, MF_BYPOSITION) & MF_SEPARATOR, static_cast<UINT>(MF_SEPARATOR));
  char text[32];
  EXPECT_EQ(GetMenuStringA(m_menu, 40014, text, sizeof text, MF_BYCOMMAND), 10);
  EXPECT_STREQ(text, "&Wireframe");
  EXPECT_EQ(GetSubMenu(states, 2), nullptr);
  EXPECT_EQ(GetMenuState(m_menu, 40099, MF_BYCOMMAND), 0xFFFFFFFFu);
}

TEST_F(Menus, GreyingByCommandAndByPositionGivesTheFormerState) {
  EXPECT_EQ(EnableMenuItem(m_menu, 40022, MF_GRAYED | MF_DISABLED), MF_ENABLED);
  EXPECT_EQ(GetMenuState(m_menu, 40022, MF_BYCOMMAND) & 3u, 3u);
  EXPECT_EQ(EnableMenuItem(m_menu, 40022, MF_ENABLED), MF_GRAYED | MF_DISABLED);
  HMENU states = GetSubMenu(m_menu, 1);
  EnableMenuItem(states, 0, MF_BYPOSITION | MF_GRAYED);
  EXPECT_EQ(GetMenuState(states, 0, MF_BYPOSITION) & MF_GRAYED, static_cast<UINT>(MF_GRAYED));
  EXPECT_EQ(EnableMenuItem(m_menu, 40099, MF_GRAYED), -1);
}

TEST_F(Menus, RadioMarkMovesWithinItsGroupOnly) {
  ASSERT_TRUE(CheckMenuRadioItem(m_menu, 40010, 40012, 40010, MF_BYCOMMAND));
  ASSERT_TRUE(CheckMenuRadioItem(m_menu, 40013, 40014, 40014, MF_BYCOMMAND));
  ASSERT_TRUE(CheckMenuRadioItem(m_menu, 40010, 40012, 40012, MF_BYCOMMAND));
  EXPECT_EQ(GetMenuState(m_menu, 40010, MF_BYCOMMAND) & MF_CHECKED, 0u);
  EXPECT_EQ(GetMenuState(m_menu, 40012, MF_BYCOMMAND) & MF_CHECKED, static_cast<UINT>(MF_CHECKED));
  EXPECT_EQ(GetMenuState(m_menu, 40014, MF_BYCOMMAND) & MF_CHECKED, static_cast<UINT>(MF_CHECKED));
  // A check outside the group, or a group across two menus, changes nothing.
  EXPECT_FALSE(CheckMenuRadioItem(m_menu, 40010, 40012, 40013, MF_BYCOMMAND));
  EXPECT_FALSE(CheckMenuRadioItem(m_menu, 40012, 40013, 40013, MF_BYCOMMAND));
  EXPECT_EQ(GetMenuState(m_menu, 40012, MF_BYCOMMAND) & MF_CHECKED, static_cast<UINT>(MF_CHECKED));
}

TEST(MenuResources, MalformedDataAndBadHandlesFailCleanly) {
  const MenuEntry unbalanced[] = {{MenuEntryKind::Popup, 0, "&File"}};
  EXPECT_FALSE(win32::RegisterMenuResource(902, unbalanced, 1));
  const MenuEntry stray[] = {{MenuEntryKind::End, 0, nullptr}};
  EXPECT_FALSE(win32::RegisterMenuResource(902, stray, 1));
  const MenuEntry noText[] = {{MenuEntryKind::Item, 1, nullptr}};
  EXPECT_FALSE(win32::RegisterMenuResource(902, noText, 1));
  EXPECT_EQ(LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(902)), nullptr);
  EXPECT_EQ(LoadMenuA(nullptr, MAKEINTRESOURCEA(901)), nullptr) << "menus come from the module";

  HMENU gone = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(901));
  ASSERT_TRUE(DestroyMenu(gone));
  EXPECT_FALSE(DestroyMenu(gone));
  EXPECT_EQ(GetMenuItemCount(gone), -1);
  EXPECT_EQ(EnableMenuItem(gone, 40022, MF_GRAYED), -1);
  EXPECT_FALSE(CheckMenuRadioItem(gone, 40010, 40012, 40010, MF_BYCOMMAND));
}

TEST(IconResources, LoadedFromTheModuleAndSetOnTheClass) {
  win32test::StartScripted();
  static const std::uint32_t kPixels[4] = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0x00000000};
  ASSERT_TRUE(win32::RegisterIconResource(903, {2, 2, kPixels}));
  EXPECT_FALSE(win32::RegisterIconResource(904, {0, 2, kPixels}));
  HICON icon = LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(903));
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(904)), nullptr);
  HWND hWnd = win32test::MakeWindow();
  SetClassLongA(hWnd, GCL_HICON, reinterpret_cast<LONG_PTR>(icon));
  EXPECT_EQ(reinterpret_cast<HICON>(GetClassLongA(hWnd, GCL_HICON)), icon);
  DestroyWindow(hWnd);
  EXPECT_NE(LoadCursorA(nullptr, IDC_ARROW), nullptr);
}

}  // namespace
