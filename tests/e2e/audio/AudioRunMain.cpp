// karvo-audio-run: the real program (WinMain) on the scripted win32 back end,
// paced for listening. The audio tests run it with SDL's disk driver and read
// the mix back from the file.
//
//   karvo-audio-run IDLE WALK
//
// The program stands still for IDLE seconds of output after its first frame,
// then walks forward (Up held) for WALK seconds of output, then Escape ends
// it. Unlike karvo-capture, which runs frames as fast as it can, this tool
// ties the script to the output itself: frame N runs once the file holds N
// steps of sound past the first frame. The disk driver writes at the pace of
// real time at best, and a busy machine lets it fall behind; paced by the
// file, a sound started by a frame is heard where that frame stands in the
// output, however fast the machine or its audio thread is.
//
// On standard output it writes two marks, each with the size in bytes of the
// audio file at that moment and the seconds on the clock since the first
// frame:
//   start N 0   the first frame is about to run (the music was just started)
//   end N S     the walk is over; Escape goes down before the next frame
// A program that ends before its first frame writes no mark; the exit code
// is the program's own. A frame that waits a minute for its sound ends the
// run with code 3.
//
// The sounds load while g_App is constructed, before main: the working
// directory and SDL_AUDIODRIVER / SDL_DISKAUDIOFILE must be set by the caller.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "app/GameApp.h"
#include "platform/win32/script/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kStep = 1.0 / 60.0;           // game seconds per frame, and output seconds too
constexpr double kBytesPerSecond = 22050 * 4;  // 16-bit stereo at the rate BASS_Init asks for

struct Pacing {
  double idle = 0.0, walk = 0.0;
  std::string audioFile;
  Clock::time_point firstFrame;
  double start = 0.0, walkStart = -1.0;  // output seconds at the first frame and the first step
  bool ending = false;
} s_pacing;

std::uintmax_t Bytes() {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(s_pacing.audioFile, error);
  return error ? 0 : size;
}

// Seconds of sound in the file so far.
double Output() { return double(Bytes()) / kBytesPerSecond; }

// Writes the mark and gives the output seconds it holds.
double Mark(const char* name) {
  const std::uintmax_t bytes = Bytes();
  std::printf("%s %ju %.3f\n", name, bytes,
              std::chrono::duration<double>(Clock::now() - s_pacing.firstFrame).count());
  std::fflush(stdout);
  return double(bytes) / kBytesPerSecond;
}

// Waits until the file holds `seconds` of sound; a frame's sixtieth of a
// second that takes a minute is a hang.
void AwaitOutput(double seconds) {
  for (const auto limit = Clock::now() + std::chrono::minutes(1); Output() < seconds;) {
    if (Clock::now() > limit) {
      std::fprintf(stderr, "karvo-audio-run: the audio file stopped growing\n");
      std::_Exit(3);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

// At each frame boundary: wait for the output to reach the frame, then move
// the script on by output seconds rather than by frame count.
void OnFrame(std::uint32_t frame) {
  if (frame == 0) {
    s_pacing.firstFrame = Clock::now();
    s_pacing.start = Mark("start");
    return;
  }
  AwaitOutput(s_pacing.start + frame * kStep);

  if (s_pacing.ending) return;
  if (s_pacing.walkStart < 0.0) {
    if (Output() - s_pacing.start >= s_pacing.idle) {
      s_pacing.walkStart = Output();
      win32::script::KeyDown(frame + 1, VK_UP);
    }
  } else if (Output() - s_pacing.walkStart >= s_pacing.walk) {
    Mark("end");
    win32::script::KeyDown(frame + 1, VK_ESCAPE);
    s_pacing.ending = true;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const char* audioFile = std::getenv("SDL_DISKAUDIOFILE");
  if (argc != 3 || audioFile == nullptr) {
    std::fprintf(stderr,
                 "usage: SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=FILE karvo-audio-run IDLE WALK\n");
    return 2;
  }
  s_pacing.idle = std::atof(argv[1]);
  s_pacing.walk = std::atof(argv[2]);
  s_pacing.audioFile = audioFile;

  win32::script::Options script;
  script.fixedStep = kStep;
  script.realWindows = true;
  // Guards a hang only: Escape ends the run long before this.
  script.maxFrames = static_cast<std::uint32_t>((s_pacing.idle + s_pacing.walk + 60.0) / kStep);
  win32::script::Enable(script);
  win32::script::SetFrameCallback(OnFrame);
  const int exitCode =
      WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<char*>(""), SW_SHOWNORMAL);
  win32::script::SetFrameCallback(nullptr);
  return exitCode;
}
