// SPDX-License-Identifier: Apache-2.0
// The date of what is written, where somebody has named one.
#pragma once

#include <cstdint>
#include <optional>

namespace trellant::cli {

/// The date that builds which are to come out the same agree on (SOURCE_DATE_EPOCH, seconds since
/// 1970), when it is set and a number.
[[nodiscard]] std::optional<std::int64_t> agreedDate();

}  // namespace trellant::cli
