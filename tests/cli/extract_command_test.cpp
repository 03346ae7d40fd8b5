// SPDX-License-Identifier: Apache-2.0
// Extraction as a person meets it: what lies in the folder afterwards, and what is said about it.
#include "extract_fixture.h"

#include <trellant/base/file_descriptor.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::vector<std::int16_t> kick{1, 2, 3, 4};
const std::vector<std::int16_t> snare{5, 6, 7, 8};

/// Whether sha256sum finds every file of the manifest as it says.
bool checksOut(const std::string& folder, const std::string& manifest) {
    const std::string command =
        "cd '" + folder + "' && sha256sum --quiet --strict -c " + manifest + " 2>&1";
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    return pipe != nullptr && ::pclose(pipe) == 0;
}

class Extract : public ExtractTest {};

TEST_F(Extract, PutsEachAudioFileTimelineAndManifestIntoTheFolder) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    add({.name = "Snare.wav", .media = waveOf(snare)});
    extractWell(options(writeDocument()));
    EXPECT_THAT(namesIn(out()),
                ElementsAre("Kick.wav", "MANIFEST.sha256", "Snare.wav", "timeline.json"));
    EXPECT_EQ(readFile(out("Kick.wav")), waveOf(kick));
    EXPECT_EQ(readFile(out("Snare.wav")), waveOf(snare));
    EXPECT_EQ(pathOfSource(1), out("Kick.wav"));
    EXPECT_EQ(pathOfSource(2), out("Snare.wav"));
}

TEST_F(Extract, ManifestIsSortedAndSha256sumAgrees) {
    add({.name = "Snare.wav", .media = waveOf(snare)});
    add({.name = "Kick.wav", .media = waveOf(kick)});
    extractWell(options(writeDocument()));
    const std::string manifest = textOf(readFile(out("MANIFEST.sha256")));
    const auto nameAt = [&](const char* name) { return manifest.find(name); };
    EXPECT_LT(nameAt("  Kick.wav\n"), nameAt("  Snare.wav\n"));
    EXPECT_LT(nameAt("  Snare.wav\n"), nameAt("  timeline.json\n"));
    EXPECT_TRUE(checksOut(out(), "MANIFEST.sha256"));
    writeFile(out("Kick.wav"), waveOf(snare));
    EXPECT_FALSE(checksOut(out(), "MANIFEST.sha256"));
}

TEST_F(Extract, TwiceInARowChangesNothing) {
    add({.name = "Take.wav", .media = waveOf(kick)});
    add({.name = "Take.wav", .media = waveOf(snare)});
    add({.name = "Take.wav", .media = waveOf(kick)});
    const auto call = options(writeDocument());
    extractWell(call);
    const auto names = namesIn(out());
    EXPECT_THAT(names, ElementsAre("MANIFEST.sha256", "Take.wav", "Take_2.wav", "Take_3.wav",
                                   "timeline.json"));
    struct stat before {};
    ASSERT_EQ(::stat(out("Take_2.wav").c_str(), &before), 0);
    const Bytes timelineBefore = readFile(out("timeline.json"));
    const std::string said = extractWell(call);
    struct stat after {};
    ASSERT_EQ(::stat(out("Take_2.wav").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(namesIn(out()), names);
    EXPECT_EQ(readFile(out("timeline.json")), timelineBefore);
    EXPECT_THAT(said, HasSubstr("  Audio      3 already there\n"));
}

TEST_F(Extract, OtherFilesOfTheNameStayAndTheNewOneIsNumbered) {
    add({.name = "Take.wav", .media = waveOf(kick)});
    const auto call = options(writeDocument());
    fs::create_directory(out());
    writeFile(out("Take.wav"), bytesOf("mine"));
    writeFile(out("timeline.json"), bytesOf("mine too"));
    const Said said = extract(call);
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "Take.wav", "Take_2.wav",
                                            "timeline.json", "timeline_2.json"));
    EXPECT_EQ(textOf(readFile(out("Take.wav"))), "mine");
    EXPECT_EQ(textOf(readFile(out("timeline.json"))), "mine too");
    EXPECT_EQ(readFile(out("Take_2.wav")), waveOf(kick));
    EXPECT_EQ(timeline("timeline_2.json").essences.at(0).fileURL, AAFURL{"Take_2.wav"});
    EXPECT_EQ(said.errors,
              "trellant: timeline.json is there with other contents and stays; this one is "
              "timeline_2.json\n");
    EXPECT_TRUE(checksOut(out(), "MANIFEST.sha256"));
}

