// The rules that pick the sounds of a frame: altitude bands, talk, skyscraper
// remarks and their counters, and the exact number of draws each makes from
// the shared random source (checked through the generator's state).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/crt/crt.h"
#include "platform/win32/script/Win32Script.h"
#include "support/FakeBass.h"
#include "unit/render/AppUnderTest.h"

namespace {

constexpr BYTE kTalkKey = 0x54;  // T

// The generator's state after `draws` more draws from `state`.
std::uint32_t Advanced(std::uint32_t state, int draws) {
  for (int i = 0; i < draws; ++i) state = state * 214013u + 2531011u;
  return state;
}

// The result of the first draw from `state`.
int FirstDraw(std::uint32_t state) { return int((Advanced(state, 1) >> 16) & 0x7FFF); }

const std::string kSteps = "music\\shagi_trava_short.mp3";
const std::string kDiving = "music\\diving_short.mp3";
const std::string kSwim = "music\\swim_short.mp3";
const std::string kBreathe = "music\\breathe_short.mp3";
const std::string kRemains = "speech\\mp3\\ostanki_pogibshey.mp3";
const std::string kClimb = "speech\\mp3\\kak_zabratsa_na_neboskreb.mp3";

std::string Clip(int n) { return "speech\\mp3\\" + std::to_string(n) + ".mp3"; }

bool IsClip(const std::string& path) {
  return path.rfind("speech\\mp3\\", 0) == 0 && path != kRemains && path != kClimb;
}

int Count(const std::vector<std::string>& paths, const std::string& path) {
  return int(std::count(paths.begin(), paths.end(), path));
}

constexpr float kOpenX = 10000.0f, kOpenZ = 10000.0f;  // far from both skyscrapers
constexpr float kZoneX = 3000.0f, kZoneZ = 4000.0f;    // inside the first skyscraper's zone
constexpr float kLand = 900.0f, kShore = 868.0f, kDeep = 800.0f;

class SoundRules : public ::testing::Test {
 protected:
  void SetUp() override {
    fakebass::Reset();
    app_ = std::make_unique<AppUnderTest>();
    ASSERT_TRUE(app().m_player.SetCameraMode(CAM_MODE_1ST_PERSON));
    app().m_playerHasMoved = 1;
    Seed(12345);
  }
  CGameApp& app() { return *app_->operator->(); }

  void Seed(std::uint32_t seed) { crt::srand(seed_ = seed); }
  // Draws made since the last Seed, judged by the generator's state.
  int Draws() const {
    for (int n = 0; n < 100000; ++n)
      if (Advanced(seed_, n) == crt::randState()) return n;
    return -1;
  }

  void At(float x, float y, float z) { app().m_player.SetPosition(D3DXVECTOR3(x, y, z)); }

  // One frame's rules; the files played in it.
  std::vector<std::string> Frame(std::uint32_t direction = 0) {
    fakebass::ClearPlays();
    app().RunSoundEvents(direction, keys_);
    for (const fakebass::Play& play : fakebass::Plays()) EXPECT_FALSE(play.restart);
    return fakebass::PlayedPaths();
  }

  std::unique_ptr<AppUnderTest> app_;
  std::uint32_t seed_ = 0;
  BYTE keys_[256] = {};  // the frame's key table, as ReadInput reads it (held: 0x80)
};

}  // namespace

