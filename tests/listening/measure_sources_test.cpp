// SPDX-License-Identifier: Apache-2.0
#include "sources_fixture.h"

#include <trellant/client/errors.h>
#include <trellant/listening/source_sound.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using listening::SoundState;
using listening::SourceSound;
using ::testing::ElementsAre;

class MeasureSources : public SourcesTest {
  protected:
    std::vector<SourceSound> measured(const std::string& converter = TRELLANT_WAV,
                                      const StopToken& stop = {}) {
        WorkProgress progress(stop);
        return listening::measureSources(timeline_, {.converter = converter}, staging_, progress);
    }
};

TEST_F(MeasureSources, GivesTheSoundOfEachInItsPlace) {
    add(file("a.wav", waveOf({0, 0, 5})));
    add(file("b.wav", waveOf({32'767, 32'767, 32'767, 1})));
    const auto sounds = measured();
    ASSERT_EQ(sounds.size(), 2U);
    EXPECT_EQ(sounds[0].state, SoundState::heard);
    EXPECT_EQ(sounds[0].reason, "");
    ASSERT_NE(sounds[0].measures, nullptr);
    EXPECT_EQ(sounds[0].measures->frames, 3U);
    EXPECT_THAT(sounds[0].measures->channels[0].silences, ElementsAre(audio::FrameRange{0, 2}));
    ASSERT_NE(sounds[1].measures, nullptr);
    EXPECT_THAT(sounds[1].measures->channels[0].fullScale.ranges,
                ElementsAre(audio::FrameRange{0, 3}));
    EXPECT_TRUE(isStagingEmpty());
}

TEST_F(MeasureSources, AFileThatCannotBeHeardCostsNoOther) {
    add(file("text.wav", bytesOf("no audio")));
    add(folder_.file("none.wav"));
    timeline_.essences[add(folder_.file("unset"))].fileURL.reset();
    add(folder_.path().native());
    add(file("whole.wav", waveOf({1})));
    const auto sounds = measured();
    EXPECT_EQ(sounds[0].state, SoundState::refused);
    EXPECT_EQ(sounds[0].reason, "it is no AIFF, AIFC or WAVE file");
    for (const std::size_t missing : {1U, 2U, 3U}) {
        EXPECT_EQ(sounds[missing].state, SoundState::missing) << missing;
        EXPECT_EQ(sounds[missing].reason, "its audio file is missing");
        EXPECT_EQ(sounds[missing].measures, nullptr);
    }
    EXPECT_EQ(sounds[4].state, SoundState::heard);
}

TEST_F(MeasureSources, APipeIsNeverRead) {
    const std::string pipe = folder_.file("pipe.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    add(pipe);
    EXPECT_EQ(measured()[0].state, SoundState::missing);
}

TEST_F(MeasureSources, WhatNoClipPlaysIsNotHeard) {
    add(file("a.wav", waveOf({1})), false);
    EXPECT_EQ(measured()[0].state, SoundState::notPlayed);
    EXPECT_EQ(measured("/bin/false")[0].reason, "");
}

TEST_F(MeasureSources, AFileOfSeveralSourcesIsHeardOnce) {
    const std::string path = file("a.wav", waveOf({1}));
    add(path);
    add(path);
    // Leaves a mark for each run.
    const std::string converter =
        script("echo x >> '" + folder_.file("runs") + "'; exec '" TRELLANT_WAV "' \"$@\"");
    const auto sounds = measured(converter);
    EXPECT_EQ(sounds[0].measures, sounds[1].measures);
    EXPECT_EQ(textOf(readFile(folder_.file("runs"))), "x\n");
}

TEST_F(MeasureSources, TheDepthOfTheHeaderIsTold) {
    // 12 bits at the upper end of 16: 0x7FF0 is the largest.
    timeline_.essences[add(file("a.wav", waveOf({0x7FF0, 0x7FF0, 0x7FF0})))].bitDepth = 12;
    EXPECT_EQ(measured()[0].measures->channels[0].fullScale.total, 1U);
}

TEST_F(MeasureSources, OutlineIsAsFineAsIsWanted) {
    add(file("a.wav", waveOf(std::vector<std::int16_t>(100'000))));
    EXPECT_EQ(measured()[0].measures->peaks.framesPerPair, 13U);
    WorkProgress progress;
    const auto sounds = listening::measureSources(
        timeline_, {.converter = TRELLANT_WAV, .mostPairs = 10}, staging_, progress);
    EXPECT_EQ(sounds[0].measures->peaks.length(), 10U);
}

TEST_F(MeasureSources, AConverterThatIsKilledIsAReason) {
    add(file("a.wav", waveOf({1})));
    const auto sounds = measured(script("echo half > \"$3\"; kill -9 $$"));
    EXPECT_EQ(sounds[0].state, SoundState::refused);
    EXPECT_EQ(sounds[0].reason, "the conversion was ended by signal 9");
    EXPECT_TRUE(isStagingEmpty());
}

TEST_F(MeasureSources, AConverterThatLiesIsAReason) {
    add(file("a.wav", waveOf({1})));
    for (const char* const lie : {"exit 0", "echo nonsense > \"$3\"", "truncate -s 1G \"$3\"",
                                  "ln -s /dev/zero \"$3\"", "mkdir \"$3\""}) {
        const auto sounds = measured(script(lie));
        EXPECT_EQ(sounds[0].state, SoundState::refused) << lie;
        EXPECT_NE(sounds[0].reason, "") << lie;
    }
    EXPECT_EQ(measured(folder_.file("no such converter"))[0].state, SoundState::refused);
}

TEST_F(MeasureSources, AStopEndsTheConverters) {
    for (int i = 0; i < 8; ++i) {
        add(file("a" + std::to_string(i) + ".wav", waveOf({1})));
    }
    const std::string started = folder_.file("started");
    const std::string converter = script("echo $$ >> '" + started + "'; exec sleep 1000");
    StopSource source;
    std::thread stopper([&] {
        while (!fs::exists(started)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        source.request_stop();
    });
    EXPECT_THROW(static_cast<void>(measured(converter, source.get_token())), AAFCancellationError);
    stopper.join();
    // Each of them is gone by now.
    std::istringstream processes(textOf(readFile(started)));
    std::size_t seen = 0;
    for (pid_t process = 0; processes >> process; ++seen) {
        EXPECT_EQ(::kill(process, 0), -1);
    }
    EXPECT_GE(seen, 1U);
    EXPECT_LE(seen, std::max(1U, std::thread::hardware_concurrency()));
}

}  // namespace
}  // namespace trellant::testing
