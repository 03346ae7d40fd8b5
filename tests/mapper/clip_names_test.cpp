// SPDX-License-Identifier: Apache-2.0
// What a clip is called: its own name, or an attribute somewhere in its attribute lists.
#include "song.h"

#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

class ClipName : public ::testing::Test {
  protected:
    /// The name of a clip with this attribute list.
    std::optional<std::string> nameWith(ObjectID attributes) {
        return nameOf(song_.clip(100).ref("OMFI:CPNT:Attributes", attributes));
    }
    std::optional<std::string> nameOf(ObjectID clip) {
        song_.addSlot(clip);
        return song_.map().timeline.events.at(0).clipName;
    }
    /// A list of one attribute that leads to `list`.
    ObjectID listTo(ObjectID list) {
        return omf_.attributeList({omf_.attribute("Folder", std::nullopt, list)});
    }
    ObjectID named(const std::string& text) { return omf_.attribute("Name", text); }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
};

TEST_F(ClipName, OwnNameComesFirst) {
    const ObjectID list = omf_.attributeList({named("From the list")});
    EXPECT_EQ(
        nameOf(song_.clip(100).string("OMFI:CPNT:Name", "Own").ref("OMFI:CPNT:Attributes", list)),
        "Own");
}

TEST_F(ClipName, WithoutNameAndAttributesIsAbsent) {
    EXPECT_EQ(nameOf(song_.clip(100)), std::nullopt);
}

TEST_F(ClipName, AttributeStandsInForAMissingOrEmptyName) {
    const ObjectID list = omf_.attributeList({named("From the list")});
    EXPECT_EQ(
        nameOf(song_.clip(100).string("OMFI:CPNT:Name", "").ref("OMFI:CPNT:Attributes", list)),
        "From the list");
}

TEST_F(ClipName, FirstMatchingAttributeInStoredOrderWins) {
    EXPECT_EQ(nameWith(omf_.attributeList(
                  {omf_.attribute("Colour", "red"), named("First"), named("Second")})),
              "First");
}

TEST_F(ClipName, AttributeNameIsCaseSensitiveAndExact) {
    EXPECT_EQ(nameWith(omf_.attributeList({omf_.attribute("name", "a"), omf_.attribute("NAME", "b"),
                                           omf_.attribute("Names", "c"),
                                           omf_.attribute(" Name", "d"), named("e")})),
              "e");
}

TEST_F(ClipName, SearchGoesDepthFirst) {
    const ObjectID deep = omf_.attributeList({named("Deep")});
    EXPECT_EQ(nameWith(omf_.attributeList(
                  {omf_.attribute("Folder", std::nullopt, deep), named("Shallow")})),
              "Deep");
}

TEST_F(ClipName, SearchGoesOnAfterAnEmptyBranch) {
    const ObjectID empty = omf_.attributeList({omf_.attribute("Colour", "red")});
    EXPECT_EQ(nameWith(omf_.attributeList(
                  {omf_.attribute("Folder", std::nullopt, empty), named("Behind")})),
              "Behind");
}

TEST_F(ClipName, FourthLevelIsSearched) {
    EXPECT_EQ(nameWith(listTo(listTo(listTo(omf_.attributeList({named("Fourth")}))))), "Fourth");
}

TEST_F(ClipName, FifthLevelIsNot) {
    EXPECT_EQ(nameWith(listTo(listTo(listTo(listTo(omf_.attributeList({named("Fifth")})))))),
              std::nullopt);
}

TEST_F(ClipName, MatchingAttributeWithoutAStringGoesOnIntoItsObject) {
    const ObjectID inner = omf_.attributeList({named("Inner")});
    EXPECT_EQ(nameWith(omf_.attributeList(
                  {omf_.attribute("Name", std::nullopt, inner), named("Behind")})),
              "Inner");
}

TEST_F(ClipName, MatchingAttributeWithoutAStringGoesOnToTheNext) {
    EXPECT_EQ(nameWith(omf_.attributeList({omf_.attribute("Name", std::nullopt),
                                           omf_.attribute("Name", ""), named("Behind")})),
              "Behind");
}

TEST_F(ClipName, MatchingAttributeWithAStringEndsTheSearchBeforeItsObject) {
    const ObjectID inner = omf_.attributeList({named("Inner")});
    EXPECT_EQ(nameWith(omf_.attributeList({omf_.attribute("Name", "Outer", inner)})), "Outer");
}

TEST_F(ClipName, SharedListBelowTheFourthLevelIsStillFoundFromAbove) {
    // The same list is first met at the fifth level, out of reach, then at the second.
    const ObjectID shared = omf_.attributeList({named("Shared")});
    const ObjectID tooDeep = listTo(listTo(listTo(shared)));
    EXPECT_EQ(nameWith(omf_.attributeList({omf_.attribute("Folder", std::nullopt, tooDeep),
                                           omf_.attribute("Folder", std::nullopt, shared)})),
              "Shared");
}

TEST_F(ClipName, ListThatContainsItselfEnds) {
    ObjectBuilder attribute = omf_.attribute("Folder", std::nullopt);
    const ObjectID list = omf_.attributeList({attribute, attribute, attribute});
    attribute.ref("OMFI:ATTB:ObjAttribute", list);
    EXPECT_EQ(nameWith(list), std::nullopt);
}

TEST_F(ClipName, ListThatDoesNotExistGivesNone) {
    EXPECT_EQ(nameWith(60'000), std::nullopt);
}

TEST_F(ClipName, WideListsThatShareListsCostNoMoreThanTheyHold) {
    // Three levels of 2000 attributes that all lead to the same list: 8 * 10^9 paths.
    ObjectID list = omf_.attributeList({omf_.attribute("Colour", "red")});
    for (int level = 0; level < 3; ++level) {
        const ObjectID attribute = omf_.attribute("Folder", std::nullopt, list);
        list = omf_.attributeList(std::vector<ObjectID>(2'000, attribute));
    }
    EXPECT_EQ(nameWith(list), std::nullopt);
}

}  // namespace
}  // namespace trellant::testing
