// The program's exit codes, from the program itself (build/karvo-terrain on
// the SDL back end) run as a child process in trimmed copies of the assets
// folder: 1 when the background music cannot be started, 0 when the start
// fails. The normal end, with 0, is the scripted run of LifecycleTest.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/AssetFolder.h"

namespace fs = std::filesystem;

namespace program_test {
namespace {

struct Outcome {
  int exitCode = -1;
  std::string output;
};

// Runs the program inside `folder`. A program that does not end by itself
// within two minutes is stopped (exit code 124).
Outcome RunProgramIn(const fs::path& folder) {
  const fs::path log = folder / "output.txt";
  const std::string command = "cd '" + folder.string() +
                              "' && SDL_AUDIODRIVER=dummy timeout 120 '" KARVO_TERRAIN "' > '" +
                              log.string() + "' 2>&1";
  Outcome outcome;
  const int status = std::system(command.c_str());
  if (status != -1 && WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
  std::ifstream in(log);
  outcome.output.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return outcome;
}

TEST(ExitCode, OneWhenTheMusicIsMissingZeroWhenTheStartFails) {
  const fs::path assets = fs::current_path();
  ASSERT_TRUE(fs::exists(assets / "music" / "1.mp3")) << "run inside the assets folder";

  // The world builds, then the music cannot be loaded: 1, straight away,
  // without a message.
  test_support::AssetFolder noMusic(assets);
  ASSERT_TRUE(noMusic.Made());
  noMusic.Remove("music/1.mp3");
  const Outcome withoutMusic = RunProgramIn(noMusic.Root());
  EXPECT_EQ(withoutMusic.exitCode, 1) << withoutMusic.output;
  EXPECT_EQ(withoutMusic.output.find("Error"), std::string::npos) << withoutMusic.output;

  // Without the height map the world cannot be built: the start fails
  // quietly and the program ends with 0, before it ever asks for the music.
  test_support::AssetFolder noMap(assets);
  ASSERT_TRUE(noMap.Made());
  noMap.Remove("music/1.mp3");
  noMap.Remove("Data/HeightMap.raw");
  const Outcome withoutMap = RunProgramIn(noMap.Root());
  EXPECT_EQ(withoutMap.exitCode, 0) << withoutMap.output;
  EXPECT_EQ(withoutMap.output.find("Error"), std::string::npos) << withoutMap.output;
}

}  // namespace
}  // namespace program_test
