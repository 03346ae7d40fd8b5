// SPDX-License-Identifier: Apache-2.0
// A little-endian container written piece by piece: it begins as a small document does and goes on
// with what a test adds, so that one of any size takes little memory to write. First the values,
// then the table's tokens, then finish().
#pragma once

#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <trellant_testing/container_image.h>

namespace trellant::testing {

/// Properties whose values name the object that carries them.
inline constexpr std::uint32_t typeNameProperty = 23;
inline constexpr std::uint32_t propertyNameProperty = 24;

class GrowingFile {
  public:
    /// A container that holds nothing yet.
    explicit GrowingFile(const std::string& path);
    GrowingFile(const std::string& path, const ContainerImage& beginning);

    /// Value bytes; gives their offset.
    std::uint64_t value(std::string_view bytes);
    /// `count` zero bytes that take no room on the disk.
    std::uint64_t zeros(std::uint64_t count);

    // Tokens of the table, which begins with the first: of 13, 9, 1, 5, 5 and 9 bytes
    void object(std::uint32_t object, std::uint32_t property);
    void property(std::uint32_t property);
    void emptyImmediate() { put("\x09"); }
    void immediate(std::string_view fourBytes);
    void byte(char value);
    void range(std::uint64_t offset, std::uint64_t length);
    /// The same byte again and again: tokens of one byte.
    void fill(unsigned char token, std::uint64_t count);

    /// Bytes of the table so far, at least one token.
    [[nodiscard]] std::uint64_t tableBytes() const noexcept { return position_ - tableStart_; }
    void finish();

  private:
    void put(std::string_view bytes);
    void putNumber(std::uint32_t value);
    void beginTable();
    void flush();

    std::ofstream file_;
    std::string pending_;
    std::uint64_t position_ = 0;
    std::uint64_t tableStart_ = 0;
    std::string tableBeginning_;
    bool inTable_ = false;
};

}  // namespace trellant::testing
