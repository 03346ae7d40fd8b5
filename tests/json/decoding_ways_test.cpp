// SPDX-License-Identifier: Apache-2.0
// The quick way of decoding takes a text exactly when the explaining way does, and gives the same.
#include "both_ways.h"
#include "mutated_text.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace trellant {

namespace {

using namespace std::string_view_literals;
using test::takenBothWays;

enum class Colour { red, green };

struct Part {
    std::string id;
    std::optional<bool> isLast;
    bool operator==(const Part&) const = default;
};

/// A record with a value of every kind but a variant and a pair.
struct Sample {
    std::string name;
    std::int64_t count = 0;
    double level = 0;
    bool isOpen = false;
    Colour colour = Colour::red;
    std::optional<std::string> note;
    std::vector<double> values;
    std::map<std::string, std::string> entries;
    std::vector<Part> parts;
    bool operator==(const Sample&) const = default;
};

}  // namespace

template <>
struct EnumNames<Colour> {
    static constexpr std::array<std::string_view, 2> names{"red", "green"};
};

template <>
struct RecordFields<Part> {
    static constexpr auto fields =
        std::tuple(field("id", &Part::id), field("isLast", &Part::isLast));
};

template <>
struct RecordFields<Sample> {
    static constexpr auto fields =
        std::tuple(field("name", &Sample::name), field("count", &Sample::count),
                   field("level", &Sample::level), field("isOpen", &Sample::isOpen),
                   field("colour", &Sample::colour), field("note", &Sample::note),
                   field("values", &Sample::values), field("entries", &Sample::entries),
                   field("parts", &Sample::parts));
};

template <>
struct RecordCheck<Sample> {
    static void check(const Sample& sample) {
        if (sample.count == 13) {
            throw std::runtime_error("thirteen");
        }
    }
};

