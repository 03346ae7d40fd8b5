// SPDX-License-Identifier: Apache-2.0
// Objects, names and values of a container as far as they can be read.
#include "dump/dump_contents.h"

#include "dumped.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <vector>

namespace trellant::testing {

namespace {

using cli::DumpContents;
using cli::leavesFile;
using Numbers = std::vector<std::uint32_t>;

constexpr std::uint64_t largest = ~std::uint64_t{0};

BentoTOCItem immediate(std::uint32_t object, std::uint32_t property, std::string_view text) {
    BentoImmediate value{.count = static_cast<std::uint8_t>(text.size())};
    std::copy(text.begin(), text.end(), value.bytes.begin());
    return {.object = object, .property = property, .segment = {value, false}};
}

BentoTOCItem range(std::uint32_t object, std::uint32_t property, std::uint64_t offset,
                   std::uint64_t length) {
    return {.object = object, .property = property, .segment = {BentoRange{offset, length}, false}};
}

/// A container of just these items, whose bytes are those of `data`.
Bytes fileOf(const Bytes& data, const std::vector<BentoTOCItem>& items) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    image.data = data;
    image.toc = encodeToc(TocForm::compressed, OMFByteOrder::little, 1, items);
    return image.bytes();
}

/// "5 bytes in 2 pieces: abcde", with "..." where a piece leaves the file; "none" without a value.
std::string valueOf(const DumpContents& contents, std::uint32_t object, std::uint32_t property,
                    std::size_t maxBytes = 100) {
    const auto look = contents.value(object, property, maxBytes);
    if (!look) {
        return "none";
    }
    return std::to_string(look->byteCount) + " bytes in " + std::to_string(look->pieces) +
           " pieces: " + textOf(look->head) + (look->leavesFile ? "..." : "");
}

BentoPackedItem packedRange(std::uint64_t offset, std::uint64_t length) {
    BentoPackedItem item;
    item.setRange(offset, length);
    return item;
}

}  // namespace

TEST(DumpLeavesFile, IsAMatterOfRangesAlone) {
    EXPECT_FALSE(leavesFile(packedRange(0, 100), 100));
    EXPECT_TRUE(leavesFile(packedRange(0, 101), 100));
    EXPECT_FALSE(leavesFile(packedRange(100, 0), 100));
    EXPECT_TRUE(leavesFile(packedRange(101, 0), 100));
    EXPECT_TRUE(leavesFile(packedRange(1, 100), 100));
    EXPECT_TRUE(leavesFile(packedRange(1, largest), 100));
    EXPECT_TRUE(leavesFile(packedRange(largest, largest), 100));
    BentoPackedItem list;
    list.kind = BentoPackedItem::Kind::referenceList;
    list.offset = 1'000;
    EXPECT_FALSE(leavesFile(list, 100));
    EXPECT_FALSE(leavesFile(BentoPackedItem{}, 0));
}

