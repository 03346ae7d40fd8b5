// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/io/bento_container.h>
#include <trellant/io/bento_footer.h>

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant {
namespace {

using testing::ByteWriter;
using testing::ContainerImage;
using testing::faultOf;
using testing::hex;
using testing::joined;
using testing::TocForm;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

/// One empty value of object 1.
const Bytes smallToc = hex("01 01 00 00 00 02 00 00 00 03 00 00 00 09");

ContainerImage validImage() {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, little);
    image.data = hex("AA BB");
    image.toc = smallToc;
    return image;
}

BentoFooter decodeFile(const Bytes& file) {
    const std::size_t tail = std::min(file.size(), bentoTailSize);
    return decodeBentoFooter(ByteView(file).last(tail), file.size());
}

/// What opening a file with these bytes says.
std::string openFault(const Bytes& bytes) {
    const testing::TemporaryDirectory folder;
    const std::string path = testing::writeFile(folder.file("container"), bytes);
    return faultOf([&] { return BentoContainer(path).objectIDs().size(); });
}

TEST(BentoFooter, HoldsOrderVersionsBlockSizeAndTheTablesPlace) {
    EXPECT_EQ(decodeFile(validImage().bytes()), (BentoFooter{.byteOrder = little,
                                                             .majorVersion = 2,
                                                             .minorVersion = 0,
                                                             .blockSize = 1024,
                                                             .tocOffset = 2,
                                                             .tocSize = 14,
                                                             .hasExtendedFooter = false}));
}

TEST(BentoFooter, BigEndianNumbersAreReadBigEndian) {
    const Bytes footer =
        hex("A4 43 4D A5 48 64 72 D7  00 00  00 03  00 02  00 05  00 00 01 00  00 00 00 20");
    EXPECT_EQ(decodeBentoFooter(footer, 1000), (BentoFooter{.byteOrder = big,
                                                            .majorVersion = 2,
                                                            .minorVersion = 5,
                                                            .blockSize = 3072,
                                                            .tocOffset = 256,
                                                            .tocSize = 32,
                                                            .hasExtendedFooter = false}));
}

TEST(BentoFooter, FileOf23BytesIsTooSmall) {
    EXPECT_EQ(openFault(Bytes(23)), "Malformed OMF/Bento file: file too small for Bento footer");
    EXPECT_EQ(openFault({}), "Malformed OMF/Bento file: file too small for Bento footer");
}

TEST(BentoFooter, FileOfJustAFooterHasAZeroLengthTable) {
    ContainerImage image = validImage();
    image.data.clear();
    image.toc.clear();
    ASSERT_EQ(image.bytes().size(), 24U);
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: zero-length Bento TOC");
}

TEST(BentoFooter, MustStandExactlyAtTheEnd) {
    const Bytes shifted = joined({validImage().bytes(), hex("00")});
    EXPECT_EQ(openFault(shifted), "Malformed OMF/Bento file: Bento footer signature not found");
}

TEST(BentoFooter, EveryByteOfTheSignatureCounts) {
    for (std::size_t index = 0; index < 8; ++index) {
        ContainerImage image = validImage();
        image.footer.signature[index] ^= std::byte{1};
        EXPECT_EQ(faultOf([&] { return decodeFile(image.bytes()); }),
                  "Malformed OMF/Bento file: Bento footer signature not found");
    }
}

TEST(BentoFooter, UnknownMajorMarkerIsNamedInHexadecimalAsReadLittleEndian) {
    ContainerImage image = validImage();
    image.footer.majorVersion = 3;
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: invalid Bento major marker 0x3");
    image.footer.majorVersion = 0x0300;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: invalid Bento major marker 0x300");
    image.footer.majorVersion = 0;
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: invalid Bento major marker 0x0");
    image.footer.majorVersion = 0xABCD;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: invalid Bento major marker 0xABCD");
}

TEST(BentoFooter, BlockSizeWordZeroMeansOneKiB) {
    ContainerImage image = validImage();
    image.footer.blockSizeKiB = 0;
    EXPECT_EQ(decodeFile(image.bytes()).blockSize, 1024U);
    image.footer.blockSizeKiB = 0xFFFF;
    EXPECT_EQ(decodeFile(image.bytes()).blockSize, 67'107'840U);
}

TEST(BentoFooter, BlockSizeIsZeroForTheOlderForm) {
    ContainerImage image = validImage();
    image.footer.majorVersion = 1;
    EXPECT_EQ(decodeFile(image.bytes()).blockSize, 0U);
}

TEST(BentoFooter, TableMayEndExactlyWhereTheFooterBegins) {
    ContainerImage image = validImage();
    EXPECT_EQ(decodeFile(image.bytes()).tocSize, 14U);
    image.footer.tocSize = 15;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoFooter, TableOffsetMustLieBeforeTheFooter) {
    ContainerImage image = validImage();
    image.footer.tocOffset = 16;
    image.footer.tocSize = 0xFFFFFFFF;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
    image.footer.tocOffset = 0xFFFFFFFF;
    image.footer.tocSize = 1;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoFooter, TableOf512MiBIsAllowedAndOneByteMoreIsNot) {
    ContainerImage image = validImage();
    image.footer.tocOffset = 0;
    image.footer.tocSize = 536'870'912;
    const Bytes file = image.bytes();
    const ByteView tail = ByteView(file).last(24);
    EXPECT_EQ(decodeBentoFooter(tail, 600'000'000).tocSize, 536'870'912U);
    image.footer.tocSize = 536'870'913;
    const Bytes larger = image.bytes();
    EXPECT_EQ(faultOf([&] { return decodeBentoFooter(ByteView(larger).last(24), 600'000'000); }),
              "Unsupported OMF/Bento feature: TOC larger than 512 MiB");
}

TEST(BentoFooter, TableOutOfBoundsIsReportedBeforeItsSize) {
    ContainerImage image = validImage();
    image.footer.tocSize = 0xFFFFFFFF;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoExtendedFooter, GivesTheTablesPlaceIn64Bits) {
    for (const OMFByteOrder order : {little, big}) {
        ContainerImage image = ContainerImage::ofForm(TocForm::compressed, order);
        image.data = hex("AA BB CC");
        image.toc = hex("FF FF FF FF");
        image.footer.extended = true;
        EXPECT_EQ(decodeFile(image.bytes()), (BentoFooter{.byteOrder = order,
                                                          .majorVersion = 2,
                                                          .minorVersion = 1,
                                                          .blockSize = 1024,
                                                          .tocOffset = 3,
                                                          .tocSize = 4,
                                                          .hasExtendedFooter = true}));
    }
}

TEST(BentoExtendedFooter, TableMustEndBeforeIt) {
    ContainerImage image = validImage();
    image.footer.extended = true;
    image.footer.extendedTocSize = 15;
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoExtendedFooter, SumsOfItsPlaceNeverWrap) {
    ContainerImage image = validImage();
    image.footer.extended = true;
    image.footer.extendedTocOffset = 8;
    image.footer.extendedTocSize = ~std::uint64_t{0};
    EXPECT_EQ(openFault(image.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoExtendedFooter, AWrongSignatureOrAZeroSizeMeansNoTable) {
    ContainerImage image = validImage();
    image.footer.extended = true;
    image.footer.extendedTocSize = 0;
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: zero-length Bento TOC");
    image.footer.extendedTocSize.reset();
    // The standard footer's signature is not the extended one's.
    image.footer.extendedSignature = hex("A4 43 4D A5 48 64 72 D7");
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: zero-length Bento TOC");
}

TEST(BentoExtendedFooter, IsLookedForOnlyWithMinorVersion1AndAZeroTableSize) {
    ContainerImage image = validImage();
    image.footer.extended = true;
    image.footer.tocSize = 1;
    image.footer.tocOffset = 2;
    EXPECT_FALSE(decodeFile(image.bytes()).hasExtendedFooter);

    ContainerImage otherMinor = validImage();
    otherMinor.data =
        joined({hex("A5 43 4D A5 48 64 72 D7"), ByteWriter(little).u64(0).u64(8).written()});
    otherMinor.toc.clear();
    otherMinor.footer.tocSize = 0;
    EXPECT_EQ(openFault(otherMinor.bytes()), "Malformed OMF/Bento file: zero-length Bento TOC");
    otherMinor.footer.minorVersion = 1;
    // Now it is taken, and the table would have to end before its own first byte.
    EXPECT_EQ(openFault(otherMinor.bytes()),
              "Malformed OMF/Bento file: Bento TOC overlaps footer or is out of bounds");
}

TEST(BentoExtendedFooter, FilesBelow48BytesCannotHoldOne) {
    ContainerImage image = validImage();
    image.data = Bytes(23);
    image.toc.clear();
    image.footer.minorVersion = 1;
    ASSERT_EQ(image.bytes().size(), 47U);
    EXPECT_EQ(openFault(image.bytes()), "Malformed OMF/Bento file: zero-length Bento TOC");
}

using Faults = std::vector<BentoFooterFault::Kind>;

BentoFooterReading readingOf(const ContainerImage& image) {
    const Bytes file = image.bytes();
    const std::size_t tail = std::min(file.size(), bentoTailSize);
    return readBentoFooter(ByteView(file).last(tail), file.size());
}

TEST(BentoFooterReading, HasNoFaultInASoundFile) {
    const BentoFooterReading reading = readingOf(validImage());
    EXPECT_EQ(reading.faults, Faults{});
    EXPECT_EQ(reading.footer, decodeFile(validImage().bytes()));
}

TEST(BentoFooterReading, EndsAtWhatIsNoFooter) {
    const BentoFooterReading cut = readBentoFooter(Bytes(23), 23);
    EXPECT_EQ(cut.faults, Faults{BentoFooterFault::TooShort{}});
    EXPECT_FALSE(cut.footer);
    const BentoFooterReading other = readBentoFooter(Bytes(48), 48);
    EXPECT_EQ(other.faults, Faults{BentoFooterFault::NoSignature{}});
    EXPECT_FALSE(other.footer);
    ContainerImage image = validImage();
    image.footer.majorVersion = 0x0300;
    EXPECT_EQ(readingOf(image).faults, Faults{BentoFooterFault::UnknownVersion{0x0300}});
    EXPECT_FALSE(readingOf(image).footer);
}

TEST(BentoFooterReading, TellsHowFarTheTableIsOut) {
    ContainerImage image = validImage();
    image.footer.tocSize = 17;
    EXPECT_EQ(readingOf(image).faults, Faults{BentoFooterFault::TableEndsLate{3}});
    image.footer.tocOffset = 16;
    EXPECT_EQ(readingOf(image).faults, Faults{BentoFooterFault::TableBeginsLate{16}});
    EXPECT_EQ(readingOf(image).footer->tocSize, 17U);
}

TEST(BentoFooterReading, TellsTheMissingExtendedFooterBeforeTheMissingTable) {
    ContainerImage image = validImage();
    image.data = Bytes(24);
    image.footer.tocSize = 0;
    EXPECT_EQ(readingOf(image).faults, Faults{BentoFooterFault::NoTable{}});
    image.footer.minorVersion = 1;
    EXPECT_EQ(readingOf(image).faults,
              (Faults{BentoFooterFault::NoExtendedFooter{}, BentoFooterFault::NoTable{}}));
}

// The place of an extended footer's table is counted to where that footer begins.
TEST(BentoFooterReading, MeasuresFromTheExtendedFooter) {
    ContainerImage image = validImage();
    image.footer.extended = true;
    image.footer.extendedTocOffset = 16;
    EXPECT_EQ(readingOf(image).faults, Faults{BentoFooterFault::TableBeginsLate{16}});
    image.footer.extendedTocOffset = 2;
    image.footer.extendedTocSize = ~std::uint64_t{0};
    EXPECT_EQ(readingOf(image).faults,
              Faults{BentoFooterFault::TableEndsLate{~std::uint64_t{0} - 14}});
}

TEST(LastBentoFooter, IsTheLastWholeOne) {
    const Bytes file = validImage().bytes();
    EXPECT_EQ(lastBentoFooter(file), 16U);
    EXPECT_EQ(lastBentoFooter(joined({file, hex("00 01 02")})), 16U);
    EXPECT_EQ(lastBentoFooter(joined({file, file})), 56U);
    EXPECT_EQ(lastBentoFooter(ByteView(file).first(39)), std::nullopt);
    EXPECT_EQ(lastBentoFooter(ByteView(file).first(16)), std::nullopt);
    EXPECT_EQ(lastBentoFooter({}), std::nullopt);
}

}  // namespace
}  // namespace trellant
