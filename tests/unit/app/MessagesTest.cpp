// The window procedure and ReadInput on a record-only window of the scripted
// back end, with fakes for Direct3D: the menu commands against the values
// they must set, size changes, the keys that come as messages, the roads to
// the end of the run (a failed device change among them), every binding of the polled keys and the mouse, and a
// game controller fed as SDL events against the keys it stands for.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "device/D3DSettingsDlg.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/script/Win32Script.h"
#include "support/FakeDirect3D.h"
#include "support/RecordingDevice.h"
#include "unit/render/AppUnderTest.h"
#include "view/Camera.h"

namespace {

using Values = std::map<std::string, double>;

class Messages : public ::testing::Test {
 protected:
  Messages() {
    win32::script::Enable({.realWindows = false});
    caps.MaxAnisotropy = 64;
    app->m_d3d = &d3d;
    app->m_device = &device;
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = &CGameApp::StaticWindowProc;
    windowClass.lpszClassName = "messages test";
    RegisterClassA(&windowClass);
    hWnd = CreateWindowExA(0, "messages test", "", WS_OVERLAPPEDWINDOW, 0, 0, 640, 480, nullptr,
                           nullptr, nullptr, static_cast<CGameApp*>(app.operator->()));
    app->m_hWnd = hWnd;
    SetMenu(hWnd, app->m_hMenu);
    app->ResetGameState();
  }
  LRESULT Send(UINT message, WPARAM w = 0, LPARAM l = 0) { return app->HandleWindowMessage(hWnd, message, w, l); }
  // True when a quit message waits (and takes the queue's messages out).
  static bool QuitPosted() {
    for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);)
      if (msg.message == WM_QUIT) return true;
    return false;
  }
  // Everything a command may set, by name.
  Values Snapshot() {
    CPlayer& p = app->m_player;
    return {{"fill", app->m_fillMode},         {"colorOp", app->m_colorOp},      {"mag", app->m_magFilter},
            {"min", app->m_minFilter},         {"mip", app->m_mipFilter},        {"anisotropy", app->m_maxAnisotropy},
            {"singlePass", app->m_singlePass}, {"friction", p.GetFriction()},    {"gravity", p.GetGravity().y},
            {"maxXZ", p.GetMaxVelocityXZ()},   {"maxY", p.GetMaxVelocityY()},    {"offsetY", p.GetCameraOffset().y},
            {"offsetZ", p.GetCameraOffset().z}, {"lag", p.GetCameraLag()},       {"mode", p.GetCameraMode()},
            {"cameraIsPlayers", app->m_camera == p.GetCamera()}};
  }

  FakeDirect3D d3d{{FakeDirect3D::GoodAdapter()}};
  D3DCAPS9& caps = d3d.adapters[0].devices[D3DDEVTYPE_HAL];
  karvo_test::RecordingDevice device;
  AppUnderTest app;
  HWND hWnd = nullptr;
};

// The columns of the camera commands 40010, 40011 and 40012.
const char* const kCameraNames[] = {"friction", "gravity", "maxXZ", "maxY", "offsetY", "offsetZ", "lag", "mode"};
const double kCameraValues[3][8] = {{250, -400, 125, 400, 10, 0, 0, 1},
                                    {125, 0, 400, 400, 0, 0, 0, 3},
                                    {250, -400, 125, 400, 40, -60, 0.25, 2}};

