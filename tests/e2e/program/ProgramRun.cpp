// The scripted whole run of the program and what it records (see ProgramRun.h).
#include "ProgramRun.h"

#include <cstdlib>

#include "app/GameApp.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/script/Win32Script.h"

namespace program_test {

namespace {

// The sounds load while g_App is constructed, before main: the audio driver
// has to be chosen even earlier. A choice made outside stands.
__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

constexpr BYTE kKeyJ = 0x4A, kKeyX = 0x58;

std::uint32_t Presents() {
  d3d9gl::FrameStats stats;
  return g_App.m_device && d3d9gl::GetFrameStats(g_App.m_device, stats) ? stats.presents : 0;
}

}  // namespace

float GroundAt(float x, float z) {
  const CTerrain& terrain = g_App.m_terrain;
  const int row = static_cast<int>(z / terrain.m_scale.z);
  return terrain.GetHeight(x, z, (row & 1) != 0);
}

const ProgramRun& ProgramRun::Get() {
  static ProgramRun* run = [] {
    auto* r = new ProgramRun;
    r->Run();
    return r;
  }();
  return *run;
}

const FrameRecord* ProgramRun::At(std::uint32_t frame) const {
  for (const FrameRecord& record : frames)
    if (record.frame == frame) return &record;
  return nullptr;
}

void ProgramRun::Run() {
  win32::script::Options script;
  script.fixedStep = 1.0 / 60.0;
  script.realWindows = true;
  script.maxFrames = kWalkFrom + kWalkFrames + kSeaFrameLimit + 50;  // a backstop only
  win32::script::Enable(script);
  for (BYTE key : {kKeyJ, kKeyX}) {
    win32::script::KeyDown(kLiftFrom, key);
    win32::script::KeyUp(kLiftUntil, key);
  }
  win32::script::KeyDown(kLostUpFrom, VK_UP);
  win32::script::KeyUp(kResetAllowedAt, VK_UP);
  win32::script::KeyDown(kWalkFrom, VK_UP);
  win32::script::SetFrameCallback([this](std::uint32_t frame) {
    if (frame == 0) {
      RecordStart();
    }
    Record(frame);
    Plan(frame);
  });

  exitCode = WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT);

  win32::script::SetFrameCallback(nullptr);
  if (frames.empty()) problems.push_back("no frame ran: the start failed");
  framesStarted = win32::script::FramesStarted();
  deviceReleased = g_App.m_device == nullptr;
  direct3DReleased = g_App.m_d3d == nullptr;
  windowHandleCleared = g_App.m_hWnd == nullptr;
  windowGone = m_window != nullptr && !IsWindow(m_window);
  terrainReleased = g_App.m_terrain.m_heightMap == nullptr &&
                    g_App.m_terrain.m_blockMeshes == nullptr && g_App.m_terrain.m_device == nullptr;
  shutdownAgain = g_App.Shutdown();
  win32::script::Disable();
}

void ProgramRun::RecordStart() {
  m_window = g_App.m_hWnd;
  startCameraMode = g_App.m_player.GetCameraMode();
  startPosition = g_App.m_player.GetPosition();
  startPitch = g_App.m_player.GetPitch();
  startYaw = g_App.m_player.GetYaw();
}

void ProgramRun::Record(std::uint32_t frame) {
  const CPlayer& p = g_App.m_player;
  char title[256] = {};
  GetWindowTextA(g_App.m_hWnd, title, sizeof title);
  const FrameRecord record{frame, p.GetPosition(), p.GetGravity(), p.GetFriction(),
                           p.GetMaxVelocityXZ(), p.GetMaxVelocityY(),
                           GroundAt(p.GetPosition().x, p.GetPosition().z),
                           g_App.m_deviceLost, Presents(), g_App.m_timer.GetFrameRate(nullptr), title};
  if (frame == 0) startTitle = record.title;
  frames.push_back(record);
}

void ProgramRun::Plan(std::uint32_t frame) {
  IDirect3DDevice9* device = g_App.m_device;
  if (frame == kShrinkAt) {
    // The user makes the window small: software GL pays by the pixel, and
    // nothing but the picture's size depends on the window.
    RECT place{};
    GetWindowRect(m_window, &place);
    SetWindowPos(m_window, HWND_NOTOPMOST, place.left, place.top, kSmallWidth, kSmallHeight,
                 SWP_NOACTIVATE);
  } else if (device == nullptr) {
    if (frame == kLossAt) problems.push_back("no device to make lost");
  } else if (frame == kLossAt) {
    d3d9gl::SimulateDeviceLost(device, false);
  } else if (frame > kLossAt && frame < kResetAllowedAt) {
    levelWhileLost = device->TestCooperativeLevel();
  } else if (frame == kResetAllowedAt) {
    d3d9gl::AllowReset(device);
    levelOnceAllowed = device->TestCooperativeLevel();
  } else if (frame == kWalkFrom + kWalkFrames) {
    win32::script::SetFixedStep(kSeaStep);
  }

  if (frame > kWalkFrom && escapeFrame == 0) {
    if (frames.back().position.y < kWaterLevel) ++m_swimFrames;
    if (m_swimFrames == kSwimFramesBeforeEnd) {
      escapeFrame = frame + 1;
    } else if (frame == kWalkFrom + kWalkFrames + kSeaFrameLimit) {
      problems.push_back("the walk did not reach the sea");
      escapeFrame = frame + 1;
    }
    if (escapeFrame) win32::script::KeyDown(escapeFrame, VK_ESCAPE);
  }
}

}  // namespace program_test
