// SPDX-License-Identifier: Apache-2.0
// A file that is written from front to back, with a few numbers filled in later. Holds one buffer,
// whatever the size of the file.
#pragma once

#include <trellant/base/byte_order.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::bench {

/// `value` as `width` bytes, at most 8, in the byte order.
[[nodiscard]] std::string numberBytes(std::uint64_t value, std::size_t width, OMFByteOrder order);

class OutputFile {
  public:
    /// Creates the file or empties the one that stands there. Throws std::system_error, as every
    /// call here does when the system refuses.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    OutputFile(OutputFile&&) = delete;
    OutputFile& operator=(OutputFile&&) = delete;

    void append(std::string_view bytes);
    /// Writes over bytes that were appended before.
    void replace(std::uint64_t position, std::string_view bytes);
    /// Bytes appended so far.
    [[nodiscard]] std::uint64_t position() const noexcept { return written_ + buffer_.size(); }
    /// Hands the rest to the system; nothing may be appended after.
    void finish();

  private:
    void flush();
    void writeAt(std::uint64_t position, std::string_view bytes);

    std::string path_;
    int descriptor_ = -1;
    std::uint64_t written_ = 0;
    std::string buffer_;
};

}  // namespace trellant::bench
