// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/io/bento_container.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {
namespace {

using testing::bytesOf;
using testing::ByteWriter;
using testing::ContainerBuilder;
using testing::ContainerImage;
using testing::faultOf;
using testing::hex;
using testing::ObjectID;
using testing::refusalOf;
using testing::TemporaryDirectory;
using testing::TocForm;
using testing::writeFile;

class BentoContainerOpening : public ::testing::Test {
  protected:
    std::string write(const Bytes& bytes) { return writeFile(folder_.file("container"), bytes); }

    /// A name item as the table has it: a range over `text`, which is put into the data.
    static BentoTOCItem nameItem(ContainerImage& image, ObjectID object, ObjectID property,
                                 std::string_view text) {
        const BentoRange range{image.data.size(), text.size()};
        const Bytes bytes = bytesOf(text);
        image.data.insert(image.data.end(), bytes.begin(), bytes.end());
        return {object, property, 0, 0, {range, false}};
    }

    static Bytes fileOf(ContainerImage image, const std::vector<BentoTOCItem>& items) {
        image.toc = encodeToc(TocForm::compressed, image.byteOrder, 1, items);
        return image.bytes();
    }

    TemporaryDirectory folder_;
};

constexpr ObjectID propertyName = 24;
constexpr ObjectID typeName = 23;

TEST_F(BentoContainerOpening, GivesItemsInTableOrder) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::big);
    const std::vector<BentoTOCItem> items{{9, 5, 1, 3, {BentoRange{0, 0}, true}},
                                          {4, 6, 2, 0, {BentoReferenceList{77}, false}},
                                          {9, 5, 1, 0, {BentoImmediate{{'A', 'B'}, 2}, false}}};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.tableItems(), items);
    EXPECT_EQ(container.items(9, 5), (std::vector<BentoTOCItem>{items[0], items[2]}));
    EXPECT_TRUE(container.items(9, 6).empty());
    EXPECT_TRUE(container.items(5, 5).empty());
}

TEST_F(BentoContainerOpening, MayBePresentedByAnotherTable) {
    ContainerBuilder builder;
    builder.set(4, "Some:Text", bytesOf("words of the file"));
    builder.set(9, "Some:Other", bytesOf("ab"));
    BentoContainer own(write(builder.build()));
    const std::vector<BentoTOCItem> table = own.tableItems();
    const ObjectID text = *own.propertyID("Some:Text");
    ASSERT_EQ(own.packedItems(4, text).size(), 1U);
    const BentoPackedItem stored = own.packedItems(4, text).front();
    std::vector<BentoPackedItem> items(3);
    items[0].object = 7;
    items[0].property = 2;
    items[0].setRange(stored.offset + 6, 2);
    items[1].object = 7;
    items[1].property = 2;
    items[1].setImmediate(bytesOf("!?").data(), 2);
    items[2].object = 3;
    items[2].property = 1;
    const std::vector<BentoContainer::NamedProperty> names{{1, "Else:None"}, {2, "Else:Text"}};
    const BentoContainer presented(std::move(own), items, names);
    EXPECT_EQ(presented.itemCount(), 3U);
    EXPECT_TRUE(std::ranges::equal(presented.objectIDs(), std::vector<ObjectID>{3, 7}));
    EXPECT_EQ(presented.valueData(7, "Else:Text"), bytesOf("of!?"));
    EXPECT_EQ(presented.valueData(3, "Else:None"), Bytes());
    EXPECT_EQ(presented.propertyID("Some:Text"), std::nullopt);
    EXPECT_TRUE(presented.packedItems(4, text).empty());
    EXPECT_EQ(presented.tableItems(), table);
}

TEST_F(BentoContainerOpening, ListsDistinctObjectsAscending) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const BentoValueSegment empty{BentoImmediate{}, false};
    const BentoContainer container(
        write(fileOf(image, {{9, 1, 0, 0, empty}, {4, 1, 0, 0, empty}, {9, 2, 0, 0, empty}})));
    const auto ids = container.objectIDs();
    EXPECT_EQ((std::vector<ObjectID>(ids.begin(), ids.end())), (std::vector<ObjectID>{4, 9}));
    EXPECT_EQ(container.objectIndex(9), 1U);
    EXPECT_EQ(container.objectIndex(5), std::nullopt);
}

