// SPDX-License-Identifier: Apache-2.0
// Programming errors stop the process: they are told apart from data errors, which are typed and
// reported. Always on, in release builds too.
#pragma once

namespace [[gnu::visibility("default")]] trellant {

/// Writes "precondition failed: MESSAGE" to standard error and aborts.
[[noreturn]] void preconditionFailure(const char* message) noexcept;

/// Stops the process with `message` unless `condition` holds.
inline void precondition(bool condition, const char* message) noexcept {
    if (!condition) {
        preconditionFailure(message);
    }
}

}  // namespace trellant