TEST_F(Extract, ForceReplacesFilesOfTheName) {
    add({.name = "Take.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.force = true;
    fs::create_directory(out());
    writeFile(out("Take.wav"), bytesOf("mine"));
    writeFile(out("timeline.json"), bytesOf("mine too"));
    extractWell(call);
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "Take.wav", "timeline.json"));
    EXPECT_EQ(readFile(out("Take.wav")), waveOf(kick));
}

TEST_F(Extract, NeverReplacesAudioOfOneSourceByAnothers) {
    constexpr std::uint32_t count = 1'005;
    for (std::uint32_t source = 1; source <= count; ++source) {
        add({.name = "Audio 1.wav", .media = waveOf({static_cast<std::int16_t>(source)})});
    }
    const auto call = options(writeDocument());
    extractWell(call);
    EXPECT_EQ(namesIn(out()).size(), count + 2);
    const AAFTimeline made = timeline();
    ASSERT_EQ(made.essences.size(), count);
    for (std::uint32_t source = 1; source <= count; ++source) {
        // The mob identifiers ascend with the sources, and so do the essences.
        const auto path = pathOfReference(made.essences[source - 1].fileURL.value().text, out());
        ASSERT_EQ(sampleBytesOf(path.value()), samples16({static_cast<std::int16_t>(source)}));
    }
    const auto names = namesIn(out());
    EXPECT_THAT(extractWell(call), HasSubstr("  Audio      1005 already there\n"));
    EXPECT_EQ(namesIn(out()), names);
}

TEST_F(Extract, NumberThatASourceIsCalledByIsNotGivenToAnother) {
    add({.name = "Take_1000.wav", .media = waveOf({7})});
    constexpr std::uint32_t count = 1'002;
    for (std::uint32_t source = 2; source <= count; ++source) {
        add({.name = "Take.wav", .media = waveOf({static_cast<std::int16_t>(source)})});
    }
    extractWell(options(writeDocument()));
    const AAFTimeline made = timeline();
    EXPECT_EQ(made.essences.at(0).fileURL, AAFURL{"Take_1000.wav"});
    EXPECT_EQ(sampleBytesOf(out("Take_1000.wav")), samples16({7}));
    EXPECT_EQ(namesIn(out()).size(), count + 2);
}

TEST_F(Extract, AudioThatNoClipPlaysIsNamedNotTakenOut) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    omf_.audioFile({.id = {9, 9, 9}, .name = "Room\ntone", .media = waveOf(snare)});
    const std::string file = writeDocument();
    const Said said = extract(options(file));
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors,
              "trellant: " + file +
                  ": 1 audio file inside is not played by any clip: "
                  "Room\\u000atone. It is no part of the composition and was not taken "
                  "out; to see what is inside: trellant dump " +
                  file + "\n");
    EXPECT_THAT(namesIn(out()), ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(Extract, OfManyAudioFilesThatNoClipPlaysFiveAreNamed) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    for (std::uint32_t number = 1; number <= 6; ++number) {
        omf_.audioFile({.id = {9, 9, number},
                        .name = "Take " + std::to_string(number),
                        .media = waveOf(snare)});
    }
    omf_.aifcMedia({9, 9, 8}, aiffImage({.formType = "AIFC", .samples = samples16Big(snare)}));
    const Said said = extract(options(writeDocument()));
    EXPECT_THAT(said.errors,
                HasSubstr(": 7 audio files inside are not played by any clip: Take 1, Take 2, "
                          "Take 3, Take 4, Take 5 and 2 more. They are no part of the composition "
                          "and were not taken out; to see what is inside: trellant dump "));
}

