// The two towers: nothing but four textured walls each, with constant
// corners, no roof and no floor, so that looking down from above shows the
// open top and the ground inside. Each wall carries its picture once,
// stretched and lying on its side (u runs up the wall), whatever the height.
// The walls are drawn in every frame without a frustum test and seen from
// both sides; culling is switched off and left off for what follows.
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"

namespace {

struct Tower {
  float x0, x1, z0, z1, y0, y1;
};

// The feet at 500 lie below the water, so the walls rise out of it or out of
// the ground.
constexpr Tower TOWER_ONE = {2000.0f, 4000.0f, 3000.0f, 5000.0f, 500.0f, 7000.0f};
constexpr Tower TOWER_TWO = {6000.0f, 8000.0f, 3000.0f, 5000.0f, 500.0f, 28000.0f};

// Corner 3 is a little more transparent than the rest; it only shows when
// blending happens to be on (weeds drawn just before, the water skipped).
constexpr std::uint32_t WALL_DIFFUSE = 0xBFFFFFFFu;
constexpr std::uint32_t WALL_DIFFUSE_CORNER3 = 0xAFFFFFFFu;

void DrawWall(IDirect3DDevice9* device, const D3DXVECTOR3 (&corners)[4]) {
  const CVertex wall[4] = {
      CVertex(corners[0].x, corners[0].y, corners[0].z, WALL_DIFFUSE, 0.0f, 0.0f),
      CVertex(corners[1].x, corners[1].y, corners[1].z, WALL_DIFFUSE, 0.0f, 1.0f),
      CVertex(corners[2].x, corners[2].y, corners[2].z, WALL_DIFFUSE_CORNER3, 1.0f, 1.0f),
      CVertex(corners[3].x, corners[3].y, corners[3].z, WALL_DIFFUSE, 1.0f, 0.0f)};
  device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, wall, sizeof(CVertex));
}

// The walls x = x0, z = z1, x = x1, z = z0, in this order.
void DrawTower(IDirect3DDevice9* device, IDirect3DTexture9* texture, const Tower& t) {
  device->SetTexture(0, texture);
  device->SetFVF(CVertex::FVF);
  const D3DXVECTOR3 walls[4][4] = {
      {{t.x0, t.y0, t.z0}, {t.x0, t.y0, t.z1}, {t.x0, t.y1, t.z1}, {t.x0, t.y1, t.z0}},
      {{t.x0, t.y0, t.z1}, {t.x1, t.y0, t.z1}, {t.x1, t.y1, t.z1}, {t.x0, t.y1, t.z1}},
      {{t.x1, t.y0, t.z0}, {t.x1, t.y0, t.z1}, {t.x1, t.y1, t.z1}, {t.x1, t.y1, t.z0}},
      {{t.x0, t.y0, t.z0}, {t.x1, t.y0, t.z0}, {t.x1, t.y1, t.z0}, {t.x0, t.y1, t.z0}}};
  for (const auto& wall : walls) DrawWall(device, wall);
}

}  // namespace

void CTerrain::DrawSkyscrapers() {
  DrawTower(m_device, m_wallTexture, TOWER_ONE);
  DrawTower(m_device, m_wallTexture2, TOWER_TWO);
}
