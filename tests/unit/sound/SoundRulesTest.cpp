// The rules that pick the sounds of a frame: altitude bands, talk, skyscraper
// remarks and their counters, and the exact number of draws each makes from
// the shared random source (checked through the generator's state).
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "SoundTestApp.h"

using soundtest::Advanced;
using soundtest::App;
using soundtest::FirstDraw;

namespace {

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
  int n = 0;
  for (const std::string& p : paths) n += p == path;
  return n;
}

// Far from both skyscrapers.
constexpr float kOpenX = 10000.0f;
constexpr float kOpenZ = 10000.0f;
// Inside the first skyscraper's zone.
constexpr float kZoneX = 3000.0f;
constexpr float kZoneZ = 4000.0f;

constexpr float kLand = 900.0f;
constexpr float kShore = 868.0f;
constexpr float kDeep = 800.0f;

class SoundRules : public ::testing::Test {
 protected:
  void SetUp() override {
    fakebass::Reset();
    Configure();
    app_ = std::make_unique<App>();
    ASSERT_TRUE((*app_)->m_player.SetCameraMode(CAM_MODE_1ST_PERSON));
    (*app_)->m_playerHasMoved = 1;
    soundtest::Hold({});
    Seed(12345);
  }
  void TearDown() override {
    app_.reset();
    win32::script::Disable();
  }
  // Missing files and channels, set before the bank loads.
  virtual void Configure() {}

  CGameApp& app() { return **app_; }

  void Seed(std::uint32_t seed) {
    crt::srand(seed);
    seed_ = seed;
  }
  // Draws made since the last Seed, judged by the generator's state.
  int Draws() const {
    for (int n = 0; n < 100000; ++n)
      if (Advanced(seed_, n) == crt::randState()) return n;
    return -1;
  }

  void At(float x, float y, float z) {
    app().m_player.SetPosition(D3DXVECTOR3(x, y, z));
    const D3DXVECTOR3& p = app().m_player.GetPosition();
    ASSERT_TRUE(p.x == x && p.y == y && p.z == z) << "position not set exactly";
  }

  // One frame's rules; the files played in it.
  std::vector<std::string> Frame(std::uint32_t direction = 0) {
    fakebass::ClearPlays();
    BYTE keys[256];  // the frame's key table, as ReadInput reads it
    GetKeyboardState(keys);
    app().RunSoundEvents(direction, keys);
    for (const fakebass::Play& play : fakebass::Plays()) EXPECT_FALSE(play.restart);
    return fakebass::PlayedPaths();
  }

  std::unique_ptr<App> app_;
  std::uint32_t seed_ = 0;
};

}  // namespace

TEST_F(SoundRules, AltitudeBandsPickStepsDivingSwimmingAndBreathing) {
  struct Case {
    float y;
    std::uint32_t direction;
    std::vector<std::string> played;
    int draws;  // the four random sounds draw only above 850
  };
  const Case cases[] = {
      {849.5f, 0, {kDiving}, 0},          {849.5f, MOVE_FORWARD, {kDiving}, 0},
      {850.0f, MOVE_FORWARD, {kSwim}, 0},  {850.0f, 0, {}, 0},
      {865.0f, MOVE_LEFT, {kSwim, kBreathe}, 4}, {865.5f, MOVE_FORWARD, {kBreathe}, 4},
      {872.0f, MOVE_FORWARD, {kBreathe}, 4},     {872.5f, MOVE_FORWARD | MOVE_LEFT, {kSteps, kBreathe}, 4},
      {872.5f, 0, {kBreathe}, 4},
  };
  for (const Case& c : cases) {
    Seed(777);
    At(kOpenX, c.y, kOpenZ);
    // The seed is chosen so that no random sound fires on the first draws.
    EXPECT_EQ(Frame(c.direction), c.played) << "y " << c.y << " direction " << c.direction;
    EXPECT_EQ(Draws(), c.draws) << "y " << c.y;
  }
}

TEST_F(SoundRules, EachRandomSoundPlaysOnItsOwnDrawOnly) {
  // The four draws of a frame on land, in order: modulus, hit, sound.
  struct Random {
    int modulus, hit;
    std::string path;
  };
  const Random sounds[] = {{12000, 77, "music\\kashel_short.mp3"},
                           {15000, 777, "music\\poperhnulsya.mp3"},
                           {18000, 777, "music\\smeh_short1.mp3"},
                           {19000, 777, "music\\smeh_short2.mp3"}};
  At(kOpenX, kLand, kOpenZ);
  for (int which = 0; which < 4; ++which) {
    // A seed whose draw number `which` hits its sound and whose others miss.
    auto hits = [&sounds](std::uint32_t seed, int draw) {
      return FirstDraw(Advanced(seed, draw)) % sounds[draw].modulus == sounds[draw].hit;
    };
    std::uint32_t seed = 1;
    for (;; ++seed) {
      bool only = true;
      for (int draw = 0; draw < 4; ++draw) only = only && hits(seed, draw) == (draw == which);
      if (only) break;
    }
    Seed(seed);
    EXPECT_EQ(Frame(), (std::vector<std::string>{kBreathe, sounds[which].path}))
        << "draw " << which;
    EXPECT_EQ(Draws(), 4);
  }
}

