// Trees, weeds and flowers: textured quads drawn one record at a time
// straight from the terrain's arrays, alpha blended without an alpha test.
// Trees and weeds stand upright and turn about their foot towards the player
// (not the camera: in the third person view they face the walker); flowers
// are a flat head on two crossed stems that never turn. Trees and weeds reach
// the device far to near through a sort that advances one pass a frame, so
// the cost of ordering stays bounded and the order settles over frames.
//
// Every draw sends its four vertices from the stack; nothing is allocated.
#include <algorithm>
#include <cmath>
#include <utility>

#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"
#include "view/Player.h"

namespace {

constexpr std::uint32_t PLANT_DIFFUSE = 0xFF000000u;  // colour from the texture, opaque alpha
constexpr float HEIGHT_PER_WIDTH = 6.0f / 5.0f;
constexpr float STEM_LENGTH = 20.0f;
// The big tree of the last slot is drawn with the broadleaf picture at twice
// its record's width, so that it stands out over the others as the one tree
// the walker cannot pass through.
constexpr std::int32_t BIG_TREE_KIND = 2;
constexpr float BIG_TREE_SCALE = 2.0f;

// One quad as a fan of two triangles.
void DrawQuad(IDirect3DDevice9* device, const CVertex (&quad)[4]) {
  device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, quad, sizeof(CVertex));
}

// Alpha blending for the keyed pictures, and the vertex format of the quads.
void SetPlantStates(IDirect3DDevice9* device) {
  device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
  device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
  device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
  device->SetFVF(CVertex::FVF);
}

// Sine and cosine of the plain arc tangent of dz / dx, not a four-quadrant
// one, so a plant looks the same from opposite sides (mirrored on one). In
// line with the viewer (dx zero) the quotient is infinite and the angle a
// quarter turn, signed as the quotient would be; at the viewer's own foot
// there is no angle and the quad shrinks to a line that covers no pixel.
std::pair<float, float> FacingSinCos(float dx, float dz) {
  if (dx == 0.0f) {
    if (dz == 0.0f) return {0.0f, 0.0f};
    const float quarter = std::signbit(dx) == std::signbit(dz) ? 1.0f : -1.0f;
    return {quarter, 0.0f};
  }
  const float theta = std::atan(dz / dx);
  return {std::sin(theta), std::cos(theta)};
}

}  // namespace

float CTerrain::PointDistance(float x1, float y1, float z1, float x2, float y2, float z2) {
  const float dx = x1 - x2, dy = y1 - y2, dz = z1 - z2;
  const float sum = dx * dx + dy * dy + dz * dz;
  return std::sqrt(sum);
}

void CTerrain::SortPass(CPlantRecord* records, std::int32_t count, const D3DXVECTOR3& viewer) {
  for (std::int32_t i = 0; i + 1 < count; ++i) {
    const CPlantRecord& a = records[i];
    const CPlantRecord& b = records[i + 1];
    const float d1 = PointDistance(viewer.x, viewer.y, viewer.z, a.m_x, a.m_y, a.m_z);
    const float d2 = PointDistance(viewer.x, viewer.y, viewer.z, b.m_x, b.m_y, b.m_z);
    if (d2 > d1) std::swap(records[i], records[i + 1]);
  }
}

void CTerrain::SortTrees(CCamera* camera) {
  SortPass(m_trees, std::min(m_treeCount, MAX_TREES), camera->GetPlayer()->GetPosition());
}

void CTerrain::SortWeeds(CCamera* camera) {
  SortPass(m_weeds, std::min(m_weedCount, MAX_WEEDS), camera->GetPlayer()->GetPosition());
}

