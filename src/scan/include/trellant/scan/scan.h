// SPDX-License-Identifier: Apache-2.0
// A scan: all files that are found, each read by a worker of its own, as many at a time as there
// are jobs, their rows appended to a shard. The memory that this takes does not grow with the
// number of files but by 16 bytes for each row that was there before.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/scan/file_reader.h>
#include <trellant/scan/found_files.h>
#include <trellant/scan/row.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

/// Which files are read although the shard has a row of them, of equal path, size, time and
/// program.
enum class Again {
    never,
    /// Those that could not be read.
    failed,
    all
};

struct ScanRequest {
    FindingPlaces places{};
    std::string shardPath{};
    /// Files that are read at once; at least 1.
    unsigned jobs = 1;
    Again again = Again::never;
    ReadingOptions reading{};
    /// Counts what there is to look at meanwhile, for the time that is left.
    bool countsAhead = false;
};

/// What was done by now.
struct ScanTotals {
    /// By FileStatus: rows that were added.
    std::array<std::uint64_t, 6> rows{};
    /// Bytes of the files that they are of.
    std::uint64_t bytes = 0;
    /// Files that had a row already, and files that are no OMF files.
    std::uint64_t known = 0;
    std::uint64_t others = 0;
    /// Folders and lists that could not be read, and files that nobody had memory for.
    std::uint64_t failures = 0;
    /// Entries of folders and lists that were looked at, and how many there are; absent until that
    /// is known.
    std::uint64_t looked = 0;
    std::optional<std::uint64_t> entries{};
    std::chrono::duration<double> time{};

    [[nodiscard]] std::uint64_t added() const noexcept;
    [[nodiscard]] std::uint64_t inStatus(FileStatus status) const {
        return rows.at(static_cast<std::size_t>(status));
    }
};

struct ScanCalls {
    /// About ten times a second, on the thread that runs the scan.
    std::function<void(const ScanTotals&)> progress{};
    /// One thing that could not be looked at: path and reason. On the thread that runs the scan.
    std::function<void(const std::string& path, const std::string& why)> failure{};
};

/// Runs a scan to its end, or until `stop`: then rows of what was read are in the shard all the
/// same, and AAFCancellationError is thrown. Throws ShardError for a shard that cannot be used, and
/// AAFWorkerClientError where there is no worker.
[[nodiscard]] ScanTotals runScan(const ScanRequest& request, const ScanCalls& calls,
                                 const StopToken& stop);

}  // namespace scan
}  // namespace trellant
