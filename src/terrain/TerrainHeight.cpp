// CTerrain height query and ground following. GetHeight reads the very
// triangles the blocks draw: the caller names the cell split by the parity of
// the grid row. The two callbacks keep the player's body and the third person
// camera above ground, and switch the body between walking and swimming by
// its altitude against the water level.
#include <cmath>

#include "platform/win32/windows.h"
#include "terrain/Terrain.h"
#include "view/Cam3rdPerson.h"
#include "view/Player.h"

namespace {

// The sea stands at 54 height steps (864.0 on the loaded map).
constexpr float WATER_LEVEL_STEPS = 54.0f;

constexpr float WALK_FRICTION = 250.0f;
constexpr float WALK_GRAVITY = -500.0f;
constexpr float WALK_MAX_XZ = 125.0f;
constexpr float WALK_MAX_Y = 400.0f;
constexpr float SWIM_FRICTION = 250.0f;
constexpr float SWIM_GRAVITY = -260.0f;
constexpr float SWIM_MAX_XZ = 40.0f;
constexpr float SWIM_MAX_Y = 60.0f;
constexpr BYTE VK_S = 0x53;
constexpr BYTE KEY_HELD = 0xF0;

// True when world z lies in an odd grid row (the row is z / scale cut toward 0).
bool IsOddRow(float z, float scaleZ) { return std::fmod(std::trunc(z / scaleZ), 2.0f) != 0.0f; }

}  // namespace

float CTerrain::GetHeight(float x, float z, bool oddRow) const {
  if (!m_heightMap) return 0.0f;
  const float gx = x / m_scale.x;
  const float gz = z / m_scale.z;
  // Written so that a NaN position also counts as off the map.
  if (!(gx >= 0.0f && gz >= 0.0f && gx < static_cast<float>(m_mapWidth) && gz < static_cast<float>(m_mapHeight))) {
    return 0.0f;
  }
  const std::uint32_t ix = static_cast<std::uint32_t>(gx);
  const std::uint32_t iz = static_cast<std::uint32_t>(gz);
  const float fx = gx - static_cast<float>(ix);
  const float fz = gz - static_cast<float>(iz);

  // The last column and row have no neighbour beyond them: the outermost strip
  // reads the edge samples again, which keeps it level with the edge.
  const std::uint32_t ix1 = ix + 1 < m_mapWidth ? ix + 1 : ix;
  const std::uint32_t iz1 = iz + 1 < m_mapHeight ? iz + 1 : iz;
  auto sample = [this](std::uint32_t col, std::uint32_t row) {
    return static_cast<float>(m_heightMap[row * m_mapWidth + col]) * m_scale.y;
  };

  // Three corners come from the triangle holding the point; the fourth is
  // made up so that all four lie in that triangle's plane.
  float h00, h10, h01, h11;
  if (!oddRow) {
    h10 = sample(ix1, iz);
    h01 = sample(ix, iz1);
    if (fx >= 1.0f - fz) {
      h11 = sample(ix1, iz1);
      h00 = h01 - h11 + h10;
    } else {
      h00 = sample(ix, iz);
      h11 = h10 - h00 + h01;
    }
  } else {
    h00 = sample(ix, iz);
    h11 = sample(ix1, iz1);
    if (fz <= fx) {
      h10 = sample(ix1, iz);
      h01 = h11 - h10 + h00;
    } else {
      h01 = sample(ix, iz1);
      h10 = h11 - h01 + h00;
    }
  }
  const float top = (h10 - h00) * fx + h00;
  const float bottom = (h11 - h01) * fx + h01;
  return (bottom - top) * fz + top;
}

void CTerrain::UpdatePlayer(void* context, CPlayer* player, float) {
  if (!context || !player) return;
  const CTerrain& terrain = *static_cast<const CTerrain*>(context);

  const CVolumeInfo volume = player->GetVolumeInfo();
  D3DXVECTOR3 position = player->GetPosition();
  D3DXVECTOR3 velocity = player->GetVelocity();

  const bool oddRow = IsOddRow(position.z, terrain.m_scale.z);
  const float ground = terrain.GetHeight(position.x, position.z, oddRow) - volume.m_min.y;
  if (position.y < ground) {
    // Landing: the fall stops, the horizontal speed goes on.
    velocity.y = 0.0f;
    position.y = ground;
    player->SetVelocity(velocity);
    player->SetPosition(position);
  }

  const CCamera* camera = player->GetCamera();
  if (!camera || camera->GetCameraMode() != CAM_MODE_1ST_PERSON) return;

  // No swim flag: the altitude alone decides, anew in every frame.
  const float waterLevel = WATER_LEVEL_STEPS * terrain.m_scale.y;
  if (position.y >= waterLevel) {
    player->SetFriction(WALK_FRICTION);
    player->SetGravity(D3DXVECTOR3(0.0f, WALK_GRAVITY, 0.0f));
    player->SetMaxVelocityXZ(WALK_MAX_XZ);
    player->SetMaxVelocityY(WALK_MAX_Y);
  } else {
    player->SetFriction(SWIM_FRICTION);
    BYTE keys[256];
    if (!GetKeyboardState(keys)) return;
    // S holds the swimmer up against the pull of the water.
    if (keys[VK_S] & KEY_HELD) {
      player->SetGravity(D3DXVECTOR3(0.0f, 0.0f, 0.0f));
    } else {
      player->SetGravity(D3DXVECTOR3(0.0f, SWIM_GRAVITY, 0.0f));
    }
    player->SetMaxVelocityXZ(SWIM_MAX_XZ);
    player->SetMaxVelocityY(SWIM_MAX_Y);
  }
}

void CTerrain::UpdateCamera(void* context, CCamera* camera, float) {
  if (!context || !camera) return;
  if (camera->GetCameraMode() != CAM_MODE_3RD_PERSON) return;
  const CTerrain& terrain = *static_cast<const CTerrain*>(context);

  const CVolumeInfo volume = camera->GetVolumeInfo();
  D3DXVECTOR3 position = camera->GetPosition();
  const bool oddRow = IsOddRow(position.z, terrain.m_scale.z);
  const float ground = terrain.GetHeight(position.x, position.z, oddRow) - volume.m_min.y;
  if (position.y < ground) {
    position.y = ground;
    camera->SetPosition(position);
  }
  // Clamped or not, the chase camera faces the player after every update.
  CPlayer* player = camera->GetPlayer();
  auto* chase = dynamic_cast<CCam3rdPerson*>(camera);
  if (player && chase) chase->SetLookAt(player->GetPosition());
}
