// SPDX-License-Identifier: Apache-2.0
// `trellant scan`: a row for every OMF file that is found.
#pragma once

#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/scan/scan.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct ScanCall {
    /// Files and folders.
    std::vector<std::string> paths;
    std::vector<std::string> lists;
    /// "3/8"; empty: all.
    std::string shard;
    std::string output;
    /// 0: as many as there are cores.
    std::uint32_t jobs = 0;
    bool hashes = true;
    scan::Again again = scan::Again::never;
    bool refresh = false;
    std::uint32_t timeLimitSeconds = 300;
    /// Absent: by the size of each file.
    std::optional<std::uint32_t> memoryLimitMebibytes;
    /// A name or a file; absent: files are held against no rules.
    std::optional<std::string> profile;
    bool strict = false;
};

/// `provider` finds the worker.
[[nodiscard]] ExitStatus runScanCall(const ScanCall& call, Console& console, const StopToken& stop,
                                     AAFWorkerClient::HelperURLProvider provider = installedWorker);

/// "3/8": the third of eight; absent for what is no such text.
[[nodiscard]] std::optional<scan::Shard> shardOf(const std::string& text);

/// "1,234 files, 1.2 GB, 230 files a second, 3 minutes left", and how far it is, from 0 to 1.
struct ScanProgressLine {
    double fraction = 0;
    std::string text{};
};
[[nodiscard]] ScanProgressLine progressLineOf(const scan::ScanTotals& totals);

/// "1,234 files in 5.4 s (230 a second, 1.2 GB): 1,230 read, 4 damaged; ..."
[[nodiscard]] std::string summaryOf(const scan::ScanTotals& totals);

}  // namespace trellant::cli
