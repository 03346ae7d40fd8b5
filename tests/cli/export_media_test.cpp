// SPDX-License-Identifier: Apache-2.0
// Where the audio of a session comes to lie, and in what form.
#include "export_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using exchange::ExportFormat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// The first bytes of a "fmt " chunk: tag, channels.
std::pair<int, int> formOf(const std::string& path) {
    const Bytes file = readFile(path);
    const auto at = static_cast<std::int64_t>(textOf(file).find("fmt ", 12)) + 8;
    return {u16(file, at, OMFByteOrder::little), u16(file, at + 2, OMFByteOrder::little)};
}

class ExportMedia : public ExportTest {
  protected:
    /// A document whose only clip plays a second of a file outside; that file, with so many frames.
    std::string writeExternal(const Bytes& file, const std::string& place = "media/Kick.wav") {
        const std::string path = folder_.file(place);
        fs::create_directories(fs::path(path).parent_path());
        writeFile(path, file);
        add({.name = "Kick",
             .locators = {omf_.dosLocator("D:\\Audio\\" + fs::path(place).filename().native())},
             .clipLength = 100});
        return writeDocument();
    }
    static Bytes second(std::uint16_t channels = 1) {
        return waveOf(std::vector<std::int16_t>(std::size_t{48'000} * channels, 7), 48'000,
                      channels);
    }
    [[nodiscard]] std::string session() const { return textOf(readFile(out("mix.rpp"))); }
};

TEST_F(ExportMedia, EmbeddedAudioLiesBesideTheSession) {
    add({.name = "Kick.wav", .media = waveOf({1, 2, 3, 4}), .clipLength = 1});
    const std::string said = exportWell(exporting(writeDocument()));
    EXPECT_THAT(said, HasSubstr("  Audio        1 file in mix.media\n"));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.media/Kick.wav", "mix.rpp"));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Kick.wav")), samples16({1, 2, 3, 4}));
    EXPECT_THAT(session(), HasSubstr("FILE \"mix.media/Kick.wav\""));
}

TEST_F(ExportMedia, AiffBecomesPlainWaveWithTheSameSamples) {
    add({.name = "Kick.aif",
         .media =
             aiffImage({.formType = "AIFC", .bitsPerSample = 24, .samples = hex("000001 7FFFFF")}),
         .kind = MediaKind::aifc,
         .clipLength = 1});
    exportWell(exporting(writeDocument()));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.media/Kick.wav", "mix.rpp"));
    EXPECT_EQ(formOf(out("mix.media/Kick.wav")), std::pair(1, 1));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Kick.wav")), hex("010000 FFFF7F"));
}

TEST_F(ExportMedia, AnExtensibleHeaderBecomesAPlainOne) {
    add({.name = "Kick.wav",
         .media = waveImage({.formatTag = 0xFFFE, .samples = samples16({1, 2})}),
         .clipLength = 1});
    exportWell(exporting(writeDocument()));
    EXPECT_EQ(formOf(out("mix.media/Kick.wav")), std::pair(1, 1));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Kick.wav")), samples16({1, 2}));
}

