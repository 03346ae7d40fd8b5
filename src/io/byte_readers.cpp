// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/byte_load.h>
#include <trellant/base/text.h>
#include <trellant/io/byte_readers.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <string_view>

namespace trellant {

namespace {

template <typename Unsigned>
Unsigned checkedLoad(ByteView bytes, std::int64_t offset, OMFByteOrder order,
                     std::string_view name) {
    // A negative offset becomes a huge one and fails the same comparison.
    const auto start = static_cast<std::uint64_t>(offset);
    if (start > bytes.size() || bytes.size() - start < sizeof(Unsigned)) {
        throw OMFIOError::malformed(std::string(name) + " beyond buffer");
    }
    return loadUnsigned<Unsigned>(bytes.data() + start, order);
}

}  // namespace

std::uint16_t u16(ByteView bytes, std::int64_t offset, OMFByteOrder order) {
    return checkedLoad<std::uint16_t>(bytes, offset, order, "u16");
}

std::uint32_t u32(ByteView bytes, std::int64_t offset, OMFByteOrder order) {
    return checkedLoad<std::uint32_t>(bytes, offset, order, "u32");
}

std::uint64_t u64(ByteView bytes, std::int64_t offset, OMFByteOrder order) {
    return checkedLoad<std::uint64_t>(bytes, offset, order, "u64");
}

std::int32_t i32(ByteView bytes, std::int64_t offset, OMFByteOrder order) {
    return static_cast<std::int32_t>(u32(bytes, offset, order));
}

std::int64_t i64(ByteView bytes, std::int64_t offset, OMFByteOrder order) {
    return static_cast<std::int64_t>(u64(bytes, offset, order));
}

std::string asciiCString(ByteView bytes) {
    std::string text;
    const auto end = std::find(bytes.begin(), bytes.end(), std::byte{0});
    text.resize(static_cast<std::size_t>(end - bytes.begin()));
    std::transform(bytes.begin(), end, text.begin(),
                   [](std::byte byte) { return static_cast<char>(byte); });
    return isValidUTF8(text) ? text : fromLatin1(bytes.first(text.size()));
}

}  // namespace trellant
