// RenderScene's order on a recording device: which group comes before the
// water on either side of 855.0, the stage set-ups around the loops and the
// water, the closing states, and the rain switch's one draw a frame.
#include <functional>

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
  GetGameApp()->GetColorOp() = D3DTOP_MODULATE2X;
  const DeviceCalls alpha{Stage(0, D3DTSS_ALPHAOP, D3DTOP_MODULATE),
                          Stage(0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE),
                          Stage(0, D3DTSS_ALPHAARG2, D3DTA_DIFFUSE)};
  const DeviceCalls closing{RS(D3DRS_ZWRITEENABLE, TRUE), RS(D3DRS_ALPHABLENDENABLE, FALSE),
                            RS(D3DRS_CULLMODE, D3DCULL_CCW)};
  for (const float altitude : {854.99f, 855.0f, 2000.0f, 0.0f}) {
    for (const bool single : {true, false}) {
      player.SetPosition(D3DXVECTOR3(150, altitude, 0));
      t.SetSinglePass(single);
      const DeviceCalls scene = Recorded([&] { t.RenderScene(camera); });
      // The plants as the scene's sorts left them.
      const DeviceCalls upper =
          Recorded([&] { t.DrawSkyscrapers(); }) + alpha + alpha + Recorded([&] {
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
      const DeviceCalls water = single ? DeviceCalls{Stage(1, D3DTSS_COLOROP, D3DTOP_DISABLE),
                                                     Stage(1, D3DTSS_COLOROP, D3DTOP_MODULATE2X)}
                                       : DeviceCalls{};
      EXPECT_EQ(scene,
                (altitude >= 855.0f ? lower + water + upper : upper + water + lower) + closing)
          << altitude << (single ? " single" : " multi");
    }
  }
}

TEST_F(Scene, TheRainSwitchTakesOneDrawAFrameAndFlipsOnlyOn5555) {
  unsigned seed = 0;
  for (crt::srand(seed); crt::rand() % 10000 != 5555; crt::srand(++seed)) {
  }
  for (const bool flips : {true, false}) {
    crt::srand(flips ? seed : seed + 1);
    crt::rand();
    const std::uint32_t afterOneDraw = crt::randState();
    crt::srand(flips ? seed : seed + 1);
    terrain->m_rainEnabled = true;
    terrain->RenderScene(camera);
    EXPECT_EQ(terrain->m_rainEnabled, !flips);
    EXPECT_EQ(crt::randState(), afterOneDraw);
  }
}

}  // namespace
