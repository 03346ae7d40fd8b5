// SPDX-License-Identifier: Apache-2.0
// Values as they are stored: numbers little-endian, texts as UTF-16 with a zero at the end.
#pragma once

#include <trellant/aaf/identifiers.h>
#include <trellant/aaf/values.h>
#include <trellant/base/bytes.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trellant::aaf {

/// Collects the parts of a value, one behind the other.
class ValueBytes {
  public:
    ValueBytes& u8(std::uint8_t value) { return number(value, 1); }
    ValueBytes& u16(std::uint16_t value) { return number(value, 2); }
    ValueBytes& u32(std::uint32_t value) { return number(value, 4); }
    ValueBytes& u64(std::uint64_t value) { return number(value, 8); }
    ValueBytes& i64(std::int64_t value) { return u64(static_cast<std::uint64_t>(value)); }
    ValueBytes& boolean(bool value) { return u8(value ? 1 : 0); }
    ValueBytes& auid(const AUID& value) { return bytes(value.bytes); }
    ValueBytes& mobID(const MobID& value) { return bytes(value.bytes); }
    ValueBytes& rational(const Rational& value);
    ValueBytes& timeStamp(const TimeStamp& value);
    ValueBytes& productVersion(const ProductVersion& value);
    ValueBytes& bytes(ByteView value) {
        if (!large_.empty() || value.size() > small_.size() - size_) {
            return largeBytes(value);
        }
        std::copy(value.begin(), value.end(), small_.begin() + size_);
        size_ += static_cast<std::uint8_t>(value.size());
        return *this;
    }
    /// UTF-16 and a zero.
    ValueBytes& text(std::u16string_view value);

    [[nodiscard]] std::size_t size() const noexcept { return view().size(); }
    [[nodiscard]] ByteView view() const noexcept {
        return large_.empty() ? ByteView(small_).first(size_) : ByteView(large_);
    }

  private:
    ValueBytes& number(std::uint64_t value, std::size_t width) {
        std::array<std::byte, sizeof(value)> stored;
        for (std::size_t index = 0; index < stored.size(); ++index) {
            stored[index] = static_cast<std::byte>(value >> (8 * index));
        }
        return bytes(ByteView(stored).first(width));
    }

    ValueBytes& largeBytes(ByteView value);

    /// Most values are small, and there are many: they take nothing from the heap.
    std::array<std::byte, 120> small_;
    std::uint8_t size_ = 0;
    /// All of the value, once it is too long.
    Bytes large_;
};

}  // namespace trellant::aaf
