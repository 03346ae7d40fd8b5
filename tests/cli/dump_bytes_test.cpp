// SPDX-License-Identifier: Apache-2.0
// Bytes in words, kind by kind.
#include "dump/dump_bytes.h"

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

using cli::hexListing;
using cli::plainText;
using cli::storedText;
using cli::ValueKind;
using Rows = std::vector<std::string>;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

/// "absent" for what is no value of the kind.
std::string text(ValueKind kind, std::string_view digits, OMFByteOrder order = big) {
    return plainText(kind, hex(digits), order).value_or("absent");
}

}  // namespace

TEST(DumpBytes, AreTwoDigitsEach) {
    EXPECT_EQ(cli::hexText({}), "");
    EXPECT_EQ(cli::hexText(hex("00")), "00");
    EXPECT_EQ(cli::hexText(hex("0F A0 FF")), "0F A0 FF");
}

TEST(DumpBytes, AreShownAsCharactersWhereTheyAreSome) {
    EXPECT_EQ(cli::hexAndText(hex("1F 20 7E 7F 80")), "1F 20 7E 7F 80  |. ~..|");
    EXPECT_EQ(cli::hexAndText({}), "  ||");
}

TEST(DumpBytes, AreListedInRowsOfSixteen) {
    EXPECT_EQ(hexListing({}), Rows{});
    EXPECT_EQ(hexListing(bytesOf("abc")),
              Rows{"00000000  61 62 63                                         |abc|"});
    EXPECT_EQ(hexListing(bytesOf("0123456789abcdef")),
              Rows{"00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  "
                   "|0123456789abcdef|"});
    const Rows rows = hexListing(Bytes(33));
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1],
              "00000010  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |................|");
    EXPECT_EQ(rows[2], "00000020  00                                               |.|");
}

TEST(DumpPlainText, OfNumbersGoesByTheirLength) {
    EXPECT_EQ(text(ValueKind::signedNumber, "80"), "-128");
    EXPECT_EQ(text(ValueKind::unsignedNumber, "80"), "128");
    EXPECT_EQ(text(ValueKind::signedNumber, "80 00"), "-32768");
    EXPECT_EQ(text(ValueKind::unsignedNumber, "80 00"), "32768");
    EXPECT_EQ(text(ValueKind::signedNumber, "80 00 00 00"), "-2147483648");
    EXPECT_EQ(text(ValueKind::unsignedNumber, "80 00 00 00"), "2147483648");
    EXPECT_EQ(text(ValueKind::signedNumber, "80 00 00 00 00 00 00 00"), "-9223372036854775808");
    EXPECT_EQ(text(ValueKind::unsignedNumber, "80 00 00 00 00 00 00 00"), "9223372036854775808");
    for (const char* const digits : {"", "01 02 03", "01 02 03 04 05", "01 02 03 04 05 06 07"}) {
        EXPECT_EQ(text(ValueKind::signedNumber, digits), "absent") << digits;
        EXPECT_EQ(text(ValueKind::unsignedNumber, digits), "absent") << digits;
    }
}

TEST(DumpPlainText, OfNumbersHeedsTheOrder) {
    EXPECT_EQ(text(ValueKind::unsignedNumber, "01 00", little), "1");
    EXPECT_EQ(text(ValueKind::unsignedNumber, "01 00", big), "256");
    EXPECT_EQ(text(ValueKind::rational, "01 00 00 00 02 00 00 00", little), "1/2");
    EXPECT_EQ(text(ValueKind::numbers, "01 00 00 00", little), "1");
}

TEST(DumpPlainText, OfBooleansTakesUpToFourBytes) {
    EXPECT_EQ(text(ValueKind::boolean, "00 00 00 00"), "false");
    EXPECT_EQ(text(ValueKind::boolean, "00 00 00 01"), "true");
    EXPECT_EQ(text(ValueKind::boolean, "02"), "true");
    EXPECT_EQ(text(ValueKind::boolean, ""), "absent");
    EXPECT_EQ(text(ValueKind::boolean, "00 00 00 00 00"), "absent");
}

TEST(DumpPlainText, OfClassesTakesUpToSixteenBytes) {
    EXPECT_EQ(text(ValueKind::classID, "48 45 41 44"), "HEAD");
    EXPECT_EQ(text(ValueKind::classID, "48 45 00 44"), "HE");
    EXPECT_EQ(text(ValueKind::classID, ""), "absent");
    EXPECT_EQ(plainText(ValueKind::classID, bytesOf(std::string(16, 'x')), big),
              std::string(16, 'x'));
    EXPECT_EQ(plainText(ValueKind::classID, bytesOf(std::string(17, 'x')), big), std::nullopt);
}

