// File calls with platform paths and named failures (see FileIo.h).
#include "platform/crt/FileIo.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>

#include "platform/crt/AssetReport.h"

namespace crt {
namespace {

// The name each open file was opened by, for the report of a short read.
std::map<std::FILE*, std::string>& OpenNames() {
  static auto* names = new std::map<std::FILE*, std::string>;  // lives to the end
  return *names;
}

}  // namespace

std::FILE* fopen(const char* path, const char* mode) {
  if (path == nullptr || mode == nullptr) return nullptr;
  std::string name(path);
  std::replace(name.begin(), name.end(), '\\', '/');
  std::FILE* file = std::fopen(name.c_str(), mode);
  if (file == nullptr) {
    ReportAsset(path, DescribeOpenError(errno));
    return nullptr;
  }
  OpenNames()[file] = path;
  return file;
}

std::size_t fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file) {
  if (file == nullptr) return 0;
  const std::size_t got = std::fread(buffer, size, count, file);
  if (got < count) {
    auto found = OpenNames().find(file);
    const char* name = found == OpenNames().end() ? nullptr : found->second.c_str();
    const bool empty = std::ftell(file) == 0;
    ReportAsset(name, std::ferror(file) ? "it cannot be read" : empty ? "the file is empty" : "the file ends early");
  }
  return got;
}

int fclose(std::FILE* file) {
  if (file == nullptr) return EOF;
  OpenNames().erase(file);
  return std::fclose(file);
}

}  // namespace crt
