// Window and device calls of CreateDisplay and ResetDisplay, on record-only
// windows of the scripted win32 back end and a scripted Direct3D object: the
// window's style and place, the creation flags, and what a failure leaves.
#include <gtest/gtest.h>

#include <array>

#include "device/D3DInitialize.h"
#include "platform/win32/Win32Script.h"
#include "support/FakeDirect3D.h"
#include "support/RecordingDevice.h"

namespace {

using Box = std::array<LONG, 4>;  // left, top, right, bottom
constexpr DWORD kKinds = WS_OVERLAPPEDWINDOW | WS_POPUP;

Box Place(HWND hWnd) {
  RECT r{};
  GetWindowRect(hWnd, &r);
  return {r.left, r.top, r.right, r.bottom};
}
DWORD Style(HWND hWnd) { return static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE)); }

CD3DSettings Settings(bool windowed, VERTEXPROCESSING_TYPE vp = HARDWARE_VP) {
  CD3DSettings settings{};
  settings.m_windowed = windowed;
  settings.m_windowedSettings = {0, {1280, 800, 60, D3DFMT_X8R8G8B8}, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8,
                                 D3DFMT_D24S8, D3DMULTISAMPLE_NONE, 0, vp, 0};
  settings.m_fullscreenSettings = settings.m_windowedSettings;
  return settings;
}

class Display : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Options options;
    options.realWindows = false;
    win32::script::Enable(options);
    m_d3d.deviceToCreate = &m_device;
    m_d3d.adapters = {FakeDirect3D::GoodAdapter()};
  }
  void TearDown() override {
    for (HWND hWnd : m_windows)
      if (IsWindow(hWnd)) DestroyWindow(hWnd);
    win32::script::Disable();
  }

  // Enumerates the fake so that `init` holds it, then makes the display.
  HRESULT Create(CD3DInitialize& init, const CD3DSettings& settings, std::uint32_t flags = 0, HWND hWnd = nullptr) {
    EXPECT_EQ(init.Enumerate(&m_d3d), S_OK);
    const HRESULT hr = init.CreateDisplay(settings, flags, hWnd, DefWindowProcA, "Device test window", 1200, 700, this);
    if (init.GetWindow()) m_windows.push_back(init.GetWindow());
    return hr;
  }

  FakeDirect3D m_d3d;
  karvo_test::RecordingDevice m_device;
  std::vector<HWND> m_windows;
};

TEST_F(Display, NewWindowIsAnOverlappedHiddenWindowOfTheGivenSize) {
  CD3DInitialize init;
  ASSERT_EQ(Create(init, Settings(true)), S_OK);
  const HWND hWnd = init.GetWindow();
  ASSERT_NE(hWnd, nullptr);
  EXPECT_EQ(Style(hWnd) & kKinds, DWORD(WS_OVERLAPPEDWINDOW));
  EXPECT_FALSE(IsWindowVisible(hWnd)) << "OpenDisplay shows it";
  EXPECT_EQ(GetMenu(hWnd), nullptr);
  const Box box = Place(hWnd);
  EXPECT_EQ(box[2] - box[0], 1200);
  EXPECT_EQ(box[3] - box[1], 700);

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
  ASSERT_EQ(Create(init, Settings(false)), S_OK);
  EXPECT_EQ(Style(init.GetWindow()) & (kKinds | WS_VISIBLE), DWORD(WS_POPUP | WS_VISIBLE));
  EXPECT_EQ(Place(init.GetWindow()), (Box{0, 0, 1280, 800}));
  EXPECT_FALSE(m_d3d.lastCreate.params.Windowed);
  EXPECT_EQ(m_d3d.lastCreate.params.BackBufferWidth, 1280u);
}

