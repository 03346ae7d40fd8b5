// SPDX-License-Identifier: Apache-2.0
// What an extraction has come to: for people by screens of any width, for programs by one line.
#include "extract/report.h"
#include "extract/report_table.h"
#include "terminal/console.h"
#include "terminal/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace trellant::cli {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

AudioFacts secondOfAudio() {
    AudioFacts facts;
    facts.format.sampleRate = AAFRational(48'000);
    facts.format.channels = 1;
    facts.format.bitDepth = 16;
    facts.frames = 48'000;
    return facts;
}

/// Two sources at 25 frames a second: one taken out, one that is missing.
class ExtractReport : public ::testing::Test {
  protected:
    ExtractReport() {
        report_.file = "mix.omf";
        report_.directory = "audio";
        report_.timeline.name = "timeline.json";
        report_.manifest.name = "MANIFEST.sha256";
        const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
        timeline().clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
        addSource("Kick.wav");
        addSource("Snare.wav");
        timeline().essences[0].embedded = true;
        timeline().essences[0].bitDepth = 16;
        timeline().essences[0].codec = "PCM";
        timeline().essences[1].originalPath = "D:\\Audio\\Snare.wav";
        AudioEntry taken{.state = AudioState::takenOut,
                         .essences = {0},
                         .clips = 3,
                         .path = "/there/audio/Kick.wav",
                         .facts = secondOfAudio()};
        taken.placed = PlacedFile{
            .path = "/there/audio/Kick.wav", .name = "Kick.wav", .sha256 = std::string(64, 'a')};
        report_.audio = {taken, {.state = AudioState::missing, .essences = {1}, .clips = 1}};
    }

    AAFTimeline& timeline() { return report_.handOff.timeline; }
    void addSource(const std::string& name) {
        AAFSourceEssence essence;
        essence.id = "e" + std::to_string(timeline().essences.size() + 1);
        essence.sourceName = name;
        essence.sampleRate = AAFRational(48'000);
        essence.channelCount = 1;
        timeline().essences.push_back(essence);
    }
    [[nodiscard]] std::string screen(std::size_t columns = Console::unlimitedColumns) const {
        return summaryScreen(report_, columns, false);
    }
    [[nodiscard]] json line() const { return json::parse(summaryLine(report_)); }

    ExtractionReport report_;
};

TEST_F(ExtractReport, ScreenHasWhatIsThereThenWhatIsMissingThenWhatToDo) {
    EXPECT_EQ(
        screen(),
        "mix.omf\n"
        "  Audio      1 taken out, 1 missing\n"
        "  Folder     audio\n"
        "  Timeline   timeline.json\n"
        "  Checksums  MANIFEST.sha256, to be checked in the folder by: sha256sum -c "
        "MANIFEST.sha256\n"
        "\n"
        "Audio file  Source    Clips       Length   Rate  Bits  Channels  State\n"
        "Kick.wav    Kick.wav      3  00:00:01:00  48000    16  mono      taken out\n"
        "\n"
        "Missing\n"
        "  Snare.wav, 1 clip, recorded as D:\\Audio\\Snare.wav\n"
        "\n"
        "  If you know where the missing audio files lie: trellant extract mix.omf --to audio "
        "--media FOLDER\n");
}

TEST_F(ExtractReport, WithoutAnyFileThereIsNoTable) {
    report_.audio.erase(report_.audio.begin());
    EXPECT_THAT(screen(), AllOf(HasSubstr("  Audio      1 missing\n"), Not(HasSubstr("State")),
                                HasSubstr("\nMissing\n")));
    report_.audio.clear();
    EXPECT_THAT(screen(), AllOf(HasSubstr("  Audio      none\n"), Not(HasSubstr("Missing"))));
}

TEST_F(ExtractReport, EachFileIsCountedOnceByWhatTheRunDid) {
    report_.audio[0].placed->wasThere = true;
    AudioEntry converted = report_.audio[0];
    converted.placed->wasThere = false;
    converted.state = AudioState::converted;
    report_.audio.push_back(converted);
    AudioEntry found{.state = AudioState::found, .essences = {1}, .path = "/media/Snare.wav"};
    report_.audio.push_back(found);
    EXPECT_THAT(screen(),
                HasSubstr("  Audio      1 taken out as WAVE, 1 found, 1 missing, 1 already "
                          "there, 1 of them no readable audio\n"));
    EXPECT_THAT(screen(), HasSubstr("found, but no readable audio\n"));
}

TEST_F(ExtractReport, NarrowScreensKeepNamesAndStates) {
    for (std::size_t columns = 44; columns <= 100; columns += 7) {
        const std::string table = fittingTable(report_, columns, false);
        for (std::size_t begin = 0; begin < table.size();) {
            const std::size_t end = table.find('\n', begin);
            EXPECT_LE(displayWidth(table.substr(begin, end - begin)), columns) << columns;
            begin = end + 1;
        }
        EXPECT_THAT(table, AllOf(HasSubstr("Kick.wav"), HasSubstr("State"))) << columns;
    }
}

TEST_F(ExtractReport, WideScreensHaveEveryColumn) {
    EXPECT_THAT(fittingTable(report_, 100, false),
                StartsWith("Audio file  Source    Clips       Length   Rate  Bits  Channels  "
                           "State\n"));
    // 73 cells are one less than that takes: bits and channels go.
    EXPECT_THAT(fittingTable(report_, 66, false),
                AllOf(Not(HasSubstr("Bits")), HasSubstr("Rate"), HasSubstr("Source")));
}

TEST_F(ExtractReport, CandidatesAreListedWithWhatTheyAre) {
    AudioEntry& entry = report_.audio[1];
    entry.state = AudioState::undecided;
    AudioFacts other = secondOfAudio();
    other.format.sampleRate = AAFRational(44'100);
    other.format.channels = 2;
    other.frames = 88'200;
    entry.candidates = {{.path = "/a/Snare.wav", .facts = secondOfAudio()},
                        {.path = "/b/Snare.wav", .facts = other, .misfit = "another rate"},
                        {.path = "/c/Snare.wav", .misfit = "no readable audio file"}};
    EXPECT_THAT(screen(),
                HasSubstr("    /a/Snare.wav: 00:00:01:00 (48000 samples), 48000 Hz, mono, fits\n"
                          "    /b/Snare.wav: 00:00:02:00 (88200 samples), 44100 Hz, stereo, does "
                          "not fit: another rate\n"
                          "    /c/Snare.wav: no readable audio file\n"));
    EXPECT_THAT(screen(),
                HasSubstr("  Several files bear one name, or the one that does is another "
                          "recording: give a folder with the right one only by --media "
                          "FOLDER\n"));
}

TEST_F(ExtractReport, OfManyCandidatesTenAreListed) {
    AudioEntry& entry = report_.audio[1];
    entry.state = AudioState::undecided;
    entry.candidates.assign(12, {.path = "/a/Snare.wav", .facts = secondOfAudio()});
    entry.filesOfName = 70;
    EXPECT_THAT(screen(), HasSubstr("fits\n    and 60 more\n"));
    EXPECT_EQ(line().at("audio").at(1).at("candidates").size(), 12U);
}

TEST_F(ExtractReport, LossesAreCountedWithWhereToReadThem) {
    timeline().unsupportedFeatures = {{.description = "x"}};
    EXPECT_THAT(screen(),
                HasSubstr("  1 thing was not carried over: trellant list losses mix.omf\n"));
    timeline().unsupportedFeatures.push_back({.description = "y"});
    EXPECT_THAT(screen(),
                HasSubstr("  2 things were not carried over: trellant list losses mix.omf\n"));
}

TEST_F(ExtractReport, NamesFromStrangersAreHarmless) {
    timeline().essences[1].sourceName = "Sn\u202eare\x1b[2J";
    report_.file = "-mix $(x).omf";
    EXPECT_THAT(screen(), AllOf(HasSubstr("Sn\uFFFDare\uFFFD[2J, 1 clip"), Not(HasSubstr("\u202e")),
                                HasSubstr("trellant extract './-mix $(x).omf' --to audio")));
}

TEST_F(ExtractReport, LineHasEveryFactOfAFileThatWasTakenOut) {
    const json taken = line().at("audio").at(0);
    EXPECT_EQ(taken, json::parse(R"({"state":"takenOut","name":"Kick.wav",
        "path":"/there/audio/Kick.wav","fileURL":"file:///there/audio/Kick.wav",
        "sources":[{"id":"e1","name":"Kick.wav","state":"embedded"}],"clips":3,"frames":48000,
        "lengthSeconds":1,"lengthSecondsExact":"1","sampleRate":48000,"sampleRateExact":"48000",
        "bitDepth":16,"channels":1,"codec":"PCM","sha256":")" +
                                 std::string(64, 'a') +
                                 R"(","wasThere":false,"readable":true,"candidates":[]})"));
}

TEST_F(ExtractReport, LineLeavesOutWhatAMissingFileHasNot) {
    const json missing = line().at("audio").at(1);
    EXPECT_EQ(missing, json::parse(R"({"state":"missing",
        "sources":[{"id":"e2","name":"Snare.wav","state":"missing"}],"clips":1,
        "sampleRate":48000,"sampleRateExact":"48000","recordedPath":"D:\\Audio\\Snare.wav",
        "wasThere":false,"readable":false,"candidates":[]})"));
}

TEST_F(ExtractReport, LineHasTheCallAndItsCounts) {
    timeline().unsupportedFeatures = {{.description = "x"}};
    report_.handOff.changes = {{.code = "c"}, {.code = "d"}};
    EXPECT_EQ(line().at("file"), "mix.omf");
    EXPECT_EQ(line().at("directory"), "audio");
    EXPECT_EQ(line().at("timeline"), "timeline.json");
    EXPECT_EQ(line().at("manifest"), "MANIFEST.sha256");
    EXPECT_EQ(line().at("losses"), 1);
    EXPECT_EQ(line().at("changes"), 2);
    EXPECT_FALSE(line().contains("notPlayed"));
    report_.embedded.emplace();
    report_.embedded->unusedCount = 4;
    EXPECT_EQ(line().at("notPlayed"), 4);
}

TEST_F(ExtractReport, CandidatesOfALineSayWhyTheyDoNotFit) {
    AudioEntry& entry = report_.audio[1];
    entry.candidates = {{.path = "/a/\xFF.wav", .facts = secondOfAudio(), .misfit = "too short"}};
    EXPECT_EQ(line().at("audio").at(1).at("candidates").at(0),
              json::parse(R"({"path":"/a/\ufffd.wav","fileURL":"file:///a/%FF.wav","frames":48000,
        "lengthSeconds":1,"lengthSecondsExact":"1","sampleRate":48000,"sampleRateExact":"48000",
        "channels":1,"bitDepth":16,"fits":false,"misfit":"too short"})"));
}

TEST_F(ExtractReport, EveryStateHasAWordForPeople) {
    EXPECT_EQ(stateText(AudioState::takenOut), "taken out");
    EXPECT_EQ(stateText(AudioState::converted), "taken out as WAVE");
    EXPECT_EQ(stateText(AudioState::found), "found");
    EXPECT_EQ(stateText(AudioState::missing), "missing");
    EXPECT_EQ(stateText(AudioState::undecided), "missing, files of its name do not decide");
    EXPECT_EQ(stateText(AudioState::failed), "could not be taken out");
}

}  // namespace
}  // namespace trellant::cli
