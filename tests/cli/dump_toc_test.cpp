// SPDX-License-Identifier: Apache-2.0
// Tables item by item: what each token and entry says, and where a table stops making sense.
#include "dump/dump_toc.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

namespace {

using cli::TocFault;
using Texts = std::vector<std::string>;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

struct Read {
    std::vector<BentoPackedItem> items;
    std::optional<TocFault> fault;
};

/// Reads a table that begins at byte 3 of a file. `footer.tocSize` is filled in where it is 0.
Read read(const Bytes& toc, BentoFooter footer, std::size_t most = ~std::size_t{0}) {
    const TemporaryDirectory folder;
    const RandomAccessFile file(
        writeFile(folder.file("container"), joined({hex("EE EE EE"), toc})));
    footer.tocOffset = 3;
    footer.tocSize = footer.tocSize == 0 ? toc.size() : footer.tocSize;
    Read result;
    result.fault = cli::readToc(file, footer, [&](const BentoPackedItem& item) {
        result.items.push_back(item);
        return result.items.size() < most;
    });
    return result;
}

Read readTokens(const Bytes& toc, OMFByteOrder order = big, std::uint32_t blockSize = 1'024) {
    return read(toc, {.byteOrder = order, .majorVersion = 2, .blockSize = blockSize});
}

Read readEntries(const Bytes& toc, OMFByteOrder order = big) {
    return read(toc, {.byteOrder = order, .majorVersion = 1});
}

std::string valueText(const BentoPackedItem& item) {
    switch (item.kind) {
        case BentoPackedItem::Kind::immediate:
            return "'" + textOf(item.immediate()) + "'";
        case BentoPackedItem::Kind::range:
            return std::to_string(item.length) + " at " + std::to_string(item.offset);
        case BentoPackedItem::Kind::referenceList:
            break;
    }
    return "list " + std::to_string(item.offset);
}

/// "10.11 type 12 generation 0: 'abcd'" for each item, with "+" at the end of a continued one.
Texts textsOf(const Read& read) {
    Texts texts;
    for (const BentoPackedItem& item : read.items) {
        texts.push_back(std::to_string(item.object) + "." + std::to_string(item.property) +
                        " type " + std::to_string(item.type) + " generation " +
                        std::to_string(item.generation) + ": " + valueText(item) +
                        (item.continued ? "+" : ""));
    }
    return texts;
}

/// The one item that a table of this token has.
std::string valueOf(std::string_view token, OMFByteOrder order = big) {
    const Read result = readTokens(hex(token), order);
    EXPECT_EQ(result.fault, std::nullopt);
    EXPECT_EQ(result.items.size(), 1U);
    const std::string text = result.items.empty() ? "" : textsOf(result).front();
    const std::string ofNothing = "0.0 type 0 generation 0: ";
    EXPECT_EQ(text.substr(0, ofNothing.size()), ofNothing);
    return text.substr(std::min(text.size(), ofNothing.size()));
}

const std::string newObject = "01 00 00 00 0A 00 00 00 0B 00 00 00 0C ";

}  // namespace

TEST(DumpTokens, SayWhatTheFollowingValuesBelongTo) {
    const Read result = readTokens(hex(newObject + "09 "
                                                   "02 00 00 00 15 00 00 00 16 09 "
                                                   "03 00 00 00 20 09 09"));
    EXPECT_EQ(textsOf(result),
              (Texts{"10.11 type 12 generation 0: ''", "10.21 type 22 generation 0: ''",
                     "10.21 type 32 generation 0: ''", "10.21 type 32 generation 0: ''"}));
    EXPECT_EQ(result.fault, std::nullopt);
}

TEST(DumpTokens, KeepAGenerationUntilAnythingElseIsSaid) {
    const std::string generation = "04 00 00 00 07 ";
    EXPECT_EQ(textsOf(readTokens(hex(newObject + generation + "09 09 " + newObject + "09 " +
                                     generation + "02 00 00 00 0B 00 00 00 0C 09 " + generation +
                                     "03 00 00 00 0C 09"))),
              (Texts{"10.11 type 12 generation 7: ''", "10.11 type 12 generation 7: ''",
                     "10.11 type 12 generation 0: ''", "10.11 type 12 generation 0: ''",
                     "10.11 type 12 generation 0: ''"}));
}

