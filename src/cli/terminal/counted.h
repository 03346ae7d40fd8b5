// SPDX-License-Identifier: Apache-2.0
// A number with its noun.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::cli {

/// "1 clip", "2 clips".
[[nodiscard]] inline std::string counted(std::uint64_t count, std::string_view one,
                                         std::string_view several) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : several);
}

}  // namespace trellant::cli
