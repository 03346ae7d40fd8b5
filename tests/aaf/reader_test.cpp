// SPDX-License-Identifier: Apache-2.0
// The reader of these tests finds what is wrong: each file here has one fault.
#include "dictionary.h"
#include "meta_dictionary.h"
#include "object_writer.h"
#include "written_aaf.h"

#include <functional>

namespace trellant::aaf {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The index of a vector whose objects do not follow.
void writeIndex(ObjectWriter& object, Property property, std::size_t count) {
    static_cast<void>(object.strongVector(property, count));
}

/// What the reader says of a file whose composition has `write` as its last properties.
std::vector<std::string> problemsWith(
    const std::function<void(compound::CompoundFile&, ObjectWriter&)>& write) {
    compound::CompoundFile file({}, {});
    const RootObjects objects = writeRoot(file);
    writeMetaDictionary(file, objects.metaDictionary);
    ObjectWriter header(file, objects.header);
    header.u16(Property::headerByteOrder, 0x4949);
    header.timeStamp(Property::headerLastModified, {});
    header.data(Property::headerVersion, ValueBytes().u8(1).u8(1));
    writeIndex(header, Property::headerIdentificationList, 0);
    writeDictionary(file, header.strongReference(Property::headerDictionary, Class::dictionary));
    ObjectWriter content(file,
                         header.strongReference(Property::headerContent, Class::contentStorage));
    header.finish();
    ObjectWriter mob(file, content
                               .strongSet(Property::contentStorageMobs, Property::mobMobID,
                                          std::array{mobNumber(1)})
                               .add(Class::compositionMob));
    content.finish();
    mob.mobID(Property::mobMobID, mobNumber(1));
    mob.timeStamp(Property::mobLastModified, {});
    write(file, mob);
    mob.finish();
    testing::MemoryImage image;
    file.write([&](ByteView bytes) { image.append(bytes); });
    return testing::AafReader(image).problems();
}

void finishMob(ObjectWriter& mob) {
    mob.timeStamp(Property::mobCreationTime, {});
    writeIndex(mob, Property::mobSlots, 0);
}

TEST(AafReaderItself, FindsNoFaultWhereNoneIs) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) { finishMob(mob); }), IsEmpty());
}

TEST(AafReaderItself, MissesRequiredProperties) {
    EXPECT_THAT(
        problemsWith([](auto&, ObjectWriter& mob) { writeIndex(mob, Property::mobSlots, 0); }),
        Contains(HasSubstr("CompositionMob lacks CreationTime")));
}

TEST(AafReaderItself, SeesPropertiesOfOtherClasses) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    finishMob(mob);
                    mob.boolean(Property::timecodeDrop, true);
                }),
                Contains(HasSubstr("CompositionMob has the unknown property 5379")));
}

TEST(AafReaderItself, SeesValuesOfAnotherLength) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    mob.u16(Property::mobCreationTime, 1);
                    writeIndex(mob, Property::mobSlots, 0);
                }),
                Contains(HasSubstr("/CreationTime: the length is not that of its type")));
}

TEST(AafReaderItself, SeesTextsWithoutEnd) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    finishMob(mob);
                    mob.u16(Property::mobName, u'n');
                }),
                Contains(HasSubstr("/Name: not one text that ends with zero")));
}

TEST(AafReaderItself, SeesFormsThatDoNotFitTheType) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    mob.timeStamp(Property::mobCreationTime, {});
                    mob.u16(Property::mobSlots, 0);
                }),
                Contains(HasSubstr("/Slots: its form is not that of its type")));
}

TEST(AafReaderItself, SeesObjectsThatAnIndexDoesNotName) {
    EXPECT_THAT(problemsWith([](compound::CompoundFile& file, ObjectWriter& mob) {
                    mob.timeStamp(Property::mobCreationTime, {});
                    ObjectList slots = mob.strongVector(Property::mobSlots, 0);
                    ObjectWriter(file, slots.add(Class::eventMobSlot)).finish();
                }),
                Contains(HasSubstr("no property knows Slots-4403{0}")));
}

