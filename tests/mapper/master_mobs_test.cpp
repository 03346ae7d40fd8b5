// SPDX-License-Identifier: Apache-2.0
// Master Mobs between clips and their files.
#include <trellant/mapper/master_mobs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;

AAFClipEvent eventOf(const std::string& id) {
    AAFClipEvent event;
    event.id = id;
    return event;
}

std::string idOf(ObjectID clip, int number) {
    return "omf-event-" + std::to_string(clip) + "-" + std::to_string(number);
}

TEST(MasterMobs, EachEventKnowsTheOneThatItsClipNames) {
    OmfBuilder omf;
    omf.masterMob({.id = MobID{1, 0, 1}, .name = "Anna"});
    omf.masterMob({.id = MobID{1, 0, 2}});
    omf.sourceMob({.id = MobID{1, 0, 3}, .name = "ANNA_01.WAV"});
    const ObjectID anna = omf.clip({.length = 1, .source = MobID{1, 0, 1}});
    const ObjectID nameless = omf.clip({.length = 1, .source = MobID{1, 0, 2}});
    const ObjectID direct = omf.clip({.length = 1, .source = MobID{1, 0, 3}});
    const ObjectID lost = omf.clip({.length = 1, .source = MobID{9, 9, 9}});
    omf.composition({});
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("mix.omf"), omf.build()));
    AAFTimeline timeline;
    timeline.events = {eventOf(idOf(nameless, 0)), eventOf(idOf(anna, 1)), eventOf(idOf(direct, 2)),
                       eventOf(idOf(nameless, 3)), eventOf(idOf(lost, 4)), eventOf("omf-event-"),
                       eventOf("clip 7")};
    const MasterMobs found = masterMobs(document, timeline);
    EXPECT_THAT(found.mobs, ElementsAre(MasterMob{"00000001-00000000-00000002", std::nullopt},
                                        MasterMob{"00000001-00000000-00000001", "Anna"}));
    EXPECT_THAT(found.ofEvents,
                ElementsAre(0, 1, std::nullopt, 0, std::nullopt, std::nullopt, std::nullopt));
}

}  // namespace
}  // namespace trellant::testing
