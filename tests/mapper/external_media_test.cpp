// SPDX-License-Identifier: Apache-2.0
// Media outside the document: what locators say, and what is recorded of them.
#include "song.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr MobID source{0x2A, 1, 0xFF};
const std::string sourceID = "0000002A-00000001-000000FF";

class ExternalMedia : public ::testing::Test {
  protected:
    /// The essence of a source with these locators.
    AAFSourceEssence essence(const std::vector<ObjectID>& locators,
                             std::optional<std::string> name = std::nullopt) {
        omf_.audioFile({.id = source,
                        .name = std::move(name),
                        .sampleRate = {32'000},
                        .length = 10,
                        .locators = locators});
        return mapSource();
    }
    AAFSourceEssence mapSource() {
        const ObjectID clip = omf_.clip({.length = 100, .source = source});
        omf_.composition({.slots = {omf_.slot({.editRate = Ratio{100}, .segment = clip})}});
        MappingPlaces places;
        if (searches_) {
            places.mediaSearchDirectory = media_.path().string();
        }
        mapped_ = mapImage(omf_.build(), places);
        return mapped_.timeline.essences.at(0);
    }
    /// A WAVE file below the media folder; its path.
    std::string wave(const std::string& name) {
        std::filesystem::create_directories(std::filesystem::path(media_.file(name)).parent_path());
        return writeFile(media_.file(name), shortWave());
    }
    void expectFound(const AAFSourceEssence& essence, const std::string& path,
                     const std::optional<std::string>& originalPath) {
        EXPECT_EQ(essence.fileURL, AAFURL{"file://" + path});
        EXPECT_EQ(essence.originalPath, originalPath);
        EXPECT_EQ(essence.codec, "PCM");
        EXPECT_THAT(mapped_.diagnostics, Not(Contains(StartsWith("external essence"))));
    }
    void expectMissing(const AAFSourceEssence& essence, const std::string& shown,
                       const std::optional<std::string>& originalPath) {
        EXPECT_EQ(essence.fileURL, std::nullopt);
        EXPECT_EQ(essence.originalPath, originalPath);
        EXPECT_EQ(essence.codec, "WAVD");
        EXPECT_THAT(mapped_.diagnostics, Contains("external essence not located: " + shown));
        EXPECT_THAT(recordsOf(mapped_), IsEmpty());
    }

    TemporaryDirectory media_;
    bool searches_ = false;
    OmfBuilder omf_;
    Mapped mapped_;
};

TEST_F(ExternalMedia, UnixPathThatExistsIsTheMedia) {
    const std::string path = wave("Kick 1.wav");
    EXPECT_EQ(
        essence({omf_.unixLocator(path)}, "Kick"),
        (AAFSourceEssence{.id = "omf-essence-" + sourceID,
                          .mobID = sourceID,
                          .sourceName = "Kick",
                          .fileURL = AAFURL{"file://" + media_.path().string() + "/Kick%201.wav"},
                          .embedded = false,
                          .sampleRate = AAFRational(48'000),
                          .channelCount = 1,
                          .bitDepth = 16,
                          .codec = "PCM",
                          .originalPath = path}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(ExternalMedia, MissingMediaAreAnEssenceOfTheDescriptor) {
    EXPECT_EQ(essence({omf_.unixLocator("/does/not/exist.wav")}, "Kick"),
              (AAFSourceEssence{.id = "omf-essence-" + sourceID,
                                .mobID = sourceID,
                                .sourceName = "Kick",
                                .embedded = false,
                                .sampleRate = AAFRational(32'000),
                                .channelCount = 1,
                                .codec = "WAVD",
                                .originalPath = "/does/not/exist.wav"}));
    EXPECT_THAT(mapped_.diagnostics, Contains("external essence not located: /does/not/exist.wav"));
}

TEST_F(ExternalMedia, DoorsIntoTheSystemAreNoMedia) {
    const std::string pipe = media_.file("pipe.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string link = media_.file("link.wav");
    std::filesystem::create_symlink("/proc/self/environ", link);
    for (const std::string& path : {std::string("/proc/self/status"), std::string("/dev/zero"),
                                    std::string("/etc/../proc/version"), pipe, link}) {
        OmfBuilder omf;
        omf.audioFile({.id = source, .length = 10, .locators = {omf.unixLocator(path)}});
        const ObjectID clip = omf.clip({.length = 100, .source = source});
        omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
        const Mapped mapped = mapImage(omf.build());
        EXPECT_EQ(mapped.timeline.essences.at(0).fileURL, std::nullopt) << path;
        EXPECT_EQ(mapped.timeline.essences.at(0).originalPath, path);
    }
}

TEST_F(ExternalMedia, LinkIntoTheSystemIsNotFoundByName) {
    searches_ = true;
    std::filesystem::create_symlink("/proc/self/environ", media_.file("Kick.wav"));
    expectMissing(essence({omf_.unixLocator("/none/Kick.wav")}), "/none/Kick.wav",
                  "/none/Kick.wav");
}

TEST_F(ExternalMedia, FileUrlsInTheirFormsAreTheMedia) {
    const std::string path = wave("Kick.wav");
    for (const std::string prefix : {"file://", "FILE://", "File://localhost", "file:"}) {
        OmfBuilder omf;
        omf.audioFile(
            {.id = source, .length = 10, .locators = {omf.networkLocator(prefix + path)}});
        const ObjectID clip = omf.clip({.length = 100, .source = source});
        omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
        const Mapped mapped = mapImage(omf.build());
        EXPECT_EQ(mapped.timeline.essences.at(0).fileURL, AAFURL{"file://" + path}) << prefix;
        EXPECT_EQ(mapped.timeline.essences.at(0).originalPath, prefix + path);
    }
}

TEST_F(ExternalMedia, FileUrlIsPercentDecodedAndMayHoldBlanks) {
    const std::string path = wave("Kick #1 50%.wav");
    const std::string url = "file://" + media_.path().string() + "/Kick %231%2050%25.wav";
    const AAFSourceEssence found = essence({omf_.networkLocator(url)});
    expectFound(found, media_.path().string() + "/Kick%20%231%2050%25.wav", url);
    EXPECT_EQ(path, media_.path().string() + "/Kick #1 50%.wav");
}

TEST_F(ExternalMedia, FileUrlInAPathPropertyIsAFileUrlToo) {
    const std::string url = "file://" + wave("Kick.wav");
    expectFound(essence({omf_.unixLocator(url)}), media_.path().string() + "/Kick.wav", url);
}

TEST_F(ExternalMedia, FileUrlOfAnotherHostIsNotTried) {
    const std::string url = "file://server" + wave("Kick.wav");
    expectMissing(essence({omf_.networkLocator(url)}), url, url);
}

TEST_F(ExternalMedia, OtherUrlsAndRelativePathsAreNotTried) {
    for (const std::string text :
         {"http://localhost/Kick.wav", "Audio/Kick.wav", "Disk:Audio:Kick.wav", "D:\\Kick.wav"}) {
        OmfBuilder omf;
        omf.audioFile({.id = source, .length = 10, .locators = {omf.networkLocator(text)}});
        const ObjectID clip = omf.clip({.length = 100, .source = source});
        omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
        const Mapped mapped = mapImage(omf.build());
        EXPECT_EQ(mapped.timeline.essences.at(0).originalPath, text);
        EXPECT_THAT(mapped.diagnostics, Contains("external essence not located: " + text));
    }
}

TEST_F(ExternalMedia, LinkToAFileIsAFile) {
    std::filesystem::create_symlink(wave("Kick.wav"), media_.file("Link.wav"));
    expectFound(essence({omf_.unixLocator(media_.file("Link.wav"))}), media_.file("Link.wav"),
                media_.file("Link.wav"));
}

TEST_F(ExternalMedia, FolderIsNoFile) {
    std::filesystem::create_directory(media_.file("Kick.wav"));
    const std::string path = media_.file("Kick.wav");
    expectMissing(essence({omf_.unixLocator(path)}), path, path);
}

TEST_F(ExternalMedia, FirstLocatorWhoseFileExistsWinsAndTheFirstPathIsRecorded) {
    const std::string path = wave("Snare.wav");
    wave("Tom.wav");
    expectFound(essence({omf_.dosLocator("D:\\Audio\\Kick.wav"), omf_.unixLocator("/no/Kick.wav"),
                         omf_.unixLocator(path), omf_.unixLocator(media_.file("Tom.wav"))}),
                path, "D:\\Audio\\Kick.wav");
}

TEST_F(ExternalMedia, EveryLocatorKindGivesItsText) {
    const std::vector<std::pair<std::string, std::string>> kinds{
        {"NETL", "OMFI:NETL:URLString"}, {"UNXL", "OMFI:UNXL:PathName"},
        {"DOSL", "OMFI:DOSL:PathName"},  {"WINL", "OMFI:WINL:PathName"},
        {"TXTL", "OMFI:TXTL:Name"},      {"XXXX", "OMFI:UNXL:PathName"}};
    const std::string path = wave("Kick.wav");
    for (const auto& [classID, property] : kinds) {
        OmfBuilder omf;
        omf.audioFile(
            {.id = source, .length = 10, .locators = {omf.locator(classID, property, path)}});
        const ObjectID clip = omf.clip({.length = 100, .source = source});
        omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
        EXPECT_EQ(mapImage(omf.build()).timeline.essences.at(0).fileURL, AAFURL{"file://" + path})
            << classID;
    }
}

TEST_F(ExternalMedia, PropertiesOfOneLocatorHaveAnOrder) {
    const std::vector<std::string> properties{"OMFI:TXTL:Name", "OMFI:WINL:PathName",
                                              "OMFI:DOSL:PathName", "OMFI:UNXL:PathName",
                                              "OMFI:NETL:URLString"};
    OmfBuilder omf;
    const ObjectBuilder locator = omf.object("NETL");
    omf.audioFile({.id = source, .length = 10, .locators = {locator}});
    const ObjectID clip = omf.clip({.length = 100, .source = source});
    omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
    for (const std::string& property : properties) {
        omf.at(locator).string(property, property);
        EXPECT_EQ(mapImage(omf.build()).timeline.essences.at(0).originalPath, property);
    }
}

TEST_F(ExternalMedia, FirstLocatorListThatIsNotEmptyIsRead) {
    const std::vector<std::string> lists{"OMFI:MDFL:Locators", "OMFI:MDFL:Locator",
                                         "OMFI:MDES:Locator"};
    OmfBuilder omf;
    const ObjectBuilder mob = omf.audioFile({.id = source, .length = 10});
    const ObjectBuilder descriptor = omf.descriptor({.classID = "WAVD"});
    omf.at(mob).ref("OMFI:SMOB:MediaDescription", descriptor);
    const ObjectID clip = omf.clip({.length = 100, .source = source});
    omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = clip})}});
    for (const std::string& list : lists) {
        omf.at(descriptor).refs(list, {omf.textLocator(list)});
        EXPECT_EQ(mapImage(omf.build()).timeline.essences.at(0).originalPath, list);
    }
    omf.at(descriptor).refs(lists[2], {});
    EXPECT_EQ(mapImage(omf.build()).timeline.essences.at(0).originalPath, lists[1]);
}

TEST_F(ExternalMedia, MacLocatorRecordsItsFileName) {
    expectMissing(essence({omf_.macLocator("Kick.aif")}, "Other"), "Kick.aif", "Kick.aif");
}

TEST_F(ExternalMedia, MacFileNameIsNeverAPathToTry) {
    const std::string path = wave("Kick.wav");
    expectMissing(essence({omf_.macLocator(path)}), path, path);
}

TEST_F(ExternalMedia, MacFileNameGivesWayToAnEarlierPath) {
    expectMissing(essence({omf_.dosLocator("D:\\Kick.wav"), omf_.macLocator("Kick.aif")}),
                  "D:\\Kick.wav", "D:\\Kick.wav");
}

TEST_F(ExternalMedia, MacFileNameComesBeforeALaterPath) {
    const std::string path = wave("Kick.wav");
    expectFound(essence({omf_.macLocator("Kick.aif"), omf_.unixLocator(path)}), path, "Kick.aif");
}

TEST_F(ExternalMedia, FileNameOfAnotherLocatorClassIsNotRead) {
    expectMissing(essence({omf_.locator("UNXL", "OMFI:MACL:FileName", "Kick.aif")}, "Snare"),
                  "Snare", "Snare");
}

TEST_F(ExternalMedia, EmptyTextsAreNoPaths) {
    expectMissing(essence({omf_.unixLocator(""), omf_.macLocator(""), omf_.textLocator("Kick")}),
                  "Kick", "Kick");
}

TEST_F(ExternalMedia, WithoutLocatorsTheSourceNameStandsIn) {
    expectMissing(essence({}, "Kick.wav"), "Kick.wav", "Kick.wav");
}

TEST_F(ExternalMedia, WithoutAnyNameTheIdentifierIsShown) {
    expectMissing(essence({}), "omf-essence-" + sourceID, std::nullopt);
}

TEST_F(ExternalMedia, FoundFileThatIsNoAudioKeepsTheDescriptorsFormat) {
    const std::string path = writeFile(media_.file("Kick.wav"), bytesOf("text"));
    const AAFSourceEssence found = essence({omf_.unixLocator(path)});
    EXPECT_EQ(found.fileURL, AAFURL{"file://" + path});
    EXPECT_EQ(found.sampleRate, AAFRational(32'000));
    EXPECT_EQ(found.channelCount, 1);
    EXPECT_EQ(found.bitDepth, std::nullopt);
    EXPECT_EQ(found.codec, "WAVD");
}

TEST_F(ExternalMedia, AiffFileIsProbed) {
    const std::string path =
        writeFile(media_.file("Kick.aif"),
                  aiffImage({.channels = 2, .bitsPerSample = 24, .sampleRate = 44'100}));
    const AAFSourceEssence found = essence({omf_.unixLocator(path)});
    EXPECT_EQ(found.sampleRate, AAFRational(44'100));
    EXPECT_EQ(found.channelCount, 2);
    EXPECT_EQ(found.bitDepth, 24);
    EXPECT_EQ(found.codec, "AIFF");
}

TEST_F(ExternalMedia, PathOfALocatorIsSearchedByItsLastComponent) {
    searches_ = true;
    wave("deep/down/kick.WAV");
    expectFound(essence({omf_.dosLocator("D:\\Audio\\Kick.wav")}),
                media_.path().string() + "/deep/down/kick.WAV", "D:\\Audio\\Kick.wav");
}

TEST_F(ExternalMedia, TwoFilesOfTheNameAreNone) {
    searches_ = true;
    wave("a/kick.wav");
    wave("b/kick.wav");
    expectMissing(essence({omf_.dosLocator("D:\\Audio\\Kick.wav")}), "D:\\Audio\\Kick.wav",
                  "D:\\Audio\\Kick.wav");
}

TEST_F(ExternalMedia, SourceNameIsSearchedWithoutLocators) {
    searches_ = true;
    wave("kick.wav");
    expectFound(essence({}, "KICK.wav"), media_.path().string() + "/kick.wav", "KICK.wav");
}

TEST_F(ExternalMedia, SourceNameIsNotSearchedBesideALocator) {
    searches_ = true;
    wave("kick.wav");
    expectMissing(essence({omf_.unixLocator("/no/snare.wav")}, "kick.wav"), "/no/snare.wav",
                  "/no/snare.wav");
}

TEST_F(ExternalMedia, FirstRecordedPathIsSearchedNotALaterOne) {
    searches_ = true;
    wave("second.wav");
    expectMissing(essence({omf_.unixLocator("/no/first.wav"), omf_.unixLocator("/no/second.wav")}),
                  "/no/first.wav", "/no/first.wav");
}

TEST_F(ExternalMedia, LocatorThatExistsComesBeforeTheSearch) {
    searches_ = true;
    wave("below/kick.wav");
    const TemporaryDirectory other;
    const std::string path = writeFile(other.file("kick.wav"), shortWave());
    expectFound(essence({omf_.unixLocator(path)}), path, path);
}

TEST_F(ExternalMedia, NameWithoutALastComponentIsNotSearched) {
    searches_ = true;
    wave("kick.wav");
    expectMissing(essence({omf_.dosLocator("\\")}), "\\", "\\");
}

/// What a mapper says beforehand that it will read.
class ExternalFiles : public ::testing::Test {
  protected:
    void add(MobID id, const std::string& name, const std::vector<ObjectID>& locators,
             std::optional<Bytes> media = std::nullopt) {
        omf_.audioFile({.id = id,
                        .name = name,
                        .media = std::move(media),
                        .length = 10,
                        .locators = locators});
    }
    std::string wave(const std::string& name) { return writeFile(folder_.file(name), shortWave()); }
    std::vector<std::string> told(const MappingPlaces& places = {}) {
        const OMFDocument document(writeFile(folder_.file("song.omf"), omf_.build()));
        std::vector<std::string> files;
        const Mapper mapper(document, places,
                            [&](const std::vector<std::string>& all) { files = all; });
        return files;
    }

    TemporaryDirectory folder_;
    OmfBuilder omf_;
};

TEST_F(ExternalFiles, AreThoseOfAllSourcesThatAreThereUsedOrNot) {
    const std::string kick = wave("Kick.wav");
    const std::string snare = wave("Snare.wav");
    wave("Other.wav");
    add({1, 0, 0}, "Kick", {omf_.unixLocator("/none/Kick.wav"), omf_.unixLocator(kick)});
    add({2, 0, 0}, "Snare", {omf_.networkLocator("file://" + snare)});
    add({3, 0, 0}, "Missing", {omf_.unixLocator("/none/Missing.wav")});
    EXPECT_THAT(told(), ElementsAre(kick, snare));
}

TEST_F(ExternalFiles, AreNoneOfEmbeddedAudioNorOfTapes) {
    const std::string kick = wave("Kick.wav");
    add({1, 0, 0}, "Kick", {omf_.unixLocator(kick)}, shortWave());
    omf_.sourceMob(
        {.id = {2, 0, 0},
         .name = "Tape",
         .descriptor = omf_.descriptor({.classID = "MDTP", .locators = {omf_.unixLocator(kick)}})});
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(ExternalFiles, OfTheSearchDirectoryAreThoseThatAreWanted) {
    const std::string kick = wave("Kick.wav");
    wave("Snare.wav");
    add({1, 0, 0}, "kick.WAV", {});
    MappingPlaces places;
    places.mediaSearchDirectory = folder_.path().string();
    EXPECT_THAT(told(places), ElementsAre(kick));
    EXPECT_THAT(told(), IsEmpty());
}

}  // namespace
}  // namespace trellant::testing