TEST(DumpTokens, BoundGenerations) {
    EXPECT_EQ(textsOf(readTokens(hex("04 00 00 FF FF 09 04 00 01 00 00 09"))),
              (Texts{"0.0 type 0 generation 65535: ''", "0.0 type 0 generation 65535: ''"}));
}

TEST(DumpTokens, NameRangesInThreeWidths) {
    EXPECT_EQ(valueOf("05 00 00 01 00 00 00 00 02"), "2 at 256");
    EXPECT_EQ(valueOf("06 00 00 01 00 00 00 00 02"), "2 at 256+");
    EXPECT_EQ(valueOf("07 00 00 00 01 00 00 00 00 00 00 00 02"), "2 at 4294967296");
    EXPECT_EQ(valueOf("08 00 00 00 01 00 00 00 00 00 00 00 02"), "2 at 4294967296+");
    EXPECT_EQ(valueOf("19 00 00 00 00 00 00 00 05 00 00 00 01 00 00 00 00"), "4294967296 at 5");
    EXPECT_EQ(valueOf("1A 00 00 00 00 00 00 00 05 00 00 00 01 00 00 00 00"), "4294967296 at 5+");
}

TEST(DumpTokens, HaveNumbersInTheFootersOrder) {
    EXPECT_EQ(valueOf("05 00 01 00 00 02 00 00 00", little), "2 at 256");
    EXPECT_EQ(valueOf("08 00 00 00 00 01 00 00 00 02 00 00 00", little), "2 at 4294967296+");
    EXPECT_EQ(valueOf("0F 01 02 00 00", little), "list 513");
}

TEST(DumpTokens, HoldValuesOfUpToFourBytes) {
    EXPECT_EQ(valueOf("09"), "''");
    EXPECT_EQ(valueOf("0A 61 62 63 64"), "'a'");
    EXPECT_EQ(valueOf("0B 61 62 63 64"), "'ab'");
    EXPECT_EQ(valueOf("0C 61 62 63 64"), "'abc'");
    EXPECT_EQ(valueOf("0D 61 62 63 64"), "'abcd'");
    EXPECT_EQ(valueOf("0E 61 62 63 64"), "'abcd'+");
    // Bytes, and so in no order.
    EXPECT_EQ(valueOf("0C 61 62 63 64", little), "'abc'");
}

TEST(DumpTokens, NameReferenceLists) {
    EXPECT_EQ(valueOf("0F 00 02 00 01"), "list 131073");
}

TEST(DumpTokens, WithoutAMeaningAreItemsWithoutBytes) {
    EXPECT_EQ(valueOf("10 61 62 63 64"), "''");
    EXPECT_EQ(valueOf("11 61 62 63 64"), "''");
    EXPECT_EQ(valueOf("12 61 62 63 64 65 66 67 68"), "''");
    EXPECT_EQ(valueOf("13 61 62 63 64 65 66 67 68"), "''");
    EXPECT_EQ(valueOf("14 61 62 63 64 65 66 67 68"), "''");
    EXPECT_EQ(valueOf("15 61 62 63 64 65 66 67 68 69 6A 6B 6C"), "''");
    EXPECT_EQ(valueOf("16 61 62 63 64 65 66 67 68 69 6A 6B 6C"), "''");
    EXPECT_EQ(valueOf("17 61 62 63 64 65 66 67 68 69 6A 6B 6C"), "''");
}

// The table is no reader's: what adds nothing is shown too.
TEST(DumpTokens, ShowEmptyPieces) {
    EXPECT_EQ(readTokens(hex("0A 61 00 00 00 09 09 09")).items.size(), 4U);
}