TEST_F(SoundRules, TalkPicksFromTheLandAndWaterTablesAndBarsRandomSounds) {
  // Seeds whose first draw gives the wanted remainder, then the clip heard.
  struct Case {
    float y;
    int modulus, r, clip;
  };
  const Case cases[] = {{kLand, 16, 0, 1},  {kLand, 16, 6, 7},    {kLand, 16, 7, 9},
                        {kLand, 16, 15, 17}, {850.0f, 10, 0, 3}, {865.0f, 10, 4, 8},
                        {850.0f, 10, 9, 14}};
  soundtest::Hold({soundtest::kTalkKey});
  for (const Case& c : cases) {
    std::uint32_t seed = 1;
    while (FirstDraw(seed) % c.modulus != c.r) ++seed;
    Seed(seed);
    app().m_speechTimer = 0;
    At(kOpenX, c.y, kOpenZ);
    std::vector<std::string> played = Frame(0);
    EXPECT_EQ(Count(played, Clip(c.clip)), 1) << "y " << c.y << " r " << c.r;
    EXPECT_EQ(Draws(), 1) << "one draw for the clip, none for the barred random sounds";
    EXPECT_EQ(app().m_speechTimer, 1u);
  }

  // In the shore and deep bands the key starts the wait but nothing is heard.
  for (float y : {kShore, 872.0f, kDeep, 849.5f}) {
    Seed(4242);
    app().m_speechTimer = 0;
    At(kOpenX, y, kOpenZ);
    for (const std::string& path : Frame(0)) EXPECT_FALSE(IsClip(path)) << "y " << y;
    EXPECT_EQ(Draws(), 0) << "y " << y;
    EXPECT_EQ(app().m_speechTimer, 1u) << "y " << y;
  }
}

TEST_F(SoundRules, HeldTalkKeyGivesAClipEvery333FramesAndNoRandomSoundsBetween) {
  At(kOpenX, kLand, kOpenZ);
  soundtest::Hold({soundtest::kTalkKey});
  std::vector<int> clipFrames;
  for (int frame = 0; frame < 1000; ++frame) {
    for (const std::string& path : Frame(MOVE_FORWARD))
      if (IsClip(path)) clipFrames.push_back(frame);
    if (frame == 0) { EXPECT_EQ(app().m_speechTimer, 1u); }
  }
  EXPECT_EQ(clipFrames, (std::vector<int>{0, 333, 666, 999}));
  EXPECT_EQ(Draws(), 4) << "only the clips draw while T is held";

  // A single press on frame f bars the random sounds to f + 332; on f + 333
  // they draw again.
  soundtest::Hold({});
  app().m_speechTimer = 0;
  Seed(99);
  soundtest::Hold({soundtest::kTalkKey});
  Frame();
  soundtest::Hold({});
  for (int frame = 1; frame <= 332; ++frame) Frame();
  EXPECT_EQ(Draws(), 1);
  EXPECT_EQ(app().m_speechTimer, 333u);
  Frame();
  EXPECT_EQ(app().m_speechTimer, 0u);
  EXPECT_EQ(Draws(), 1 + 4);
}

TEST_F(SoundRules, ZoneRemarkLeavesTheCounterAtTwoAndComesAgainAfter999Frames) {
  At(kZoneX, kLand, kZoneZ);
  std::vector<int> remarkFrames;
  for (int frame = 0; frame < 2000; ++frame) {
    std::vector<std::string> played = Frame();
    if (Count(played, kRemains) + Count(played, kClimb) > 0) remarkFrames.push_back(frame);
    if (frame == 0) { EXPECT_EQ(app().m_zoneSpeechTimer, 2); }
    if (frame == 997) { EXPECT_EQ(app().m_zoneSpeechTimer, 999); }
    if (frame == 998) { EXPECT_EQ(app().m_zoneSpeechTimer, 0); }
  }
  EXPECT_EQ(remarkFrames, (std::vector<int>{0, 999, 1998}));
  EXPECT_EQ(Draws(), 3 + 2000 * 4) << "one draw per remark, four random draws per frame";

  // The counter runs on outside the zone.
  app().m_zoneSpeechTimer = 0;
  At(kZoneX, kLand, kZoneZ);
  Frame();
  At(kOpenX, kLand, kOpenZ);
  for (int frame = 1; frame < 998; ++frame) Frame();
  EXPECT_EQ(app().m_zoneSpeechTimer, 999);
  Frame();
  EXPECT_EQ(app().m_zoneSpeechTimer, 0);
}

