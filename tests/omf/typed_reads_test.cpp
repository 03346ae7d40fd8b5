// SPDX-License-Identifier: Apache-2.0
// Numbers, fractions, identifiers and references: widths, caps, candidates.
#include "opened_document.h"

#include <gmock/gmock.h>

#include <optional>
#include <utility>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Any property will do; the reads do not depend on which.
constexpr OMFProperty first = OMFProperty::componentLength;
constexpr OMFProperty second = OMFProperty::clipStartTime;

class TypedReads : public ::testing::Test {
  protected:
    /// A document whose object 2 has the value under `first`.
    const OMFDocument& with(Bytes value, OMFByteOrder order = OMFByteOrder::little) {
        ContainerBuilder container = headedContainer(order);
        container.set(2, nameOf(first), std::move(value));
        return opened(container);
    }
    const OMFDocument& withTwo(Bytes value, Bytes other) {
        ContainerBuilder container = headedContainer();
        container.set(2, nameOf(first), std::move(value));
        container.set(2, nameOf(second), std::move(other));
        return opened(container);
    }
    const OMFDocument& opened(const ContainerBuilder& container) {
        document_.emplace(container);
        return **document_;
    }

    static constexpr OMFObject subject{2};

  private:
    std::optional<OpenedDocument> document_;
};

