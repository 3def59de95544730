// Window and device calls of CreateDisplay and ResetDisplay, on record-only
// windows of the scripted win32 back end and a scripted Direct3D object: the
// window's style and place, the creation flags, and what a failure leaves.
#include <gtest/gtest.h>

#include "device/D3DInitialize.h"
#include "platform/win32/Win32Script.h"
#include "support/FakeDirect3D.h"
#include "support/RecordingDevice.h"

namespace {

using karvo_test::RecordingDevice;

constexpr LPCSTR s_title = "Device test window";

class Display : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Options options;
    options.realWindows = false;
    win32::script::Enable(options);
    m_d3d.deviceToCreate = &m_device;
  }
  void TearDown() override {
    for (HWND hWnd : m_windows)
      if (IsWindow(hWnd)) DestroyWindow(hWnd);
    win32::script::Disable();
  }

  static CD3DSettings Settings(bool windowed, VERTEXPROCESSING_TYPE vp = HARDWARE_VP) {
    CD3DSettings settings{};
    settings.m_windowed = windowed;
    for (CD3DDisplaySettings* set : {&settings.m_windowedSettings, &settings.m_fullscreenSettings}) {
      set->m_displayMode = {1280, 800, 60, D3DFMT_X8R8G8B8};
      set->m_deviceType = D3DDEVTYPE_HAL;
      set->m_backBufferFormat = D3DFMT_X8R8G8B8;
      set->m_depthStencilFormat = D3DFMT_D24S8;
      set->m_vertexProcessing = vp;
    }
    return settings;
  }

  // Enumerates the fake (one usable adapter) so that the object holds it.
  void Attach(CD3DInitialize& init) {
    m_d3d.adapters = {FakeDirect3D::GoodAdapter()};
    ASSERT_EQ(init.Enumerate(&m_d3d), S_OK);
  }

  HRESULT Create(CD3DInitialize& init, const CD3DSettings& settings, std::uint32_t flags = 0, HWND hWnd = nullptr) {
    const HRESULT hr = init.CreateDisplay(settings, flags, hWnd, DefWindowProcA, s_title, 1200, 700, this);
    if (init.GetWindow()) m_windows.push_back(init.GetWindow());
    return hr;
  }

  static RECT Rect(HWND hWnd) {
    RECT rect{};
    GetWindowRect(hWnd, &rect);
    return rect;
  }
  static DWORD Style(HWND hWnd) { return static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE)); }

  FakeDirect3D m_d3d;
  RecordingDevice m_device;
  std::vector<HWND> m_windows;
};

TEST_F(Display, NewWindowIsAnOverlappedHiddenWindowOfTheGivenSize) {
  CD3DInitialize init;
  Attach(init);
  ASSERT_EQ(Create(init, Settings(true)), S_OK);
  const HWND hWnd = init.GetWindow();
  ASSERT_NE(hWnd, nullptr);
  EXPECT_EQ(Style(hWnd) & (WS_OVERLAPPEDWINDOW | WS_POPUP), static_cast<DWORD>(WS_OVERLAPPEDWINDOW));
  EXPECT_FALSE(IsWindowVisible(hWnd)) << "OpenDisplay shows it";
  EXPECT_EQ(GetMenu(hWnd), nullptr);
  const RECT rect = Rect(hWnd);
  EXPECT_EQ(rect.right - rect.left, 1200);
  EXPECT_EQ(rect.bottom - rect.top, 700);

  // The device: on the window, windowed, and the caller gets its own reference.
  EXPECT_EQ(m_d3d.lastCreate.focusWindow, hWnd);
  EXPECT_EQ(m_d3d.lastCreate.type, D3DDEVTYPE_HAL);
  EXPECT_TRUE(m_d3d.lastCreate.params.Windowed);
  EXPECT_EQ(m_d3d.lastCreate.params.BackBufferWidth, 0u);
  IDirect3DDevice9* device = init.GetDevice();
  EXPECT_EQ(device, &m_device);
  EXPECT_EQ(m_device.RefCount(), 3u);
  device->Release();
}

TEST_F(Display, FullScreenWindowIsAVisiblePopupOverTheMode) {
  CD3DInitialize init;
  Attach(init);
  ASSERT_EQ(Create(init, Settings(false)), S_OK);
  const HWND hWnd = init.GetWindow();
  EXPECT_EQ(Style(hWnd) & (WS_OVERLAPPEDWINDOW | WS_POPUP | WS_VISIBLE), static_cast<DWORD>(WS_POPUP | WS_VISIBLE));
  const RECT rect = Rect(hWnd);
  EXPECT_EQ(rect.left, 0);
  EXPECT_EQ(rect.top, 0);
  EXPECT_EQ(rect.right, 1280);
  EXPECT_EQ(rect.bottom, 800);
  EXPECT_FALSE(m_d3d.lastCreate.params.Windowed);
  EXPECT_EQ(m_d3d.lastCreate.params.BackBufferWidth, 1280u);
}

