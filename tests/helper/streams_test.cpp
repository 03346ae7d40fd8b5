// SPDX-License-Identifier: Apache-2.0
// The three streams: what goes where, and what happens when somebody hangs up.
#include "worker_fixture.h"

#include <numeric>

namespace trellant::testing {

namespace {

constexpr std::size_t manyClips = 2'000;

/// One slot's sequence of `manyClips` clips of 480 samples, one after the other.
OmfBuilder longDocument() {
    constexpr MobID tone{1, 2, 3};
    OmfBuilder omf;
    omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
    std::vector<ObjectID> clips;
    for (std::size_t index = 0; index < manyClips; ++index) {
        clips.push_back(omf.clip({.length = 480, .source = tone}));
    }
    const ObjectID slot = omf.slot({.editRate = Ratio{48'000}, .segment = omf.sequence(clips)});
    omf.composition({.name = "Long", .slots = {slot}});
    return omf;
}

/// The events of longDocument: its clips are the objects from 9 on, the slot comes after the
/// sequence that comes after them; clip i starts at i/100 seconds.
std::string longEvents() {
    std::string events;
    for (std::size_t index = 0; index < manyClips; ++index) {
        const std::size_t divisor = std::gcd(index, std::size_t{100});
        events.append(events.empty() ? "" : ",")
            .append(R"({"channelRole":"mono","clipMuted":false,)"
                    R"("duration":{"denominator":100,"numerator":1},)"
                    R"("essenceID":"omf-essence-00000001-00000002-00000003","fixedClipGain":1,)"
                    R"("id":"omf-event-)")
            .append(std::to_string(9 + index) + "-" + std::to_string(index))
            .append(R"(","sourceChannel":0,"sourceStartSample":0,"timelineStart":{"denominator":)")
            .append(std::to_string(100 / divisor) + ",\"numerator\":")
            .append(std::to_string(index / divisor) + R"(},"trackID":"omf-track-2010"})");
    }
    return events;
}

std::string progressUpToFinishing() {
    return progressLineText("opening", "0.05") + progressLineText("reconstructing", "0.15") +
           progressLineText("reconstructing", "0.15") + progressLineText("finishing", "0.95");
}

class HelperStreams : public WorkerTest {
  protected:
    [[nodiscard]] WorkerRun runLong(const OutputStream& output, const OutputStream& errors) const {
        const std::string source = writeFile(path("long.omf"), longDocument().build());
        return runWorker({.input = requestFor("inspect", source, "").json(),
                          .output = output,
                          .errors = errors});
    }
    /// As runLong, of the small file; taking the audio out into "work".
    [[nodiscard]] WorkerRun runShort(const OutputStream& output, const OutputStream& errors) const {
        const auto request = requestFor("extractAndInspect", oneClipFile(), path("work"));
        return runWorker({.input = request.json(), .output = output, .errors = errors});
    }
};

TEST_F(HelperStreams, SuccessIsOneObjectWithSortedKeysAndNothingBehindIt) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("inspect", source, path("work")));
    EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source)));
    EXPECT_EQ(answer.errors, oneSlotProgress());
    EXPECT_EQ(answer.status, 0);
    EXPECT_FALSE(answer.signal.has_value());
}

TEST_F(HelperStreams, OpeningLineIsTheFirstAndWhole) {
    const auto answer = run(requestFor("inspect", oneClipFile(), path("work")));
    EXPECT_EQ(linesOf(answer.errors).front(),
              R"(TRELLANT-AAF-PROGRESS {"phase":"opening","fraction":0.05})");
}

TEST_F(HelperStreams, EachSlotHasItsProgressLineWhateverItHolds) {
    constexpr MobID tone{1, 2, 3};
    OmfBuilder omf;
    omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
    // Timecode and an empty slot count as well.
    std::vector<ObjectID> slots{
        omf.slot({.editRate = Ratio{25}, .segment = omf.timecode(25, false, 0)}), omf.slot({})};
    for (int clip = 0; clip < 14; ++clip) {
        slots.push_back(omf.slot(
            {.editRate = Ratio{48'000}, .segment = omf.clip({.length = 480, .source = tone})}));
    }
    omf.composition({.slots = slots});
    const std::string source = writeFile(path("slots.omf"), omf.build());
    const auto answer = run(requestFor("inspect", source, ""));
    // 0.15 + 0.8 * i / 16: the phase changes at i = 3, where the doubles add up to a little more
    // than 0.3.
    std::string expected =
        progressLineText("opening", "0.05") + progressLineText("reconstructing", "0.15");
    for (const std::string_view fraction : {"0.15", "0.2", "0.25"}) {
        expected += progressLineText("reconstructing", fraction);
    }
    for (const std::string_view fraction :
         {"0.30000000000000004", "0.35", "0.4", "0.45000000000000007", "0.5", "0.55", "0.6", "0.65",
          "0.7000000000000001", "0.7500000000000001", "0.8", "0.8500000000000001", "0.9"}) {
        expected += progressLineText("resolving", fraction);
    }
    expected += progressLineText("finishing", "0.95") + progressLineText("done", "1");
    EXPECT_EQ(answer.errors, expected);
    EXPECT_EQ(answer.status, 0);
}

TEST_F(HelperStreams, ResultLargerThanAPipeArrivesWhole) {
    const auto answer = runLong({}, {});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.errors, progressUpToFinishing() + progressLineText("done", "1"));
    EXPECT_GT(answer.output.size(), std::size_t{4} * 65'536);
    const auto first = answer.output.find(R"("events":[)");
    const auto last = answer.output.find(R"(],"hasNativeTimecode":false)");
    ASSERT_NE(first, std::string::npos);
    ASSERT_NE(last, std::string::npos);
    EXPECT_EQ(answer.output.substr(first + 10, last - first - 10), longEvents());
    EXPECT_TRUE(answer.output.ends_with(R"("unsupportedFeatures":[]}})"));
}

TEST_F(HelperStreams, ReaderOfTheResultThatIsGoneEndsTheWorkerQuietly) {
    const auto answer = runLong({.readerLeavesAfter = 0}, {});
    expectQuietEnd(answer);
    EXPECT_EQ(answer.errors, progressUpToFinishing());
}

TEST_F(HelperStreams, ReaderOfTheResultThatLeavesMidwayEndsTheWorkerQuietly) {
    const auto answer = runLong({.readerLeavesAfter = 1'000}, {});
    expectQuietEnd(answer);
    EXPECT_EQ(answer.errors, progressUpToFinishing());
    EXPECT_EQ(answer.output.size(), 1'000U);
}

TEST_F(HelperStreams, ReaderOfTheLinesThatIsGoneEndsTheWorkerQuietly) {
    const auto answer = runShort({}, {.readerLeavesAfter = 0});
    expectQuietEnd(answer);
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(everything(), std::vector<std::string>{"piece.omf"});
}

TEST_F(HelperStreams, ReaderOfTheLinesThatIsGoneHidesNoRejection) {
    const auto answer = runWorker({.input = "{", .errors = {.readerLeavesAfter = 0}});
    expectQuietEnd(answer);
    EXPECT_EQ(answer.output, "");
}

TEST_F(HelperStreams, NoReaderAtAllEndsTheWorkerQuietly) {
    expectQuietEnd(runLong({.readerLeavesAfter = 0}, {.readerLeavesAfter = 0}));
}

TEST_F(HelperStreams, OutputClosedFromTheStartIsAFailureThatTouchesNoFile) {
    const auto answer = runShort({.closed = true}, {});
    expectQuietEnd(answer);
    EXPECT_EQ(readFile(path("piece.omf")), oneClipDocument().build());
}

TEST_F(HelperStreams, ErrorsClosedFromTheStartAreAFailureThatTouchesNoFile) {
    const auto answer = runShort({}, {.closed = true});
    expectQuietEnd(answer);
    EXPECT_EQ(answer.output, "");
    EXPECT_EQ(readFile(path("piece.omf")), oneClipDocument().build());
}

TEST_F(HelperStreams, AllStreamsClosedFromTheStartIsAFailure) {
    expectQuietEnd(runWorker({.output = {.closed = true}, .errors = {.closed = true}}));
}

}  // namespace

}  // namespace trellant::testing
