// SPDX-License-Identifier: Apache-2.0
// What must hold for every input.
#pragma once

#include <string_view>

namespace trellant::fuzzing {

/// Stops the process with `law` on standard error unless it holds, so that a fuzzer keeps the
/// input and a test that replays it fails.
void require(bool holds, std::string_view law);

}  // namespace trellant::fuzzing
