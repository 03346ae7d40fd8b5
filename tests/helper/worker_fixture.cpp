// SPDX-License-Identifier: Apache-2.0
#include "worker_fixture.h"

#include <algorithm>
#include <trellant_testing/tone.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

namespace {

constexpr std::string_view clock25 =
    R"({"editRate":{"denominator":1,"numerator":25},"timecodeRate":{"dropFrame":false,)"
    R"("exactRate":{"denominator":1,"numerator":25},"nominalFramesPerSecond":25},)"
    R"("timelineZero":{"frames":0,"hours":0,"minutes":0,"rate":{"dropFrame":false,)"
    R"("exactRate":{"denominator":1,"numerator":25},"nominalFramesPerSecond":25},"seconds":0}})";

}  // namespace

Bytes toneWave() {
    return waveImage({.samples = toneSamples({.frames = 480})});
}

OmfBuilder oneClipDocument() {
    constexpr MobID tone{1, 2, 3};
    OmfBuilder omf;
    omf.audioFile({.id = tone, .name = "Tone.wav", .media = toneWave(), .length = 480});
    const ObjectID clip = omf.clip({.length = 480, .source = tone});
    const ObjectID sequence = omf.sequence({clip});
    const ObjectID track = omf.track({.name = "A"});
    const ObjectID slot =
        omf.slot({.editRate = Ratio{48'000}, .segment = sequence, .track = track});
    omf.composition({.name = "Piece", .slots = {slot}});
    return omf;
}

std::string oneClipResult(std::string_view sourceURL, std::string_view fileURL) {
    std::string json =
        R"({"diagnostics":["OMF2\/Bento 2.0, little-endian","Composition Mob object 13 selected",)"
        R"-("Track A: 1 audio event(s), 0.010 s","Resolved 1 event(s) to 1 audio essence(s)",)-"
        R"("Composition length: 0.010 s"],"protocolVersion":1,"timeline":{"clock":)";
    json.append(clock25);
    json.append(R"(,"compositionLength":{"denominator":100,"numerator":1},)"
                R"("compositionName":"Piece","essences":[{"bitDepth":16,"channelCount":1,)"
                R"("codec":"PCM","embedded":true,)");
    if (!fileURL.empty()) {
        json.append(R"("fileURL":")").append(fileURL).append(R"(",)");
    }
    json.append(R"("id":"omf-essence-00000001-00000002-00000003",)"
                R"("mobID":"00000001-00000002-00000003",)"
                R"("sampleRate":{"denominator":1,"numerator":48000},"sourceName":"Tone.wav"}],)"
                R"("events":[{"channelRole":"mono","clipMuted":false,)"
                R"("duration":{"denominator":100,"numerator":1},)"
                R"("essenceID":"omf-essence-00000001-00000002-00000003","fixedClipGain":1,)"
                R"("id":"omf-event-9-0","sourceChannel":0,"sourceStartSample":0,)"
                R"("timelineStart":{"denominator":1,"numerator":0},"trackID":"omf-track-12"}],)"
                R"("hasNativeTimecode":false,"sourceAAF":")");
    json.append(sourceURL);
    json.append(R"(","tracks":[{"fixedGain":1,"id":"omf-track-12","index":0,"muted":false,)"
                R"("name":"A","solo":false}],"unsupportedFeatures":[]}})");
    return json;
}

std::string oneSlotProgress() {
    return progressLineText("opening", "0.05") + progressLineText("reconstructing", "0.15") +
           progressLineText("reconstructing", "0.15") + progressLineText("finishing", "0.95") +
           progressLineText("done", "1");
}

std::string jsonFileURL(std::string_view path) {
    std::string url = R"(file:\/\/)";
    for (const char character : path) {
        url.append(character == '/' ? R"(\/)" : std::string(1, character));
    }
    return url;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

void expectRejected(const WorkerRun& run, std::string_view message) {
    EXPECT_EQ(run.errors, logLineText(message));
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 1);
}

void expectInvalidJson(const WorkerRun& run, std::string_view reasonPrefix) {
    const std::string beginning =
        std::string("trellant-omf: invalid request JSON: ").append(reasonPrefix);
    EXPECT_EQ(run.errors.substr(0, beginning.size()), beginning);
    ASSERT_GT(run.errors.size(), beginning.size() + 1) << "a reason is given";
    EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << "one line";
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 1);
}

void expectFailed(const WorkerRun& run, std::string_view progress, std::string_view message) {
    EXPECT_EQ(run.errors, std::string(progress) + logLineText(message));
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 2);
}

void expectQuietEnd(const WorkerRun& run) {
    EXPECT_FALSE(run.signal.has_value()) << "ended by signal " << run.signal.value_or(0);
    ASSERT_TRUE(run.status.has_value());
    EXPECT_NE(*run.status, 0);
    EXPECT_EQ(run.errors.find("trellant-omf: "), std::string::npos) << run.errors;
}

std::string WorkerTest::oneClipFile(std::string_view name) const {
    return writeFile(path(name), oneClipDocument().build());
}

WorkerRun WorkerTest::runText(std::string input) {
    return runWorker({.input = std::move(input)});
}

WorkerRun WorkerTest::runInside(const RequestText& request, std::string_view folder) const {
    return runWorker({.input = request.json(), .directory = path(folder)});
}

std::vector<std::string> WorkerTest::everything() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory())) {
        names.push_back(entry.path().lexically_relative(directory()).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace trellant::testing