TEST_F(TypedReads, Int16TakesTwoBytesAsASignedPattern) {
    EXPECT_EQ(with(hex("FF FF")).int16(subject, {first}), -1);
    EXPECT_EQ(with(hex("01 80")).int16(subject, {first}), -32'767);
    EXPECT_EQ(with(hex("12 34 56 78"), OMFByteOrder::big).int16(subject, {first}), 0x1234);
}

TEST_F(TypedReads, Int16OfOneByteIsUnsigned) {
    EXPECT_EQ(with(hex("FF")).int16(subject, {first}), 255);
    EXPECT_EQ(with(hex("19")).int16(subject, {first}), 25);
}

TEST_F(TypedReads, Int16OfAnEmptyValueMovesOn) {
    EXPECT_EQ(withTwo({}, hex("07 00")).int16(subject, {first, second}), 7);
    EXPECT_EQ(with({}).int16(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, Int32OfFourBytesIsSigned) {
    EXPECT_EQ(with(hex("FF FF FF FF")).int32(subject, {first}), -1);
    EXPECT_EQ(with(hex("00 00 00 80")).int32(subject, {first}), -2'147'483'647 - 1);
    EXPECT_EQ(with(hex("12 34 56 78"), OMFByteOrder::big).int32(subject, {first}), 0x12345678);
}

TEST_F(TypedReads, Int32OfTwoOrThreeBytesIsUnsigned) {
    EXPECT_EQ(with(hex("FF FF")).int32(subject, {first}), 65'535);
    EXPECT_EQ(with(hex("FF FF 01")).int32(subject, {first}), 65'535);
    EXPECT_EQ(with(hex("01 02"), OMFByteOrder::big).int32(subject, {first}), 258);
}

TEST_F(TypedReads, Int32OfOneByteMovesOn) {
    EXPECT_EQ(withTwo(hex("07"), hex("08 00")).int32(subject, {first, second}), 8);
    EXPECT_EQ(with(hex("07")).int32(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, Uint32NeedsFourBytes) {
    EXPECT_EQ(with(hex("FF FF FF FF")).uint32(subject, {first}), 4'294'967'295U);
    EXPECT_EQ(with(hex("FF FF FF")).uint32(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, Int64OfEightBytes) {
    EXPECT_EQ(with(hex("FE FF FF FF FF FF FF FF")).int64(subject, {first}), -2);
    EXPECT_EQ(with(hex("00 00 00 01 00 00 00 02"), OMFByteOrder::big).int64(subject, {first}),
              4'294'967'298);
}

TEST_F(TypedReads, Int64OfFourToSevenBytesIsSigned) {
    EXPECT_EQ(with(hex("FF FF FF FF")).int64(subject, {first}), -1);
    EXPECT_EQ(with(hex("05 00 00 00 FF FF FF")).int64(subject, {first}), 5);
}

TEST_F(TypedReads, Int64OfThreeBytesMovesOn) {
    EXPECT_EQ(withTwo(hex("01 02 03"), hex("09 00 00 00")).int64(subject, {first, second}), 9);
    EXPECT_EQ(with(hex("01 02 03")).int64(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, RationalOverZeroIsAbsent) {
    EXPECT_EQ(with(hex("30 75 00 00 00 00 00 00")).rational(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, RationalConvertsToSeconds) {
    const auto rate = with(hex("80 BB 00 00 01 00 00 00")).rational(subject, {first});
    ASSERT_EQ(rate, (OMFRationalValue{48'000, 1}));
    EXPECT_EQ(rate->aaf(), AAFRational(48'000, 1));
}

TEST_F(TypedReads, RationalIsSignedAndNotReducedUntilConverted) {
    const auto value =
        with(hex("00 00 00 06 FF FF FF FC"), OMFByteOrder::big).rational(subject, {first});
    ASSERT_EQ(value, (OMFRationalValue{6, -4}));
    EXPECT_EQ(value->aaf(), AAFRational(-3, 2));
}

TEST_F(TypedReads, RationalOverZeroAndShortOnesMoveOn) {
    const Bytes usable = hex("01 00 00 00 02 00 00 00");
    EXPECT_EQ(withTwo(hex("01 00 00 00 00 00 00 00"), usable).rational(subject, {first, second}),
              (OMFRationalValue{1, 2}));
    EXPECT_EQ(withTwo(Bytes(7, std::byte{1}), usable).rational(subject, {first, second}),
              (OMFRationalValue{1, 2}));
}

TEST_F(TypedReads, IdentifierNeedsTwelveBytes) {
    const Bytes words = hex("2A 00 00 00 01 00 00 00 FF FF FF FF");
    EXPECT_EQ(with(words).uid(subject, {first}), (OMFUID{42, 1, 4'294'967'295U}));
    EXPECT_EQ(with(Bytes(11)).uid(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, ReferenceToZeroMovesOn) {
    EXPECT_EQ(withTwo(hex("00 00 00 00"), hex("09 00 00 00")).objectRef(subject, {first, second}),
              object(9));
    EXPECT_EQ(with(hex("00 00 00 00")).objectRef(subject, {first}), std::nullopt);
    EXPECT_EQ(with(hex("01 00 00")).objectRef(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, ReferenceItemBesideTheValueIsNoPartOfIt) {
    ContainerBuilder container = headedContainer();
    container.addItem(2, nameOf(first), BentoReferenceList{99});
    container.addItem(2, nameOf(first), BentoImmediate{{5, 0, 0, 0}, 4});
    EXPECT_EQ(opened(container).objectRef(subject, {first}), object(5));
}

TEST_F(TypedReads, CountedListDropsZeros) {
    EXPECT_THAT(
        with(hex("00 02 00 00 00 05 00 00 00 00"), OMFByteOrder::big).objectRefs(subject, {first}),
        ElementsAre(object(5)));
}

TEST_F(TypedReads, PlainListHasNoCount) {
    EXPECT_THAT(
        with(hex("00 00 00 07 00 00 00 09"), OMFByteOrder::big).objectRefs(subject, {first}),
        ElementsAre(object(7), object(9)));
    EXPECT_THAT(with(hex("07 00 00 00")).objectRefs(subject, {first}), ElementsAre(object(7)));
}

TEST_F(TypedReads, ListThatIsNeitherCountedNorPlainIsEmpty) {
    // Six bytes with a count of two; seven bytes.
    EXPECT_THAT(with(hex("02 00 05 00 00 00")).objectRefs(subject, {first}), IsEmpty());
    EXPECT_THAT(with(hex("01 00 05 00 00 00 00")).objectRefs(subject, {first}), IsEmpty());
    EXPECT_THAT(with(hex("00 00")).objectRefs(subject, {first}), IsEmpty());
    EXPECT_THAT(with({}).objectRefs(subject, {first}), IsEmpty());
}

TEST_F(TypedReads, EmptyListsMoveOn) {
    const Bytes usable = hex("01 00 05 00 00 00");
    for (const char* list : {"00 00", "00 00 00 00", "01 00 00 00 00 00", "02 00 05 00 00 00"}) {
        EXPECT_THAT(withTwo(hex(list), usable).objectRefs(subject, {first, second}),
                    ElementsAre(object(5)))
            << list;
    }
}

TEST_F(TypedReads, ListInPiecesIsOneList) {
    ContainerBuilder container = headedContainer();
    container.setPieces(2, nameOf(first),
                        {hex("03 00 05 00 00 00"), hex("06 00 00 00"), hex("07 00 00 00")});
    EXPECT_THAT(opened(container).objectRefs(subject, {first}),
                ElementsAre(object(5), object(6), object(7)));
}

TEST_F(TypedReads, ListOf16MebibytesIsReadAndOneReferenceMoreIsNot) {
    Bytes list(16'777'216);
    list[4] = std::byte{7};
    EXPECT_THAT(with(list).objectRefs(subject, {first}), ElementsAre(object(7)));
    list.resize(16'777'220);
    EXPECT_THAT(with(list).objectRefs(subject, {first}), IsEmpty());
}

TEST_F(TypedReads, ValuesAtTheirCapAreReadAndOneByteMoreIsNot) {
    const auto ones = [](std::size_t count) { return Bytes(count, std::byte{1}); };
    EXPECT_EQ(with(ones(8)).int16(subject, {first}), 0x0101);
    EXPECT_EQ(with(ones(9)).int16(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(8)).int32(subject, {first}), 0x01010101);
    EXPECT_EQ(with(ones(9)).int32(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(8)).uint32(subject, {first}), 0x01010101U);
    EXPECT_EQ(with(ones(9)).uint32(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(16)).int64(subject, {first}), 0x0101010101010101);
    EXPECT_EQ(with(ones(17)).int64(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(16)).rational(subject, {first}),
              (OMFRationalValue{0x01010101, 0x01010101}));
    EXPECT_EQ(with(ones(17)).rational(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(32)).uid(subject, {first}), (OMFUID{0x01010101, 0x01010101, 0x01010101}));
    EXPECT_EQ(with(ones(33)).uid(subject, {first}), std::nullopt);
    EXPECT_EQ(with(ones(32)).objectRef(subject, {first}), object(0x01010101));
    EXPECT_EQ(with(ones(33)).objectRef(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, ValueOutsideTheFileMovesOn) {
    ContainerBuilder container = headedContainer();
    container.addItem(2, nameOf(first), BentoRange{0xF000'0000U, 4});
    container.set(2, nameOf(second), hex("07 00 00 00"));
    const OMFDocument& document = opened(container);
    EXPECT_EQ(document.int32(subject, {first, second}), 7);
    EXPECT_EQ(document.int32(subject, {first}), std::nullopt);
    EXPECT_THAT(document.objectRefs(subject, {first, second}), ElementsAre(object(7)));
    EXPECT_EQ(document.string(subject, {first}), std::nullopt);
}

TEST_F(TypedReads, ObjectOrPropertyThatDoesNotExistIsAbsent) {
    const OMFDocument& document = with(hex("01 00 00 00"));
    EXPECT_EQ(document.int32(object(77), {first}), std::nullopt);
    EXPECT_EQ(document.int32(OMFObject::none, {first}), std::nullopt);
    EXPECT_EQ(document.int32(subject, {OMFProperty::timecodeFPS}), std::nullopt);
    EXPECT_EQ(document.raw(subject, {OMFProperty::timecodeFPS}), std::nullopt);
}

TEST_F(TypedReads, RawGivesTheFirstValueThatExistsEvenWhenEmpty) {
    EXPECT_EQ(withTwo({}, hex("07")).raw(subject, {OMFProperty::timecodeFPS, first, second}),
              Bytes{});
    EXPECT_EQ(withTwo(hex("01 02"), hex("07")).raw(subject, {second, first}), hex("07"));
}

TEST_F(TypedReads, RawThrowsBeyondItsLimit) {
    EXPECT_EQ(with(Bytes(8'388'608)).raw(subject, {first}), Bytes(8'388'608));
    EXPECT_EQ(with(hex("01 02 03")).raw(subject, {first}, 3), hex("01 02 03"));
    try {
        const auto value = with(Bytes(8'388'609)).raw(subject, {first});
        FAIL() << "read";
    } catch (const OMFIOError& error) {
        EXPECT_STREQ(error.what(),
                     "Unsupported OMF/Bento feature: property value larger than in-memory limit");
    }
    EXPECT_THROW((void)with(hex("01 02 03 04 05")).raw(subject, {first}, 4), OMFIOError);
}

TEST_F(TypedReads, RawThrowsTheFirstReadErrorAndTriesNoFurther) {
    ContainerBuilder container = headedContainer();
    container.addItem(2, nameOf(first), BentoRange{0xF000'0000U, 4});
    container.set(2, nameOf(second), hex("07 00 00 00"));
    EXPECT_THROW((void)opened(container).raw(subject, {first, second}), OMFIOError);
}

}  // namespace
}  // namespace trellant::testing
