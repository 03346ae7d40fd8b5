// SPDX-License-Identifier: Apache-2.0
// Each property of a session missing, twice in one value, one byte too long and too short, and of
// another type: a value has exactly the bytes of its type, or it cannot be read, and what that
// costs is said.
#include "mapped_older.h"

#include <gmock/gmock.h>

#include <functional>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Case {
    const char* property;
    /// The object of a OneClip that has it.
    ObjectID OneClip::*object;
    /// What is said when it cannot be read; with an error in place of a timeline, that.
    std::vector<std::string> sentences{};
    std::string error{};
};

std::string unreadable(const char* property) {
    return std::string(property) + " is missing or cannot be read";
}

const char* const noEvents =
    "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips";

std::vector<Case> cases() {
    return {
        {"OMFI:CLIP:Length",
         &OneClip::clip,
         {"the length of a component of class SCLP cannot be read: it counts as 0"}},
        {"OMFI:SCLP:SourceID", &OneClip::clip, {}, noEvents},
        {"OMFI:SCLP:SourceTrack", &OneClip::clip, {}, noEvents},
        {"OMFI:SCLP:SourcePosition", &OneClip::clip, {unreadable("OMFI:SCLP:SourcePosition")}},
        {"OMFI:CPNT:TrackKind", &OneClip::clip, {unreadable("OMFI:CPNT:TrackKind")}},
        // The rate of the sequence holds.
        {"OMFI:CPNT:EditRate", &OneClip::clip, {}},
        {"OMFI:SEQU:Sequence", &OneClip::sequence, {}, noEvents},
        // The rate of its first component holds.
        {"OMFI:CPNT:EditRate", &OneClip::sequence, {}},
        {"OMFI:CPNT:TrackKind", &OneClip::sequence, {unreadable("OMFI:CPNT:TrackKind")}},
        {"OMFI:TRAK:LabelNumber", &OneClip::track, {unreadable("OMFI:TRAK:LabelNumber")}},
        {"OMFI:TRAK:TrackComponent", &OneClip::track, {}, noEvents},
        {"OMFI:TCCP:StartTC", &OneClip::timecode, {unreadable("OMFI:TCCP:StartTC")}},
        {"OMFI:TCCP:FPS", &OneClip::timecode, {unreadable("OMFI:TCCP:FPS")}},
        {"OMFI:TCCP:Flags", &OneClip::timecode, {unreadable("OMFI:TCCP:Flags")}},
        // A timecode is of the kind of timecodes, whatever it says.
        {"OMFI:CPNT:TrackKind", &OneClip::timecode, {}},
        {"OMFI:TRKG:Tracks", &OneClip::composition, {}, noEvents},
        // Both identifiers stand in the indexes of the header, too.
        {"OMFI:MOBJ:MobID", &OneClip::composition, {}},
        {"OMFI:MOBJ:MobID", &OneClip::source, {}},
        // Writers leave out what would be 0.
        {"OMFI:MOBJ:UsageCode", &OneClip::composition, {}},
        {"OMFI:MOBJ:StartPosition", &OneClip::composition, {}},
        {"OMFI:MOBJ:UsageCode", &OneClip::source, {}},
        {"OMFI:TRKG:Tracks", &OneClip::source, {}, noEvents},
    };
}

