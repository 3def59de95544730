// Runs external programs (espeak-ng, lame) a few at a time. A job is a list
// of commands run one after another; jobs run side by side.
#pragma once

#include <string>
#include <vector>

namespace assetgen {

using Command = std::vector<std::string>; // program name (looked up in PATH) and arguments

struct ProcessJob
{
    std::string label; // for messages
    std::vector<Command> commands;
};

// Runs every job, at most `parallel` processes at once, with standard output
// discarded. Returns false, after naming the job on stderr, if any command
// could not start or ended with a non-zero status; the other jobs still run.
bool RunJobs(const std::vector<ProcessJob>& jobs, int parallel);

} // namespace assetgen
