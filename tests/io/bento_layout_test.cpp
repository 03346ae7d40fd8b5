// SPDX-License-Identifier: Apache-2.0
// The layout of workstation files, as the fixtures write it: the reader must see the same values
// as in the simple one.
#include <trellant/io/bento_container.h>

#include <gtest/gtest.h>

#include <array>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {
namespace {

using testing::ContainerBuilder;
using testing::FileLayout;
using testing::hex;
using testing::MobID;
using testing::ObjectID;
using testing::OmfBuilder;
using testing::patternBytes;
using testing::TemporaryDirectory;
using testing::TocForm;
using testing::writeFile;

constexpr ObjectID referencePairs = 31;

struct Document {
    Bytes file;
    ObjectID sequence = 0;
    ObjectID slot = 0;
    ObjectID media = 0;
};

Document document(const ContainerBuilder::Options& container) {
    OmfBuilder omf({.container = container, .valueOrder = OMFByteOrder::big});
    const MobID kick{1, 2, 3};
    Document result;
    result.media = omf.waveMedia(kick, patternBytes(201));
    omf.audioFile({.id = kick, .name = "Kick.wav", .length = 100});
    result.sequence = omf.sequence({omf.filler(10), omf.clip({.length = 50, .source = kick}),
                                    omf.clip({.length = 25, .source = kick, .start = 50})});
    result.slot = omf.slot({.editRate = testing::Ratio{48'000}, .segment = result.sequence});
    omf.composition({.name = "Song", .slots = {result.slot}});
    result.file = omf.build();
    return result;
}

class BentoLayout : public ::testing::TestWithParam<ContainerBuilder::Options> {
  protected:
    TemporaryDirectory folder_;
    Document document_ = document(GetParam());
    BentoContainer container_{writeFile(folder_.file("container"), document_.file)};
};

TEST_P(BentoLayout, ValuesAreTheSameWhateverTheLayout) {
    EXPECT_EQ(container_.valueData(1, "OMFI:HEAD:ByteOrder"), hex("4D 4D"));
    EXPECT_EQ(container_.valueData(document_.slot, "OMFI:MSLT:EditRate"),
              hex("00 00 BB 80 00 00 00 01"));
    EXPECT_EQ(container_.valueData(document_.slot, "OMFI:MSLT:Segment"),
              testing::ByteWriter(OMFByteOrder::big).u32(document_.sequence).written());
    EXPECT_EQ(container_.valueData(document_.media, "OMFI:WAVE:AudioData"), patternBytes(201));
}

TEST_P(BentoLayout, ListsOfReferencesAreACountAndTheReferences) {
    const Bytes list = container_.valueData(document_.sequence, "OMFI:SEQU:Components").value();
    ASSERT_EQ(list.size(), 14U);
    EXPECT_EQ(u16(list, 0, OMFByteOrder::big), 3);
    // The filler, then the clips, made right before the sequence; a data kind between them.
    EXPECT_LT(u32(list, 2, OMFByteOrder::big), u32(list, 6, OMFByteOrder::big));
    EXPECT_LT(u32(list, 6, OMFByteOrder::big), u32(list, 10, OMFByteOrder::big));
    EXPECT_EQ(u32(list, 10, OMFByteOrder::big), document_.sequence - 1);
}

TEST_P(BentoLayout, TheSameDescriptionGivesTheSameBytes) {
    EXPECT_EQ(document(GetParam()).file, document_.file);
}

std::string formName(const ::testing::TestParamInfo<ContainerBuilder::Options>& instance) {
    constexpr std::array names{"Simple", "Real", "V1", "V1Real", "RealExtended"};
    return names.at(instance.index);
}

INSTANTIATE_TEST_SUITE_P(EveryForm, BentoLayout,
                         ::testing::Values(ContainerBuilder::Options{},
                                           ContainerBuilder::Options{.byteOrder = OMFByteOrder::big,
                                                                     .layout = FileLayout::real},
                                           ContainerBuilder::Options{.form = TocForm::v1},
                                           ContainerBuilder::Options{.form = TocForm::v1,
                                                                     .layout = FileLayout::real},
                                           ContainerBuilder::Options{.layout = FileLayout::real,
                                                                     .extendedFooter = true}),
                         formName);

class BentoRealLayout : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    Document document_ = document({.layout = FileLayout::real});
    BentoContainer container_{writeFile(folder_.file("container"), document_.file)};
};

TEST_F(BentoRealLayout, AReferenceIsAReferenceListItemAndTheValue) {
    const auto items = container_.items(document_.slot, "OMFI:MSLT:Segment");
    ASSERT_EQ(items.size(), 2U);
    const auto list = std::get<BentoReferenceList>(items[0].segment.storage);
    EXPECT_EQ(std::get<BentoImmediate>(items[1].segment.storage).count, 4);
    EXPECT_EQ(container_.valueData(list.id, referencePairs).value().size(), 8U);
}

TEST_F(BentoRealLayout, AListIsOnePieceAndScatteredContinuedPieces) {
    const auto items = container_.items(document_.sequence, "OMFI:SEQU:Components");
    ASSERT_EQ(items.size(), 4U);
    EXPECT_TRUE(std::holds_alternative<BentoReferenceList>(items[0].segment.storage));
    const auto first = std::get<BentoRange>(items[1].segment.storage);
    const auto second = std::get<BentoRange>(items[2].segment.storage);
    const auto third = std::get<BentoRange>(items[3].segment.storage);
    EXPECT_EQ(first.length, 6U);
    EXPECT_EQ(second.length, 4U);
    EXPECT_EQ(third.length, 4U);
    EXPECT_TRUE(items[1].segment.continued);
    EXPECT_TRUE(items[2].segment.continued);
    EXPECT_FALSE(items[3].segment.continued);
    EXPECT_NE(first.offset + first.length, second.offset);
    EXPECT_NE(second.offset + second.length, third.offset);
}

TEST_F(BentoRealLayout, MediaStartAtOddOffsets) {
    const auto items = container_.items(document_.media, "OMFI:WAVE:AudioData");
    EXPECT_EQ(std::get<BentoRange>(items.front().segment.storage).offset % 2, 1U);
}

TEST_F(BentoRealLayout, ItemsAreSortedByObjectOnly) {
    bool propertiesAscend = true;
    const std::vector<BentoTOCItem> items = container_.tableItems();
    for (std::size_t index = 1; index < items.size(); ++index) {
        const BentoTOCItem& before = items[index - 1];
        const BentoTOCItem& item = items[index];
        ASSERT_LE(before.object, item.object);
        propertiesAscend &= before.object != item.object || before.property <= item.property;
    }
    EXPECT_FALSE(propertiesAscend);
}

TEST_F(BentoRealLayout, TheContainerDescribesItselfInItsFirstObject) {
    const BentoFooter& footer = container_.footer();
    EXPECT_EQ(container_.items(1, 4).front().segment.storage,
              (BentoStorage{BentoRange{footer.tocOffset, footer.tocSize}}));
    EXPECT_EQ(container_.items(1, 5).front().segment.storage,
              (BentoStorage{BentoRange{0, container_.file().size()}}));
}

}  // namespace
}  // namespace trellant
