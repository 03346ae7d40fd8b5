// SPDX-License-Identifier: Apache-2.0
// What the worker says of itself, and that it serves requests as ever beside that.
#include "worker_fixture.h"

#include <trellant/version.h>

namespace trellant::testing {

namespace {

WorkerRun runWith(std::vector<std::string> arguments, std::string input = {}) {
    return runWorker({.input = std::move(input), .arguments = std::move(arguments)});
}

class HelperUsage : public WorkerTest {};

TEST_F(HelperUsage, VersionIsThatOfTheLibraries) {
    const WorkerRun run = runWith({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "trellant-omf " + std::string(versionText) + "\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(HelperUsage, HelpSaysHowItIsCalledAndFitsTheScreen) {
    const WorkerRun run = runWith({"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.output.starts_with("Usage: trellant-omf < REQUEST > RESULT\n")) << run.output;
    EXPECT_EQ(run.errors, "");
    for (const std::string& line : linesOf(run.output)) {
        EXPECT_LE(line.size(), 100U) << line;
    }
}

TEST_F(HelperUsage, RequestInTheHelpIsAccepted) {
    const std::string help = runWith({"--help"}).output;
    const std::size_t first = help.find('{');
    const std::size_t last = help.find('}');
    ASSERT_LT(first, last);
    const WorkerRun run =
        runWorker({.input = help.substr(first, last + 1 - first), .directory = path("")});
    expectFailed(run, progressLineText("opening", "0.05"),
                 "unexpected failure: cannot open \"" + path("session.omf") +
                     "\": No such file or directory");
}

TEST_F(HelperUsage, NoRequestIsReadForIt) {
    const std::string request = requestFor("inspect", oneClipFile(), path("work")).json();
    EXPECT_EQ(runWith({"--version"}, request).output,
              "trellant-omf " + std::string(versionText) + "\n");
}

TEST_F(HelperUsage, AnyOtherArgumentsChangeNothing) {
    const std::string file = oneClipFile();
    const std::string request = requestFor("inspect", file, path("work")).json();
    const std::vector<std::vector<std::string>> others{
        {"-h"}, {"--help", "--version"}, {"--helpful"}, {"version"}, {""}, {"mix.omf"}};
    for (const std::vector<std::string>& arguments : others) {
        const WorkerRun run = runWith(arguments, request);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.output, oneClipResult(jsonFileURL(file)));
        EXPECT_EQ(run.errors, oneSlotProgress());
    }
}

TEST_F(HelperUsage, ReaderThatIsGoneIsAFailure) {
    expectQuietEnd(
        runWorker({.input = "", .output = {.readerLeavesAfter = 0}, .arguments = {"--help"}}));
}

}  // namespace

}  // namespace trellant::testing
