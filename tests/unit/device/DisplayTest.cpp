// Window and device calls of CreateDisplay and ResetDisplay, on record-only
// windows of the scripted win32 back end and a scripted Direct3D object: the
// window's style and place, the present parameters, the creation flags, and
// what a failure leaves.
#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "device/D3DInitialize.h"
#include "platform/win32/script/Win32Script.h"
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
DWORD Kind(HWND hWnd) { return static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE)) & kKinds; }

// The windowed set and the full-screen set differ in every field the present
// parameters take.
CD3DSettings Settings(bool windowed, VERTEXPROCESSING_TYPE vp = HARDWARE_VP) {
  CD3DSettings settings{};
  settings.m_windowed = windowed;
  settings.m_windowedSettings = {0, {1600, 1000, 60, D3DFMT_X8R8G8B8}, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8,
                                 D3DFMT_D24S8, D3DMULTISAMPLE_4_SAMPLES, 2, vp, D3DPRESENT_INTERVAL_ONE};
  settings.m_fullscreenSettings = {0, {1280, 800, 75, D3DFMT_R5G6B5}, D3DDEVTYPE_HAL, D3DFMT_R5G6B5, D3DFMT_D16,
                                   D3DMULTISAMPLE_NONE, 0, vp, D3DPRESENT_INTERVAL_IMMEDIATE};
  return settings;
}

class Display : public ::testing::Test {
 protected:
  void SetUp() override {
    win32::script::Enable({.realWindows = false});
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

TEST_F(Display, NewWindowIsHiddenAndOverlappedAndTheWindowLeavesSizeAndRateToTheDevice) {
  CD3DInitialize init;
  ASSERT_EQ(Create(init, Settings(true)), S_OK);
  const HWND hWnd = init.GetWindow();
  EXPECT_EQ(Kind(hWnd), DWORD(WS_OVERLAPPEDWINDOW));
  // OpenDisplay shows it (at 1200 x 700, which the menu bar test pins).
  EXPECT_FALSE(IsWindowVisible(hWnd));

  const D3DPRESENT_PARAMETERS& p = m_d3d.lastCreate.params;
  EXPECT_EQ(m_d3d.lastCreate.focusWindow, hWnd);
  EXPECT_TRUE(p.Windowed);
  EXPECT_EQ(p.BackBufferWidth + p.BackBufferHeight + p.FullScreen_RefreshRateInHz, 0u);
  EXPECT_EQ(std::tie(p.MultiSampleType, p.MultiSampleQuality, p.AutoDepthStencilFormat, p.PresentationInterval),
            std::make_tuple(D3DMULTISAMPLE_4_SAMPLES, DWORD(2), D3DFMT_D24S8, UINT(D3DPRESENT_INTERVAL_ONE)));
  IDirect3DDevice9* device = init.GetDevice();
  EXPECT_EQ(device, &m_device);
  EXPECT_EQ(m_device.RefCount(), 3u) << "the caller gets its own reference";
  device->Release();
}

TEST_F(Display, VertexProcessingBecomesCreationFlagsAddedToTheCallersAndAFailureKeepsNoDevice) {
  const std::pair<VERTEXPROCESSING_TYPE, DWORD> cases[] = {
      {PURE_HARDWARE_VP, 0x50}, {HARDWARE_VP, 0x40}, {MIXED_VP, 0x80}, {SOFTWARE_VP, 0x20}};
  for (const auto& [vp, flags] : cases) {
    CD3DInitialize init;
    ASSERT_EQ(Create(init, Settings(true, vp), 0x4), S_OK);
    EXPECT_EQ(m_d3d.lastCreate.flags, flags | 0x4) << vp;
  }
  CD3DInitialize failed;
  m_d3d.FailOn(FakeDirect3D::CALL_CreateDevice, D3DERR_NOTAVAILABLE, m_d3d.Calls(FakeDirect3D::CALL_CreateDevice));
  EXPECT_EQ(Create(failed, Settings(true)), D3DERR_NOTAVAILABLE);
  EXPECT_TRUE(IsWindow(failed.GetWindow()));
  EXPECT_EQ(failed.GetDevice(), nullptr);
  EXPECT_EQ(m_device.RefCount(), 1u) << "every object let its device go";
}

TEST_F(Display, FullScreenIsAVisiblePopupOverItsModeAndAnExistingWindowIsRestyledForEitherMode) {
  CD3DInitialize full, toWindow, toFull, reset;
  ASSERT_EQ(Create(full, Settings(false), 0x1), S_OK);
  const HWND hWnd = full.GetWindow();
  EXPECT_EQ(Kind(hWnd), DWORD(WS_POPUP));
  EXPECT_TRUE(IsWindowVisible(hWnd));
  EXPECT_EQ(Place(hWnd), (Box{0, 0, 1280, 800}));
  const D3DPRESENT_PARAMETERS& p = m_d3d.lastCreate.params;
  EXPECT_FALSE(p.Windowed);
  EXPECT_EQ(std::tie(p.BackBufferWidth, p.BackBufferHeight, p.FullScreen_RefreshRateInHz, p.BackBufferFormat),
            std::make_tuple(UINT(1280), UINT(800), UINT(75), D3DFMT_R5G6B5));
  EXPECT_EQ(std::tie(p.BackBufferCount, p.SwapEffect, p.EnableAutoDepthStencil, p.AutoDepthStencilFormat, p.Flags,
                     p.PresentationInterval),
            std::make_tuple(UINT(1), D3DSWAPEFFECT_DISCARD, BOOL(TRUE), D3DFMT_D16,
                            DWORD(D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL), UINT(D3DPRESENT_INTERVAL_IMMEDIATE)));

  // Into a window: overlapped, shown, where the window is now; then back.
  SetWindowPos(hWnd, nullptr, 30, 40, 640, 480, SWP_NOZORDER);
  ASSERT_EQ(Create(toWindow, Settings(true), 0, hWnd), S_OK);
  EXPECT_EQ(toWindow.GetWindow(), hWnd);
  EXPECT_EQ(Kind(hWnd), DWORD(WS_OVERLAPPEDWINDOW));
  EXPECT_TRUE(IsWindowVisible(hWnd));
  EXPECT_EQ(Place(hWnd), (Box{30, 40, 670, 520}));
  ASSERT_EQ(Create(toFull, Settings(false), 0, hWnd), S_OK);
  EXPECT_EQ(Kind(hWnd), DWORD(WS_POPUP));
  EXPECT_EQ(Place(hWnd), (Box{0, 0, 1280, 800}));

  // A reset into a window lands small at a fixed place, even when Reset fails.
  m_device.resetResult = D3DERR_DEVICELOST;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(true), hWnd), D3DERR_DEVICELOST);
  EXPECT_EQ(Place(hWnd), (Box{50, 50, 450, 450}));
  EXPECT_TRUE(m_device.LastResetParameters().Windowed);
  m_device.resetResult = D3D_OK;
  EXPECT_EQ(reset.ResetDisplay(&m_device, Settings(false), nullptr), S_OK) << "without a window, the device only";
  EXPECT_EQ(Place(hWnd), (Box{50, 50, 450, 450}));
  EXPECT_EQ(m_device.LastResetParameters().BackBufferHeight, 800u);
}

}  // namespace
