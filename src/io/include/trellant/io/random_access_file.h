// SPDX-License-Identifier: Apache-2.0
// One input file, read at given places. Only this file and the copy beside it do input.
#pragma once

#include <trellant/io/bento_types.h>
#include <trellant/io/byte_readers.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Owns the open file. Reading is safe from several threads.
class RandomAccessFile {
  public:
    /// Opens `path` (bytes as the system knows them) for reading; never waits for a pipe's other
    /// end. Throws FileSystemError; a folder is refused, a NUL in the path too.
    explicit RandomAccessFile(std::string path);
    ~RandomAccessFile();
    RandomAccessFile(const RandomAccessFile&) = delete;
    RandomAccessFile& operator=(const RandomAccessFile&) = delete;
    RandomAccessFile(RandomAccessFile&&) = delete;
    RandomAccessFile& operator=(RandomAccessFile&&) = delete;

    /// As given to the constructor.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// Bytes, taken once when the file was opened; 0 for what is no regular file.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// Exactly `count` bytes from byte `offset`; safe from several threads. Throws OMFIOError:
    /// malformed for a negative count, outOfBounds when the range leaves the file as it was when
    /// opened (before anything is allocated), shortRead when the file has since shrunk; and
    /// FileSystemError when the system fails to read.
    [[nodiscard]] Bytes read(std::uint64_t offset, std::int64_t count) const;
    /// The same into the caller's buffer, filling it.
    void read(std::uint64_t offset, std::span<std::byte> into) const;

    /// Reads what is there, at most `into.size()` bytes from `offset`, and says how many came;
    /// fewer at the end of the file or when the system fails. Never throws.
    [[nodiscard]] std::size_t readAvailable(std::uint64_t offset,
                                            std::span<std::byte> into) const noexcept;

    /// Writes the bytes of `segments`, in order, into a new file at `destination` (bytes as the
    /// system knows them). What stands there is replaced, a link never followed, and this file
    /// itself refused. Ranges go out in chunks of at most 4 MiB, reference lists as nothing. Throws
    /// as `read` does for each chunk, and FileSystemError for the destination; a failure leaves the
    /// partly written file.
    void copy(std::span<const BentoValueSegment> segments, const std::string& destination) const;

    /// The same for segments that are not all at hand: `next` gives one after the other, and
    /// nothing after the last.
    using NextSegment = std::function<std::optional<BentoValueSegment>()>;
    void copy(const NextSegment& next, const std::string& destination) const;

    /// How often the system was asked to read, for tests of linear work.
    [[nodiscard]] std::uint64_t readCalls() const noexcept { return readCalls_; }

  private:
    std::string path_;
    int descriptor_ = -1;
    std::uint64_t size_ = 0;
    mutable std::atomic<std::uint64_t> readCalls_{0};
};

}  // namespace trellant
