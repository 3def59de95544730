// The sound bank as the constructor of CGameApp leaves it: the start of BASS
// with its two boxes, and the 28 slots in their order, each channel fetched once.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SoundTestApp.h"

using soundtest::App;

namespace {

const std::vector<std::string> kFiles = {
    "music\\diving_short.mp3",   "music\\shagi_trava_short.mp3", "music\\swim_short.mp3",
    "music\\breathe_short.mp3",  "music\\kashel_short.mp3",      "music\\poperhnulsya.mp3",
    "music\\smeh_short1.mp3",    "music\\smeh_short2.mp3",       "music\\jump_small2.mp3",
    "speech\\mp3\\1.mp3",        "speech\\mp3\\2.mp3",           "speech\\mp3\\3.mp3",
    "speech\\mp3\\4.mp3",        "speech\\mp3\\5.mp3",           "speech\\mp3\\6.mp3",
    "speech\\mp3\\7.mp3",        "speech\\mp3\\8.mp3",           "speech\\mp3\\9.mp3",
    "speech\\mp3\\10.mp3",       "speech\\mp3\\11.mp3",          "speech\\mp3\\12.mp3",
    "speech\\mp3\\13.mp3",       "speech\\mp3\\14.mp3",          "speech\\mp3\\15.mp3",
    "speech\\mp3\\16.mp3",       "speech\\mp3\\17.mp3",          "speech\\mp3\\ostanki_pogibshey.mp3",
    "speech\\mp3\\kak_zabratsa_na_neboskreb.mp3"};

// The slots in load order.
std::vector<const CSoundSlot*> Slots(CGameApp& app) {
  std::vector<const CSoundSlot*> slots = {&app.m_soundDiving, &app.m_soundSteps,  &app.m_soundSwim,
                                          &app.m_soundBreathe, &app.m_soundCough, &app.m_soundChoke,
                                          &app.m_soundLaugh1, &app.m_soundLaugh2, &app.m_soundJump};
  for (const CSoundSlot& speech : app.m_soundSpeech) slots.push_back(&speech);
  slots.push_back(&app.m_soundRemains);
  slots.push_back(&app.m_soundClimb);
  return slots;
}

class SoundBank : public ::testing::Test {
 protected:
  void SetUp() override { fakebass::Reset(); }
};

}  // namespace

TEST_F(SoundBank, LoadsTheSlotsInOrderAndFetchesEachChannelOnce) {
  testing::internal::CaptureStderr();
  App app;
  std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_EQ(boxes.find("BASS"), std::string::npos) << "no box when BASS starts: " << boxes;
  EXPECT_EQ(fakebass::InitCalls(), 1);
  ASSERT_EQ(fakebass::Loads().size(), kFiles.size());
  std::vector<const CSoundSlot*> slots = Slots(*app);
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    const fakebass::Load& load = fakebass::Loads()[i];
    EXPECT_EQ(load.path, kFiles[i]);
    EXPECT_EQ(load.max, 1u) << load.path;
    EXPECT_EQ(load.flags, 0u) << load.path << " must not loop";
    EXPECT_EQ(slots[i]->m_sample, load.sample) << load.path;
    EXPECT_EQ(slots[i]->m_channel, fakebass::ChannelOf(kFiles[i])) << load.path;
    EXPECT_NE(slots[i]->m_channel, 0u) << load.path;
  }
  EXPECT_EQ(fakebass::GetChannelCalls(), 28);
  EXPECT_TRUE(fakebass::Plays().empty()) << "nothing plays at load";
  EXPECT_EQ(app->m_playerHasMoved, 0);
  EXPECT_EQ(app->m_speechTimer, 0u);
  EXPECT_EQ(app->m_zoneSpeechTimer, 0);
}

TEST_F(SoundBank, MissingFilesAndChannelsLeaveOnlyTheirOwnSlotsEmpty) {
  fakebass::SetMissing("music\\breathe_short.mp3");
  fakebass::SetNoChannel("speech\\mp3\\8.mp3");
  App app;
  EXPECT_EQ(app->m_soundBreathe.m_sample, 0u);
  EXPECT_EQ(app->m_soundBreathe.m_channel, 0u);
  EXPECT_NE(app->m_soundSpeech[7].m_sample, 0u);
  EXPECT_EQ(app->m_soundSpeech[7].m_channel, 0u);
  EXPECT_EQ(fakebass::Loads().size(), 28u) << "the loads after a missing file still happen";
  EXPECT_EQ(fakebass::GetChannelCalls(), 27) << "no channel is asked of a failed load";
  EXPECT_NE(app->m_soundCough.m_channel, 0u);
  EXPECT_NE(app->m_soundClimb.m_channel, 0u);
}

TEST_F(SoundBank, AWrongVersionOrAFailedStartShowsItsBoxAndGoesOn) {
  fakebass::SetVersion(0x02030011);
  testing::internal::CaptureStderr();
  {
    App app;
    EXPECT_NE(app->m_soundClimb.m_channel, 0u) << "the start goes on after the version box";
  }
  std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find("Ошибка версии BASS."), std::string::npos) << boxes;
  EXPECT_EQ(boxes.find("Не удалось инициализировать BASS."), std::string::npos) << boxes;
  EXPECT_EQ(fakebass::InitCalls(), 1);

  fakebass::Reset();
  fakebass::SetInitResult(FALSE);
  testing::internal::CaptureStderr();
  {
    App app;
    for (const CSoundSlot* slot : Slots(*app)) {
      EXPECT_EQ(slot->m_sample, 0u);
      EXPECT_EQ(slot->m_channel, 0u);
    }
  }
  boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find("Не удалось инициализировать BASS."), std::string::npos) << boxes;
  EXPECT_EQ(boxes.find("Ошибка версии BASS."), std::string::npos) << boxes;
  EXPECT_EQ(fakebass::Loads().size(), 28u) << "every load is still tried";
}
