// SPDX-License-Identifier: Apache-2.0
#include "property_values.h"

#include <gmock/gmock.h>

#include <trellant_testing/byte_writer.h>

namespace trellant::fuzzing {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::hex;
using ::testing::IsEmpty;

TEST(PropertyKind, IsThatOfThePropertysPlaceInTheTable) {
    EXPECT_EQ(kindOf(OMFProperty::objClass), ValueKind::classID);
    EXPECT_EQ(kindOf(OMFProperty::headByteOrder), ValueKind::byteOrder);
    EXPECT_EQ(kindOf(OMFProperty::headLastModified), ValueKind::int32);
    EXPECT_EQ(kindOf(OMFProperty::mobSlots), ValueKind::references);
    EXPECT_EQ(kindOf(OMFProperty::slotEditRate), ValueKind::rational);
    EXPECT_EQ(kindOf(OMFProperty::componentName), ValueKind::text);
    EXPECT_EQ(kindOf(OMFProperty::timecodeStart), ValueKind::position);
    EXPECT_EQ(kindOf(OMFProperty::clipSourceID), ValueKind::uid);
    EXPECT_EQ(kindOf(OMFProperty::sequenceComponents), ValueKind::references);
    EXPECT_EQ(kindOf(OMFProperty::effectDefinitionID), ValueKind::text);
    EXPECT_EQ(kindOf(OMFProperty::effectSlotArgValue), ValueKind::reference);
    EXPECT_EQ(kindOf(OMFProperty::transitionCutPoint), ValueKind::position);
    EXPECT_EQ(kindOf(OMFProperty::varyingInterpolation), ValueKind::int16);
    EXPECT_EQ(kindOf(OMFProperty::pointValue), ValueKind::rational);
    EXPECT_EQ(kindOf(OMFProperty::descriptorLocator), ValueKind::references);
    EXPECT_EQ(kindOf(OMFProperty::networkLocatorURL), ValueKind::text);
    EXPECT_EQ(kindOf(OMFProperty::macLocatorFileName), ValueKind::text);
    EXPECT_EQ(kindOf(OMFProperty::aifcAudioData), ValueKind::media);
    EXPECT_EQ(kindOf(OMFProperty::headIdentificationList), ValueKind::references);
    EXPECT_EQ(kindOf(OMFProperty::identProductVersionString), ValueKind::text);
}

TEST(PropertyValues, ReferencesAreInTheOrderOfTheDocument) {
    Choices choices(1);
    ObjectModel model{.valueOrder = OMFByteOrder::big, .values = {{5, "OMFI:A", {}}}};
    const PropertyValues values(choices, model);
    EXPECT_EQ(values.reference(0x0102), hex("00 00 01 02"));
    EXPECT_EQ(values.references({1, 0x0102}), hex("00 02 00 00 00 01 00 00 01 02"));
    model.valueOrder = OMFByteOrder::little;
    EXPECT_EQ(values.reference(0x0102), hex("02 01 00 00"));
}

TEST(PropertyValues, ListGivesItsTargetsBack) {
    Choices choices(1);
    const ObjectModel model{.values = {{5, "OMFI:A", {}}}};
    const PropertyValues values(choices, model);
    EXPECT_THAT(values.targetsOf(values.references({7, 70'000})), ElementsAre(7U, 70'000U));
    EXPECT_THAT(values.targetsOf(hex("01 00 07 00 00")), IsEmpty());
    EXPECT_THAT(values.targetsOf({}), IsEmpty());
}

TEST(PropertyValues, ReferenceIsToAnObjectOfTheModel) {
    Choices choices(1);
    const ObjectModel model{.values = {{5, "OMFI:A", {}}, {5, "OMFI:B", {}}}};
    PropertyValues values(choices, model);
    EXPECT_EQ(values.anyObject(), 5U);
    EXPECT_EQ(values.valueFor(OMFProperty::slotSegment), hex("05 00 00 00"));
}

TEST(PropertyValues, HasTheSizeOfItsKind) {
    Choices choices(1);
    const ObjectModel model{.values = {{5, "OMFI:MOBJ:MobID", Bytes(12)}}};
    PropertyValues values(choices, model);
    for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(values.valueFor(OMFProperty::objClass).size(), 4U);
        EXPECT_EQ(values.valueFor(OMFProperty::timecodeFPS).size(), 2U);
        EXPECT_EQ(values.valueFor(OMFProperty::clipFadeInType).size(), 4U);
        EXPECT_EQ(values.valueFor(OMFProperty::slotEditRate).size(), 8U);
        EXPECT_EQ(values.valueFor(OMFProperty::clipSourceID).size(), 12U);
        EXPECT_EQ(values.valueFor(OMFProperty::sequenceComponents).size() % 4, 2U);
    }
}

}  // namespace
}  // namespace trellant::fuzzing