TEST(DumpPlainText, OfByteOrdersKnowsTwo) {
    EXPECT_EQ(text(ValueKind::byteOrder, "49 49"), "II, little-endian");
    EXPECT_EQ(text(ValueKind::byteOrder, "4D 4D 00"), "MM, big-endian");
    EXPECT_EQ(text(ValueKind::byteOrder, "49 4D"), "absent");
    EXPECT_EQ(text(ValueKind::byteOrder, ""), "absent");
}

TEST(DumpPlainText, OfRationalsIsNotReduced) {
    EXPECT_EQ(text(ValueKind::rational, "00 00 00 02 00 00 00 04"), "2/4");
    EXPECT_EQ(text(ValueKind::perhapsRational, "FF FF FF FE 00 00 00 01"), "-2/1");
    EXPECT_EQ(text(ValueKind::rational, "00 00 00 02 00 00 00"), "absent");
    EXPECT_EQ(text(ValueKind::perhapsRational, "00 00 00 02 00 00 00 04 00"), "absent");
}

TEST(DumpPlainText, OfIdentifiersHasThreeNumbers) {
    EXPECT_EQ(text(ValueKind::uid, "00 00 00 01 00 00 00 0A FF 00 00 00"),
              "00000001-0000000A-FF000000");
    EXPECT_EQ(text(ValueKind::uid, "01 00 00 00 0A 00 00 00 00 00 00 FF", little),
              "00000001-0000000A-FF000000");
    EXPECT_EQ(text(ValueKind::uid, "00 00 00 01 00 00 00 0A FF 00 00"), "absent");
}

TEST(DumpPlainText, OfVersionsHasTwoNumbers) {
    EXPECT_EQ(text(ValueKind::version, "02 00"), "2.0");
    EXPECT_EQ(text(ValueKind::version, "FF 0A"), "255.10");
    EXPECT_EQ(text(ValueKind::version, "02 00 00"), "absent");
}

// 951782400 = 11016 days after 1970 began: 10957 to the year 2000, 31 of January, 28 of February.
TEST(DumpPlainText, OfTimesKnowsLeapYears) {
    EXPECT_EQ(text(ValueKind::timestamp, "38 BB 0C 00"), "2000-02-29 00:00:00 (951782400)");
    EXPECT_EQ(text(ValueKind::timestamp, "38 BB 0C 00 01"),
              "2000-02-29 00:00:00 world time (951782400)");
    EXPECT_EQ(text(ValueKind::timestamp, "38 BB 0C 00 00"),
              "2000-02-29 00:00:00 local time (951782400)");
    EXPECT_EQ(text(ValueKind::timestamp, "00 01 51 7F"), "1970-01-01 23:59:59 (86399)");
    EXPECT_EQ(text(ValueKind::timestamp, "00 01 51"), "absent");
    EXPECT_EQ(text(ValueKind::timestamp, "00 01 51 7F 00 00"), "absent");
}

TEST(DumpPlainText, OfListsOfNumbersIsAsLongAsTheyAre) {
    EXPECT_EQ(text(ValueKind::numbers, "00 00 00 01"), "1");
    EXPECT_EQ(text(ValueKind::numbers, "00 00 00 01 FF FF FF FF 7F FF FF FF"), "1 -1 2147483647");
    EXPECT_EQ(text(ValueKind::numbers, ""), "absent");
    EXPECT_EQ(text(ValueKind::numbers, "00 00 00 01 00"), "absent");
}

TEST(DumpPlainText, IsAbsentForKindsThatTakeMoreThanBytes) {
    for (const ValueKind kind :
         {ValueKind::bytes, ValueKind::text, ValueKind::reference, ValueKind::references}) {
        EXPECT_EQ(text(kind, "00 00 00 01"), "absent");
    }
}

TEST(DumpStoredText, EndsAtTheFirstZero) {
    EXPECT_EQ(storedText(bytesOf("Kick"), big), "Kick");
    EXPECT_EQ(storedText(hex("4B 69 00 6B"), big), "Ki");
    EXPECT_EQ(storedText({}, big), "");
}

TEST(DumpStoredText, IsSixteenBitWhereOddBytesAreZero) {
    EXPECT_EQ(storedText(hex("4B 00 69 00"), little), "Ki");
    EXPECT_EQ(storedText(hex("4B 00 E9 00 6B 00"), little), "K\u00e9k");
    // One zero is too few to tell, and the text ends there.
    EXPECT_EQ(storedText(hex("4B 00"), little), "K");
    EXPECT_EQ(storedText(hex("4B 00 69 6B"), little), "K");
}

TEST(DumpStoredText, IsLatinWhereItIsNoUnicode) {
    EXPECT_EQ(storedText(hex("4B E9 6B"), big), "K\u00e9k");
    EXPECT_EQ(storedText(hex("4B C3 A9 6B"), big), "K\u00e9k");
}

TEST(DumpStoredText, DoesNothingToATerminal) {
    EXPECT_EQ(storedText(hex("61 1B 5B 32 4A 62"), big), "a\uFFFD[2Jb");
}

}  // namespace trellant::testing
