// SPDX-License-Identifier: Apache-2.0
// Descriptors that close themselves, and pipes made of them.
#pragma once

#include <utility>

namespace [[gnu::visibility("default")]] trellant {

/// An open file, pipe or socket of the system, or none.
class FileDescriptor {
  public:
    FileDescriptor() noexcept = default;
    /// Takes ownership; a negative number is none.
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    void close() noexcept;
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
    [[nodiscard]] int number() const noexcept { return number_; }

  private:
    int number_ = -1;
};

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

/// A pipe whose ends close on exec from birth, so that no other process started meanwhile holds
/// them open, and lie above the standard streams also in a host that closed its own. Throws
/// SystemCallError.
[[nodiscard]] Pipe makePipe();

/// Lets the pipe hold no more than this, where the system lets that be told: one read of as many
/// bytes then takes all that is there.
void limitCapacity(const FileDescriptor& end, int bytes) noexcept;

/// Reads and writes on this end return at once from now on; the other end stays as it is.
void makeNonBlocking(const FileDescriptor& descriptor) noexcept;

}  // namespace trellant
