// A folder of the temp directory for what one test process writes (frames,
// recorded output), made on first use and removed when the process ends,
// unless the environment variable `keep` is set, to look at what a failing
// run left. Header-only; one folder per process.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace test_support {

inline const std::filesystem::path& WorkDir(const std::string& prefix, const char* keep) {
  static const struct Folder {
    std::filesystem::path path;
    const char* keep;
    ~Folder() {
      std::error_code ignored;
      if (!std::getenv(keep)) std::filesystem::remove_all(path, ignored);
    }
  } folder{std::filesystem::temp_directory_path() / (prefix + std::to_string(::getpid())), keep};
  std::filesystem::create_directories(folder.path);
  return folder.path;
}

}  // namespace test_support