TEST_F(Display, VertexProcessingBecomesCreationFlagsAddedToTheCallers) {
  const struct {
    VERTEXPROCESSING_TYPE vp;
    DWORD flags;
  } cases[] = {{PURE_HARDWARE_VP, 0x50}, {HARDWARE_VP, 0x40}, {MIXED_VP, 0x80}, {SOFTWARE_VP, 0x20}};
  for (const auto& c : cases) {
    CD3DInitialize init;
    Attach(init);
    ASSERT_EQ(Create(init, Settings(true, c.vp), 0x4), S_OK);
    EXPECT_EQ(m_d3d.lastCreate.flags, c.flags | 0x4) << c.vp;
  }
  EXPECT_EQ(m_device.RefCount(), 1u) << "every object let its device go";
}

TEST_F(Display, FailedDeviceCreationKeepsTheWindowAndNoDevice) {
  CD3DInitialize init;
  Attach(init);
  m_d3d.FailOn(FakeDirect3D::CALL_CreateDevice, D3DERR_NOTAVAILABLE);
  EXPECT_EQ(Create(init, Settings(true)), D3DERR_NOTAVAILABLE);
  EXPECT_TRUE(IsWindow(init.GetWindow()));
  EXPECT_EQ(init.m_device, nullptr);
  EXPECT_EQ(init.GetDevice(), nullptr);
  EXPECT_EQ(m_device.RefCount(), 1u);
}

TEST_F(Display, ExistingWindowIsRestyledForEitherMode) {
  CD3DInitialize first;
  Attach(first);
  ASSERT_EQ(Create(first, Settings(true)), S_OK);
  const HWND hWnd = first.GetWindow();

  // Into full screen: no menu, a popup over the mode.
  CD3DInitialize toFull;
  Attach(toFull);
  ASSERT_EQ(Create(toFull, Settings(false), 0, hWnd), S_OK);
  EXPECT_EQ(toFull.GetWindow(), hWnd);
  EXPECT_EQ(Style(hWnd) & WS_POPUP, static_cast<DWORD>(WS_POPUP));
  EXPECT_EQ(Rect(hWnd).right, 1280);
  EXPECT_EQ(GetMenu(hWnd), nullptr);

  // Back into a window: overlapped, shown, where the window is now.
  SetWindowPos(hWnd, nullptr, 30, 40, 640, 480, SWP_NOZORDER);
  const RECT before = Rect(hWnd);
  CD3DInitialize toWindow;
  Attach(toWindow);
  ASSERT_EQ(Create(toWindow, Settings(true), 0, hWnd), S_OK);
  EXPECT_EQ(Style(hWnd) & (WS_OVERLAPPEDWINDOW | WS_POPUP), static_cast<DWORD>(WS_OVERLAPPEDWINDOW));
  EXPECT_TRUE(IsWindowVisible(hWnd));
  const RECT after = Rect(hWnd);
  EXPECT_EQ(after.left, before.left);
  EXPECT_EQ(after.top, before.top);
  EXPECT_EQ(after.right, before.right);
  EXPECT_EQ(after.bottom, before.bottom);
}

TEST_F(Display, ResetRestylesFirstAndPassesTheDevicesResult) {
  CD3DInitialize init;
  Attach(init);
  ASSERT_EQ(Create(init, Settings(true)), S_OK);
  const HWND hWnd = init.GetWindow();

  CD3DInitialize reset;
  ASSERT_EQ(reset.ResetDisplay(&m_device, Settings(false), hWnd), S_OK);
  EXPECT_FALSE(m_device.LastResetParameters().Windowed);
  EXPECT_EQ(m_device.LastResetParameters().BackBufferHeight, 800u);
  EXPECT_EQ(Rect(hWnd).bottom, 800);

  // A reset into a window lands small at a fixed place, even when Reset fails.
  m_device.resetResult = D3DERR_DEVICELOST;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(true), hWnd), D3DERR_DEVICELOST);
  const RECT rect = Rect(hWnd);
  EXPECT_EQ(rect.left, 50);
  EXPECT_EQ(rect.top, 50);
  EXPECT_EQ(rect.right - rect.left, 400);
  EXPECT_EQ(rect.bottom - rect.top, 400);
  EXPECT_EQ(Style(hWnd) & (WS_OVERLAPPEDWINDOW | WS_POPUP), static_cast<DWORD>(WS_OVERLAPPEDWINDOW));
  EXPECT_TRUE(m_device.LastResetParameters().Windowed);

  // Without a window only the device is reset.
  m_device.resetResult = D3D_OK;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(false), nullptr), S_OK);
  EXPECT_EQ(Rect(hWnd).right - Rect(hWnd).left, 400);
  EXPECT_EQ(m_device.Count("Reset"), 3u);
}

}  // namespace
