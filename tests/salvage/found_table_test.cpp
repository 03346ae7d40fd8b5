// SPDX-License-Identifier: Apache-2.0
#include "searched_bytes.h"

#include <trellant/salvage/found_table.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <trellant_testing/container_builder.h>

namespace trellant::testing {
namespace {

using salvage::FoundTable;
using salvage::TablePlace;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FoundTableTest : public ::testing::Test {
  protected:
    /// Two values of 100 and 60 bytes; the second lies in two pieces.
    static ContainerImage imageOf(TocForm form, OMFByteOrder order) {
        ContainerBuilder builder({.byteOrder = order, .form = form, .layout = FileLayout::simple});
        const ObjectID first = builder.newObject() + 1;
        builder.set(first, "Audio", Bytes(100, std::byte{1}));
        builder.setPieces(first + 1, "Audio", {Bytes(40, std::byte{2}), Bytes(20, std::byte{3})});
        return builder.image();
    }
    static std::uint64_t placeOf(const Bytes& image, std::byte value) {
        return static_cast<std::uint64_t>(std::find(image.begin(), image.end(), value) -
                                          image.begin());
    }
    static std::optional<FoundTable> tableOf(ByteView image) {
        return FoundTable::in(SearchedBytes(image).file());
    }
};

TEST_F(FoundTableTest, WholeTableIsReadWhereTheLabelSays) {
    for (const TocForm form : {TocForm::compressed, TocForm::v1}) {
        for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
            const ContainerImage image = imageOf(form, order);
            const Bytes bytes = image.bytes();
            const auto table = tableOf(bytes);
            ASSERT_TRUE(table.has_value());
            EXPECT_EQ(table->place(), TablePlace::label);
            EXPECT_EQ(table->offset(), image.data.size());
            EXPECT_EQ(table->claimedBytes(), image.toc.size());
            EXPECT_TRUE(table->isWhole());
            const std::uint64_t first = placeOf(bytes, std::byte{1});
            ASSERT_EQ(table->valueAt(first).size(), 1U);
            EXPECT_EQ(table->valueAt(first).front(), (BentoRange{first, 100}));
            const std::uint64_t second = placeOf(bytes, std::byte{2});
            EXPECT_THAT(table->valueAt(second),
                        ElementsAre(BentoRange{second, 40}, BentoRange{second + 40, 20}));
            EXPECT_THAT(table->valueAt(first + 1), IsEmpty());
        }
    }
}

TEST_F(FoundTableTest, WrongOffsetInTheLabelIsOvercome) {
    ContainerImage image = imageOf(TocForm::v1, OMFByteOrder::big);
    image.footer.tocOffset = 3;
    const auto table = tableOf(image.bytes());
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->place(), TablePlace::beforeLabel);
    EXPECT_EQ(table->offset(), image.data.size());
    EXPECT_TRUE(table->isWhole());
}

TEST_F(FoundTableTest, LabelThatIsNotAtTheEndIsFound) {
    const ContainerImage image = imageOf(TocForm::compressed, OMFByteOrder::little);
    const auto table = tableOf(joined({image.bytes(), Bytes(5'000, std::byte{9})}));
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->place(), TablePlace::earlierLabel);
    EXPECT_TRUE(table->isWhole());
}

TEST_F(FoundTableTest, ReadingEndsAtTheFirstEntryThatMakesNoSense) {
    // Entries have 24 bytes; the third loses its object.
    ContainerImage image = imageOf(TocForm::v1, OMFByteOrder::little);
    std::fill_n(image.toc.begin() + 48, 24, std::byte{0});
    const auto table = tableOf(image.bytes());
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->entries(), 2U);
    EXPECT_EQ(table->sensibleBytes(), 48U);
    EXPECT_FALSE(table->isWhole());
}

TEST_F(FoundTableTest, WithoutALabelItIsKnownByItsLook) {
    for (const TocForm form : {TocForm::compressed, TocForm::v1}) {
        for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
            // In the layout of workstations the table begins with the container itself.
            ContainerBuilder builder(
                {.byteOrder = order, .form = form, .layout = FileLayout::real});
            const ObjectID object = builder.newObject() + 1;
            builder.set(object, "Audio", Bytes(100, std::byte{1}));
            const ContainerImage image = builder.image();
            Bytes bytes = image.bytes();
            bytes.resize(bytes.size() - 24);
            const auto table = tableOf(bytes);
            ASSERT_TRUE(table.has_value());
            EXPECT_EQ(table->place(), TablePlace::byItsLook);
            EXPECT_EQ(table->claimedBytes(), 0U);
            const std::uint64_t value = placeOf(bytes, std::byte{1});
            EXPECT_EQ(table->valueAt(value).size(), 1U);
        }
    }
}

TEST_F(FoundTableTest, ValuesThatLeaveTheFileEndTheReading) {
    ContainerBuilder builder({.form = TocForm::v1});
    const ObjectID object = builder.newObject() + 1;
    builder.addItem(object, "Audio", BentoRange{10, 0xFFFFFFF0});
    const auto table = tableOf(builder.build());
    ASSERT_TRUE(table.has_value());
    EXPECT_FALSE(table->isWhole());
    EXPECT_THAT(table->valueAt(10), IsEmpty());
}

TEST_F(FoundTableTest, NothingIsFoundInOtherBytes) {
    EXPECT_FALSE(tableOf(Bytes{}).has_value());
    EXPECT_FALSE(tableOf(Bytes(100'000, std::byte{0})).has_value());
    EXPECT_FALSE(tableOf(patternBytes(100'000)).has_value());
}

}  // namespace
}  // namespace trellant::testing
