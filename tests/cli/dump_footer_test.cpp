// SPDX-License-Identifier: Apache-2.0
// The end of a container, whatever stands there.
#include "dump/dump_footer.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_image.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

namespace {

using Texts = std::vector<std::string>;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

cli::FooterLook lookAt(const Bytes& bytes) {
    const TemporaryDirectory folder;
    const RandomAccessFile file(writeFile(folder.file("container"), bytes));
    return cli::lookAtFooter(file);
}

/// Two bytes of values, a table of three, the footer at byte 5.
ContainerImage smallImage(OMFByteOrder order = little) {
    ContainerImage image = ContainerImage::ofForm(TocForm::compressed, order);
    image.data = hex("AA BB");
    image.toc = hex("09 09 09");
    return image;
}

Bytes appended(const Bytes& file, std::size_t count) {
    return joined({file, Bytes(count)});
}

}  // namespace

TEST(DumpFooter, SaysWhereTheTableLies) {
    for (const OMFByteOrder order : {little, big}) {
        const cli::FooterLook look = lookAt(smallImage(order).bytes());
        EXPECT_EQ(look.offset, 5U);
        EXPECT_EQ(look.footer, (BentoFooter{.byteOrder = order,
                                            .majorVersion = 2,
                                            .minorVersion = 0,
                                            .blockSize = 1'024,
                                            .tocOffset = 2,
                                            .tocSize = 3,
                                            .hasExtendedFooter = false}));
        EXPECT_EQ(look.faults, Texts{});
    }
}

// The extended footer stands before the footer, at byte 5.
TEST(DumpFooter, TakesTheTablesPlaceFromTheExtendedFooter) {
    ContainerImage image = smallImage(big);
    image.footer.extended = true;
    const cli::FooterLook look = lookAt(image.bytes());
    EXPECT_EQ(look.offset, 29U);
    EXPECT_EQ(look.footer, (BentoFooter{.byteOrder = big,
                                        .majorVersion = 2,
                                        .minorVersion = 1,
                                        .blockSize = 1'024,
                                        .tocOffset = 2,
                                        .tocSize = 3,
                                        .hasExtendedFooter = true}));
    EXPECT_EQ(look.faults, Texts{});
}

TEST(DumpFooter, MeasuresATableAgainstTheExtendedFooter) {
    ContainerImage image = smallImage();
    image.footer.extended = true;
    image.footer.extendedTocSize = 7;
    EXPECT_EQ(lookAt(image.bytes()).faults,
              Texts{"the table of contents would end 4 bytes behind the footer's begin"});
    image.footer.extendedTocOffset = std::uint64_t{1} << 40U;
    EXPECT_EQ(lookAt(image.bytes()).faults,
              Texts{"the table of contents would begin at byte 1099511627776, not before the "
                    "footer"});
}

TEST(DumpFooter, KeepsTheNumbersOfAFooterWithFaults) {
    ContainerImage image = smallImage();
    image.footer.tocSize = 100;
    image.footer.blockSizeKiB = 0;
    const cli::FooterLook look = lookAt(image.bytes());
    ASSERT_TRUE(look.footer);
    EXPECT_EQ(look.footer->tocSize, 100U);
    EXPECT_EQ(look.footer->blockSize, 1'024U);
    EXPECT_EQ(look.faults,
              Texts{"the table of contents would end 97 bytes behind the footer's begin"});
}

TEST(DumpFooter, HasNoNumbersInAnUnknownVersion) {
    ContainerImage image = smallImage();
    for (const std::uint16_t version : std::vector<std::uint16_t>{0, 3, 0x0102}) {
        image.footer.majorVersion = version;
        const cli::FooterLook look = lookAt(image.bytes());
        EXPECT_EQ(look.offset, 5U);
        EXPECT_FALSE(look.footer);
        EXPECT_EQ(look.faults,
                  Texts{"the footer's major version is neither 1 nor 2 in any byte order"});
    }
}

TEST(DumpFooter, IsFoundBehindAnAppendix) {
    const cli::FooterLook look = lookAt(appended(smallImage().bytes(), 100));
    EXPECT_EQ(look.offset, 5U);
    ASSERT_TRUE(look.footer);
    EXPECT_EQ(look.footer->tocSize, 3U);
    EXPECT_EQ(look.faults,
              Texts{"the footer does not stand at the end: 100 bytes were appended to it"});
}

TEST(DumpFooter, TellsTheAppendixBeforeWhatElseIsWrong) {
    ContainerImage image = smallImage();
    image.footer.tocSize = 0;
    EXPECT_EQ(lookAt(appended(image.bytes(), 1)).faults,
              (Texts{"the footer does not stand at the end: 1 bytes were appended to it",
                     "the footer names no table of contents"}));
}

TEST(DumpFooter, WithItsExtendedOneIsFoundBehindAnAppendix) {
    ContainerImage image = smallImage();
    image.footer.extended = true;
    const cli::FooterLook look = lookAt(appended(image.bytes(), 30));
    EXPECT_EQ(look.offset, 29U);
    ASSERT_TRUE(look.footer);
    EXPECT_TRUE(look.footer->hasExtendedFooter);
    EXPECT_EQ(look.footer->tocSize, 3U);
}

TEST(DumpFooter, IsTheLastOfSeveral) {
    const Bytes file = smallImage().bytes();
    const cli::FooterLook look = lookAt(appended(joined({file, file}), 2));
    EXPECT_EQ(look.offset, 34U);
}

// Within the last mebibyte, the footer's 24 bytes included.
TEST(DumpFooter, IsSearchedForInTheLastMebibyte) {
    const Bytes file = smallImage().bytes();
    EXPECT_EQ(lookAt(appended(file, 1'048'576 - 24)).offset, 5U);
    const cli::FooterLook tooFar = lookAt(appended(file, 1'048'576 - 23));
    EXPECT_EQ(tooFar.offset, std::nullopt);
    EXPECT_FALSE(tooFar.footer);
    EXPECT_EQ(tooFar.faults, Texts{"no container footer at the end"});
}

TEST(DumpFooter, IsNotThereInFilesThatAreTooShort) {
    for (const std::size_t size : {0U, 1U, 23U}) {
        const cli::FooterLook look = lookAt(Bytes(size));
        EXPECT_EQ(look.offset, std::nullopt);
        EXPECT_EQ(look.faults, Texts{"shorter than the 24 bytes that end a container"});
    }
    EXPECT_EQ(lookAt(Bytes(24)).faults, Texts{"no container footer at the end"});
}

TEST(DumpFooter, ThatIsCutIsNone) {
    const Bytes file = smallImage().bytes();
    const Bytes cut(file.begin(), file.end() - 1);
    const cli::FooterLook look = lookAt(cut);
    EXPECT_EQ(look.offset, std::nullopt);
    EXPECT_EQ(look.faults, Texts{"no container footer at the end"});
}

TEST(DumpFooter, ThatEndsAShortFileAsksForNoExtendedOne) {
    ContainerImage image = smallImage();
    image.footer.tocSize = 0;
    image.footer.minorVersion = 1;
    ASSERT_EQ(image.bytes().size(), 29U);
    EXPECT_EQ(lookAt(image.bytes()).faults, Texts{"the footer names no table of contents"});
    image.data = Bytes(21);
    ASSERT_EQ(image.bytes().size(), 48U);
    EXPECT_EQ(lookAt(image.bytes()).faults,
              (Texts{"the extended footer before the footer is missing",
                     "the footer names no table of contents"}));
}

}  // namespace trellant::testing