TEST_F(BentoContainerOpening, ReadsTheOlderFormInBothByteOrders) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        ContainerBuilder builder({.byteOrder = order, .form = TocForm::v1});
        builder.set(1, "OMFI:A", hex("01 02 03 04 05"));
        const BentoContainer container(write(builder.build()));
        EXPECT_EQ(container.footer().majorVersion, 1);
        EXPECT_EQ(container.footer().byteOrder, order);
        EXPECT_EQ(container.valueData(1, "OMFI:A"), hex("01 02 03 04 05"));
    }
}

TEST_F(BentoContainerOpening, ReadsTheTableThroughAnExtendedFooter) {
    ContainerBuilder builder({.extendedFooter = true});
    builder.set(1, "OMFI:A", hex("01 02 03 04 05"));
    const BentoContainer container(write(builder.build()));
    EXPECT_TRUE(container.footer().hasExtendedFooter);
    EXPECT_EQ(container.valueData(1, "OMFI:A"), hex("01 02 03 04 05"));
}

TEST_F(BentoContainerOpening, ReadsTailAndTableWithOneCallEach) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    image.toc = Bytes(100'000, std::byte{0xFF});
    EXPECT_EQ(BentoContainer(write(image.bytes())).file().readCalls(), 2U);
}

TEST_F(BentoContainerOpening, EmptyPiecesBehindOthersOfAValueTakeNoMemory) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::big);
    const BentoTOCItem empty{9, 5, 1, 0, {BentoImmediate{}, false}};
    const BentoTOCItem letter{9, 5, 1, 0, {BentoImmediate{{'A'}, 1}, false}};
    const BentoTOCItem other{9, 6, 1, 0, {BentoImmediate{}, false}};
    const std::vector<BentoTOCItem> items{empty, empty, letter, empty, empty, other, other};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.tableItems(), items);
    EXPECT_EQ(container.items(9, 5), (std::vector<BentoTOCItem>{empty, letter}));
    EXPECT_EQ(container.items(9, 6), std::vector<BentoTOCItem>{other});
}

TEST_F(BentoContainerOpening, AnEmptyPieceBehindAReferenceListIsStillAPiece) {
    const BentoTOCItem empty{9, 5, 1, 0, {BentoImmediate{}, false}};
    const BentoTOCItem list{9, 5, 1, 0, {BentoReferenceList{77}, false}};
    const BentoTOCItem name{5, 24, 2, 0, {BentoImmediate{{'A', 'u'}, 2}, false}};
    const std::vector<std::vector<BentoTOCItem>> values{
        {list, empty}, {list, empty, empty}, {empty, list, empty}};
    for (const std::vector<BentoTOCItem>& value : values) {
        std::vector<BentoTOCItem> items{name};
        items.insert(items.end(), value.begin(), value.end());
        ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::big);
        const BentoContainer container(write(fileOf(image, items)));
        EXPECT_EQ(container.valueSegments(9, "Au"), std::vector<BentoValueSegment>{empty.segment});
        const std::string copy = folder_.file("copy");
        EXPECT_TRUE(container.copyValue(9, "Au", copy));
        EXPECT_EQ(std::filesystem::file_size(copy), 0U);
    }
}

TEST_F(BentoContainerOpening, FaultsOfTheTableAreThrown) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    image.toc = hex("FF FF FF FF FF FF FF 00");
    EXPECT_EQ(faultOf([&] { return BentoContainer(write(image.bytes())).objectIDs().size(); }),
              "Malformed OMF/Bento file: invalid compressed TOC token 0 at byte 7");
    image.footer.majorVersion = 1;
    EXPECT_EQ(faultOf([&] { return BentoContainer(write(image.bytes())).objectIDs().size(); }),
              "Malformed OMF/Bento file: Bento 1.0d4 TOC is not a multiple of 24 bytes");
}

TEST_F(BentoContainerOpening, AMissingFileIsRefused) {
    const std::string path = folder_.file("missing");
    EXPECT_EQ(refusalOf([&] { return BentoContainer(path).objectIDs().size(); }),
              "cannot open \"" + path + "\": No such file or directory");
}

