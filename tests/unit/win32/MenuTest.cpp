// Menus as data: a resource becomes a tree that the calls read by command and
// by position; greying and radio marks; malformed resources.
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

TEST(Menus, TheTreeReadsBackAndGreyingAndRadioMarksStayInTheirPlace) {
  const MenuEntry unbalanced[] = {{MenuEntryKind::Popup, 0, "&File"}};
  EXPECT_FALSE(win32::RegisterMenuResource(902, unbalanced, 1));
  ASSERT_TRUE(win32::RegisterMenuResource(901, kMenu, std::size(kMenu)));
  HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(901));
  ASSERT_EQ(GetMenuItemCount(menu), 2);
  HMENU states = GetSubMenu(menu, 1);
  EXPECT_EQ(GetMenuItemID(states, 0), 0xFFFFFFFFu);  // a popup
  EXPECT_EQ(GetMenuItemID(states, 1), 0u);           // a separator
  EXPECT_EQ(GetMenuItemID(states, 2), 40022u);
  char text[32];
  EXPECT_EQ(GetMenuStringA(menu, 40014, text, sizeof text, MF_BYCOMMAND), 10);
  EXPECT_STREQ(text, "&Wireframe");

  EXPECT_EQ(EnableMenuItem(menu, 40022, MF_GRAYED | MF_DISABLED), MF_ENABLED);
  EXPECT_EQ(EnableMenuItem(menu, 40022, MF_ENABLED), MF_GRAYED | MF_DISABLED);
  EXPECT_EQ(EnableMenuItem(menu, 40099, MF_GRAYED), -1);

  ASSERT_TRUE(CheckMenuRadioItem(menu, 40013, 40014, 40014, MF_BYCOMMAND));
  ASSERT_TRUE(CheckMenuRadioItem(menu, 40010, 40012, 40012, MF_BYCOMMAND));
  // A check outside the group, or a group across two menus, changes nothing.
  EXPECT_FALSE(CheckMenuRadioItem(menu, 40010, 40012, 40013, MF_BYCOMMAND));
  EXPECT_FALSE(CheckMenuRadioItem(menu, 40012, 40013, 40013, MF_BYCOMMAND));
  for (UINT id : {40012u, 40014u}) EXPECT_EQ(GetMenuState(menu, id, MF_BYCOMMAND) & MF_CHECKED, UINT(MF_CHECKED));
  EXPECT_TRUE(DestroyMenu(menu));
  EXPECT_EQ(GetMenuItemCount(menu), -1);
}

}  // namespace
