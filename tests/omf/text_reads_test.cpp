// SPDX-License-Identifier: Apache-2.0
// Text values: one-byte text, UTF-16 told by its zero bytes, and what falls back.
#include "opened_document.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace trellant::testing {
namespace {

constexpr std::string_view nameProperty = "OMFI:MOBJ:Name";

std::optional<std::string> textIn(OMFByteOrder order, Bytes value) {
    ContainerBuilder container = headedContainer(order);
    container.set(2, nameProperty, std::move(value));
    return OpenedDocument(container)->string(object(2), {OMFProperty::mobName});
}

std::optional<std::string> text(Bytes value) {
    return textIn(OMFByteOrder::little, std::move(value));
}

TEST(TextValues, OneByteTextEndsAtItsFirstZero) {
    EXPECT_EQ(text(bytesOf("Kick")), "Kick");
    EXPECT_EQ(text(hex("4B 69 63 6B 00 58 58")), "Kick");
}

TEST(TextValues, BytesThatAreNotUtf8AreLatin1) {
    EXPECT_EQ(text(hex("47 72 C3 BC 6E")), "Gr\u00FCn");
    EXPECT_EQ(text(hex("47 72 FC 6E")), "Gr\u00FCn");
}

TEST(TextValues, LittleEndianUtf16IsToldByZerosAtOddPlaces) {
    EXPECT_EQ(text(hex("4B 00 69 00 63 00 6B 00")), "Kick");
}

TEST(TextValues, LittleEndianUtf16InABigDocumentReadsInTheDocumentsOrder) {
    EXPECT_EQ(textIn(OMFByteOrder::big, hex("4B 00 69 00 63 00 6B 00")),
              "\u4B00\u6900\u6300\u6B00");
}

TEST(TextValues, BigEndianUtf16HasItsZerosElsewhereAndReadsAsEmpty) {
    for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
        EXPECT_EQ(textIn(order, hex("00 4B 00 69 00 63 00 6B")), std::nullopt);
    }
}

TEST(TextValues, ControlCharactersAroundUtf16AreTrimmed) {
    // Tab, zero width no-break space; "A b"; carriage return and zero.
    EXPECT_EQ(text(hex("09 00 FF FE 41 00 20 00 62 00 0D 00 00 00")), "A b");
}

TEST(TextValues, ControlCharactersAroundOneByteTextStay) {
    EXPECT_EQ(text(hex("09 41 0D")), "\tA\r");
}

TEST(TextValues, OneZeroAtAnOddPlaceIsNotEnough) {
    EXPECT_EQ(text(hex("61 62 63 00")), "abc");
    EXPECT_EQ(text(hex("61 00 63 64")), "a");
}

TEST(TextValues, TwoZerosAtOddPlacesAreEnough) {
    EXPECT_EQ(text(hex("41 00 42 00")), "AB");
}

TEST(TextValues, FewerThanFourBytesAreNeverUtf16) {
    EXPECT_EQ(text(hex("41 00 42")), "A");
}

TEST(TextValues, OnlyTheFirst64BytesAreLookedAt) {
    // Zeros at 65 and 67 come too late, zeros at 61 and 63 do not.
    const Bytes late = joined({Bytes(64, std::byte{'A'}), hex("42 00 43 00")});
    EXPECT_EQ(text(late), std::string(64, 'A') + "B");
    const Bytes inTime = joined({Bytes(60, std::byte{'A'}), hex("42 00 43 00")});
    std::string expected;
    for (int unit = 0; unit < 30; ++unit) {
        expected += "\u4141";
    }
    EXPECT_EQ(text(inTime), expected + "BC");
}

TEST(TextValues, OddLastByteOfUtf16IsIgnored) {
    EXPECT_EQ(text(hex("4B 00 69 00 63")), "Ki");
}

TEST(TextValues, Utf16BeyondTheBasicPlane) {
    // U+1D11E as a surrogate pair, then "ab".
    EXPECT_EQ(text(hex("34 D8 1E DD 61 00 62 00")),
              "\U0001D11E"
              "ab");
}

TEST(TextValues, UnpairedSurrogateFallsBackToOneByteText) {
    EXPECT_EQ(text(hex("41 D8 42 00 43 00")),
              "A\u00D8"
              "B");
}

TEST(TextValues, EmptyTextCountsAsMissing) {
    EXPECT_EQ(text({}), std::nullopt);
    EXPECT_EQ(text(hex("00")), std::nullopt);
    EXPECT_EQ(text(hex("00 00 00 00")), std::nullopt);
    EXPECT_EQ(text(hex("0D 00 0A 00")), std::nullopt);
}

TEST(TextValues, EmptyTextMovesOnToTheNextCandidate) {
    ContainerBuilder container = headedContainer();
    container.set(2, "OMFI:UNXL:PathName", hex("00"));
    container.set(2, "OMFI:WINL:PathName", bytesOf("C:\\Kick.wav"));
    const OpenedDocument document(container);
    EXPECT_EQ(
        document->string(object(2), {OMFProperty::unixLocatorPath, OMFProperty::dosLocatorPath,
                                     OMFProperty::windowsLocatorPath}),
        "C:\\Kick.wav");
}

TEST(TextValues, FirstUsableCandidateWins) {
    ContainerBuilder container = headedContainer();
    container.set(2, "OMFI:UNXL:PathName", bytesOf("/Kick.wav"));
    container.set(2, "OMFI:WINL:PathName", bytesOf("C:\\Kick.wav"));
    const OpenedDocument document(container);
    EXPECT_EQ(document->string(object(2),
                               {OMFProperty::unixLocatorPath, OMFProperty::windowsLocatorPath}),
              "/Kick.wav");
    EXPECT_EQ(document->string(object(2),
                               {OMFProperty::windowsLocatorPath, OMFProperty::unixLocatorPath}),
              "C:\\Kick.wav");
}

TEST(TextValues, OneMebibyteIsReadAndOneByteMoreIsNot) {
    EXPECT_EQ(text(Bytes(1'048'576, std::byte{'A'})), std::string(1'048'576, 'A'));
    EXPECT_EQ(text(Bytes(1'048'577, std::byte{'A'})), std::nullopt);
}

TEST(TextValues, ValueInPiecesIsOneText) {
    ContainerBuilder container = headedContainer();
    container.setPieces(2, nameProperty, {bytesOf("Snare"), bytesOf(" "), bytesOf("Top")});
    EXPECT_EQ(OpenedDocument(container)->string(object(2), {OMFProperty::mobName}), "Snare Top");
}

}  // namespace
}  // namespace trellant::testing
