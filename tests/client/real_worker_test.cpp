// SPDX-License-Identifier: Apache-2.0
// The client with the worker that it was made for.
#include "client_fixture.h"

#include <filesystem>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/requests.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {

namespace {

class ClientWithRealWorker : public ClientTest {
  protected:
    [[nodiscard]] static AAFWorkerClient realClient() {
        AAFWorkerClient client = AAFWorkerClient::fuer("film.omf");
        EXPECT_EQ(client.helperName, "trellant-omf");
        client.helperURLProvider = [](const std::string&) { return workerPath(); };
        return client;
    }
    [[nodiscard]] std::string path(const std::string& name) const {
        return workers_.directory().file(name);
    }
    [[nodiscard]] static std::string example(const std::string& name) {
        return std::string(TRELLANT_EXAMPLES) + "/" + name;
    }
    /// What the worker itself writes for the example; its audio is taken away again.
    [[nodiscard]] Result ownResult(const std::string& name, const std::string& work) const {
        auto request = requestFor("extractAndInspect", example(name), work, TRELLANT_EXAMPLES);
        const WorkerRun run = runWorker({.input = request.json()});
        EXPECT_EQ(run.status, 0) << run.errors;
        std::filesystem::remove_all(work);
        return decodeResult(run.output);
    }
};

TEST_F(ClientWithRealWorker, InspectGivesTheWorkersTimeline) {
    for (const std::string name : {"session.omf", "external.omf", "archive.omf"}) {
        SCOPED_TRACE(name);
        const Result own = ownResult(name, path("work"));
        const AAFTimeline timeline =
            valueOf(realClient().inspect(example(name), path("work"), TRELLANT_EXAMPLES));
        EXPECT_FALSE(timeline.events.empty());
        EXPECT_TRUE(timeline == own.timeline);
    }
}

TEST_F(ClientWithRealWorker, InspectTakesTheAudioOut) {
    (void)valueOf(realClient().inspect(example("archive.omf"), path("a/b/work")));
    EXPECT_TRUE(std::filesystem::is_regular_file(path("a/b/work/Reel 7 transfer.aifc")));
}

TEST_F(ClientWithRealWorker, RunGivesTheWorkersDiagnostics) {
    Request request;
    request.aafPath = example("archive.omf");
    const Result result = valueOf(realClient().run(request));
    EXPECT_EQ(result.diagnostics,
              (std::vector<std::string>{
                  "OMF2/Bento 1.0, big-endian", "Composition Mob object 28 selected",
                  "Track Café: 2 audio event(s), 1.520 s",
                  "Resolved 2 event(s) to 1 audio essence(s)", "Composition length: 1.520 s"}));
    EXPECT_EQ(result.embeddedMediaSHA256, std::nullopt);
}

TEST_F(ClientWithRealWorker, RunWithInspectWritesNothing) {
    Request request;
    request.aafPath = example("archive.omf");
    request.workDirectory = path("work");
    EXPECT_EQ(valueOf(realClient().run(request)).timeline.compositionName, "Café");
    EXPECT_FALSE(std::filesystem::exists(path("work")));
}

TEST_F(ClientWithRealWorker, ProgressComesInTheOrderOfTheWork) {
    // Two slots: one begins with the reconstruction, one half of 0.8 later.
    std::vector<Progress> seen;
    (void)valueOf(
        realClient().inspect(example("archive.omf"), path("work"), std::nullopt,
                             [&](const Progress& progress) { seen.push_back(progress); }));
    EXPECT_EQ(seen, (std::vector<Progress>{{"opening", 0.05, std::nullopt},
                                           {"reconstructing", 0.15, std::nullopt},
                                           {"reconstructing", 0.15, std::nullopt},
                                           {"resolving", 0.15 + 0.8 / 2, std::nullopt},
                                           {"finishing", 0.95, std::nullopt},
                                           {"done", 1, std::nullopt}}));
}

TEST_F(ClientWithRealWorker, DamagedFileFailsWithTheWorkersLine) {
    writeFile(path("damaged.omf"), patternBytes(23));
    expectFault(
        realClient().inspect(path("damaged.omf"), path("work")),
        NonZeroExit{2, "trellant-omf: Malformed OMF/Bento file: file too small for Bento footer"});
}

TEST_F(ClientWithRealWorker, MissingFileFailsWithTheWorkersLine) {
    expectFault(realClient().inspect(path("missing.omf"), path("work")),
                NonZeroExit{2, "trellant-omf: unexpected failure: cannot open \"" +
                                   path("missing.omf") + "\": No such file or directory"});
}

TEST_F(ClientWithRealWorker, OtherVersionIsRejectedByTheWorker) {
    Request request = plainRequest();
    request.protocolVersion = 2;
    expectFault(realClient().run(request),
                NonZeroExit{1, "trellant-omf: unsupported protocol version 2"});
}

TEST_F(ClientWithRealWorker, CallsAtOnceGiveEachItsOwnTimeline) {
    std::vector<std::future<AAFTimeline>> calls;
    for (int call = 0; call < 8; ++call) {
        calls.push_back(realClient().inspect(example(call % 2 == 0 ? "archive.omf" : "session.omf"),
                                             path("work" + std::to_string(call))));
    }
    for (std::size_t call = 0; call < calls.size(); ++call) {
        EXPECT_EQ(valueOf(std::move(calls[call])).compositionName,
                  call % 2 == 0 ? "Café" : "Scene 12");
    }
}

}  // namespace

}  // namespace trellant::testing
