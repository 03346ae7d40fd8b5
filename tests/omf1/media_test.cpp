// SPDX-License-Identifier: Apache-2.0
// Audio of OMF 1.x: embedded, described, named by locators.
#include "mapped_older.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <trellant_testing/wave_builder.h>
#include <utility>
#include <vector>

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

/// A session whose only source is described by an SD2D object with these values.
MappedOlder describedBySD2(const std::function<void(ObjectBuilder&)>& describe) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    ObjectBuilder described = omf.descriptor("SD2D", Ratio{44'100});
    describe(described);
    addSource(omf, voice, described);
    return mapAny(sessionWith(omf, voice));
}

TEST(OlderMedia, ChannelsAndBitsOfSD2AreThoseOfItsDescriptor) {
    const MappedOlder ofTwoBytes = describedBySD2([](ObjectBuilder& described) {
        described.int16("OMFI:SD2D:BitsPerSample", 24).int16("OMFI:SD2D:NumberOfChannels", 2);
    });
    EXPECT_THAT(sentencesOf(ofTwoBytes), IsEmpty());
    ASSERT_EQ(ofTwoBytes.timeline.essences.size(), 1U);
    EXPECT_EQ(ofTwoBytes.timeline.essences[0].bitDepth, 24);
    EXPECT_EQ(ofTwoBytes.timeline.essences[0].channelCount, 2);
    EXPECT_EQ(ofTwoBytes.timeline.essences[0].sampleRate, AAFRational(44'100));
    EXPECT_EQ(ofTwoBytes.timeline.essences[0].codec, "SD2D");
    const MappedOlder ofFour = describedBySD2([](ObjectBuilder& described) {
        described.int32("OMFI:SD2D:BitsPerSample", 16).int32("OMFI:SD2D:NumberOfChannels", 1);
    });
    EXPECT_EQ(ofFour.timeline.essences.at(0).bitDepth, 16);
    EXPECT_EQ(ofFour.timeline.essences.at(0).channelCount, 1);
}

TEST(OlderMedia, WhatSD2SaysOfItsChannelsAndBitsMayMakeNoSense) {
    const std::vector<std::function<void(ObjectBuilder&, const char*)>> senseless{
        [](ObjectBuilder& described, const char* property) { described.int16(property, 0); },
        [](ObjectBuilder& described, const char* property) { described.int32(property, -1); },
        [](ObjectBuilder& described, const char* property) { described.int32(property, 1'025); },
        [](ObjectBuilder& described, const char* property) {
            described.bytes(property, hex("000001"));
        }};
    for (const char* const property : {"OMFI:SD2D:BitsPerSample", "OMFI:SD2D:NumberOfChannels"}) {
        for (const auto& set : senseless) {
            const MappedOlder mapped =
                describedBySD2([&](ObjectBuilder& described) { set(described, property); });
            EXPECT_THAT(sentencesOf(mapped),
                        ElementsAre(std::string(property) + " is missing or cannot be read"));
            EXPECT_EQ(mapped.timeline.essences.at(0).bitDepth, std::nullopt);
            EXPECT_EQ(mapped.timeline.essences.at(0).channelCount, 1);
        }
    }
}

TEST(OlderMedia, TheHeaderOfAudioThatIsThereCountsMoreThanADescriptor) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.media("AIFC", voice, aifcOf(960));
    ObjectBuilder described = omf.descriptor("SD2D");
    described.int16("OMFI:SD2D:BitsPerSample", 24).int16("OMFI:SD2D:NumberOfChannels", 2);
    addSource(omf, voice, described);
    const AAFTimeline timeline = mapAny(sessionWith(omf, voice)).timeline;
    EXPECT_EQ(timeline.essences.at(0).bitDepth, 16);
    EXPECT_EQ(timeline.essences.at(0).channelCount, 1);
}

TEST(OlderMedia, AudioThatIsSaidToLieInTheFileAndDoesNotIsTold) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    ObjectBuilder described = omf.descriptor("SD2D");
    described.bytes("OMFI:MDFL:IsOMFI", hex("01"));
    omf.object("SD2M").uid("OMFI:SD2M:MobID", voice).bytes("OMFI:SD2M:Data", Bytes(100));
    addSource(omf, voice, described);
    const MappedOlder mapped = mapAny(sessionWith(omf, voice));
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("the audio of a source is said to lie in the file, and no AIFC or WAVE "
                            "data are there for it"));
    EXPECT_EQ(mapped.places.at(0).kind, LossKind::olderModelUnknown);
    EXPECT_FALSE(mapped.timeline.essences.at(0).embedded);
}

TEST(OlderMedia, AudioThatLiesInTheFileAsSaidIsNoLoss) {
    OneClip session;
    const ObjectID descriptor = 2;
    ASSERT_TRUE(session.omf.container().has(descriptor, "OMFI:MDFL:SampleRate"));
    session.omf.at(descriptor).bytes("OMFI:MDFL:IsOMFI", hex("01"));
    EXPECT_THAT(sentencesOf(mapAny(session.omf.build())), IsEmpty());
}

}  // namespace
}  // namespace trellant::testing