TEST_F(Messages, EveryCommandFrom40010To40045SetsItsValuesAndMarkAndNothingElse) {
  // The option and value of each command from 40013 on, in number order;
  // 40015 to 40018 are no commands. The colour ops are not in value order.
  const std::pair<std::string, double> sets[] = {
      {"fill", 3},        {"fill", 2},        {"", 0},           {"", 0},           {"", 0},
      {"", 0},            {"mip", 0},         {"mip", 1},        {"mip", 2},        {"singlePass", 1},
      {"singlePass", 0},  {"colorOp", 8},     {"colorOp", 9},    {"colorOp", 7},    {"colorOp", 10},
      {"colorOp", 4},     {"colorOp", 5},     {"colorOp", 6},    {"min", 0},        {"min", 1},
      {"min", 2},         {"min", 3},         {"mag", 0},        {"mag", 1},        {"mag", 2},
      {"mag", 3},         {"anisotropy", 1},  {"anisotropy", 2}, {"anisotropy", 4}, {"anisotropy", 8},
      {"anisotropy", 16}, {"anisotropy", 32}, {"anisotropy", 64}};
  // Walked down twice, from two starting points, so that a command that
  // happens to find its own value in one round changes it in the other.
  for (UINT start : {40012u, 40031u}) {
    Send(WM_COMMAND, start);
    for (UINT command = 40045; command >= 40010; --command) {
      const bool camera = command < 40013;
      // The mode already set (40012 in the first round) still reapplies its values.
      if (camera) app->m_player.SetFriction(1.0f), app->m_player.SetCameraOffset(D3DXVECTOR3(0, 99, 0));
      Values expected = Snapshot();
      for (int i = 0; camera && i < 8; ++i)
        expected[kCameraNames[i]] = kCameraValues[command - 40010][i];
      const std::string& name = camera ? "" : sets[command - 40013].first;
      if (!name.empty()) expected[name] = sets[command - 40013].second;
      Send(WM_COMMAND, command);
      EXPECT_EQ(Snapshot(), expected) << "command " << command;
      if (camera || !name.empty()) {  // the mark moves onto the entry chosen
        EXPECT_TRUE(GetMenuState(app->m_hMenu, command, MF_BYCOMMAND) & MF_CHECKED) << command;
      }
    }
  }
  // A radio mark goes up to the last item of its group (above) and no further.
  EXPECT_FALSE(CheckMenuRadioItem(app->m_hMenu, 40010, 40011, 40012, MF_BYCOMMAND));
  EXPECT_FALSE(GetMenuState(app->m_hMenu, 40012, MF_BYCOMMAND) & MF_CHECKED);
}

// (Exit and Escape are the menu bar's and the lifecycle's end-to-end tests.)
TEST_F(Messages, CloseQuitsAndSizeAndShiftEnterResetWithoutTouchingTheWorld) {
  EXPECT_EQ(CGameApp::StaticWindowProc(hWnd, WM_CLOSE, 0, 0), 0);
  EXPECT_TRUE(QuitPosted());
  Send(WM_KEYDOWN, VK_RETURN);  // Enter without Shift does nothing
  EXPECT_FALSE(QuitPosted());

  const D3DXVECTOR3 position = app->m_player.GetPosition();
  device.ClearLog();
  Send(WM_SIZE, SIZE_MINIMIZED, 0);  // frames stop
  EXPECT_TRUE(!app->m_active && device.Count("Reset") == 0u);
  Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(640, 461));
  EXPECT_TRUE(app->m_active && device.Count("Reset") == 1u);
  EXPECT_GT(device.Count("SetRenderState"), 0u) << "no ApplyRenderStates after the reset";
  // Shift+Enter to full screen on the desktop's mode, which has no menu, and back.
  app->m_settings.m_fullscreenSettings = app->m_settings.m_windowedSettings;
  win32::script::KeyDown(0, VK_SHIFT);
  QuitPosted();  // delivers the scripted Shift
  Send(WM_KEYDOWN, VK_RETURN);
  EXPECT_TRUE(!app->m_settings.m_windowed && GetMenu(hWnd) == nullptr);
  Send(WM_KEYDOWN, VK_RETURN);
  EXPECT_TRUE(app->m_settings.m_windowed && GetMenu(hWnd) == app->m_hMenu);
  EXPECT_EQ(app->m_player.GetPosition(), position);

  // A window whose WM_CREATE has not come: the default procedure answers,
  // and a close posts no quit.
  SetWindowLongA(hWnd, GWL_USERDATA, 0);
  EXPECT_EQ(CGameApp::StaticWindowProc(hWnd, WM_NCCREATE, 0, 0), TRUE);
  CGameApp::StaticWindowProc(hWnd, WM_CLOSE, 0, 0);
  EXPECT_FALSE(QuitPosted());
}

// Change Device when the enumeration fails, then when the device cannot be made after OK:
// a box each, and the quit, which the loop finds before a frame runs on no device.
TEST_F(Messages, AFailedDeviceChangeShowsItsBoxAndQuitsBeforeTheNextFrame) {
  d3d.FailOn(FakeDirect3D::CALL_EnumAdapterModes, E_FAIL);  // the first enumeration only
  d3d.FailOn(FakeDirect3D::CALL_CreateDevice, E_FAIL, 0, true);
  for (const std::string what : {"enumeration", "creation"}) {
    win32::script::Enable({.realWindows = false, .maxFrames = 1});
    win32::script::SetDialogCallback([](HWND dlg, std::uint32_t) { return win32::UserClick(GetDlgItem(dlg, IDOK)), true; });
    PostMessageA(hWnd, WM_COMMAND, 40009, 0);
    testing::internal::CaptureStderr();
    app->RunLoop();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Fatal Error!: Device " + what + " failed. The application will now exit.\n");
    EXPECT_EQ(win32::script::FramesStarted(), 0u) << what;
    EXPECT_EQ(app->m_device, what == "creation" ? nullptr : &device);
  }
}

