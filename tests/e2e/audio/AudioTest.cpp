// The program's sound end to end: the real program runs headless with SDL's
// disk audio driver, and the levels of the mixed output (16-bit stereo at the
// 22050 Hz that BASS_Init asks for) are measured around the marks that
// karvo-audio-run writes: the first frame, the first step, the end of the walk.
//
// Which sound is heard is told apart by running in linked copies of the
// generated assets where some files are missing or replaced by silence. A
// silent stand-in is a WAV file under the mp3 name: the mixer tells formats by
// their content, as BASS does.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/PcmLevels.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRate = 22050;
constexpr double kBytesPerSecond = kRate * 4.0;
// The output lags a play call by up to two mixer buffers of about 46 ms.
constexpr double kLag = 0.15;
// Seconds standing still after the first frame, then seconds walking.
constexpr double kIdle = 1.0;
constexpr double kWalk = 2.2;

const char* const kMusic = "1.mp3";
const char* const kSteps = "shagi_trava_short.mp3";
const char* const kBreathe = "breathe_short.mp3";

fs::path WorkDir() {
  static const fs::path dir = [] {
    fs::path d = fs::temp_directory_path() / ("karvo-audio-test-" + std::to_string(::getpid()));
    fs::create_directories(d);
    return d;
  }();
  return dir;
}

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Half a second of mono 16-bit silence as a WAV file.
void WriteSilence(const fs::path& path) {
  const std::uint32_t dataBytes = kRate;  // 0.5 s of 2-byte samples
  std::string wav = "RIFF";
  auto put = [&wav](std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) wav.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  };
  put(36 + dataBytes, 4);
  wav += "WAVEfmt ";
  put(16, 4);
  put(1, 2);  // PCM
  put(1, 2);  // mono
  put(kRate, 4);
  put(kRate * 2, 4);  // bytes per second
  put(2, 2);          // bytes per frame
  put(16, 2);         // bits per sample
  wav += "data";
  put(dataBytes, 4);
  wav.append(dataBytes, '\0');
  std::ofstream(path, std::ios::binary) << wav;
}

enum class Change { Missing, Silent };

// A copy of the generated assets made of links, with some files of music/
// missing or silent. The test runs in the generated assets folder.
fs::path AssetVariant(const std::string& name, const std::map<std::string, Change>& changes) {
  const fs::path source = fs::current_path();
  const fs::path target = WorkDir() / name;
  if (fs::exists(target)) return target;
  fs::create_directories(target / "music");
  fs::create_directory_symlink(source / "Data", target / "Data");
  fs::create_directory_symlink(source / "speech", target / "speech");
  for (const auto& entry : fs::directory_iterator(source / "music")) {
    const std::string file = entry.path().filename().string();
    const auto change = changes.find(file);
    if (change == changes.end()) {
      fs::create_symlink(entry.path(), target / "music" / file);
    } else if (change->second == Change::Silent) {
      WriteSilence(target / "music" / file);
    }
  }
  for (const auto& [file, change] : changes)
    EXPECT_TRUE(fs::exists(source / "music" / file)) << file;
  return target;
}

struct ProgramRun {
  int exitCode = -1;
  std::map<std::string, double> marks;   // seconds into the output
  std::map<std::string, double> clocks;  // seconds on the clock since the first frame
  std::string errors;                    // the program's standard error
  PcmTrack track;

  double Mark(const std::string& name) const {
    auto mark = marks.find(name);
    return mark == marks.end() ? -1.0 : mark->second;
  }
  // Seconds of output from mark `from` to mark `to` for each second on the clock.
  double OutputPace(const std::string& from, const std::string& to) const {
    return (Mark(to) - Mark(from)) / (clocks.at(to) - clocks.at(from));
  }
  // Levels of the windows of `width` seconds that fit in [from, to).
  std::vector<double> Levels(double from, double to, double width) const {
    std::vector<double> levels;
    for (double t = from; t + width <= to; t += width) levels.push_back(track.Rms(t, t + width));
    return levels;
  }
  double PeakRms(double from, double to, double width = 0.05) const {
    const std::vector<double> levels = Levels(from, to, width);
    return levels.empty() ? 0.0 : *std::max_element(levels.begin(), levels.end());
  }
  double FloorRms(double from, double to, double width = 0.05) const {
    const std::vector<double> levels = Levels(from, to, width);
    return levels.empty() ? 0.0 : *std::min_element(levels.begin(), levels.end());
  }
  // The start of the first 50 ms window from `from` on louder than `level`; -1 if none.
  double Onset(double from, double level) const {
    for (double t = from; t + 0.05 <= track.Seconds(); t += 0.05)
      if (track.Rms(t, t + 0.05) > level) return t;
    return -1.0;
  }
};

