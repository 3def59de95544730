#include "ProcessPool.h"

#include <cstdio>
#include <fcntl.h>
#include <map>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace assetgen {
namespace {

pid_t Start(const Command& command)
{
    std::vector<char*> argv;
    for (const std::string& arg : command)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int error = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : -1;
}

} // namespace

bool RunJobs(const std::vector<ProcessJob>& jobs, int parallel)
{
    bool ok = true;
    std::vector<size_t> nextCommand(jobs.size(), 0);
    std::map<pid_t, size_t> running; // process -> job
    size_t nextJob = 0;

    // Starts the next command of `job`; false when the job has no more.
    auto advance = [&](size_t job) {
        while (nextCommand[job] < jobs[job].commands.size()) {
            const Command& command = jobs[job].commands[nextCommand[job]++];
            const pid_t pid = Start(command);
            if (pid > 0) {
                running[pid] = job;
                return true;
            }
            std::fprintf(stderr, "karvo-assetgen: could not run %s for %s\n", command[0].c_str(), jobs[job].label.c_str());
            ok = false;
            return false;
        }
        return false;
    };

    while (nextJob < jobs.size() || !running.empty()) {
        while (nextJob < jobs.size() && static_cast<int>(running.size()) < parallel)
            advance(nextJob++);
        if (running.empty())
            continue;
        int status = 0;
        const pid_t pid = waitpid(-1, &status, 0);
        if (pid < 0)
            break;
        const auto it = running.find(pid);
        if (it == running.end())
            continue;
        const size_t job = it->second;
        running.erase(it);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            std::fprintf(stderr, "karvo-assetgen: a command failed for %s\n", jobs[job].label.c_str());
            ok = false;
            continue; // the rest of this job depends on the failed step
        }
        advance(job);
    }
    return ok;
}

} // namespace assetgen
