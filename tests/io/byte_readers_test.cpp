// SPDX-License-Identifier: Apache-2.0
#include "expect_throw.h"

#include <trellant/io/byte_readers.h>

#include <gtest/gtest.h>

#include <limits>
#include <trellant_testing/byte_writer.h>

namespace trellant {
namespace {

using testing::bytesOf;
using testing::faultOf;
using testing::hex;

constexpr auto little = OMFByteOrder::little;
constexpr auto big = OMFByteOrder::big;

TEST(ByteReaders, OrderDecidesWhichByteIsMostSignificant) {
    const Bytes bytes = hex("01 02 03 04 05 06 07 08");
    EXPECT_EQ(u16(bytes, 0, big), 0x0102);
    EXPECT_EQ(u16(bytes, 0, little), 0x0201);
    EXPECT_EQ(u32(bytes, 0, big), 0x01020304U);
    EXPECT_EQ(u32(bytes, 0, little), 0x04030201U);
    EXPECT_EQ(u64(bytes, 0, big), 0x0102030405060708U);
    EXPECT_EQ(u64(bytes, 0, little), 0x0807060504030201U);
}

TEST(ByteReaders, ReadAtAnyAlignment) {
    const Bytes bytes = hex("00 01 02 03 04 05 06 07 08");
    EXPECT_EQ(u16(bytes, 1, big), 0x0102);
    EXPECT_EQ(u32(bytes, 3, big), 0x03040506U);
    EXPECT_EQ(u64(bytes, 1, big), 0x0102030405060708U);
}

TEST(ByteReaders, SignedReadersKeepTheBits) {
    const Bytes ones = hex("FF FF FF FF FF FF FF FF");
    EXPECT_EQ(i32(ones, 0, big), -1);
    EXPECT_EQ(i64(ones, 0, little), -1);
    EXPECT_EQ(i32(hex("80 00 00 00"), 0, big), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(i64(hex("FF FF FF FF FF FF FF 7F"), 0, little),
              std::numeric_limits<std::int64_t>::max());
}

TEST(ByteReaders, LastPlaceThatFitsIsReadAndTheNextOneFails) {
    const Bytes bytes = hex("00 00 00 00 00 00 00 09");
    EXPECT_EQ(u16(bytes, 6, big), 9);
    EXPECT_EQ(u32(bytes, 4, big), 9U);
    EXPECT_EQ(u64(bytes, 0, big), 9U);
    EXPECT_EQ(faultOf([&] { return u16(bytes, 7, big); }),
              "Malformed OMF/Bento file: u16 beyond buffer");
    EXPECT_EQ(faultOf([&] { return u32(bytes, 5, big); }),
              "Malformed OMF/Bento file: u32 beyond buffer");
    EXPECT_EQ(faultOf([&] { return u64(bytes, 1, big); }),
              "Malformed OMF/Bento file: u64 beyond buffer");
}

TEST(ByteReaders, SignedReadersReportTheUnsignedReadersText) {
    const Bytes bytes = hex("00 00");
    EXPECT_EQ(faultOf([&] { return i32(bytes, 0, big); }),
              "Malformed OMF/Bento file: u32 beyond buffer");
    EXPECT_EQ(faultOf([&] { return i64(bytes, 0, big); }),
              "Malformed OMF/Bento file: u64 beyond buffer");
}

TEST(ByteReaders, NegativeAndHugeOffsetsAreBeyondTheBuffer) {
    const Bytes bytes = hex("00 00 00 00 00 00 00 00");
    for (const std::int64_t offset : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
                                      std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(faultOf([&] { return u16(bytes, offset, little); }),
                  "Malformed OMF/Bento file: u16 beyond buffer");
        EXPECT_EQ(faultOf([&] { return u32(bytes, offset, little); }),
                  "Malformed OMF/Bento file: u32 beyond buffer");
        EXPECT_EQ(faultOf([&] { return u64(bytes, offset, little); }),
                  "Malformed OMF/Bento file: u64 beyond buffer");
    }
}

TEST(ByteReaders, EmptyBufferHoldsNoNumber) {
    EXPECT_EQ(faultOf([] { return u16({}, 0, little); }),
              "Malformed OMF/Bento file: u16 beyond buffer");
}

TEST(AsciiCString, EndsAtTheFirstZeroByte) {
    EXPECT_EQ(asciiCString(hex("41 42 00 43")), "AB");
    EXPECT_EQ(asciiCString(hex("00 41")), "");
}

TEST(AsciiCString, WithoutAZeroByteItTakesAll) {
    EXPECT_EQ(asciiCString(bytesOf("SCLP")), "SCLP");
    EXPECT_EQ(asciiCString({}), "");
}

TEST(AsciiCString, AcceptsUTF8) {
    EXPECT_EQ(asciiCString(bytesOf("K\xC3\xB6ln")), "K\xC3\xB6ln");
}

TEST(AsciiCString, ReadsWhatIsNoUTF8AsLatin1) {
    EXPECT_EQ(asciiCString(hex("E9")), "\xC3\xA9");
    EXPECT_EQ(asciiCString(hex("C3 B6 E9")), "\xC3\x83\xC2\xB6\xC3\xA9");
}

TEST(AsciiCString, OverlongFormsSurrogatesAndTooLargeScalarsAreNoUTF8) {
    EXPECT_EQ(asciiCString(hex("C1 81")), "\xC3\x81\xC2\x81");
    EXPECT_EQ(asciiCString(hex("ED A0 80")), "\xC3\xAD\xC2\xA0\xC2\x80");
    EXPECT_EQ(asciiCString(hex("F4 90 80 80")), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80");
}

TEST(AsciiCString, JudgesOnlyTheBytesBeforeTheZero) {
    EXPECT_EQ(asciiCString(hex("C3 B6 00 FF")), "\xC3\xB6");
}

}  // namespace
}  // namespace trellant