TEST_F(Extract, AudioThatIsNoReadableFileIsTakenOutAndTold) {
    add({.name = "Broken.wav", .media = hex("52494646 10000000 57415645")});
    const auto call = options(writeDocument());
    const std::string said = extractWell(call);
    EXPECT_THAT(said, HasSubstr("  Audio      1 taken out, 1 of them no readable audio\n"));
    EXPECT_THAT(said, HasSubstr("  taken out, but no readable audio\n"));
    EXPECT_THAT(extractWell(call), HasSubstr("  already there, but no readable audio\n"));
    EXPECT_EQ(readFile(out("Broken.wav")), hex("52494646 10000000 57415645"));
}

TEST_F(Extract, SecondRunTellsNewAudioFromWhatIsThere) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    add({.name = "Snare.wav", .media = waveOf(snare)});
    const auto call = options(writeDocument());
    extractWell(call);
    fs::remove(out("Snare.wav"));
    const std::string said = extractWell(call);
    EXPECT_THAT(said, HasSubstr("  Audio      1 taken out, 1 already there\n"));
    EXPECT_THAT(said, HasSubstr("  mono      already there\n"));
    EXPECT_THAT(said, HasSubstr("  mono      taken out\n"));
}

TEST_F(Extract, NarrowTerminalKeepsTheNamesOfTheFilesWhole) {
    const std::string name = "Dialogue Anna scene 12 take 3.wav";
    add({.name = name, .media = waveOf(kick)});
    const Said said = extract(options(writeDocument()), {.out = Listener::terminal, .columns = 80});
    EXPECT_THAT(said.out, HasSubstr("\n" + name + "  "));
    EXPECT_THAT(said.out, HasSubstr("  taken out\n"));
}

TEST_F(Extract, QuietPrintsNoTableButStillTheObject) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    const Said said = extract(call, {.verbosity = cli::Verbosity::quiet});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "");
    call.call.json = true;
    EXPECT_THAT(extract(call, {.verbosity = cli::Verbosity::quiet}).out,
                HasSubstr(R"("audio":[{"state":"takenOut","name":"Kick.wav")"));
}

TEST_F(Extract, FolderThatAnEndedRunLeftIsNamedAndStays) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    fs::create_directories(out(".trellant-Ab12Cd"));
    fs::create_directories(out(".trellant-further"));
    writeFile(out(".trellant-Zz99Zz"), bytesOf("no folder"));
    const Said said = extract(options(writeDocument()));
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.errors, "trellant: the folder .trellant-Ab12Cd in " + out() +
                               " is left from a run that was ended and may go\n");
    EXPECT_TRUE(fs::is_directory(out(".trellant-Ab12Cd")));
}

TEST_F(Extract, FoldersThatManyRunsLeftAreOneLine) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    for (const char* name : {".trellant-aaaaaa", ".trellant-bbbbbb", ".trellant-cccccc",
                             ".trellant-dddddd", ".trellant-eeeeee"}) {
        fs::create_directories(out(name));
    }
    EXPECT_EQ(extract(options(writeDocument())).errors,
              "trellant: the folders .trellant-aaaaaa, .trellant-bbbbbb, .trellant-cccccc and 2 "
              "more in " +
                  out() + " are left from runs that were ended and may go\n");
}

TEST_F(Extract, FolderOfARunAtWorkIsNotTakenForALeftOne) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    fs::create_directories(out(".trellant-Ab12Cd"));
    const FileDescriptor held(::open(out(".trellant-Ab12Cd").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(held.number(), LOCK_EX), 0);
    EXPECT_EQ(extract(options(writeDocument())).errors, "");
}

