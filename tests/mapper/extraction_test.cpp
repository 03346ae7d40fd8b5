// SPDX-License-Identifier: Apache-2.0
// Embedded media taken out into the work directory.
#include "essences.h"
#include "song.h"

#include <trellant/io/errors.h>
#include <trellant/mapper/embedded_media.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Sources made one by one, each with a clip, extracted together.
class Extraction : public ::testing::Test {
  protected:
    /// A source of that name, its mob.
    ObjectBuilder add(std::optional<std::string> name, MediaKind kind = MediaKind::wave,
                      std::optional<Bytes> media = std::nullopt) {
        const MobID id{++count_, 0, 0};
        clips_.push_back(omf_.clip({.length = 100, .source = id}));
        return omf_.audioFile({.id = id,
                               .name = std::move(name),
                               .kind = kind,
                               .media = media ? *media : mediaOf(count_),
                               .length = 48});
    }
    /// Differs from source to source.
    static Bytes mediaOf(std::uint32_t number) {
        return waveImage({.samples = patternBytes(96 + 2 * number)});
    }
    void map() {
        const ObjectID slot = omf_.slot({.editRate = Ratio{100}, .segment = omf_.sequence(clips_)});
        omf_.composition({.slots = {slot}});
        mapped_ = mapImage(omf_.build(), {.workDirectory = work_.path().string(), .extract = true});
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(work_.path())) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    /// The file that one source of that name gives.
    std::string fileFor(std::optional<std::string> name, MediaKind kind = MediaKind::wave) {
        add(std::move(name), kind);
        map();
        const std::vector<std::string> names = files();
        return names.size() == 1 ? names[0] : "not one file";
    }
    std::string urlOf(std::size_t essence) const {
        return mapped_.timeline.essences.at(essence).fileURL.value_or(AAFURL{"none"}).text;
    }

    TemporaryDirectory work_;
    OmfBuilder omf_;
    Mapped mapped_;

  private:
    std::uint32_t count_ = 0;
    std::vector<ObjectID> clips_;
};