namespace {

constexpr std::string_view sampleJson =
    "{\"name\":\"a \\\"b\\\" \\\\ \\u00fc \\ud83c\\udfb5 \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8E\xB5\","
    "\"count\":-12,\"level\":1.5e1,\"isOpen\":true,\"colour\":\"green\",\"note\":null,"
    "\"values\":[0,-0,0.25,1E+2,9007199254740993,18446744073709551616],"
    "\"entries\":{\"x\\/\":\"1\",\"y\":\"2\",\"x/"
    "\":\"3\"},\"unknown\":{\"a\":[[],{},[{\"b\":null}],"
    "-1.5e-7,\"\\n\"],\"a\":false},\"parts\":[{\"id\":\"p\",\"isLast\":false,\"id\":\"q\"}, "
    "{\"isLast\" : null,\"id\":\"\"}]}";

/// `value` under an unknown key.
std::string ignored(std::string_view value) {
    return std::string(R"({"unknown":)")
        .append(value)
        .append(R"(,"name":"","count":1.0,"level":1,"isOpen":true,"colour":"red","values":[],)")
        .append(R"("entries":{},"parts":[]})");
}

/// Calls `use` with each text of `length` pieces.
template <class Use>
void forEachSequence(const std::vector<std::string_view>& pieces, int length, Use use) {
    std::size_t count = 1;
    for (int index = 0; index < length; ++index) {
        count *= pieces.size();
    }
    for (std::size_t number = 0; number < count; ++number) {
        std::string text;
        for (std::size_t rest = number, index = 0; index < static_cast<std::size_t>(length);
             ++index, rest /= pieces.size()) {
            text += pieces[rest % pieces.size()];
        }
        use(text);
    }
}

TEST(DecodingWays, TakeTheSample) {
    EXPECT_TRUE(takenBothWays<Sample>(sampleJson));
    const auto sample = decodeJson<Sample>(sampleJson);
    EXPECT_EQ(sample.name,
              "a \"b\" \\ \xC3\xBC \xF0\x9F\x8E\xB5 \xC3\xBC \xE2\x82\xAC "
              "\xF0\x9F\x8E\xB5");
    EXPECT_EQ(sample.count, -12);
    EXPECT_EQ(sample.values, (std::vector<double>{0, 0, 0.25, 100, 9007199254740992, 0x1p64}));
    EXPECT_EQ(sample.entries, (std::map<std::string, std::string>{{"x/", "3"}, {"y", "2"}}));
    EXPECT_EQ(sample.parts, (std::vector<Part>{{"q", false}, {"", std::nullopt}}));
}

TEST(DecodingWays, AgreeOnEveryTruncation) {
    for (std::size_t length = 0; length < sampleJson.size(); ++length) {
        EXPECT_FALSE(takenBothWays<Sample>(sampleJson.substr(0, length)));
    }
}

TEST(DecodingWays, AgreeWhereverTheTextIsLookedAtInPieces) {
    for (std::size_t blanks = 0; blanks <= 1100; ++blanks) {
        EXPECT_TRUE(takenBothWays<Sample>(std::string(blanks, '\n').append(sampleJson)));
    }
}

TEST(DecodingWays, AgreeOnSeededDamage) {
    std::mt19937_64 random(20'240'611);
    int taken = 0;
    for (int count = 0; count < 20'000; ++count) {
        taken += takenBothWays<Sample>(test::mutated(std::string(sampleJson), random)) ? 1 : 0;
    }
    // Damage inside texts, numbers and blanks often leaves JSON.
    EXPECT_GT(taken, 1'000);
    EXPECT_LT(taken, 19'000);
}

TEST(DecodingWays, AgreeOnEveryShortSequenceOfTokens) {
    const std::vector<std::string_view> tokens{"{", "}", "[", "]", ":", ",", "\"a\"", "1"};
    int taken = 0;
    for (int length = 0; length <= 4; ++length) {
        forEachSequence(tokens, length, [&](const std::string& text) {
            taken += takenBothWays<Sample>(ignored(text)) ? 1 : 0;
        });
    }
    // One token: "a" and 1. Two: {} and []. Three: [x] of the four. Four: none of these, since
    // {"a":x} takes five.
    EXPECT_EQ(taken, 2 + 2 + 4 + 4);
}

TEST(DecodingWays, AgreeOnEveryShortNumber) {
    const std::vector<std::string_view> pieces{"0", "1", "-", "+", ".", "e", "E"};
    for (int length = 1; length <= 5; ++length) {
        forEachSequence(pieces, length, [&](const std::string& text) {
            takenBothWays<std::int64_t>(text);
            takenBothWays<double>(text);
        });
    }
}

TEST(DecodingWays, AgreeOnNumbersAtTheirBounds) {
    for (const std::string_view number : {"9223372036854775807"sv,
                                          "9223372036854775808"sv,
                                          "-9223372036854775808"sv,
                                          "-9223372036854775809"sv,
                                          "18446744073709551615"sv,
                                          "18446744073709551616"sv,
                                          "-0"sv,
                                          "-0.0"sv,
                                          "-0e5"sv,
                                          "1e18"sv,
                                          "1e19"sv,
                                          "9223372036854775807.0"sv,
                                          "92233720368547758070e-1"sv,
                                          "1e999"sv,
                                          "-1e999"sv,
                                          "1e-999"sv,
                                          "1e-9999999999999999999"sv,
                                          "1e9999999999999999999"sv,
                                          "0.1"sv,
                                          "5e-324"sv,
                                          "2e-324"sv,
                                          "1.7976931348623159e308"sv}) {
        takenBothWays<std::int64_t>(number);
        takenBothWays<double>(number);
        EXPECT_TRUE(takenBothWays<Sample>(ignored(number)));
    }
}

TEST(DecodingWays, KeepTheSignOfZero) {
    for (const std::string_view zero : {"-0"sv, "-0.0"sv, "-0e1"sv, "-1e-999"sv}) {
        EXPECT_TRUE(std::signbit(test::scanned<double>(zero, RecordChecks::none).value)) << zero;
        EXPECT_TRUE(std::signbit(test::parsed<double>(zero, RecordChecks::none).value)) << zero;
    }
    EXPECT_FALSE(std::signbit(test::scanned<double>("0", RecordChecks::none).value));
}

TEST(DecodingWays, AgreeOnEveryByteAndPairOfBytesInAString) {
    int taken = 0;
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::array<char, 4> text{'"', static_cast<char>(first), static_cast<char>(second),
                                           '"'};
            taken += takenBothWays<std::string>({text.data(), text.size()}) ? 1 : 0;
        }
    }
    // Two of the 94 plain ASCII bytes, one of the 8 short escapes, one of the 30 * 64 scalars of
    // two bytes.
    EXPECT_EQ(taken, 94 * 94 + 8 + 30 * 64);
}

TEST(DecodingWays, AgreeOnEveryHeadOfALongerSequence) {
    int taken = 0;
    for (unsigned first = 0xE0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            for (const std::string_view rest : {"\x80"sv, "\xBF\xBF"sv, "\x7F\x80"sv}) {
                std::string text = "\"";
                text += static_cast<char>(first);
                text += static_cast<char>(second);
                taken += takenBothWays<std::string>(text.append(rest).append("\"")) ? 1 : 0;
            }
        }
    }
    // Three bytes: 16 leads with 64 seconds each, but 32 after E0 and after ED. Four bytes: 48
    // after F0, 64 after F1 to F3, 16 after F4.
    EXPECT_EQ(taken, 14 * 64 + 2 * 32 + 48 + 3 * 64 + 16);
}

