// SPDX-License-Identifier: Apache-2.0
#include "check/named_profile.h"
#include "scan.h"
#include "terminal/interrupts.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/client/errors.h>
#include <trellant/scan/shard_file.h>

#include <algorithm>
#include <charconv>
#include <system_error>
#include <thread>
#include <utility>

namespace trellant::cli {

namespace {

constexpr std::uint64_t mostShards = 1'000'000;

std::optional<std::uint64_t> wholeNumber(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                      : std::nullopt;
}

unsigned jobsOf(const ScanCall& call) {
    return call.jobs > 0 ? call.jobs : std::max(std::thread::hardware_concurrency(), 1U);
}

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const ScanCall& call) {
    if (call.paths.empty() && call.lists.empty()) {
        return "scan needs files or folders, or a list of them (--list)";
    }
    if (call.refresh && call.again == scan::Again::failed) {
        return "--refresh reads all files again, those that failed too: leave --retry out";
    }
    if (!call.shard.empty() && !shardOf(call.shard)) {
        return "--shard takes I/N, part I of N parts, such as 3/8, not \"" +
               printableText(call.shard) + "\"";
    }
    if (std::count(call.lists.begin(), call.lists.end(), "-") > 1) {
        return "standard input can be read as a list only once";
    }
    return std::nullopt;
}

scan::ScanRequest requestOf(const ScanCall& call, const check::Profile* profile,
                            AAFWorkerClient::HelperURLProvider provider) {
    constexpr std::uint64_t mebibyte = 1'048'576;
    scan::ScanRequest request{.places = {.paths = call.paths, .lists = call.lists},
                              .shardPath = call.output,
                              .jobs = jobsOf(call),
                              .again = call.refresh ? scan::Again::all : call.again};
    request.places.shard = call.shard.empty() ? scan::Shard() : shardOf(call.shard).value();
    request.reading.hashes = call.hashes;
    request.reading.timeLimit = std::chrono::seconds(call.timeLimitSeconds);
    if (call.memoryLimitMebibytes) {
        request.reading.memoryLimit = *call.memoryLimitMebibytes * mebibyte;
    }
    request.reading.profile = profile;
    request.reading.helperURLProvider = std::move(provider);
    return request;
}

ExitStatus verdictOn(const scan::ScanTotals& totals, const ScanCall& call) {
    if (totals.failures > 0) {
        return ExitStatus::fileFailed;
    }
    const bool allRead = totals.added() == totals.inStatus(scan::FileStatus::ok);
    return call.strict && !allRead ? ExitStatus::fileFailed : ExitStatus::done;
}

}  // namespace

std::optional<scan::Shard> shardOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) {
        return std::nullopt;
    }
    const auto number = wholeNumber(std::string_view(text).substr(0, slash));
    const auto count = wholeNumber(std::string_view(text).substr(slash + 1));
    if (!number || !count || *number < 1 || *number > *count || *count > mostShards) {
        return std::nullopt;
    }
    return scan::Shard{.number = *number, .count = *count};
}

ExitStatus runScanCall(const ScanCall& call, Console& console, const StopToken& stop,
                       AAFWorkerClient::HelperURLProvider provider) {
    if (const auto message = wrongUse(call)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    std::optional<check::Profile> profile;
    try {
        if (call.profile) {
            profile = namedProfile(*call.profile);
        }
    } catch (const check::ProfileError& error) {
        console.error(error.what());
        return ExitStatus::wrongUse;
    }
    scan::ScanRequest request = requestOf(call, profile ? &*profile : nullptr, std::move(provider));
    request.countsAhead = console.hasBar();
    const Cancellable heeded;
    try {
        const scan::ScanTotals totals =
            scan::runScan(request,
                          {.progress =
                               [&console](const scan::ScanTotals& now) {
                                   const ScanProgressLine line = progressLineOf(now);
                                   console.bar(line.fraction, line.text);
                               },
                           .failure =
                               [&console](const std::string& path, const std::string& why) {
                                   console.error(printablePath(path) + ": " + why);
                               }},
                          stop);
        console.endBar();
        console.note(summaryOf(totals));
        return verdictOn(totals, call);
    } catch (const scan::ShardError& error) {
        console.endBar();
        console.error(printablePath(call.output) + ": the shard " + error.what());
    } catch (const AAFCancellationError&) {
        console.endBar();
        console.error("cancelled; the same call goes on from here");
    } catch (const AAFWorkerClientError& error) {
        console.endBar();
        console.error(error.technicalDetail());
    }
    return ExitStatus::fileFailed;
}

}  // namespace trellant::cli