TEST_F(SoundRules, ZoneTestIsStrictAndIgnoresHeight) {
  struct Case {
    float x, y, z;
    bool inZone;
  };
  const Case cases[] = {
      {1800.0f, kDeep, 4000.0f, false}, {1800.5f, kDeep, 4000.0f, true},
      {4199.5f, kDeep, 4000.0f, true},  {4200.0f, kDeep, 4000.0f, false},
      {5000.0f, kDeep, 4000.0f, false}, {5800.0f, kDeep, 4000.0f, false},
      {5800.5f, kDeep, 4000.0f, true},  {8199.5f, kDeep, 4000.0f, true},
      {8200.0f, kDeep, 4000.0f, false}, {3000.0f, kDeep, 2800.0f, false},
      {3000.0f, kDeep, 2800.5f, true},  {7000.0f, kDeep, 5199.5f, true},
      {7000.0f, kDeep, 5200.0f, false}, {3000.0f, 20000.0f, 4000.0f, true},
      {3000.0f, 850.0f, 4000.0f, true}, {7000.0f, 0.0f, 4000.0f, true},
  };
  for (const Case& c : cases) {
    Seed(2024);
    app().m_zoneSpeechTimer = 0;
    At(c.x, c.y, c.z);
    std::vector<std::string> played = Frame();
    bool remark = Count(played, kRemains) + Count(played, kClimb) == 1;
    EXPECT_EQ(remark, c.inZone) << c.x << ", " << c.y << ", " << c.z;
    EXPECT_EQ(app().m_zoneSpeechTimer, c.inZone ? 2 : 0) << c.x << ", " << c.y << ", " << c.z;
    if (c.y <= 850.0f) { EXPECT_EQ(Draws(), c.inZone ? 1 : 0) << c.x << ", " << c.z; }
  }
}

class SoundRulesWithoutRemains : public SoundRules {
 protected:
  void Configure() override { fakebass::SetMissing(kRemains); }
};

TEST_F(SoundRulesWithoutRemains, AMissingRemarkKeepsTheZoneDrawing) {
  // A seed whose first two draws pick the missing remark, the third the other.
  std::uint32_t seed = 1;
  while (!(FirstDraw(seed) % 2 == 0 && FirstDraw(Advanced(seed, 1)) % 2 == 0 &&
           FirstDraw(Advanced(seed, 2)) % 2 == 1))
    ++seed;
  Seed(seed);
  At(kZoneX, kDeep, kZoneZ);  // deep: the remark is the frame's only draw
  EXPECT_EQ(Frame(), (std::vector<std::string>{kDiving}));
  EXPECT_EQ(app().m_zoneSpeechTimer, 0);
  EXPECT_EQ(Frame(), (std::vector<std::string>{kDiving}));
  EXPECT_EQ(app().m_zoneSpeechTimer, 0);
  EXPECT_EQ(Frame(), (std::vector<std::string>{kClimb, kDiving}));
  EXPECT_EQ(app().m_zoneSpeechTimer, 2);
  EXPECT_EQ(Draws(), 3);
}

TEST_F(SoundRules, MissingSoundsStillMakeTheirDraws) {
  // A walk through every band with T pressed once, counted draw by draw, then
  // the same walk with the random sounds, a clip and breathing missing.
  auto walk = [this]() {
    Seed(31337);
    app().m_speechTimer = 0;
    for (float y : {kLand, 865.0f, 850.0f, kDeep, kShore, kLand}) {
      At(kOpenX, y, kOpenZ);
      for (int i = 0; i < 50; ++i) Frame(MOVE_FORWARD);
    }
    soundtest::Hold({soundtest::kTalkKey});
    Frame(MOVE_FORWARD);
    soundtest::Hold({});
    for (int i = 1; i <= 400; ++i) Frame(MOVE_FORWARD);
    return Draws();
  };
  // Four per frame on land, at 865 and on the shore, none at 850 and below;
  // one for the clip, none up to 332 frames later, four per frame from 333 on.
  const int expected = 4 * 50 * 4 + 1 + (400 - 332) * 4;
  EXPECT_EQ(walk(), expected);

  CGameApp& a = app();
  for (CSoundSlot* slot : {&a.m_soundCough, &a.m_soundChoke, &a.m_soundLaugh1, &a.m_soundLaugh2,
                           &a.m_soundBreathe, &a.m_soundSteps})
    *slot = CSoundSlot{};
  for (CSoundSlot& clip : a.m_soundSpeech) clip = CSoundSlot{};
  EXPECT_EQ(walk(), expected);
}
