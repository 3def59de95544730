// The sea and the tint under it: the clip of the sea quad at the near plane
// and the overlay's polygon for cameras under, at and above the surface,
// with its mapping to viewport pixels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"

namespace {

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
  terrain->DrawWater(&camera, LEVEL);
  const auto fan = Fan<CVertex>();
  ASSERT_EQ(fan.size(), 4u);
  const float rows[4][5] = {{0, 8001, 0xBF, 0, 8001 / SIDE},
                            {0, SIDE, 0xBF, 0, 1},
                            {SIDE, SIDE, 0xAF, 1, 1},
                            {SIDE, 8001, 0xBF, 1, 8001 / SIDE}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(fan[i].m_x == rows[i][0] && std::abs(fan[i].m_z - rows[i][1]) < 0.01f &&
                fan[i].m_y == LEVEL)
        << i;
    EXPECT_TRUE(fan[i].m_diffuse >> 24 == rows[i][2] && fan[i].m_tu == rows[i][3]) << i;
    EXPECT_NEAR(fan[i].m_tv, rows[i][4], 1e-5) << i;
  }
  EXPECT_EQ(device.RenderState(D3DRS_ZWRITEENABLE), TRUE);
  EXPECT_EQ(device.StageState(0, D3DTSS_ALPHAARG1), D3DTA_DIFFUSE);

  // The near plane through corners 0 and 3: the quad as it is, no new point.
  device.ClearLog();
  camera.Aim(8000.0f, 900.0f, -1.0f);
  terrain->DrawWater(&camera, LEVEL);
  ASSERT_EQ(Fan<CVertex>().size(), 4u);
  EXPECT_TRUE(Fan<CVertex>()[0].m_z == 0.0f && Fan<CVertex>()[3].m_z == 0.0f &&
              Fan<CVertex>()[3].m_x == SIDE);

  device.ClearLog();  // all behind: not a single call
  camera.Aim(8000.0f, 900.0f, 20000.0f);
  terrain->DrawWater(&camera, LEVEL);
  EXPECT_TRUE(device.Calls().empty());
}

TEST_F(Water, OverlayCoversWhatLiesUnderTheWater) {
  // Half a unit above the water, with the near plane one unit ahead, the line
  // lies 0.5 / tan 30 of the half height below the middle.
  const double line = 240.0 * (1.0 + 0.5 / std::tan(0.5235988));
  // y, looking down, kind, colour (0: no draw), viewport X, Y, width, then two
  // fan points (index, x, y): the top left and bottom right of the tint.
  const double cases[][13] = {
      {1000, 0, 1, 0},                                            // well above: nothing
      {800, 0, 0, 0},                                             // no other kind
      {800, 0, 1, 0xBF547687u, 0, 0, 640, 0, 0, 0, 2, 640, 480},  // under: the whole screen
      {800, 0, 1, 0xBF547687u, 100, 50, 640, 0, 100, 50, 2, 740, 530},
      {800, 0, 1, 0xBF547687u, 100, 50, 641, 0, 99.5, 50, 2, 740.5, 530},  // halves are whole
      {864.5, 0, 1, 0xBF547687u, 0, 0, 640, 3, 0, line, 1, 640, 480},      // at the surface
      {800, 1, 1, 0xBF547686u, 0, 0, 640, 0, 0, 0, 2, 640, 480},           // straight down, under
      {900, 1, 1, 0},                                                      // and from above
  };
  for (const auto& c : cases) {
    device.ClearLog();
    camera.SetViewport(DWORD(c[4]), DWORD(c[5]), c[6] ? DWORD(c[6]) : 640, 480, 1.0f, 100.0f,
                       nullptr);
    camera.Aim(8000.0f, float(c[0]), 8000.0f, c[1] ? DOWN : AHEAD, c[1] ? AHEAD : UP);
    camera.RenderWaterOverlay(&device, std::int32_t(c[2]), LEVEL);
    EXPECT_EQ(device.Calls().front().args, (std::vector<double>{D3DRS_ZWRITEENABLE, FALSE}));
    EXPECT_EQ(device.Calls().back().args, (std::vector<double>{D3DRS_ZWRITEENABLE, TRUE}));
    const auto fan = Fan<CScreenVertex>();
    ASSERT_EQ(fan.size(), c[3] ? 4u : 0u) << c[0];
    if (fan.empty()) continue;
    const CScreenVertex &tl = fan[int(c[7])], &br = fan[int(c[10])];
    EXPECT_TRUE(tl.m_x == c[8] && std::abs(tl.m_y - c[9]) < 0.05 && br.m_x == c[11] &&
                br.m_y == c[12])
        << c[0];
    EXPECT_TRUE(tl.m_z == 0.0f && tl.m_rhw == 1.0f && tl.m_diffuse == c[3]) << c[0];
    EXPECT_EQ(device.StageState(0, D3DTSS_COLORARG1), D3DTA_TEXTURE);
  }
}

}  // namespace
