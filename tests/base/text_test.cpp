// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>

namespace trellant {
namespace {

using testing::hex;
using testing::textOf;

const std::string replacement = "\xEF\xBF\xBD";

std::string bytes(std::string_view digits) {
    return textOf(hex(digits));
}

TEST(UTF8, AcceptsTheFirstAndLastScalarOfEachLength) {
    for (const std::string_view digits : {"00", "7F", "C2 80", "DF BF", "E0 A0 80", "ED 9F BF",
                                          "EE 80 80", "EF BF BF", "F0 90 80 80", "F4 8F BF BF"}) {
        EXPECT_TRUE(isValidUTF8(bytes(digits))) << digits;
        EXPECT_EQ(madeValidUTF8(bytes(digits)), bytes(digits)) << digits;
    }
}

TEST(UTF8, RejectsWhatLiesJustOutside) {
    for (const std::string_view digits :
         {"80", "BF", "C0 80", "C1 BF", "E0 9F BF", "ED A0 80", "ED BF BF", "F0 8F BF BF",
          "F4 90 80 80", "F5 80 80 80", "FE", "FF", "C2", "E0 A0", "F0 90 80", "C2 41",
          "E1 80 41"}) {
        EXPECT_FALSE(isValidUTF8(bytes(digits))) << digits;
    }
}

TEST(UTF8, FindsABrokenByteBehindALongAsciiHead) {
    const std::string head(37, 'a');
    EXPECT_TRUE(isValidUTF8(head));
    EXPECT_FALSE(isValidUTF8(head + "\xFF"));
    EXPECT_FALSE(isValidUTF8("\xFF" + head));
}

TEST(UTF8, PrintablePrefixEndsAtTheFirstByteThatIsNotPrintableAscii) {
    std::string all;
    for (char byte = ' '; byte <= '~'; ++byte) {
        all += byte;
    }
    EXPECT_EQ(printablePrefixLength(""), 0U);
    EXPECT_EQ(printablePrefixLength(all), 95U);
    for (const std::string_view other : {"00", "09", "0A", "1F", "7F", "80", "9F", "FF"}) {
        for (std::size_t place = 0; place < 20; ++place) {
            std::string text(20, '~');
            text[place] = bytes(other).front();
            EXPECT_EQ(printablePrefixLength(text), place) << other;
        }
    }
}

TEST(UTF8, EachMaximalBrokenSequenceBecomesOneReplacementCharacter) {
    EXPECT_EQ(madeValidUTF8("a\xFF\xFE"
                            "b"),
              "a" + replacement + replacement + "b");
    EXPECT_EQ(madeValidUTF8(bytes("61 F0 90 80 62")), "a" + replacement + "b");
    EXPECT_EQ(madeValidUTF8(bytes("E1 80 E2 F0 91 92 F1 BF 41")),
              replacement + replacement + replacement + replacement + "A");
    EXPECT_EQ(madeValidUTF8(bytes("ED A0 80")), replacement + replacement + replacement);
    EXPECT_EQ(madeValidUTF8(bytes("C3")), replacement);
}

TEST(UTF8, TheEmptyTextIsValid) {
    EXPECT_TRUE(isValidUTF8(""));
    EXPECT_EQ(madeValidUTF8(""), "");
}

TEST(Latin1, EveryByteIsAScalar) {
    EXPECT_EQ(fromLatin1(hex("41 80 E9 FF")), "A\xC2\x80\xC3\xA9\xC3\xBF");
}

TEST(UTF16, ReadsEitherByteOrder) {
    EXPECT_EQ(fromUTF16(hex("4B 00 69 00 63 00 6B 00"), OMFByteOrder::little), "Kick");
    EXPECT_EQ(fromUTF16(hex("00 4B 00 69 00 63 00 6B"), OMFByteOrder::big), "Kick");
    EXPECT_EQ(fromUTF16(hex("20 AC"), OMFByteOrder::big), "\xE2\x82\xAC");
}

TEST(UTF16, SurrogatePairsAreOneScalar) {
    EXPECT_EQ(fromUTF16(hex("D8 3C DF B5"), OMFByteOrder::big), "\xF0\x9F\x8E\xB5");
}

TEST(UTF16, AnUnpairedSurrogateGivesNothing) {
    EXPECT_EQ(fromUTF16(hex("D8 3C"), OMFByteOrder::big), std::nullopt);
    EXPECT_EQ(fromUTF16(hex("D8 3C 00 41"), OMFByteOrder::big), std::nullopt);
    EXPECT_EQ(fromUTF16(hex("DF B5 D8 3C"), OMFByteOrder::big), std::nullopt);
    EXPECT_EQ(fromUTF16(hex("D8 3C D8 3C"), OMFByteOrder::big), std::nullopt);
}

TEST(UTF16, AnOddLastByteIsIgnored) {
    EXPECT_EQ(fromUTF16(hex("00 41 00"), OMFByteOrder::big), "A");
    EXPECT_EQ(fromUTF16(hex("41"), OMFByteOrder::big), "");
}

TEST(UTF16, IsWrittenScalarByScalar) {
    EXPECT_EQ(toUTF16(""), u"");
    EXPECT_EQ(toUTF16("a\xC3\xA9\xEF\xBF\xBD"), u"a\u00E9\uFFFD");
    EXPECT_EQ(toUTF16("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"), u"\xD800\xDC00 \xDBFF\xDFFF");
    EXPECT_EQ(toUTF16(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(UTF16, BrokenSequencesAreWrittenAsReplacementCharacters) {
    EXPECT_EQ(toUTF16("a\xFF\xE2\x82"
                      "b\xC3"),
              u"a\uFFFD\uFFFD"
              u"b\uFFFD");
}

TEST(TrimmedOfControls, TakesControlAndFormatCharactersFromBothEndsOnly) {
    EXPECT_EQ(trimmedOfControls(std::string_view("\0\nA\tB\x7F\0", 7)), "A\tB");
    // U+0085 and U+200B stand for the two categories beyond ASCII, U+FEFF too.
    EXPECT_EQ(trimmedOfControls("\xEF\xBB\xBF\xC2\x85"
                                "A\xE2\x80\x8B"),
              "A");
}

TEST(TrimmedOfControls, KeepsBlanks) {
    EXPECT_EQ(trimmedOfControls(" A "), " A ");
}

TEST(TrimmedOfControls, OfNothingButControlsIsEmpty) {
    EXPECT_EQ(trimmedOfControls(std::string_view("\0\0", 2)), "");
    EXPECT_EQ(trimmedOfControls(""), "");
}

TEST(LowerCased, WorksScalarByScalar) {
    EXPECT_EQ(lowerCased("Kick_01.WAV"), "kick_01.wav");
    EXPECT_EQ(lowerCased("\xC3\x84RGER \xCE\xA3"), "\xC3\xA4rger \xCF\x83");
    // The sharp s has no other lower case, and the final sigma is not looked for.
    EXPECT_EQ(lowerCased("\xE1\xBA\x9E"), "\xC3\x9F");
}

TEST(LowerCased, BytesThatAreNoUTF8StayAsTheyAre) {
    EXPECT_EQ(lowerCased("A\xFF"
                         "B\xC3"),
              "a\xFF"
              "b\xC3");
}

TEST(UpperCased, WorksUnitByUnit) {
    EXPECT_EQ(upperCased(u'a'), u'A');
    EXPECT_EQ(upperCased(u'z'), u'Z');
    EXPECT_EQ(upperCased(u'{'), u'{');
    EXPECT_EQ(upperCased(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(upperCased(u'\u0436'), u'\u0416');
    EXPECT_EQ(upperCased(u'\u00FF'), u'\u0178');
}

TEST(UpperCased, WhatHasNoCapitalOfOneUnitStays) {
    EXPECT_EQ(upperCased(u'\u00DF'), u'\u00DF');
    EXPECT_EQ(upperCased(char16_t{0xD801}), char16_t{0xD801});
    EXPECT_EQ(upperCased(char16_t{0xDC28}), char16_t{0xDC28});
    EXPECT_EQ(upperCased(u'7'), u'7');
}

TEST(ReplacingNonAlphanumerics, KeepsLettersMarksAndNumbersOfAllScripts) {
    // e, combining acute, circled one, Devanagari ka and its vowel sign.
    const std::string text =
        "e\xCC\x81\xE2\x91\xA0\xE0\xA4\x95\xE0\xA4\xBE"
        "9Z";
    EXPECT_EQ(replacingNonAlphanumerics(text, "", '_'), text);
}

TEST(ReplacingNonAlphanumerics, ReplacesEachOtherScalarOnce) {
    EXPECT_EQ(replacingNonAlphanumerics("Kick?/:\xE2\x82\xAC.wav", "-_. ", '_'), "Kick____.wav");
    EXPECT_EQ(replacingNonAlphanumerics("a b-c", "", '_'), "a_b_c");
}

TEST(ReplacingNonAlphanumerics, ReplacesControlsAndBrokenBytes) {
    EXPECT_EQ(replacingNonAlphanumerics(std::string_view("a\0b\xFF", 4), "-_. ", '_'), "a_b_");
}

TEST(PrefixOfClusters, CountsClustersNotBytes) {
    const std::string cluster = "e\xCC\x81";
    EXPECT_EQ(prefixOfClusters(cluster + cluster + "x", 2, 100), cluster + cluster);
    EXPECT_EQ(prefixOfClusters("abc", 3, 100), "abc");
    EXPECT_EQ(prefixOfClusters("abc", 2, 100), "ab");
    EXPECT_EQ(prefixOfClusters("abc", 0, 100), "");
    EXPECT_EQ(prefixOfClusters("", 5, 100), "");
}

TEST(PrefixOfClusters, AFamilyAndAFlagAreOneClusterEach) {
    const std::string family = "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
    const std::string flag = "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA";
    EXPECT_EQ(prefixOfClusters(family + flag + flag, 2, 100), family + flag);
}

TEST(PlainLine, ARunOfControlsBecomesABlank) {
    EXPECT_EQ(plainLine("B\u00E9n"), "B\u00E9n");
    EXPECT_EQ(plainLine("\n\na\x1F\x7F"
                        "b\t"),
              " a b ");
}

// U+0085 ends a line for many readers, U+009B begins a command of a terminal; U+00A0 is a blank of
// its own, and a stray byte of the same value is nothing.
TEST(PlainLine, ControlsBeyondAsciiAndSeparatorsBecomeABlank) {
    EXPECT_EQ(plainLine("a\xC2\x85\xC2\x9B\xE2\x80\xA8"
                        "b\xE2\x80\xA9"),
              "a b ");
    EXPECT_EQ(plainLine("a\xC2\x80z\xC2\xA0y"), "a z\xC2\xA0y");
    EXPECT_EQ(plainLine("\x85\xC2 \xFF"), "\x85\xC2 \xFF");
}

TEST(PrefixOfClusters, BytesCutAtAClusterBoundary) {
    const std::string cluster = "e\xCC\x81";
    EXPECT_EQ(prefixOfClusters(cluster + cluster, 100, 5), cluster);
    EXPECT_EQ(prefixOfClusters(cluster + cluster, 100, 6), cluster + cluster);
    EXPECT_EQ(prefixOfClusters("abcd", 100, 3), "abc");
}

TEST(PrefixOfClusters, AFirstClusterThatIsTooLongIsCutBetweenScalars) {
    EXPECT_EQ(prefixOfClusters("e\xCC\x81\xCC\x82", 100, 4), "e\xCC\x81");
    EXPECT_EQ(prefixOfClusters("\xF0\x9F\x91\xA9", 100, 3), "");
    EXPECT_EQ(prefixOfClusters("a", 100, 0), "");
}

}  // namespace
}  // namespace trellant