TEST_F(SoundRules, EachRandomSoundHasItsOwnDrawAndAltitudeBandsPickStepsDivingSwimmingAndBreathing) {
  // The four draws of a frame on land, in order: modulus, hit, sound.
  const struct { int modulus, hit; std::string path; } sounds[] = {
      {12000, 77, "music\\kashel_short.mp3"}, {15000, 777, "music\\poperhnulsya.mp3"},
      {18000, 777, "music\\smeh_short1.mp3"}, {19000, 777, "music\\smeh_short2.mp3"}};
  At(kOpenX, kLand, kOpenZ);
  for (int which = 0; which < 4; ++which) {
    std::uint32_t seed = 1;  // one whose draw number `which` hits
    while (FirstDraw(Advanced(seed, which)) % sounds[which].modulus != sounds[which].hit) ++seed;
    Seed(seed);
    EXPECT_EQ(Count(Frame(), sounds[which].path), 1) << "draw " << which;
    EXPECT_EQ(Draws(), 4);
  }

  // The four random sounds draw only above 850.
  const struct { float y; std::uint32_t direction; std::vector<std::string> played; int draws; } cases[] = {
      {849.5f, 0, {kDiving}, 0},                 {850.0f, MOVE_FORWARD, {kSwim}, 0},
      {850.0f, 0, {}, 0},                        {865.0f, MOVE_LEFT, {kSwim, kBreathe}, 4},
      {865.5f, MOVE_FORWARD, {kBreathe}, 4},     {872.0f, MOVE_FORWARD, {kBreathe}, 4},
      {872.5f, MOVE_FORWARD | MOVE_LEFT, {kSteps, kBreathe}, 4}, {872.5f, 0, {kBreathe}, 4}};
  // Then again with every sound missing: silence, but the same draws, so that
  // the shared random sequence does not depend on which files exist.
  for (bool missing : {false, true}) {
    for (const auto& c : cases) {
      Seed(777);
      At(kOpenX, c.y, kOpenZ);
      // The seed is chosen so that no random sound fires on the first draws.
      SCOPED_TRACE(testing::Message() << "y " << c.y << " direction " << c.direction << " missing " << missing);
      EXPECT_EQ(Frame(c.direction), missing ? std::vector<std::string>{} : c.played);
      EXPECT_EQ(Draws(), c.draws);
    }
    CGameApp& a = app();
    for (CSoundSlot* slot : {&a.m_soundCough, &a.m_soundChoke, &a.m_soundLaugh1, &a.m_soundLaugh2,
                             &a.m_soundBreathe, &a.m_soundSteps, &a.m_soundSwim, &a.m_soundDiving})
      *slot = CSoundSlot{};
  }
}

// Standing still from the start, no rule runs, not even the deep water's
// diving; the first direction key starts them. Through ReadInput, on the
// scripted keyboard.
TEST_F(SoundRules, NoRuleRunsBeforeTheFirstDirectionKey) {
  app().m_playerHasMoved = 0;
  At(kOpenX, kDeep, kOpenZ);
  for (const BYTE key : {BYTE('A'), BYTE(VK_UP)}) {
    win32::script::Enable({.realWindows = false});
    win32::script::HoldKeys(0, {key});
    for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);) {
    }
    fakebass::ClearPlays();
    app().ReadInput();
    EXPECT_EQ(Count(fakebass::PlayedPaths(), kDiving), key == VK_UP ? 1 : 0) << int(key);
  }
  win32::script::Disable();
}

TEST_F(SoundRules, TalkPicksFromTheLandAndWaterTablesAndBarsRandomSounds) {
  // Seeds whose first draw gives the wanted remainder, then the clip heard;
  // in the shore and deep bands (clip 0) the key starts the wait but nothing
  // is heard and nothing draws.
  const struct { float y; int modulus, r, clip; } cases[] = {
      {kLand, 16, 0, 1}, {kLand, 16, 6, 7},    {kLand, 16, 7, 9}, {kLand, 16, 15, 17}, {850.0f, 10, 0, 3},
      {865.0f, 10, 4, 8}, {850.0f, 10, 9, 14}, {kShore, 1, 0, 0}, {872.0f, 1, 0, 0},   {kDeep, 1, 0, 0},
      {849.5f, 1, 0, 0}};
  keys_[kTalkKey] = 0x80;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "y " << c.y << " r " << c.r);
    std::uint32_t seed = 1;
    while (FirstDraw(seed) % c.modulus != c.r) ++seed;
    Seed(seed);
    app().m_speechTimer = 0;
    At(kOpenX, c.y, kOpenZ);
    const std::vector<std::string> played = Frame(0);
    EXPECT_EQ(std::count_if(played.begin(), played.end(), IsClip), c.clip ? 1 : 0);
    EXPECT_EQ(Count(played, Clip(c.clip)), c.clip ? 1 : 0);
    EXPECT_EQ(Draws(), c.clip ? 1 : 0) << "one draw for the clip, none for the barred random sounds";
    EXPECT_EQ(app().m_speechTimer, 1u);
  }
}