TEST(DumpContents, HasEveryObjectOnceInOrder) {
    const Bytes file = fileOf({}, {immediate(7, 1, "a"), immediate(3, 1, "b"), immediate(7, 2, "c"),
                                   immediate(0xFFFF'FFFF, 1, "d"), immediate(3, 1, "e")});
    withContents(file, [](const DumpContents& contents) {
        const auto objects = contents.objects();
        EXPECT_EQ(Numbers(objects.begin(), objects.end()), (Numbers{3, 7, 0xFFFF'FFFF}));
        EXPECT_TRUE(contents.has(7));
        EXPECT_FALSE(contents.has(4));
        EXPECT_FALSE(contents.has(0));
        EXPECT_EQ(contents.items().size(), 5U);
        EXPECT_FALSE(contents.isCut());
    });
}

TEST(DumpContents, GivesPropertiesInTheOrderOfTheirFirstItems) {
    const Bytes file =
        fileOf({}, {immediate(7, 9, "a"), immediate(7, 3, "b"), immediate(8, 1, "x"),
                    immediate(7, 9, "c"), immediate(7, 5, "d"), immediate(7, 3, "e")});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(contents.propertiesOf(7), (Numbers{9, 3, 5}));
        EXPECT_EQ(contents.propertiesOf(8), Numbers{1});
        EXPECT_EQ(contents.propertiesOf(9), Numbers{});
    });
}

TEST(DumpContents, TakesTheTypeOfTheFirstItem) {
    BentoTOCItem first = immediate(7, 9, "a");
    first.type = 21;
    BentoTOCItem second = immediate(7, 9, "b");
    second.type = 20;
    withContents(fileOf({}, {first, second}), [](const DumpContents& contents) {
        EXPECT_EQ(contents.typeOf(7, 9), 21U);
        EXPECT_EQ(contents.typeOf(7, 8), std::nullopt);
        EXPECT_EQ(contents.typeOf(8, 9), std::nullopt);
    });
}

TEST(DumpContents, PutsValuesTogetherInTableOrder) {
    const Bytes file = fileOf(bytesOf("..hello.."), {range(7, 9, 2, 3), immediate(7, 8, "no"),
                                                     immediate(7, 9, "p"), range(7, 9, 4, 3)});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(valueOf(contents, 7, 9), "7 bytes in 3 pieces: helpllo");
        EXPECT_EQ(valueOf(contents, 7, 8), "2 bytes in 1 pieces: no");
        EXPECT_EQ(valueOf(contents, 7, 7), "none");
        EXPECT_EQ(valueOf(contents, 6, 9), "none");
    });
}

TEST(DumpContents, ReadsNoMoreOfAValueThanIsWanted) {
    const Bytes file = fileOf(bytesOf("..hello.."), {range(7, 9, 2, 3), immediate(7, 9, "pqrs")});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(valueOf(contents, 7, 9, 0), "7 bytes in 2 pieces: ");
        EXPECT_EQ(valueOf(contents, 7, 9, 2), "7 bytes in 2 pieces: he");
        EXPECT_EQ(valueOf(contents, 7, 9, 3), "7 bytes in 2 pieces: hel");
        EXPECT_EQ(valueOf(contents, 7, 9, 5), "7 bytes in 2 pieces: helpq");
    });
}

TEST(DumpContents, ShowsNothingBehindAGap) {
    const Bytes file =
        fileOf(bytesOf("hello"), {range(7, 9, 0, 2), range(7, 9, 1'000, 4), immediate(7, 9, "no")});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(valueOf(contents, 7, 9), "8 bytes in 3 pieces: he...");
    });
}

TEST(DumpContents, CountsReferenceListsAsPiecesWithoutBytes) {
    const Bytes file =
        fileOf({}, {{.object = 7, .property = 9, .segment = {BentoReferenceList{5}, false}},
                    immediate(7, 9, "ab")});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(valueOf(contents, 7, 9), "2 bytes in 2 pieces: ab");
    });
}

TEST(DumpContents, AddsLengthsUpToTheLargestNumber) {
    const Bytes file = fileOf({}, {range(7, 9, 1, largest), range(7, 9, 1, largest)});
    withContents(file, [](const DumpContents& contents) {
        const auto look = contents.value(7, 9, 0);
        ASSERT_TRUE(look);
        EXPECT_EQ(look->byteCount, largest);
        EXPECT_TRUE(look->leavesFile);
    });
}

TEST(DumpContents, KnowsNamesOfPropertiesAndTypes) {
    const Bytes file =
        fileOf(bytesOf("Prop"),
               {immediate(50, 24, "same"), immediate(40, 24, "same"), immediate(60, 23, "Type"),
                range(70, 24, 0, 4), immediate(80, 24, ""), immediate(90, 25, "no")});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(contents.propertyName(50), "same");
        EXPECT_EQ(contents.propertyName(40), "same");
        EXPECT_EQ(contents.propertyName(70), "Prop");
        EXPECT_EQ(contents.propertyName(60), "");
        EXPECT_EQ(contents.propertyName(80), "");
        EXPECT_EQ(contents.propertyName(90), "");
        EXPECT_EQ(contents.typeName(60), "Type");
        EXPECT_EQ(contents.typeName(50), "");
        EXPECT_EQ(contents.propertyNameCount(), 3U);
        EXPECT_EQ(contents.typeNameCount(), 1U);
        EXPECT_EQ(contents.propertyID("same"), 40U);
        EXPECT_EQ(contents.propertyID("Prop"), 70U);
        EXPECT_EQ(contents.propertyID("Type"), std::nullopt);
    });
}

