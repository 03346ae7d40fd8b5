// SPDX-License-Identifier: Apache-2.0
// Runs commands in turn (A B A B ...) and tells what each run took. The first run of each is not
// counted, unless RUNS is 0: then each is run once, and counted.
//
//     bench_measure RUNS -- COMMAND... [-- COMMAND...]
//
// Before the program, a command may have "in=FILE" for its standard input, and "fresh=FOLDER" for a
// folder that is created, and emptied, before each run. What it writes is thrown away.
// One line for each run: the command's position, wall-clock nanoseconds from start to end, user and
// system microseconds, peak memory in KiB, exit status (-1 for a signal).
//
// Small on purpose: a process starts out with the peak memory of the one that started it.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Command {
    std::string input = "/dev/null";
    std::string freshFolder;
    std::vector<char*> arguments;
};

struct Run {
    long wallNanoseconds = 0;
    rusage usage{};
    int status = 0;
};

[[noreturn]] void stop(const char* what, int reason) {
    static_cast<void>(std::fprintf(stderr, "bench_measure: %s: %s\n", what, std::strerror(reason)));
    std::exit(1);
}

/// A session has a folder of its own in the one that is asked for.
void empty(const std::string& folder) {
    std::error_code failure;
    if (fs::create_directory(folder, failure) || failure) {
        return;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        fs::remove_all(entry.path());
    }
}

long nanoseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000L + now.tv_nsec;
}

long microseconds(const timeval& time) {
    return time.tv_sec * 1'000'000L + time.tv_usec;
}

Run runOnce(const Command& command) {
    if (!command.freshFolder.empty()) {
        empty(command.freshFolder);
    }
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, command.input.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    Run run;
    pid_t child = 0;
    const long start = nanoseconds();
    const int refused = ::posix_spawnp(&child, command.arguments.front(), &actions, nullptr,
                                       command.arguments.data(), environ);
    if (refused != 0) {
        stop(command.arguments.front(), refused);
    }
    int status = 0;
    while (::wait4(child, &status, 0, &run.usage) < 0 && errno == EINTR) {
    }
    run.wallNanoseconds = nanoseconds() - start;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    ::posix_spawn_file_actions_destroy(&actions);
    return run;
}

std::vector<Command> commandsOf(int argc, char** argv) {
    std::vector<Command> commands;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0) {
            commands.emplace_back();
        } else if (commands.empty()) {
            break;
        } else if (commands.back().arguments.empty() && std::strncmp(argv[i], "in=", 3) == 0) {
            commands.back().input = argv[i] + 3;
        } else if (commands.back().arguments.empty() && std::strncmp(argv[i], "fresh=", 6) == 0) {
            commands.back().freshFolder = argv[i] + 6;
        } else {
            commands.back().arguments.push_back(argv[i]);
        }
    }
    for (Command& command : commands) {
        if (command.arguments.empty()) {
            return {};
        }
        command.arguments.push_back(nullptr);
    }
    return commands;
}

void print(std::size_t command, const Run& run) {
    std::printf("%zu %ld %ld %ld %ld %d\n", command, run.wallNanoseconds,
                microseconds(run.usage.ru_utime), microseconds(run.usage.ru_stime),
                run.usage.ru_maxrss, run.status);
}

}  // namespace

int main(int argc, char** argv) {
    const long runs = argc > 1 ? std::strtol(argv[1], nullptr, 10) : -1;
    const std::vector<Command> commands = commandsOf(argc, argv);
    if (runs < 0 || commands.empty()) {
        static_cast<void>(std::fputs(
            "usage: bench_measure RUNS -- [in=FILE] [fresh=FOLDER] PROGRAM... [-- ...]\n", stderr));
        return 1;
    }
    for (long i = 0; i <= runs; ++i) {
        for (std::size_t command = 0; command < commands.size(); ++command) {
            const Run run = runOnce(commands[command]);
            if (i > 0 || runs == 0) {
                print(command, run);
            }
        }
    }
    return 0;
}
