// SPDX-License-Identifier: Apache-2.0
// trellant-wav IN OUT [CHANNEL]: the audio of an uncompressed AIFF, AIFC or WAVE file, or one
// channel of it (from 1), as a new WAVE file. Exit status 0 done, 1 wrong use, 2 not converted,
// with the reason on standard error.
#include "wave_copy.h"

#include <trellant/base/host_watch.h>
#include <trellant/confine/confinement.h>
#include <trellant/confine/memory_allowance.h>

#include <charconv>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

/// From 1 on the command line; absent for what is no such number.
std::optional<int> channelOf(std::string_view word) {
    constexpr int most = 65'536;
    int number = 0;
    const auto end = std::from_chars(word.data(), word.data() + word.size(), number);
    if (end.ec != std::errc() || end.ptr != word.data() + word.size() || number < 1 ||
        number > most) {
        return std::nullopt;
    }
    return number - 1;
}

int convert(const char* source, const char* destination, const std::optional<int>& channel) {
    try {
        // The library that reads the samples knows many formats, and a stranger's file chooses
        // which of its parsers runs: it gets nothing to do harm with.
        trellant::keepWithinMemory();
        const std::filesystem::path target = std::filesystem::absolute(destination);
        trellant::confine(trellant::sandboxFromEnvironment(),
                          {.writableDirectory = target.parent_path().native(),
                           .awaitsStreams = true,
                           .readablePaths = std::vector<std::string>{source}});
        trellant::wav::copyAsWave(source, destination, channel);
        return 0;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
        return 2;
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const auto channel = argumentCount == 4 ? channelOf(arguments[3]) : std::nullopt;
    if (argumentCount != 3 && !channel) {
        static_cast<void>(std::fputs("usage: trellant-wav IN OUT [CHANNEL]\n", stderr));
        return 1;
    }
    trellant::watchHost(2);
    trellant::removeUnfinishedFileOnSignals();
    // At once: what libraries do at the end of a process takes calls that it has given up.
    ::_exit(convert(arguments[1], arguments[2], channel));
}