TEST(DumpContents, KeepsTheFirst512BytesOfAName) {
    const Bytes file = fileOf(bytesOf(std::string(600, 'x')), {range(50, 24, 0, 600)});
    withContents(file, [](const DumpContents& contents) {
        EXPECT_EQ(contents.propertyName(50), std::string(512, 'x'));
    });
}

// Each of 140000 objects points at the same 500 bytes: 70 million, where 67108864 are the bound.
// It is passed with name 134218: 134217 names are 67108500 bytes.
TEST(DumpContents, BoundsAllNamesTogether) {
    std::vector<BentoTOCItem> items;
    for (std::uint32_t object = 1; object <= 140'000; ++object) {
        items.push_back(range(object, 24, 0, 500));
    }
    withContents(fileOf(bytesOf(std::string(500, 'x')), items), [](const DumpContents& contents) {
        EXPECT_EQ(contents.propertyNameCount(), 134'218U);
        EXPECT_EQ(contents.propertyName(134'219), "");
    });
}

TEST(DumpContents, TakesTheFirstObjectOfItsClassForTheHeader) {
    ContainerBuilder container;
    container.set(2, "OMFI:OOBJ:ObjClass", bytesOf("CMOB"));
    container.set(5, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.set(9, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    container.set(5, "OMFI:HEAD:ByteOrder", bytesOf("MM"));
    container.set(9, "OMFI:HEAD:ByteOrder", bytesOf("II"));
    withContents(container.build(), [](const DumpContents& contents) {
        EXPECT_EQ(contents.model(), cli::ObjectModel::omf2);
        EXPECT_EQ(contents.header(), 5U);
        EXPECT_EQ(contents.valueOrder(), OMFByteOrder::big);
        EXPECT_EQ(contents.classOf(2), "CMOB");
        EXPECT_EQ(contents.classOf(3), "");
    });
}

TEST(DumpContents, PrefersTheLaterModel) {
    ContainerBuilder container;
    container.set(2, "OMFI:ObjID", bytesOf("HEAD"));
    container.set(3, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
    withContents(container.build(), [](const DumpContents& contents) {
        EXPECT_EQ(contents.model(), cli::ObjectModel::omf2);
        EXPECT_EQ(contents.header(), 3U);
        EXPECT_EQ(contents.classOf(2), "");
    });
}

TEST(DumpContents, TakesTheOrderOfTheContainerForAMarkThatIsNone) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        ContainerBuilder container({.byteOrder = order});
        container.set(5, "OMFI:OOBJ:ObjClass", bytesOf("HEAD"));
        container.set(5, "OMFI:HEAD:ByteOrder", bytesOf("MI"));
        withContents(container.build(), [&](const DumpContents& contents) {
            EXPECT_EQ(contents.valueOrder(), order);
        });
    }
}

TEST(DumpContents, ShowsSixteenBytesOfAClass) {
    ContainerBuilder container;
    container.set(2, "OMFI:OOBJ:ObjClass", bytesOf("0123456789abcdefgh"));
    withContents(container.build(), [](const DumpContents& contents) {
        EXPECT_EQ(contents.classOf(2), "0123456789abcdef");
        EXPECT_EQ(contents.header(), std::nullopt);
    });
}

TEST(DumpContents, KeepsWhatStandsBeforeAFault) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    image.toc = hex("01 07 00 00 00 09 00 00 00 00 00 00 00 0A 61 00 00 00 1B 0A 62 00 00 00");
    withContents(image.bytes(), [](const DumpContents& contents) {
        EXPECT_EQ(contents.tocFault(), (cli::TocFault{18, "there is no token 27"}));
        EXPECT_EQ(valueOf(contents, 7, 9), "1 bytes in 1 pieces: a");
    });
}

TEST(DumpContents, AreEmptyWithoutAFooter) {
    withContents(bytesOf("hello"), [](const DumpContents& contents) {
        EXPECT_TRUE(contents.objects().empty());
        EXPECT_TRUE(contents.items().empty());
        EXPECT_EQ(contents.tocFault(), std::nullopt);
        EXPECT_EQ(contents.model(), cli::ObjectModel::unknown);
        EXPECT_EQ(contents.header(), std::nullopt);
        EXPECT_EQ(contents.classOf(1), "");
        EXPECT_FALSE(contents.value(1, 1, 1));
    });
}

}  // namespace trellant::testing
