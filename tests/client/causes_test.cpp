// SPDX-License-Identifier: Apache-2.0
// What programs can tell faults apart by.
#include "client_fixture.h"
#include "current_directory.h"
#include "misbehaving_worker/answers.h"

#include <filesystem>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

using Cause = LaunchFailed::Cause;
using Kind = InvalidResponse::Kind;

class ClientCauses : public ClientTest {
  protected:
    [[nodiscard]] Cause causeOf(std::future<Result> call) const {
        const auto outcome = outcomeOf(std::move(call));
        const auto* const fault =
            outcome.fault ? std::get_if<LaunchFailed>(&*outcome.fault) : nullptr;
        EXPECT_NE(fault, nullptr) << outcome.description;
        return fault == nullptr ? Cause::other : fault->cause;
    }
    [[nodiscard]] Cause causeAt(const std::string& place) const {
        AAFWorkerClient asking;
        asking.helperURLProvider = [place](const std::string&) { return place; };
        return causeOf(asking.run(plainRequest()));
    }
    /// What is wrong with an answer.
    [[nodiscard]] InvalidResponse fault(const std::string& output) const {
        const auto outcome = outcomeOf(act({.output = output}));
        const auto* const fault =
            outcome.fault ? std::get_if<InvalidResponse>(&*outcome.fault) : nullptr;
        EXPECT_NE(fault, nullptr) << outcome.description;
        return fault == nullptr ? InvalidResponse{} : *fault;
    }
    void expectKind(const std::string& output, Kind kind, const std::string& keyPath) const {
        const InvalidResponse found = fault(output);
        EXPECT_EQ(found.kind, kind) << found.reason;
        EXPECT_EQ(found.keyPath, keyPath) << found.reason;
    }
    /// A good result with one part of it replaced.
    [[nodiscard]] static std::string with(const std::string& from, const std::string& to) {
        std::string text = resultText(timelineText("Reel"));
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos);
        return text.replace(at, from.size(), to);
    }
};

TEST_F(ClientCauses, OfWhatIsNoWorker) {
    const auto path = [this](const std::string& name) { return workers_.directory().file(name); };
    EXPECT_EQ(causeAt(path("missing")), Cause::workerNotFound);
    EXPECT_EQ(causeAt(workers_.directory().path()), Cause::workerNotExecutable);
    writeFile(path("text"), bytesOf("exit 0\n"));
    EXPECT_EQ(causeAt(path("text")), Cause::workerNotExecutable);
    std::filesystem::permissions(path("text"), std::filesystem::perms::owner_all);
    EXPECT_EQ(causeAt(path("text")), Cause::workerNotExecutable);
    EXPECT_EQ(causeAt(path("text") + "/inside"), Cause::workerNotFound);
}

TEST_F(ClientCauses, OfARequestThatCannotBeSent) {
    Request request = plainRequest();
    request.workDirectory = "\xFF";
    EXPECT_EQ(causeOf(client("answers").run(request)), Cause::unsendableRequest);
}

TEST_F(ClientCauses, OfARequestThatIsNotTaken) {
    EXPECT_EQ(causeOf(client("dies-without-reading").run(largeRequest())), Cause::requestNotTaken);
}

TEST_F(ClientCauses, OfAPathWithoutACurrentDirectory) {
    std::optional<TemporaryDirectory> gone(std::in_place);
    const CurrentDirectory directory(gone->path());
    gone.reset();
    try {
        (void)AAFWorkerClient::inspection("film.omf", "/work");
        FAIL() << "there is no current directory";
    } catch (const AAFWorkerClientError& error) {
        EXPECT_EQ(std::get<LaunchFailed>(error.fault()).cause, Cause::noCurrentDirectory);
    }
}

TEST_F(ClientCauses, OfAnswersThatDoNotDecode) {
    expectKind("done", Kind::corrupt, "");
    expectKind(R"({"protocolVersion":1,"diagnostics":[]})", Kind::missingKey, "timeline");
    expectKind(with(R"("tracks":[])", R"("tracks":[{}])"), Kind::missingKey,
               "timeline.tracks[0].id");
    expectKind("[]", Kind::wrongType, "");
    expectKind(with(R"("Reel")", "7"), Kind::wrongType, "timeline.compositionName");
    expectKind(with(R"("numerator":25)", R"("numerator":2.5)"), Kind::corrupt,
               "timeline.clock.editRate.numerator");
    expectKind(with(R"("denominator":1)", R"("denominator":0)"), Kind::corrupt,
               "timeline.clock.editRate.denominator");
}

TEST_F(ClientCauses, OfAnswersThatDecode) {
    expectKind(with(R"("hours":1)", R"("hours":99)"), Kind::invalidTimeline, "");
    expectKind(with(R"("protocolVersion":1)", R"("protocolVersion":2)"), Kind::otherVersion, "");
}

TEST_F(ClientCauses, OfAnAnswerThatIsTooLong) {
    AAFWorkerClient limited = client("answers");
    limited.resultLimit = 10;
    const auto outcome = outcomeOf(limited.run(plainRequest()));
    ASSERT_TRUE(outcome.fault.has_value()) << outcome.description;
    EXPECT_EQ(std::get<InvalidResponse>(*outcome.fault).kind, Kind::tooLong);
}

TEST_F(ClientCauses, ChangeNothingInComparisons) {
    EXPECT_EQ((LaunchFailed{"no", Cause::workerNotFound}), LaunchFailed{"no"});
    EXPECT_EQ((InvalidResponse{"no", Kind::corrupt, "timeline"}), InvalidResponse{"no"});
    EXPECT_EQ((HelperMissing{"a", {"/b"}}), HelperMissing{});
    EXPECT_FALSE(LaunchFailed{"no"} == LaunchFailed{"yes"});
    EXPECT_FALSE(InvalidResponse{"no"} == InvalidResponse{"yes"});
}

TEST_F(ClientCauses, MissingWorkerIsNamedAndAProviderOfOnesOwnTellsNoPlaces) {
    AAFWorkerClient lost;
    lost.helperName = "nobody";
    lost.helperURLProvider = [](const std::string&) { return std::nullopt; };
    const auto outcome = outcomeOf(lost.run(plainRequest()));
    ASSERT_TRUE(outcome.fault.has_value()) << outcome.description;
    EXPECT_EQ(std::get<HelperMissing>(*outcome.fault).helperName, "nobody");
    EXPECT_TRUE(std::get<HelperMissing>(*outcome.fault).searched.empty());
}

}  // namespace

}  // namespace trellant::testing
