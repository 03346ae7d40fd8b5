// SPDX-License-Identifier: Apache-2.0
#include "decoding_error.h"

#include <trellant/model/timeline_json.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace trellant {
namespace {

using test::decodingError;

std::int64_t integerOf(const std::string& text) {
    return decodeJson<std::int64_t>(text);
}
double doubleOf(const std::string& text) {
    return decodeJson<double>(text);
}

constexpr const char* notWhole = "the number is not whole";
constexpr const char* outOfRange = "the number is out of range";

TEST(JsonInteger, AnyFormOfAWholeNumberIsTaken) {
    EXPECT_EQ(integerOf("1"), 1);
    EXPECT_EQ(integerOf("1.0"), 1);
    EXPECT_EQ(integerOf("1e0"), 1);
    EXPECT_EQ(integerOf("1E+0"), 1);
    EXPECT_EQ(integerOf("10e-1"), 1);
    EXPECT_EQ(integerOf("0.01e2"), 1);
    EXPECT_EQ(integerOf("1200e-2"), 12);
    EXPECT_EQ(integerOf("-1.5e1"), -15);
    EXPECT_EQ(integerOf("1203.4500e2"), 120345);
    EXPECT_EQ(integerOf("100.000"), 100);
}

TEST(JsonInteger, EveryZeroIsZero) {
    for (const char* text :
         {"0", "-0", "0.0", "-0.000", "0e999999999999999999999", "0.0e-999999999999999999999"}) {
        EXPECT_EQ(integerOf(text), 0) << text;
    }
}

TEST(JsonInteger, TheExtremesAreExactInEveryForm) {
    EXPECT_EQ(integerOf("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(integerOf("9223372036854775807.0"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(integerOf("9.223372036854775807e18"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(integerOf("92233720368547758070e-1"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(integerOf("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(integerOf("-9223372036854775808.0"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(integerOf("9007199254740993.0"), 9007199254740993);
    EXPECT_EQ(integerOf("1e18"), 1000000000000000000);
}

TEST(JsonInteger, OneBeyondTheExtremesFails) {
    for (const char* text :
         {"9223372036854775808", "9223372036854775808.0", "9.223372036854775808e18",
          "18446744073709551615", "18446744073709551616", "-9223372036854775809",
          "-9223372036854775809.0", "1e19", "10000000000000000000", "1e400",
          "1e999999999999999999999999", "-123456789012345678901234567890"}) {
        EXPECT_EQ(decodingError<std::int64_t>(text), outOfRange) << text;
    }
}

TEST(JsonInteger, FractionsFail) {
    for (const char* text :
         {"1.5", "0.1", "1e-1", "-0.5", "9223372036854775807.5", "12e-2", "1e-400",
          "1.00000000000000000000000000000000001", "1e-999999999999999999999999"}) {
        EXPECT_EQ(decodingError<std::int64_t>(text), notWhole) << text;
    }
}

TEST(JsonInteger, LongTextsAreReadExactly) {
    EXPECT_EQ(integerOf("7." + std::string(100000, '0')), 7);
    EXPECT_EQ(integerOf("7" + std::string(1000, '0') + "e-1000"), 7);
    EXPECT_EQ(integerOf("0." + std::string(1000, '0') + "7e1001"), 7);
    EXPECT_EQ(decodingError<std::int64_t>("7." + std::string(100000, '0') + "1"), notWhole);
}

TEST(JsonInteger, OtherTypesFail) {
    EXPECT_EQ(decodingError<std::int64_t>(R"("1")"), "expected an integer, found a string");
    EXPECT_EQ(decodingError<std::int64_t>("true"), "expected an integer, found a boolean");
    EXPECT_EQ(decodingError<std::int64_t>("null"), "expected an integer, found null");
    EXPECT_EQ(decodingError<std::int64_t>("[1]"), "expected an integer, found an array");
    EXPECT_EQ(decodingError<std::int64_t>("{}"), "expected an integer, found an object");
}

TEST(JsonDouble, AnyNumberIsTaken) {
    EXPECT_EQ(doubleOf("1"), 1.0);
    EXPECT_EQ(doubleOf("-2"), -2.0);
    EXPECT_EQ(doubleOf("0.05"), 0.05);
    EXPECT_EQ(doubleOf("1e-07"), 1e-7);
    EXPECT_EQ(doubleOf("1e+22"), 1e22);
    EXPECT_EQ(doubleOf("18446744073709551615"), 18446744073709551615.0);
    EXPECT_EQ(doubleOf("123456789012345678901234567890"), 123456789012345678901234567890.0);
    EXPECT_EQ(doubleOf("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(doubleOf("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(doubleOf("5e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(JsonDouble, MinusZeroKeepsItsSign) {
    EXPECT_TRUE(std::signbit(doubleOf("-0")));
    EXPECT_TRUE(std::signbit(doubleOf("-0.0")));
    EXPECT_FALSE(std::signbit(doubleOf("0")));
}

TEST(JsonDouble, WhatIsTooSmallIsZero) {
    EXPECT_EQ(doubleOf("1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(doubleOf("-1e-400")));
    EXPECT_EQ(doubleOf("0." + std::string(500, '0') + "1"), 0.0);
}

TEST(JsonDouble, WhatIsTooLargeFails) {
    EXPECT_EQ(decodingError<double>("1e400"), outOfRange);
    EXPECT_EQ(decodingError<double>("-1e400"), outOfRange);
    EXPECT_EQ(decodingError<double>("1" + std::string(400, '0')), outOfRange);
    EXPECT_EQ(decodingError<double>("0.0001e999999999999999999999"), outOfRange);
}

// The largest double lies between 1.7e308 and 1.8e308: 309 digits before the point.
TEST(JsonDouble, LongTextsWithoutAnExponentAreReadUpToTheLargestDouble) {
    EXPECT_EQ(doubleOf("1" + std::string(308, '0')), 1e308);
    EXPECT_EQ(doubleOf("-17" + std::string(307, '0') + ".5"), -1.7e308);
    EXPECT_EQ(doubleOf("0." + std::string(307, '0') + "1"), 1e-308);
    for (const std::string& text :
         {"18" + std::string(307, '0'), "1" + std::string(309, '0'), std::string(310, '9')}) {
        EXPECT_EQ(decodingError<double>(text), outOfRange) << text.size();
        EXPECT_EQ(decodingError<double>("-" + text + ".5"), outOfRange) << text.size();
    }
}

TEST(JsonDouble, OtherTypesFail) {
    EXPECT_EQ(decodingError<double>(R"("1.5")"), "expected a number, found a string");
    EXPECT_EQ(decodingError<double>("false"), "expected a number, found a boolean");
    EXPECT_EQ(decodingError<double>("null"), "expected a number, found null");
}

TEST(JsonNumber, FormsOutsideTheGrammarFail) {
    for (const char* text : {"01", "+1", "1.", ".5", "1e", "0x10", "NaN", "Infinity", "-", "1_0"}) {
        EXPECT_TRUE(decodingError<double>(text).starts_with("syntax error at line 1, column "))
            << text;
    }
}

}  // namespace
}  // namespace trellant
