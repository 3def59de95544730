// CTerrain::RenderScene: the second half of the terrain's frame. After the
// ground it advances the animated objects by one frame and draws everything
// that stands in the world, in an order set by the water. The water is a
// translucent polygon that writes no depth, so whatever lies beyond it, seen
// from the eye, must be in the picture before it and whatever lies on the near
// side after it. The objects fall into two groups, those above the water and
// those below it, and the groups change places when the player crosses 855.0.
//
// The objects draw themselves (src/world); this file only orders them and
// sets the few states that the order needs.
#include "app/GameApp.h"
#include "platform/crt/crt.h"
#include "terrain/Terrain.h"
#include "view/Camera.h"
#include "view/Player.h"

namespace {

// The player's altitude at which the groups change places: with the eye 10.0
// above the body, the eye then stands just above the water's 864.0. Exactly
// this altitude counts as above.
constexpr float SWITCH_ALTITUDE = 855.0f;
// The water's height in height steps.
constexpr float WATER_STEPS = 54.0f;
// One frame in this many flips the rain on or off, on one draw of rand.
constexpr int RAIN_SWITCH_RANGE = 10000;
constexpr int RAIN_SWITCH_VALUE = 5555;

}  // namespace

void CTerrain::RenderScene(CCamera* camera) {
  // Without a player there is nothing to order the scene by: the frame keeps
  // its ground alone.
  if (m_device == nullptr || camera == nullptr || camera->GetPlayer() == nullptr) return;
  // The player's height decides the order, whichever camera looks at it.
  const float altitude = camera->GetPlayer()->GetPosition().y;
  const bool above = altitude >= SWITCH_ALTITUDE;

  if (crt::rand() % RAIN_SWITCH_RANGE == RAIN_SWITCH_VALUE) m_rainEnabled = !m_rainEnabled;
  // Here the world advances before anything of it is drawn: UpdateRain(camera),
  // UpdateWings(), UpdateFigures().

  if (above)
    DrawLowerGroup(camera);
  else
    DrawUpperGroup(camera);

  const float waterLevel = WATER_STEPS * m_scale.y;
  (void)waterLevel;
  // The water and its overlay must not mix in the ground's detail layer.
  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_DISABLE);
  // The water: DrawWater(camera, waterLevel); then, while the camera (not the
  // player) is less than 10.0 above the surface, which may cross the near
  // plane, camera->RenderWaterOverlay(m_device, 1, waterLevel).
  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, GetGameApp()->GetColorOp());

  if (above)
    DrawUpperGroup(camera);
  else
    DrawLowerGroup(camera);

  // Whatever the objects left behind, the next frame's ground starts from these.
  m_device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
  m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
}

// The loops' order rests on the states each one leaves to the next (the
// towers leave culling off, the plants leave blending on), so it is not free.
void CTerrain::DrawUpperGroup(CCamera* camera) {
  DrawSkyscrapers();
  SetObjectAlpha();
  // The rain: DrawRainDrop(x, y, z, camera) for each of the m_rainCount drops.
  // The flock: SortFigures(), then DrawFigure(x, y, z, size, m_wingAngle,
  // heading) for the first 100 figures only.
  SetObjectAlpha();
  for (std::int32_t i = 0; i < m_flowerCount; ++i) {
    const CPlantRecord& f = m_flowers[i];
    DrawFlower(f.m_x, f.m_y, f.m_z, f.m_kind, f.m_size);
  }
  SortTrees(camera);
  SetObjectAlpha();
  for (std::int32_t i = 0; i < m_treeCount; ++i) {
    const CPlantRecord& t = m_trees[i];
    DrawTree(t.m_x, t.m_y, t.m_z, t.m_kind, t.m_size, camera);
  }
}

void CTerrain::DrawLowerGroup(CCamera* camera) {
  SortWeeds(camera);
  SetObjectAlpha();
  for (std::int32_t i = 0; i < m_weedCount; ++i) {
    const CPlantRecord& w = m_weeds[i];
    DrawWeed(w.m_x, w.m_y, w.m_z, w.m_kind, w.m_size, camera);
  }
}

// The colour stays the texture's alone (the base state); the diffuse word of
// the objects carries only their alpha. The water changes these for itself.
void CTerrain::SetObjectAlpha() {
  m_device->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_MODULATE);
  m_device->SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_TEXTURE);
  m_device->SetTextureStageState(0, D3DTSS_ALPHAARG2, D3DTA_DIFFUSE);
}
