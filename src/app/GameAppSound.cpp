// The sound bank of CGameApp: the start of BASS and the 28 short sounds, loaded
// once by the constructor, and the rules that pick what plays on each frame.
//
// Each sound keeps the one channel fetched at load for the whole run. Playing
// it without restart leaves a sound that still plays alone, so a rule may fire
// on every frame: the sound plays to its end and starts again on the first
// frame after that on which its rule still holds. A slot whose file did not
// load has channel 0 and stays silent; its rule still makes its draws, so the
// shared random sequence does not depend on which files exist.
#include <cstdint>
#include <cstdio>

#include "app/GameApp.h"
#include "platform/bass/bass.h"
#include "platform/crt/crt.h"
#include "platform/win32/windows.h"

namespace {

// Altitude bands on the player's y.
constexpr float kDeepBelow = 850.0f;  // under this: under water
constexpr float kWaterTop = 865.0f;   // 850 to 865, both included: swimming
constexpr float kShoreTop = 872.0f;   // above 865 up to 872: shore, above it: land

constexpr std::uint32_t kSpeechFrames = 333;  // frames a talk key press is waited out
constexpr std::int32_t kZoneFrames = 1000;    // frames between two remarks at a skyscraper

constexpr int kTalkKey = 0x54;  // T

// Talk on land, by draw 0 to 15: clip numbers (clip 8 is kept for the water).
constexpr int kLandClips[16] = {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17};
// Talk in the water, by draw 0 to 9.
constexpr int kWaterClips[10] = {3, 4, 6, 7, 8, 9, 11, 12, 13, 14};

void LoadSlot(CSoundSlot& slot, const char* path) {
  slot.m_sample = BASS_SampleLoad(FALSE, path, 0, 0, 1, 0);
  slot.m_channel = slot.m_sample != 0 ? BASS_SampleGetChannel(slot.m_sample, FALSE) : 0;
}

// Without restart: a sound that is still playing goes on undisturbed.
void Play(const CSoundSlot& slot) {
  if (slot.m_channel != 0) BASS_ChannelPlay(slot.m_channel, FALSE);
}

// The footprints of the two skyscrapers with a margin of 200 on every side;
// strict limits, and the height does not count.
bool InSkyscraperZone(float x, float z) {
  bool inX = (x > 1800.0f && x < 4200.0f) || (x > 5800.0f && x < 8200.0f);
  return inX && z > 2800.0f && z < 5200.0f;
}

}  // namespace

void CGameApp::LoadSounds() {
  // No window exists yet, so the boxes have no owner; the run goes on after
  // either, and without BASS every load below simply gives 0.
  if ((BASS_GetVersion() >> 16) != BASSVERSION)
    MessageBoxA(NULL, "Ошибка версии BASS.", NULL, MB_OK);
  if (!BASS_Init(-1, 22050, BASS_DEVICE_3D, NULL, NULL))
    MessageBoxA(NULL, "Не удалось инициализировать BASS.", NULL, MB_OK);

  LoadSlot(m_soundDiving, "music\\diving_short.mp3");
  LoadSlot(m_soundSteps, "music\\shagi_trava_short.mp3");
  LoadSlot(m_soundSwim, "music\\swim_short.mp3");
  LoadSlot(m_soundBreathe, "music\\breathe_short.mp3");
  LoadSlot(m_soundCough, "music\\kashel_short.mp3");
  LoadSlot(m_soundChoke, "music\\poperhnulsya.mp3");
  LoadSlot(m_soundLaugh1, "music\\smeh_short1.mp3");
  LoadSlot(m_soundLaugh2, "music\\smeh_short2.mp3");
  LoadSlot(m_soundJump, "music\\jump_small2.mp3");
  for (int clip = 1; clip <= 17; ++clip) {
    char path[32];
    std::snprintf(path, sizeof(path), "speech\\mp3\\%d.mp3", clip);
    LoadSlot(m_soundSpeech[clip - 1], path);
  }
  LoadSlot(m_soundRemains, "speech\\mp3\\ostanki_pogibshey.mp3");
  LoadSlot(m_soundClimb, "speech\\mp3\\kak_zabratsa_na_neboskreb.mp3");
}

void CGameApp::RunSoundEvents(std::uint32_t direction, const BYTE* keyState) {
  const D3DXVECTOR3& position = m_player.GetPosition();
  const float x = position.x;
  const float y = position.y;
  const float z = position.z;
  const bool deep = y < kDeepBelow;
  const bool water = y >= kDeepBelow && y <= kWaterTop;
  const bool land = y > kShoreTop;
  const bool aboveWater = y > kDeepBelow;

  // 1. The speech counter runs while a talk is being waited out.
  if (m_speechTimer != 0) ++m_speechTimer;
  if (m_speechTimer > kSpeechFrames) m_speechTimer = 0;

  // 2. Talk. The counter starts in every band, also where no clip fits.
  if ((keyState[kTalkKey] & 0xF0) != 0 && m_speechTimer == 0) {
    m_speechTimer = 1;
    if (land) Play(m_soundSpeech[kLandClips[crt::rand() % 16] - 1]);
    if (water) Play(m_soundSpeech[kWaterClips[crt::rand() % 10] - 1]);
  }

  // 3. A remark at a skyscraper. One whose sound is missing does not start the
  // counter, so the next frame in the zone draws again.
  if (InSkyscraperZone(x, z) && m_zoneSpeechTimer == 0) {
    const CSoundSlot& remark = crt::rand() % 2 == 0 ? m_soundRemains : m_soundClimb;
    if (remark.m_channel != 0) {
      BASS_ChannelPlay(remark.m_channel, FALSE);
      ++m_zoneSpeechTimer;
    }
  }

  // 4. The zone counter runs to its end wherever the player goes.
  if (m_zoneSpeechTimer > 0 && m_zoneSpeechTimer < kZoneFrames) ++m_zoneSpeechTimer;
  if (m_zoneSpeechTimer == kZoneFrames) m_zoneSpeechTimer = 0;

  // 5 to 8. Steps, diving, swimming, breathing.
  if (land && direction != 0) Play(m_soundSteps);
  if (deep) Play(m_soundDiving);
  if (water && direction != 0) Play(m_soundSwim);
  if (aboveWater) Play(m_soundBreathe);

  // 9. Random sounds, not while a talk is waited out; each has its own draw,
  // made only above the water.
  if (m_speechTimer == 0) {
    if (aboveWater && crt::rand() % 12000 == 77) Play(m_soundCough);
    if (aboveWater && crt::rand() % 15000 == 777) Play(m_soundChoke);
    if (aboveWater && crt::rand() % 18000 == 777) Play(m_soundLaugh1);
    if (aboveWater && crt::rand() % 19000 == 777) Play(m_soundLaugh2);
  }
}
