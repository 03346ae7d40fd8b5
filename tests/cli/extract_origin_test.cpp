// SPDX-License-Identifier: Apache-2.0
// Audio of a tape with labels, and audio whose own name says nothing: what its files say of it, and
// what they are called.
#include "recorded_fixture.h"
#include "spawned_program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// What a program of the system says on standard output; nothing where there is none.
std::string said(const std::string& commandLine) {
    struct Closer {
        void operator()(std::FILE* file) const noexcept { static_cast<void>(::pclose(file)); }
    };
    const std::unique_ptr<std::FILE, Closer> pipe(
        ::popen((commandLine + " 2>/dev/null").c_str(), "r"));
    std::string text;
    std::array<char, 4096> piece{};
    for (std::size_t read = 1; pipe != nullptr && read != 0;) {
        read = std::fread(piece.data(), 1, piece.size(), pipe.get());
        text.append(piece.data(), read);
    }
    return text;
}

bool isInstalled(const std::string& program) {
    return !said("command -v " + program).empty();
}

class ExtractOrigin : public RecordedTest {
  protected:
    [[nodiscard]] cli::ExtractOptions asWave(const std::string& file) const {
        cli::ExtractOptions wanted = options(file);
        wanted.call.wav = true;
        wanted.call.json = true;
        return wanted;
    }
};