TEST_F(ExportMedia, OneChannelOfAStereoFileIsAMonoFileWhereTheToolCannotChoose) {
    add({.name = "Theme.wav",
         .media = waveOf({1, 2, 3, 4}, 48'000, 2),
         .clipLength = 1,
         .physicalTrack = 2});
    const std::string file = writeDocument();
    exportWell(exporting(file, ExportFormat::otio));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.media/Theme.ch2.wav", "mix.otio"));
    EXPECT_EQ(formOf(out("mix.media/Theme.ch2.wav")), std::pair(1, 1));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Theme.ch2.wav")), samples16({2, 4}));
}

TEST_F(ExportMedia, AToolThatChoosesChannelsGetsTheWholeFile) {
    add({.name = "Theme.wav",
         .media = waveOf({1, 2, 3, 4}, 48'000, 2),
         .clipLength = 1,
         .physicalTrack = 2});
    exportWell(exporting(writeDocument()));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Theme.wav")), samples16({1, 2, 3, 4}));
    EXPECT_THAT(session(), HasSubstr("CHANMODE 4"));
}

TEST_F(ExportMedia, ExternalAudioIsCopiedAndStaysWhereItIs) {
    auto options = exporting(writeExternal(second()));
    options.call.mediaFolders = {folder_.file("media")};
    exportWell(options);
    EXPECT_EQ(readFile(out("mix.media/Kick.wav")), second());
    EXPECT_EQ(readFile(folder_.file("media/Kick.wav")), second());
}

TEST_F(ExportMedia, AudioOfAnEarlierExportIsNoSecondFile) {
    auto options = exporting(writeExternal(second()));
    options.call.force = true;
    exportWell(options);
    const Bytes first = readFile(out("mix.rpp"));
    const std::string said = exportWell(options);
    EXPECT_THAT(said, HasSubstr("  Audio        1 file in mix.media\n"));
    EXPECT_EQ(readFile(out("mix.rpp")), first);
}

TEST_F(ExportMedia, LinkedAudioStaysWhereItLies) {
    auto options = exporting(writeExternal(second()));
    options.call.mediaFolders = {folder_.file("media")};
    options.call.mediaMode = MediaMode::link;
    const std::string said = exportWell(options);
    EXPECT_THAT(said, HasSubstr("  Audio        1 file where it lies\n"));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.rpp"));
    EXPECT_THAT(session(), HasSubstr("FILE \"" + folder_.file("media/Kick.wav") + "\""));
}

TEST_F(ExportMedia, LinkedAudioBesideTheSessionIsNamedFromThere) {
    auto options = exporting(writeExternal(second(), "out/audio/Kick.wav"));
    options.call.mediaFolders = {folder_.file("out")};
    options.call.mediaMode = MediaMode::link;
    exportWell(options);
    EXPECT_THAT(session(), HasSubstr("FILE \"audio/Kick.wav\""));
}

TEST_F(ExportMedia, EmbeddedAudioOfAnArchiveLeavesNoFolder) {
    auto options = exporting(writeExternal(second()), ExportFormat::otioz);
    options.call.mediaFolders = {folder_.file("media")};
    const std::string said = exportWell(options);
    EXPECT_THAT(said, HasSubstr("  Audio        1 file inside\n"));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.otioz"));
    EXPECT_GT(fs::file_size(out("mix.otioz")), second().size());
}

TEST_F(ExportMedia, MissingAudioIsOfflineUnderItsRecordedPath) {
    add({.name = "Kick", .locators = {omf_.dosLocator("D:\\Audio\\Kick.wav")}, .clipLength = 100});
    const Said said = exported(exporting(writeDocument()));
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.out, HasSubstr("  Audio        1 file offline\n"));
    EXPECT_THAT(said.errors, HasSubstr("1 audio file is not there, and the clips are offline; "
                                       "name the folder that holds it with --media FOLDER"));
    EXPECT_THAT(session(), HasSubstr("D:\\Audio\\Kick.wav"));
}

TEST_F(ExportMedia, SeveralFilesThatFitAreToldApartFromAMissingOne) {
    auto options = exporting(writeExternal(second(), "first/Kick.wav"));
    fs::create_directories(folder_.file("second"));
    writeFile(folder_.file("second/Kick.wav"), second());
    options.call.mediaFolders = {folder_.file("first"), folder_.file("second")};
    const Said said = exported(options);
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors,
                HasSubstr("1 audio file is undecided, since several files of the name fit, and the "
                          "clips are offline; trellant extract lists the files"));
    EXPECT_THAT(said.errors, Not(HasSubstr("not there")));
}

TEST_F(ExportMedia, AFileThatDoesNotFitIsToldApartFromAMissingOne) {
    // A single sample is too short.
    auto options = exporting(writeExternal(waveOf({7})));
    options.call.mediaFolders = {folder_.file("media")};
    const Said said = exported(options);
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors,
                HasSubstr("1 audio file does not fit what the clips need, and these are offline; "
                          "trellant extract says why"));
    EXPECT_THAT(said.errors, Not(HasSubstr("not there")));
}

