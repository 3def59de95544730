// The program's sound end to end: the real program runs headless with SDL's
// disk audio driver, and the levels of the mixed output (16-bit stereo at the
// 22050 Hz that BASS_Init asks for) are measured around the marks that
// karvo-audio-run writes: the first frame and the end of the walk.
// The tool paces the frames by the output, so every bound here is in seconds
// of output and none depends on how fast the machine is.
//
// Which effect a frame plays, and that a playing one is not restarted, are
// the sound rules' and the mixer's unit tests; here the music and the start.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "support/PcmLevels.h"
#include "support/WorkDir.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRate = 22050;
constexpr double kBytesPerSecond = kRate * 4.0;
// The output lags a play call by up to two mixer buffers of about 46 ms.
constexpr double kLag = 0.15;
// Seconds of output standing still after the first frame, then walking.
constexpr double kIdle = 1.0;
constexpr double kWalk = 2.2;

fs::path WorkDir() { return test_support::WorkDir("karvo-audio-test-", "KARVO_KEEP_AUDIO"); }

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

struct ProgramRun {
  int exitCode = -1;
  std::map<std::string, double> marks;   // seconds into the output
  std::map<std::string, double> clocks;  // seconds on the clock since the first frame (0 at start)
  std::string errors;                    // the program's standard error
  PcmTrack track;

  double Mark(const std::string& name) const {
    auto mark = marks.find(name);
    return mark == marks.end() ? -1.0 : mark->second;
  }
  // The loudest and the quietest of the windows of `width` seconds that fit in [from, to).
  double PeakRms(double from, double to, double width = 0.05) const { return Extreme(from, to, width, true); }
  double FloorRms(double from, double to, double width = 0.05) const { return Extreme(from, to, width, false); }
  double Extreme(double from, double to, double width, bool loudest) const {
    double level = loudest ? 0.0 : 1e9;
    for (double t = from; t + width <= to; t += width)
      level = loudest ? std::max(level, track.Rms(t, t + width)) : std::min(level, track.Rms(t, t + width));
    return level == 1e9 ? 0.0 : level;
  }
};

// Runs `program args` in `assets` on the disk driver and reads back its marks
// and its output.
ProgramRun RunProgram(const fs::path& assets, const std::string& name, const std::string& program,
                      const std::string& args) {
  const fs::path audio = WorkDir() / (name + ".raw");
  const fs::path marks = WorkDir() / (name + ".marks");
  const fs::path errors = WorkDir() / (name + ".err");
  fs::remove(audio);
  const std::string command = "cd '" + assets.string() +
                              "' && SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE='" + audio.string() +
                              "' KARVO_MESSAGE_BOX=0 '" + program + "' " + args + " > '" +
                              marks.string() + "' 2> '" + errors.string() + "'";
  ProgramRun run;
  const int status = std::system(command.c_str());
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.errors = ReadText(errors);
  std::istringstream lines(ReadText(marks));
  std::string mark;
  double bytes = 0, clock = 0;
  while (lines >> mark >> bytes >> clock) {
    run.marks[mark] = bytes / kBytesPerSecond;
    run.clocks[mark] = clock;
  }
  run.track = ReadPcm(audio.string(), kRate);
  return run;
}

// Both marks, and the output never ahead of the clock between them: the
// disk driver sleeps one buffer's length per buffer, so it may fall behind on
// a busy machine but never runs ahead, as an output of more bytes a second
// than read here would.
void ExpectMarks(const ProgramRun& run) {
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  ASSERT_EQ(run.marks.size(), 2u) << run.errors;
  const double pace = (run.Mark("end") - run.Mark("start")) / run.clocks.at("end");
  EXPECT_LT(pace, 1.2) << pace << " s of output a second";
  ASSERT_GE(run.track.Seconds(), run.Mark("end"));
}

}  // namespace

TEST(Audio, MusicIsHeardFromTheFirstFrameToTheEnd) {
  const ProgramRun run = RunProgram(fs::current_path(), "real", KARVO_AUDIO_RUN, std::to_string(kIdle) + " " + std::to_string(kWalk));
  ExpectMarks(run);
  const double start = run.Mark("start"), end = run.Mark("end");
  // Nothing plays while the world is built, however short that was; the
  // music starts with the loop, before any key, and carries on through the walk.
  EXPECT_LT(run.PeakRms(0.0, start - kLag), 1.0);
  EXPECT_GT(run.FloorRms(start + kLag, end, 0.25), 1000.0);
}

TEST(Audio, WithoutBassTheProgramEndsWithCode1BeforeAnyFrame) {
  // (The missing music file's exit code is the program tests' concern.)
  // BASS cannot start: its box, then every load fails, the music too. No
  // frame runs.
  const ProgramRun noBass = RunProgram(fs::current_path(), "no-bass", "env",
                                       "SDL_AUDIODRIVER=no-such-driver " KARVO_AUDIO_RUN " 1 1");
  EXPECT_EQ(noBass.exitCode, 1) << noBass.errors;
  EXPECT_NE(noBass.errors.find("Не удалось инициализировать BASS."), std::string::npos)
      << noBass.errors;
  EXPECT_TRUE(noBass.marks.empty()) << "a frame ran";
}
