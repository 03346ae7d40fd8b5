// SPDX-License-Identifier: Apache-2.0
// What a call of the client costs beside a bare start of the same program.
//
//     bench_client RUNS HOST_BYTES PROGRAM
//
// PROGRAM reads its standard input and ends. HOST_BYTES are allocated and touched before. The two
// alternate; for each pair one line with the nanoseconds of the bare start and of the call.
#include <trellant/client/worker_client.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace trellant {

namespace {

using Clock = std::chrono::steady_clock;

long long nanosecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start).count();
}

long long bareStart(std::string program) {
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::array<char*, 2> arguments{program.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    const auto start = Clock::now();
    if (::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ) != 0 ||
        ::waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("the program could not be run");
    }
    const auto taken = nanosecondsSince(start);
    ::posix_spawn_file_actions_destroy(&actions);
    return taken;
}

long long clientCall(const AAFWorkerClient& client) {
    AAFWorkerProtocol::Request request;
    request.aafPath = "/nowhere.omf";
    request.workDirectory = "/nowhere";
    const auto start = Clock::now();
    try {
        static_cast<void>(client.run(request).get());
    } catch (const AAFWorkerClientError& error) {
        // A program that answers nothing has come to its end in order.
        if (std::holds_alternative<AAFWorkerClientError::InvalidResponse>(error.fault())) {
            return nanosecondsSince(start);
        }
        throw;
    }
    throw std::runtime_error("the program answered");
}

void compare(long runs, std::size_t hostBytes, const std::string& program) {
    const std::vector<char> host(hostBytes, '\1');
    AAFWorkerClient client;
    client.helperURLProvider = [&](const std::string&) { return std::filesystem::path(program); };
    for (long i = 0; i <= runs; ++i) {
        const auto bare = bareStart(program);
        const auto call = clientCall(client);
        if (i > 0) {
            std::printf("%lld %lld\n", bare, call);
        }
    }
}

}  // namespace

}  // namespace trellant

int main(int argc, char** argv) {
    if (argc != 4) {
        static_cast<void>(std::fputs("usage: bench_client RUNS HOST_BYTES PROGRAM\n", stderr));
        return 1;
    }
    try {
        trellant::compare(std::strtol(argv[1], nullptr, 10), std::strtoul(argv[2], nullptr, 10),
                          argv[3]);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "bench_client: %s\n", error.what()));
        return 1;
    }
    return 0;
}
