// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <string_view>

namespace trellant {
namespace {

using namespace std::string_view_literals;

TEST(PrintableText, CleanTextStays) {
    EXPECT_EQ(printableText("a \"b\" \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8E\xB5"),
              "a \"b\" \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8E\xB5");
}

TEST(PrintableText, ControlCharactersAreSpelledOut) {
    EXPECT_EQ(printableText("a\nb\x01\x1f\x7f\0c"sv), "a\\u000ab\\u0001\\u001f\\u007f\\u0000c");
}

TEST(TextOfBytes, KeepsNamesApartThatAreNoUTF8) {
    EXPECT_EQ(textOfBytes("a\xC3\xBC\n"), "a\xC3\xBC\n");
    EXPECT_EQ(textOfBytes("a\xFF\xC3"), "a\\xff\\xc3");
    EXPECT_EQ(textOfBytes("a\xFE\xC3"), "a\\xfe\\xc3");
}

TEST(PrintableText, BrokenBytesAreReplacedOneByOne) {
    EXPECT_EQ(printableText("a\xFF\xC3"), "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(PrintableText, LongTextIsCutAtACharacter) {
    EXPECT_EQ(printableText("abcdef", 6), "abcdef");
    EXPECT_EQ(printableText("abcdef", 5), "abcde...");
    EXPECT_EQ(printableText("abcd\xC3\xBC", 5), "abcd...");
}

TEST(WellFormedText, AcceptsTheBordersOfEveryForm) {
    EXPECT_TRUE(
        isValidUTF8("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80"
                    "\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
    EXPECT_TRUE(isValidUTF8(""));
}

TEST(WellFormedText, RefusesWhatLiesOutside) {
    for (const std::string_view text :
         {"\x80"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC2"sv, "\xC2\x7F"sv, "\xE0\x9F\xBF"sv,
          "\xED\xA0\x80"sv, "\xE2\x82"sv, "\xE2\x82\xC0"sv, "\xF0\x8F\xBF\xBF"sv,
          "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xF0\x9F\x8E"sv, "\xFF"sv}) {
        EXPECT_FALSE(isValidUTF8(text)) << printableText(text);
        EXPECT_EQ(utf8SequenceLength(text), 0U);
    }
}

TEST(PreconditionDeathTest, WritesItsMessageAndAborts) {
    EXPECT_EXIT(precondition(false, "the reason"), testing::KilledBySignal(SIGABRT),
                testing::Eq("precondition failed: the reason\n"));
    precondition(true, "never seen");
}

TEST(PrintablePath, HasRoomForTheLongestPath) {
    const std::string longest(4'096, 'a');
    EXPECT_EQ(printablePath(longest), longest);
    EXPECT_EQ(printablePath(longest + "b"), longest + "...");
    EXPECT_EQ(printablePath("a\nb"), "a\\u000ab");
}

}  // namespace
}  // namespace trellant
