// SPDX-License-Identifier: Apache-2.0
// A file that exists in memory only: the program opens files by path, and a disk would make each
// input cost a thousand times what its reading does.
#pragma once

#include <trellant/io/byte_readers.h>

#include <string>

namespace trellant::fuzzing {

class MemoryFile {
  public:
    /// Holds `bytes`. Throws std::system_error.
    explicit MemoryFile(ByteView bytes);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    MemoryFile(MemoryFile&&) = delete;
    MemoryFile& operator=(MemoryFile&&) = delete;

    /// Of this process, as long as this lives.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    int descriptor_;
    std::string path_;
};

}  // namespace trellant::fuzzing
