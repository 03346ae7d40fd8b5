// SPDX-License-Identifier: Apache-2.0
// What rules are told of a file as a whole.
#pragma once

#include <trellant/check/checked_hand_off.h>

#include <string>

namespace trellant::cli {

/// Of a file that was read; its size is 0 where the system does not say it any more.
[[nodiscard]] check::FileFacts factsOf(const std::string& file);

}  // namespace trellant::cli