TEST_F(Extract, AbsolutePathsAreWrittenOnWish) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.absolutePaths = true;
    extractWell(call);
    EXPECT_EQ(timeline().essences.at(0).fileURL, AAFURL{"file://" + out("Kick.wav")});
    EXPECT_EQ(timeline().sourceAAF, AAFURL{"file://" + call.call.files.front()});
}

TEST_F(Extract, TheSameHandOffGivesTheSameTimelineWhereverItLies) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const std::string file = writeDocument();
    const Bytes document = readFile(file);
    const auto timelineIn = [&](const std::string& place) {
        fs::create_directories(folder_.file(place));
        auto call = options(writeFile(folder_.file(place + "/mix.omf"), document));
        call.call.directory = folder_.file(place + "/audio");
        extractWell(call);
        return textOf(readFile(call.call.directory + "/timeline.json"));
    };
    const std::string here = timelineIn("here");
    EXPECT_EQ(timelineIn("there/and deeper"), here);
    EXPECT_THAT(here, HasSubstr(R"("sourceAAF":"..\/mix.omf")"));
    EXPECT_THAT(here, HasSubstr(R"("fileURL":"Kick.wav")"));
}

TEST_F(Extract, ForceNeverReplacesTheFileThatIsRead) {
    // The hand-off bears a name that its own audio gets, in the folder for the audio.
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const Bytes document = readFile(writeDocument());
    fs::create_directory(out());
    auto call = options(writeFile(out("Kick.wav"), document));
    call.call.force = true;
    extractWell(call);
    EXPECT_EQ(readFile(out("Kick.wav")), document);
    EXPECT_EQ(readFile(out("Kick_2.wav")), waveOf(kick));
}

TEST_F(Extract, ForceNeverReplacesTheFileThatIsReadByAnotherName) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    add({.name = "Snare.wav", .media = waveOf(snare)});
    const Bytes document = readFile(writeDocument());
    fs::create_directory(out());
    const std::string real = writeFile(folder_.file("real.omf"), document);
    fs::create_hard_link(real, out("Kick.wav"));
    fs::create_symlink(real, out("Snare.wav"));
    auto call = options(out("Snare.wav"));
    call.call.force = true;
    extractWell(call);
    EXPECT_EQ(readFile(out("Kick.wav")), document);
    EXPECT_TRUE(fs::is_symlink(out("Snare.wav")));
    EXPECT_EQ(readFile(out("Kick_2.wav")), waveOf(kick));
    EXPECT_EQ(readFile(out("Snare_2.wav")), waveOf(snare));
}

