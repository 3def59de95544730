// A long run of the whole program through the scripted back end, doing in
// turn what a user does over an evening: walking, jumping, swimming and
// diving, mouse look, every menu command, resizing, minimising and restoring,
// full screen and back, lost devices, and a change of device through the
// settings dialog. What the process holds after the run (memory, open files,
// GL objects) must be what it held in the first cycles: a leak of a few bytes
// a frame shows over thousands of frames.
//
// KARVO_SOAK_FRAMES sets the length (10,000 frames; the suite runs 600, which
// gives every command once, and 300 in the sanitizer build); KARVO_SOAK_TRACE
// prints each cycle.
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "app/GameApp.h"
#include "device/D3DSettingsDlg.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/script/Win32Script.h"
#include "support/DeviceChangePlay.h"

namespace {

__attribute__((constructor(101))) void ChooseQuietAudio() { setenv("SDL_AUDIODRIVER", "dummy", 0); }

constexpr std::uint32_t kCycle = 100;
constexpr BYTE kKeyJ = 0x4A, kKeyS = 0x53;
constexpr UINT kChangeDevice = 40009;

// Every command of the menus but Exit and Change Device, six a cycle, all
// delivered before one frame. Each cycle ends on cheap states (no anisotropy,
// solid fill): software GL pays dearly for 64-fold anisotropic filtering, and
// only the last command of a group stays in force for the frames after it.
constexpr UINT kCommands[] = {40011, 40012, 40010, 40014, 40013, 40022,   // cameras, fill
                              40031, 40032, 40034, 40035, 40036, 40033,   // minification, magnification
                              40038, 40037, 40019, 40020, 40021, 40039,   // magnification, mip filter
                              40040, 40041, 40042, 40043, 40044, 40039,   // maximum anisotropy
                              40045, 40039, 40024, 40025, 40026, 40027,   // colour operations
                              40028, 40029, 40030, 40023, 40022, 40028};  // render mode

struct Holdings {
  long memoryKiB = 0, openFiles = 0;
};

// GL objects at the end of each cycle. The device changes once a cycle and
// its settings take turns, so a cycle is compared with an early one of the
// same parity.
struct GlCensus {
  test_support::GlCounts early[2]{}, last{};
  std::uint32_t lastCycle = 0;
  int changes = 0;
};

#if defined(__SANITIZE_ADDRESS__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

// Memory is the live heap, not the resident size: resident memory swings by
// whole back buffers and by what the allocator keeps, and under
// AddressSanitizer the quarantine of freed blocks makes it climb for hundreds
// of megabytes. A leak shows in the live heap either way.
Holdings Measure() {
  Holdings h;
#if defined(__SANITIZE_ADDRESS__)
  h.memoryKiB = static_cast<long>(__sanitizer_get_current_allocated_bytes() / 1024);
#else
  const struct mallinfo2 heap = mallinfo2();  // blocks in use, and the large ones mapped apart
  h.memoryKiB = static_cast<long>((heap.uordblks + heap.hblkhd) / 1024);
#endif
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) h.openFiles += entry.exists() ? 1 : 0;
  return h;
}