// Change Device: Cancel makes no device and changes nothing; OK makes one in the same window,
// takes the menu off for full screen and brings it back for a window, and gives the new device
// the render states. The player, where it stands, and its camera stay.
TEST_F(Messages, ChangeDeviceCancelledChangesNothingAcceptedSetsTheMenuByModeAndKeepsThePlayer) {
  d3d.deviceToCreate = &device;
  app->m_settings.m_fullscreenSettings = app->m_settings.m_windowedSettings;
  app->m_player.SetPosition(D3DXVECTOR3(4321, 900, 1234));
  const D3DXVECTOR3 position = app->m_player.GetPosition();
  const CCamera* camera = app->m_camera;
  // The mode clicked in the dialog, the button that ends it, then the mode in force.
  const struct { int mode, button; bool windowed; } runs[] = {
      {IDC_FULLSCREEN, IDCANCEL, true}, {IDC_FULLSCREEN, IDOK, false}, {IDC_WINDOW, IDOK, true}};
  for (const auto& run : runs) {
    SCOPED_TRACE(&run - runs);
    win32::script::SetDialogCallback([&](HWND dlg, std::uint32_t turn) {
      return win32::UserClick(GetDlgItem(dlg, turn == 0 ? run.mode : run.button)), true;
    });
    const int created = d3d.Calls(FakeDirect3D::CALL_CreateDevice);
    device.ClearLog();
    Send(WM_COMMAND, 40009);
    const bool accepted = run.button == IDOK;
    EXPECT_EQ(d3d.Calls(FakeDirect3D::CALL_CreateDevice) - created, accepted ? 1 : 0);
    EXPECT_EQ(app->m_settings.m_windowed, run.windowed);
    EXPECT_EQ(GetMenu(hWnd), run.windowed ? app->m_hMenu : nullptr);
    const karvo_test::DeviceCalls calls = device.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), karvo_test::RS(D3DRS_FILLMODE, D3DFILL_SOLID)) > 0, accepted);
    EXPECT_TRUE(app->m_player.GetPosition() == position && app->m_camera == camera);
  }
}

TEST_F(Messages, ReadInputTurnsByEachBindingOfKeysAndMouse) {
  // Keys held, cursor motion while the left button holds the capture, and
  // the turn in degrees and the rise that one frame makes of them.
  const struct { std::initializer_list<BYTE> keys; int dx, dy; float pitch, yaw, roll, rise = 0; } rows[] = {
      {{'A'}, 0, 0, 0.5f, 0, 0},     {{'Q'}, 0, 0, -0.5f, 0, 0}, {{VK_LEFT}, 0, 0, 0, -0.5f, 0},
      {{VK_RIGHT}, 0, 0, 0, 0.5f, 0}, {{}, 9, -6, -2.0f, 3.0f, 0}, {{VK_RBUTTON}, 9, -6, -2.0f, 0, -3.0f},
      {{'S'}, 9, -6, 0, 0, 0, 2.5f},  {{'A', 'Q'}, 0, 0, 0, 0, 0}, {{'J'}, 0, 0, 0, 0, 0, 7.0f}};
  for (const auto& row : rows) {
    win32::script::Enable({.realWindows = false});
    win32::script::HoldKeys(0, row.keys);
    win32::script::MoveCursor(0, row.dx, row.dy);
    app->m_captureCursor = {400, 300};  // where the cursor starts
    SetCapture(hWnd);
    QuitPosted();  // delivers the script
    const CPlayer& p = app->m_player;
    const float pitch = p.GetPitch(), yaw = p.GetYaw(), roll = p.GetRoll(), y = p.GetPosition().y;
    app->ReadInput();  // on a timer that has not ticked: no physics, only the keys' own moves
    SCOPED_TRACE(&row - rows);
    EXPECT_FLOAT_EQ(p.GetPosition().y - y, row.rise);
    EXPECT_FLOAT_EQ(p.GetPitch() - pitch, row.pitch);
    EXPECT_FLOAT_EQ(p.GetYaw() - yaw, row.yaw);
    EXPECT_FLOAT_EQ(p.GetRoll() - roll, row.roll);
    POINT cursor{};
    GetCursorPos(&cursor);
    EXPECT_EQ(cursor.x, 400) << "the cursor is put back";
    ReleaseCapture();
  }
}

