// SPDX-License-Identifier: Apache-2.0
#include "aaf_locators.h"

#include <gtest/gtest.h>

namespace trellant::sessions {
namespace {

TEST(AafLocators, RecordedPathsOfAnySystemBecomeFileURLs) {
    EXPECT_EQ(urlOfRecordedPath("/Volumes/Audio 1/Anna.wav"), "file:///Volumes/Audio%201/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("C:\\Audio\\Anna 1.wav"), "file:///C:/Audio/Anna%201.wav");
    EXPECT_EQ(urlOfRecordedPath("d:/Audio/Anna.wav"), "file:///d:/Audio/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("\\\\server\\share\\Anna.wav"), "file://server/share/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("Macintosh HD:Audio:Anna.wav"),
              "file:///Macintosh%20HD/Audio/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("::Audio:Anna.wav"), "file:///Audio/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("Audio\\Anna.wav"), "file:///Audio/Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("Anna.wav"), "file:///Anna.wav");
    EXPECT_EQ(urlOfRecordedPath("Audio/Anna: 1.wav"), "file:///Audio/Anna:%201.wav");
}

TEST(AafLocators, NothingHasNoURL) {
    EXPECT_EQ(urlOfRecordedPath(""), "");
}

TEST(AafLocators, RecordedURLsStayAndLoseWhatNoURLMayHave) {
    EXPECT_EQ(urlOfRecordedPath("file:///C%3A/Audio/Anna%201.wav"),
              "file:///C%3A/Audio/Anna%201.wav");
    EXPECT_EQ(urlOfRecordedPath("FILE://host/A b.wav"), "FILE://host/A%20b.wav");
    EXPECT_EQ(urlOfRecordedPath("file:///\xC3\xA9\n\"<>\\"), "file:///%C3%A9%0A%22%3C%3E%5C");
}

TEST(AafLocators, OtherLettersAreEncodedByteByByte) {
    EXPECT_EQ(urlOfRecordedPath("/\xC3\xA9/\xE8\x8A\xB1.wav"), "file:///%C3%A9/%E8%8A%B1.wav");
    EXPECT_EQ(urlOfRecordedPath(std::string("/a\0b", 4)), "file:///a%00b");
}

TEST(AafLocators, URLThatIsTooLongIsThatOfItsName) {
    const std::string fits = "file://" + std::string(32'759, '/');
    EXPECT_EQ(urlAsWritten(fits), fits);
    EXPECT_EQ(urlAsWritten("file:///" + std::string(40'000, 'a') + "/Anna.wav"),
              "file:///Anna.wav");
    EXPECT_EQ(urlAsWritten("file:///" + std::string(32'758, 'a') + "/" + std::string(32'758, 'b')),
              "file:///" + std::string(32'758, 'b'));
    EXPECT_EQ(urlAsWritten("file:///" + std::string(32'759, 'a')), "");
    EXPECT_EQ(urlAsWritten("file:" + std::string(32'762, 'a')), "");
}

}  // namespace
}  // namespace trellant::sessions
