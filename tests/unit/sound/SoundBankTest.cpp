// The sound bank as the constructor of CGameApp leaves it: the 28 slots in
// their order, each channel fetched once, and what a failure leaves behind.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/FakeBass.h"
#include "unit/render/AppUnderTest.h"

namespace {

TEST(SoundBank, LoadsTheSlotsInOrderAndFetchesEachChannelOnce) {
  fakebass::Reset();
  AppUnderTest app;
  CGameApp& a = *app.operator->();
  // Each file and the slot that keeps its channel, in load order.
  std::vector<std::pair<std::string, const CSoundSlot*>> slots = {
      {"diving_short", &a.m_soundDiving},   {"shagi_trava_short", &a.m_soundSteps}, {"swim_short", &a.m_soundSwim},
      {"breathe_short", &a.m_soundBreathe}, {"kashel_short", &a.m_soundCough},      {"poperhnulsya", &a.m_soundChoke},
      {"smeh_short1", &a.m_soundLaugh1},    {"smeh_short2", &a.m_soundLaugh2},      {"jump_small2", &a.m_soundJump}};
  for (auto& [file, slot] : slots) file = "music\\" + file + ".mp3";
  for (int i = 1; i <= 17; ++i) slots.push_back({"speech\\mp3\\" + std::to_string(i) + ".mp3", &a.m_soundSpeech[i - 1]});
  slots.push_back({"speech\\mp3\\ostanki_pogibshey.mp3", &a.m_soundRemains});
  slots.push_back({"speech\\mp3\\kak_zabratsa_na_neboskreb.mp3", &a.m_soundClimb});
  ASSERT_EQ(fakebass::Loads().size(), slots.size());
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const fakebass::Load& load = fakebass::Loads()[i];
    EXPECT_EQ(load.path, slots[i].first);
    EXPECT_TRUE(load.max == 1 && load.flags == 0) << load.path << " must not loop";
    EXPECT_EQ(slots[i].second->m_channel, fakebass::ChannelOf(slots[i].first)) << load.path;
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
  AppUnderTest app;
  const std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find("Ошибка версии BASS."), std::string::npos) << boxes;
  EXPECT_TRUE(app->m_soundBreathe.m_channel == 0u && app->m_soundClimb.m_channel != 0u);
  EXPECT_EQ(fakebass::GetChannelCalls(), 27) << "no channel is asked of a failed load, the rest go on";
}

}  // namespace
