// SPDX-License-Identifier: Apache-2.0
// Audio files beside the interchange file: which of those that bear the name is taken.
#include "extract_fixture.h"

#include <trellant/handoff/media_folders.h>
#include <trellant/handoff/missing_media.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A second at 48000 Hz, which is what the clips of these tests play.
constexpr std::size_t needed = 48'000;

Bytes silence(std::size_t frames, std::uint32_t sampleRate = 48'000) {
    return waveOf(std::vector<std::int16_t>(frames), sampleRate);
}

class ExtractMedia : public ExtractTest {
  protected:
    /// A file below a media folder; its path.
    std::string media(const std::string& place, const Bytes& bytes) {
        fs::create_directories(fs::path(folder_.file(place)).parent_path());
        return writeFile(folder_.file(place), bytes);
    }
    /// A document with one source outside, recorded as a Windows path, whose clip plays a
    /// second; options with these media folders.
    cli::ExtractOptions searching(const std::vector<std::string>& folders) {
        add({.name = "Kick",
             .locators = {omf_.dosLocator("D:\\Audio\\Kick.WAV")},
             .clipLength = 100});
        auto call = options(writeDocument());
        for (const std::string& folder : folders) {
            fs::create_directories(folder_.file(folder));
            call.call.mediaFolders.push_back(folder_.file(folder));
        }
        return call;
    }
};

TEST_F(ExtractMedia, FileInTheFirstFolderIsFoundAndStaysWhereItIs) {
    const std::string kick = media("a/deep/kick.wav", silence(needed));
    const std::string said = extractWell(searching({"a", "b"}));
    EXPECT_EQ(pathOfSource(1), kick);
    EXPECT_THAT(said, HasSubstr("  Audio      1 found\n"));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "timeline.json"));
}

TEST_F(ExtractMedia, FileInALaterFolderIsFoundWithItsFormat) {
    const std::string kick = media("c/kick.wav", silence(needed));
    extractWell(searching({"a", "b", "c"}));
    const AAFSourceEssence essence = timeline().essences.at(0);
    EXPECT_EQ(essence.fileURL, AAFURL{"../c/kick.wav"});
    EXPECT_EQ(pathOfSource(1), kick);
    EXPECT_EQ(essence.bitDepth, 16);
    EXPECT_EQ(essence.codec, "PCM");
    EXPECT_EQ(essence.originalPath, "D:\\Audio\\Kick.WAV");
}

