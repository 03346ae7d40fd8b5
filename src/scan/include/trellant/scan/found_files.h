// SPDX-License-Identifier: Apache-2.0
// The files that a scan may have to read: named ones, all below folders, those of lists. What they
// are called says nothing about what they hold.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

/// A part of a scan, for machines that share one: shard `number` of `count`, from 1.
struct Shard {
    std::uint64_t number = 1;
    std::uint64_t count = 1;

    /// Whether the file is one of this shard: by a hash of its path that never changes, so that
    /// every machine and every later call thinks the same.
    [[nodiscard]] bool holds(std::string_view path) const noexcept;
};

struct FoundFile {
    /// Absolute, without "." and "..".
    std::string path{};
    std::uint64_t size = 0;
    /// Nanoseconds since 1970-01-01 00:00:00 UTC.
    std::int64_t modified = 0;
    /// It was named itself, and is not there or no regular file: why.
    std::string failure{};
};

struct FindingPlaces {
    /// Files and folders, links to them followed.
    std::vector<std::string> paths{};
    /// Files that hold a path on each line; "-" is standard input.
    std::vector<std::string> lists{};
    Shard shard{};
};

/// What a search tells on its way. All are called on the thread that searches; what they throw ends
/// the search.
struct FindingCalls {
    std::function<void(FoundFile)> file{};
    /// A folder or list that cannot be read: its path, and why.
    std::function<void(const std::string& path, const std::string& why)> failure{};
    /// An entry of a folder or list was looked at, whatever it is.
    std::function<void()> looked{};
};

/// Tells of every file once for each place that leads there, one by one: nothing is gathered.
/// Within folders links are passed over. Lines of a list end with a line feed; empty ones are
/// passed over, one of more than 64 KiB is a failure of the list.
void findFiles(const FindingPlaces& places, const FindingCalls& calls);

/// How many entries `findFiles` will look at, without a look at any of them; `stopped` may throw.
[[nodiscard]] std::uint64_t countEntries(const FindingPlaces& places,
                                         const std::function<void()>& stopped);

}  // namespace scan
}  // namespace trellant