TEST(AafReaderItself, SeesObjectsThatAreNotThere) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    mob.timeStamp(Property::mobCreationTime, {});
                    writeIndex(mob, Property::mobSlots, 1);
                }),
                Contains(HasSubstr("nothing there: Slots-4403{0}")));
}

TEST(AafReaderItself, SeesObjectsOfAClassThatDoesNotBelong) {
    EXPECT_THAT(problemsWith([](compound::CompoundFile& file, ObjectWriter& mob) {
                    mob.timeStamp(Property::mobCreationTime, {});
                    ObjectList slots = mob.strongVector(Property::mobSlots, 1);
                    ObjectWriter(file, slots.add(Class::filler)).finish();
                }),
                Contains(HasSubstr("/Slots/0: an object of a class that does not belong here")));
}

TEST(AafReaderItself, SeesWeakReferencesToNothing) {
    const auto problems = [](const AUID& name, Target target) {
        return problemsWith([&](compound::CompoundFile& file, ObjectWriter& mob) {
            mob.timeStamp(Property::mobCreationTime, {});
            ObjectWriter slot(file,
                              mob.strongVector(Property::mobSlots, 1).add(Class::eventMobSlot));
            slot.u32(Property::mobSlotSlotID, 1);
            slot.rate(Property::eventMobSlotEditRate, {25, 1});
            ObjectWriter filler(file,
                                slot.strongReference(Property::mobSlotSegment, Class::filler));
            filler.weakReference(Property::componentDataDefinition, target, name);
            filler.finish();
            slot.finish();
        });
    };
    EXPECT_THAT(problems(idOf(DataKind::sound), Target::dataDefinitions), IsEmpty());
    EXPECT_THAT(problems(idOf(Operation::monoAudioPan), Target::dataDefinitions),
                Contains(HasSubstr("/DataDefinition: refers to something that is not there")));
    EXPECT_THAT(problems(idOf(Operation::monoAudioPan), Target::operationDefinitions),
                Contains(HasSubstr("/DataDefinition: another path than the type's target set")));
}

TEST(AafReaderItself, SeesAPropertyTwice) {
    EXPECT_THAT(problemsWith([](auto&, ObjectWriter& mob) {
                    finishMob(mob);
                    mob.text(Property::mobName, "a");
                    mob.text(Property::mobName, "b");
                }),
                Contains(HasSubstr("a property twice")));
}

TEST(AafReaderItself, SeesAnObjectThatTheIndexCallsOtherwise) {
    EXPECT_THAT(
        problemsWith([](compound::CompoundFile& file, ObjectWriter& mob) {
            mob.timeStamp(Property::mobCreationTime, {});
            ObjectWriter slot(file,
                              mob.strongVector(Property::mobSlots, 1).add(Class::eventMobSlot));
            slot.u32(Property::mobSlotSlotID, 1);
            slot.rate(Property::eventMobSlotEditRate, {25, 1});
            ObjectWriter group(
                file, slot.strongReference(Property::mobSlotSegment, Class::operationGroup));
            group.weakReference(Property::componentDataDefinition, Target::dataDefinitions,
                                idOf(DataKind::sound));
            group.weakReference(Property::operationGroupOperation, Target::operationDefinitions,
                                idOf(Operation::monoAudioGain));
            ObjectWriter value(file, group
                                         .strongSet(Property::operationGroupParameters,
                                                    Property::definitionObjectIdentification,
                                                    std::array{idOf(ParameterKind::pan)})
                                         .add(Class::constantValue));
            value.auid(Property::parameterDefinition, idOf(ParameterKind::level));
            value.indirectRational(Property::constantValueValue, {1, 1});
            value.finish();
            group.finish();
            slot.finish();
        }),
        Contains(HasSubstr("/Parameters/0: the index calls it otherwise")));
}

}  // namespace
}  // namespace trellant::aaf
