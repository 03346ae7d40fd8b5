// SPDX-License-Identifier: Apache-2.0
// A program that does one thing with files and says on standard error why it could not.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace trellant {

/// How a program ended.
struct ProgramEnd {
    /// Exit status; negative: the signal that ended it.
    int status = 0;
    /// The head of what it said on standard error.
    std::string errors{};
};

/// Runs a program to its end. It starts with signals as a fresh program meets them, in a process
/// group of its own, without input or output and with no open file of ours. `whileWaiting` is
/// called some ten times a second; when it throws, the program is ended and the exception goes on.
/// Throws FileSystemError when the program does not start.
[[nodiscard]] ProgramEnd runProgram(const std::vector<std::string>& commandLine,
                                    const std::function<void()>& whileWaiting);

}  // namespace trellant
