// The walk on the generated world, in the one scripted run: the start values
// and the way on over open country into the sea. (The length of a step, the
// lift of J and the clamp that sets a body on the ground are the input and
// ground unit tests'.)
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "ProgramRun.h"

namespace program_test {
namespace {

// The body's box reaches 2.0 below its position: it stands that high.
constexpr float kStandHeight = 2.0f;
// Setting a position goes through a float difference and sum, which may land
// one step of the float grid off the target: at heights near 1000 that is
// about 1e-4.
constexpr float kRestTolerance = 1e-3f;

bool Walking(const FrameRecord& r) {
  return r.friction == 250.0f && r.gravity == D3DXVECTOR3(0.0f, -500.0f, 0.0f) &&
         r.maxVelocityXZ == 125.0f && r.maxVelocityY == 400.0f;
}

bool Swimming(const FrameRecord& r) {
  return r.friction == 250.0f && r.gravity == D3DXVECTOR3(0.0f, -260.0f, 0.0f) &&
         r.maxVelocityXZ == 40.0f && r.maxVelocityY == 60.0f;
}

TEST(Walk, StartValues) {
  const ProgramRun& run = ProgramRun::Get();
  EXPECT_EQ(run.startPosition, D3DXVECTOR3(1500.0f, 400.0f, 1500.0f));
  EXPECT_EQ(std::make_tuple(run.startPitch, run.startYaw, run.startCameraMode), std::make_tuple(25.0f, 45.0f, 1u));
}

TEST(Walk, TheWalkFollowsTheGroundAndTheSeaSwitchesToSwimming) {
  const ProgramRun& run = ProgramRun::Get();
  for (const std::string& problem : run.problems) ADD_FAILURE() << problem;

  float highest = -1e9f, lowest = 1e9f;
  std::uint32_t firstSwimming = 0;
  for (const FrameRecord& r : run.frames) {
    if (r.frame <= kWalkFrom) continue;
    // Never below the surface. On land no more than a unit above it: a body
    // that walks down a slope leaves the ground for a frame or two before
    // gravity brings it back, and at 50 units a second on these slopes that
    // gap stays far below a unit. In the sea it sinks slowly, at 60 at most.
    EXPECT_GE(r.position.y, r.ground + kStandHeight - kRestTolerance) << "frame " << r.frame;
    const bool land = r.ground + kStandHeight >= kWaterLevel;
    EXPECT_LE(r.position.y, land ? r.ground + kStandHeight + 1.0f : 1e9f) << "frame " << r.frame;
    highest = std::max(highest, r.ground);
    lowest = std::min(lowest, r.ground);

    // The values follow the height of the frame just ended, in first person.
    const bool water = r.position.y < kWaterLevel;
    EXPECT_TRUE(water ? Swimming(r) : Walking(r)) << "frame " << r.frame << " at " << r.position.y;
    if (water && firstSwimming == 0) firstSwimming = r.frame;
  }
  // The way went over ground that rises and falls by far more than a step.
  EXPECT_GT(highest - lowest, 100.0f);
  ASSERT_NE(firstSwimming, 0u);
  // The first look leads over open country to the water: the walk got
  // there on its own, without a turn.
  const FrameRecord* shore = run.At(firstSwimming - 1);
  ASSERT_NE(shore, nullptr);
  EXPECT_TRUE(Walking(*shore));
  EXPECT_NEAR(shore->position.x - run.At(kWalkFrom)->position.x,
              shore->position.z - run.At(kWalkFrom)->position.z, 0.05f);
}

}  // namespace
}  // namespace program_test
