// karvo-audio-run: the real program (WinMain) on the scripted win32 back end,
// paced for listening. The audio tests run it with SDL's disk driver and read
// the mix back from the file.
//
//   karvo-audio-run IDLE WALK
//
// The program stands still for IDLE seconds after its first frame, then
// walks forward (Up held) for WALK seconds, then Escape ends it. Unlike
// karvo-capture, which runs frames as fast as it can, this tool ties the
// script to the wall clock: the disk driver writes at the pace of real time,
// so a fast machine would otherwise end before the sounds were heard, and a
// slow one would hear them long after the frames that started them.
//
// On standard output it writes three marks, each with the size in bytes of
// the audio file at that moment and the seconds on the clock since the first
// frame:
//   start N 0  the first frame is about to run (the music was just started)
//   walk N S   the first frame with Up held is about to run
//   end N S    the walk is over; Escape goes down before the next frame
// A program that ends before its first frame writes no mark; the exit code
// is the program's own.
//
// The sounds load while g_App is constructed, before main: the working
// directory and SDL_AUDIODRIVER / SDL_DISKAUDIOFILE must be set by the caller.
#include <chrono>
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

constexpr double kStep = 1.0 / 60.0;  // game seconds per frame, and the fastest pace

struct Pacing {
  double idle = 0.0, walk = 0.0;
  std::string audioFile;
  Clock::time_point firstFrame, walkStart;
  std::uint32_t walkFrame = 0;  // the first frame with Up held; 0 until scheduled
  bool ending = false;
} s_pacing;

double SecondsSince(Clock::time_point t) {
  return std::chrono::duration<double>(Clock::now() - t).count();
}

void Mark(const char* name) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(s_pacing.audioFile, error);
  std::printf("%s %ju %.3f\n", name, error ? std::uintmax_t{0} : size,
              SecondsSince(s_pacing.firstFrame));
  std::fflush(stdout);
}

// At each frame boundary: hold the pace of the clock, then move the script on
// by elapsed time rather than by frame count.
void OnFrame(std::uint32_t frame) {
  if (frame == 0) {
    s_pacing.firstFrame = Clock::now();
    Mark("start");
    return;
  }
  const double due = frame * kStep - SecondsSince(s_pacing.firstFrame);
  if (due > 0.0) std::this_thread::sleep_for(std::chrono::duration<double>(due));

  if (s_pacing.ending) return;
  if (s_pacing.walkFrame == 0) {
    if (SecondsSince(s_pacing.firstFrame) >= s_pacing.idle) {
      s_pacing.walkFrame = frame + 1;
      win32::script::KeyDown(frame + 1, VK_UP);
    }
  } else if (frame == s_pacing.walkFrame) {
    s_pacing.walkStart = Clock::now();
    Mark("walk");
  } else if (frame > s_pacing.walkFrame && SecondsSince(s_pacing.walkStart) >= s_pacing.walk) {
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
  // A safety net only: Escape ends the run long before this.
  script.maxFrames = static_cast<std::uint32_t>((s_pacing.idle + s_pacing.walk + 60.0) / kStep);
  win32::script::Enable(script);
  win32::script::SetFrameCallback(OnFrame);
  const int exitCode =
      WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<char*>(""), SW_SHOWNORMAL);
  win32::script::SetFrameCallback(nullptr);
  return exitCode;
}
