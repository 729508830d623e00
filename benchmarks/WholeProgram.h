#pragma once

#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs a program to its end and discards its output; the first of `words` is its name or path. Returns false
/// when it could not be started, or failed. If `megabytes` is not null, it gets the program's peak memory,
/// which is never less than that of this process.
[[nodiscard]] inline bool runProgram(std::vector<std::string> words, double* megabytes = nullptr) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    const bool started = ::posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    rusage usage{};
    const bool hasEnded = started && ::wait4(child, &status, 0, &usage) == child;
    if (megabytes != nullptr) {
        *megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    }
    return hasEnded && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
