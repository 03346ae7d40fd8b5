// SPDX-License-Identifier: Apache-2.0
// The file on its way out: numbers in little-endian form, short pieces gathered, the
// sector that nothing may use left out.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/compound/byte_source.h>

#include <cstddef>
#include <cstdint>

namespace trellant::compound {

/// What stands where nothing is said.
enum class Padding { zeros, ones };

class Output {
  public:
    explicit Output(const ByteSink& sink);

    void u16(std::uint16_t value) { number(value, 2); }
    void u32(std::uint32_t value) { number(value, 4); }
    void u64(std::uint64_t value) { number(value, 8); }
    void bytes(ByteView bytes);
    void fill(Padding padding, std::uint64_t count);
    /// Up to the next multiple of `unit` from the file's start.
    void fillUnit(Padding padding, std::uint64_t unit);
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
