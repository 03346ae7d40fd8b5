// SPDX-License-Identifier: Apache-2.0
// A file looked at from front to back through a buffer: no byte is read twice, and what is skipped
// is not read.
#pragma once

#include <trellant/io/random_access_file.h>

#include <cstddef>
#include <cstdint>

namespace trellant::salvage {

class ForwardWindow {
  public:
    /// `file` must outlive this.
    explicit ForwardWindow(const RandomAccessFile& file) : file_(file), buffer_(bufferBytes) {}

    /// What stands at byte `position` and behind it: at least `count` bytes (at most 64 KiB), fewer
    /// only where the file ends. `position` is never before that of an earlier call. The view holds
    /// until the next call.
    [[nodiscard]] ByteView at(std::uint64_t position, std::size_t count);

  private:
    static constexpr std::size_t bufferBytes = 262'144;

    const RandomAccessFile& file_;
    Bytes buffer_;
    /// The byte of the file that the buffer begins with, and how many of its bytes are filled.
    std::uint64_t begin_ = 0;
    std::size_t filled_ = 0;
};

}  // namespace trellant::salvage
