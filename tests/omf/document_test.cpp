// SPDX-License-Identifier: Apache-2.0
// Opening a document: what makes a container one, its header, its byte order, its classes.
#include "opened_document.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(DocumentOpening, ContainerWithoutTheClassPropertyIsNoObjectModel) {
    ContainerBuilder container;
    container.set(1, "OMFI:HEAD:ByteOrder", bytesOf("II"));
    EXPECT_EQ(openingError(container),
              "Unsupported OMF/Bento feature: not an OMF 2.x object model (OMFI:OOBJ:ObjClass "
              "registry entry missing)");
}

TEST(DocumentOpening, RegistryWithoutAHeaderIsMalformed) {
    ContainerBuilder container;
    container.set(1, classProperty, bytesOf("CMOB"));
    EXPECT_EQ(openingError(container), "Malformed OMF/Bento file: OMF HEAD object not found");
}

TEST(DocumentOpening, RegistryThatNoObjectUsesIsMalformed) {
    ContainerBuilder container;
    container.propertyID(classProperty);
    EXPECT_EQ(openingError(container), "Malformed OMF/Bento file: OMF HEAD object not found");
}

TEST(DocumentOpening, OnlyTheExactClassIsAHeader) {
    ContainerBuilder container;
    container.set(1, classProperty, bytesOf("HEADX"));
    container.set(2, classProperty, bytesOf("head"));
    container.set(3, classProperty, bytesOf("HEA"));
    EXPECT_EQ(openingError(container), "Malformed OMF/Bento file: OMF HEAD object not found");
}

