// The sea and the tint under it: the clip of the sea quad at the near plane,
// the states it sets and puts back, and the overlay's mapping to viewport pixels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"

namespace {

using karvo_test::RS, karvo_test::Tss;
constexpr float LEVEL = 864.0f, SIDE = 16448.0f;  // 257 samples of 64 units
const D3DXVECTOR3 AHEAD(0.0f, 0.0f, 1.0f), UP(0.0f, 1.0f, 0.0f), DOWN(0.0f, -1.0f, 0.0f);

// A camera placed and aimed directly.
class AimedCamera : public CCamera {
 public:
  CCameraMode GetCameraMode() const override { return CAM_MODE_1ST_PERSON; }
  void Aim(float x, float y, float z, const D3DXVECTOR3& look = AHEAD, const D3DXVECTOR3& up = UP) {
    m_position = D3DXVECTOR3(x, y, z), m_look = look, m_up = up;
    m_viewDirty = true;
    GetViewMatrix(), GetProjMatrix();
  }
};

class Water : public ::testing::Test {
 protected:
  void SetUp() override {
    terrain->SetDevice(&device, true);
    terrain->m_mapWidth = terrain->m_mapHeight = 257;
    terrain->m_scale = D3DXVECTOR3(64.0f, 16.0f, 64.0f);
    device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &terrain->m_waterTexture, nullptr);
  }
  void TearDown() override { terrain->~CTerrain(); }
  // The fan of the first UP draw, or nothing.
  template <class V>
  std::vector<V> Fan() {
    return device.Count("DrawPrimitiveUP") ? device.UpVertices<V>(0) : std::vector<V>{};
  }

  std::unique_ptr<void, decltype(&std::free)> storage_{std::calloc(1, sizeof(CTerrain)),
                                                       &std::free};
  CTerrain* terrain = new (storage_.get()) CTerrain();
  karvo_test::RecordingDevice device;
  AimedCamera camera;
};

TEST_F(Water, SeaIsCutAtTheNearPlane) {
  // Corners 0 and 3 lie behind the eye: new points on x = 0 and x = 16448 at
  // the near plane, alpha 0xBF even on the edge from the clearer corner 2.
  camera.Aim(8000.0f, 900.0f, 8000.0f);
  device.ClearLog();
  terrain->DrawWater(&camera, LEVEL);
  // Alpha from the colour words, blended, seen from below too, no depth written; then put back.
  EXPECT_EQ(device.Calls(),
            (karvo_test::DeviceCalls{
                Tss(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE), Tss(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG1),
                RS(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA), RS(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA),
                RS(D3DRS_ALPHABLENDENABLE, TRUE), {"SetTexture", {0, karvo_test::Ptr(terrain->m_waterTexture)}},
                {"SetFVF", {0x142}}, RS(D3DRS_CULLMODE, D3DCULL_NONE), RS(D3DRS_ZWRITEENABLE, FALSE),
                {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}}, RS(D3DRS_ZWRITEENABLE, TRUE),
                RS(D3DRS_ALPHABLENDENABLE, FALSE), RS(D3DRS_CULLMODE, D3DCULL_CCW)}));
  const auto fan = Fan<CVertex>();
  ASSERT_EQ(fan.size(), 4u);
  const float rows[4][5] = {
      {0, 8001, 0xBF, 0, 8001 / SIDE}, {0, SIDE, 0xBF, 0, 1}, {SIDE, SIDE, 0xAF, 1, 1}, {SIDE, 8001, 0xBF, 1, 8001 / SIDE}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(fan[i].m_x == rows[i][0] && std::abs(fan[i].m_z - rows[i][1]) < 0.01f && fan[i].m_y == LEVEL &&
                fan[i].m_diffuse >> 24 == rows[i][2] && fan[i].m_tu == rows[i][3])
        << i;
    EXPECT_NEAR(fan[i].m_tv, rows[i][4], 1e-5) << i;
  }

  // The near plane through corners 0 and 3: the quad as it is, no new point.
  device.ClearLog();
  camera.Aim(8000.0f, 900.0f, -1.0f);
  terrain->DrawWater(&camera, LEVEL);
  ASSERT_EQ(Fan<CVertex>().size(), 4u);
  EXPECT_TRUE(Fan<CVertex>()[0].m_z == 0.0f && Fan<CVertex>()[3].m_z == 0.0f);

  device.ClearLog();  // all behind: not a single call
  camera.Aim(8000.0f, 900.0f, 20000.0f);
  terrain->DrawWater(&camera, LEVEL);
  EXPECT_TRUE(device.Calls().empty());
}

TEST_F(Water, OverlayMapsTheViewportWithWholeHalvesAndTintsAllOfADiverLookingDown) {
  // Under the water the tint covers the viewport: the corner (-1, 1) lands on
  // X - (Width >> 1) + Width / 2, half a pixel left of X for an odd width. Looking
  // straight down it is one tint, 0xBF547686, once the near plane 1 below the eye is
  // under the water: at 864.5 too, at 900 not; another kind draws nothing.
  const struct {
    int kind;
    bool down;
    float y, width, left, right;
    std::uint32_t tint;
  } cases[] = {{1, false, 800, 640, 100, 740, 0xBF547687}, {1, false, 800, 641, 99.5f, 740.5f, 0xBF547687},
               {0, false, 800, 640, 0, 0, 0},              {1, true, 900, 640, 0, 0, 0},
               {1, true, 800, 640, 100, 740, 0xBF547686},  {1, true, 864.5f, 640, 100, 740, 0xBF547686}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    device.ClearLog();
    camera.SetViewport(100, 50, DWORD(c.width), 480, 1.0f, 100.0f, nullptr);
    camera.Aim(8000.0f, c.y, 8000.0f, c.down ? DOWN : AHEAD, c.down ? AHEAD : UP);
    camera.RenderWaterOverlay(&device, c.kind, LEVEL);
    EXPECT_EQ(device.Calls().front().args, (std::vector<double>{D3DRS_ZWRITEENABLE, FALSE}));
    EXPECT_EQ(device.Calls().back().args, (std::vector<double>{D3DRS_ZWRITEENABLE, TRUE}));
    const auto fan = Fan<CScreenVertex>();
    ASSERT_EQ(fan.size(), c.right ? 4u : 0u);
    if (fan.empty()) continue;
    EXPECT_TRUE(fan[0].m_x == c.left && fan[0].m_y == 50.0f && fan[2].m_x == c.right && fan[2].m_y == 530.0f);
    EXPECT_EQ(fan[0].m_diffuse, c.tint);
  }
}

}  // namespace
