// SPDX-License-Identifier: Apache-2.0
// A shard: the file that a scan appends its rows to, a line each. Whatever ends the process, it
// holds whole rows and at most the torn front of one, which is cut off when it is opened again.
#pragma once

#include <trellant/base/file_descriptor.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/scan/found_files.h>
#include <trellant/scan/row.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

/// The shard cannot be used; what() is one line for people, without the shard's name.
class ShardError final : public std::exception {
  public:
    explicit ShardError(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// Which rows there are, 16 bytes each: by a keyed hash of path, size, time and program.
class DoneRows {
  public:
    enum class State { absent, done, failed };

    void add(const ScanRowKey& key);
    /// To be called between adding and asking; of equal rows the last one added counts.
    void settle();
    [[nodiscard]] State of(const FoundFile& file) const;
    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }

  private:
    /// The second number's lowest bit says that the file could not be read.
    using Entry = std::array<std::uint64_t, 2>;

    [[nodiscard]] Entry hashed(std::string_view path, std::uint64_t size, std::string_view modified,
                               std::string_view program) const;

    std::vector<Entry> entries_;
};

/// Calls `take` with each whole line of a shard from `descriptor`'s place on, without its line
/// feed, and the place behind it. Throws ShardError for a failed read and a line that is longer
/// than any row.
void eachRowLine(int descriptor,
                 const std::function<void(std::string_view line, std::uint64_t end)>& take);

class ShardFile {
  public:
    /// Opens or makes the shard and holds it alone. What is behind its last whole row is cut off;
    /// a file that holds something else is refused and stays as it is. Each row is told to `done`.
    /// Throws ShardError.
    ShardFile(const std::string& path, DoneRows& done);
    ~ShardFile() = default;
    ShardFile(const ShardFile&) = delete;
    ShardFile& operator=(const ShardFile&) = delete;
    ShardFile(ShardFile&&) = delete;
    ShardFile& operator=(ShardFile&&) = delete;

    /// Gathers a row; a full or old batch is written. Throws ShardError.
    void add(std::string_view line);
    /// Writes a batch that is old. Throws as flush does.
    void flushOld();
    /// Writes what was gathered and waits until the disk has it. Throws ShardError; what could not
    /// be written whole is taken away again.
    void flush();
    /// Device and number of the file, so that a scan does not read what it writes.
    [[nodiscard]] bool isAt(const std::string& path) const;

  private:
    [[nodiscard]] std::uint64_t readRows(DoneRows& done) const;

    FileDescriptor file_;
    std::uint64_t end_ = 0;
    std::string batch_;
    std::chrono::steady_clock::time_point batchBegan_{};
};

/// "2026-11-22T22:38:42.123456789Z", from nanoseconds since 1970-01-01 00:00:00 UTC.
[[nodiscard]] std::string timeText(std::int64_t nanoseconds);

}  // namespace scan
}  // namespace trellant
