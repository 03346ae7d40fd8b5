// SPDX-License-Identifier: Apache-2.0
// Integers and text in a buffer of bytes. Every read is checked against the buffer.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// The number at `offset` (bytes from the buffer's first). Throws OMFIOError malformed
/// ("u16 beyond buffer", "u32 ...", "u64 ...") unless it lies wholly inside the buffer.
[[nodiscard]] std::uint16_t u16(ByteView bytes, std::int64_t offset, OMFByteOrder order);
[[nodiscard]] std::uint32_t u32(ByteView bytes, std::int64_t offset, OMFByteOrder order);
[[nodiscard]] std::uint64_t u64(ByteView bytes, std::int64_t offset, OMFByteOrder order);
/// The same bits as a signed number, with the unsigned reader's error.
[[nodiscard]] std::int32_t i32(ByteView bytes, std::int64_t offset, OMFByteOrder order);
[[nodiscard]] std::int64_t i64(ByteView bytes, std::int64_t offset, OMFByteOrder order);

/// The text up to the first zero byte, as UTF-8, else as ISO Latin 1. Always valid UTF-8.
[[nodiscard]] std::string asciiCString(ByteView bytes);

}  // namespace trellant
