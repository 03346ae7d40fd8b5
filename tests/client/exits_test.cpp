// SPDX-License-Identifier: Apache-2.0
// Workers that end with another status than 0, or by a signal.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <csignal>

namespace trellant::testing {

namespace {

using ClientExits = ClientTest;

TEST_F(ClientExits, EmptyRequestOfTheWorkerEndsTheTextOfNonZeroExit) {
    expectFault(act({.errors = {"trellant-omf: empty request on stdin\n"}, .status = 1}),
                NonZeroExit{1, "trellant-omf: empty request on stdin"});
    workers_.expectGone("acts");
}

TEST_F(ClientExits, OnlyTheLastEightOfAHundredLinesAreReported) {
    std::string lines;
    for (int line = 1; line <= 100; ++line) {
        lines += "line " + std::to_string(line) + "\n";
    }
    expectFault(act({.errors = {lines}, .status = 1}),
                NonZeroExit{1,
                            "line 93\nline 94\nline 95\nline 96\nline 97\nline 98\nline 99\n"
                            "line 100"});
}

TEST_F(ClientExits, FewerLinesAreReportedWhenThereAreFewer) {
    expectFault(act({.errors = {"one\n", "two\n", "three\n"}, .status = 1}),
                NonZeroExit{1, "one\ntwo\nthree"});
}

TEST_F(ClientExits, EightLinesAreReportedWhole) {
    expectFault(act({.errors = {"1\n2\n3\n4\n5\n6\n7\n8\n"}, .status = 1}),
                NonZeroExit{1, "1\n2\n3\n4\n5\n6\n7\n8"});
    expectFault(act({.errors = {"1\n2\n3\n4\n5\n6\n7\n8\n9\n"}, .status = 1}),
                NonZeroExit{1, "2\n3\n4\n5\n6\n7\n8\n9"});
}

TEST_F(ClientExits, QuietFailureHasAnEmptyText) {
    expectFault(act({.status = 3}), NonZeroExit{3, ""});
}

TEST_F(ClientExits, LargestStatus) {
    expectFault(act({.errors = {"x\n"}, .status = 255}), NonZeroExit{255, "x"});
}

TEST_F(ClientExits, KilledWorkerHasTheSignalsNumberAsStatus) {
    expectFault(act({.errors = {"x\n"}, .signal = SIGKILL}), NonZeroExit{9, "x"});
    workers_.expectGone("acts");
}

TEST_F(ClientExits, CrashedWorkerHasTheSignalsNumberAsStatus) {
    expectFault(act({.signal = SIGSEGV}), NonZeroExit{11, ""});
    expectFault(act({.signal = SIGABRT}), NonZeroExit{6, ""});
}

TEST_F(ClientExits, WorkerEndedByThePoliteSignalOfSomebodyElseIsNoCancellation) {
    expectFault(act({.signal = SIGTERM}), NonZeroExit{15, ""});
}

TEST_F(ClientExits, FailureCountsMoreThanAnAnswer) {
    expectFault(act({.output = resultText(timelineText("good")), .status = 2}), NonZeroExit{2, ""});
    expectFault(act({.output = resultText(timelineText("good")), .signal = SIGKILL}),
                NonZeroExit{9, ""});
}

}  // namespace

}  // namespace trellant::testing
