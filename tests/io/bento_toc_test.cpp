// SPDX-License-Identifier: Apache-2.0
#include "bento_toc.h"

#include "expect_throw.h"

#include <gtest/gtest.h>

#include <string_view>
#include <trellant_testing/byte_writer.h>

namespace trellant {
namespace {

using testing::bytesOf;
using testing::faultOf;
using testing::hex;
using testing::joined;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

using Items = std::vector<BentoTOCItem>;

Items unpacked(const BentoItemList& packed) {
    Items items;
    for (const BentoPackedItem& item : packed.items()) {
        items.push_back({item.object, item.property, item.type, item.generation, item.segment()});
    }
    return items;
}

Items compressed(const Bytes& toc, OMFByteOrder order = big, std::uint32_t blockSize = 1024) {
    return unpacked(decodeCompressedToc(toc, order, blockSize, EmptyPieces::kept));
}

Items v1(const Bytes& toc, OMFByteOrder order = big) {
    return unpacked(decodeTocV1(toc, order));
}

/// The segment of the one item of a table that has nothing but the given token.
BentoValueSegment segmentOf(std::string_view token) {
    const Items items = compressed(hex(token));
    EXPECT_EQ(items.size(), 1U);
    return items.empty() ? BentoValueSegment{} : items.front().segment;
}

BentoImmediate immediate(std::string_view text) {
    BentoImmediate value{.count = static_cast<std::uint8_t>(text.size())};
    std::copy(text.begin(), text.end(), value.bytes.begin());
    return value;
}

const std::string newObject = "01 00 00 00 0A 00 00 00 0B 00 00 00 0C ";

TEST(BentoToc, StateTokensSetWhatFollowingValuesBelongTo) {
    const Items items = compressed(hex(newObject + "09 "
                                                   "02 00 00 00 15 00 00 00 16 09 "
                                                   "03 00 00 00 20 09"));
    const BentoValueSegment empty{immediate(""), false};
    EXPECT_EQ(items,
              (Items{{10, 11, 12, 0, empty}, {10, 21, 22, 0, empty}, {10, 21, 32, 0, empty}}));
}

TEST(BentoToc, NumbersFollowTheFootersByteOrder) {
    const Items items = compressed(
        hex("01 0A 00 00 00 0B 00 00 00 0C 00 00 00 05 00 01 00 00 20 00 00 00"), little);
    EXPECT_EQ(items, (Items{{10, 11, 12, 0, {BentoRange{256, 32}, false}}}));
}

TEST(BentoToc, ValuesBeforeAnyStateBelongToObjectZero) {
    EXPECT_EQ(compressed(hex("09")), (Items{{0, 0, 0, 0, {immediate(""), false}}}));
}

TEST(BentoToc, GenerationHoldsUntilObjectPropertyOrTypeChange) {
    const Items items = compressed(hex(newObject +
                                       "04 00 00 00 07 09 09 "
                                       "03 00 00 00 0C 09 "
                                       "04 00 00 00 08 02 00 00 00 0B 00 00 00 0C 09 "
                                       "04 00 00 00 09 " +
                                       newObject + "09"));
    std::vector<std::uint16_t> generations;
    for (const BentoTOCItem& item : items) {
        generations.push_back(item.generation);
    }
    EXPECT_EQ(generations, (std::vector<std::uint16_t>{7, 7, 0, 0, 0}));
}

TEST(BentoToc, GenerationBeyond16BitsIsKeptAsTheLargest) {
    EXPECT_EQ(compressed(hex("04 00 00 FF FE 09")).front().generation, 65'534);
    EXPECT_EQ(compressed(hex("04 00 00 FF FF 09")).front().generation, 65'535);
    EXPECT_EQ(compressed(hex("04 00 01 00 00 09")).front().generation, 65'535);
    EXPECT_EQ(compressed(hex("04 FF FF FF FF 09")).front().generation, 65'535);
}

TEST(BentoToc, RangesHaveOffsetsAndLengthsOfEitherWidth) {
    EXPECT_EQ(segmentOf("05 00 00 00 01 FF FF FF FF"),
              (BentoValueSegment{BentoRange{1, 4'294'967'295}, false}));
    EXPECT_EQ(segmentOf("06 00 00 00 01 00 00 00 02"), (BentoValueSegment{BentoRange{1, 2}, true}));
    EXPECT_EQ(segmentOf("07 00 00 00 01 00 00 00 00 00 00 00 02"),
              (BentoValueSegment{BentoRange{4'294'967'296, 2}, false}));
    EXPECT_EQ(segmentOf("08 00 00 00 00 00 00 00 01 00 00 00 02"),
              (BentoValueSegment{BentoRange{1, 2}, true}));
    EXPECT_EQ(segmentOf("19 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 00"),
              (BentoValueSegment{BentoRange{1, 4'294'967'296}, false}));
    EXPECT_EQ(segmentOf("1A FF FF FF FF FF FF FF FF 00 00 00 00 00 00 00 02"),
              (BentoValueSegment{BentoRange{~std::uint64_t{0}, 2}, true}));
}

TEST(BentoToc, ImmediateValuesTakeTheHeadOfTheirPayload) {
    EXPECT_EQ(segmentOf("09"), (BentoValueSegment{immediate(""), false}));
    EXPECT_EQ(segmentOf("0A 41 42 43 44"), (BentoValueSegment{immediate("A"), false}));
    EXPECT_EQ(segmentOf("0B 41 42 43 44"), (BentoValueSegment{immediate("AB"), false}));
    EXPECT_EQ(segmentOf("0C 41 42 43 44"), (BentoValueSegment{immediate("ABC"), false}));
    EXPECT_EQ(segmentOf("0D 41 42 43 44"), (BentoValueSegment{immediate("ABCD"), false}));
    EXPECT_EQ(segmentOf("0E 41 42 43 44"), (BentoValueSegment{immediate("ABCD"), true}));
}

TEST(BentoToc, ImmediateBytesAreNeverSwapped) {
    EXPECT_EQ(compressed(hex("0D 41 42 43 44"), little).front().segment,
              (BentoValueSegment{immediate("ABCD"), false}));
}

TEST(BentoToc, ReferenceListsKeepTheirIdentifier) {
    EXPECT_EQ(segmentOf("0F 00 01 00 E4"), (BentoValueSegment{BentoReferenceList{65'764}, false}));
}

TEST(BentoToc, ReservedTokensAreEmptyValuesOfTheirFixedSize) {
    const Items items = compressed(
        hex("10 01 01 01 01  11 01 01 01 01"
            "12 01 01 01 01 01 01 01 01  13 01 01 01 01 01 01 01 01  14 01 01 01 01 01 01 01 01"
            "15 01 01 01 01 01 01 01 01 01 01 01 01  16 01 01 01 01 01 01 01 01 01 01 01 01"
            "17 01 01 01 01 01 01 01 01 01 01 01 01  0A 41 00 00 00"));
    ASSERT_EQ(items.size(), 9U);
    for (std::size_t index = 0; index < 8; ++index) {
        EXPECT_EQ(items[index].segment, (BentoValueSegment{immediate(""), false}));
    }
    EXPECT_EQ(items[8].segment, (BentoValueSegment{immediate("A"), false}));
}

TEST(BentoToc, PaddingBetweenTokensIsSkipped) {
    EXPECT_EQ(compressed(hex("FF FF 0A 41 00 00 00 FF 0A 42 00 00 00 FF")).size(), 2U);
    EXPECT_TRUE(compressed(hex("FF FF")).empty());
}

TEST(BentoToc, EndOfBlockSkipsToNextBoundary) {
    Bytes toc = joined({Bytes(10, std::byte{0xFF}), hex("18"), Bytes(1013), hex("0A 41 00 00 00")});
    EXPECT_EQ(compressed(toc), (Items{{0, 0, 0, 0, {immediate("A"), false}}}));
}

TEST(BentoToc, EndOfBlockOnTheLastByteOfABlockGoesOnWithTheNextByte) {
    Bytes toc = joined({Bytes(1023, std::byte{0xFF}), hex("18 0A 41 00 00 00")});
    EXPECT_EQ(compressed(toc), (Items{{0, 0, 0, 0, {immediate("A"), false}}}));
}

TEST(BentoToc, EndOfBlockOnTheFirstByteOfABlockSkipsThatBlock) {
    Bytes toc =
        joined({Bytes(1024, std::byte{0xFF}), hex("18"), Bytes(1023), hex("0A 41 00 00 00")});
    EXPECT_EQ(compressed(toc), (Items{{0, 0, 0, 0, {immediate("A"), false}}}));
}

TEST(BentoToc, EndOfBlockNearTheEndStopsAtTheEnd) {
    EXPECT_EQ(compressed(joined({hex("0A 41 00 00 00 18"), Bytes(100)})).size(), 1U);
    EXPECT_TRUE(compressed(hex("18")).empty());
}

TEST(BentoToc, StateOutlivesTheEndOfABlock) {
    const Bytes toc = joined({hex(newObject + "18"), Bytes(1024 - 14), hex("09")});
    EXPECT_EQ(compressed(toc), (Items{{10, 11, 12, 0, {immediate(""), false}}}));
}

TEST(BentoToc, TokensMayCrossBlockBoundaries) {
    const Bytes toc = joined({Bytes(1022, std::byte{0xFF}), hex("0D 41 42 43 44")});
    EXPECT_EQ(compressed(toc), (Items{{0, 0, 0, 0, {immediate("ABCD"), false}}}));
}

TEST(BentoToc, UnknownTokensAreNamedWithTheirPlace) {
    EXPECT_EQ(faultOf([] { return compressed(hex("FF FF FF FF FF FF FF 00")); }),
              "Malformed OMF/Bento file: invalid compressed TOC token 0 at byte 7");
    EXPECT_EQ(faultOf([] { return compressed(hex("1B")); }),
              "Malformed OMF/Bento file: invalid compressed TOC token 27 at byte 0");
    EXPECT_EQ(faultOf([] { return compressed(hex("09 FE")); }),
              "Malformed OMF/Bento file: invalid compressed TOC token 254 at byte 1");
}

TEST(BentoToc, EveryTokenIsTruncatedWhenOneByteOfItsPayloadIsMissing) {
    struct Token {
        std::uint8_t code;
        std::size_t payload;
    };
    for (const Token token :
         {Token{1, 12}, {2, 8},  {3, 4},  {4, 4},   {5, 8},   {6, 8},   {7, 12},  {8, 12},
          {10, 4},      {11, 4}, {12, 4}, {13, 4},  {14, 4},  {15, 4},  {16, 4},  {17, 4},
          {18, 8},      {19, 8}, {20, 8}, {21, 12}, {22, 12}, {23, 12}, {25, 16}, {26, 16}}) {
        Bytes toc{std::byte{token.code}};
        toc.resize(token.payload);
        EXPECT_EQ(faultOf([&] { return compressed(toc); }),
                  "Malformed OMF/Bento file: truncated compressed TOC token")
            << int{token.code};
        toc.resize(token.payload + 1);
        EXPECT_EQ(compressed(toc).size(), token.code <= 4 ? 0U : 1U) << int{token.code};
    }
}

TEST(BentoToc, BlockSizeZeroIsMalformed) {
    EXPECT_EQ(faultOf([] { return compressed(hex("09"), big, 0); }),
              "Malformed OMF/Bento file: invalid compressed TOC block size");
}

constexpr std::string_view v1Head = "00 00 00 0A 00 00 00 0B 00 00 00 0C ";

Bytes v1Entry(const std::string& rest) {
    return hex(std::string(v1Head) + rest);
}

TEST(BentoTocV1, EntriesAreRangesOrImmediateValues) {
    const Bytes toc = joined({v1Entry("00 00 01 00 00 00 00 20 00 07 00 00"),
                              v1Entry("41 42 43 44 00 00 00 03 00 00 00 01")});
    EXPECT_EQ(v1(toc), (Items{{10, 11, 12, 7, {BentoRange{256, 32}, false}},
                              {10, 11, 12, 0, {immediate("ABC"), false}}}));
}

TEST(BentoTocV1, NumbersFollowTheFootersByteOrder) {
    const Bytes toc =
        hex("0A 00 00 00 0B 00 00 00 0C 00 00 00 00 01 00 00 20 00 00 00 07 00 02 00");
    EXPECT_EQ(v1(toc, little), (Items{{10, 11, 12, 7, {BentoRange{256, 32}, true}}}));
}

TEST(BentoTocV1, ContinuedIsTheSecondFlag) {
    EXPECT_TRUE(v1(v1Entry("00 00 01 00 00 00 00 20 00 00 00 02")).front().segment.continued);
    EXPECT_TRUE(v1(v1Entry("41 42 43 44 00 00 00 04 00 00 00 03")).front().segment.continued);
}

TEST(BentoTocV1, OtherFlagsAreIgnored) {
    EXPECT_EQ(v1(v1Entry("00 00 01 00 00 00 00 20 00 00 FF FC")),
              (Items{{10, 11, 12, 0, {BentoRange{256, 32}, false}}}));
}

TEST(BentoTocV1, ImmediateValuesHaveAtMostFourBytes) {
    EXPECT_EQ(v1(v1Entry("41 42 43 44 00 00 00 00 00 00 00 01")).front().segment,
              (BentoValueSegment{immediate(""), false}));
    EXPECT_EQ(v1(v1Entry("41 42 43 44 00 00 00 04 00 00 00 01")).front().segment,
              (BentoValueSegment{immediate("ABCD"), false}));
    EXPECT_EQ(faultOf([] { return v1(v1Entry("41 42 43 44 00 00 00 05 00 00 00 01")); }),
              "Malformed OMF/Bento file: V1 immediate value longer than 4 bytes");
    EXPECT_EQ(faultOf([] { return v1(v1Entry("41 42 43 44 FF FF FF FF 00 00 00 01")); }),
              "Malformed OMF/Bento file: V1 immediate value longer than 4 bytes");
}

TEST(BentoTocV1, LengthMustBeWholeEntries) {
    for (const std::size_t length : {std::size_t{1}, std::size_t{23}, std::size_t{25}}) {
        EXPECT_EQ(faultOf([&] { return v1(Bytes(length)); }),
                  "Malformed OMF/Bento file: Bento 1.0d4 TOC is not a multiple of 24 bytes");
    }
    EXPECT_EQ(v1(Bytes(48)).size(), 2U);
}

}  // namespace
}  // namespace trellant
