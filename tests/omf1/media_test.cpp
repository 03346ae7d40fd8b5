// SPDX-License-Identifier: Apache-2.0
// Audio of OMF 1.x: embedded, described, named by locators.
#include "mapped_older.h"

#include <gmock/gmock.h>

#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Bytes sessionWith(Omf1Builder& omf, MobID source) {
    const ObjectBuilder clip = omf.clip({.length = 480, .source = source});
    omf.mob({.tracks = {omf.track(1, clip)}});
    return omf.build();
}

/// A source of one sound track without media of its own.
void addSource(Omf1Builder& omf, MobID id, ObjectID descriptor) {
    const ObjectBuilder clip = omf.clip({.length = 960, .track = 0});
    omf.mob({.id = id, .name = "Voice.sd2", .tracks = {omf.track(1, clip)}, .media = descriptor});
}

TEST(OlderMedia, AIFCIsTakenOut) {
    const MappedOlder mapped = mapAny(OneClip().omf.build(), true);
    ASSERT_EQ(mapped.timeline.essences.size(), 1U);
    EXPECT_TRUE(mapped.timeline.essences[0].fileURL);
    EXPECT_EQ(mapped.timeline.essences[0].codec, "NONE");
}

TEST(OlderMedia, WAVEIsTakenOut) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.media("WAVE", voice, waveImage({.samples = Bytes(960)}));
    addSource(omf, voice, omf.descriptor("WAVD"));
    const MappedOlder mapped = mapAny(sessionWith(omf, voice), true);
    ASSERT_EQ(mapped.timeline.essences.size(), 1U);
    EXPECT_TRUE(mapped.timeline.essences[0].fileURL);
    EXPECT_EQ(mapped.timeline.essences[0].codec, "PCM");
}

TEST(OlderMedia, MediaWithoutAnIdentifierHaveThatOfTheIndex) {
    OneClip session;
    const ObjectID media = 3;
    ASSERT_TRUE(session.omf.container().has(media, "OMFI:AIFC:MobID"));
    session.omf.at(media).without("OMFI:AIFC:MobID");
    EXPECT_TRUE(mapAny(session.omf.build()).timeline.essences.at(0).embedded);
}

TEST(OlderMedia, FilesOfOtherFormatsAreNamedByTheirLocators) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    const ObjectBuilder locator =
        omf.object("MACL").string("OMFI:MACL:FileName", "Voice take 3.sd2");
    const ObjectBuilder described = omf.descriptor("SD2D", Ratio{44'100});
    omf.refs(described, "OMFI:MDES:Locator", {locator});
    addSource(omf, voice, described);
    const MappedOlder mapped = mapAny(sessionWith(omf, voice));
    ASSERT_EQ(mapped.timeline.essences.size(), 1U);
    const AAFSourceEssence& essence = mapped.timeline.essences[0];
    EXPECT_FALSE(essence.embedded);
    EXPECT_EQ(essence.originalPath, "Voice take 3.sd2");
    EXPECT_EQ(essence.sampleRate, AAFRational(44'100));
    EXPECT_EQ(essence.codec, "SD2D");
}

TEST(OlderMedia, PathsAndNamesOfLocatorsAreRead) {
    const std::pair<const char*, const char*> locators[] = {
        {"UNXL", "OMFI:UNXL:PathName"}, {"DOSL", "OMFI:DOSL:PathName"}, {"TXTL", "OMFI:TXTL:Name"}};
    for (const auto& [classID, property] : locators) {
        Omf1Builder omf;
        const MobID voice{1, 2, 3};
        const ObjectBuilder locator = omf.object(classID).string(property, "Voice.aif");
        const ObjectBuilder described = omf.descriptor("AIFD");
        omf.refs(described, "OMFI:MDES:Locator", {locator});
        addSource(omf, voice, described);
        EXPECT_EQ(mapAny(sessionWith(omf, voice)).timeline.essences.at(0).originalPath, "Voice.aif")
            << classID;
    }
}

TEST(OlderMedia, WhichChannelATrackPlaysIsSaidToBeUnknown) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.media("AIFC", voice, aifcOf(960, 2));
    const ObjectID left = omf.track(1, omf.clip({.length = 960, .track = 0}));
    const ObjectID right = omf.track(2, omf.clip({.length = 960, .track = 0}));
    const ObjectID source = omf.mob(
        {.id = voice, .name = "Voice", .tracks = {left, right}, .media = omf.descriptor("AIFD")});
    const ObjectBuilder clip = omf.clip({.length = 480, .source = voice, .track = 2});
    omf.mob({.tracks = {omf.track(1, clip)}});
    const MappedOlder mapped = mapAny(omf.build());
    EXPECT_EQ(mapped.timeline.events.at(0).sourceChannel, 1);
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("which channel each of 2 sound tracks of a source plays is not known: "
                            "that of the track's number"));
    EXPECT_THAT(pathsOf(mapped), ElementsAre("SMOB[" + std::to_string(source) + "]"));
    EXPECT_EQ(mapped.places.at(0).clip, OMFObject{clip.id()});
}

}  // namespace
}  // namespace trellant::testing
