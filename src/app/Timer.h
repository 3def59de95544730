// CTimer: the length of a frame and the frame rate. Gives the rest of the
// system the mean of the last fifty accepted frame lengths rather than the
// raw length of the last frame, so that a stall (a modal dialog, a dragged
// window, the loading of the world) leaves no mark on the motion: a frame
// that lies a second or more away from the mean is not taken in.
// Reads the performance counter, or the millisecond clock where there is none.
#pragma once

#include <cstdint>

class CTimer {
 public:
  // Reads the clock: the first Tick measures from here.
  CTimer();
  virtual ~CTimer();

  // Once per frame, first thing. lockFps > 0 busy-waits until the frame has
  // lasted 1 / lockFps seconds; 0 or less: no limit.
  void Tick(float lockFps);
  // Frames counted in the last full second (of mean time). When text is not
  // null, also writes the number followed by " FPS" there (room for 15 chars).
  std::uint32_t GetFrameRate(char* text) const;
  // Mean length of the accepted frames in seconds; 0 before the first.
  float GetTimeElapsed() const;

 private:
  std::int64_t ReadClock() const;

  bool m_highResolution;
  float m_timeScale;
  float m_timeElapsed;
  std::int64_t m_currentTime;
  std::int64_t m_lastTime;
  std::int64_t m_counterFrequency;
  float m_frameTimes[50];
  std::uint32_t m_sampleCount;
  std::uint32_t m_frameRate;
  std::uint32_t m_frameCount;
  float m_rateTime;
};
