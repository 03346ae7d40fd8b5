// SPDX-License-Identifier: Apache-2.0
// Which of a file's compositions is read.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::Contains;

/// Two compositions of one clip each, in the order of their making, and a source.
class CompositionChoice : public ::testing::Test {
  protected:
    CompositionChoice() {
        omf_.audioFile({.id = kick_, .name = "Kick", .media = shortWave(), .length = 48});
        first_ = composition("First", MobID{0xC0, 0, 1});
        second_ = composition("Second", MobID{0xC0, 0, 2});
        master_ = omf_.masterMob({.id = {0xA0, 0, 1}, .name = "Master"});
    }

    ObjectID composition(const std::string& name, MobID id) {
        const ObjectID clip = omf_.clip({.length = 100, .source = kick_});
        const ObjectID slot = omf_.slot({.editRate = Ratio{100}, .segment = clip});
        return omf_.composition({.name = name, .slots = {slot}, .id = id});
    }
    void list(std::string_view property, const std::vector<ObjectID>& mobs) {
        omf_.head().refs(property, mobs);
    }
    void expectChosen(const std::string& name, ObjectID composition) {
        const Mapped mapped = mapImage(omf_.build());
        EXPECT_EQ(mapped.timeline.compositionName, name);
        EXPECT_THAT(mapped.diagnostics, Contains("Composition Mob object " +
                                                 std::to_string(composition) + " selected"));
    }

    static constexpr std::string_view primaryMobs_ = "OMFI:HEAD:PrimaryMobs";
    static constexpr std::string_view mobs_ = "OMFI:HEAD:Mobs";
    static constexpr MobID kick_{1, 2, 3};
    OmfBuilder omf_;
    ObjectID first_ = 0;
    ObjectID second_ = 0;
    ObjectID master_ = 0;
};

TEST_F(CompositionChoice, FirstPrimaryCompositionInStoredOrderWins) {
    list(primaryMobs_, {second_, first_});
    expectChosen("Second", second_);
}

TEST_F(CompositionChoice, OtherMobsListedFirstArePassedOver) {
    list(primaryMobs_, {master_, second_, first_});
    expectChosen("Second", second_);
}

TEST_F(CompositionChoice, PrimaryMobsWithoutACompositionGiveWayToTheMobList) {
    list(primaryMobs_, {master_});
    list(mobs_, {master_, second_, first_});
    expectChosen("Second", second_);
}

TEST_F(CompositionChoice, AbsentPrimaryMobsGiveWayToTheMobList) {
    list(primaryMobs_, {});
    list(mobs_, {second_, first_});
    expectChosen("Second", second_);
}

TEST_F(CompositionChoice, WithoutListsTheFirstCompositionOfTheFileIsRead) {
    list(primaryMobs_, {});
    list(mobs_, {});
    expectChosen("First", first_);
}

TEST_F(CompositionChoice, ListsThatNameNoCompositionGiveWayToTheFile) {
    list(primaryMobs_, {master_, 60'000});
    list(mobs_, {master_});
    expectChosen("First", first_);
}

TEST_F(CompositionChoice, ChosenCompositionWithoutAudioIsNotReplacedByAnother) {
    omf_.at(second_).without("OMFI:MOBJ:Slots");
    list(primaryMobs_, {second_, first_});
    EXPECT_EQ(mappingError(omf_.build()),
              "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips");
}

TEST_F(CompositionChoice, FileWithoutACompositionFails) {
    omf_.at(first_).bytes("OMFI:OOBJ:ObjClass", bytesOf("MMOB"));
    omf_.at(second_).bytes("OMFI:OOBJ:ObjClass", bytesOf("cmob"));
    EXPECT_EQ(mappingError(omf_.build()),
              "Malformed OMF/Bento file: no Composition Mob (CMOB) found");
}

TEST_F(CompositionChoice, CompositionWithoutANameHasNone) {
    omf_.at(first_).without("OMFI:MOBJ:Name");
    EXPECT_EQ(mapImage(omf_.build()).timeline.compositionName, std::nullopt);
}

}  // namespace
}  // namespace trellant::testing
