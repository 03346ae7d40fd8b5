// SPDX-License-Identifier: Apache-2.0
#include "answers.h"
#include "behaviours.h"
#include "life.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace trellant::testing::misbehaving {

namespace {

/// "descriptors 0 1 2".
std::string openDescriptors() {
    DIR* const folder = ::opendir("/proc/self/fd");
    if (folder == nullptr) {
        return "descriptors unknown";
    }
    std::vector<int> numbers;
    while (const dirent* const entry = ::readdir(folder)) {
        const int number = std::atoi(entry->d_name);
        if (entry->d_name[0] != '.' && number != ::dirfd(folder)) {
            numbers.push_back(number);
        }
    }
    ::closedir(folder);
    std::sort(numbers.begin(), numbers.end());
    std::string text = "descriptors";
    for (const int number : numbers) {
        text += " " + std::to_string(number);
    }
    return text;
}

/// "ignored 1 15" and the like: the signals for which `holds`. The C library keeps two signals for
/// itself and answers no questions about them.
std::string signalsThat(const char* title, const std::function<bool(int signal)>& holds) {
    std::string text = title;
    for (int signal = 1; signal < NSIG; ++signal) {
        if (holds(signal)) {
            text += " " + std::to_string(signal);
        }
    }
    return text;
}

std::string blockedSignals() {
    sigset_t mask;
    ::sigemptyset(&mask);
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    return signalsThat("blocked", [&](int signal) { return ::sigismember(&mask, signal) == 1; });
}

std::string ignoredSignals() {
    return signalsThat("ignored", [](int signal) {
        struct sigaction action {};
        return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    });
}

std::string currentDirectory() {
    std::array<char, PATH_MAX> path{};
    return ::getcwd(path.data(), path.size()) == nullptr ? "" : path.data();
}

}  // namespace

int describeItself() {
    // First of all: what follows opens files.
    const std::string descriptors = openDescriptors();
    announce();
    (void)readRequest();
    const std::vector<std::string> facts{descriptors, blockedSignals(), ignoredSignals(),
                                         "directory " + currentDirectory()};
    std::string diagnostics;
    for (const std::string& fact : facts) {
        diagnostics += (diagnostics.empty() ? "" : ",") + quoted(fact);
    }
    writeAll(STDOUT_FILENO, resultText(timelineText("itself"), diagnostics));
    return 0;
}

}  // namespace trellant::testing::misbehaving
