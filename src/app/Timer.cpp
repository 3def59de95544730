// CTimer: frame length as the mean of the last fifty accepted frames, and
// frames per second counted over windows of one second of that mean.
#include "app/Timer.h"

#include <cmath>
#include <cstdio>

#include "platform/win32/windows.h"

namespace {

constexpr std::uint32_t kHistoryLength = 50;
constexpr float kAcceptanceLimit = 1.0f;  // seconds away from the mean
constexpr float kRateWindow = 1.0f;       // seconds per frame-rate count
constexpr float kMillisecondScale = 0.001f;

}  // namespace

CTimer::CTimer()
    : m_highResolution(false),
      m_timeScale(kMillisecondScale),
      m_timeElapsed(0.0f),
      m_currentTime(0),
      m_lastTime(0),
      m_counterFrequency(0),
      m_frameTimes(),
      m_sampleCount(0),
      m_frameRate(0),
      m_frameCount(0),
      m_rateTime(0.0f) {
  LARGE_INTEGER frequency;
  frequency.QuadPart = 0;
  if (QueryPerformanceFrequency(&frequency) && frequency.QuadPart > 0) {
    m_counterFrequency = frequency.QuadPart;
    m_highResolution = true;
    m_timeScale = static_cast<float>(1.0 / static_cast<double>(m_counterFrequency));
  }
  m_lastTime = ReadClock();
}

CTimer::~CTimer() {}

std::int64_t CTimer::ReadClock() const {
  if (m_highResolution) {
    LARGE_INTEGER counter;
    counter.QuadPart = 0;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
  }
  // Widened with a zero top half: the millisecond clock wraps at 2^32.
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(timeGetTime()));
}

void CTimer::Tick(float lockFps) {
  m_currentTime = ReadClock();
  float elapsed = static_cast<float>(m_currentTime - m_lastTime) * m_timeScale;
  if (lockFps > 0.0f) {
    while (elapsed < 1.0f / lockFps) {
      m_currentTime = ReadClock();
      elapsed = static_cast<float>(m_currentTime - m_lastTime) * m_timeScale;
    }
  }
  m_lastTime = m_currentTime;

  // A frame far from the mean (a stall) does not enter the history.
  if (std::fabs(elapsed - m_timeElapsed) < kAcceptanceLimit) {
    for (std::uint32_t i = kHistoryLength - 1; i > 0; --i) m_frameTimes[i] = m_frameTimes[i - 1];
    m_frameTimes[0] = elapsed;
    if (m_sampleCount < kHistoryLength) ++m_sampleCount;
  }

  // The rate window runs on the mean as the last Tick left it, also for a
  // frame that was not recorded.
  ++m_frameCount;
  m_rateTime += m_timeElapsed;
  if (m_rateTime > kRateWindow) {
    m_frameRate = m_frameCount;
    m_frameCount = 0;
    m_rateTime = 0.0f;
  }

  m_timeElapsed = 0.0f;
  for (std::uint32_t i = 0; i < m_sampleCount; ++i) m_timeElapsed += m_frameTimes[i];
  if (m_sampleCount > 0) m_timeElapsed /= static_cast<float>(m_sampleCount);
}

std::uint32_t CTimer::GetFrameRate(char* text) const {
  if (text) std::snprintf(text, 16, "%u FPS", static_cast<unsigned>(m_frameRate));
  return m_frameRate;
}

float CTimer::GetTimeElapsed() const { return m_timeElapsed; }
