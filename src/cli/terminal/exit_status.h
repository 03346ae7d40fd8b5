// SPDX-License-Identifier: Apache-2.0
// How the command tells scripts what happened.
#pragma once

namespace trellant::cli {

enum class ExitStatus {
    done = 0,
    /// The command line makes no sense, or asks for what must not be done.
    wrongUse = 1,
    /// A file could not be read or written, or the call was cancelled.
    fileFailed = 2,
    /// --fail-on asked for it, and there was such a loss.
    lossesFound = 3
};

/// The status of two files together: one that could not be read outweighs what was found in
/// another.
[[nodiscard]] ExitStatus worse(ExitStatus left, ExitStatus right) noexcept;

}  // namespace trellant::cli