TEST_F(Display, VertexProcessingBecomesCreationFlagsAddedToTheCallers) {
  const std::pair<VERTEXPROCESSING_TYPE, DWORD> cases[] = {
      {PURE_HARDWARE_VP, 0x50}, {HARDWARE_VP, 0x40}, {MIXED_VP, 0x80}, {SOFTWARE_VP, 0x20}};
  for (const auto& [vp, flags] : cases) {
    CD3DInitialize init;
    ASSERT_EQ(Create(init, Settings(true, vp), 0x4), S_OK);
    EXPECT_EQ(m_d3d.lastCreate.flags, flags | 0x4) << vp;
  }
  EXPECT_EQ(m_device.RefCount(), 1u) << "every object let its device go";
}

TEST_F(Display, FailedDeviceCreationKeepsTheWindowAndNoDevice) {
  CD3DInitialize init;
  m_d3d.FailOn(FakeDirect3D::CALL_CreateDevice, D3DERR_NOTAVAILABLE);
  EXPECT_EQ(Create(init, Settings(true)), D3DERR_NOTAVAILABLE);
  EXPECT_TRUE(IsWindow(init.GetWindow()));
  EXPECT_EQ(init.m_device, nullptr);
  EXPECT_EQ(init.GetDevice(), nullptr);
  EXPECT_EQ(m_device.RefCount(), 1u);
}

TEST_F(Display, ExistingWindowIsRestyledForEitherMode) {
  CD3DInitialize first, toFull, toWindow;
  ASSERT_EQ(Create(first, Settings(true)), S_OK);
  const HWND hWnd = first.GetWindow();

  // Into full screen: no menu, a popup over the mode.
  ASSERT_EQ(Create(toFull, Settings(false), 0, hWnd), S_OK);
  EXPECT_EQ(toFull.GetWindow(), hWnd);
  EXPECT_EQ(Style(hWnd) & kKinds, DWORD(WS_POPUP));
  EXPECT_EQ(Place(hWnd), (Box{0, 0, 1280, 800}));
  EXPECT_EQ(GetMenu(hWnd), nullptr);

  // Back into a window: overlapped, shown, where the window is now.
  SetWindowPos(hWnd, nullptr, 30, 40, 640, 480, SWP_NOZORDER);
  const Box before = Place(hWnd);
  ASSERT_EQ(Create(toWindow, Settings(true), 0, hWnd), S_OK);
  EXPECT_EQ(Style(hWnd) & kKinds, DWORD(WS_OVERLAPPEDWINDOW));
  EXPECT_TRUE(IsWindowVisible(hWnd));
  EXPECT_EQ(Place(hWnd), before);
}

TEST_F(Display, ResetRestylesFirstAndPassesTheDevicesResult) {
  CD3DInitialize init, reset;
  ASSERT_EQ(Create(init, Settings(true)), S_OK);
  const HWND hWnd = init.GetWindow();
  ASSERT_EQ(reset.ResetDisplay(&m_device, Settings(false), hWnd), S_OK);
  EXPECT_FALSE(m_device.LastResetParameters().Windowed);
  EXPECT_EQ(m_device.LastResetParameters().BackBufferHeight, 800u);
  EXPECT_EQ(Place(hWnd), (Box{0, 0, 1280, 800}));

  // A reset into a window lands small at a fixed place, even when Reset fails.
  m_device.resetResult = D3DERR_DEVICELOST;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(true), hWnd), D3DERR_DEVICELOST);
  EXPECT_EQ(Place(hWnd), (Box{50, 50, 450, 450}));
  EXPECT_EQ(Style(hWnd) & kKinds, DWORD(WS_OVERLAPPEDWINDOW));
  EXPECT_TRUE(m_device.LastResetParameters().Windowed);

  // Without a window only the device is reset.
  m_device.resetResult = D3D_OK;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(false), nullptr), S_OK);
  EXPECT_EQ(Place(hWnd), (Box{50, 50, 450, 450}));
  EXPECT_EQ(m_device.Count("Reset"), 3u);
}

}  // namespace
