// Radio marks in a menu built from a resource: the mark may go to any item of
// its group, the last one included, and to none outside it.
#include <gtest/gtest.h>

#include "platform/win32/Win32Resources.h"
#include "platform/win32/windows.h"

namespace {

using win32::MenuEntry;
using win32::MenuEntryKind;

const MenuEntry kMenu[] = {
    {MenuEntryKind::Popup, 0, "&Camera"},
    {MenuEntryKind::Item, 40010, "&First Person Mode"},
    {MenuEntryKind::Item, 40011, "&Space Craft Mode"},
    {MenuEntryKind::Item, 40012, "&Third Person Mode"},
    {MenuEntryKind::End, 0, nullptr},
};

TEST(Menus, ARadioMarkGoesUpToTheLastItemOfItsGroupAndNoFurther) {
  ASSERT_TRUE(win32::RegisterMenuResource(901, kMenu, std::size(kMenu)));
  HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(901));
  EXPECT_TRUE(CheckMenuRadioItem(menu, 40010, 40012, 40012, MF_BYCOMMAND));
  EXPECT_FALSE(CheckMenuRadioItem(menu, 40010, 40011, 40012, MF_BYCOMMAND)) << "outside the group";
  for (UINT id : {40010u, 40011u, 40012u})
    EXPECT_EQ(GetMenuState(menu, id, MF_BYCOMMAND) & MF_CHECKED, id == 40012u ? UINT(MF_CHECKED) : 0u) << id;
  EXPECT_TRUE(DestroyMenu(menu));
}

}  // namespace