/// The bytes of a value of the session.
Bytes valueOf(const OneClip& session, const char* property) {
    const auto number16 = [](std::uint16_t value) {
        return ByteWriter(OMFByteOrder::big).u16(value).written();
    };
    const std::string name = property;
    if (name == "OMFI:CPNT:TrackKind") {
        return number16(2);
    }
    if (name == "OMFI:SCLP:SourceTrack" || name == "OMFI:TRAK:LabelNumber") {
        return number16(1);
    }
    if (name == "OMFI:TCCP:FPS") {
        return number16(25);
    }
    if (name == "OMFI:CPNT:EditRate") {
        return ByteWriter(OMFByteOrder::big).u32(48'000).u32(1).written();
    }
    if (name == "OMFI:SCLP:SourceID" || name == "OMFI:MOBJ:MobID") {
        return ByteWriter(OMFByteOrder::big).u32(1).u32(2).u32(3).written();
    }
    if (name == "OMFI:SEQU:Sequence" || name == "OMFI:TRKG:Tracks") {
        return session.omf.refsValue({session.clip});
    }
    if (name == "OMFI:TRAK:TrackComponent") {
        return ByteWriter(OMFByteOrder::little).u32(session.sequence).u32(0).written();
    }
    return ByteWriter(OMFByteOrder::big).u32(0).written();
}

using Spoil = std::function<void(ObjectBuilder, const char*, const Bytes&)>;

void expectAll(const Spoil& spoil) {
    for (const Case& given : cases()) {
        SCOPED_TRACE(given.property);
        OneClip session;
        const Bytes value = valueOf(session, given.property);
        spoil(session.omf.at(session.*(given.object)), given.property, value);
        const Bytes image = session.omf.build();
        if (!given.error.empty()) {
            EXPECT_EQ(errorOf(image), given.error);
            continue;
        }
        const MappedOlder mapped = mapAny(image);
        EXPECT_EQ(sentencesOf(mapped), given.sentences);
        EXPECT_EQ(mapped.timeline.events.size(), 1U);
    }
}

TEST(OlderValue, Missing) {
    expectAll(
        [](ObjectBuilder object, const char* property, const Bytes&) { object.without(property); });
}

TEST(OlderValue, Doubled) {
    expectAll([](ObjectBuilder object, const char* property, const Bytes& value) {
        object.bytes(property, joined({value, value}));
    });
}

TEST(OlderValue, TooLong) {
    expectAll([](ObjectBuilder object, const char* property, const Bytes& value) {
        object.bytes(property, joined({value, bytesOf("x")}));
    });
}

TEST(OlderValue, TooShort) {
    expectAll([](ObjectBuilder object, const char* property, const Bytes& value) {
        object.bytes(property, Bytes(value.begin(), value.end() - 1));
    });
}

TEST(OlderValue, Empty) {
    expectAll([](ObjectBuilder object, const char* property, const Bytes&) {
        object.bytes(property, Bytes());
    });
}

TEST(OlderValue, TheTypeThatTheTableNamesMeansNothing) {
    for (const char* const property : {"OMFI:CLIP:Length", "OMFI:SCLP:SourceID"}) {
        OneClip session;
        const Bytes value = std::string(property) == "OMFI:CLIP:Length"
                                ? ByteWriter(OMFByteOrder::big).u32(24'000).written()
                                : valueOf(session, property);
        session.omf.container().set(session.clip, property, value, "omfi:String");
        const MappedOlder mapped = mapAny(session.omf.build());
        EXPECT_EQ(mapped.timeline.events.at(0).duration, AAFRational(1, 2));
        EXPECT_THAT(sentencesOf(mapped), IsEmpty());
    }
}

TEST(OlderValue, AReferenceWhoseRestSaysSomethingIsNone) {
    OneClip session;
    session.omf.at(session.track)
        .bytes("OMFI:TRAK:TrackComponent",
               ByteWriter(OMFByteOrder::little).u32(session.sequence).u32(1).written());
    EXPECT_EQ(errorOf(session.omf.build()), noEvents);
}

TEST(OlderValue, AListIsAsLongAsItsCountSays) {
    OneClip session;
    Bytes list = session.omf.refsValue({session.clip, session.clip});
    list.resize(list.size() - 8);
    session.omf.at(session.sequence).bytes("OMFI:SEQU:Sequence", list);
    EXPECT_EQ(errorOf(session.omf.build()), noEvents);
}

TEST(OlderValue, AListInPiecesIsOne) {
    OneClip session;
    const Bytes list = session.omf.refsValue({session.clip, session.clip});
    session.omf.container().setPieces(
        session.sequence, "OMFI:SEQU:Sequence",
        {Bytes(list.begin(), list.begin() + 10), Bytes(list.begin() + 10, list.end())});
    EXPECT_EQ(mapAny(session.omf.build()).timeline.events.size(), 2U);
}

TEST(OlderValue, WithoutAByteOrderThatOfTheContainerHolds) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        OneClip session({.container = order, .values = order});
        session.omf.head().without("OMFI:ByteOrder");
        EXPECT_THAT(sentencesOf(mapAny(session.omf.build())),
                    ElementsAre("OMFI:ByteOrder is missing or unknown: values are read as the "
                                "container has them"));
    }
}

TEST(OlderValue, WithoutAnIndexEveryMobMayBeTheComposition) {
    OneClip session;
    session.omf.head().bytes("OMFI:CompositionMobs", bytesOf("?"));
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_EQ(mapped.timeline.compositionName, "Scene 12");
    EXPECT_THAT(sentencesOf(mapped), ElementsAre(unreadable("OMFI:CompositionMobs")));
}

TEST(OlderValue, WithoutAnyRateATrackIsDropped) {
    OneClip session;
    session.omf.at(session.sequence).without("OMFI:CPNT:EditRate");
    session.omf.at(session.clip).without("OMFI:CPNT:EditRate");
    EXPECT_EQ(errorOf(session.omf.build()), noEvents);
}

TEST(OlderValue, FadesThatCannotBeReadAreNone) {
    OneClip session;
    session.omf.at(session.clip)
        .bytes("OMFI:SCLP:FadeInLength", bytesOf("12345"))
        .int32("OMFI:SCLP:FadeOutLength", 480);
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_FALSE(mapped.timeline.events.at(0).fadeIn);
    EXPECT_TRUE(mapped.timeline.events.at(0).fadeOut);
    EXPECT_THAT(sentencesOf(mapped), ElementsAre(unreadable("OMFI:SCLP:FadeInLength"),
                                                 unreadable("OMFI:SCLP:FadeInType"),
                                                 unreadable("OMFI:SCLP:FadeOutType")));
}

TEST(OlderValue, WithoutAHeaderThereIsNoSession) {
    OneClip session;
    session.omf.head().bytes("OMFI:ObjID", bytesOf("HAED"));
    EXPECT_EQ(errorOf(session.omf.build()), "Malformed OMF/Bento file: OMF HEAD object not found");
}

}  // namespace
}  // namespace trellant::testing
