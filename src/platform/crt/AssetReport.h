// Naming the assets that cannot be used. The program runs on without them (a
// silent sound slot) or ends with its own exit code, and it shows no box for
// them; this line on standard error is how a user learns which file is at
// fault and why, in plain words rather than a decoder's.
#pragma once

#include <string>

namespace crt {

// Writes "karvo-terrain: <path>: <reason>" to standard error, with the path's
// backslashes turned to slashes; a path and reason already reported stay quiet,
// so a file that is loaded again (a new device rebuilds the world) is named once.
void ReportAsset(const char* path, const std::string& reason);

// The reason for a failed open, from its errno: "there is no such file", ...
std::string DescribeOpenError(int error);

// Runs `load` with the process's standard error caught, and gives back what was
// written there, so that a decoder's own chatter never reaches the terminal.
// Main thread only: another thread's writes in that time are caught too.
std::string CaptureStandardError(void (*load)(void* context), void* context);

}  // namespace crt
