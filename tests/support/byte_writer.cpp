// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdlib>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

unsigned hexDigit(char digit) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::size_t value = digits.find(digit);
    if (value == std::string_view::npos) {
        std::abort();
    }
    return static_cast<unsigned>(value);
}

}  // namespace

Bytes bytesOf(std::string_view text) {
    Bytes bytes(text.size());
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char character) { return static_cast<std::byte>(character); });
    return bytes;
}

Bytes hex(std::string_view digits) {
    Bytes bytes;
    for (std::size_t index = 0; index < digits.size();) {
        if (digits[index] == ' ') {
            ++index;
            continue;
        }
        bytes.push_back(
            static_cast<std::byte>(hexDigit(digits[index]) * 16 + hexDigit(digits.at(index + 1))));
        index += 2;
    }
    return bytes;
}

std::string textOf(ByteView bytes) {
    std::string text(bytes.size(), '\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

Bytes joined(std::initializer_list<ByteView> parts) {
    Bytes bytes;
    for (const ByteView part : parts) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

Bytes patternBytes(std::size_t count) {
    Bytes bytes(count);
    std::uint32_t state = 1;
    for (std::byte& byte : bytes) {
        state = state * 1'664'525U + 1'013'904'223U;
        byte = static_cast<std::byte>(state >> 24U);
    }
    return bytes;
}

void ByteWriter::number(std::uint64_t value, std::size_t width) {
    for (std::size_t index = 0; index < width; ++index) {
        const std::size_t place = order_ == OMFByteOrder::little ? index : width - 1 - index;
        bytes_.push_back(static_cast<std::byte>(value >> (8 * place)));
    }
}

ByteWriter& ByteWriter::u8(std::uint8_t value) {
    number(value, 1);
    return *this;
}

ByteWriter& ByteWriter::u16(std::uint16_t value) {
    number(value, 2);
    return *this;
}

ByteWriter& ByteWriter::u32(std::uint32_t value) {
    number(value, 4);
    return *this;
}

ByteWriter& ByteWriter::u64(std::uint64_t value) {
    number(value, 8);
    return *this;
}

ByteWriter& ByteWriter::bytes(ByteView value) {
    bytes_.insert(bytes_.end(), value.begin(), value.end());
    return *this;
}

ByteWriter& ByteWriter::text(std::string_view value) {
    return bytes(bytesOf(value));
}

ByteWriter& ByteWriter::zeros(std::size_t count) {
    bytes_.resize(bytes_.size() + count);
    return *this;
}

}  // namespace trellant::testing
