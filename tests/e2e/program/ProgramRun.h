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
//   56 - 62   a lost device: lost (no reset possible) with Up held in
//              58 - 60, reset allowed before 61, the window put back to its
//              small size before 62
//   66 -       Up held: 120 frames at 1/60 s, then steps of 0.5 s so that the
//              walk reaches the sea in a few seconds of run time
//   sea + 3    Escape: the run ends
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "device/D3DSettings.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9.h"
#include "platform/win32/windows.h"
#include "view/Camera.h"

namespace program_test {

// Frames of the script.
constexpr std::uint32_t kShrinkAt = 1;
constexpr int kSmallWidth = 480;
constexpr int kSmallHeight = 320;
constexpr std::uint32_t kLiftFrom = 2;
constexpr std::uint32_t kLiftUntil = 10;  // first frame without J and X
constexpr std::uint32_t kLossAt = 56;     // the device is made lost before this frame
constexpr std::uint32_t kLostUpFrom = 58;
constexpr std::uint32_t kResetAllowedAt = 61;
constexpr std::uint32_t kRestoreAt = 62;  // the window gets its former size back before this frame
constexpr std::uint32_t kAfterAt = 63;    // the frame drawn after the restore is read here
constexpr std::uint32_t kWalkFrom = 66;
constexpr std::uint32_t kWalkFrames = 120;
constexpr double kSeaStep = 0.5;
constexpr std::uint32_t kSwimFramesBeforeEnd = 3;
constexpr std::uint32_t kSeaFrameLimit = 400;  // frames after the walk to find the sea in

// What the program's state was at the boundary before a frame ran.
struct FrameRecord {
  std::uint32_t frame = 0;  // the frame about to run
  D3DXVECTOR3 position;
  D3DXVECTOR3 velocity;
  D3DXVECTOR3 gravity;
  float friction = 0.0f;
  float maxVelocityXZ = 0.0f;
  float maxVelocityY = 0.0f;
  float timeElapsed = 0.0f;
  float ground = 0.0f;  // GetHeight under the body, with the row's parity
  std::uint32_t cameraMode = 0;
  bool deviceLost = false;
  std::uint32_t presents = 0;  // successful Present calls so far
  std::uint32_t frameRate = 0;
  std::string title;
};

// A back buffer as read back: D3DCOLOR words, top row first.
struct Picture {
  UINT width = 0;
  UINT height = 0;
  std::vector<std::uint32_t> argb;
};

// One option of the enumeration, as plain values.
struct OptionSummary {
  D3DDEVTYPE deviceType{};
  D3DFORMAT adapterFormat{};
  D3DFORMAT backBufferFormat{};
  bool windowed = false;
  std::size_t depthFormats = 0;
  std::size_t multiSampleTypes = 0;
  std::size_t multiSampleQualities = 0;
  std::vector<std::uint32_t> vertexProcessing;
  std::vector<std::uint32_t> presentIntervals;
};

class ProgramRun {
 public:
  // Runs the program the first time; later calls give the same record.
  static const ProgramRun& Get();

  // ---- the start, read before frame 0 ----
  std::uint32_t startCameraMode = 0;
  D3DXVECTOR3 startPosition;
  float startPitch = 0.0f;
  float startYaw = 0.0f;
  std::string startTitle;
  RECT windowRect{};
  RECT clientRect{};
  int sdlWidth = 0;  // the real window's size
  int sdlHeight = 0;
  bool sdlShown = false;
  int menuBarHeight = 0;
  bool windowVisible = false;
  std::uint32_t viewWidth = 0;
  std::uint32_t viewHeight = 0;
  UINT backBufferWidth = 0;
  UINT backBufferHeight = 0;
  D3DDISPLAYMODE desktopMode{};
  CD3DSettings settings{};

  // ---- the enumeration of the real Direct3D object ----
  HRESULT enumerateResult = E_FAIL;
  std::uint32_t adapterCount = 0;
  std::vector<D3DDISPLAYMODE> firstAdapterModes;
  std::size_t firstAdapterDevices = 0;
  std::vector<OptionSummary> options;  // of every device of the first adapter

  // ---- the lost device ----
  Picture beforeLoss;             // the last frame drawn before the loss
  Picture afterReset;             // the first frame drawn after the reset, in the reset's window
  Picture afterRestore;           // the frame drawn once the window has its size back
  RECT smallWindowRect{};         // the window as the user made it small
  HRESULT levelWhileLost = S_OK;  // TestCooperativeLevel while no reset is possible
  HRESULT levelOnceAllowed = S_OK;
  RECT windowAfterReset{};
  RECT clientAfterReset{};

  // ---- the whole run ----
  std::vector<FrameRecord> frames;  // one per frame boundary, in order
  std::uint32_t escapeFrame = 0;    // Escape went down before this frame
  std::uint32_t framesStarted = 0;  // frame boundaries the script saw
  int exitCode = -1;
  D3DXVECTOR3 finalPosition;
  std::vector<std::string> problems;  // what kept the script from its plan

  // ---- after WinMain returned ----
  bool deviceReleased = false;
  bool direct3DReleased = false;
  bool windowHandleCleared = false;
  bool windowGone = false;
  bool terrainReleased = false;
  bool shutdownAgain = false;

  // The record of the boundary before `frame`; null when none was seen.
  const FrameRecord* At(std::uint32_t frame) const;

 private:
  ProgramRun() = default;
  void Run();
  void OnFrame(std::uint32_t frame);
  void RecordStart();
  void RecordEnumeration();
  void Record(std::uint32_t frame);
  void Plan(std::uint32_t frame);

  HWND m_window = nullptr;
  std::uint32_t m_swimFrames = 0;
};

// The height of the drawn ground at (x, z), with the row parity the game uses.
float GroundAt(float x, float z);

}  // namespace program_test
