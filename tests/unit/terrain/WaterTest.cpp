// The sea and the tint under it: the clip of the sea quad at the near plane
// and the overlay's polygon for cameras under, at and above the surface,
// with its mapping to viewport pixels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

#include "support/RecordingDevice.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"
#include "view/Camera.h"

using karvo_test::DeviceCall;
using karvo_test::DeviceCalls;
using karvo_test::Ptr;
using karvo_test::RecordingDevice;

namespace {

constexpr float LEVEL = 864.0f;
constexpr float SIDE = 16448.0f;  // 257 samples of 64 units

// A camera placed and aimed directly.
class AimedCamera : public CCamera {
 public:
  CCameraMode GetCameraMode() const override { return CAM_MODE_1ST_PERSON; }
  void Aim(const D3DXVECTOR3& position, const D3DXVECTOR3& look, const D3DXVECTOR3& up) {
    m_position = position;
    m_look = look;
    m_up = up;
    m_viewDirty = m_frustumDirty = true;
    GetViewMatrix();
    GetProjMatrix();
  }
};

const D3DXVECTOR3 AHEAD(0.0f, 0.0f, 1.0f), UP(0.0f, 1.0f, 0.0f), DOWN(0.0f, -1.0f, 0.0f);

class Water : public ::testing::Test {
 protected:
  void SetUp() override {
    terrain = new (storage_.get()) CTerrain();
    terrain->SetDevice(&device, true);
    terrain->m_mapWidth = terrain->m_mapHeight = 257;
    terrain->m_scale = D3DXVECTOR3(64.0f, 16.0f, 64.0f);
    ASSERT_GE(device.CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED,
                                   &terrain->m_waterTexture, nullptr),
              0);
    device.ClearLog();
  }
  void TearDown() override { terrain->~CTerrain(); }

  std::unique_ptr<void, decltype(&std::free)> storage_{std::calloc(1, sizeof(CTerrain)),
                                                       &std::free};
  RecordingDevice device;
  AimedCamera camera;
  CTerrain* terrain = nullptr;
};

TEST_F(Water, SeaIsCutAtTheNearPlane) {
  camera.Aim(D3DXVECTOR3(8000.0f, 900.0f, 8000.0f), AHEAD, UP);
  terrain->DrawWater(&camera, LEVEL);
  const DeviceCalls expected = {{"SetTextureStageState", {0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE}},
                                {"SetTextureStageState", {0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG1}},
                                {"SetRenderState", {D3DRS_SRCBLEND, D3DBLEND_SRCALPHA}},
                                {"SetRenderState", {D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA}},
                                {"SetRenderState", {D3DRS_ALPHABLENDENABLE, TRUE}},
                                {"SetTexture", {0, Ptr(terrain->m_waterTexture)}},
                                {"SetFVF", {0x142}},
                                {"SetRenderState", {D3DRS_CULLMODE, D3DCULL_NONE}},
                                {"SetRenderState", {D3DRS_ZWRITEENABLE, FALSE}},
                                {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, 2, 24}},
                                {"SetRenderState", {D3DRS_ZWRITEENABLE, TRUE}},
                                {"SetRenderState", {D3DRS_ALPHABLENDENABLE, FALSE}},
                                {"SetRenderState", {D3DRS_CULLMODE, D3DCULL_CCW}}};
  EXPECT_EQ(device.Calls(), expected);
  // Corners 0 and 3 lie behind the eye; new points on x = 0 and x = 16448 at
  // the near plane, alpha 0xBF even on the edge from the clearer corner 2.
  const auto fan = device.UpVertices<CVertex>(0);
  ASSERT_EQ(fan.size(), 4u);
  const float nearZ = 8001.0f;
  const float rows[4][6] = {{0, nearZ, 0xBF, 0, nearZ / SIDE, 0},
                            {0, SIDE, 0xBF, 0, 1, 0},
                            {SIDE, SIDE, 0xAF, 1, 1, 0},
                            {SIDE, nearZ, 0xBF, 1, nearZ / SIDE, 0}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(fan[i].m_x, rows[i][0]) << i;
    EXPECT_NEAR(fan[i].m_z, rows[i][1], 0.01) << i;
    EXPECT_EQ(fan[i].m_y, LEVEL) << i;
    EXPECT_EQ(fan[i].m_diffuse >> 24, rows[i][2]) << i;
    EXPECT_EQ(fan[i].m_tu, rows[i][3]) << i;
    EXPECT_NEAR(fan[i].m_tv, rows[i][4], 1e-5) << i;
  }
}

TEST_F(Water, CornersOnTheNearPlaneStayAndAllBehindDrawsNothing) {
  // The near plane (1.0 ahead) runs through corners 0 and 3: the quad as it is.
  camera.Aim(D3DXVECTOR3(8000.0f, 900.0f, -1.0f), AHEAD, UP);
  terrain->DrawWater(&camera, LEVEL);
  ASSERT_EQ(device.Count("DrawPrimitiveUP"), 1u);
  const auto fan = device.UpVertices<CVertex>(0);
  ASSERT_EQ(fan.size(), 4u);
  const float corners[4][2] = {{0, 0}, {0, SIDE}, {SIDE, SIDE}, {SIDE, 0}};
  for (int i = 0; i < 4; ++i)
    EXPECT_TRUE(fan[i].m_x == corners[i][0] && fan[i].m_z == corners[i][1]) << i;

  device.ClearLog();
  camera.Aim(D3DXVECTOR3(8000.0f, 900.0f, 20000.0f), AHEAD, UP);
  terrain->DrawWater(&camera, LEVEL);
  EXPECT_TRUE(device.Calls().empty());
}