int ExitCode(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

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
  run.exitCode = ExitCode(std::system(command.c_str()));
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

// All three marks, the output keeping pace with the clock between them (so it
// is 16-bit stereo at 22050 Hz, as read), and a walk long enough to measure.
void ExpectMarks(const ProgramRun& run) {
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  ASSERT_EQ(run.marks.size(), 3u) << run.errors;
  ASSERT_GT(run.Mark("start"), 0.0);
  // The disk driver sleeps one buffer's length per buffer and may fall behind
  // on a busy machine, never ahead; another format would be twice or half.
  EXPECT_GT(run.OutputPace("start", "end"), 0.7);
  EXPECT_LT(run.OutputPace("start", "end"), 1.2);
  ASSERT_GT(run.Mark("end") - run.Mark("walk"), 1.5);
  ASSERT_GE(run.track.Seconds(), run.Mark("end"));
}

// The work folder goes at the end unless KARVO_KEEP_AUDIO is set, to listen
// to the output after a failure.
class AudioWorkDirCleanup : public ::testing::Environment {
 public:
  void TearDown() override {
    if (!std::getenv("KARVO_KEEP_AUDIO")) {
      std::error_code error;
      fs::remove_all(WorkDir(), error);
    }
  }
};
const auto* const s_cleanup = ::testing::AddGlobalTestEnvironment(new AudioWorkDirCleanup);

}  // namespace

TEST(Audio, MusicIsHeardFromTheFirstFrameToTheEnd) {
  const ProgramRun run = Walk(fs::current_path(), "real");
  ExpectMarks(run);
  const double start = run.Mark("start"), end = run.Mark("end");
  // Nothing plays while the world is built; the music starts with the loop,
  // before any key, and carries on through the walk.
  ASSERT_GT(start - kLag, 0.1) << "the world takes time to build";
  EXPECT_LT(run.PeakRms(0.0, start - kLag), 1.0);
  EXPECT_GT(run.FloorRms(start + kLag, end, 0.25), 1000.0);
}

TEST(Audio, WalkingBringsBreathingWhileAMissingStepsFileStaysSilent) {
  const ProgramRun run =
      Walk(AssetVariant("breathing", {{kMusic, Change::Silent}, {kSteps, Change::Missing}}),
           "breathing");
  ExpectMarks(run);
  const double start = run.Mark("start"), walk = run.Mark("walk"), end = run.Mark("end");
  // Standing still: no rule runs before the first direction key.
  EXPECT_LT(run.PeakRms(start, walk), 1.0);
  // Breathing swells in over its first half second.
  EXPECT_GE(run.Onset(start, 50.0), walk - 0.05);
  EXPECT_GT(run.track.Rms(walk, end), 200.0);
  EXPECT_GT(run.PeakRms(walk, end), 600.0);
}

TEST(Audio, WalkingBringsStepsOverAndOverWhileAMissingBreathingFileStaysSilent) {
  const ProgramRun run =
      Walk(AssetVariant("steps", {{kMusic, Change::Silent}, {kBreathe, Change::Missing}}), "steps");
  ExpectMarks(run);
  const double start = run.Mark("start"), walk = run.Mark("walk"), end = run.Mark("end");
  EXPECT_LT(run.PeakRms(start, walk), 1.0);
  const double onset = run.Onset(start, 200.0);
  EXPECT_GE(onset, walk - 0.05);
  EXPECT_LE(onset, walk + 0.4) << "the first step comes with the first walking frame";
  // The one-second clip plays to its end and starts again while the walk goes
  // on: each second has steps in it, and quiet between them (a clip started
  // anew on every frame would never get past its first step).
  for (double t = walk + kLag; t + 1.0 <= end; t += 1.0) {
    EXPECT_GT(run.PeakRms(t, t + 1.0), 1500.0) << t - walk;
    EXPECT_LT(run.FloorRms(t, t + 1.0), 150.0) << t - walk;
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