TEST_F(ExportMedia, AudioEmbeddedInAnAafLiesInItOnce) {
    auto options = exporting(writeExternal(second()), ExportFormat::aaf);
    options.call.mediaFolders = {folder_.file("media")};
    options.call.mediaMode = MediaMode::embed;
    const std::string said = exportWell(options);
    EXPECT_THAT(said, HasSubstr("  Audio        1 file inside\n"));
    EXPECT_THAT(written(), ElementsAre("mix.aaf", "mix.losses.json"));
    const std::string session = textOf(readFile(out("mix.aaf")));
    // Stored in sectors of 4,096 bytes, one after the other.
    const std::string samples = textOf(samples16(std::vector<std::int16_t>(48'000, 7)));
    const auto first = session.find(samples);
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(session.find(samples, first + 1), std::string::npos);
}

TEST_F(ExportMedia, ForceReplacesNoAudioThatTheSessionIsMadeOf) {
    // The only copy lies where the session's own would come to lie, and is not what that would be.
    const Bytes original = waveImage(
        {.formatTag = 0xFFFE, .samples = samples16(std::vector<std::int16_t>(48'000, 7))});
    auto options = exporting(writeExternal(original, "out/mix.media/Kick.wav"));
    options.call.mediaFolders = {folder_.file("out/mix.media")};
    options.call.force = true;
    const Said said = exported(options);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.errors, HasSubstr("mix.media/Kick.wav is read by this export and is not "
                                       "replaced; choose another --name"));
    EXPECT_EQ(readFile(out("mix.media/Kick.wav")), original);
}

TEST_F(ExportMedia, ClipsOfAudioThatCannotBeConvertedAreOnRecord) {
    add({.name = "Kick.aif",
         .media = aiffImage(
             {.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")}),
         .kind = MediaKind::aifc,
         .clipLength = 1});
    auto options = exporting(writeDocument(), ExportFormat::aaf);
    options.call.failOn = cli::FailOn::render;
    const Said said = exported(options);
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.out, HasSubstr("  Differences  1 of the format; listed in mix.losses.json\n"));
    EXPECT_THAT(textOf(readFile(out("mix.losses.json"))),
                HasSubstr("The clip's audio could not be made into a WAVE file: it is offline."));
}

TEST_F(ExportMedia, LinkedAudioThatTheFormatCannotNameIsCopied) {
    auto options = exporting(writeExternal(second(), "line\nend/Kick.wav"));
    options.call.mediaFolders = {folder_.file("line\nend")};
    options.call.mediaMode = MediaMode::link;
    const std::string said = exportWell(options);
    EXPECT_THAT(said, HasSubstr("  Audio        1 file in mix.media\n"));
    EXPECT_THAT(session(), HasSubstr("FILE \"mix.media/Kick.wav\""));
}

TEST_F(ExportMedia, AudioBelowALongPathIsConverted) {
    add({.name = "Kick.aif",
         .media = aiffImage({.formType = "AIFF", .bitsPerSample = 16, .samples = hex("0001 7FFF")}),
         .kind = MediaKind::aifc,
         .clipLength = 1});
    auto options = exporting(writeDocument());
    std::string deep = folder_.file("out");
    for (int level = 0; level < 6; ++level) {
        deep += "/" + std::string(200, 'x');
    }
    fs::create_directories(deep);
    options.call.directory = deep;
    exportWell(options);
    EXPECT_EQ(sampleBytesOf(deep + "/mix.media/Kick.wav"), hex("0100 FF7F"));
}

TEST_F(ExportMedia, CompressedAudioIsKeptAsItIsAndTold) {
    add({.name = "Kick.aif",
         .media = aiffImage(
             {.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")}),
         .kind = MediaKind::aifc,
         .clipLength = 1});
    const Said said = exported(exporting(writeDocument()));
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors,
                HasSubstr("stays as it is, and not every tool reads it: its audio is compressed"));
    EXPECT_THAT(written(), ElementsAre("mix.losses.json", "mix.media/Kick.aifc", "mix.rpp"));
}

TEST_F(ExportMedia, CompressedAudioIsOfflineWhereTheToolReadsWaveOnly) {
    add({.name = "Kick.aif",
         .media = aiffImage(
             {.formType = "AIFC", .compressionType = "ulaw", .samples = hex("00 01 02 03")}),
         .kind = MediaKind::aifc,
         .clipLength = 1});
    const Said said = exported(exporting(writeDocument(), ExportFormat::aaf));
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.errors, HasSubstr("could not be made into a WAVE file, its clips are offline: "
                                       "its audio is compressed"));
    EXPECT_THAT(written(), ElementsAre("mix.aaf", "mix.losses.json"));
}

TEST_F(ExportMedia, SourcesOfOneNameHaveFilesOfTheirOwn) {
    add({.name = "Kick.wav", .media = waveOf({1}), .clipLength = 1});
    add({.name = "kick.wav", .media = waveOf({2}), .clipLength = 1});
    exportWell(exporting(writeDocument()));
    EXPECT_EQ(sampleBytesOf(out("mix.media/Kick.wav")), samples16({1}));
    EXPECT_EQ(sampleBytesOf(out("mix.media/kick_2.wav")), samples16({2}));
}

}  // namespace
}  // namespace trellant::testing
