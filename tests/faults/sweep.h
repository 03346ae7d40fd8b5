// SPDX-License-Identifier: Apache-2.0
// A request served again and again, each time with another of its system calls failing.
#pragma once

#include "fault_rules.h"

#include <functional>
#include <string>

namespace trellant::testing {

struct SweepStart {
    std::string operation{};
    /// Readies the scene's folder before each run.
    std::function<void(const Scene&)> arrange{};
    /// Happens in every run, the undisturbed one too.
    Director always{};
};

struct SweepCount {
    std::size_t calls = 0;
    std::size_t faults = 0;
    std::map<CallKind, std::size_t> ofKind{};
};

/// Runs the request once undisturbed, then once for each call and each errno value that makes
/// sense in it, and expects of every run what the rules allow.
SweepCount sweep(const Scene& scene, const SweepStart& start);

/// The run without a fault, expected to succeed.
Undisturbed undisturbedRun(const Scene& scene, const SweepStart& start, TracedRun& traced);

/// Prints the figures and leaves them in the test's report.
void report(const SweepCount& count);

}  // namespace trellant::testing
