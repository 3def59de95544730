// The C runtime's file calls as the system uses them: paths written with
// backslashes, as the platform takes them, and a file that cannot be opened or
// ends early named once on standard error (AssetReport.h). The results are
// those of the C library's fopen, fread and fclose.
#pragma once

#include <cstddef>
#include <cstdio>

namespace crt {

// Opens `path` (backslashes or slashes); null when it cannot be opened, and
// then the file and the reason are reported.
std::FILE* fopen(const char* path, const char* mode);

// Reads count items of size bytes; fewer than count means the file ended
// early, which is reported with the file's name.
std::size_t fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file);

// Closes a file of fopen.
int fclose(std::FILE* file);

}  // namespace crt
