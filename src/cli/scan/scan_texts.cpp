// SPDX-License-Identifier: Apache-2.0
// What a person is told while a scan runs and when it is done.
#include "scan.h"
#include "terminal/counted_text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace trellant::cli {

namespace {

using scan::FileStatus;
using scan::ScanTotals;

constexpr std::array<std::pair<FileStatus, std::string_view>, 6> statusTexts{
    {{FileStatus::ok, "read"},
     {FileStatus::damaged, "damaged"},
     {FileStatus::omf1, "OMF 1"},
     {FileStatus::refused, "refused"},
     {FileStatus::timeout, "beyond the time limit"},
     {FileStatus::memory, "beyond the memory limit"}}};

std::string timeLeft(double seconds) {
    constexpr double minute = 60;
    constexpr double hour = 3'600;
    if (seconds < 2 * minute) {
        return countedText(static_cast<std::uint64_t>(seconds)) + " s left";
    }
    if (seconds < 2 * hour) {
        return countedText(static_cast<std::uint64_t>(seconds / minute)) + " minutes left";
    }
    return countedText(static_cast<std::uint64_t>(seconds / hour)) + " hours left";
}

std::uint64_t rateOf(const ScanTotals& totals) {
    const double seconds = std::max(totals.time.count(), 0.001);
    return static_cast<std::uint64_t>(static_cast<double>(totals.added()) / seconds);
}

std::string filesText(std::uint64_t count) {
    return countedText(count) + (count == 1 ? " file" : " files");
}

}  // namespace

ScanProgressLine progressLineOf(const ScanTotals& totals) {
    ScanProgressLine line;
    line.text = filesText(totals.added()) + ", " + bytesText(totals.bytes) + ", " +
                countedText(rateOf(totals)) + " a second";
    if (totals.entries && *totals.entries > 0 && totals.looked > 0) {
        const auto entries = static_cast<double>(*totals.entries);
        line.fraction = std::min(static_cast<double>(totals.looked) / entries, 1.0);
        const double rest = (1.0 - line.fraction) / line.fraction * totals.time.count();
        line.text += ", " + timeLeft(rest);
    }
    return line;
}

std::string summaryOf(const ScanTotals& totals) {
    constexpr double tenths = 10;
    const auto tenthsOfSeconds = static_cast<std::uint64_t>(totals.time.count() * tenths);
    std::string text = filesText(totals.added()) + " in " + countedText(tenthsOfSeconds / 10) +
                       "." + std::to_string(tenthsOfSeconds % 10) + " s (" +
                       countedText(rateOf(totals)) + " a second, " + bytesText(totals.bytes) + ")";
    std::string_view separator = ": ";
    for (const auto& [status, word] : statusTexts) {
        if (const std::uint64_t count = totals.inStatus(status); count > 0) {
            text.append(separator).append(countedText(count)).append(" ").append(word);
            separator = ", ";
        }
    }
    const auto add = [&text](std::uint64_t count, std::string_view what) {
        if (count > 0) {
            text.append("; ").append(filesText(count)).append(what);
        }
    };
    add(totals.known, " had a row already");
    add(totals.others, " without OMF in them");
    return text;
}

}  // namespace trellant::cli