TEST_F(BentoContainerOpening, NamesArePropertiesAndTypesApart) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::vector<BentoTOCItem> items{
        nameItem(image, 100, propertyName, std::string_view("OMFI:A\0", 7)),
        nameItem(image, 101, typeName, std::string_view("omfi:B\0rest", 11))};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyName(100), "OMFI:A");
    EXPECT_EQ(container.propertyID("OMFI:A"), 100U);
    EXPECT_EQ(container.typeName(101), "omfi:B");
    EXPECT_EQ(container.typeID("omfi:B"), 101U);
    EXPECT_EQ(container.propertyName(101), std::nullopt);
    EXPECT_EQ(container.typeID("OMFI:A"), std::nullopt);
    EXPECT_EQ(container.propertyID("omfi:B"), std::nullopt);
    EXPECT_EQ(container.propertyID("OMFI:A "), std::nullopt);
}

TEST_F(BentoContainerOpening, TheSmallestObjectKeepsANameThatTwoCarry) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::vector<BentoTOCItem> items{nameItem(image, 300, propertyName, "OMFI:OOBJ:ObjClass"),
                                          nameItem(image, 200, propertyName, "OMFI:OOBJ:ObjClass"),
                                          nameItem(image, 250, propertyName, "OMFI:OOBJ:ObjClass")};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyID("OMFI:OOBJ:ObjClass"), 200U);
    EXPECT_EQ(container.propertyName(300), "OMFI:OOBJ:ObjClass");
}

TEST_F(BentoContainerOpening, NamesInPiecesAreJoinedInTableOrder) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    std::vector<BentoTOCItem> items{nameItem(image, 100, propertyName, "OMFI"),
                                    {100, propertyName, 0, 0, {BentoReferenceList{5}, false}},
                                    nameItem(image, 100, propertyName, ":A")};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyID("OMFI:A"), 100U);
}

TEST_F(BentoContainerOpening, EmptyNamesArePassedOver) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::vector<BentoTOCItem> items{
        nameItem(image, 100, propertyName, std::string_view("\0A", 2)),
        nameItem(image, 101, propertyName, "")};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyName(100), std::nullopt);
    EXPECT_EQ(container.propertyID(""), std::nullopt);
}

TEST_F(BentoContainerOpening, NamesThatCannotBeReadLeaveTheirObjectUnnamed) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::vector<BentoTOCItem> items{
        {100, propertyName, 0, 0, {BentoRange{9'000'000, 4}, false}},
        {101, propertyName, 0, 0, {BentoRange{~std::uint64_t{0}, 4}, false}},
        nameItem(image, 102, propertyName, "OMFI:A")};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyName(100), std::nullopt);
    EXPECT_EQ(container.propertyName(101), std::nullopt);
    EXPECT_EQ(container.propertyID("OMFI:A"), 102U);
}

TEST_F(BentoContainerOpening, NamesOf128KiBAreReadAndLongerOnesAreNot) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::string longest(131'072, 'a');
    const std::vector<BentoTOCItem> items{nameItem(image, 100, propertyName, longest),
                                          nameItem(image, 101, propertyName, longest + "b")};
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_EQ(container.propertyName(100), longest);
    EXPECT_EQ(container.propertyName(101), std::nullopt);
}

TEST_F(BentoContainerOpening, ManyNamesOverOneLongTextDoNotFillTheMemory) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    std::vector<BentoTOCItem> items{nameItem(image, 1, propertyName, std::string(131'072, 'a'))};
    for (ObjectID object = 2; object <= 2'000; ++object) {
        items.push_back(items.front());
        items.back().object = object;
    }
    const BentoContainer container(write(fileOf(image, items)));
    EXPECT_TRUE(container.propertyName(1).has_value());
    EXPECT_EQ(container.propertyName(2'000), std::nullopt);
}

TEST_F(BentoContainerOpening, NamesThatAreNoUTF8AreLatin1) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, OMFByteOrder::little);
    const std::vector<BentoTOCItem> items{nameItem(image, 100, propertyName, "\xE9")};
    EXPECT_EQ(BentoContainer(write(fileOf(image, items))).propertyName(100), "\xC3\xA9");
}

}  // namespace
}  // namespace trellant
