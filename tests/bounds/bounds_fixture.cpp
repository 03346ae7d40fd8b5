// SPDX-License-Identifier: Apache-2.0
#include "bounds_fixture.h"

#include "worker_fixture.h"

#include <algorithm>

namespace trellant::testing {

namespace {

std::string mebibytes(std::uint64_t bytes) {
    return std::to_string((bytes + mebibyte / 2) / mebibyte) + " MiB";
}

void expectOrderly(const BoundedRun& run) {
    EXPECT_FALSE(run.signal.has_value()) << "ended by signal " << run.signal.value_or(0);
    EXPECT_TRUE(run.status == 0 || run.status == 2) << run.status.value_or(-1);
    EXPECT_EQ(run.outputBytes != 0, run.status == 0) << run.outputBytes << " bytes of output";
    const auto lines = linesOf(run.errors);
    const auto logged = std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.starts_with("trellant-omf: ");
    });
    EXPECT_EQ(logged, run.status == 0 ? 0 : 1) << run.errors;
}

}  // namespace

std::string openingLines() {
    return progressLineText("opening", "0.05");
}

std::string openSlotLines() {
    return progressLineText("reconstructing", "0.15") + progressLineText("reconstructing", "0.15");
}

BoundedRun BoundsTest::run(std::string_view operation, std::uint64_t addressSpace,
                           const std::string& groupProcesses) const {
    auto run =
        runBounded(requestFor(operation, file(), work()).json(), addressSpace, groupProcesses);
    expectOrderly(run);
    return run;
}

std::string BoundsTest::smallAnswer() const {
    return oneClipResult(jsonFileURL(file()));
}

void BoundsTest::expectFailed(const BoundedRun& run, std::string_view progress,
                              std::string_view message) {
    EXPECT_EQ(run.errors, std::string(progress) + logLineText(message));
    EXPECT_EQ(run.status, 2);
}

void BoundsTest::expectOutOfMemory(const BoundedRun& run) {
    if (sanitized) {
        return;
    }
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.errors.ends_with(logLineText(outOfMemory))) << run.errors;
}

void BoundsTest::expectPeak(const BoundedRun& run, std::string_view shape, std::uint64_t bound) {
    RecordProperty(std::string(shape), "bound " + mebibytes(bound) + ", peak " +
                                           mebibytes(run.peak) + ", " +
                                           std::to_string(run.seconds).substr(0, 5) + " s");
    if (!sanitized) {
        EXPECT_LE(run.peak, bound) << shape;
    }
}

}  // namespace trellant::testing