// A controller event as SDL queues it, from controller 7: an axis at `value`,
// a button down or up (value 1 or 0), or the controller unplugged.
void PushPad(Uint32 type, int code = 0, int value = 0) {
  SDL_InitSubSystem(SDL_INIT_EVENTS);
  SDL_Event e{};
  if (type == SDL_CONTROLLERAXISMOTION) e.caxis = {type, 0, 7, Uint8(code), 0, 0, 0, Sint16(value), 0};
  else e.cbutton = {type, 0, 7, Uint8(code), Uint8(value), 0, 0};
  SDL_PushEvent(&e);
}

// Sixty frames of a stick direction or button leave the player where its key
// leaves it; a stick inside its dead zone does nothing; unplugging lets go.
// Z and X strafe: the step goes against or along the player's right. Back
// ends the walk only when held for a second.
TEST_F(Messages, GamepadMovesThePlayerAsItsKeyDoesAndBackHeldForASecondIsEscape) {
  constexpr Uint32 kAxis = SDL_CONTROLLERAXISMOTION, kButton = SDL_CONTROLLERBUTTONDOWN;
  const struct { BYTE vk; Uint32 type; int code, value, side; } rows[] = {
      {VK_UP, kAxis, SDL_CONTROLLER_AXIS_LEFTY, -32768, 0},    {VK_DOWN, kAxis, SDL_CONTROLLER_AXIS_LEFTY, 20000, 0},
      {'Z', kAxis, SDL_CONTROLLER_AXIS_LEFTX, -9000, -1},      {'X', kAxis, SDL_CONTROLLER_AXIS_LEFTX, 32767, 1},
      {VK_LEFT, kAxis, SDL_CONTROLLER_AXIS_RIGHTX, -32768, 0}, {VK_RIGHT, kAxis, SDL_CONTROLLER_AXIS_RIGHTX, 32767, 0},
      {'Q', kAxis, SDL_CONTROLLER_AXIS_RIGHTY, -32768, 0},     {'A', kAxis, SDL_CONTROLLER_AXIS_RIGHTY, 32767, 0},
      {0, kAxis, SDL_CONTROLLER_AXIS_LEFTY, -6000, 0},         {'J', kButton, SDL_CONTROLLER_BUTTON_A, 1, 0},
      {'S', kButton, SDL_CONTROLLER_BUTTON_B, 1, 0}};
  // A fresh program for each run, so that the clock and the body start alike.
  auto run = [&](auto start) {
    win32::script::Enable({.realWindows = false});
    AppUnderTest fresh;
    fresh->m_device = &device;
    fresh->ResetGameState();
    const CPlayer& p = fresh->m_player;
    const D3DXVECTOR3 from = p.GetPosition();
    start();
    for (int frame = 0; frame < 60; ++frame) QuitPosted(), fresh->m_timer.Tick(0.0f), fresh->ReadInput();
    const D3DXVECTOR3 to = p.GetPosition(), right = p.GetRight();
    fresh->m_device = nullptr;
    fresh->m_camera = nullptr;
    const D3DXVECTOR3 moved = to - from;
    return std::vector<float>{to.x, to.y, to.z, p.GetPitch(), p.GetYaw(), moved.x * right.x + moved.z * right.z,
                              std::hypot(moved.x, moved.z)};
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    const auto byKey = run([&] { win32::script::HoldKeys(0, {row.vk}); });
    const auto byPad = run([&] { PushPad(row.type, row.code, row.value); });
    for (std::size_t i = 0; i < byKey.size(); ++i) EXPECT_NEAR(byPad[i], byKey[i], 1e-3f) << "value " << i;
    EXPECT_EQ((byKey[5] > 1.0f) - (byKey[5] < -1.0f), row.side) << "step along the right " << byKey[5];
    // A step is a tenth of 500 x the frame time: 50 units in the second of frames of 1/60 s.
    if (row.vk == VK_UP) { EXPECT_NEAR(byKey[6], 50.0f, 0.01f); }
    PushPad(SDL_CONTROLLERDEVICEREMOVED);
    EXPECT_FALSE(QuitPosted());
    EXPECT_EQ(GetKeyState(row.vk) & 0x8000, 0) << "still held";
  }

  // Back: Escape goes down once.
  const auto escapesIn = [](int frames) {
    int count = 0;
    for (MSG msg; frames-- > 0;)
      while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) count += msg.message == WM_KEYDOWN && msg.wParam == VK_ESCAPE;
    return count;
  };
  PushPad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_BACK, 1);
  EXPECT_EQ(escapesIn(30), 0) << "half a second";
  PushPad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_BACK, 0);
  EXPECT_EQ(escapesIn(90), 0) << "a short press";
  PushPad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_BACK, 1);
  EXPECT_EQ(escapesIn(90), 1) << "held a second and a half";
}

}  // namespace
