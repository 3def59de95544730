// The sound bank as the constructor of CGameApp leaves it: the 28 slots in
// their order, each channel fetched once, and what a failure leaves behind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SoundTestApp.h"

using soundtest::App;

namespace {

TEST(SoundBank, LoadsTheSlotsInOrderAndFetchesEachChannelOnce) {
  fakebass::Reset();
  App app;
  CGameApp& a = *app;
  std::vector<std::string> files;
  for (const char* name : {"diving_short", "shagi_trava_short", "swim_short", "breathe_short", "kashel_short",
                           "poperhnulsya", "smeh_short1", "smeh_short2", "jump_small2"})
    files.push_back(std::string("music\\") + name + ".mp3");
  for (int i = 1; i <= 17; ++i) files.push_back("speech\\mp3\\" + std::to_string(i) + ".mp3");
  files.push_back("speech\\mp3\\ostanki_pogibshey.mp3");
  files.push_back("speech\\mp3\\kak_zabratsa_na_neboskreb.mp3");
  std::vector<const CSoundSlot*> slots = {&a.m_soundDiving, &a.m_soundSteps,  &a.m_soundSwim,
                                          &a.m_soundBreathe, &a.m_soundCough, &a.m_soundChoke,
                                          &a.m_soundLaugh1, &a.m_soundLaugh2, &a.m_soundJump};
  for (const CSoundSlot& speech : a.m_soundSpeech) slots.push_back(&speech);
  slots.push_back(&a.m_soundRemains);
  slots.push_back(&a.m_soundClimb);
  ASSERT_EQ(fakebass::Loads().size(), files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    const fakebass::Load& load = fakebass::Loads()[i];
    EXPECT_EQ(load.path, files[i]);
    EXPECT_TRUE(load.max == 1 && load.flags == 0) << load.path << " must not loop";
    EXPECT_EQ(slots[i]->m_channel, fakebass::ChannelOf(files[i])) << load.path;
  }
  EXPECT_EQ(fakebass::GetChannelCalls(), 28);
}

// A missing file empties only its own slot; a wrong version shows its box and
// the start goes on. (A failed start's box is the end-to-end audio test's.)
TEST(SoundBank, AMissingFileEmptiesOnlyItsSlotAndAWrongVersionOnlyWarns) {
  fakebass::Reset();
  fakebass::SetMissing("music\\breathe_short.mp3");
  fakebass::SetVersion(0x02030011);
  testing::internal::CaptureStderr();
  App app;
  const std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find("Ошибка версии BASS."), std::string::npos) << boxes;
  EXPECT_TRUE(app->m_soundBreathe.m_channel == 0u && app->m_soundClimb.m_channel != 0u);
  EXPECT_EQ(fakebass::GetChannelCalls(), 27) << "no channel is asked of a failed load, the rest go on";
}

}  // namespace
