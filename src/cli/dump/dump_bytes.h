// SPDX-License-Identifier: Apache-2.0
// Bytes of a value in words, by what they mean.
#pragma once

#include "dump_value_kind.h"

#include <trellant/io/byte_readers.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// Bytes of the longest value that stands in its line as hexadecimal, and of a row of a listing.
inline constexpr std::size_t hexRowBytes = 16;

/// "52 49 46 46".
[[nodiscard]] std::string hexText(ByteView bytes);
/// "52 49 46 46  |RIFF|".
[[nodiscard]] std::string hexAndText(ByteView bytes);
/// Rows of "00000010  52 ... 46  |RI...|", offsets from the first byte.
[[nodiscard]] std::vector<std::string> hexListing(ByteView bytes);

/// A whole value of a kind that fills one line and names no object; absent for other kinds, and
/// when the value is not as long as its kind asks.
[[nodiscard]] std::optional<std::string> plainText(ValueKind kind, ByteView bytes,
                                                   OMFByteOrder order);

/// A text as the object model's reader decodes it, for a terminal.
[[nodiscard]] std::string storedText(ByteView bytes, OMFByteOrder order);

}  // namespace trellant::cli
