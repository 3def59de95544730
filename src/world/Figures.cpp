// The flock: winged figures that fly straight ahead at 100 units a frame,
// now and then pick a new heading, turn back near the edge of their airspace
// and all beat their wings on one shared oscillator. Only the first 100 slots
// fly and are drawn; a one-pass height sort a frame slowly brings the highest
// figures into them. Everything here counts frames, not seconds.
//
// Headings are degrees in a float: 0 flies towards -z, 90 towards -x, 180
// towards +z, 270 towards +x. A figure is its two wings alone, both showing
// the right wing's picture.
#include <cmath>
#include <utility>

#include "platform/crt/crt.h"
#include "terrain/Terrain.h"
#include "terrain/Vertex.h"

namespace {

constexpr int LIVE_FIGURES = 100;  // fixed, whatever the array's size
constexpr double WING_STEP = 0.3;
constexpr float WING_LIMIT = 3.0f;
constexpr std::int32_t WING_RISING = 1;
constexpr std::int32_t WING_FALLING = 2;

constexpr double FLIGHT_PI = 3.1415;  // the flock's own pi, a little short
constexpr double FLIGHT_STEP = 100.0;
constexpr float AIRSPACE_MIN = -50000.0f;  // a step may not leave this box
constexpr float AIRSPACE_MAX = 70000.0f;
constexpr float TURN_BACK_MIN = -48000.0f;  // beyond these the figure is sent back
constexpr float TURN_BACK_MAX = 68000.0f;
constexpr float TURN_RATE = 3.0f;  // degrees a frame
constexpr int RANDOM_TURN_ODDS = 200;
constexpr int RANDOM_TURN_HIT = 55;

constexpr float HEADING_TO_RADIANS = 0.017452778f;  // 3.1415 / 180
constexpr std::uint32_t WING_COLOUR = 0xFF000000u;

bool InAirspace(float v) {
  return v >= AIRSPACE_MIN && v <= AIRSPACE_MAX;
}

}  // namespace

void CTerrain::UpdateWings() {
  // The double step stored back in a float rounds: ten steps from 0.0 end at
  // 2.9999998, so an eleventh is taken and a beat lasts 44 frames.
  if (m_wingAngle < WING_LIMIT && m_wingDirection == WING_RISING)
    m_wingAngle = static_cast<float>(m_wingAngle + WING_STEP);
  if (m_wingAngle > -WING_LIMIT && m_wingDirection == WING_FALLING)
    m_wingAngle = static_cast<float>(m_wingAngle - WING_STEP);
  if (m_wingAngle >= WING_LIMIT) m_wingDirection = WING_FALLING;
  if (m_wingAngle <= -WING_LIMIT) m_wingDirection = WING_RISING;
}

void CTerrain::UpdateFigures() {
  for (int i = 0; i < LIVE_FIGURES; ++i) {
    CFlyingFigure& figure = m_figures[i];

    const float turns = static_cast<float>(figure.m_heading / 180.0);
    const double a = turns * FLIGHT_PI;
    const float nx = static_cast<float>(figure.m_x - std::sin(a) * FLIGHT_STEP);
    const float nz = static_cast<float>(figure.m_z - std::cos(a) * FLIGHT_STEP);
    // A step that would leave the airspace is not taken at all; the figure
    // turns on the spot until its next step is inside.
    if (InAirspace(nx) && InAirspace(nz)) {
      figure.m_x = nx;
      figure.m_z = nz;
    }

    if (crt::rand() % RANDOM_TURN_ODDS == RANDOM_TURN_HIT)
      figure.m_targetHeading = static_cast<float>(crt::rand() % 360);

    // A later hit overrides an earlier one, so in a corner z wins.
    if (figure.m_x < TURN_BACK_MIN) figure.m_targetHeading = 270.0f;
    if (figure.m_x > TURN_BACK_MAX) figure.m_targetHeading = 90.0f;
    if (figure.m_z > TURN_BACK_MAX) figure.m_targetHeading = 0.0f;
    if (figure.m_z < TURN_BACK_MIN) figure.m_targetHeading = 180.0f;

    // Straight along the number line, no shortest way round; both tests run.
    if (figure.m_heading < figure.m_targetHeading) figure.m_heading += TURN_RATE;
    if (figure.m_heading > figure.m_targetHeading) figure.m_heading -= TURN_RATE;
    if (std::fabs(figure.m_targetHeading - figure.m_heading) < TURN_RATE)
      figure.m_heading = figure.m_targetHeading;
  }
}

void CTerrain::SortFigures() {
  // One pass of neighbour exchanges a frame, highest first; equal heights stay.
  for (int i = 0; i < MAX_FIGURES - 1; ++i)
    if (m_figures[i + 1].m_y > m_figures[i].m_y) std::swap(m_figures[i], m_figures[i + 1]);
}

void CTerrain::DrawFigure(float x, float y, float z, float size, float wingAngle, float heading) {
  if (m_device == nullptr) return;
  m_device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
  m_device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
  m_device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);

  const float s = size;
  const float t = static_cast<float>(wingAngle * s / 5.0);
  const float a = heading * HEADING_TO_RADIANS;
  const float sinA = std::sin(a);
  const float cosA = std::cos(a);
  // A local corner turned about the vertical by the heading, then placed.
  auto corner = [&](float px, float py, float pz, float u, float v) {
    return CVertex(x + cosA * px + sinA * pz, y + py, z - sinA * px + cosA * pz, WING_COLOUR, u, v);
  };

  // Both wings hinge on the line of flight; side -1 is the first (local -x)
  // wing, +1 its mirror image. Tips rise and come in as the angle grows.
  // The vertex format is the one the rain left.
  for (const float side : {-1.0f, 1.0f}) {
    const float tipX = side * (5.0f * s - t);
    const CVertex wing[4] = {
        corner(tipX, t, -2.0f * s, 0.0f, 0.0f),
        corner(0.0f, 0.0f, -2.0f * s, 0.0f, 1.0f),
        corner(0.0f, 0.0f, 2.0f * s, 1.0f, 1.0f),
        corner(tipX, t, 2.0f * s, 1.0f, 0.0f),
    };
    m_device->SetTexture(0, m_wingRightTexture);
    m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    m_device->DrawPrimitiveUP(D3DPT_TRIANGLEFAN, 2, wing, sizeof(CVertex));
  }
}
