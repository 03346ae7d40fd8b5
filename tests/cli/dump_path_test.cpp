// SPDX-License-Identifier: Apache-2.0
// Paths of loss records, followed step by step.
#include "dump/dump_path.h"

#include "dumped.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

/// Header 1; clip 2 and filler 3 in sequence 4; slot 5 of composition 6; slots 7 (argument 1) and 8
/// (an input, the clip) of effect 9, which is rendered as 3.
OmfBuilder song() {
    OmfBuilder omf;
    omf.setSegmentKind(std::nullopt);
    const auto clip = omf.clip({.length = 100, .fadeIn = FadeSpec{.length = 7}});
    const auto filler = omf.filler(50);
    const auto sequence = omf.sequence({clip, filler});
    const auto slot = omf.slot({.segment = sequence});
    omf.composition({.name = "Song", .slots = {slot}});
    const auto control =
        omf.object("ESLT").int32("OMFI:ESLT:ArgID", 1).ref("OMFI:ESLT:ArgValue", filler);
    const auto input =
        omf.object("ESLT").int32("OMFI:ESLT:ArgID", -1).ref("OMFI:ESLT:ArgValue", clip);
    omf.object("EFFE")
        .refs("OMFI:EFFE:EffectSlots", {control, input})
        .ref("OMFI:EFFE:FinalRendering", filler);
    return omf;
}

