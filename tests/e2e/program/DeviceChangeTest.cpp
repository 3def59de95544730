// Change Device in the whole program, in a process of its own (the world is
// placed anew by every change): the dialog is played by the script. A change
// to another multisample type or present interval with OK, then 100 changes
// while process memory and live GL objects are counted. (Cancel, by Escape,
// is the dialog keys test's concern.)
#include <gtest/gtest.h>
#include <malloc.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "app/GameApp.h"
#include "device/D3DSettingsDlg.h"
#include "device/ValueNames.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/Win32Script.h"
#include "support/DeviceChangePlay.h"
#include "terrain/Vertex.h"

namespace {

using test_support::GlCounts;
using test_support::LiveGlObjects;

__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

constexpr UINT kChangeDevice = 40009;
// Changes at kRepeatFrom and every second frame after it; the sanitizer
// build, a few times slower a change, makes fewer, still well past kWarm.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint32_t kRepeats = 40;
#else
constexpr std::uint32_t kRepeats = 100;
#endif
constexpr std::uint32_t kOkAt = 4, kRepeatFrom = 8, kWarm = 10;

// What the program showed around one change.
struct Snapshot {
  D3DXVECTOR3 position, velocity;
  std::vector<std::uint32_t> bodyColours;
  IDirect3DDevice9* device = nullptr;
  CD3DSettings settings{};
};

Snapshot Take() {
  Snapshot s{g_App.m_player.GetPosition(), g_App.m_player.GetVelocity(), {}, g_App.m_device, g_App.m_settings};
  void* data = nullptr;
  IDirect3DVertexBuffer9* buffer = g_App.m_bodyMesh.m_vertexBuffer;
  if (buffer && SUCCEEDED(buffer->Lock(0, 0, &data, D3DLOCK_READONLY))) {
    for (int i = 0; i < 8; ++i)
      s.bodyColours.push_back(static_cast<const CVertex*>(data)[i].m_diffuse);
    buffer->Unlock();
  }
  return s;
}

struct Record {
  Snapshot beforeOk, afterOk;
  int pickedList = 0;
  std::uint32_t dialogs = 0, presentsAfterOk = 0;
  // After each of the repeated changes, a frame later.
  struct Sample {
    long heapKiB;
    GlCounts gl;
    D3DMULTISAMPLE_TYPE samples;
  };
  std::vector<Sample> samples;
  int exitCode = -1;
};

const Record& RunProgram() {
  static Record* record = [] {
    auto* r = new Record;
    win32::script::Options options;
    options.realWindows = true;
    options.maxFrames = kRepeatFrom + 2 * kRepeats + 20;
    win32::script::Enable(options);
    win32::script::Command(kOkAt, kChangeDevice);
    for (std::uint32_t i = 0; i < kRepeats; ++i)
      win32::script::Command(kRepeatFrom + 2 * i, kChangeDevice);
    win32::script::KeyDown(kRepeatFrom + 2 * kRepeats + 2, VK_ESCAPE);
    win32::script::SetDialogCallback([r](HWND dlg, std::uint32_t turn) {
      if (turn == 0) {
        if (++r->dialogs == 1) r->beforeOk = Take();
        const int picked = test_support::PickAnother(dlg, {IDC_MULTISAMPLE_TYPE_COMBO, IDC_PRESENTINTERVAL_COMBO});
        if (r->dialogs == 1) r->pickedList = picked;
        return picked != 0;
      }
      win32::UserClick(GetDlgItem(dlg, IDOK));
      return true;
    });
    win32::script::SetFrameCallback([r](std::uint32_t frame) {
      d3d9gl::FrameStats stats;
      if (frame == kOkAt) r->afterOk = Take();
      if (frame == kOkAt + 2 && d3d9gl::GetFrameStats(g_App.m_device, stats))
        r->presentsAfterOk = stats.presents;
      // Counted a frame after a change, with the new device's context current.
      if (frame > kRepeatFrom && frame <= kRepeatFrom + 2 * kRepeats &&
          (frame - kRepeatFrom) % 2 == 1) {
        r->samples.push_back({static_cast<long>(mallinfo2().uordblks / 1024), LiveGlObjects(),
                              g_App.m_settings.GetCurrentSettings().m_multiSampleType});
      }
    });
    r->exitCode =
        WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT);
    win32::script::SetFrameCallback(nullptr);
    win32::script::SetDialogCallback(nullptr);
    win32::script::Disable();
    return r;
  }();
  return *record;
}

TEST(DeviceChange, OkRebuildsTheWorldOnANewDeviceAndTheGameStateStays) {
  const Record& r = RunProgram();
  ASSERT_NE(r.pickedList, 0) << "the machine offers one multisample type and one present interval";
  const CD3DDisplaySettings& before = r.beforeOk.settings.GetCurrentSettings();
  const CD3DDisplaySettings& after = r.afterOk.settings.GetCurrentSettings();
  EXPECT_TRUE(r.pickedList == IDC_MULTISAMPLE_TYPE_COMBO ? after.m_multiSampleType != before.m_multiSampleType
                                                         : after.m_presentInterval != before.m_presentInterval);
  EXPECT_NE(r.afterOk.device, r.beforeOk.device);
  EXPECT_EQ(g_App.m_device, nullptr);  // released at the end of the run
  EXPECT_EQ(r.afterOk.bodyColours.size(), 8u);
  EXPECT_NE(r.afterOk.bodyColours, r.beforeOk.bodyColours);
  EXPECT_TRUE(r.afterOk.position == r.beforeOk.position && r.afterOk.velocity == r.beforeOk.velocity);
  EXPECT_GE(r.presentsAfterOk, 1u);
  EXPECT_EQ(r.exitCode, 0);
}

TEST(DeviceChange, AHundredChangesKeepMemoryAndGlObjectsFlat) {
  const Record& r = RunProgram();
  EXPECT_EQ(r.dialogs, kRepeats + 1);
  ASSERT_EQ(r.samples.size(), kRepeats);
  for (std::size_t i = 0; i < r.samples.size(); ++i) {
    const auto& [heap, gl, samples] = r.samples[i];
    if (i % 30 == kWarm - 1 || i + 2 >= kRepeats)
      std::printf("after %3zu changes (%s): heap %ld KiB; GL textures %d, buffers %d, programs %d\n", i + 1,
                  MultiSampleTypeName(samples), heap, gl[0], gl[1], gl[5]);
    // The same settings as after the warm-up change of the same parity: the same objects.
    EXPECT_EQ(gl, r.samples[i < kWarm ? i : kWarm - 2 + i % 2].gl) << "after change " << i + 1;
  }
  // A world left behind would be megabytes each time.
  EXPECT_LT(r.samples.back().heapKiB - r.samples[kWarm - 2 + (kRepeats - 1) % 2].heapKiB, 8 * 1024);
}

}  // namespace
