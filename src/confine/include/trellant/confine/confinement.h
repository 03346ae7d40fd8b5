// SPDX-License-Identifier: Apache-2.0
// Giving up what the process will not need, before the first byte of a stranger's file is read: a
// fault in reading it can then do no harm beyond the one request. There is no way back, so only an
// executable's main calls this, or a child that was forked for one file.
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// How much is asked of the system.
enum class Sandbox {
    /// What the system cannot do is done without.
    wherePossible,
    /// What the system cannot do is an error.
    required,
    /// Nothing is given up.
    off
};

/// What a confined process does beside reading files and writing to streams that are open.
struct ConfinedNeeds {
    /// Absolute, there already: where files are written, there and below; absent: nowhere.
    std::optional<std::string> writableDirectory{};
    /// It waits for room in a stream that returns at once when it is full.
    bool awaitsStreams = false;
    /// Files, and folders with all below them, that are read; what is not there cannot be read
    /// later either. Absent: anything. Where files are written they can be read as well.
    std::optional<std::vector<std::string>> readablePaths{};
    /// Where any file may be read: folders whose entries are listed, there and below. Absent: all.
    std::optional<std::vector<std::string>> listedFolders{};
    /// It will call confineFurther.
    bool narrowsLater = false;
};

/// A layer that was required and is not to be had, or a wish that is none.
class ConfinementError final : public std::exception {
  public:
    explicit ConfinementError(std::string description) : description_(std::move(description)) {}
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::string description_;
};

/// What TRELLANT_SANDBOX asks for: "require", "off", or nothing when unset or empty. Throws
/// ConfinementError for any other value: a slip must not make the process quietly less safe.
[[nodiscard]] Sandbox sandboxFromEnvironment();

/// Confines the calling process for good, layer by layer: no new privileges, no core dump, files
/// read and written only where `needs` says, and only the system calls that reading and the needs
/// take. What is open stays usable. The process must have one thread. Throws ConfinementError when
/// a required layer is missing; those before it hold then.
void confine(Sandbox sandbox, const ConfinedNeeds& needs);

/// Takes more away from a process that has confined itself, once it is known which files it will
/// read: of files and folders it keeps what `needs` and what it confined itself with both allow.
/// Throws ConfinementError when that is required and cannot be had.
void confineFurther(Sandbox sandbox, const ConfinedNeeds& needs);

}  // namespace trellant