TEST_F(SoundRules, HeldTalkKeyGivesAClipEvery333FramesAndNoRandomSoundsBetween) {
  At(kOpenX, kLand, kOpenZ);
  keys_[kTalkKey] = 0x80;
  std::vector<int> clipFrames;
  for (int frame = 0; frame < 1000; ++frame) {
    for (const std::string& path : Frame(MOVE_FORWARD))
      if (IsClip(path)) clipFrames.push_back(frame);
  }
  EXPECT_EQ(clipFrames, (std::vector<int>{0, 333, 666, 999}));
  EXPECT_EQ(Draws(), 4) << "only the clips draw while T is held";
}

TEST_F(SoundRules, ZoneRemarkComesAgainAfter999FramesAlsoWhenThePlayerLeftTheZone) {
  std::vector<int> remarkFrames;
  for (int frame = 0; frame < 2000; ++frame) {
    // In the zone only around the remarks: the counter runs on outside it.
    const int phase = frame % 999;
    phase < 2 || phase == 998 ? At(kZoneX, kLand, kZoneZ) : At(kOpenX, kLand, kOpenZ);
    std::vector<std::string> played = Frame();
    if (Count(played, kRemains) + Count(played, kClimb) > 0) remarkFrames.push_back(frame);
  }
  EXPECT_EQ(remarkFrames, (std::vector<int>{0, 999, 1998}));
  EXPECT_EQ(Draws(), 3 + 2000 * 4) << "one draw per remark, four random draws per frame";
}

TEST_F(SoundRules, ZoneTestIsStrictAndIgnoresHeightAndAMissingRemarkKeepsItDrawing) {
  const struct { float x, y, z; bool inZone; } cases[] = {
      {1800.0f, kDeep, 4000.0f, false}, {1800.5f, kDeep, 4000.0f, true}, {8199.5f, kDeep, 4000.0f, true},
      {8200.0f, kDeep, 4000.0f, false}, {3000.0f, kDeep, 2800.0f, false}, {3000.0f, kDeep, 2800.5f, true},
      {7000.0f, kDeep, 5200.0f, false}, {4199.5f, kDeep, 4000.0f, true},  {4200.0f, kDeep, 4000.0f, false},
      {5800.0f, kDeep, 4000.0f, false}, {5800.5f, kDeep, 4000.0f, true},  {3000.0f, 20000.0f, 4000.0f, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.x << ", " << c.y << ", " << c.z);
    Seed(2024);
    app().m_zoneSpeechTimer = 0;
    At(c.x, c.y, c.z);
    std::vector<std::string> played = Frame();
    EXPECT_EQ(Count(played, kRemains) + Count(played, kClimb) == 1, c.inZone);
    EXPECT_EQ(app().m_zoneSpeechTimer, c.inZone ? 2 : 0);
    if (c.y == kDeep) { EXPECT_EQ(Draws(), c.inZone ? 1 : 0); }
  }
  // The remark drawn has no channel: silence, and the next frame draws again.
  app().m_soundRemains = CSoundSlot{};
  std::uint32_t seed = 1;
  while (FirstDraw(seed) % 2 != 0 || FirstDraw(Advanced(seed, 1)) % 2 != 1) ++seed;
  Seed(seed);
  app().m_zoneSpeechTimer = 0;
  At(kZoneX, kDeep, kZoneZ);  // deep: the remark is the frame's only draw
  EXPECT_EQ(Frame(), (std::vector<std::string>{kDiving}));
  EXPECT_EQ(app().m_zoneSpeechTimer, 0);
  EXPECT_EQ(Frame(), (std::vector<std::string>{kClimb, kDiving}));
  EXPECT_EQ(Draws(), 2);
}
