// SPDX-License-Identifier: Apache-2.0
#include "deliver.h"

#include <trellant/base/printable_path.h>
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
#include <utility>

namespace trellant::cli {

namespace {

constexpr mode_t everybodyMayRead = 0666;

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

void sayExisting(const std::string& path, Console& console) {
    console.error(printablePath(path) +
                  " is there already. Name another file, or replace it with --force");
}

void sayRead(const std::string& path, Console& console) {
    console.error(printablePath(path) +
                  " is a file that is read. Name another file for the output");
}

}  // namespace

bool mayDeliver(const Destination& destination, const std::vector<std::string>& inputs,
                Console& console) {
    if (destination.path == "-") {
        return true;
    }
    if (destination.path.empty()) {
        console.error("-o needs the name of a file, or - for standard output");
        return false;
    }
    const auto there = statusOf(destination.path);
    if (!there) {
        return true;
    }
    ReadFiles read;
    for (const std::string& input : inputs) {
        read.add(input);
    }
    if (read.holds(destination.path)) {
        sayRead(destination.path, console);
        return false;
    }
    if (S_ISREG(there->st_mode) && !destination.force) {
        sayExisting(destination.path, console);
        return false;
    }
    return true;
}

Delivery::Delivery(Destination destination, Console& console)
    : destination_(std::move(destination)),
      console_(console),
      isConsole_(destination_.path == "-") {
    if (!isConsole_) {
        open();
    }
}

Delivery::~Delivery() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    if (!beside_.empty()) {
        ::unlink(beside_.c_str());
    }
}

/// A device or a pipe is written to, never replaced; a file is made beside the one it replaces.
void Delivery::open() {
    const auto there = statusOf(destination_.path);
    if (there && !S_ISREG(there->st_mode)) {
        descriptor_ = ::open(destination_.path.c_str(), O_WRONLY | O_CLOEXEC);
        failure_ = descriptor_ < 0 ? errno : 0;
        return;
    }
    std::string name = destination_.path + ".XXXXXX";
    descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0) {
        failure_ = errno;
        return;
    }
    beside_ = std::move(name);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor_, everybodyMayRead & ~mask);
}

void Delivery::write(std::string_view bytes) {
    constexpr std::size_t most = 65'536;
    gathered_ += bytes;
    if (gathered_.size() >= most) {
        flush();
    }
}

void Delivery::flush() {
    if (isConsole_) {
        console_.out(gathered_);
    } else if (failure_ == 0) {
        failure_ = writeAll(descriptor_, gathered_);
    }
    gathered_.clear();
}

/// link refuses what is there, rename replaces it.
int Delivery::place() {
    const bool isPlaced =
        (destination_.force ? std::rename(beside_.c_str(), destination_.path.c_str())
                            : ::link(beside_.c_str(), destination_.path.c_str())) == 0;
    const int failure = isPlaced ? 0 : errno;
    if (isPlaced && destination_.force) {
        beside_.clear();
    }
    return failure;
}

bool Delivery::finish() {
    flush();
    if (isConsole_) {
        return true;
    }
    if (descriptor_ >= 0) {
        const bool isClosed = ::close(std::exchange(descriptor_, -1)) == 0;
        failure_ = failure_ == 0 && !isClosed ? errno : failure_;
    }
    if (failure_ == 0 && !beside_.empty() && read_.holds(destination_.path)) {
        sayRead(destination_.path, console_);
        return false;
    }
    if (failure_ == 0 && !beside_.empty()) {
        failure_ = place();
    }
    if (failure_ == EEXIST) {
        sayExisting(destination_.path, console_);
    } else if (failure_ != 0) {
        console_.error("cannot write " + printablePath(destination_.path) + ": " +
                       systemErrorText(failure_));
    }
    return failure_ == 0;
}

bool deliver(const Destination& destination, std::string_view text, Console& console) {
    Delivery delivery(destination, console);
    delivery.write(text);
    return delivery.finish();
}

}  // namespace trellant::cli
