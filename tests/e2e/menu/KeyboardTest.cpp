// The real program worked with the keyboard alone, every key a quick tap
// whose press and release are pushed within one frame, as automation and
// remote desktops send them: Camera > Third Person and Fill Mode > Wireframe
// by arrows, the settings dialog cancelled and then accepted (a new device,
// the world built again on it, the game state kept), and the run ended by
// Escapes, one a level.
#include <gtest/gtest.h>

#include <cstring>

#include "e2e/menu/SdlPlan.h"
#include "platform/win32/Win32Dialogs.h"
#include "terrain/Vertex.h"

namespace {

using namespace sdl_plan;

// The dialog's window colour with no world behind it.
constexpr std::uint32_t kBareBackground = 0x2E333D;

struct DialogShot {
  int dialogs = 0;
  Picture picture;  // the first dialog's window as drawn
} s_dialog;

// The corner colours of the body box, drawn anew for each device.
std::vector<D3DCOLOR> BodyColours() {
  std::vector<D3DCOLOR> colours;
  void* data = nullptr;
  IDirect3DVertexBuffer9* buffer = App().m_bodyMesh.m_vertexBuffer;
  if (!buffer || FAILED(buffer->Lock(0, 0, &data, D3DLOCK_READONLY))) return colours;
  for (int i = 0; i < 8; ++i) colours.push_back(static_cast<const CVertex*>(data)[i].m_diffuse);
  buffer->Unlock();
  return colours;
}

// A dialog takes one turn for each event and a few to draw: far fewer than this.
constexpr std::uint32_t kTurnLimit = 1000;

// The first turn of each dialog keeps the first dialog's picture; a dialog
// that the keys did not end is cancelled, as it would wait for a person.
void OnTurn(HWND dialog, std::uint32_t turn, void*) {
  if (turn == kTurnLimit) {
    ADD_FAILURE() << "the keys pushed for the dialog did not reach it";
    EndDialog(dialog, IDCANCEL);
  }
  if (turn != 0 || ++s_dialog.dialogs > 1) return;
  std::vector<std::uint8_t> rgba;
  int width = 0, height = 0;
  win32::DrawDialog(dialog, &rgba, &width, &height);
  for (std::size_t i = 0; i + 3 < rgba.size(); i += 4)
    s_dialog.picture.push_back(std::uint32_t(rgba[i]) << 16 | std::uint32_t(rgba[i + 1]) << 8 | rgba[i + 2]);
}

TEST(Keyboard, MenusAndTheSettingsDialogAnswerQuickTapsAlone) {
  win32::SetDialogTurnHook(&OnTurn, nullptr);
  Picture before;
  CD3DSettings settings{};
  IDirect3DDevice9* device = nullptr;
  std::vector<D3DCOLOR> colours;
  D3DXVECTOR3 position;
  Then([&] {
    before = BackBuffer(), Taps("alt right down down down enter");
  });           // Camera, Third Person
  Await(CameraBehindTheBody);
  Then([&] {
    ASSERT_EQ(App().m_player.GetCameraMode(), CAM_MODE_3RD_PERSON);
    EXPECT_GT(ChangedBelow(before, BackBuffer()), before.size() / 10)
        << "no body box in the middle";
    Taps("alt right right down right down enter");  // Render States, Fill Mode, Wireframe
  });
  Then([&] {
    EXPECT_EQ(App().m_fillMode, D3DFILL_WIREFRAME);
    EXPECT_GT(Share(BackBuffer(), kClear), 0.2) << "no lines with the clear colour between them";
    settings = App().m_settings, device = App().m_device;
    colours = BodyColours(), position = App().m_player.GetPosition();
    // Change Device; in the dialog, the next multisample type; Escape cancels.
    Taps("alt+F c alt+M down esc");
  });
  Then([&] {
    EXPECT_EQ(s_dialog.dialogs, 1);
    EXPECT_EQ(App().m_device, device);
    EXPECT_EQ(std::memcmp(&App().m_settings, &settings, sizeof settings), 0);
    EXPECT_GT(Share(BackBuffer(), kClear), 0.2) << "the world stands still after Cancel";
    // Again; the next multisample type and vertex processing; Enter is OK.
    Taps("alt+F c alt+M down tab tab down enter");
  });
  Then([&] {
    EXPECT_EQ(s_dialog.dialogs, 2);
    EXPECT_NE(App().m_device, device);
    const CD3DDisplaySettings &was = settings.GetCurrentSettings(),
                              &now = App().m_settings.GetCurrentSettings();
    EXPECT_NE(now.m_multiSampleType, was.m_multiSampleType);
    EXPECT_NE(now.m_vertexProcessing, was.m_vertexProcessing);
    EXPECT_EQ(now.m_presentInterval, was.m_presentInterval);
    EXPECT_GT(Share(BackBuffer(), kClear), 0.2) << "the new device draws the world in wireframe";
    EXPECT_EQ(BodyColours().size(), 8u);
    EXPECT_NE(BodyColours(), colours);
    const D3DXVECTOR3 moved = App().m_player.GetPosition() - position;
    EXPECT_LT(D3DXVec3Length(&moved), 1e-3f) << "the body stays where it was";
    // Each Escape closes one level; the third reaches the world and ends the run.
    Taps("alt+F esc esc");
  });
  Then([] { Taps("esc"); });
  RunPlan();
  EXPECT_EQ(App().m_device, nullptr) << "the device outlived the run";
  // Under the dialog the window showed the world, dimmed, not a bare colour.
  ASSERT_FALSE(s_dialog.picture.empty());
  EXPECT_LT(Share(s_dialog.picture, kBareBackground), 0.01);
}

}  // namespace
