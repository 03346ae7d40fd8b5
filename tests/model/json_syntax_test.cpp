// SPDX-License-Identifier: Apache-2.0
// What is JSON at all, whatever record is read from it.
#include "decoding_error.h"

#include <trellant/model/timeline_json.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace trellant {
namespace {

using namespace std::string_view_literals;
using test::decodingError;

/// A record of three required fields.
constexpr std::string_view decisionJson = R"({"role":"music","confidence":1,"reason":"r"})";
const AAFSemanticDecision decision{AAFStemRole::music, 1.0, "r"};

std::string decisionWith(std::string_view unknownValue) {
    return std::string(R"({"unknown":)")
        .append(unknownValue)
        .append(R"(,"role":"music","confidence":1,"reason":"r"})");
}

TEST(JsonSyntax, ByteOrderMarkIsSkipped) {
    EXPECT_EQ(decodeJson<AAFSemanticDecision>(std::string("\xEF\xBB\xBF").append(decisionJson)),
              decision);
}

TEST(JsonSyntax, SecondOrCutByteOrderMarkFails) {
    EXPECT_EQ(decodingError<bool>("\xEF\xBB\xBF\xEF\xBB\xBFtrue"),
              "syntax error at line 1, column 4: invalid literal");
    EXPECT_TRUE(decodingError<bool>("\xEF\xBBtrue").starts_with("syntax error at line 1, column "));
}

TEST(JsonSyntax, BlanksAroundAreSkipped) {
    EXPECT_EQ(decodeJson<AAFSemanticDecision>(std::string(" \t\r\n").append(decisionJson) + "\n "),
              decision);
}

TEST(JsonSyntax, NulByteFailsAnywhere) {
    EXPECT_EQ(decodingError<bool>("true\0"sv), "syntax error at line 1, column 5: NUL byte");
    EXPECT_EQ(decodingError<bool>("\0true"sv), "syntax error at line 1, column 1: NUL byte");
    EXPECT_EQ(decodingError<std::string>("\n\"a\0b\""sv),
              "syntax error at line 2, column 3: NUL byte");
}

TEST(JsonSyntax, EscapedNulIsText) {
    EXPECT_EQ(decodeJson<std::string>(R"("a\u0000b")"), "a\0b"sv);
}

TEST(JsonSyntax, EmptyAndBlankTextsFail) {
    EXPECT_EQ(decodingError<bool>(""),
              "syntax error at line 1, column 1: unexpected end of input; expected '[', '{', or a "
              "literal");
    EXPECT_EQ(decodingError<bool>(" \n "),
              "syntax error at line 2, column 2: unexpected end of input; expected '[', '{', or a "
              "literal");
}

TEST(JsonSyntax, TrailingBytesFail) {
    EXPECT_EQ(decodingError<bool>("true x"), "syntax error at line 1, column 6: invalid literal");
    EXPECT_TRUE(decodingError<bool>("true true").starts_with("syntax error at line 1, column "));
    EXPECT_TRUE(decodingError<AAFSemanticDecision>(std::string(decisionJson) + "}")
                    .starts_with("syntax error at line 1, column "));
}

TEST(JsonSyntax, WhatOtherDialectsAllowFails) {
    for (const std::string_view text :
         {"[1,]"sv, "{\"a\":1,}"sv, "{a:1}"sv, "{'a':1}"sv, "[1 2]"sv, "/*c*/[]"sv, "[]//c"sv,
          "[\"a\nb\"]"sv, "[\"\\x41\"]"sv, "[TRUE]"sv, "[1"sv, "{\"a\""sv, "\"abc"sv, "]"sv}) {
        EXPECT_TRUE(decodingError<AAFSemanticDecision>(decisionWith(text))
                        .starts_with("syntax error at line "))
            << text;
    }
}

TEST(JsonSyntax, InvalidUTF8Fails) {
    for (const std::string_view bytes :
         {"\xFF"sv, "\xC3"sv, "\xC0\x80"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv, "\x80"sv}) {
        const std::string text = std::string("\"").append(bytes).append("\"");
        const std::string error = decodingError<std::string>(text);
        EXPECT_TRUE(error.starts_with("syntax error at line 1, column ")) << error;
        EXPECT_TRUE(decodingError<AAFSemanticDecision>(decisionWith(text))
                        .starts_with("syntax error at line 1, column "));
    }
}

TEST(JsonSyntax, LoneSurrogateEscapesFail) {
    for (const std::string_view text :
         {R"("\ud800")"sv, R"("\udc00")"sv, R"("\ud800\ud800")"sv, R"("\ud800x")"sv,
          R"("\udbff\n")"sv, R"("\ud83d\ud7ff")"sv, R"("\uD83D\uE000")"sv, R"("\ud83d\uffff")"sv}) {
        EXPECT_TRUE(decodingError<std::string>(text).starts_with("syntax error at line 1, column "))
            << text;
    }
}

TEST(JsonSyntax, EscapesAreRead) {
    EXPECT_EQ(decodeJson<std::string>(R"("\"\\\/\b\f\n\r\t\u00fC\ud83c\udfb5")"),
              "\"\\/\b\f\n\r\t\xC3\xBC\xF0\x9F\x8E\xB5");
    EXPECT_EQ(decodeJson<std::string>(R"("\ud7ff\ue000\uFFFF")"),
              "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF");
    EXPECT_EQ(decodeJson<std::string>(R"("\ud800\udc00\udbff\udfff")"),
              "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(JsonSyntax, MessagesAreOnePrintableLine) {
    for (const std::string_view text :
         {"\"a\nb\""sv, "\"\xFF\x01\""sv, "{\"\x02\":1"sv, "\x1b[2J"sv, "\xFE"sv}) {
        const std::string error = decodingError<std::string>(text);
        EXPECT_NE(error, "decoded");
        for (const char byte : error) {
            EXPECT_TRUE(byte >= ' ' && byte <= '~') << error;
        }
    }
}

TEST(JsonSyntax, UnknownKeysAreIgnoredWhateverLiesUnderThem) {
    for (const std::string_view value :
         {"null"sv, "true"sv, "1.5"sv, "1e400"sv, "-1e999999999"sv, "\"x\""sv, "[]"sv, "{}"sv,
          R"({"role":"noise","role":[{"reason":null}]})"sv, R"([[1,{"a":[]}],"b"])"sv}) {
        EXPECT_EQ(decodeJson<AAFSemanticDecision>(decisionWith(value)), decision) << value;
    }
}

TEST(JsonSyntax, AMillionLevelsUnderAnUnknownKeyAreIgnored) {
    constexpr std::size_t levels = 1000000;
    EXPECT_EQ(decodeJson<AAFSemanticDecision>(
                  decisionWith(std::string(levels, '[') + std::string(levels, ']'))),
              decision);
    std::string objects;
    for (std::size_t level = 0; level < levels; ++level) {
        objects += R"({"a":)";
    }
    objects += "1" + std::string(levels, '}');
    EXPECT_EQ(decodeJson<AAFSemanticDecision>(decisionWith(objects)), decision);
}

TEST(JsonSyntax, AMillionLevelsThatAreNotClosedFail) {
    const std::string error =
        decodingError<AAFSemanticDecision>(R"({"unknown":)" + std::string(1000000, '['));
    EXPECT_TRUE(error.starts_with("syntax error at line 1, column 1000012: ")) << error;
}

TEST(JsonSyntax, AMillionLevelsInAKnownPlaceFail) {
    EXPECT_EQ(decodingError<AAFSemanticDecision>(std::string(1000000, '[')),
              "expected an object, found an array");
}

}  // namespace
}  // namespace trellant
