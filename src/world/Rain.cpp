// The rain: 2000 thin streaks that fall 16 units a frame, are reborn in a
// square over the player once they pass 1000.0 and stay where they stopped
// while the rain is switched off. The step counts frames, not seconds.
// Each drop is drawn on its own as a 1 by 32 quad turned about the vertical
// towards the player, with no culling and no sorting.
#include <cmath>

#include "platform/crt/crt.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"
#include "view/Player.h"

namespace {

constexpr float LANDING_HEIGHT = 1000.0f;  // a fixed world height, whatever the ground
constexpr float FALL_PER_FRAME = 16.0f;
constexpr int REBIRTH_SPREAD = 2000;  // side of the square around the player
constexpr double REBIRTH_HALF = 1000.0;
constexpr int REBIRTH_BAND = 500;  // heights 2700 to 3199
constexpr int REBIRTH_FLOOR = 2700;
constexpr float HALF_WIDTH = 0.5f;
constexpr float STREAK_HEIGHT = 32.0f;
constexpr std::uint32_t DROP_COLOUR = 0xFF000000u;

// One coordinate of a reborn drop: a draw around the player's value, cut to a
// whole number towards zero. std::trunc keeps a far-off player defined where a
// cast to int would not be.
float RebirthCoordinate(float player) {
  const float sum = static_cast<float>(crt::rand() % REBIRTH_SPREAD) + player;
  return static_cast<float>(std::trunc(static_cast<double>(sum) - REBIRTH_HALF));
}

}  // namespace

void CTerrain::UpdateRain(CCamera* camera) {
  const D3DXVECTOR3& player = camera->GetPlayer()->GetPosition();
  for (int i = 0; i < MAX_RAIN; ++i) {
    CRainDrop& drop = m_rain[i];
    if (drop.m_y > LANDING_HEIGHT) {
      drop.m_y -= FALL_PER_FRAME;
      continue;
    }
    if (!m_rainEnabled) continue;
    // Three draws in this order: x, z, height.
    const float x = RebirthCoordinate(player.x);
    const float z = RebirthCoordinate(player.z);
    drop.m_x = x;
    drop.m_z = z;
    drop.m_y = static_cast<float>(crt::rand() % REBIRTH_BAND + REBIRTH_FLOOR);
  }
  m_rainCount = MAX_RAIN;
}

void CTerrain::DrawRainDrop(float x, float y, float z, CCamera* camera) {
  if (m_device == nullptr) return;
  const D3DXVECTOR3& player = camera->GetPlayer()->GetPosition();

  m_device->SetTexture(0, m_rainTexture);
  m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
  m_device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
  m_device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
  m_device->SetFVF(CVertex::FVF);

  // The plain arc tangent, not a four-quadrant one: opposite sides of a drop
  // see the same quad. Straight above or below the player the quotient is
  // 0 / 0 and the drop has no direction: it is left out.
  const float theta = std::atan((z - player.z) / (x - player.x));
  const float s = std::sin(theta) * HALF_WIDTH;
  const float c = std::cos(theta) * HALF_WIDTH;
  const CVertex quad[4] = {
      CVertex(x - s, y, z + c, DROP_COLOUR, 0.0f, 1.0f),
      CVertex(x + s, y, z - c, DROP_COLOUR, 1.0f, 1.0f),
      CVertex(x + s, y + STREAK_HEIGHT, z - c, DROP_COLOUR, 1.0f, 0.0f),
      CVertex(x - s, y + STREAK_HEIGHT, z + c, DROP_COLOUR, 0.0f, 0.0f),
  };
  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  if (std::isnan(theta)) return;
  m_device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, quad, sizeof(CVertex));
}
