// SPDX-License-Identifier: Apache-2.0
// What the converter has written, taken into memory.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::listening {

/// The bytes of the file at `path`, which is gone afterwards. Absent when it cannot be read or is
/// larger than `mostBytes`.
[[nodiscard]] std::optional<Bytes> takenFile(const std::string& path, std::uint64_t mostBytes);

}  // namespace trellant::listening
