// SPDX-License-Identifier: Apache-2.0
// Media inside the document, looked at without being taken out.
#include "song.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr MobID source{0x2A, 1, 0xFF};
const std::string sourceID = "0000002A-00000001-000000FF";

/// The essence of a document whose one clip plays `source`.
class EmbeddedMedia : public ::testing::Test {
  protected:
    AAFSourceEssence essence() {
        const ObjectID clip = omf_.clip({.length = 100, .source = source});
        omf_.composition({.slots = {omf_.slot({.editRate = Ratio{100}, .segment = clip})}});
        mapped_ = mapImage(omf_.build());
        EXPECT_EQ(mapped_.timeline.essences.size(), 1U);
        return mapped_.timeline.essences.at(0);
    }

    OmfBuilder omf_;
    Mapped mapped_;
};

TEST_F(EmbeddedMedia, EssenceOfAWaveIsWhole) {
    omf_.audioFile({.id = source,
                    .name = "Kick.wav",
                    .media = waveImage({.channels = 2,
                                        .sampleRate = 96'000,
                                        .bitsPerSample = 24,
                                        .samples = patternBytes(60)}),
                    .length = 10});
    EXPECT_EQ(essence(), (AAFSourceEssence{.id = "omf-essence-" + sourceID,
                                           .mobID = sourceID,
                                           .sourceName = "Kick.wav",
                                           .embedded = true,
                                           .sampleRate = AAFRational(96'000),
                                           .channelCount = 2,
                                           .bitDepth = 24,
                                           .codec = "PCM"}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(EmbeddedMedia, EssenceOfAnAifcIsWhole) {
    omf_.audioFile({.id = source,
                    .kind = MediaKind::aifc,
                    .media = aiffImage({.formType = "AIFC",
                                        .channels = 1,
                                        .bitsPerSample = 16,
                                        .sampleRate = 44'100,
                                        .compressionType = "sowt",
                                        .samples = patternBytes(20)}),
                    .length = 10});
    EXPECT_EQ(essence(), (AAFSourceEssence{.id = "omf-essence-" + sourceID,
                                           .mobID = sourceID,
                                           .embedded = true,
                                           .sampleRate = AAFRational(44'100),
                                           .channelCount = 1,
                                           .bitDepth = 16,
                                           .codec = "sowt"}));
}

TEST_F(EmbeddedMedia, MediaThatIsNoAudioFallsBackToTheDescriptor) {
    omf_.audioFile(
        {.id = source, .media = bytesOf("no audio at all"), .sampleRate = {32'000}, .length = 10});
    EXPECT_EQ(essence(), (AAFSourceEssence{.id = "omf-essence-" + sourceID,
                                           .mobID = sourceID,
                                           .embedded = true,
                                           .sampleRate = AAFRational(32'000),
                                           .channelCount = 1,
                                           .codec = "WAVD"}));
}

TEST_F(EmbeddedMedia, WithoutAnyRateItIs48000) {
    const ObjectBuilder mob =
        omf_.audioFile({.id = source, .kind = MediaKind::aifc, .media = Bytes{}, .length = 10});
    const ObjectBuilder descriptor = omf_.descriptor({.classID = "AIFD"});
    omf_.at(mob).ref("OMFI:SMOB:MediaDescription", descriptor);
    const AAFSourceEssence found = essence();
    EXPECT_EQ(found.sampleRate, AAFRational(48'000));
    EXPECT_EQ(found.codec, "AIFD");
    EXPECT_EQ(found.channelCount, 1);
    EXPECT_EQ(found.bitDepth, std::nullopt);
}

TEST_F(EmbeddedMedia, DescriptorWithoutAClassIsCalledByItsFamily) {
    const ObjectBuilder mob = omf_.audioFile({.id = source, .media = Bytes{}, .length = 10});
    const ObjectID descriptor = omf_.classless().rational("OMFI:MDFL:SampleRate", {22'050});
    omf_.at(mob).ref("OMFI:SMOB:MediaDescription", descriptor);
    const AAFSourceEssence found = essence();
    EXPECT_EQ(found.codec, "MDES");
    EXPECT_EQ(found.sampleRate, AAFRational(22'050));
}

TEST_F(EmbeddedMedia, HeaderWithin256KibibytesIsFound) {
    // 12 bytes of form, 8 of the leading chunk's header, 24 of the format chunk.
    const Bytes lead(262'144 - 12 - 8 - 24);
    omf_.audioFile({.id = source,
                    .media = waveImage({.bitsPerSample = 24, .leadingChunks = {{"LIST", lead}}}),
                    .length = 10});
    EXPECT_EQ(essence().bitDepth, 24);
}

TEST_F(EmbeddedMedia, HeaderBeyond256KibibytesIsNotLookedFor) {
    const Bytes lead(262'144 - 12 - 8 - 22);
    omf_.audioFile({.id = source,
                    .media = waveImage({.bitsPerSample = 24, .leadingChunks = {{"LIST", lead}}}),
                    .length = 10});
    const AAFSourceEssence found = essence();
    EXPECT_EQ(found.bitDepth, std::nullopt);
    EXPECT_EQ(found.codec, "WAVD");
}

TEST_F(EmbeddedMedia, LongMediaAreNotReadWhole) {
    omf_.audioFile(
        {.id = source, .media = waveImage({.samples = Bytes(20'000'000)}), .length = 10'000'000});
    EXPECT_EQ(essence().codec, "PCM");
    // Far fewer than the pieces of 64 KiB that the media would take.
    EXPECT_LT(mapped_.readCalls, 100U);
}

TEST_F(EmbeddedMedia, MediaWithoutTheirDataAreStillEmbedded) {
    omf_.audioFile({.id = source, .media = shortWave(), .length = 10});
    for (std::uint32_t id = 1; id < 40; ++id) {
        omf_.at(id).without("OMFI:WAVE:AudioData");
    }
    const AAFSourceEssence found = essence();
    EXPECT_TRUE(found.embedded);
    EXPECT_EQ(found.codec, "WAVD");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(EmbeddedMedia, MediaOfAnotherClassAreExternal) {
    omf_.audioFile({.id = source, .name = "Kick", .length = 10});
    omf_.object("MDAT").uid("OMFI:MDAT:MobID", source).bytes("OMFI:WAVE:AudioData", shortWave());
    EXPECT_FALSE(essence().embedded);
}

TEST_F(EmbeddedMedia, MediaOfAnotherMobAreNotTaken) {
    omf_.audioFile({.id = source, .name = "Kick", .length = 10});
    omf_.waveMedia({9, 9, 9}, shortWave());
    EXPECT_FALSE(essence().embedded);
}

TEST_F(EmbeddedMedia, PropertyOfTheOtherClassIsNotRead) {
    omf_.audioFile({.id = source, .length = 10});
    omf_.object("AIFC").uid("OMFI:MDAT:MobID", source).bytes("OMFI:WAVE:AudioData", shortWave());
    const AAFSourceEssence found = essence();
    EXPECT_TRUE(found.embedded);
    EXPECT_EQ(found.codec, "WAVD");
}

TEST_F(EmbeddedMedia, LocatorsOfEmbeddedMediaAreNotLookedAt) {
    omf_.audioFile({.id = source,
                    .media = shortWave(),
                    .length = 10,
                    .locators = {omf_.unixLocator("/Audio/Kick.wav")}});
    EXPECT_EQ(essence().originalPath, std::nullopt);
}

TEST_F(EmbeddedMedia, TwoClipsOfOneSourceAreOneEssence) {
    Song song;
    song.addSlot(song.omf.sequence({song.clip(100), song.clip(50, 10)}));
    song.addSlot(song.clip(30));
    const Mapped mapped = song.map();
    EXPECT_EQ(mapped.timeline.events.size(), 3U);
    EXPECT_EQ(mapped.timeline.essences.size(), 1U);
}

TEST_F(EmbeddedMedia, InspectionCreatesNothing) {
    const TemporaryDirectory work;
    const TemporaryDirectory search;
    writeFile(search.file("Snare.wav"), shortWave());
    Song song;
    const MobID external{5, 5, 5};
    song.omf.audioFile({.id = external, .name = "Snare.wav", .length = 48});
    song.addSlot(
        song.omf.sequence({song.clip(100), song.omf.clip({.length = 50, .source = external})}));
    const Mapped mapped = song.map(
        {.workDirectory = work.path().string(), .mediaSearchDirectory = search.path().string()});
    EXPECT_EQ(mapped.timeline.essences.size(), 2U);
    EXPECT_TRUE(std::filesystem::is_empty(work.path()));
    const std::filesystem::directory_iterator entries(search.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
    EXPECT_EQ(readFile(search.file("Snare.wav")), shortWave());
}

TEST_F(EmbeddedMedia, InspectionDoesNotNeedTheWorkDirectory) {
    Song song;
    song.addSlot(song.clip(100));
    const Mapped mapped = song.map({.workDirectory = "/does/not/exist"});
    EXPECT_EQ(mapped.timeline.essences.at(0).fileURL, std::nullopt);
    EXPECT_FALSE(std::filesystem::exists("/does"));
}

}  // namespace
}  // namespace trellant::testing
