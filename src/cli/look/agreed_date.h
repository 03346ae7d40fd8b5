// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

namespace trellant::cli {

/// The date that builds which are to come out the same agree on, when SOURCE_DATE_EPOCH has it:
/// seconds since 1970-01-01 00:00:00 UTC.
[[nodiscard]] std::optional<std::int64_t> agreedDate();

}  // namespace trellant::cli
