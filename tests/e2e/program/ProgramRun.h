// ProgramRun: one whole run of the real program inside the test process,
// WinMain from Startup to Shutdown, on the scripted win32 back end (real SDL
// windows, the GL device under Xvfb, a fixed clock of 1/60 s) in the
// generated assets folder. The process has a single g_App, so the run
// happens once, on first use, and every test reads what it recorded.
//
// The script, by frame (the events of frame N arrive before frame N runs):
//    0         the first frame: the body comes down onto the ground
//    1         the window is made small (480 x 320) for the rest of the run
//    2 - 9     J and X held: the body rises and steps to its right, so that
//              x and z differ from here on
//   10 -       free fall back onto the ground, at rest well before 56
//   56 - 61   a lost device: lost (no reset possible) with Up held in
//              58 - 60, reset allowed before 61
//   66 -       Up held: 120 frames at 1/60 s, then steps of 0.5 s so that the
//              walk reaches the sea in a few seconds of run time
//   sea + 3    Escape: the run ends
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9.h"
#include "platform/win32/windows.h"
#include "view/Camera.h"

namespace program_test {

// Frames of the script.
constexpr std::uint32_t kShrinkAt = 1;
constexpr int kSmallWidth = 480, kSmallHeight = 320;
constexpr std::uint32_t kLiftFrom = 2, kLiftUntil = 10;  // kLiftUntil: the first frame without J and X
// The device is made lost before kLossAt; kDrawnAt is the frame after the one
// in which the reset became possible.
constexpr std::uint32_t kLossAt = 56, kLostUpFrom = 58, kResetAllowedAt = 61, kDrawnAt = 62;
constexpr std::uint32_t kWalkFrom = 66, kWalkFrames = 120;
constexpr double kSeaStep = 0.5;
constexpr std::uint32_t kSwimFramesBeforeEnd = 3;
constexpr std::uint32_t kSeaFrameLimit = 400;  // frames after the walk to find the sea in
constexpr float kWaterLevel = 864.0f;

// What the program's state was at the boundary before a frame ran.
struct FrameRecord {
  std::uint32_t frame = 0;  // the frame about to run
  D3DXVECTOR3 position, gravity;
  float friction = 0.0f, maxVelocityXZ = 0.0f, maxVelocityY = 0.0f;
  float ground = 0.0f;  // GetHeight under the body, with the row's parity
  bool deviceLost = false;
  std::uint32_t presents = 0, frameRate = 0;  // presents: successful Present calls so far
  std::string title;
};

class ProgramRun {
 public:
  // Runs the program the first time; later calls give the same record.
  static const ProgramRun& Get();

  // ---- the start, read before frame 0 ----
  std::uint32_t startCameraMode = 0;
  D3DXVECTOR3 startPosition;
  float startPitch = 0.0f, startYaw = 0.0f;
  std::string startTitle;

  // ---- the lost device ----
  // TestCooperativeLevel while no reset is possible, then once it is.
  HRESULT levelWhileLost = S_OK, levelOnceAllowed = S_OK;

  // ---- the whole run ----
  std::vector<FrameRecord> frames;  // one per frame boundary, in order
  std::uint32_t escapeFrame = 0;    // Escape went down before this frame
  std::uint32_t framesStarted = 0;  // frame boundaries the script saw
  int exitCode = -1;
  std::vector<std::string> problems;  // what kept the script from its plan

  // ---- after WinMain returned ----
  bool deviceReleased = false, direct3DReleased = false, windowHandleCleared = false;
  bool windowGone = false, terrainReleased = false, shutdownAgain = false;

  // The record of the boundary before `frame`; null when none was seen.
  const FrameRecord* At(std::uint32_t frame) const;

 private:
  ProgramRun() = default;
  void Run();
  void RecordStart();
  void Record(std::uint32_t frame);
  void Plan(std::uint32_t frame);

  HWND m_window = nullptr;
  std::uint32_t m_swimFrames = 0;
};

// The height of the drawn ground at (x, z), with the row parity the game uses.
float GroundAt(float x, float z);

}  // namespace program_test