// The overlay's calls: z writes off, the fan when there is one, z writes on.
DeviceCalls OverlayCalls(std::size_t primitives) {
  const DeviceCall zOff{"SetRenderState", {D3DRS_ZWRITEENABLE, FALSE}},
      zOn{"SetRenderState", {D3DRS_ZWRITEENABLE, TRUE}};
  if (primitives == 0) return {zOff, zOn};
  return {zOff,
          {"SetTextureStageState", {0, D3DTSS_COLORARG1, D3DTA_DIFFUSE}},
          {"SetRenderState", {D3DRS_ALPHABLENDENABLE, TRUE}},
          {"SetFVF", {0x44}},
          {"DrawPrimitiveUP", {D3DPT_TRIANGLEFAN, double(primitives), 20}},
          {"SetRenderState", {D3DRS_ALPHABLENDENABLE, FALSE}},
          {"SetTextureStageState", {0, D3DTSS_COLORARG1, D3DTA_TEXTURE}},
          zOn};
}

TEST_F(Water, OverlayCoversWhatLiesUnderTheWater) {
  const struct {
    float y;
    D3DXVECTOR3 look, up;
    std::int32_t kind;
    DWORD colour;  // 0: nothing drawn
  } cases[] = {
      {1000.0f, AHEAD, UP, 1, 0},             // well above: the line is below the screen
      {800.0f, AHEAD, UP, 0, 0},              // no other kind
      {800.0f, AHEAD, UP, 1, 0xBF547687u},    // under: the whole screen below the line
      {800.0f, DOWN, AHEAD, 1, 0xBF547686u},  // straight down from under the water
      {900.0f, DOWN, AHEAD, 1, 0},            // and from above it
  };
  for (const auto& c : cases) {
    device.ClearLog();
    camera.Aim(D3DXVECTOR3(8000.0f, c.y, 8000.0f), c.look, c.up);
    camera.RenderWaterOverlay(&device, c.kind, LEVEL);
    ASSERT_EQ(device.Calls(), OverlayCalls(c.colour ? 2 : 0)) << c.y << " " << c.kind;
    if (c.colour == 0) continue;
    const auto fan = device.UpVertices<CScreenVertex>(0);
    const float corners[4][2] = {{0, 0}, {640, 0}, {640, 480}, {0, 480}};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(fan[i].m_x, corners[i][0]) << c.y << " " << i;
      EXPECT_EQ(fan[i].m_y, corners[i][1]) << c.y << " " << i;
      EXPECT_TRUE(fan[i].m_z == 0.0f && fan[i].m_rhw == 1.0f && fan[i].m_diffuse == c.colour) << i;
    }
  }
}

TEST_F(Water, OverlayAtTheSurfaceTintsBelowAStraightLine) {
  // Half a unit above the water, one unit to the near plane: the line lies
  // 0.5 / tan 30 of the half height below the middle, at y = 447.8.
  camera.Aim(D3DXVECTOR3(8000.0f, LEVEL + 0.5f, 8000.0f), AHEAD, UP);
  camera.RenderWaterOverlay(&device, 1, LEVEL);
  ASSERT_EQ(device.Calls(), OverlayCalls(2));
  const auto fan = device.UpVertices<CScreenVertex>(0);
  const float line = 240.0f * (1.0f + 0.5f / std::tan(0.5236f));
  const float expected[4][2] = {{640, line}, {640, 480}, {0, 480}, {0, line}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(fan[i].m_x, expected[i][0], 0.01) << i;
    EXPECT_NEAR(fan[i].m_y, expected[i][1], 0.05) << i;
  }
}

TEST_F(Water, OverlayMapsToTheViewportWithWholeNumberHalves) {
  const struct {
    DWORD width;
    float left, right;
  } cases[] = {{640, 100.0f, 740.0f}, {641, 99.5f, 740.5f}};
  for (const auto& c : cases) {
    device.ClearLog();
    camera.SetViewport(100, 50, c.width, 480, 1.0f, 100.0f, nullptr);
    camera.Aim(D3DXVECTOR3(8000.0f, 800.0f, 8000.0f), AHEAD, UP);
    camera.RenderWaterOverlay(&device, 1, LEVEL);
    const auto fan = device.UpVertices<CScreenVertex>(0);
    ASSERT_EQ(fan.size(), 4u);
    EXPECT_TRUE(fan[0].m_x == c.left && fan[0].m_y == 50.0f) << c.width;
    EXPECT_TRUE(fan[2].m_x == c.right && fan[2].m_y == 530.0f) << c.width;
  }
}

}  // namespace
