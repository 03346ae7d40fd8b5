// SPDX-License-Identifier: Apache-2.0
// What the worker says of itself to people. Hosts start it without arguments.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace trellant {

/// The text for standard output when the only argument asks for it: "--help" or "--version". Any
/// other arguments change nothing, and a request is expected as ever.
[[nodiscard]] std::optional<std::string> askedOfWorker(std::span<char* const> arguments);

}  // namespace trellant
