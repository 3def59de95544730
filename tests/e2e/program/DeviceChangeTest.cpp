// Change Device in the whole program, in a process of its own (the world is
// placed anew by the change): the dialog is played by the script, and OK
// takes another multisample type or present interval. (Cancel, by Escape,
// is the dialog keys test's concern; memory and GL objects over many changes
// are the soak's.)
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "app/GameApp.h"
#include "device/D3DSettingsDlg.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/script/Win32Script.h"
#include "support/DeviceChangePlay.h"
#include "terrain/Vertex.h"

namespace {

__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

constexpr UINT kChangeDevice = 40009;
constexpr std::uint32_t kOkAt = 4;

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
  std::uint32_t presentsAfterOk = 0;
  int exitCode = -1;
};

const Record& RunProgram() {
  static Record* record = [] {
    auto* r = new Record;
    win32::script::Options options;
    options.realWindows = true;
    options.maxFrames = kOkAt + 30;
    win32::script::Enable(options);
    win32::script::Command(kOkAt, kChangeDevice);
    win32::script::KeyDown(kOkAt + 4, VK_ESCAPE);
    win32::script::SetDialogCallback([r](HWND dlg, std::uint32_t turn) {
      if (turn == 0) {
        r->beforeOk = Take();
        r->pickedList = test_support::PickAnother(dlg, {IDC_MULTISAMPLE_TYPE_COMBO, IDC_PRESENTINTERVAL_COMBO});
        return r->pickedList != 0;
      }
      win32::UserClick(GetDlgItem(dlg, IDOK));
      return true;
    });
    win32::script::SetFrameCallback([r](std::uint32_t frame) {
      d3d9gl::FrameStats stats;
      if (frame == kOkAt) r->afterOk = Take();
      if (frame == kOkAt + 2 && d3d9gl::GetFrameStats(g_App.m_device, stats))
        r->presentsAfterOk = stats.presents;
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

}  // namespace
