// SPDX-License-Identifier: Apache-2.0
#include "value_bytes.h"

namespace trellant::aaf {

ValueBytes& ValueBytes::rational(const Rational& value) {
    return u32(static_cast<std::uint32_t>(value.numerator))
        .u32(static_cast<std::uint32_t>(value.denominator));
}

ValueBytes& ValueBytes::timeStamp(const TimeStamp& value) {
    return u16(static_cast<std::uint16_t>(value.year))
        .u8(value.month)
        .u8(value.day)
        .u8(value.hour)
        .u8(value.minute)
        .u8(value.second)
        .u8(value.fraction);
}

ValueBytes& ValueBytes::productVersion(const ProductVersion& value) {
    return u16(value.major)
        .u16(value.minor)
        .u16(value.tertiary)
        .u16(value.patchLevel)
        .u8(static_cast<std::uint8_t>(value.type));
}

ValueBytes& ValueBytes::largeBytes(ByteView value) {
    if (large_.empty()) {
        large_.assign(small_.begin(), small_.begin() + size_);
    }
    large_.insert(large_.end(), value.begin(), value.end());
    return *this;
}

ValueBytes& ValueBytes::text(std::u16string_view value) {
    for (const char16_t unit : value) {
        u16(unit);
    }
    return u16(0);
}

}  // namespace trellant::aaf