TEST_F(Extraction, FileHoldsTheMediaAndTheEssenceNamesIt) {
    add("Kick 1.wav", MediaKind::wave,
        waveImage({.channels = 2, .sampleRate = 44'100, .samples = patternBytes(40)}));
    map();
    EXPECT_EQ(readFile(work_.file("Kick 1.wav")),
              waveImage({.channels = 2, .sampleRate = 44'100, .samples = patternBytes(40)}));
    EXPECT_THAT(mapped_.timeline.essences,
                ElementsAre(AAFSourceEssence{
                    .id = "omf-essence-00000001-00000000-00000000",
                    .mobID = "00000001-00000000-00000000",
                    .sourceName = "Kick 1.wav",
                    .fileURL = AAFURL{"file://" + work_.path().string() + "/Kick%201.wav"},
                    .embedded = true,
                    .sampleRate = AAFRational(44'100),
                    .channelCount = 2,
                    .bitDepth = 16,
                    .codec = "PCM"}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(Extraction, AifcMediaHaveTheirOwnExtension) {
    add("Kick.wav", MediaKind::aifc, aiffImage({.formType = "AIFC", .samples = patternBytes(20)}));
    map();
    EXPECT_THAT(files(), ElementsAre("Kick.aifc"));
    EXPECT_EQ(mapped_.timeline.essences.at(0).codec, "NONE");
}

TEST_F(Extraction, TwoClipsOfOneSourceAreOneFile) {
    Song song;
    song.addSlot(song.omf.sequence({song.clip(100), song.clip(50)}));
    song.addSlot(song.clip(100));
    const Mapped mapped = song.map({.workDirectory = work_.path().string(), .extract = true});
    EXPECT_THAT(files(), ElementsAre("Kick.wav"));
    EXPECT_EQ(mapped.timeline.essences.size(), 1U);
}

TEST_F(Extraction, SourcesOfOneNameAreNumberedFromTwo) {
    add("Take 1.wav");
    add("Take 1.wav");
    add("Take 1.wav");
    map();
    EXPECT_THAT(files(), UnorderedElementsAre("Take 1.wav", "Take 1_2.wav", "Take 1_3.wav"));
    EXPECT_EQ(readFile(work_.file("Take 1.wav")), mediaOf(1));
    EXPECT_EQ(readFile(work_.file("Take 1_2.wav")), mediaOf(2));
    EXPECT_EQ(readFile(work_.file("Take 1_3.wav")), mediaOf(3));
    EXPECT_EQ(urlOf(1), "file://" + work_.path().string() + "/Take%201_2.wav");
}

TEST_F(Extraction, NameThatLooksNumberedIsTakenToo) {
    add("Take_2");
    add("Take");
    add("Take");
    map();
    EXPECT_THAT(files(), UnorderedElementsAre("Take_2.wav", "Take.wav", "Take_3.wav"));
}

TEST_F(Extraction, ExistingFilesStayAsTheyAre) {
    writeFile(work_.file("Kick.wav"), bytesOf("mine"));
    EXPECT_EQ(fileFor("Kick"), "not one file");
    EXPECT_THAT(files(), UnorderedElementsAre("Kick.wav", "Kick_2.wav"));
    EXPECT_EQ(readFile(work_.file("Kick.wav")), bytesOf("mine"));
}

TEST_F(Extraction, LinksAndFoldersAreTakenNames) {
    const TemporaryDirectory elsewhere;
    writeFile(elsewhere.file("target"), bytesOf("mine"));
    std::filesystem::create_symlink(elsewhere.file("target"), work_.file("Kick.wav"));
    std::filesystem::create_symlink(elsewhere.file("missing"), work_.file("Kick_2.wav"));
    std::filesystem::create_directory(work_.file("Kick_3.wav"));
    add("Kick");
    map();
    EXPECT_EQ(readFile(work_.file("Kick_4.wav")), mediaOf(1));
    EXPECT_EQ(readFile(elsewhere.file("target")), bytesOf("mine"));
    EXPECT_FALSE(std::filesystem::exists(elsewhere.file("missing")));
    EXPECT_EQ(urlOf(0), "file://" + work_.path().string() + "/Kick_4.wav");
}

TEST_F(Extraction, CharactersThatAreNotSafeAreReplaced) {
    EXPECT_EQ(fileFor("Kick?.WAV"), "Kick_.wav");
}

TEST_F(Extraction, SourceWithoutANameIsCalledByItsIdentifier) {
    EXPECT_EQ(fileFor(std::nullopt), "OMF_00000001-00000000-00000000.wav");
}

TEST_F(Extraction, NameOf200CharactersIsCutTo120) {
    EXPECT_EQ(fileFor(std::string(200, 'a')), std::string(120, 'a') + ".wav");
}

TEST_F(Extraction, LastComponentOfAPathIsTheName) {
    EXPECT_EQ(fileFor("/Volumes/Audio.d/Kick.v2.aif"), "Kick.v2.wav");
}

TEST_F(Extraction, PathUpwardsStaysInTheWorkDirectory) {
    EXPECT_EQ(fileFor("../../Kick"), "Kick.wav");
    EXPECT_THAT(files(), ElementsAre("Kick.wav"));
}

TEST_F(Extraction, OtherSeparatorsAreReplaced) {
    EXPECT_EQ(fileFor("D:\\Audio\\Kick.wav"), "D__Audio_Kick.wav");
}

TEST_F(Extraction, NameOfBlanksAndDotsIsLegal) {
    EXPECT_EQ(fileFor(".."), "...wav");
}

TEST_F(Extraction, NameThatBeginsWithADotKeepsIt) {
    // The dot begins no extension, so nothing is dropped.
    EXPECT_EQ(fileFor(".Kick"), ".Kick.wav");
}

TEST_F(Extraction, OnlyTheLastExtensionOfANameThatBeginsWithADotIsDropped) {
    EXPECT_EQ(fileFor("/Audio/.Kick.aif"), ".Kick.wav");
}

TEST_F(Extraction, WhatFollowsTheLastDotWithABlankIsNoExtension) {
    EXPECT_EQ(fileFor("Take 1. final cut"), "Take 1. final cut.wav");
}

TEST_F(Extraction, LongCharactersAreCutToFitTheFileSystem) {
    // 120 characters of 3 bytes; 83 of them and ".wav" are 253 bytes, 84 would be 256.
    std::string name;
    for (int index = 0; index < 120; ++index) {
        name += "\u3042";
    }
    EXPECT_EQ(fileFor(name), name.substr(0, 249) + ".wav");
}

TEST_F(Extraction, NumberingFitsTheFileSystemToo) {
    // 83 characters, "_2" and ".aifc" would be 256 bytes.
    std::string name;
    for (int index = 0; index < 120; ++index) {
        name += "\u3042";
    }
    add(name, MediaKind::aifc);
    add(name, MediaKind::aifc);
    map();
    EXPECT_THAT(files(), UnorderedElementsAre(name.substr(0, 249) + ".aifc",
                                              name.substr(0, 246) + "_2.aifc"));
}

TEST_F(Extraction, MediaWithNothingToCopyAreReported) {
    const ObjectBuilder mob = add("Kick");
    for (std::uint32_t id = 1; id < mob; ++id) {
        omf_.at(id).without("OMFI:WAVE:AudioData");
    }
    map();
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "embedded audio essence could not be extracted",
                                            "SMOB[" + std::to_string(mob.id()) + "]")));
    EXPECT_EQ(urlOf(0), "none");
    EXPECT_TRUE(mapped_.timeline.essences.at(0).embedded);
    EXPECT_EQ(mapped_.timeline.essences.at(0).codec, "WAVD");
}

TEST_F(Extraction, MediaThatAreAReferenceListAloneAreReported) {
    const MobID id{77, 0, 0};
    const ObjectBuilder mob = omf_.audioFile({.id = id, .name = "Kick", .length = 48});
    const ObjectBuilder media = omf_.object("WAVE").uid("OMFI:MDAT:MobID", id);
    omf_.container().addItem(media, "OMFI:WAVE:AudioData", BentoReferenceList{4'711});
    const ObjectID clip = omf_.clip({.length = 100, .source = id});
    omf_.composition({.slots = {omf_.slot({.editRate = Ratio{100}, .segment = clip})}});
    mapped_ = mapImage(omf_.build(), {.workDirectory = work_.path().string(), .extract = true});
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "embedded audio essence could not be extracted",
                                            "SMOB[" + std::to_string(mob.id()) + "]")));
}

TEST_F(Extraction, EmptyMediaAreExtractedAsAnEmptyFile) {
    add("Kick", MediaKind::wave, Bytes{});
    map();
    EXPECT_EQ(readFile(work_.file("Kick.wav")), Bytes{});
    EXPECT_EQ(urlOf(0), "file://" + work_.path().string() + "/Kick.wav");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(Extraction, MediaOutsideTheFileFailTheRequest) {
    const MobID id{77, 0, 0};
    omf_.audioFile({.id = id, .name = "Kick", .length = 48});
    const ObjectBuilder media = omf_.object("WAVE").uid("OMFI:MDAT:MobID", id);
    omf_.container().addItem(media, "OMFI:WAVE:AudioData", BentoRange{0xF000'0000U, 16});
    const ObjectID clip = omf_.clip({.length = 100, .source = id});
    omf_.composition({.slots = {omf_.slot({.editRate = Ratio{100}, .segment = clip})}});
    try {
        (void)mapImage(omf_.build(), {.workDirectory = work_.path().string(), .extract = true});
        FAIL() << "mapped";
    } catch (const OMFIOError& error) {
        EXPECT_TRUE(std::holds_alternative<OMFIOError::OutOfBounds>(error.fault())) << error.what();
    }
}

TEST_F(Extraction, WorkDirectoryThatDoesNotExistFailsTheRequest) {
    Song song;
    song.addSlot(song.clip(100));
    EXPECT_THROW((void)song.map({.workDirectory = work_.file("missing"), .extract = true}),
                 FileSystemError);
}

TEST_F(Extraction, LongMediaInPiecesComeOutWhole) {
    const Bytes wave = waveImage({.samples = patternBytes(5'000'000)});
    const ObjectBuilder mob = add("Long", MediaKind::wave, Bytes{});
    for (std::uint32_t id = 1; id < mob; ++id) {
        if (omf_.container().has(id, "OMFI:WAVE:AudioData")) {
            const auto cut = wave.begin() + 1'000'001;
            omf_.container().setPieces(id, "OMFI:WAVE:AudioData",
                                       {Bytes(wave.begin(), cut), Bytes(cut, wave.end())});
        }
    }
    map();
    EXPECT_EQ(readFile(work_.file("Long.wav")), wave);
}

TEST_F(Extraction, HeaderUpToAMebibyteIsFoundInTheFile) {
    add("Kick", MediaKind::wave,
        waveImage({.bitsPerSample = 24, .leadingChunks = {{"LIST", Bytes(300'000)}}}));
    map();
    EXPECT_EQ(mapped_.timeline.essences.at(0).bitDepth, 24);
}

TEST(SeparateSources, DamagedOneLeavesTheOthersWhole) {
    const TemporaryDirectory folder;
    const std::string shared = folder.file("Take.wav");
    OmfBuilder omf;
    AAFTimeline timeline;
    for (std::uint32_t number = 1; number <= 3; ++number) {
        const MobID id{number, 0, 0};
        omf.audioFile({.id = id, .name = "Take.wav"});
        if (number == 2) {
            const ObjectBuilder media = omf.object("WAVE").uid("OMFI:MDAT:MobID", id);
            omf.container().addItem(media, "OMFI:WAVE:AudioData", BentoRange{0xF000'0000U, 16});
        } else {
            omf.waveMedia(id, bytesOf("take " + std::to_string(number)));
        }
        timeline.essences.push_back(
            {.id = "e" + std::to_string(number),
             .mobID = "0000000" + std::to_string(number) + "-00000000-00000000",
             .fileURL = AAFURL{"file://" + shared},
             .embedded = true});
    }
    const OMFDocument document(writeFile(folder.file("song.omf"), omf.build()));
    const std::vector<SeparatedSource> sources = separateSources(document, timeline);
    ASSERT_EQ(sources.size(), 3U);
    // Each source has its number, whether its audio can be written or not.
    EXPECT_EQ(sources[0].essenceID, "e1");
    EXPECT_EQ(sources[0].path, folder.file("Take_1000.wav"));
    EXPECT_EQ(sources[1].essenceID, "e2");
    EXPECT_EQ(sources[1].path, std::nullopt);
    EXPECT_EQ(sources[2].essenceID, "e3");
    EXPECT_EQ(sources[2].path, folder.file("Take_1002.wav"));
    EXPECT_EQ(textOf(readFile(folder.file("Take_1000.wav"))), "take 1");
    EXPECT_EQ(textOf(readFile(folder.file("Take_1002.wav"))), "take 3");
}

TEST(EssenceOfMob, WithoutADescriptorIsNone) {
    const TemporaryDirectory folder;
    OmfBuilder omf;
    const ObjectBuilder mob = omf.sourceMob({.id = {1, 2, 3}, .name = "Bare"});
    const OMFDocument document(writeFile(folder.file("song.omf"), omf.build()));
    const OMFDocument::MobMap media = document.mediaDataMap();
    const MappingPlaces places;
    MappingNotes notes;
    BoundedReads reads(document);
    MediaSearch search(std::nullopt, "");
    Essences essences(reads, media, places, search, notes);
    EXPECT_EQ(essences.makeEssence({.mob = static_cast<OMFObject>(mob.id()), .mobID = {1, 2, 3}}),
              nullptr);
    EXPECT_THAT(essences.takeSorted(), IsEmpty());
}

}  // namespace
}  // namespace trellant::testing
