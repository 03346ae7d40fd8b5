// SPDX-License-Identifier: Apache-2.0
// Mobs and media data by identifier, and the identifier itself.
#include "opened_document.h"

#include <gmock/gmock.h>

#include <array>
#include <unordered_set>
#include <utility>

namespace trellant::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

constexpr std::string_view mobID = "OMFI:MOBJ:MobID";
constexpr std::string_view mediaMobID = "OMFI:MDAT:MobID";

Bytes uidBytes(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    return ByteWriter(OMFByteOrder::little).u32(a).u32(b).u32(c).written();
}

TEST(MobIdentifier, PrintsItsWordsAsUpperCaseHexadecimal) {
    const OMFUID uid{.a = 42, .b = 1, .c = 4'294'967'295U};
    EXPECT_EQ(uid.description(), "0000002A-00000001-FFFFFFFF");
    EXPECT_EQ(OMFUID::zero().description(), "00000000-00000000-00000000");
    EXPECT_EQ((OMFUID{.a = 0xDEADBEEF, .b = 0xABCDEF01, .c = 0x10}).description(),
              "DEADBEEF-ABCDEF01-00000010");
}

TEST(MobIdentifier, EqualityTakesAllWords) {
    EXPECT_EQ((OMFUID{1, 2, 3}), (OMFUID{1, 2, 3}));
    EXPECT_NE((OMFUID{1, 2, 3}), (OMFUID{9, 2, 3}));
    EXPECT_NE((OMFUID{1, 2, 3}), (OMFUID{1, 9, 3}));
    EXPECT_NE((OMFUID{1, 2, 3}), (OMFUID{1, 2, 9}));
}

TEST(MobIdentifier, CountersInAnyWordSpreadInASet) {
    std::unordered_set<std::size_t> hashes;
    const std::hash<OMFUID> hash;
    for (std::uint32_t count = 0; count < 1'000; ++count) {
        hashes.insert(hash({count, 0, 0}));
        hashes.insert(hash({0, count, 0}));
        hashes.insert(hash({0, 0, count}));
    }
    // Three thousand, the zero identifier three times.
    EXPECT_EQ(hashes.size(), 2'998U);
}

TEST(MobMap, HoldsEveryMobClassAndNoOther) {
    constexpr std::array<std::string_view, 5> mobClasses{"CMOB", "MMOB", "SMOB", "TMOB", "MDES"};
    ContainerBuilder container = headedContainer();
    for (std::uint32_t index = 0; index < mobClasses.size(); ++index) {
        container.set(10 + index, classProperty, bytesOf(mobClasses[index]));
        container.set(10 + index, mobID, uidBytes(index, 0, 7));
    }
    container.set(20, classProperty, bytesOf("WAVE"));
    container.set(20, mobID, uidBytes(9, 0, 7));
    const OpenedDocument document(container);
    EXPECT_THAT(
        document->mobMap(),
        UnorderedElementsAre(Pair(OMFUID{0, 0, 7}, object(10)), Pair(OMFUID{1, 0, 7}, object(11)),
                             Pair(OMFUID{2, 0, 7}, object(12)), Pair(OMFUID{3, 0, 7}, object(13)),
                             Pair(OMFUID{4, 0, 7}, object(14))));
}

TEST(MobMap, HighestOfSeveralObjectsWithOneIdentifierWins) {
    ContainerBuilder container = headedContainer();
    for (const ObjectID number : {30U, 10U, 20U}) {
        container.set(number, classProperty, bytesOf("SMOB"));
        container.set(number, mobID, uidBytes(1, 2, 3));
    }
    const OpenedDocument document(container);
    EXPECT_THAT(document->mobMap(), UnorderedElementsAre(Pair(OMFUID{1, 2, 3}, object(30))));
}

TEST(MobMap, MobWithoutAReadableIdentifierIsLeftOut) {
    ContainerBuilder container = headedContainer();
    container.set(10, classProperty, bytesOf("SMOB"));
    container.set(11, classProperty, bytesOf("SMOB"));
    container.set(11, mobID, Bytes(11));
    EXPECT_THAT(OpenedDocument(container)->mobMap(), IsEmpty());
}

TEST(MediaDataMap, HoldsEveryMediaClassByItsOwnProperty) {
    constexpr std::array<std::string_view, 5> mediaClasses{"WAVE", "AIFC", "TIFF", "IDAT", "MDAT"};
    ContainerBuilder container = headedContainer();
    for (std::uint32_t index = 0; index < mediaClasses.size(); ++index) {
        container.set(10 + index, classProperty, bytesOf(mediaClasses[index]));
        container.set(10 + index, mediaMobID, uidBytes(0, index, 7));
    }
    container.set(20, classProperty, bytesOf("SMOB"));
    container.set(20, mediaMobID, uidBytes(0, 9, 7));
    container.set(21, classProperty, bytesOf("WAVE"));
    container.set(21, mobID, uidBytes(0, 8, 7));
    const OpenedDocument document(container);
    EXPECT_THAT(
        document->mediaDataMap(),
        UnorderedElementsAre(Pair(OMFUID{0, 0, 7}, object(10)), Pair(OMFUID{0, 1, 7}, object(11)),
                             Pair(OMFUID{0, 2, 7}, object(12)), Pair(OMFUID{0, 3, 7}, object(13)),
                             Pair(OMFUID{0, 4, 7}, object(14))));
}

TEST(MediaDataMap, HighestOfSeveralObjectsWithOneIdentifierWins) {
    ContainerBuilder container = headedContainer();
    container.set(10, classProperty, bytesOf("WAVE"));
    container.set(10, mediaMobID, uidBytes(1, 2, 3));
    container.set(11, classProperty, bytesOf("AIFC"));
    container.set(11, mediaMobID, uidBytes(1, 2, 3));
    EXPECT_THAT(OpenedDocument(container)->mediaDataMap(),
                UnorderedElementsAre(Pair(OMFUID{1, 2, 3}, object(11))));
}

}  // namespace
}  // namespace trellant::testing
