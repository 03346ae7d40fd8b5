// SPDX-License-Identifier: Apache-2.0
// The file on its way out: numbers and texts in little-endian form, short pieces gathered, the
// sector that nothing may use left out.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/compound/byte_source.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trellant::compound {

class Output {
  public:
    explicit Output(const ByteSink& sink);

    void u8(std::uint8_t value) { number(value, 1); }
    void u16(std::uint16_t value) { number(value, 2); }
    void u32(std::uint32_t value) { number(value, 4); }
    void u64(std::uint64_t value) { number(value, 8); }
    /// Two bytes for each unit.
    void text(std::u16string_view units);
    void bytes(ByteView bytes);
    void fill(std::byte value, std::uint64_t count);
    /// Up to the next multiple of `unit` from the file's start.
    void fillUnit(std::byte value, std::uint64_t unit);
    /// To be called at the end.
    void flush();

  private:
    void number(std::uint64_t value, std::size_t width);
    void append(ByteView bytes);

    const ByteSink& sink_;
    Bytes gathered_;
    std::uint64_t position_ = 0;
};

}  // namespace trellant::compound
