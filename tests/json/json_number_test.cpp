// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_decode.h>
#include <trellant/json/json_writer.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <trellant_testing/comma_locale.h>

namespace trellant {
namespace {

std::uint64_t bitsOf(const std::string& text) {
    return std::bit_cast<std::uint64_t>(decodeJson<double>(text));
}

std::string refusalOf(const std::string& text) {
    try {
        return "decoded as " + std::to_string(decodeJson<double>(text));
    } catch (const JsonDecodingError& error) {
        return error.what();
    }
}

TEST(JsonNumber, DoublesAreTheNearestOnes) {
    EXPECT_EQ(decodeJson<double>("2.75"), 2.75);
    EXPECT_EQ(decodeJson<double>("-275E-2"), -2.75);
    EXPECT_EQ(decodeJson<double>("0.0000275e+5"), 2.75);
    EXPECT_EQ(bitsOf("0.1"), 0x3FB999999999999AU);
    // Halfway between 2^53 and its successor 2^53 + 2, to the even one; and a little more.
    EXPECT_EQ(decodeJson<double>("9007199254740993.0"), 9007199254740992.0);
    EXPECT_EQ(decodeJson<double>("9007199254740993.0" + std::string(900, '0') + "1"),
              9007199254740994.0);
}

TEST(JsonNumber, TheEndsOfTheDoublesAreExact) {
    EXPECT_EQ(bitsOf("1.7976931348623157e308"), 0x7FEFFFFFFFFFFFFFU);
    EXPECT_EQ(bitsOf("2.2250738585072014e-308"), 0x0010000000000000U);
    // The smallest is 2^-1074, about 4.94e-324: three quarters of it are nearer to it than to zero.
    EXPECT_EQ(bitsOf("3.8e-324"), 1U);
    EXPECT_EQ(bitsOf("-3.8e-324"), 0x8000000000000001U);
}

TEST(JsonNumber, WhatIsTooSmallIsAZeroOfItsSign) {
    EXPECT_EQ(bitsOf("1e-400"), 0U);
    EXPECT_EQ(bitsOf("-1e-400"), 0x8000000000000000U);
    EXPECT_EQ(bitsOf("-0.0"), 0x8000000000000000U);
    EXPECT_EQ(bitsOf("1e-99999999999999999999"), 0U);
}

TEST(JsonNumber, WhatIsTooLargeIsRefused) {
    EXPECT_EQ(refusalOf("1e309"), "the number is out of range");
    EXPECT_EQ(refusalOf("-1e309"), "the number is out of range");
    EXPECT_EQ(refusalOf("1.5e99999999999999999999"), "the number is out of range");
}

TEST(JsonNumber, ExponentsAndLongTextsCancelOut) {
    EXPECT_EQ(decodeJson<double>("0." + std::string(5000, '0') + "275e5001"), 2.75);
    EXPECT_EQ(decodeJson<double>("275" + std::string(5000, '0') + "e-5002"), 2.75);
}

TEST(JsonNumber, SeventeenDigitsGiveEveryDoubleBack) {
    std::mt19937_64 random(2);
    for (int round = 0; round < 20'000; ++round) {
        const auto value = std::bit_cast<double>(random());
        if (std::isfinite(value)) {
            std::array<char, 40> text{};
            std::snprintf(text.data(), text.size(), "%.16e", value);
            ASSERT_EQ(bitsOf(text.data()), std::bit_cast<std::uint64_t>(value)) << text.data();
        }
    }
}

TEST(JsonNumber, AHostWithADecimalCommaReadsAndWritesThePoint) {
    const testing::CommaLocale comma;
    ASSERT_EQ(std::strtod("2,75", nullptr), 2.75);
    EXPECT_EQ(decodeJson<double>("2.75"), 2.75);
    EXPECT_EQ(decodeJson<double>("27.5e-1"), 2.75);
    EXPECT_EQ(decodeJson<std::int64_t>("2.750e3"), 2750);
    EXPECT_EQ(refusalOf("2,75"),
              "syntax error at line 1, column 2: unexpected ','; expected end of input");
    StringSink sink;
    JsonWriter writer(sink);
    writer.number(2.75);
    writer.flush();
    EXPECT_EQ(sink.text, "2.75");
}

}  // namespace
}  // namespace trellant
