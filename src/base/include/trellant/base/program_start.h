// SPDX-License-Identifier: Apache-2.0
// Starting another program: the one place that knows the system's way to do so.
//
// posix_spawn, because its cost does not grow with the host: a fork copies the page tables of a
// host that may be gigabytes large.
#pragma once

#include <optional>
#include <spawn.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// What becomes the program's standard streams: descriptors above 2 that stay open until the start,
/// "/dev/null" for one that is absent.
struct ProgramStreams {
    std::optional<int> input{};
    std::optional<int> output{};
    std::optional<int> errors{};
};

/// Everything but the program: what its streams become, and that it starts with no other
/// descriptor, with signals as a fresh program meets them whatever this process ignores or blocks,
/// and as the leader of a process group of its own, so that a key pressed at a terminal is not its
/// to handle. A program starts with no other descriptor whatever other threads open meanwhile, save
/// with a C library that cannot close all of them at once (Apple's can, glibc from 2.34 on and
/// those of the BSDs): there one that another thread opens just then, and does not mark to be
/// closed on exec, is inherited.
class ProgramStart {
  public:
    /// Throws SystemCallError ("cannot prepare the start: ...").
    explicit ProgramStart(const ProgramStreams& streams);

    /// Starts the program whose path is the first of `words`, the others being its arguments, in
    /// this process's directory and environment. Whoever starts it waits for its end. Throws
    /// SystemCallError ("cannot start the program: ..."), with EINVAL for a word that holds a NUL.
    [[nodiscard]] pid_t start(std::vector<std::string> words) const;

  private:
    struct Actions {
        Actions();
        ~Actions() { ::posix_spawn_file_actions_destroy(&value); }
        Actions(const Actions&) = delete;
        Actions& operator=(const Actions&) = delete;
        Actions(Actions&&) = delete;
        Actions& operator=(Actions&&) = delete;

        posix_spawn_file_actions_t value{};
    };
    struct Attributes {
        Attributes();
        ~Attributes() { ::posix_spawnattr_destroy(&value); }
        Attributes(const Attributes&) = delete;
        Attributes& operator=(const Attributes&) = delete;
        Attributes(Attributes&&) = delete;
        Attributes& operator=(Attributes&&) = delete;

        posix_spawnattr_t value{};
    };

    void setStreams(const ProgramStreams& streams);
    void setSignals();

    Actions actions_;
    Attributes attributes_;
};

}  // namespace trellant