TEST(DumpTokens, AreFoundBehindPaddingAndAtTheNextBlock) {
    EXPECT_EQ(textsOf(readTokens(hex("FF 0A 61 00 00 00 FF FF 0A 62 00 00 00 FF"))),
              (Texts{"0.0 type 0 generation 0: 'a'", "0.0 type 0 generation 0: 'b'"}));
    EXPECT_EQ(textsOf(readTokens(hex("0A 61 00 00 00 18 01 02  0A 62 00 00 00 18"), big, 8)),
              (Texts{"0.0 type 0 generation 0: 'a'", "0.0 type 0 generation 0: 'b'"}));
    // At the last byte of a block its end is the next byte.
    EXPECT_EQ(textsOf(readTokens(hex("0A 61 00 00 00 FF FF 18  0A 62 00 00 00"), big, 8)),
              (Texts{"0.0 type 0 generation 0: 'a'", "0.0 type 0 generation 0: 'b'"}));
}

TEST(DumpTokens, EndAtACodeThatDoesNotExist) {
    for (const int code : {0, 27, 100, 254}) {
        SCOPED_TRACE(code);
        ByteWriter toc(big);
        toc.bytes(hex("0A 61 00 00 00")).u8(static_cast<std::uint8_t>(code)).zeros(20);
        const Read result = readTokens(toc.written());
        EXPECT_EQ(result.items.size(), 1U);
        EXPECT_EQ(result.fault, (TocFault{5, "there is no token " + std::to_string(code)}));
    }
}

TEST(DumpTokens, EndAtOneThatIsCut) {
    struct Width {
        std::uint8_t code;
        std::size_t payload;
    };
    for (const Width& width : std::vector<Width>{
             {1, 12}, {2, 8},  {3, 4},  {4, 4},   {5, 8},   {6, 8},   {7, 12},  {8, 12},
             {10, 4}, {11, 4}, {12, 4}, {13, 4},  {14, 4},  {15, 4},  {16, 4},  {17, 4},
             {18, 8}, {19, 8}, {20, 8}, {21, 12}, {22, 12}, {23, 12}, {25, 16}, {26, 16}}) {
        SCOPED_TRACE(static_cast<int>(width.code));
        ByteWriter toc(big);
        toc.u8(0xFF).u8(width.code).zeros(width.payload - 1);
        EXPECT_EQ(readTokens(toc.written()).fault, (TocFault{1, "the last token is cut"}));
        EXPECT_EQ(readTokens(toc.written()).items.size(), 0U);
        toc.zeros(1);
        EXPECT_EQ(readTokens(toc.written()).fault, std::nullopt);
    }
}

// 7000 tokens of 13 bytes and 91000 bytes in all: more than are looked at in one go.
TEST(DumpTokens, LieAcrossAnyBorderOfReading) {
    constexpr std::uint32_t count = 7'000;
    ByteWriter toc(little);
    toc.u8(0xFF);
    for (std::uint32_t number = 0; number < count; ++number) {
        toc.u8(7).u64(std::uint64_t{number} << 32U).u32(number + 1);
    }
    const Read result = readTokens(toc.written(), little);
    EXPECT_EQ(result.fault, std::nullopt);
    ASSERT_EQ(result.items.size(), count);
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_EQ(result.items[number].offset, std::uint64_t{number} << 32U);
        ASSERT_EQ(result.items[number].length, number + 1);
    }
}

