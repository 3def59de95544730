// The sound bank as the constructor of CGameApp leaves it: the start of BASS
// with its two boxes, and the 28 slots in their order, each channel fetched once.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SoundTestApp.h"

using soundtest::App;

namespace {

const char kVersionBox[] = "Ошибка версии BASS.";
const char kInitBox[] = "Не удалось инициализировать BASS.";

// The files in load order, and the slots they load into.
std::vector<std::string> Files() {
  std::vector<std::string> files;
  for (const char* name : {"diving_short", "shagi_trava_short", "swim_short", "breathe_short", "kashel_short",
                           "poperhnulsya", "smeh_short1", "smeh_short2", "jump_small2"})
    files.push_back(std::string("music\\") + name + ".mp3");
  for (int i = 1; i <= 17; ++i) files.push_back("speech\\mp3\\" + std::to_string(i) + ".mp3");
  files.push_back("speech\\mp3\\ostanki_pogibshey.mp3");
  files.push_back("speech\\mp3\\kak_zabratsa_na_neboskreb.mp3");
  return files;
}
std::vector<const CSoundSlot*> Slots(CGameApp& app) {
  std::vector<const CSoundSlot*> slots = {&app.m_soundDiving, &app.m_soundSteps,  &app.m_soundSwim,
                                          &app.m_soundBreathe, &app.m_soundCough, &app.m_soundChoke,
                                          &app.m_soundLaugh1, &app.m_soundLaugh2, &app.m_soundJump};
  for (const CSoundSlot& speech : app.m_soundSpeech) slots.push_back(&speech);
  slots.push_back(&app.m_soundRemains);
  slots.push_back(&app.m_soundClimb);
  return slots;
}

TEST(SoundBank, LoadsTheSlotsInOrderAndFetchesEachChannelOnce) {
  fakebass::Reset();
  testing::internal::CaptureStderr();
  App app;
  const std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_EQ(boxes.find("BASS"), std::string::npos) << "no box when BASS starts: " << boxes;
  EXPECT_EQ(fakebass::InitCalls(), 1);
  const std::vector<std::string> files = Files();
  ASSERT_EQ(fakebass::Loads().size(), files.size());
  std::vector<const CSoundSlot*> slots = Slots(*app);
  for (std::size_t i = 0; i < files.size(); ++i) {
    const fakebass::Load& load = fakebass::Loads()[i];
    EXPECT_EQ(load.path, files[i]);
    EXPECT_EQ(load.max, 1u) << load.path;
    EXPECT_EQ(load.flags, 0u) << load.path << " must not loop";
    EXPECT_EQ(slots[i]->m_sample, load.sample) << load.path;
    EXPECT_EQ(slots[i]->m_channel, fakebass::ChannelOf(files[i])) << load.path;
    EXPECT_NE(slots[i]->m_channel, 0u) << load.path;
  }
  EXPECT_EQ(fakebass::GetChannelCalls(), 28);
  EXPECT_TRUE(fakebass::Plays().empty()) << "nothing plays at load";
}

// A missing file or channel empties only its own slot; a wrong version or a
// failed start shows its own box and the start goes on, every load still tried.
TEST(SoundBank, FailuresLeaveOnlyTheirOwnSlotsEmptyAndTheStartGoesOn) {
  fakebass::Reset();
  fakebass::SetMissing("music\\breathe_short.mp3");
  fakebass::SetNoChannel("speech\\mp3\\8.mp3");
  fakebass::SetVersion(0x02030011);
  testing::internal::CaptureStderr();
  {
    App app;
    EXPECT_EQ(app->m_soundBreathe.m_sample, 0u);
    EXPECT_EQ(app->m_soundBreathe.m_channel, 0u);
    EXPECT_NE(app->m_soundSpeech[7].m_sample, 0u);
    EXPECT_EQ(app->m_soundSpeech[7].m_channel, 0u);
    EXPECT_NE(app->m_soundCough.m_channel, 0u);
    EXPECT_NE(app->m_soundClimb.m_channel, 0u);
    EXPECT_EQ(fakebass::Loads().size(), 28u);
    EXPECT_EQ(fakebass::GetChannelCalls(), 27) << "no channel is asked of a failed load";
  }
  std::string boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find(kVersionBox), std::string::npos) << boxes;
  EXPECT_EQ(boxes.find(kInitBox), std::string::npos) << boxes;

  fakebass::Reset();
  fakebass::SetInitResult(FALSE);
  testing::internal::CaptureStderr();
  {
    App app;
    for (const CSoundSlot* slot : Slots(*app)) EXPECT_EQ(slot->m_channel, 0u);
  }
  boxes = testing::internal::GetCapturedStderr();
  EXPECT_NE(boxes.find(kInitBox), std::string::npos) << boxes;
  EXPECT_EQ(boxes.find(kVersionBox), std::string::npos) << boxes;
  EXPECT_EQ(fakebass::Loads().size(), 28u) << "every load is still tried";
}

}  // namespace
