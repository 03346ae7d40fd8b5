// SPDX-License-Identifier: Apache-2.0
#include "sweep.h"

#include <cstring>
#include <filesystem>
#include <iostream>

namespace trellant::testing {

namespace {

void arrange(const Scene& scene, const SweepStart& start) {
    std::filesystem::remove_all(scene.work());
    if (start.arrange) {
        start.arrange(scene);
    }
}

TracedRun runWith(const Scene& scene, const SweepStart& start, Director director) {
    return runTraced({.input = scene.request(start.operation),
                      .places = scene.places(),
                      .director = std::move(director)});
}

void tryFault(const Scene& scene, const SweepStart& start, const Undisturbed& undisturbed,
              std::size_t index, int errorNumber) {
    arrange(scene, start);
    const auto before = scene.everything();
    Fault fault{.errorNumber = errorNumber};
    bool wasInjected = false;
    const TracedRun traced = runWith(scene, start, [&](const SeenCall& seen, pid_t process) {
        if (seen.index == index) {
            fault.seen = seen;
            wasInjected = true;
            return Intervention{.errorNumber = errorNumber};
        }
        return start.always ? start.always(seen, process) : Intervention{};
    });
    EXPECT_TRUE(wasInjected) << "the run had no call " << index;
    EXPECT_TRUE(judge(scene, undisturbed, before, fault, traced))
        << "call " << index << ", " << nameOf(fault.seen.kind) << " (" << fault.seen.call.number
        << ") \"" << fault.seen.path << "\" " << fault.seen.ordinal << ", failing with \""
        << std::strerror(errorNumber) << "\"";
}

}  // namespace

Undisturbed undisturbedRun(const Scene& scene, const SweepStart& start, TracedRun& traced) {
    arrange(scene, start);
    traced = runWith(scene, start, start.always);
    EXPECT_EQ(traced.run.status, 0) << traced.run.errors;
    for (const SeenCall& seen : traced.calls) {
        EXPECT_NE(seen.kind, CallKind::unknown)
            << "call " << seen.index << ", number " << seen.call.number << " of \"" << seen.path
            << "\" has no rule";
    }
    return {
        .output = traced.run.output, .errors = traced.run.errors, .everything = scene.everything()};
}

SweepCount sweep(const Scene& scene, const SweepStart& start) {
    TracedRun traced;
    const Undisturbed undisturbed = undisturbedRun(scene, start, traced);
    SweepCount count{.calls = traced.calls.size()};
    for (const SeenCall& seen : traced.calls) {
        const bool isTakenAlready = start.always && start.always(seen, 0).errorNumber != 0;
        if (isTakenAlready) {
            continue;
        }
        for (const int errorNumber : errorsOf(seen)) {
            tryFault(scene, start, undisturbed, seen.index, errorNumber);
            ++count.faults;
            ++count.ofKind[seen.kind];
        }
    }
    return count;
}

void report(const SweepCount& count) {
    std::cout << "calls: " << count.calls << ", faults injected: " << count.faults << " (";
    const char* separator = "";
    for (const auto& [kind, faults] : count.ofKind) {
        std::cout << separator << nameOf(kind) << " " << faults;
        separator = ", ";
    }
    std::cout << ")\n";
    ::testing::Test::RecordProperty("calls", static_cast<int>(count.calls));
    ::testing::Test::RecordProperty("faults", static_cast<int>(count.faults));
}

}  // namespace trellant::testing
