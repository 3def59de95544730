// AppUnderTest: a fresh CGameApp for one test, built in zero-filled storage as
// g_App is (its constructor relies on members it does not name being zero),
// with the program's menu loaded as data and fakes in place of the Direct3D
// objects. The fakes belong to the test and must outlive this object.
#pragma once

#include <cstdlib>
#include <new>
#include <string>

#include "app/GameApp.h"
#include "platform/win32/windows.h"

class AppUnderTest {
 public:
  AppUnderTest() {
    storage_ = std::calloc(1, sizeof(CGameApp));
    app_ = new (storage_) CGameApp();
    app_->m_hMenu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(101));
    app_->m_settings.m_windowed = true;
    CD3DDisplaySettings& settings = app_->m_settings.GetCurrentSettings();
    settings.m_adapterOrdinal = 0;
    settings.m_deviceType = D3DDEVTYPE_HAL;
    settings.m_displayMode = D3DDISPLAYMODE{1024, 768, 60, D3DFMT_X8R8G8B8};
  }
  ~AppUnderTest() {
    app_->~CGameApp();
    std::free(storage_);
  }
  AppUnderTest(const AppUnderTest&) = delete;
  AppUnderTest& operator=(const AppUnderTest&) = delete;

  CGameApp* operator->() { return app_; }

  // Menu state of the commands first..last as the user would see it, one
  // character each: "0010" has the third one greyed (or checked).
  std::string Greyed(UINT first, UINT last) const { return Marks(first, last, MF_GRAYED); }
  std::string Checked(UINT first, UINT last) const { return Marks(first, last, MF_CHECKED); }
  // State of the popup at a position of the Render States menu.
  bool RenderStatesPopupGreyed(int position) const {
    HMENU renderStates = GetSubMenu(app_->m_hMenu, 2);
    return (GetMenuState(renderStates, static_cast<UINT>(position), MF_BYPOSITION) & MF_GRAYED) != 0;
  }

 private:
  std::string Marks(UINT first, UINT last, UINT flag) const {
    std::string marks;
    for (UINT command = first; command <= last; ++command)
      marks += (GetMenuState(app_->m_hMenu, command, MF_BYCOMMAND) & flag) ? '1' : '0';
    return marks;
  }

  void* storage_ = nullptr;
  CGameApp* app_ = nullptr;
};
