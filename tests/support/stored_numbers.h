// SPDX-License-Identifier: Apache-2.0
// Values of AAF out of their bytes, for the reader of the tests.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::testing {

/// Little-endian, at most eight bytes.
[[nodiscard]] std::uint64_t storedNumber(ByteView bytes);
/// The texts in UTF-16, each with a zero at its end, as UTF-8; nothing when the last has none.
[[nodiscard]] std::vector<std::string> storedTexts(ByteView bytes);
/// The first of them.
[[nodiscard]] std::string storedText(ByteView bytes);
/// "9d2ea894-0968-11d3-8a38-0050040ef7d2", from and to the stored bytes.
[[nodiscard]] std::string textOfAUID(ByteView bytes);
[[nodiscard]] Bytes storedAUID(std::string_view text);

}  // namespace trellant::testing
