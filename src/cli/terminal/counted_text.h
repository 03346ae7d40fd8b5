// SPDX-License-Identifier: Apache-2.0
// Counts and sizes as people read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::cli {

/// "1,234,567".
[[nodiscard]] std::string countedText(std::uint64_t count);

/// "1 clip", "2 clips".
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view one,
                                  std::string_view several);

/// "999 bytes", "1.2 kB", "34.5 GB": powers of a thousand, cut and not rounded.
[[nodiscard]] std::string bytesText(std::uint64_t bytes);

}  // namespace trellant::cli