// What the user does at frame f of a cycle (cycle number c).
void Plan(std::uint32_t frame, Holdings& early, Holdings& last, GlCensus& gl) {
  namespace script = win32::script;
  const std::uint32_t c = frame / kCycle, f = frame % kCycle, next = frame + 1;
  HWND window = g_App.m_hWnd;
  switch (f) {
    case 0: script::HoldKeys(next, {VK_UP, VK_LBUTTON}); break;
    case 5: script::MoveCursor(next, 30, -12); break;
    case 10: script::HoldKeys(next, {VK_UP, kKeyJ}); break;
    case 14: script::HoldKeys(next, {VK_UP, VK_RBUTTON, VK_LBUTTON}); break;
    case 16: script::MoveCursor(next, -40, 8); break;
    case 20: script::SetFixedStep(0.25); break;  // far and fast: into the sea and under it
    case 30: script::HoldKeys(next, {VK_UP, kKeyS}); break;
    case 40: script::HoldKeys(next, {VK_DOWN}); break;
    case 50: script::HoldKeys(next, {}); script::SetFixedStep(1.0 / 60.0); break;
    case 52:
      for (std::uint32_t i = 0; i < 6; ++i) script::Command(next, kCommands[(c * 6 + i) % std::size(kCommands)]);
      break;
    case 60: SetWindowPos(window, HWND_NOTOPMOST, 0, 0, c % 2 ? 400 : 640, c % 2 ? 300 : 480, SWP_NOMOVE); break;
    case 65: ShowWindow(window, SW_MINIMIZE); break;
    case 68: ShowWindow(window, SW_RESTORE); break;
    case 75:
    case 80: script::HoldKeys(next, {VK_SHIFT, VK_RETURN}); break;
    case 76:
    case 81: script::HoldKeys(next, {}); break;
    case 85: if (g_App.m_device) d3d9gl::SimulateDeviceLost(g_App.m_device, false); break;
    case 88: if (g_App.m_device) d3d9gl::AllowReset(g_App.m_device); break;
    case 90: script::Command(next, kChangeDevice); break;
    case kCycle - 1: {
      // Full screen and small windows take turns, so memory swings
      // by whole back buffers: the first three cycles set the high mark.
      const Holdings now = Measure();
      last = now;  // while the program still holds everything
      if (c < 3) early = {std::max(early.memoryKiB, now.memoryKiB), std::max(early.openFiles, now.openFiles)};
      gl.last = test_support::LiveGlObjects();
      gl.lastCycle = c;
      if (c >= 1 && c < 3) gl.early[c % 2] = gl.last;
      if (std::getenv("KARVO_SOAK_TRACE"))
        std::fprintf(stderr, "cycle %u: %ld KiB, %ld files, %d textures, %d buffers, %d programs\n", c,
                     now.memoryKiB, now.openFiles, gl.last[0], gl.last[1], gl.last[5]);
      break;
    }
  }
}

TEST(Soak, TenThousandFramesOfEverythingHoldNothingMore) {
  const char* asked = std::getenv("KARVO_SOAK_FRAMES");
  const std::uint32_t frames = asked ? std::uint32_t(std::atol(asked)) : 10000;
  Holdings early, atEnd;
  GlCensus gl;
  std::uint32_t lastFrame = 0;
  win32::script::Options options;
  options.maxFrames = frames;
  win32::script::Enable(options);
  win32::script::SetFrameCallback([&](std::uint32_t frame) {
    lastFrame = frame;
    Plan(frame, early, atEnd, gl);
  });
  // Another multisample type or present interval, then OK.
  win32::script::SetDialogCallback([&](HWND dlg, std::uint32_t turn) {
    if (turn == 0) return test_support::PickAnother(dlg, {IDC_MULTISAMPLE_TYPE_COMBO, IDC_PRESENTINTERVAL_COMBO}) != 0;
    ++gl.changes;
    win32::UserClick(GetDlgItem(dlg, IDOK));
    return true;
  });
  const int exitCode = WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT);
  win32::script::SetFrameCallback(nullptr);
  win32::script::SetDialogCallback(nullptr);
  win32::script::Disable();

  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(lastFrame + 1, frames) << "the run ended early";
  std::printf("after %u frames: %ld KiB of memory, %ld files open; most in the first cycles: %ld KiB, %ld files\n",
              frames, atEnd.memoryKiB, atEnd.openFiles, early.memoryKiB, early.openFiles);
  EXPECT_LE(atEnd.openFiles, early.openFiles);
  EXPECT_EQ(gl.changes, int(frames / kCycle)) << "a device change a cycle";
  // Shader programs are a cache that grows with the states met; every other
  // kind of object must come back to the same count.
  const test_support::GlCounts& same = gl.early[gl.lastCycle % 2];
  for (int kind : {0, 1, 2, 3, 4}) EXPECT_EQ(gl.last[kind], same[kind]) << "GL object kind " << kind;
  // The allocator keeps some slack and the driver its caches: a margin of
  // 8 MiB still catches a leak of a kilobyte a frame.
  EXPECT_LE(atEnd.memoryKiB, early.memoryKiB + 8 * 1024);
}

}  // namespace
