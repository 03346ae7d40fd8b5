// SPDX-License-Identifier: Apache-2.0
// trellant-wav IN OUT: the audio of an uncompressed AIFF or AIFC file as a new WAVE file. Exit
// status 0 done, 1 wrong use, 2 not converted, with the reason on standard error.
#include "wave_copy.h"

#include <trellant/base/host_watch.h>
#include <trellant/confine/confinement.h>
#include <trellant/confine/memory_allowance.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

int convert(const char* source, const char* destination) {
    try {
        // The library that reads the samples knows many formats, and a stranger's file chooses
        // which of its parsers runs: it gets nothing to do harm with.
        trellant::keepWithinMemory();
        const std::filesystem::path target = std::filesystem::absolute(destination);
        trellant::confine(trellant::sandboxFromEnvironment(),
                          {.writableDirectory = target.parent_path().native(),
                           .awaitsStreams = true,
                           .readablePaths = std::vector<std::string>{source}});
        trellant::wav::copyAsWave(source, destination);
        return 0;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
        return 2;
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        static_cast<void>(std::fputs("usage: trellant-wav IN OUT\n", stderr));
        return 1;
    }
    trellant::watchHost(2);
    trellant::removeUnfinishedFileOnSignals();
    // At once: what libraries do at the end of a process takes calls that it has given up.
    ::_exit(convert(arguments[1], arguments[2]));
}