/// "2 by PROPERTY, 3" for the objects of the steps, and the fault behind "; ".
std::string resolved(const std::string& path) {
    std::string text;
    withContents(song().build(), [&](const cli::DumpContents& contents) {
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

TEST(DumpPath, FollowsSlotsSegmentsAndComponents) {
    EXPECT_EQ(resolved("CMOB[6]/slot[5]/SEQU[4]/component[1]/FILL[3]"),
              "6, 5 by OMFI:MOBJ:Slots, 4 by OMFI:MSLT:Segment, 3 by OMFI:SEQU:Components, 3");
}

TEST(DumpPath, FollowsInputsAndRenderings) {
    EXPECT_EQ(resolved("EFFE[9]/input[0]/SCLP[2]"), "9, 2 by OMFI:EFFE:EffectSlots, 2");
    EXPECT_EQ(resolved("EFFE[9]/FinalRendering"), "9, 3 by OMFI:EFFE:FinalRendering");
}

TEST(DumpPath, StaysAtTheClipForItsFades) {
    EXPECT_EQ(resolved("SCLP[2]/FadeIn"), "2, 2 by OMFI:SCLP:FadeInLength");
    EXPECT_EQ(resolved("SCLP[2]/FadeOut"), "2, 2 by OMFI:SCLP:FadeOutLength");
}

TEST(DumpPath, LeavesOutObjectsInBetween) {
    EXPECT_EQ(resolved("CMOB[6]/slot[5]/SCLP[2]"), "6, 5 by OMFI:MOBJ:Slots, 2");
}

TEST(DumpPath, TakesObjectsOfAnyClassUnderNoName) {
    EXPECT_EQ(resolved("[4]/[2]"), "4, 2 by OMFI:SEQU:Components");
    EXPECT_EQ(resolved("????[4]"), "4");
}

TEST(DumpPath, NamesTheObjectThatIsNotThere) {
    // Names of properties begin at 65536; the song names 20 of them.
    const std::string text = resolved("CMOB[60]");
    EXPECT_EQ(text.substr(0, text.rfind(' ')),
              "; there is no object 60; the objects are numbered from 1 to");
}

TEST(DumpPath, NamesTheClassThatIsNotTheOne) {
    EXPECT_EQ(resolved("CMOB[6]/slot[5]/NEST[4]"),
              "6, 5 by OMFI:MOBJ:Slots; object 4 is a SEQU, not NEST");
    EXPECT_EQ(resolved("CMOB[65536]"), "; object 65536 is of no class, not CMOB");
}

TEST(DumpPath, NamesWhatThereIsInstead) {
    EXPECT_EQ(resolved("CMOB[6]/slot[4]"),
              "6; there is no slot[4] in object 6 (CMOB); its slots: 5");
    EXPECT_EQ(resolved("SEQU[4]/component[2]"),
              "4; there is no component[2] in object 4 (SEQU); its components: 2, 3");
    EXPECT_EQ(resolved("EFFE[9]/input[1]"),
              "9; there is no input[1] in object 9 (EFFE); its inputs: 2");
    EXPECT_EQ(resolved("SEQU[4]/FinalRendering"),
              "4; there is no FinalRendering in object 4 (SEQU); its final renderings: none");
    EXPECT_EQ(resolved("SEQU[4]/slot"), "4; there is no slot in object 4 (SEQU); its slots: none");
}

TEST(DumpPath, BoundsWhatThereIsInstead) {
    OmfBuilder omf;
    omf.setSegmentKind(std::nullopt);
    std::vector<ObjectID> fillers;
    for (int i = 0; i < 14; ++i) {
        fillers.push_back(omf.filler(1));
    }
    omf.sequence(fillers);
    withContents(omf.build(), [](const cli::DumpContents& contents) {
        EXPECT_EQ(
            cli::resolvePath(contents, "SEQU[16]/component[14]").fault,
            "there is no component[14] in object 16 (SEQU); its components: 2, 3, 4, 5, 6, 7, "
            "8, 9, 10, 11, 12, 13 and 2 more");
    });
}

TEST(DumpPath, SaysWhatAStepLooksLike) {
    const std::string advice = "\" is no step of a path, such as CMOB[12] or component[2]";
    EXPECT_EQ(resolved(""), "; \"" + advice);
    EXPECT_EQ(resolved("CMOB[6]/"), "6; \"" + advice);
    EXPECT_EQ(resolved("CMOB[6"), "; \"CMOB[6" + advice);
    EXPECT_EQ(resolved("CMOB[]"), "; \"CMOB[]" + advice);
    EXPECT_EQ(resolved("CMOB[-6]"), "; \"CMOB[-6]" + advice);
    EXPECT_EQ(resolved("CMOB[6]x"), "; \"CMOB[6]x" + advice);
    EXPECT_EQ(resolved("CMOB[4294967296]"), "; \"CMOB[4294967296]" + advice);
    EXPECT_EQ(resolved("CMOB"), "; the step CMOB names no object");
}

TEST(DumpPath, ShowsTheStepsAndTheLastObject) {
    const Said said = dumped(song().build(), {.path = "CMOB[6]/slot[5]/SEQU[4]/component[1]"});
    EXPECT_EQ(said.out,
              "Step          Object  Class  Length  By\n"
              "CMOB[6]            6  CMOB\n"
              "slot[5]            5  MSLT           OMFI:MOBJ:Slots\n"
              "SEQU[4]            4  SEQU      150  OMFI:MSLT:Segment\n"
              "component[1]       3  FILL       50  OMFI:SEQU:Components\n"
              "\n"
              "Object 3, class FILL, 2 properties\n"
              "  OMFI:OOBJ:ObjClass  FILL\n"
              "  OMFI:CPNT:Length    50\n");
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(said.status, 0);
}

TEST(DumpPath, ShowsTheStepsThatExist) {
    const Said said = dumped(song().build(), {.path = "CMOB[6]/slot[5]/component[0]"});
    EXPECT_EQ(said.out,
              "Step     Object  Class  Length  By\n"
              "CMOB[6]       6  CMOB\n"
              "slot[5]       5  MSLT           OMFI:MOBJ:Slots\n");
    EXPECT_EQ(said.errors,
              "trellant: there is no component[0] in object 5 (MSLT); its components: "
              "none\n");
    EXPECT_EQ(said.status, 1);
}

}  // namespace trellant::testing
