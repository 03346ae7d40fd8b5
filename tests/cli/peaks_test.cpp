// SPDX-License-Identifier: Apache-2.0
// `trellant peaks` with the real converter. Samples are few, so that their peaks can be seen.
#include "commands.h"
#include "extract_fixture.h"
#include "said.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A path as a text of JSON.
std::string inJson(const std::string& path) {
    std::string text;
    for (const char character : path) {
        text += character == '/' ? "\\/" : std::string(1, character);
    }
    return text;
}

class Peaks : public ::testing::Test {
  protected:
    /// Of one or more files, two samples a pair.
    [[nodiscard]] cli::PeaksOptions options(std::vector<std::string> files) const {
        cli::PeaksOptions options;
        options.files = std::move(files);
        options.samplesPerPair = 2;
        options.destination.path = folder_.file("out.dat");
        options.converter = TRELLANT_WAV;
        return options;
    }
    [[nodiscard]] static Said peaks(const cli::PeaksOptions& options, const Setting& setting = {},
                                    const StopToken& stop = {}) {
        return saidWithStatus(setting, [&](cli::Console& console) {
            return static_cast<int>(cli::runPeaks(options, console, stop));
        });
    }
    std::string voice() { return writeFile(folder_.file("voice.wav"), waveOf({1, -5, 300, 2, 7})); }

    TemporaryDirectory folder_;
};

TEST_F(Peaks, WritesTheDataOfAWaveform) {
    const Said said = peaks(options({voice()}));
    EXPECT_EQ(said.status, 0) << said.errors;
    EXPECT_EQ(said.errors, "");
    // Version 2, 16 bits, 48,000 Hz, two samples a pair, three pairs, one channel.
    EXPECT_EQ(readFile(folder_.file("out.dat")),
              hex("02000000 00000000 80BB0000 02000000 03000000 01000000"
                  "FBFF 0100 0200 2C01 0700 0700"));
}

TEST_F(Peaks, WritesValuesOfEightBits) {
    auto given = options({voice()});
    given.bits = audio::PeakBits::eight;
    EXPECT_EQ(peaks(given).status, 0);
    // -5 and 300 divided by 256, rounded down: -1 and 1.
    EXPECT_EQ(readFile(folder_.file("out.dat")),
              hex("02000000 01000000 80BB0000 02000000 03000000 01000000 FF00 0001 0000"));
}

TEST_F(Peaks, WritesALineOfJsonForEachFile) {
    const std::string stereo =
        writeFile(folder_.file("stereo.aiff"),
                  aiffImage({.channels = 2, .samples = hex("0001 FFFF 0002 FFFE 0003 FFFD")}));
    auto given = options({voice(), stereo});
    given.json = true;
    given.destination.path = "-";
    const Said said = peaks(given);
    EXPECT_EQ(said.status, 0) << said.errors;
    EXPECT_EQ(said.out, "{\"file\":\"" + inJson(folder_.file("voice.wav")) +
                            "\",\"version\":2,\"channels\":1,\"sample_rate\":48000,"
                            "\"samples_per_pixel\":2,\"bits\":16,\"length\":3,"
                            "\"data\":[-5,1,2,300,7,7]}\n"
                            "{\"file\":\"" +
                            inJson(stereo) +
                            "\",\"version\":2,\"channels\":2,\"sample_rate\":48000,"
                            "\"samples_per_pixel\":2,\"bits\":16,\"length\":2,"
                            "\"data\":[1,2,-2,-1,3,3,-3,-3]}\n");
}

TEST_F(Peaks, GivesManyValuesWhole) {
    // More than are read at once: 40,000 samples, a pair each.
    std::vector<std::int16_t> samples;
    std::string expected;
    for (std::int32_t i = 0; i < 40'000; ++i) {
        samples.push_back(static_cast<std::int16_t>(i % 1'000));
        const std::string value = std::to_string(i % 1'000);
        expected += (i == 0 ? "" : ",") + value + "," + value;
    }
    auto given = options({writeFile(folder_.file("long.wav"), waveOf(samples))});
    given.json = true;
    given.samplesPerPair = 1;
    given.destination.path = "-";
    EXPECT_THAT(peaks(given).out, HasSubstr("\"data\":[" + expected + "]}\n"));
}

TEST_F(Peaks, TellOfAFileThatCannotBeReadAndGoOn) {
    const std::string text = writeFile(folder_.file("text.wav"), bytesOf("no audio"));
    auto given = options({text, folder_.file("none.wav"), folder_.path().native(), voice()});
    given.json = true;
    given.destination.path = "-";
    const Said said = peaks(given);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.out, HasSubstr("{\"file\":\"" + inJson(text) +
                                    "\",\"error\":\"it is no AIFF, AIFC or WAVE file\"}\n"));
    EXPECT_THAT(said.out, HasSubstr("\"data\":[-5,1,2,300,7,7]}\n"));
    EXPECT_EQ(said.errors, "trellant: " + text + ": it is no AIFF, AIFC or WAVE file\n" +
                               "trellant: " + folder_.file("none.wav") +
                               ": there is no such file\n" +
                               "trellant: " + folder_.path().native() + ": this is no file\n");
}

TEST_F(Peaks, LeaveNothingWhereThereIsNoWaveform) {
    EXPECT_EQ(peaks(options({folder_.file("none.wav")})).status, 2);
    EXPECT_THAT(namesIn(folder_.path().native()), ElementsAre());
}

TEST_F(Peaks, ReplaceNothingUnasked) {
    const std::string source = voice();
    writeFile(folder_.file("out.dat"), bytesOf("mine"));
    EXPECT_EQ(peaks(options({source})).status, 1);
    EXPECT_EQ(textOf(readFile(folder_.file("out.dat"))), "mine");
    auto given = options({source});
    given.destination.force = true;
    EXPECT_EQ(peaks(given).status, 0);
    EXPECT_EQ(readFile(folder_.file("out.dat")).size(), 36U);
    given.destination.path = source;
    EXPECT_EQ(peaks(given).status, 1);
    EXPECT_EQ(readFile(source), waveOf({1, -5, 300, 2, 7}));
}

TEST_F(Peaks, AreOfOneFileUnlessTheyAreJson) {
    const std::string source = voice();
    const Said said = peaks(options({source, source}));
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors, "trellant: waveform data is of one audio file; --json takes several\n");
}

TEST_F(Peaks, AreNotWrittenToATerminal) {
    auto given = options({voice()});
    given.destination.path = "-";
    const Said said = peaks(given, {.out = Listener::terminal});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.errors,
              "trellant: waveform data is not for a terminal. Name a file with -o, or ask for "
              "--json\n");
}

TEST_F(Peaks, AreCancelled) {
    const std::string slow = writeFile(folder_.file("slow"), bytesOf("#!/bin/sh\nexec sleep 1000"));
    ::chmod(slow.c_str(), 0700);
    auto given = options({voice()});
    given.converter = slow;
    StopSource source;
    source.request_stop();
    const Said said = peaks(given, {}, source.get_token());
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.errors, "trellant: cancelled\n");
    EXPECT_FALSE(fs::exists(folder_.file("out.dat")));
}

TEST_F(Peaks, LeaveNothingInTheFolderOfTemporaryFiles) {
    TemporaryDirectory temporary;
    const Setting setting{.environment = {{"TMPDIR", temporary.path().native()}}};
    EXPECT_EQ(peaks(options({voice()}), setting).status, 0);
    EXPECT_THAT(namesIn(temporary.path().native()), ElementsAre());
}

}  // namespace
}  // namespace trellant::testing