TEST(DumpTokens, AreSkippedOverManyBlocks) {
    ByteWriter toc(big);
    for (int block = 0; block < 200; ++block) {
        toc.bytes(hex("0A 61 00 00 00 18")).zeros(1'018);
    }
    const Read result = readTokens(toc.written());
    EXPECT_EQ(result.items.size(), 200U);
    EXPECT_EQ(result.fault, std::nullopt);
}

TEST(DumpEntries, HoldWhatTheirFieldsSay) {
    const Read result =
        readEntries(hex("00 00 00 0A 00 00 00 0B 00 00 00 0C 00 00 01 00 00 00 00 05 00 00 00 00"
                        "00 00 00 0A 00 00 00 0B 00 00 00 0C 00 00 02 00 00 00 00 06 00 03 00 02"
                        "00 00 00 14 00 00 00 15 00 00 00 16 61 62 63 64 00 00 00 03 00 00 00 01"
                        "00 00 00 14 00 00 00 15 00 00 00 16 61 62 63 64 00 00 00 04 00 00 00 03"));
    EXPECT_EQ(
        textsOf(result),
        (Texts{"10.11 type 12 generation 0: 5 at 256", "10.11 type 12 generation 3: 6 at 512+",
               "20.21 type 22 generation 0: 'abc'", "20.21 type 22 generation 0: 'abcd'+"}));
    EXPECT_EQ(result.fault, std::nullopt);
}

TEST(DumpEntries, HaveNumbersInTheFootersOrder) {
    EXPECT_EQ(textsOf(readEntries(
                  hex("0A 00 00 00 0B 00 00 00 0C 00 00 00 00 01 00 00 05 00 00 00 03 00 02 00"),
                  little)),
              Texts{"10.11 type 12 generation 3: 5 at 256+"});
}

TEST(DumpEntries, EndAtOneThatIsCut) {
    for (const std::size_t size : {25U, 47U}) {
        const Read result = readEntries(Bytes(size));
        EXPECT_EQ(result.items.size(), 1U);
        EXPECT_EQ(result.fault, (TocFault{24, "the last entry is cut"}));
    }
}

TEST(DumpEntries, EndAtOneThatHoldsTooMuch) {
    const Read result = readEntries(
        joined({Bytes(48), hex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF "
                               "00 00 00 01")}));
    EXPECT_EQ(result.items.size(), 2U);
    EXPECT_EQ(result.fault, (TocFault{48,
                                      "an entry holds 4294967295 bytes of its own, more than "
                                      "its 4"}));
}

// 24 does not divide what is looked at in one go.
TEST(DumpEntries, LieAcrossAnyBorderOfReading) {
    constexpr std::uint32_t count = 6'000;
    ByteWriter toc(little);
    for (std::uint32_t number = 0; number < count; ++number) {
        toc.u32(number).u32(1).u32(2).u32(number + 7).u32(number + 9).u32(0);
    }
    const Read result = readEntries(toc.written(), little);
    EXPECT_EQ(result.fault, std::nullopt);
    ASSERT_EQ(result.items.size(), count);
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_EQ(result.items[number].object, number);
        ASSERT_EQ(result.items[number].offset, number + 7);
        ASSERT_EQ(result.items[number].length, number + 9);
    }
}

TEST(DumpTable, EndsWhenNoMoreIsWanted) {
    const Bytes tokens = hex("09 09 09 00");
    const Read some = read(tokens, {.byteOrder = big, .majorVersion = 2, .blockSize = 1'024}, 2);
    EXPECT_EQ(some.items.size(), 2U);
    EXPECT_EQ(some.fault, std::nullopt);
    const Read entries = read(Bytes(73), {.byteOrder = big, .majorVersion = 1}, 3);
    EXPECT_EQ(entries.items.size(), 3U);
    EXPECT_EQ(entries.fault, std::nullopt);
}

TEST(DumpTable, IsReadToTheFilesEnd) {
    BentoFooter footer{.byteOrder = big, .majorVersion = 2, .blockSize = 1'024, .tocSize = 1'000};
    const Read tokens = read(hex("09 09"), footer);
    EXPECT_EQ(tokens.items.size(), 2U);
    EXPECT_EQ(tokens.fault, (TocFault{2, "the file ends here"}));
    // A fault before the file's end is the one that counts.
    EXPECT_EQ(read(hex("09 0A 61"), footer).fault, (TocFault{1, "the last token is cut"}));
    footer.majorVersion = 1;
    EXPECT_EQ(read(Bytes(24), footer).fault, (TocFault{24, "the file ends here"}));
    EXPECT_EQ(read(Bytes(25), footer).fault, (TocFault{24, "the last entry is cut"}));
}

TEST(DumpTable, MayLieOutsideTheFile) {
    const TemporaryDirectory folder;
    const RandomAccessFile file(writeFile(folder.file("container"), Bytes(10)));
    for (const std::uint64_t offset : {std::uint64_t{10}, ~std::uint64_t{0}}) {
        const auto fault = cli::readToc(file,
                                        {.byteOrder = big,
                                         .majorVersion = 2,
                                         .blockSize = 1'024,
                                         .tocOffset = offset,
                                         .tocSize = ~std::uint64_t{0}},
                                        [](const BentoPackedItem&) { return true; });
        EXPECT_EQ(fault, (TocFault{0, "the file ends here"}));
    }
}

}  // namespace trellant::testing
