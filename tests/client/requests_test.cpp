// SPDX-License-Identifier: Apache-2.0
// What reaches the worker: the misbehaving worker gives back each byte that it was sent.
#include "client_fixture.h"
#include "current_directory.h"

#include <future>

namespace trellant::testing {

namespace {

using ClientRequests = ClientTest;

/// The request that inspect sends; the paths as JSON has them.
std::string inspectRequest(const std::string& aafPath, const std::string& workDirectory,
                           const std::string& search = {}) {
    return R"({"protocolVersion":1,"operation":"extractAndInspect","aafPath":")" + aafPath +
           R"(","workDirectory":")" + workDirectory +
           (search.empty() ? R"(",)" : R"(","mediaSearchDirectory":")" + search + R"(",)") +
           R"("recoverProToolsTrueFades":true,"removeProToolsSampleAccurateEditFragments":true})";
}

/// With each "/" as JSON has it here.
std::string jsonPath(const std::string& path) {
    std::string text;
    for (const char character : path) {
        text.append(character == '/' ? R"(\/)" : std::string(1, character));
    }
    return text;
}

TEST_F(ClientRequests, InspectAsksForExtractionWithBothFlags) {
    const AAFTimeline timeline =
        valueOf(client("answers").inspect("/reels/film.omf", "/out/work", "/media"));
    EXPECT_EQ(timeline.compositionName,
              inspectRequest(R"(\/reels\/film.omf)", R"(\/out\/work)", R"(\/media)"));
}

TEST_F(ClientRequests, AbsentSearchDirectoryIsLeftOut) {
    const AAFTimeline timeline = valueOf(client("answers").inspect("/reels/film.omf", "/out/work"));
    EXPECT_EQ(timeline.compositionName, inspectRequest(R"(\/reels\/film.omf)", R"(\/out\/work)"));
}

TEST_F(ClientRequests, NamesOfEveryScriptReachTheWorker) {
    const AAFTimeline timeline =
        valueOf(client("answers").inspect("/Rollen/Mäuse \"2\".omf", "/出力"));
    EXPECT_EQ(timeline.compositionName,
              inspectRequest(R"(\/Rollen\/Mäuse \"2\".omf)", R"(\/出力)"));
}

TEST_F(ClientRequests, RelativePathsAreRefusedWhereTheCurrentDirectoryIsGone) {
    TemporaryDirectory parent;
    const std::filesystem::path gone = parent.file("gone");
    std::filesystem::create_directory(gone);
    const CurrentDirectory directory(gone);
    std::filesystem::remove(gone);
    const LaunchFailed fault{"cannot tell the current directory: No such file or directory"};
    expectFault(client("answers").inspect("film.omf", "/work"), fault);
    expectFault(client("answers").inspect("/film.omf", "work"), fault);
    expectFault(client("answers").inspect("/film.omf", "/work", "media"), fault);
    EXPECT_EQ(valueOf(client("answers").inspect("/film.omf", "/work")).compositionName,
              inspectRequest(R"(\/film.omf)", R"(\/work)"));
}

TEST_F(ClientRequests, RelativePathsAreTakenAgainstTheDirectoryOfTheCall) {
    const TemporaryDirectory there;
    std::promise<void> left;
    AAFWorkerClient late = client("answers");
    late.helperURLProvider = [&, provider = late.helperURLProvider](const std::string& name) {
        left.get_future().wait();
        return provider(name);
    };
    std::future<AAFTimeline> call;
    {
        const CurrentDirectory directory(there.path());
        call = late.inspect("reels/film.omf", "work", "media");
    }
    // The host is elsewhere before the call has done anything.
    left.set_value();
    const std::string at = jsonPath(std::filesystem::canonical(there.path()).string());
    EXPECT_EQ(valueOf(std::move(call)).compositionName,
              inspectRequest(at + R"(\/reels\/film.omf)", at + R"(\/work)", at + R"(\/media)"));
}

TEST_F(ClientRequests, RunSendsTheRequestAsItIs) {
    const Request request{.protocolVersion = 7,
                          .operation = Request::Operation::verifyExport,
                          .aafPath = "film.omf",
                          .workDirectory = "",
                          .mediaSearchDirectory = "",
                          .recoverProToolsTrueFades = true,
                          .removeProToolsSampleAccurateEditFragments = false};
    const Result result = valueOf(client("answers").run(request));
    EXPECT_EQ(result.diagnostics,
              std::vector<std::string>{
                  R"({"protocolVersion":7,"operation":"verifyExport","aafPath":"film.omf",)"
                  R"("workDirectory":"","mediaSearchDirectory":"",)"
                  R"("recoverProToolsTrueFades":true,)"
                  R"("removeProToolsSampleAccurateEditFragments":false})"});
}

TEST_F(ClientRequests, RunSendsInspectWithoutFlags) {
    const Result result = valueOf(client("answers").run(plainRequest()));
    EXPECT_EQ(result.diagnostics,
              std::vector<std::string>{
                  R"({"protocolVersion":1,"operation":"inspect","aafPath":"\/film.omf",)"
                  R"("workDirectory":"\/work","recoverProToolsTrueFades":false,)"
                  R"("removeProToolsSampleAccurateEditFragments":false})"});
}

TEST_F(ClientRequests, RequestLargerThanAPipeArrivesWhole) {
    const Request request = largeRequest();
    const Result result = valueOf(client("answers").run(request));
    EXPECT_EQ(result.diagnostics, std::vector<std::string>{encodeRequest(request)});
}

TEST_F(ClientRequests, PathThatIsNoTextIsNotSent) {
    expectFault(client("answers").inspect("/reels/\xE9t\xE9.omf", "/work"),
                LaunchFailed{"\"/reels/\xEF\xBF\xBDt\xEF\xBF\xBD.omf\" is not UTF-8 and cannot be "
                             "sent to a worker"});
    expectFault(client("answers").inspect("/film.omf", "/\xFF"),
                LaunchFailed{"\"/\xEF\xBF\xBD\" is not UTF-8 and cannot be sent to a worker"});
    expectFault(client("answers").inspect("/film.omf", "/work", "/\xFF"),
                LaunchFailed{"\"/\xEF\xBF\xBD\" is not UTF-8 and cannot be sent to a worker"});
    workers_.expectNeverStarted("answers");
}

}  // namespace

}  // namespace trellant::testing
