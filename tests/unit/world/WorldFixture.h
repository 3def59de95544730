// A terrain in zero-filled storage (as it lives inside g_App) bound to a
// recording device, with a distinct texture in every texture member and a
// first person player whose camera the draws take, for the tests of the
// towers, plants and the scene's order.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Player.h"

namespace karvo_test {

class WorldFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    storage_ = std::calloc(1, sizeof(CTerrain));
    terrain = new (storage_) CTerrain();
    terrain->SetDevice(&device, true);
    for (IDirect3DTexture9** slot : Textures())
      ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, slot, nullptr),
                0);
    ASSERT_TRUE(player.SetCameraMode(CAM_MODE_1ST_PERSON));
    camera = player.GetCamera();
    device.ClearLog();
  }
  void TearDown() override {
    terrain->~CTerrain();  // releases the textures and the device
    std::free(storage_);
  }

  std::vector<IDirect3DTexture9**> Textures() {
    CTerrain& t = *terrain;
    return {&t.m_baseTexture,   &t.m_detailTexture, &t.m_waterTexture,    &t.m_wallTexture,
            &t.m_wallTexture2,  &t.m_treeTexture,   &t.m_tree3Texture,    &t.m_preservativTexture,
            &t.m_rainTexture,   &t.m_beardTexture,  &t.m_wingLeftTexture, &t.m_wingRightTexture,
            &t.m_weed4Texture,  &t.m_weed5Texture,  &t.m_flower1Texture,  &t.m_flower2Texture,
            &t.m_flower3Texture};
  }
  static DeviceCall Bind(const IDirect3DTexture9* texture) {
    return {"SetTexture", {0, Ptr(texture)}};
  }
  static DeviceCall RS(D3DRENDERSTATETYPE state, DWORD value) {
    return {"SetRenderState", {double(state), double(value)}};
  }
  static DeviceCall Fan() {
    return {"DrawPrimitiveUP", {double(D3DPT_TRIANGLEFAN), 2, sizeof(CVertex)}};
  }

  RecordingDevice device;
  CPlayer player;  // owns the camera
  CCamera* camera = nullptr;
  CTerrain* terrain = nullptr;

 private:
  void* storage_ = nullptr;
};

}  // namespace karvo_test