TEST_F(ExtractMedia, OfSeveralFilesTheOnlyOneThatFitsIsTaken) {
    media("a/kick.wav", silence(needed - 1));
    media("a/old/KICK.wav", silence(needed, 44'100));
    const std::string fitting = media("b/Kick.WAV", silence(needed));
    const std::string said = extractWell(searching({"a", "b"}));
    EXPECT_EQ(pathOfSource(1), fitting);
    EXPECT_THAT(said, Not(HasSubstr("Missing")));
}

TEST_F(ExtractMedia, TwoFilesThatFitAreListedAndNoneIsTaken) {
    const std::string first = media("a/kick.wav", silence(needed));
    const std::string second = media("b/kick.wav", silence(needed * 2));
    const std::string said = extractWell(searching({"a", "b"}));
    EXPECT_EQ(pathOfSource(1), std::nullopt);
    EXPECT_THAT(said, HasSubstr("  Audio      1 missing, files of its name do not decide\n"));
    EXPECT_THAT(said, HasSubstr("\nMissing\n"
                                "  Kick, 1 clip, recorded as D:\\Audio\\Kick.WAV\n"
                                "    " +
                                first +
                                ": 00:00:01:00 (48000 samples), 48000 Hz, mono, fits\n"
                                "    " +
                                second + ": 00:00:02:00 (96000 samples), 48000 Hz, mono, fits\n"));
    EXPECT_THAT(said, HasSubstr("\n  Several files bear one name, or the one that does is another "
                                "recording: give a folder with the right one only by --media "
                                "FOLDER\n"));
}

TEST_F(ExtractMedia, WrongFileInTheFirstFolderGivesWayToTheRightOneInTheSecond) {
    media("a/kick.wav", silence(needed, 44'100));
    const std::string right = media("b/kick.wav", silence(needed));
    extractWell(searching({"a", "b"}));
    EXPECT_EQ(pathOfSource(1), right);
}

TEST_F(ExtractMedia, SingleFileThatIsTooShortIsListedAndNotTaken) {
    const std::string shorter = media("a/kick.wav", silence(24'960));
    const std::string said = extractWell(searching({"a"}));
    EXPECT_EQ(pathOfSource(1), std::nullopt);
    EXPECT_THAT(said, HasSubstr("    " + shorter +
                                ": 00:00:00:13 (24960 samples), 48000 Hz, mono, does not fit: "
                                "too short, the clips need 48000 samples\n"));
}

TEST_F(ExtractMedia, FileThatIsNoAudioIsListedAndNotTaken) {
    const std::string text = media("a/kick.wav", bytesOf("no audio"));
    const std::string said = extractWell(searching({"a"}));
    EXPECT_EQ(pathOfSource(1), std::nullopt);
    EXPECT_THAT(said, HasSubstr("    " + text + ": no readable audio file\n"));
}

TEST_F(ExtractMedia, FileThatIsWhereTheLocatorSaysIsTakenFromThere) {
    media("b/kick.wav", silence(needed * 2));
    const std::string named = media("elsewhere/kick.wav", silence(needed));
    add({.name = "Kick", .locators = {omf_.unixLocator(named)}, .clipLength = 100});
    auto call = options(writeDocument());
    call.call.mediaFolders = {folder_.file("b")};
    extractWell(call);
    EXPECT_EQ(pathOfSource(1), named);
}

TEST_F(ExtractMedia, FileOfARateOtherThanTheSourcesNeverShiftsTheClips) {
    // The clip begins half a second in, which is another sample in a file of another rate.
    const MobID kick{7, 7, 7};
    omf_.audioFile({.id = kick,
                    .name = "Kick",
                    .length = 48'000,
                    .locators = {omf_.dosLocator("D:\\Kick.wav")},
                    .track = {.id = 1, .physicalTrack = 1}});
    const ObjectID clip = omf_.clip({.length = 12'000, .source = kick, .start = 24'000});
    omf_.composition(
        {.name = "Mix", .slots = {omf_.slot({.editRate = Ratio{48'000}, .segment = clip})}});
    auto call = options(writeFile(folder_.file("mix.omf"), omf_.build()));
    call.call.mediaFolders = {folder_.path().string()};
    media("kick.wav", silence(96'000, 96'000));
    extractWell(call);
    EXPECT_EQ(timeline().essences.at(0).fileURL, std::nullopt);
    EXPECT_EQ(timeline().essences.at(0).sampleRate, AAFRational(48'000));
    EXPECT_EQ(timeline().events.at(0).sourceStartSample, 24'000);
}

TEST_F(ExtractMedia, OnlyFileOfTheNameIsNotTakenWhenItIsAnotherRecording) {
    const std::string other = media("b/kick.wav", silence(88'200, 44'100));
    const std::string said = extractWell(searching({"a", "b"}));
    EXPECT_EQ(pathOfSource(1), std::nullopt);
    EXPECT_THAT(
        said,
        HasSubstr("    " + other +
                  ": 00:00:02:00 (88200 samples), 44100 Hz, mono, does not fit: another rate, the "
                  "clips need 48000 Hz\n"));
}

TEST_F(ExtractMedia, MissingFileIsToldWithThePathThatWasRecordedAndWhatToDo) {
    const auto call = searching({});
    const std::string said = extractWell(call);
    EXPECT_THAT(said, HasSubstr("\nMissing\n  Kick, 1 clip, recorded as D:\\Audio\\Kick.WAV\n"));
    EXPECT_THAT(said, HasSubstr("\n  If you know where the missing audio files lie: trellant "
                                "extract " +
                                call.call.files.front() + " --to " + out() + " --media FOLDER\n"));
}

TEST_F(ExtractMedia, WhatAnEarlierRunWroteIsNoFind) {
    // An embedded source and one outside bear the same name, and the folder for the audio lies
    // below the media folder.
    add({.name = "Kick.wav", .media = silence(needed)});
    auto call = searching({"a"});
    call.call.directory = folder_.file("a/out");
    EXPECT_THAT(extractWell(call), HasSubstr("  Audio      1 taken out, 1 missing\n"));
    EXPECT_THAT(extractWell(call), HasSubstr("  Audio      1 missing, 1 already there\n"));
    EXPECT_THAT(namesIn(folder_.file("a/out")),
                ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(ExtractMedia, FolderForTheAudioMayBeTheMediaFolder) {
    const std::string kick = media("out/kick.wav", silence(needed));
    auto call = searching({"out"});
    extractWell(call);
    EXPECT_EQ(pathOfSource(1), kick);
    extractWell(call);
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "kick.wav", "timeline.json"));
}

TEST_F(ExtractMedia, ForceNeverReplacesMediaThatWereFound) {
    // An embedded source gets the name of a file that another source is found in.
    add({.name = "kick.wav", .media = silence(1)});
    const std::string found = media("out/kick.wav", silence(needed));
    auto call = searching({"out"});
    call.call.force = true;
    extractWell(call);
    EXPECT_EQ(readFile(found), silence(needed));
    EXPECT_EQ(readFile(out("kick_2.wav")), silence(1));
}

TEST_F(ExtractMedia, AFileThatIsMissingStandsInOnePlaceOnly) {
    add({.name = "Snare.wav", .media = silence(needed)});
    const std::string said = extractWell(searching({}));
    EXPECT_EQ(said.find("Kick"),
              said.rfind("Kick.WAV") - std::string("Kick, 1 clip, recorded as D:\\Audio\\").size());
}

TEST_F(ExtractMedia, ManyMissingFilesAreNotAllListedOnTheScreen) {
    for (int i = 0; i < 60; ++i) {
        add({.name = "Take " + std::to_string(i),
             .locators = {omf_.dosLocator("D:\\Take.WAV")},
             .clipLength = 100});
    }
    auto call = options(writeDocument());
    const std::string said = extractWell(call);
    EXPECT_THAT(said, HasSubstr("  Take 49, 1 clip"));
    EXPECT_THAT(said, Not(HasSubstr("Take 50")));
    EXPECT_THAT(said, HasSubstr("\n  and 10 more: --json lists all\n"));
    call.call.json = true;
    EXPECT_THAT(extractWell(call), HasSubstr("\"name\":\"Take 59\""));
}

TEST_F(ExtractMedia, AHandOffWithoutAnyOfItsAudioIsAWarning) {
    const auto call = searching({});
    EXPECT_EQ(extract(call).errors,
              "trellant: " + call.call.files.front() +
                  ": none of its audio files is there; name the folder that holds them with "
                  "--media FOLDER\n");
}

}  // namespace
}  // namespace trellant::testing
