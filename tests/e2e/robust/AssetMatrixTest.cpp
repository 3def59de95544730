// Every asset file broken four ways (missing, cut to half, random bytes of the
// same size, empty), one case a run of the real program through karvo-capture
// in a copy of the assets folder. Each case must end as the program promises:
// a picture or the height map that cannot be had ends the start (exit code 0,
// no frame), music that cannot be had ends the run with 1, a broken effect or
// speech clip leaves a silent slot and the run goes on; and whatever cannot be
// used is named once on standard error. No case may crash or hang.
//
// The sanitizer build runs one way per file, the ways taken in turn, so that
// every file and every way is still run there within a few minutes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/AssetFolder.h"

namespace fs = std::filesystem;

namespace {

enum class Damage { Missing, Half, Random, Empty };
const char* const kDamageNames[] = {"missing", "half", "random", "empty"};

enum class Expect { StartFails, MusicFails, RunsOn };

struct Case {
  std::string file;
  Damage damage;
};

struct Outcome {
  int exitCode = -1;  // the program's own (WinMain), -1 when none was reported
  bool drew = false;  // the asked frame was written
  std::string output;
};

// What the program is to do without this file, or with it in this state.
Expect Expected(const Case& c) {
  // Any bytes are heights, and the decoder plays what a cut mp3 still holds.
  if (c.file == "Data/HeightMap.raw") return c.damage == Damage::Random ? Expect::RunsOn : Expect::StartFails;
  if (c.file.rfind("Data/", 0) == 0) return Expect::StartFails;  // a picture
  if (c.file == "music/1.mp3") return c.damage == Damage::Half ? Expect::RunsOn : Expect::MusicFails;
  return Expect::RunsOn;
}

std::string Broken(const fs::path& original, Damage damage, unsigned seed) {
  std::ifstream in(original, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (damage == Damage::Empty) return {};
  if (damage == Damage::Half) return bytes.substr(0, bytes.size() / 2);
  std::mt19937 random(seed);
  for (char& b : bytes) b = static_cast<char>(random() & 0xFF);
  return bytes;
}

Outcome RunCase(const fs::path& assets, const Case& c, unsigned seed) {
  test_support::AssetFolder folder(assets);
  Outcome outcome;
  if (!folder.Made()) return outcome;
  if (c.damage == Damage::Missing) folder.Remove(c.file);
  else folder.Replace(c.file, Broken(assets / c.file, c.damage, seed));
  const fs::path log = folder.Root() / "output.txt";
  const std::string command = "cd '" + folder.Root().string() + "' && timeout 120 '" KARVO_CAPTURE
                              "' --frames 2 --out shots > '" + log.string() + "' 2>&1";
  const int status = std::system(command.c_str());
  std::ifstream in(log);
  outcome.output.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  // The limit guards a hang only: a case takes seconds even on a busy machine.
  if (WIFEXITED(status) && WEXITSTATUS(status) == 124)
    outcome.output += "\nthe run hung: stopped after two minutes\n";
  outcome.drew = fs::exists(folder.Root() / "shots" / "frame_0002.png");
  // The tool reports the program's own code when frames are missing.
  const std::string said = "program exit code ";
  const std::size_t at = outcome.output.find(said);
  if (outcome.drew && status != -1 && WIFEXITED(status))
    outcome.exitCode = WEXITSTATUS(status);
  else if (at != std::string::npos)
    outcome.exitCode = std::atoi(outcome.output.c_str() + at + said.size());
  return outcome;
}

// How often the file is named on standard error.
std::size_t Mentions(const std::string& output, const std::string& file) {
  const std::string line = "karvo-terrain: " + file + ": ";
  std::size_t count = 0;
  for (std::size_t at = output.find(line); at != std::string::npos; at = output.find(line, at + 1)) ++count;
  return count;
}

TEST(AssetMatrix, EveryBrokenAssetHasItsOutcomeAndIsNamedOnce) {
  const fs::path assets = fs::current_path();
  const std::vector<std::string> files = test_support::ListAssets(assets);
  ASSERT_EQ(files.size(), 53u) << "run inside the generated assets folder";

  std::vector<Case> cases;
  for (std::size_t i = 0; i < files.size(); ++i)
    for (int d = 0; d < 4; ++d)
#if defined(__SANITIZE_ADDRESS__)
      if (std::size_t(d) == i % 4)
#endif
        cases.push_back({files[i], Damage(d)});

  // Two runs at a time: each is mostly one core's decoding and drawing.
  std::vector<Outcome> outcomes(cases.size());
  std::atomic<std::size_t> next{0};
  auto worker = [&] {
    for (std::size_t i = next++; i < cases.size(); i = next++) outcomes[i] = RunCase(assets, cases[i], unsigned(i));
  };
  std::thread second(worker);
  worker();
  second.join();

  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    const Outcome& o = outcomes[i];
    SCOPED_TRACE(c.file + " " + kDamageNames[int(c.damage)] + "\n" + o.output);
    // The start fails with 0 and no frame, music that cannot be had with 1.
    const Expect expected = Expected(c);
    EXPECT_EQ(o.exitCode, expected == Expect::MusicFails ? 1 : 0);
    EXPECT_EQ(o.drew, expected == Expect::RunsOn);
    // Random heights are still a height map: nothing to name there.
    const bool usable = c.file == "Data/HeightMap.raw" && c.damage == Damage::Random;
    EXPECT_EQ(Mentions(o.output, c.file), usable ? 0u : 1u);
    EXPECT_EQ(o.output.find("Warning:"), std::string::npos) << "a decoder's own message";
  }
}

}  // namespace
