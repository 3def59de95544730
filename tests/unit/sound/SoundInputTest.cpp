// The sound rules as ReadInput runs them: silent until the first direction
// key, while the jump sounds from the first frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "SoundTestApp.h"
#include "support/RecordingDevice.h"

TEST(SoundBeforeFirstStep, OnlyTheJumpSoundsUntilADirectionKey) {
  fakebass::Reset();
  soundtest::App app;
  karvo_test::RecordingDevice device;
  ASSERT_TRUE(app->m_player.SetCameraMode(CAM_MODE_1ST_PERSON));
  app->m_camera = app->m_player.GetCamera();
  device.AddRef();
  app->m_device = &device;
  // Deep under water and in a skyscraper zone: diving and a remark are due
  // at once when the rules run.
  app->m_player.SetPosition(D3DXVECTOR3(3000.0f, 700.0f, 4000.0f));
  crt::srand(5);
  const std::uint32_t seeded = crt::randState();
  const std::string jump = "music\\jump_small2.mp3";

  soundtest::Hold({soundtest::kJumpKey, soundtest::kTalkKey});
  for (int frame = 0; frame < 5; ++frame) {
    fakebass::ClearPlays();
    app->ReadInput();
    EXPECT_EQ(fakebass::PlayedPaths(), std::vector<std::string>{jump}) << "frame " << frame;
    soundtest::Pump();
  }
  EXPECT_EQ(app->m_playerHasMoved, 0);
  EXPECT_EQ(app->m_speechTimer, 0u) << "T does nothing before the first step";
  EXPECT_EQ(app->m_zoneSpeechTimer, 0);
  EXPECT_EQ(crt::randState(), seeded) << "no rule drew";

  soundtest::Hold({VK_UP});
  fakebass::ClearPlays();
  app->ReadInput();
  EXPECT_EQ(app->m_playerHasMoved, 1);
  std::vector<std::string> played = fakebass::PlayedPaths();
  EXPECT_NE(std::find(played.begin(), played.end(), "music\\diving_short.mp3"), played.end());
  EXPECT_NE(crt::randState(), seeded) << "the zone remark drew";

  soundtest::Hold({});
  fakebass::ClearPlays();
  app->ReadInput();
  EXPECT_EQ(app->m_playerHasMoved, 1) << "the first step is never forgotten";
  played = fakebass::PlayedPaths();
  EXPECT_NE(std::find(played.begin(), played.end(), "music\\diving_short.mp3"), played.end());
  app->m_device = nullptr;
  app->m_camera = nullptr;
}
