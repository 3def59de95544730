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
// Height above the water up to which the camera's view is tinted below the line.
constexpr float OVERLAY_REACH = 10.0f;
// Figures that fly and are drawn: the first slots of the array, whatever its size.
constexpr int LIVE_FIGURES = 100;

}  // namespace

void CTerrain::RenderScene(CCamera* camera) {
  // Without a player there is nothing to order the scene by: the frame keeps
  // its ground alone.
  if (m_device == nullptr || camera == nullptr || camera->GetPlayer() == nullptr) return;
  // The player's height decides the order, whichever camera looks at it.
  const float altitude = camera->GetPlayer()->GetPosition().y;
  const bool above = altitude >= SWITCH_ALTITUDE;

  if (crt::rand() % RAIN_SWITCH_RANGE == RAIN_SWITCH_VALUE) m_rainEnabled = !m_rainEnabled;
  // The world advances before anything of it is drawn, wherever the objects
  // then fall in the order.
  UpdateRain(camera);
  UpdateWings();
  UpdateFigures();

  if (above)
    DrawLowerGroup(camera);
  else
    DrawUpperGroup(camera);

  const float waterLevel = WATER_STEPS * m_scale.y;
  // The water and its overlay must not mix in the ground's detail layer.
  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_DISABLE);
  DrawWater(camera, waterLevel);
  // The tint runs while the camera itself (not the player) is under the water
  // or less than 10.0 above it, where the surface may cross the near plane.
  if (camera->GetPosition().y - OVERLAY_REACH < waterLevel)
    camera->RenderWaterOverlay(m_device, 1, waterLevel);
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
  for (std::int32_t i = 0; i < m_rainCount; ++i)
    DrawRainDrop(m_rain[i].m_x, m_rain[i].m_y, m_rain[i].m_z, camera);
  // The figures draw with the vertex format that the drops left.
  SortFigures();
  for (int i = 0; i < LIVE_FIGURES; ++i) {
    const CFlyingFigure& f = m_figures[i];
    DrawFigure(f.m_x, f.m_y, f.m_z, f.m_size, m_wingAngle, f.m_heading);
  }
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
