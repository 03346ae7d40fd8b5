// SPDX-License-Identifier: Apache-2.0
// The real worker under limits, and what it cost.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::testing {

/// Sanitizers take memory of their own and much more time: limits of memory and statements about
/// it mean nothing then, and files are smaller.
inline constexpr bool sanitized = TRELLANT_SANITIZED != 0;

inline constexpr std::uint64_t kibibyte = 1024;
inline constexpr std::uint64_t mebibyte = 1'048'576;

struct BoundedRun {
    std::optional<int> status{};
    std::optional<int> signal{};
    /// The first `keptOutput` bytes of standard output.
    std::string output{};
    std::uint64_t outputBytes = 0;
    /// Events that the result has.
    std::uint64_t events = 0;
    std::string errors{};
    /// Most resident memory, in bytes.
    std::uint64_t peak = 0;
    /// Of processor time; for reports only.
    double seconds = 0;

    static constexpr std::uint64_t keptOutput = 16 * mebibyte;
};

/// Runs the worker with `request` on its standard input and at most `addressSpace` bytes, 0 for any
/// amount, in the control group of which `groupProcesses` is the list of processes, empty for the
/// test's own. More than a minute of processor time, where the worst file takes seconds, ends it by
/// a signal.
[[nodiscard]] BoundedRun runBounded(const std::string& request, std::uint64_t addressSpace,
                                    const std::string& groupProcesses = {});

}  // namespace trellant::testing
