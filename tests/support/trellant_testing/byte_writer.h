// SPDX-License-Identifier: Apache-2.0
// Bytes of fixtures, written as a reader of the format would name them.
#pragma once

#include <trellant/base/byte_order.h>
#include <trellant/io/byte_readers.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace trellant::testing {

/// The bytes of `text`, without a closing zero.
[[nodiscard]] Bytes bytesOf(std::string_view text);
/// The bytes that pairs of hexadecimal digits name; blanks between pairs are free: "A4 43 4D A5".
[[nodiscard]] Bytes hex(std::string_view digits);
[[nodiscard]] std::string textOf(ByteView bytes);
/// `parts` one after the other.
[[nodiscard]] Bytes joined(std::initializer_list<ByteView> parts);
/// `count` bytes that differ from their neighbours and from those a power of two away, so that a
/// wrong offset shows.
[[nodiscard]] Bytes patternBytes(std::size_t count);

class ByteWriter {
  public:
    explicit ByteWriter(OMFByteOrder order) : order_(order) {}

    ByteWriter& u8(std::uint8_t value);
    ByteWriter& u16(std::uint16_t value);
    ByteWriter& u32(std::uint32_t value);
    ByteWriter& u64(std::uint64_t value);
    ByteWriter& bytes(ByteView value);
    ByteWriter& text(std::string_view value);
    ByteWriter& zeros(std::size_t count);

    [[nodiscard]] OMFByteOrder order() const noexcept { return order_; }
    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
    [[nodiscard]] const Bytes& written() const noexcept { return bytes_; }

  private:
    void number(std::uint64_t value, std::size_t width);

    OMFByteOrder order_;
    Bytes bytes_;
};

}  // namespace trellant::testing
