// SPDX-License-Identifier: Apache-2.0
// Classes, properties and paths of OMF 1.x.
#include "dump/dump_path.h"
#include "dumped.h"

#include <gtest/gtest.h>

#include <trellant_testing/omf1_builder.h>

namespace trellant::testing {

namespace {

/// Header 1, clip 2 in sequence 3 of track 4 of mob 5, which is the composition.
Omf1Builder song(OMFByteOrder container, OMFByteOrder values) {
    Omf1Builder omf({.container = container, .values = values});
    const ObjectBuilder clip = omf.clip({.length = 100, .source = {1, 2, 3}, .position = 7});
    const ObjectBuilder sequence = omf.sequence({clip}, "Dialog");
    omf.mob({.name = "Song", .tracks = {omf.track(4, sequence)}});
    return omf;
}

std::string objectOf(const Omf1Builder& omf, std::uint32_t object) {
    return dumped(omf.build(), {.object = object}).out;
}

std::string resolved(const std::string& path) {
    std::string text;
    const Bytes file = song(OMFByteOrder::little, OMFByteOrder::big).build();
    withContents(file, [&](const cli::DumpContents& contents) {
        const auto resolution = cli::resolvePath(contents, path);
        for (const auto& step : resolution.steps) {
            text += (text.empty() ? "" : ", ") + std::to_string(step.object) +
                    (step.by.empty() ? "" : " by " + step.by);
        }
        text += resolution.fault ? "; " + *resolution.fault : "";
    });
    return text;
}

}  // namespace

TEST(DumpOlderModel, ValuesAreReadInBothByteOrders) {
    using enum OMFByteOrder;
    for (const auto& [container, values] :
         {std::pair(little, big), std::pair(big, little), std::pair(big, big)}) {
        const Omf1Builder omf = song(container, values);
        EXPECT_EQ(objectOf(omf, 2),
                  "Object 2, class SCLP, 7 properties\n"
                  "  OMFI:ObjID                SCLP\n"
                  "  OMFI:CPNT:TrackKind       2, sound\n"
                  "  OMFI:CPNT:EditRate        48000/1\n"
                  "  OMFI:CLIP:Length          100\n"
                  "  OMFI:SCLP:SourceID        00000001-00000002-00000003\n"
                  "  OMFI:SCLP:SourceTrack     1\n"
                  "  OMFI:SCLP:SourcePosition  7\n");
        EXPECT_EQ(objectOf(omf, 4),
                  "Object 4, class TRAK, 3 properties\n"
                  "  OMFI:ObjID                TRAK\n"
                  "  OMFI:TRAK:LabelNumber     4\n"
                  "  OMFI:TRAK:TrackComponent  object 3, SEQU\n");
        EXPECT_NE(objectOf(omf, 3).find("OMFI:SEQU:Sequence   1 object: 2 SCLP\n"),
                  std::string::npos);
    }
}

TEST(DumpOlderModel, IndexesNameMobsByIdentifierAndObject) {
    const std::string header = objectOf(song(OMFByteOrder::little, OMFByteOrder::big), 1);
    EXPECT_NE(header.find("OMFI:CompositionMobs  1 mob: 000000C0-00000000-00000001 5 MOBJ\n"),
              std::string::npos)
        << header;
    EXPECT_NE(header.find("OMFI:SourceMobs       0 mobs\n"), std::string::npos) << header;
}

TEST(DumpOlderModel, ListsThatDoNotFitTheirCountAreBytes) {
    Omf1Builder omf = song(OMFByteOrder::little, OMFByteOrder::big);
    omf.head().bytes("OMFI:CompositionMobs", hex("00 02 01"));
    omf.at(3).bytes("OMFI:SEQU:Sequence", hex("00 01 02 00 00 00"));
    EXPECT_NE(objectOf(omf, 1).find("OMFI:CompositionMobs  00 02 01  |...|\n"), std::string::npos);
    EXPECT_NE(objectOf(omf, 3).find("OMFI:SEQU:Sequence   00 01 02 00 00 00  |......|\n"),
              std::string::npos);
}

TEST(DumpOlderModel, PathsOfLossesAreFollowed) {
    EXPECT_EQ(resolved("CMOB[5]/slot[4]/SEQU[3]/component[0]"),
              "5, 4 by OMFI:TRKG:Tracks, 3 by OMFI:TRAK:TrackComponent, 2 by OMFI:SEQU:Sequence");
    EXPECT_EQ(resolved("SMOB[5]"), "5");
    EXPECT_EQ(resolved("SCLP (rate)[2]"), "2");
    EXPECT_EQ(resolved("CMOB[3]"), "; object 3 is a SEQU, not CMOB");
    EXPECT_EQ(resolved("CMOB[5]/slot[2]"),
              "5; there is no slot[2] in object 5 (MOBJ); its slots: 4");
}

}  // namespace trellant::testing
