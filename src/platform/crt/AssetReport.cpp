// Naming unusable assets once, in plain words (see AssetReport.h).
#include "platform/crt/AssetReport.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <set>
#include <utility>

namespace crt {

void ReportAsset(const char* path, const std::string& reason) {
  static auto* reported = new std::set<std::pair<std::string, std::string>>;  // lives to the end
  std::string name = path ? path : "(no name)";
  std::replace(name.begin(), name.end(), '\\', '/');
  if (!reported->insert({name, reason}).second) return;
  std::fprintf(stderr, "karvo-terrain: %s: %s\n", name.c_str(), reason.c_str());
}

std::string DescribeOpenError(int error) {
  switch (error) {
    case ENOENT:
      return "there is no such file";
    case EACCES:
    case EPERM:
      return "it may not be read (permission denied)";
    case EISDIR:
      return "it is a folder, not a file";
    case ENOTDIR:
      return "a folder on its path is missing";
    default:
      return "it cannot be opened";
  }
}

std::string CaptureStandardError(void (*load)(void* context), void* context) {
  std::fflush(stderr);
  std::FILE* sink = std::tmpfile();
  const int saved = sink ? dup(STDERR_FILENO) : -1;
  if (saved < 0 || dup2(fileno(sink), STDERR_FILENO) < 0) {
    // Nowhere to catch it: load anyway, the chatter is only noise.
    if (saved >= 0) close(saved);
    if (sink) std::fclose(sink);
    load(context);
    return {};
  }
  load(context);
  std::fflush(stderr);
  dup2(saved, STDERR_FILENO);
  close(saved);
  std::string caught;
  std::rewind(sink);
  char buffer[512];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, sink)) > 0 && caught.size() < 65536) caught.append(buffer, n);
  std::fclose(sink);
  return caught;
}

}  // namespace crt