TEST(DocumentOpening, LowestOfSeveralHeadersWins) {
    ContainerBuilder container;
    container.set(40, classProperty, bytesOf("HEAD"));
    container.set(12, classProperty, bytesOf("HEAD"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->headerObject(), object(12));
}

TEST(DocumentOpening, ClassEndsAtItsFirstZeroByte) {
    ContainerBuilder container;
    container.set(7, classProperty, hex("48 45 41 44 00 58"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->headerObject(), object(7));
}

TEST(DocumentByteOrder, HeaderMarkOverridesTheContainer) {
    ContainerBuilder container = headedContainer(OMFByteOrder::big);
    const OpenedDocument document(container);
    EXPECT_EQ(document->byteOrder(), OMFByteOrder::big);
    EXPECT_EQ(document->bento().footer().byteOrder, OMFByteOrder::little);
}

TEST(DocumentByteOrder, LittleMarkOverridesABigContainer) {
    ContainerBuilder container({.byteOrder = OMFByteOrder::big});
    container.set(1, classProperty, bytesOf("HEAD"));
    container.set(1, "OMFI:HEAD:ByteOrder", bytesOf("II"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->byteOrder(), OMFByteOrder::little);
}

TEST(DocumentByteOrder, OnlyTheFirstTwoBytesOfTheMarkCount) {
    ContainerBuilder container = headedContainer();
    container.set(1, "OMFI:HEAD:ByteOrder", bytesOf("MMII"));
    EXPECT_EQ(OpenedDocument(container)->byteOrder(), OMFByteOrder::big);
}

TEST(DocumentByteOrder, AbsentShortOrUnknownMarkGivesTheContainersOrder) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        ContainerBuilder container({.byteOrder = order});
        container.set(1, classProperty, bytesOf("HEAD"));
        EXPECT_EQ(OpenedDocument(container)->byteOrder(), order);
        for (const std::string_view mark : {"", "M", "I", "IM", "mm", "XX"}) {
            container.set(1, "OMFI:HEAD:ByteOrder", bytesOf(mark));
            EXPECT_EQ(OpenedDocument(container)->byteOrder(), order) << mark;
        }
    }
}

TEST(DocumentByteOrder, MarkBeyondTheMemoryLimitFailsTheOpening) {
    ContainerBuilder container = headedContainer();
    container.set(1, "OMFI:HEAD:ByteOrder", Bytes(8'388'609));
    EXPECT_EQ(openingError(container),
              "Unsupported OMF/Bento feature: property value larger than in-memory limit");
}

TEST(DocumentByteOrder, MarkOutsideTheFileFailsTheOpening) {
    ContainerBuilder container;
    container.set(1, classProperty, bytesOf("HEAD"));
    container.addItem(1, "OMFI:HEAD:ByteOrder", BentoRange{0xF000'0000U, 2});
    try {
        const OpenedDocument document(container);
        FAIL() << "opened";
    } catch (const OMFIOError& error) {
        const auto* fault = std::get_if<OMFIOError::OutOfBounds>(&error.fault());
        ASSERT_NE(fault, nullptr) << error.what();
        EXPECT_EQ(fault->offset, 0xF000'0000U);
        EXPECT_EQ(fault->length, 2U);
    }
}

TEST(DocumentClasses, TextAndKindOfEachObject) {
    ContainerBuilder container = headedContainer();
    container.set(2, classProperty, bytesOf("SCLP"));
    container.set(3, classProperty, bytesOf("ZZZZ"));
    container.set(4, "OMFI:MOBJ:Name", bytesOf("no class"));
    container.set(5, classProperty, {});
    const OpenedDocument document(container);
    EXPECT_EQ(document->classID(object(1)), "HEAD");
    EXPECT_EQ(document->classOf(object(1)), OMFClass::header);
    EXPECT_EQ(document->classID(object(2)), "SCLP");
    EXPECT_EQ(document->classOf(object(2)), OMFClass::sourceClip);
    EXPECT_EQ(document->classID(object(3)), "ZZZZ");
    EXPECT_EQ(document->classOf(object(3)), OMFClass::other);
    EXPECT_EQ(document->classID(object(4)), std::nullopt);
    EXPECT_EQ(document->classOf(object(4)), OMFClass::absent);
    EXPECT_EQ(document->classID(object(5)), "");
}

TEST(DocumentClasses, ObjectThatDoesNotExistHasNone) {
    const OpenedDocument document(headedContainer());
    for (const std::uint32_t number : {0U, 2U, 70'000U, 4'294'967'295U}) {
        EXPECT_EQ(document->classID(object(number)), std::nullopt) << number;
        EXPECT_EQ(document->classOf(object(number)), OMFClass::absent) << number;
    }
}

TEST(DocumentClasses, SixteenBytesAreReadAndSeventeenAreNot) {
    ContainerBuilder container = headedContainer();
    container.set(2, classProperty, bytesOf("ABCDEFGHIJKLMNOP"));
    container.set(3, classProperty, bytesOf("ABCDEFGHIJKLMNOPQ"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->classID(object(2)), "ABCDEFGHIJKLMNOP");
    EXPECT_EQ(document->classID(object(3)), std::nullopt);
}

TEST(DocumentClasses, UnreadableClassIsAbsentAndOthersStay) {
    ContainerBuilder container = headedContainer();
    container.addItem(2, classProperty, BentoRange{0xF000'0000U, 4});
    container.set(3, classProperty, bytesOf("CMOB"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->classID(object(2)), std::nullopt);
    EXPECT_EQ(document->classOf(object(3)), OMFClass::compositionMob);
}

TEST(DocumentClasses, EveryKnownClassIsToldApart) {
    ContainerBuilder container = headedContainer();
    for (std::size_t index = 0; index < omfClassIDs.size(); ++index) {
        container.set(static_cast<ObjectID>(index + 2), classProperty, bytesOf(omfClassIDs[index]));
    }
    const OpenedDocument document(container);
    for (std::size_t index = 0; index < omfClassIDs.size(); ++index) {
        const OMFObject known = object(static_cast<std::uint32_t>(index + 2));
        EXPECT_EQ(document->classOf(known), static_cast<OMFClass>(index)) << omfClassIDs[index];
        EXPECT_EQ(document->classID(known), omfClassIDs[index]);
    }
}

TEST(DocumentClasses, ObjectsOfAClassComeAscending) {
    ContainerBuilder container = headedContainer();
    container.set(9, classProperty, bytesOf("CMOB"));
    container.set(3, classProperty, bytesOf("CMOB"));
    container.set(5, classProperty, bytesOf("cmob"));
    container.set(6, classProperty, bytesOf("ZZZZ"));
    const OpenedDocument document(container);
    EXPECT_THAT(document->objects("CMOB"), ElementsAre(object(3), object(9)));
    EXPECT_THAT(document->objects("ZZZZ"), ElementsAre(object(6)));
    EXPECT_THAT(document->objects("MMOB"), IsEmpty());
}

}  // namespace
}  // namespace trellant::testing
