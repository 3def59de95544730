// Start-up of the real program: from the process's start to the first frame
// on screen, and the resident memory a few seconds in. The program runs as a
// user starts it, in a real window, through the scripted back end only so
// that the run ends by itself.
//
//   karvo-bench-startup [--seconds S]      (run inside the assets folder)
//
// Prints the time before main (the loader, the libraries' constructors and
// the program object's, which loads the sounds), main to
// the first presented frame, and resident memory after S seconds (default 5).
// A start-up is one sample; run it a few times and take the median.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

#include "app/GameApp.h"
#include "platform/win32/script/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

// Seconds since boot at which this process started, from /proc.
double ProcessStartSeconds() {
  std::ifstream stat("/proc/self/stat");
  std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
  // The command name may hold spaces; the fields after it follow its ')'.
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::string field;
  for (int i = 3; i <= 22 && fields >> field; ++i) {
    if (i == 22) return std::stod(field) / double(sysconf(_SC_CLK_TCK));
  }
  return 0.0;
}

double BootSeconds() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

long ResidentKiB() {
  long pages = 0, resident = 0;
  if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(statm);
  }
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

int main(int argc, char** argv) {
  const double atMain = BootSeconds();
  const auto mainStart = std::chrono::steady_clock::now();
  double seconds = 5.0;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--seconds" && i + 1 < argc) {
      seconds = std::atof(argv[++i]);
    } else {
      std::fprintf(stderr, "usage: %s [--seconds S]\n", argv[0]);
      return 2;
    }
  }
  double firstFrameMs = -1.0;
  long residentKiB = 0;
  win32::script::Options options;
  options.realWindows = true;
  win32::script::Enable(options);
  win32::script::SetFrameCallback([&](std::uint32_t frame) {
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - mainStart)
            .count();
    // Script frame 1 is about to run: frame 0 has been presented.
    if (frame == 1) firstFrameMs = ms;
    if (frame >= 1 && ms >= seconds * 1000.0 && residentKiB == 0) {
      residentKiB = ResidentKiB();
      PostQuitMessage(0);
    }
  });
  const int exitCode =
      WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<char*>(""), SW_SHOWNORMAL);
  win32::script::SetFrameCallback(nullptr);
  if (firstFrameMs < 0.0 || residentKiB == 0) {
    std::fprintf(stderr, "karvo-bench-startup: the program ended early (exit code %d)\n", exitCode);
    return 1;
  }
  const double beforeMainMs = (atMain - ProcessStartSeconds()) * 1000.0;
  std::printf(
      "before main %.0f ms (10 ms steps), main to first frame %.0f ms, first frame %.0f ms after "
      "start; "
      "resident after %.0f s: %.1f MB\n",
      beforeMainMs, firstFrameMs, beforeMainMs + firstFrameMs, seconds,
      double(residentKiB) / 1024.0);
  return 0;
}
