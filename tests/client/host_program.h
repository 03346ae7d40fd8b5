// SPDX-License-Identifier: Apache-2.0
// Small programs that stand for a host, run to their end.
#pragma once

#include <string>
#include <vector>

namespace trellant::testing {

/// What it wrote to standard output; "ended with ..." when it did not end well. `environment` holds
/// NAME=VALUE, and nothing else of the test's environment reaches the program.
[[nodiscard]] std::string outputOfProgram(const std::vector<std::string>& commandLine,
                                          const std::vector<std::string>& environment = {});

}  // namespace trellant::testing