Bytes aifcOf(std::size_t frames) {
    return aiffImage({.formType = "AIFC", .sampleRate = 48'000, .samples = Bytes(2 * frames)});
}

// 900,000 frames are 36,000 s; with 90.5 s 36,090.5, times 48,000 samples 1,732,344,000.
constexpr const char* timeReference = "1732344000";

TEST_F(ExtractOrigin, AWaveFileSaysWhereOnItsTapeItLies) {
    addTape();
    addRecorded(1, "Boom.wav", MediaKind::aifc, aifcOf(480), "Boom");
    addRecorded(2, "Lav.wav", MediaKind::wave, waveOf(std::vector<std::int16_t>(480)), "Lav");
    extractWell(asWave(writeRecorded()));
    for (const std::string name : {"Boom.wav", "Lav.wav"}) {
        const std::string text = textOf(readFile(out(name)));
        EXPECT_THAT(text, HasSubstr("<TAPE>TAPE &lt;7&gt;</TAPE>"));
        EXPECT_THAT(text, HasSubstr("<TIMECODE_RATE>25/1</TIMECODE_RATE>"));
        EXPECT_THAT(text, HasSubstr("<TIMECODE_FLAG>NDF</TIMECODE_FLAG>"));
        EXPECT_THAT(text, HasSubstr("<AUDIO_BIT_DEPTH>16</AUDIO_BIT_DEPTH>"));
        EXPECT_THAT(text, HasSubstr("<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>" +
                                    std::string(timeReference) + "<"));
        EXPECT_THAT(text, HasSubstr("<PROJECT>Night</PROJECT>"));
    }
}

TEST_F(ExtractOrigin, IsReadByFfprobe) {
    if (!isInstalled("ffprobe")) {
        GTEST_SKIP() << "ffprobe is not installed";
    }
    addTape();
    addRecorded(1, "Boom.wav", MediaKind::aifc, aifcOf(480), "Boom");
    extractWell(asWave(writeRecorded()));
    const auto tags = nlohmann::json::parse(
        said("ffprobe -v error -of json -show_entries format_tags '" + out("Boom.wav") + "'"));
    EXPECT_EQ(tags.at("format").at("tags").at("time_reference"), timeReference);
    EXPECT_EQ(tags.at("format").at("tags").at("comment"), "Boom.wav");
    EXPECT_EQ(tags.at("format").at("tags").at("encoded_by"), "Trellant");
    EXPECT_EQ(tags.at("format").at("tags").at("originator_reference"),
              "00000001-00000000-00000001");
}

TEST_F(ExtractOrigin, IsReadByMediaInfo) {
    if (!isInstalled("mediainfo")) {
        GTEST_SKIP() << "mediainfo is not installed";
    }
    addTape();
    addRecorded(1, "Boom.wav", MediaKind::aifc, aifcOf(480), "Boom");
    extractWell(asWave(writeRecorded()));
    const std::string facts = said("mediainfo --Full '" + out("Boom.wav") + "'");
    // 36,090.5 s after midnight.
    EXPECT_THAT(facts, HasSubstr(": 10:01:30.500\n"));
    EXPECT_THAT(facts, HasSubstr(": Container (bext)\n"));
    EXPECT_THAT(facts, HasSubstr(": Boom.wav\n"));
}

TEST_F(ExtractOrigin, AWaveFileThatSaysSoItselfStaysAsItIs) {
    const Bytes media =
        waveImage({.samples = Bytes(960), .leadingChunks = {{.id = "bext", .data = Bytes(602)}}});
    addTape();
    addRecorded(1, "Boom.wav", MediaKind::wave, media, "Boom");
    const std::string document = writeRecorded();
    const Said told = extract(asWave(document));
    EXPECT_EQ(told.status, 0);
    EXPECT_THAT(told.errors, HasSubstr("Boom.wav stays as it is, without the timecode of its tape: "
                                       "it says itself where its sound comes from"));
    EXPECT_EQ(readFile(out("Boom.wav")), media);
}

TEST_F(ExtractOrigin, WhatAWaveFileHoldsBesideItsSoundGoesAlong) {
    const Bytes media = waveImage(
        {.samples = Bytes(960), .leadingChunks = {{.id = "note", .data = bytesOf("four")}}});
    addTape();
    addRecorded(1, "Boom.wav", MediaKind::wave, media, "Boom");
    extractWell(asWave(writeRecorded()));
    EXPECT_THAT(textOf(readFile(out("Boom.wav"))),
                HasSubstr(std::string("note\x04\0\0\0four", 12)));
}

TEST_F(ExtractOrigin, WithoutATapeAWaveFileStaysAsItIs) {
    const Bytes media = waveOf({1, 2, 3});
    add({.name = "Boom.wav", .media = media, .clipLength = 1});
    extractWell(asWave(writeDocument()));
    EXPECT_EQ(readFile(out("Boom.wav")), media);
}

TEST_F(ExtractOrigin, FilesThatShareANameAreCalledAfterTheirMasterMobs) {
    addRecorded(1, "Audio.wav", MediaKind::wave, waveOf({1}), "Anna: take 1");
    addRecorded(2, "audio.aif", MediaKind::wave, waveOf({2}), "Ben");
    addRecorded(3, "mix.wav", MediaKind::wave, waveOf({3}), "Rain.WAV");
    addRecorded(4, "Door.wav", MediaKind::wave, waveOf({4}), "Knock");
    const std::string document = writeRecorded();
    cli::ExtractOptions wanted = options(document);
    wanted.call.json = true;
    const auto report = nlohmann::json::parse(extractWell(wanted));
    // "mix" is the name of the OMF file; a name of its own stays, ":" is no part of one, and one
    // extension is enough.
    EXPECT_THAT(namesIn(out()), ElementsAre("Anna_ take 1.wav", "Ben.wav", "Door.wav",
                                            "MANIFEST.sha256", "Rain.wav", "timeline.json"));
    for (const auto& audio : report.at("audio")) {
        EXPECT_EQ(audio.contains("nameFrom"), audio.at("name") != "Door.wav") << audio;
    }
}

TEST_F(ExtractOrigin, FilesAreCalledAfterTheirSourcesWhereThatIsWanted) {
    addRecorded(1, "Audio.wav", MediaKind::wave, waveOf({1}), "Anna");
    addRecorded(2, "Audio.wav", MediaKind::wave, waveOf({2}), "Ben");
    cli::ExtractOptions wanted = options(writeRecorded());
    wanted.call.naming = FileNaming::source;
    extractWell(wanted);
    EXPECT_THAT(namesIn(out()),
                ElementsAre("Audio.wav", "Audio_2.wav", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(ExtractOrigin, WithoutANamedMasterMobTheSourceNamesTheFile) {
    addRecorded(1, "mix.wav", MediaKind::wave, waveOf({1}), std::nullopt);
    extractWell(options(writeRecorded()));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "mix.wav", "timeline.json"));
}

TEST_F(ExtractOrigin, WordsThatSayNothingAreWrongUse) {
    const std::string source = writeFile(folder_.file("in.wav"), waveOf({1}));
    const std::vector<std::string> whole{TRELLANT_WAV,         "--origin", source,        out("x"),
                                         "since-midnight=1/2", "rate=25",  "counting=NDF"};
    for (const char* const word : {"tape", "kind=x", "rate=0", "rate=x", "counting=drop",
                                   "date=soon", "since-midnight=-1", "since-midnight=1/0"}) {
        std::vector<std::string> line = whole;
        line.emplace_back(word);
        EXPECT_EQ(runProgram(line, [] {}).status, 1) << word;
    }
    EXPECT_EQ(runProgram({TRELLANT_WAV, "--origin", source, out("x"), "rate=25"}, [] {}).status, 1);
}

}  // namespace
}  // namespace trellant::testing
