// The generator itself: the same bytes on every run, and a clear failure
// when it cannot write.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "AssetFiles.h"

namespace fs = std::filesystem;

namespace {

int RunGenerator(const std::string& arguments) {
  const int status = std::system(("'" KARVO_ASSETGEN "' " + arguments + " >/dev/null 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Generator, SecondRunWritesTheSameBytes) {
  const fs::path fresh = fs::temp_directory_path() / ("karvo-assets-" + std::to_string(getpid()));
  fs::remove_all(fresh);
  ASSERT_EQ(RunGenerator("'" + fresh.string() + "'"), 0);
  int files = 0, freshFiles = 0;
  for (const auto& entry : fs::recursive_directory_iterator(assettest::AssetDir())) {
    if (!entry.is_regular_file()) continue;
    ++files;
    const fs::path relative = fs::relative(entry.path(), assettest::AssetDir());
    EXPECT_TRUE(assettest::ReadFile(entry.path()) == assettest::ReadFile(fresh / relative))
        << relative << " differs between runs";
  }
  for (const auto& entry : fs::recursive_directory_iterator(fresh)) freshFiles += entry.is_regular_file();
  EXPECT_EQ(files, 53) << "1 height map, 23 pictures, 29 sounds";
  EXPECT_EQ(freshFiles, files);
  fs::remove_all(fresh);
}

TEST(Generator, FailsClearlyWithoutAUsableOutputFolder) {
  EXPECT_EQ(RunGenerator(""), 2) << "no folder given";
  const fs::path blocker = fs::temp_directory_path() / ("karvo-assets-file-" + std::to_string(getpid()));
  std::ofstream(blocker) << "a file, not a folder";
  EXPECT_EQ(RunGenerator("'" + (blocker / "out").string() + "'"), 1);
  fs::remove(blocker);
}

}  // namespace
