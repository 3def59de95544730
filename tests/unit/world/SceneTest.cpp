// RenderScene's order on a recording device: which group comes before the
// water on either side of 855.0, the stage set-ups around the loops and the
// water, the closing states, and the rain switch's one draw a frame.
#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <utility>

#include "WorldFixture.h"
#include "app/GameApp.h"
#include "platform/crt/crt.h"

using karvo_test::DeviceCall;
using karvo_test::DeviceCalls;

namespace {

class Scene : public karvo_test::WorldFixture {
 protected:
  // What one piece of drawing sends, on its own.
  DeviceCalls Recorded(const std::function<void()>& draw) {
    device.ClearLog();
    draw();
    return device.Calls();
  }
  static DeviceCall Stage(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
    return {"SetTextureStageState", {double(stage), double(type), double(value)}};
  }
};

TEST_F(Scene, GroupsChangePlacesAt855AndStage1IsOffOnlyAroundTheWater) {
  CTerrain& t = *terrain;
  t.m_flowers[0] = {10, 5, 10, 1, 5};
  t.m_flowers[1] = {20, 5, 10, 3, 4};
  t.m_flowerCount = 2;
  for (int i = 0; i < 3; ++i) {
    t.m_trees[i] = {100.0f * float(i), 900, 500, 1 + 2 * (i % 2), 400};
    t.m_weeds[i] = {300.0f - 100.0f * float(i), 600, 50, 1 + i % 2, 50};
  }
  t.m_treeCount = t.m_weedCount = 3;
  t.m_mapWidth = t.m_mapHeight = 257;  // the sea at 864 over the whole map
  t.m_scale = D3DXVECTOR3(64, 16, 64);
  for (int i = 0; i < 250; ++i) t.m_figures[i] = {float(i), 30000.0f - float(i), 500, 0, 100, 0};
  GetGameApp()->GetColorOp() = D3DTOP_MODULATE2X;
  const DeviceCalls alpha{Stage(0, D3DTSS_ALPHAOP, D3DTOP_MODULATE),
                          Stage(0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE),
                          Stage(0, D3DTSS_ALPHAARG2, D3DTA_DIFFUSE)};
  const DeviceCalls closing{RS(D3DRS_ZWRITEENABLE, TRUE), RS(D3DRS_ALPHABLENDENABLE, FALSE),
                            RS(D3DRS_CULLMODE, D3DCULL_CCW)};
  // Altitude of the player, and of the third person camera (NAN: the first
  // person camera on the player).
  for (const auto& [altitude, cameraY] : {std::pair{854.99f, NAN},
                                          {855.0f, NAN},
                                          {2000.0f, NAN},
                                          {0.0f, NAN},
                                          {800.0f, 874.0f},
                                          {800.0f, 873.9f}}) {
    for (const bool single : {true, false}) {
      if (!std::isnan(cameraY)) player.SetCameraMode(CAM_MODE_3RD_PERSON);
      camera = player.GetCamera();
      player.SetPosition(D3DXVECTOR3(150, altitude, 0));
      if (!std::isnan(cameraY)) camera->SetPosition(D3DXVECTOR3(150, cameraY, -300));
      t.SetSinglePass(single);
      t.m_rainEnabled = single;  // landed drops: reborn, or at rest, and drawn either way
      for (CRainDrop& drop : t.m_rain) drop = {400, 1000, 400};
      const DeviceCalls scene = Recorded([&] { t.RenderScene(camera); });
      // The drops, figures and plants as the scene's updates and sorts left them.
      const DeviceCalls upper =
          Recorded([&] { t.DrawSkyscrapers(); }) + alpha + Recorded([&] {
            for (const CRainDrop& d : t.m_rain) t.DrawRainDrop(d.m_x, d.m_y, d.m_z, camera);
            for (int i = 0; i < 100; ++i) {
              const CFlyingFigure& f = t.m_figures[i];
              t.DrawFigure(f.m_x, f.m_y, f.m_z, f.m_size, t.m_wingAngle, f.m_heading);
            }
          }) +
          alpha + Recorded([&] {
            for (int i = 0; i < 2; ++i) {
              const CPlantRecord& f = t.m_flowers[i];
              t.DrawFlower(f.m_x, f.m_y, f.m_z, f.m_kind, f.m_size);
            }
          }) +
          alpha + Recorded([&] {
            for (const CPlantRecord& r : {t.m_trees[0], t.m_trees[1], t.m_trees[2]})
              t.DrawTree(r.m_x, r.m_y, r.m_z, r.m_kind, r.m_size, camera);
          });
      const DeviceCalls lower =
          alpha + Recorded([&] {
            for (const CPlantRecord& r : {t.m_weeds[0], t.m_weeds[1], t.m_weeds[2]})
              t.DrawWeed(r.m_x, r.m_y, r.m_z, r.m_kind, r.m_size, camera);
          });
      // The overlay follows the camera, strictly below 874.
      const DeviceCalls water = Recorded([&] {
        t.DrawWater(camera, 864.0f);
        if (camera->GetPosition().y < 874.0f) camera->RenderWaterOverlay(&device, 1, 864.0f);
      });
      const DeviceCalls stage1 =
          single ? DeviceCalls{Stage(1, D3DTSS_COLOROP, D3DTOP_DISABLE)} : DeviceCalls{};
      const DeviceCalls back =
          single ? DeviceCalls{Stage(1, D3DTSS_COLOROP, D3DTOP_MODULATE2X)} : DeviceCalls{};
      EXPECT_EQ(scene, (altitude >= 855.0f ? lower + stage1 + water + back + upper
                                           : upper + stage1 + water + back + lower) +
                           closing)
          << altitude << " " << cameraY << (single ? " single" : " multi");
      EXPECT_EQ(t.m_rain[0].m_y == 1000.0f, !single);
    }
  }
}

TEST_F(Scene, TheRainSwitchTakesOneDrawAFrameAndFlipsOnlyOn5555) {
  unsigned seed = 0;
  for (crt::srand(seed); crt::rand() % 10000 != 5555; crt::srand(++seed)) {
  }
  for (CRainDrop& drop : terrain->m_rain) drop.m_y = 5000.0f;  // falling: no draws
  for (const bool flips : {true, false}) {
    // One draw, then those of the flock's turns on the same figures.
    crt::srand(flips ? seed : seed + 1);
    crt::rand();
    CFlyingFigure figures[CTerrain::MAX_FIGURES];
    std::copy(std::begin(terrain->m_figures), std::end(terrain->m_figures), figures);
    terrain->UpdateFigures();
    std::copy(std::begin(figures), std::end(figures), terrain->m_figures);
    const std::uint32_t afterOneDraw = crt::randState();
    crt::srand(flips ? seed : seed + 1);
    terrain->m_rainEnabled = true;
    terrain->RenderScene(camera);
    EXPECT_EQ(terrain->m_rainEnabled, !flips);
    EXPECT_EQ(crt::randState(), afterOneDraw);
  }
}

}  // namespace
