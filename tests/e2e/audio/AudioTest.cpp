// The program's sound end to end: the real program runs headless with SDL's
// disk audio driver, and the levels of the mixed output (16-bit stereo at the
// 22050 Hz that BASS_Init asks for) are measured around the marks that
// karvo-audio-run writes: the first frame, the first step, the end of the walk.
// The tool paces the frames by the output, so every bound here is in seconds
// of output and none depends on how fast the machine is.
//
// Which sound is heard is told apart by running in linked copies of the
// generated assets where some files are missing or replaced by silence. A
// silent stand-in is a WAV file under the mp3 name: the mixer tells formats by
// their content, as BASS does.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/AssetFolder.h"
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

const char* const kMusic = "1.mp3";
const char* const kSteps = "shagi_trava_short.mp3";
const char* const kBreathe = "breathe_short.mp3";

fs::path WorkDir() { return test_support::WorkDir("karvo-audio-test-", "KARVO_KEEP_AUDIO"); }

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Half a second of mono 16-bit PCM silence as a WAV file.
std::string Silence() {
  const std::uint32_t dataBytes = kRate;  // 0.5 s of 2-byte samples
  std::string wav;
  auto put = [&wav](std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) wav.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  };
  wav = "RIFF", put(36 + dataBytes, 4), wav += "WAVEfmt ";
  // Chunk size, PCM, mono, rate, bytes per second, bytes per frame, bits per sample.
  for (auto [value, bytes] : {std::pair{16, 4}, {1, 2}, {1, 2}, {kRate, 4}, {kRate * 2, 4}, {2, 2}, {16, 2}})
    put(std::uint32_t(value), bytes);
  wav += "data", put(dataBytes, 4);
  return wav.append(dataBytes, '\0');
}

// A copy of the generated assets made of links, with some files of music/
// missing and others silent. The test runs in the generated assets folder.
struct Variant : test_support::AssetFolder {
  Variant(const std::vector<const char*>& missing, const std::vector<const char*>& silent)
      : AssetFolder(fs::current_path()) {
    for (const char* file : missing) Remove(std::string("music/") + file);
    for (const char* file : silent) Replace(std::string("music/") + file, Silence());
  }
};

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
  // The start of the first 50 ms window from `from` on louder than `level`; -1 if none.
  double Onset(double from, double level) const {
    for (double t = from; t + 0.05 <= track.Seconds(); t += 0.05)
      if (track.Rms(t, t + 0.05) > level) return t;
    return -1.0;
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

ProgramRun Walk(const fs::path& assets, const std::string& name) {
  return RunProgram(assets, name, KARVO_AUDIO_RUN,
                    std::to_string(kIdle) + " " + std::to_string(kWalk));
}

// All four marks, and the output never ahead of the clock between them: the
// disk driver sleeps one buffer's length per buffer, so it may fall behind on
// a busy machine but never runs ahead, as an output of more bytes a second
// than read here would.
void ExpectMarks(const ProgramRun& run) {
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  ASSERT_EQ(run.marks.size(), 4u) << run.errors;
  const double pace = (run.Mark("end") - run.Mark("start")) / run.clocks.at("end");
  EXPECT_LT(pace, 1.2) << pace << " s of output a second";
  ASSERT_GE(run.track.Seconds(), run.Mark("end"));
}

}  // namespace

TEST(Audio, MusicIsHeardFromTheFirstFrameToTheEnd) {
  const ProgramRun run = Walk(fs::current_path(), "real");
  ExpectMarks(run);
  const double start = run.Mark("start"), end = run.Mark("end");
  // Nothing plays while the world is built, however short that was; the
  // music starts with the loop, before any key, and carries on through the walk.
  EXPECT_LT(run.PeakRms(0.0, start - kLag), 1.0);
  EXPECT_GT(run.FloorRms(start + kLag, end, 0.25), 1000.0);
}

// Each of breathing and steps is heard alone, the other's file missing.
TEST(Audio, WalkingBringsBreathingAndStepsOverAndOver) {
  for (const char* missing : {kSteps, kBreathe}) {
    SCOPED_TRACE(missing);
    const Variant assets({missing}, {kMusic});
    const ProgramRun run = Walk(assets.Root(), missing);
    ExpectMarks(run);
    const double start = run.Mark("start"), walk = run.Mark("walk"), end = run.Mark("end");
    // Standing still: no rule runs before the first direction key.
    EXPECT_LT(run.PeakRms(start, walk), 1.0);
    if (missing == kSteps) {
      // Breathing swells in over its first half second.
      EXPECT_GE(run.Onset(start, 50.0), walk - 0.05);
      EXPECT_GT(run.track.Rms(walk, end), 200.0);
      EXPECT_GT(run.PeakRms(walk, end), 600.0);
      continue;
    }
    const double onset = run.Onset(start, 200.0);
    EXPECT_GE(onset, walk - 0.05);
    EXPECT_LE(onset, run.Mark("walked") + kLag) << "the first step comes with the first walking frame";
    // The one-second clip plays to its end and starts again while the walk
    // goes on: each second has steps in it, and quiet between them (a clip
    // started anew on every frame would never get past its first step).
    for (double t = walk + kLag; t + 1.0 <= end; t += 1.0) {
      EXPECT_GT(run.PeakRms(t, t + 1.0), 1500.0) << t - walk;
      EXPECT_LT(run.FloorRms(t, t + 1.0), 150.0) << t - walk;
    }
  }
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