TEST(DecodingWays, AgreeOnEveryEscapedUnit) {
    constexpr std::string_view digits = "0123456789abcdef";
    int taken = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        std::string text = "\"\\u";
        for (const unsigned shift : {12U, 8U, 4U, 0U}) {
            text += digits[unit >> shift & 0xFU];
        }
        taken += takenBothWays<std::string>(text + "\"") ? 1 : 0;
    }
    EXPECT_EQ(taken, 0x10000 - 0x800);
}

TEST(DecodingWays, AgreeOnPairsOfEscapedUnits) {
    const std::vector<std::string_view> units{R"(\u0041)", R"(\uD7ff)", R"(\uD800)", R"(\udBFF)",
                                              R"(\uDc00)", R"(\uDfff)", R"(\uE000)", R"(\u)",
                                              R"(\n)",     "x",         R"(\uD80)",  R"(\U0041)",
                                              R"(\uD80g)", R"(\)",      R"(\u00`0)"};
    for (int length = 1; length <= 3; ++length) {
        forEachSequence(units, length, [](const std::string& text) {
            takenBothWays<std::string>("\"" + text + "\"");
        });
    }
    EXPECT_EQ(test::scanned<std::string>(R"("\uD800\uDc00\udBFF\uDfff")", RecordChecks::none).value,
              "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(DecodingWays, AgreeOnWhatSurroundsADocument) {
    const std::vector<std::string_view> pieces{"\xEF\xBB\xBF", "\xEF\xBB", " ",       "\r\n",
                                               "\t",           "true",     "\0"sv,    "\v",
                                               "\x0c",         "x",        "\xC2\xA0"};
    for (int length = 0; length <= 3; ++length) {
        forEachSequence(pieces, length, [](const std::string& text) { takenBothWays<bool>(text); });
    }
    EXPECT_TRUE(test::scanned<bool>("\xEF\xBB\xBF true\r\n", RecordChecks::none).isTaken);
    EXPECT_FALSE(test::scanned<bool>("true true", RecordChecks::none).isTaken);
}

TEST(DecodingWays, AgreeOnWhatOtherDialectsAllow) {
    for (const std::string_view text :
         {"[1,]"sv,  "{\"a\":1,}"sv, "{a:1}"sv,       "{'a':1}"sv, "[1 2]"sv,    "/*c*/[]"sv,
          "[]//c"sv, "[\"a\nb\"]"sv, "[\"\\x41\"]"sv, "[TRUE]"sv,  "[1"sv,       "{\"a\""sv,
          "\"abc"sv, "]"sv,          "[,]"sv,         "{,}"sv,     "{\"a\":}"sv, "{\"a\" 1}"sv,
          "[1}"sv,   "{\"a\":1]"sv,  "[Infinity]"sv,  "[NaN]"sv,   "nul"sv,      "truex"sv,
          "0x10"sv,  "1_000"sv,      "\"\t\""sv}) {
        EXPECT_FALSE(takenBothWays<Sample>(text)) << text;
        EXPECT_FALSE(takenBothWays<Sample>(ignored(text))) << text;
    }
}

TEST(DecodingWays, AgreeOnDepthUnderAnUnknownKey) {
    constexpr std::size_t levels = 100'000;
    const std::string opened(levels, '[');
    const std::string closed(levels, ']');
    EXPECT_TRUE(takenBothWays<Sample>(ignored(opened + closed)));
    EXPECT_FALSE(takenBothWays<Sample>(ignored(opened + closed + "]")));
    EXPECT_FALSE(takenBothWays<Sample>(ignored(opened + "}" + closed)));
    EXPECT_FALSE(takenBothWays<Sample>(opened));
}

TEST(DecodingWays, AgreeOnLongStringsAndKeys) {
    const std::string plain(5'000, 'x');
    EXPECT_TRUE(takenBothWays<std::string>("\"" + plain + "\""));
    EXPECT_TRUE(takenBothWays<std::string>("\"" + plain + "\\n" + plain + "\\u00e9\""));
    EXPECT_FALSE(takenBothWays<std::string>("\"" + plain + "\x1f\""));
    EXPECT_FALSE(takenBothWays<std::string>("\"" + plain));
    EXPECT_TRUE(takenBothWays<Sample>(ignored("{\"" + plain + "\":\"" + plain + "\"}")));
}

TEST(DecodingWays, AgreeOnWhatACheckThrows) {
    constexpr std::string_view thirteen =
        R"({"name":"","count":13,"level":1,"isOpen":true,"colour":"red","values":[],"entries":{},)"
        R"("parts":[]})";
    EXPECT_FALSE(takenBothWays<Sample>(thirteen));
    EXPECT_EQ(test::scanned<Sample>(thirteen, RecordChecks::validate).thrown, "thirteen");
    EXPECT_TRUE(takenBothWays<Sample>(thirteen, RecordChecks::none));
}

/// `count` ones in brackets.
std::string ones(std::size_t count) {
    std::string text = "[";
    for (std::size_t index = 0; index < count; ++index) {
        text += "1,";
    }
    text.back() = ']';
    return text;
}

TEST(DecodingWays, ALongArrayGetsItsRoomAtOnce) {
    // The first 256 elements take two bytes each, as all do, so the guess is exact. Without one,
    // the room doubles beyond the 100,000.
    const auto values = test::scanned<std::vector<double>>(ones(100'000), RecordChecks::none);
    ASSERT_TRUE(values.isTaken);
    EXPECT_EQ(values.value.size(), 100'000U);
    EXPECT_EQ(values.value.capacity(), 100'000U);
}

TEST(DecodingWays, ArraysWithinArraysAreNotGuessedAt) {
    // The first has room for 512, to which 300 elements double it: not for the thousands that the
    // text behind it could hold.
    const std::string row = ones(300);
    std::string text = "[" + row;
    for (int index = 0; index < 10; ++index) {
        text += "," + row;
    }
    using Rows = std::vector<std::vector<double>>;
    const auto rows = test::scanned<Rows>(text + "]", RecordChecks::none);
    ASSERT_TRUE(rows.isTaken);
    ASSERT_EQ(rows.value.size(), 11U);
    EXPECT_LE(rows.value.front().capacity(), 600U);
}

TEST(DecodingWays, TheRoomForAnArrayIsBoundedWhateverFollowsIt) {
    // A megabyte of text behind the array counts as half a million elements more: no guess goes
    // beyond 1,024 times what is there.
    const std::string text = R"({"values":)" + ones(300) + R"(,"unknown":")" +
                             std::string(1'000'000, 'x') +
                             R"(","name":"","count":1,"level":1,"isOpen":true,"colour":"red",)"
                             R"("entries":{},"parts":[]})";
    const auto sample = test::scanned<Sample>(text, RecordChecks::none);
    ASSERT_TRUE(sample.isTaken);
    EXPECT_EQ(sample.value.values, std::vector<double>(300, 1.0));
    EXPECT_EQ(sample.value.values.capacity(), 262'144U);
}

TEST(DecodingWays, TheExplainingWayBeginsWithAnEmptyValue) {
    // The quick way has filled the list when it meets the fault.
    EXPECT_EQ(test::decoded<std::vector<double>>("[1,2,\"\"]", RecordChecks::none).error,
              "[2]: expected a number, found a string");
}

}  // namespace

}  // namespace trellant
