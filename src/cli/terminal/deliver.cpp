// SPDX-License-Identifier: Apache-2.0
#include "deliver.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/system_error_text.h>
#include <trellant/base/write_all.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4096;
constexpr mode_t everybodyMayRead = 0666;

std::string shown(const std::string& path) {
    return printableText(path, longestShownPath);
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// Writes all of it and closes the descriptor; 0 or the error's number.
int writeAndClose(int descriptor, std::string_view text) {
    const int failure = writeAll(descriptor, text);
    return ::close(descriptor) != 0 && failure == 0 ? errno : failure;
}

/// A device or a pipe is written to, never replaced.
int writeInto(const std::string& path, std::string_view text) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return descriptor < 0 ? errno : writeAndClose(descriptor, text);
}

/// Beside the file first, then in its place: link refuses what is there, rename replaces it.
int writeBeside(const std::string& path, std::string_view text, bool replace) {
    std::string beside = path + ".XXXXXX";
    const int descriptor = ::mkostemp(beside.data(), O_CLOEXEC);
    if (descriptor < 0) {
        return errno;
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor, everybodyMayRead & ~mask);
    int failure = writeAndClose(descriptor, text);
    if (failure == 0 && (replace ? std::rename(beside.c_str(), path.c_str())
                                 : ::link(beside.c_str(), path.c_str())) != 0) {
        failure = errno;
    }
    if (failure != 0 || !replace) {
        ::unlink(beside.c_str());
    }
    return failure;
}

void tellExisting(const std::string& path, Console& console) {
    console.error(shown(path) + " is there already. Name another file, or replace it with --force");
}

}  // namespace

bool mayDeliver(const Destination& destination, const std::vector<std::string>& inputs,
                Console& console) {
    if (destination.path == "-") {
        return true;
    }
    const auto there = statusOf(destination.path);
    if (!there) {
        return true;
    }
    for (const std::string& input : inputs) {
        const auto read = statusOf(input);
        if (read && read->st_dev == there->st_dev && read->st_ino == there->st_ino) {
            console.error(shown(destination.path) +
                          " is the file that is read. Name another file for the output");
            return false;
        }
    }
    if (S_ISREG(there->st_mode) && !destination.force) {
        tellExisting(destination.path, console);
        return false;
    }
    return true;
}

bool deliver(const Destination& destination, const std::string& text, Console& console) {
    if (destination.path == "-") {
        console.out(text);
        return true;
    }
    const auto there = statusOf(destination.path);
    const int failure = there && !S_ISREG(there->st_mode)
                            ? writeInto(destination.path, text)
                            : writeBeside(destination.path, text, destination.force);
    if (failure == EEXIST) {
        tellExisting(destination.path, console);
    } else if (failure != 0) {
        console.error("cannot write " + shown(destination.path) + ": " + systemErrorText(failure));
    }
    return failure == 0;
}

}  // namespace trellant::cli
