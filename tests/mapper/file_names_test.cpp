// SPDX-License-Identifier: Apache-2.0
// How extracted files are named.
#include "file_names.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

TEST(LastPathComponent, IsWhatFollowsTheLastSlash) {
    EXPECT_EQ(lastPathComponent("Kick.wav"), "Kick.wav");
    EXPECT_EQ(lastPathComponent("/a/b/Kick.wav"), "Kick.wav");
    EXPECT_EQ(lastPathComponent("a\\b:c"), "a\\b:c");
}

TEST(LastPathComponent, TrailingSlashesDoNotCount) {
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("b///"), "b");
}

TEST(LastPathComponent, OfSlashesAloneIsASlash) {
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("///"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(Extension, IsWhatFollowsTheLastDot) {
    EXPECT_EQ(extensionOf("Kick.wav"), "wav");
    EXPECT_EQ(extensionOf("Kick.v2.WAV"), "WAV");
    EXPECT_EQ(withoutExtension("Kick.v2.WAV"), "Kick.v2");
}

TEST(Extension, EmptyOneIsNone) {
    EXPECT_EQ(extensionOf("Kick."), "");
    EXPECT_EQ(withoutExtension("Kick."), "Kick.");
    EXPECT_EQ(extensionOf("Kick"), "");
    EXPECT_EQ(withoutExtension("Kick"), "Kick");
}

TEST(Extension, OneWithABlankIsNone) {
    EXPECT_EQ(extensionOf("Take 1. final cut"), "");
    EXPECT_EQ(withoutExtension("Take 1. final cut"), "Take 1. final cut");
    EXPECT_EQ(extensionOf("Take 1.wav "), "");
}

TEST(Extension, LeadingDotStartsNone) {
    EXPECT_EQ(extensionOf(".wav"), "");
    EXPECT_EQ(withoutExtension(".wav"), ".wav");
    EXPECT_EQ(withoutExtension(".a.wav"), ".a");
}

TEST(SafeName, KeepsLettersMarksNumbersAndFourMore) {
    EXPECT_EQ(safeName("Kick-1_a.b c"), "Kick-1_a.b c");
    // Latin, Cyrillic, a combining mark, an Arabic digit, a Roman numeral, a fraction.
    EXPECT_EQ(safeName("\u00E9\u0416a\u0301\u0663\u2167\u00BD"),
              "\u00E9\u0416a\u0301\u0663\u2167\u00BD");
}

TEST(SafeName, ReplacesEachOtherScalarByALine) {
    EXPECT_EQ(safeName("a/b\\c:d*e?f\"g<h>i|j"), "a_b_c_d_e_f_g_h_i_j");
    EXPECT_EQ(safeName("a\tb\nc"), "a_b_c");
    EXPECT_EQ(safeName("\u00A0\u2013\u20AC"), "___");
    EXPECT_EQ(safeName("\U0001F941\U0001F941"), "__");
}

TEST(SafeName, CutsAfter120Characters) {
    EXPECT_EQ(safeName(std::string(120, 'a')), std::string(120, 'a'));
    EXPECT_EQ(safeName(std::string(121, 'a')), std::string(120, 'a'));
}

TEST(SafeName, CharacterIsALetterWithItsMarks) {
    const std::string letter = "e\u0301";
    EXPECT_EQ(safeName(repeated(letter, 121)), repeated(letter, 120));
}

TEST(SafeName, CutsAfterReplacing) {
    // A flag of two scalars is one character before and two after.
    EXPECT_EQ(safeName(repeated("\U0001F1E9\U0001F1EA", 100)), std::string(120, '_'));
}

class UniqueName : public ::testing::Test {
  protected:
    void take(const std::string& name) { writeFile(folder_.file(name), bytesOf("x")); }
    std::string unique(const std::string& base, const std::string& extension) {
        const std::string path = names_.uniqueURL(base, extension);
        const std::string prefix = folder_.path().string() + "/";
        EXPECT_EQ(path.substr(0, prefix.size()), prefix);
        return path.substr(prefix.size());
    }

    TemporaryDirectory folder_;
    UniqueNames names_{folder_.path().string()};
};

TEST_F(UniqueName, FreeNameIsTakenAsItIs) {
    EXPECT_EQ(unique("Kick", "wav"), "Kick.wav");
    EXPECT_EQ(unique("Kick", "wav"), "Kick.wav");
}

TEST_F(UniqueName, TakenNamesAreNumberedFromTwo) {
    take("Kick.wav");
    EXPECT_EQ(unique("Kick", "wav"), "Kick_2.wav");
    take("Kick_2.wav");
    take("Kick_3.wav");
    EXPECT_EQ(unique("Kick", "wav"), "Kick_4.wav");
    EXPECT_EQ(unique("Kick", "aifc"), "Kick.aifc");
}

TEST_F(UniqueName, BaseWithDotsKeepsThem) {
    take("Kick.v2.wav");
    EXPECT_EQ(unique("Kick.v2", "wav"), "Kick.v2_2.wav");
}

TEST_F(UniqueName, Number999IsTheLast) {
    take("Kick.wav");
    for (int number = 2; number <= 998; ++number) {
        take("Kick_" + std::to_string(number) + ".wav");
    }
    EXPECT_EQ(unique("Kick", "wav"), "Kick_999.wav");
    take("Kick_999.wav");
    EXPECT_EQ(unique("Kick", "wav"), "Kick.wav");
    EXPECT_EQ(unique("Kick", "wav"), "Kick.wav");
}

TEST_F(UniqueName, NameOf255BytesFits) {
    const std::string longest = repeated("\u3042", 83) + "aa";
    EXPECT_EQ(unique(longest, "wav"), longest + ".wav");
    EXPECT_EQ(unique(longest + "a", "wav"), longest + ".wav");
}

TEST_F(UniqueName, NumberMakesRoomForItself) {
    const std::string longest = repeated("\u3042", 83) + "aa";
    take(longest + ".wav");
    EXPECT_EQ(unique(longest, "wav"), repeated("\u3042", 83) + "_2.wav");
}

TEST_F(UniqueName, IsCutAtACharacter) {
    // 84 letters of 3 bytes and a mark of 2 each: 50 of 5 bytes are 250.
    const std::string letter = "\u3042\u0301";
    EXPECT_EQ(unique(repeated(letter, 84), "wav"), repeated(letter, 50) + ".wav");
}

TEST_F(UniqueName, HugeCharacterIsCutInsideRatherThanTooLong) {
    // One letter with 200 marks: a letter and 125 marks are 251 bytes.
    EXPECT_EQ(unique("a" + repeated("\u0301", 200), "wav"), "a" + repeated("\u0301", 125) + ".wav");
}

}  // namespace
}  // namespace trellant::testing