TEST_F(Extract, SeveralFilesGetAFolderEach) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const Bytes document = readFile(writeDocument());
    fs::create_directories(folder_.file("a"));
    auto call = options(writeFile(folder_.file("reel.omf"), document));
    call.call.files.push_back(writeFile(folder_.file("a/REEL.omf"), document));
    extractWell(call);
    EXPECT_THAT(namesIn(out()), ElementsAre("REEL_2", "reel"));
    EXPECT_THAT(namesIn(out("reel")), ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
    EXPECT_THAT(namesIn(out("REEL_2")),
                ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(Extract, AFileThatCannotBeReadIsAnObjectToo) {
    auto call = options(writeFile(folder_.file("bad.omf"), bytesOf("x")));
    call.call.json = true;
    const Said said = extract(call);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.out, StartsWith("{\"file\":\""));
    EXPECT_THAT(said.out, HasSubstr("bad.omf\",\"error\":\""));
}

TEST_F(Extract, SummaryShowsEachAudioFile) {
    add({.name = "Kick.wav", .media = waveOf(std::vector<std::int16_t>(48'000)), .clipLength = 50});
    const std::string file = writeDocument();
    EXPECT_EQ(extractWell(options(file)),
              file +
                  "\n"
                  "  Audio      1 taken out\n"
                  "  Folder     " +
                  out() +
                  "\n"
                  "  Timeline   timeline.json\n"
                  "  Checksums  MANIFEST.sha256, to be checked in the folder by: sha256sum -c "
                  "MANIFEST.sha256\n"
                  "\n"
                  "Audio file  Source    Clips       Length   Rate  Bits  Channels  State\n"
                  "Kick.wav    Kick.wav      1  00:00:01:00  48000    16  mono      taken out\n");
}

TEST_F(Extract, JsonTellsTheSameAsOneObject) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.json = true;
    const std::string text = extractWell(call);
    EXPECT_THAT(text, StartsWith("{"));
    EXPECT_THAT(text, EndsWith("}\n"));
    EXPECT_THAT(text, HasSubstr(R"("timeline":"timeline.json","manifest":"MANIFEST.sha256")"));
    EXPECT_THAT(text, HasSubstr(R"("audio":[{"state":"takenOut","name":"Kick.wav")"));
    EXPECT_THAT(
        text,
        HasSubstr(
            R"("clips":1,"frames":4,"lengthSeconds":8.333333333333333e-05,"lengthSecondsExact":"1\/12000","sampleRate":48000,"sampleRateExact":"48000","bitDepth":16,"channels":1,)"));
    EXPECT_THAT(text, HasSubstr(R"("notPlayed":0,"losses":0,"changes":0})"));
}

TEST_F(Extract, StrangersNamesAreHarmlessInFilesAndOnTheTerminal) {
    add({.name = "a\nb\x1b[31m/../c.wav", .media = waveOf(kick)});
    const std::string said = extractWell(options(writeDocument()));
    EXPECT_THAT(namesIn(out()), ElementsAre("MANIFEST.sha256", "c.wav", "timeline.json"));
    EXPECT_THAT(said, HasSubstr("a\xEF\xBF\xBD"
                                "b\xEF\xBF\xBD[31m/../c.wav"));
    EXPECT_TRUE(checksOut(out(), "MANIFEST.sha256"));
}

TEST_F(Extract, FolderWithALineFeedInItsNameIsWrittenTo) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    auto call = options(writeDocument());
    call.call.directory = folder_.file("a\nb");
    const std::string said = extractWell(call);
    EXPECT_THAT(namesIn(folder_.file("a\nb")),
                ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
    EXPECT_THAT(said, HasSubstr("/a\xEF\xBF\xBD"
                                "b\n"));
}

TEST_F(Extract, ClosedPipeLeavesTheFilesAndIsTheCallersToHandle) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    const Said said = extract(options(writeDocument()), {.out = Listener::gone});
    EXPECT_EQ(said.status, 91);
    EXPECT_EQ(said.errors, "");
    EXPECT_THAT(namesIn(out()), ElementsAre("Kick.wav", "MANIFEST.sha256", "timeline.json"));
}

TEST_F(Extract, TimelineThatFailsValidationStillGivesTheAudio) {
    // A mono file played on its second channel.
    add({.name = "Kick.wav", .media = waveOf(kick), .physicalTrack = 2});
    const Said said = extract(options(writeDocument()));
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors, HasSubstr(": repaired: "));
    EXPECT_THAT(said.errors, HasSubstr("(invalid-source-channel, event[0])\n"));
    EXPECT_EQ(readFile(out("Kick.wav")), waveOf(kick));
    EXPECT_EQ(timeline().events.at(0).sourceChannel, std::nullopt);
}

TEST_F(Extract, FailOnMissingGivesStatusThreeAndTheAudio) {
    add({.name = "Kick.wav", .media = waveOf(kick)});
    add({.name = "Gone.wav"});
    auto call = options(writeDocument());
    EXPECT_EQ(extract(call).status, 0);
    call.call.failOn = cli::FailOn::missing;
    EXPECT_EQ(extract(call).status, 3);
    EXPECT_EQ(readFile(out("Kick.wav")), waveOf(kick));
}

}  // namespace
}  // namespace trellant::testing