void CTerrain::DrawBillboard(float x, float y, float z, float width, IDirect3DTexture9* texture,
                             bool visible, CCamera* camera) {
  const D3DXVECTOR3& player = camera->GetPlayer()->GetPosition();
  const auto [s, c] = FacingSinCos(x - player.x, z - player.z);
  if (texture != nullptr) m_device->SetTexture(0, texture);
  SetPlantStates(m_device);

  CVertex quad[4];
  if (visible) {
    const float h = width / 2.0f, height = width * HEIGHT_PER_WIDTH;
    quad[0] = CVertex(x - s * h, y, z + c * h, PLANT_DIFFUSE, 0.0f, 1.0f);
    quad[1] = CVertex(x + s * h, y, z - c * h, PLANT_DIFFUSE, 1.0f, 1.0f);
    quad[2] = CVertex(x + s * h, y + height, z - c * h, PLANT_DIFFUSE, 1.0f, 0.0f);
    quad[3] = CVertex(x - s * h, y + height, z + c * h, PLANT_DIFFUSE, 0.0f, 0.0f);
  } else {
    // An empty slot or an unknown kind: the same calls on a quad of nothing.
    for (CVertex& v : quad) v = CVertex(0.0f, 0.0f, 0.0f, 0u);
  }
  DrawQuad(m_device, quad);
}

void CTerrain::DrawTree(float x, float y, float z, std::int32_t kind, float size, CCamera* camera) {
  switch (kind) {
    case 1:
      DrawBillboard(x, y, z, size, m_treeTexture, true, camera);
      break;
    case 3:
      DrawBillboard(x, y, z, size, m_tree3Texture, true, camera);
      break;
    case BIG_TREE_KIND:
      DrawBillboard(x, y, z, size * BIG_TREE_SCALE, m_treeTexture, true, camera);
      break;
    default:
      DrawBillboard(x, y, z, size, nullptr, false, camera);
      break;
  }
}

void CTerrain::DrawWeed(float x, float y, float z, std::int32_t kind, float size, CCamera* camera) {
  IDirect3DTexture9* texture = kind == 1 ? m_weed4Texture : kind == 2 ? m_weed5Texture : nullptr;
  DrawBillboard(x, y, z, size, texture, true, camera);
}

void CTerrain::DrawFlower(float x, float y, float z, std::int32_t kind, float size) {
  const float a = size / 10.0f, b = size / 2.0f, foot = y - STEM_LENGTH;
  SetPlantStates(m_device);

  // Two stems meeting at one edge, each bearing the whole base picture.
  m_device->SetTexture(0, m_baseTexture);
  const CVertex stemAlongX[4] = {CVertex(x - a, y, z - a, PLANT_DIFFUSE, 0.0f, 1.0f),
                                 CVertex(x - a, foot, z - a, PLANT_DIFFUSE, 1.0f, 1.0f),
                                 CVertex(x + a, foot, z - a, PLANT_DIFFUSE, 1.0f, 0.0f),
                                 CVertex(x + a, y, z - a, PLANT_DIFFUSE, 0.0f, 0.0f)};
  DrawQuad(m_device, stemAlongX);
  m_device->SetTexture(0, m_baseTexture);
  const CVertex stemAlongZ[4] = {CVertex(x - a, y, z - a, PLANT_DIFFUSE, 0.0f, 1.0f),
                                 CVertex(x - a, foot, z - a, PLANT_DIFFUSE, 1.0f, 1.0f),
                                 CVertex(x - a, foot, z + a, PLANT_DIFFUSE, 1.0f, 0.0f),
                                 CVertex(x - a, y, z + a, PLANT_DIFFUSE, 0.0f, 0.0f)};
  DrawQuad(m_device, stemAlongZ);

  // The head lies flat at the flower's height.
  IDirect3DTexture9* const heads[] = {m_flower1Texture, m_flower2Texture, m_flower3Texture};
  if (kind >= 1 && kind <= 3) m_device->SetTexture(0, heads[kind - 1]);
  const CVertex head[4] = {CVertex(x - b, y, z - b, PLANT_DIFFUSE, 0.0f, 1.0f),
                           CVertex(x + b, y, z - b, PLANT_DIFFUSE, 1.0f, 1.0f),
                           CVertex(x + b, y, z + b, PLANT_DIFFUSE, 1.0f, 0.0f),
                           CVertex(x - b, y, z + b, PLANT_DIFFUSE, 0.0f, 0.0f)};
  DrawQuad(m_device, head);
}
