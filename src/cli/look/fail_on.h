// SPDX-License-Identifier: Apache-2.0
// Which losses a script wants to stop at.
#pragma once

namespace trellant::cli {

/// Which losses make a command end with ExitStatus::lossesFound.
enum class FailOn {
    nothing,
    /// An audio file was not found.
    missing,
    /// Something was kept that does not sound as meant.
    render,
    /// Any of both, or anything dropped.
    any
};

}  // namespace trellant::cli
