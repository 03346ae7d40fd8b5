// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_writer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace trellant {
namespace {

using namespace std::string_view_literals;

template <class Write>
std::string written(Write&& write) {
    StringSink sink;
    JsonWriter writer(sink);
    write(writer);
    writer.flush();
    return sink.text;
}

std::string stringJson(std::string_view text) {
    return written([&](JsonWriter& writer) { writer.string(text); });
}

std::string numberJson(double value) {
    return written([&](JsonWriter& writer) { writer.number(value); });
}

TEST(JsonWriter, SeparatesMembersAndElements) {
    EXPECT_EQ(written([](JsonWriter& writer) {
                  writer.beginObject();
                  writer.plainKey("a");
                  writer.beginArray();
                  writer.integer(1);
                  writer.boolean(true);
                  writer.beginObject();
                  writer.endObject();
                  writer.beginArray();
                  writer.endArray();
                  writer.string("x");
                  writer.endArray();
                  writer.plainKey("b");
                  writer.boolean(false);
                  writer.key("c/d");
                  writer.number(0.5);
                  writer.endObject();
              }),
              R"({"a":[1,true,{},[],"x"],"b":false,"c\/d":0.5})");
}

TEST(JsonWriter, ShortEscapes) {
    EXPECT_EQ(stringJson("\"\\/\b\f\n\r\t"), R"("\"\\\/\b\f\n\r\t")");
}

TEST(JsonWriter, OtherControlCharactersInLowerCaseHex) {
    EXPECT_EQ(stringJson("\0\x01\x07\x0b\x0e\x1b\x1f"sv),
              R"("\u0000\u0001\u0007\u000b\u000e\u001b\u001f")");
}

TEST(JsonWriter, EverythingElseStaysAsItIs) {
    EXPECT_EQ(stringJson(" '\x7f\xC3\xBC\xE2\x80\xA8\xF0\x9F\x8E\xB5<>&"),
              "\" '\x7f\xC3\xBC\xE2\x80\xA8\xF0\x9F\x8E\xB5<>&\"");
    EXPECT_EQ(stringJson(""), R"("")");
}

TEST(JsonWriter, EscapesAreFoundAtEveryPosition) {
    for (std::size_t at = 0; at < 24; ++at) {
        const std::string before(at, 'x');
        const std::string after(24 - at, '\xBF');
        const auto around = [&](std::string_view middle) {
            return std::string(before).append(middle).append(after);
        };
        EXPECT_EQ(stringJson(around("\"")), "\"" + around("\\\"") + "\"");
        EXPECT_EQ(stringJson(around("\\")), "\"" + around("\\\\") + "\"");
        EXPECT_EQ(stringJson(around("/")), "\"" + around("\\/") + "\"");
        EXPECT_EQ(stringJson(around("\x1f")), "\"" + around("\\u001f") + "\"");
        EXPECT_EQ(stringJson(around(std::string_view("\0", 1))), "\"" + around("\\u0000") + "\"");
        EXPECT_EQ(stringJson(around("\x20!.0[]\x7f\x80\xa0\xff")),
                  "\"" + around("\x20!.0[]\x7f\x80\xa0\xff") + "\"");
    }
}

TEST(JsonWriter, IntegersAtTheirExtremes) {
    EXPECT_EQ(written([](JsonWriter& writer) {
                  writer.beginArray();
                  writer.integer(std::numeric_limits<std::int64_t>::min());
                  writer.integer(0);
                  writer.integer(std::numeric_limits<std::int64_t>::max());
                  writer.endArray();
              }),
              "[-9223372036854775808,0,9223372036854775807]");
}

TEST(JsonWriter, WholeDoublesHaveNoPoint) {
    EXPECT_EQ(numberJson(1.0), "1");
    EXPECT_EQ(numberJson(-3.0), "-3");
    EXPECT_EQ(numberJson(0.0), "0");
    EXPECT_EQ(numberJson(100000.0), "100000");
    EXPECT_EQ(numberJson(9007199254740991.0), "9007199254740991");
    EXPECT_EQ(numberJson(-9007199254740991.0), "-9007199254740991");
    EXPECT_EQ(numberJson(9007199254740992.0), "9007199254740992");
    EXPECT_EQ(numberJson(9007199254740994.0), "9007199254740994");
}

TEST(JsonWriter, NumbersHaveTheSameTextOnTheirOwn) {
    std::array<char, JsonWriter::longestNumber> room{};
    EXPECT_EQ(JsonWriter::writeNumber(-0.0, room), "-0");
    EXPECT_EQ(JsonWriter::writeNumber(48000, room), "48000");
    EXPECT_EQ(JsonWriter::writeNumber(0.25, room), "0.25");
    EXPECT_EQ(JsonWriter::writeNumber(-2.2250738585072014e-308, room), "-2.2250738585072014e-308");
}

TEST(JsonWriter, EscapedTextsStayAsTheyAre) {
    EXPECT_EQ(written([](JsonWriter& writer) {
                  writer.beginArray();
                  writer.escapedString("1\\/480");
                  writer.escapedString("");
                  writer.endArray();
              }),
              R"(["1\/480",""])");
}

TEST(JsonWriter, StringsAroundTheLengthOfTheSmallBufferAreWhole) {
    for (std::size_t length = JsonWriter::shortBufferSize - 3;
         length <= JsonWriter::shortBufferSize + 1; ++length) {
        StringSink sink;
        JsonWriter writer(sink, JsonWriter::shortBufferSize);
        const std::string text(length, 'x');
        writer.string(text);
        writer.flush();
        EXPECT_EQ(sink.text, "\"" + text + "\"");
    }
}

TEST(JsonWriter, MinusZeroKeepsItsSign) {
    EXPECT_EQ(numberJson(-0.0), "-0");
}

TEST(JsonWriter, DoublesAreTheShortestTextThatReadsBack) {
    EXPECT_EQ(numberJson(0.05), "0.05");
    EXPECT_EQ(numberJson(0.15), "0.15");
    EXPECT_EQ(numberJson(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(numberJson(-1.5), "-1.5");
    EXPECT_EQ(numberJson(1e-7), "1e-07");
    EXPECT_EQ(numberJson(1e22), "1e+22");
    EXPECT_EQ(numberJson(1e300), "1e+300");
    EXPECT_EQ(numberJson(5e-324), "5e-324");
    EXPECT_EQ(numberJson(-2.2250738585072014e-308), "-2.2250738585072014e-308");
}

TEST(JsonWriter, PlainDigitsFromOneTenThousandthToBelowTenToTheSixteenth) {
    EXPECT_EQ(numberJson(0.0001), "0.0001");
    EXPECT_EQ(numberJson(-0.00025), "-0.00025");
    EXPECT_EQ(numberJson(0.00001), "1e-05");
    EXPECT_EQ(numberJson(2500000.5), "2500000.5");
    EXPECT_EQ(numberJson(1e15), "1000000000000000");
    EXPECT_EQ(numberJson(1e16), "1e+16");
}

TEST(JsonWriter, EveryDoubleReadsBackTheSame) {
    std::mt19937_64 engine(7);
    for (int round = 0; round < 20000; ++round) {
        const std::uint64_t bits = engine();
        double value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            ASSERT_EQ(std::strtod(numberJson(value).c_str(), nullptr), value);
        }
    }
}

/// Keeps the pieces apart.
class PieceSink final : public JsonSink {
  public:
    void write(std::string_view bytes) override { pieces.emplace_back(bytes); }
    std::vector<std::string> pieces;
};

TEST(JsonWriter, GathersBytesIntoPiecesOfTheBufferSize) {
    PieceSink sink;
    JsonWriter writer(sink);
    std::string expected = "[";
    writer.beginArray();
    for (int index = 0; index < 20000; ++index) {
        writer.integer(index);
        writer.string("a\nb");
        expected += (index == 0 ? "" : ",") + std::to_string(index) + R"(,"a\nb")";
    }
    writer.endArray();
    expected += "]";
    EXPECT_GE(sink.pieces.size(), 2U);
    writer.flush();
    std::string joined;
    for (const std::string& piece : sink.pieces) {
        EXPECT_LE(piece.size(), JsonWriter::bufferSize);
        joined += piece;
    }
    EXPECT_EQ(joined, expected);
}

TEST(JsonWriter, StringsLongerThanTheBufferStayWhole) {
    const std::string text(JsonWriter::bufferSize * 3 + 17, 'x');
    EXPECT_EQ(stringJson(text + "\n" + text), "\"" + text + "\\n" + text + "\"");
    const std::string exact(JsonWriter::bufferSize, 'y');
    EXPECT_EQ(stringJson(exact), "\"" + exact + "\"");
}

TEST(JsonWriter, NothingGoesOutWithoutFlush) {
    PieceSink sink;
    {
        JsonWriter writer(sink);
        writer.string("kept back");
    }
    EXPECT_TRUE(sink.pieces.empty());
}

TEST(JsonWriter, FlushOfNothingCallsNobody) {
    PieceSink sink;
    JsonWriter writer(sink);
    writer.flush();
    EXPECT_TRUE(sink.pieces.empty());
}

TEST(JsonWriter, AsciiStringsEscapeAllElse) {
    StringSink sink;
    JsonWriter writer(sink);
    writer.asciiString("a/\"\\\n\x01\x7f\u00e9\u202e\U0001F600\xFF");
    writer.flush();
    EXPECT_EQ(sink.text, R"("a\/\"\\\n\u0001\u007f\u00e9\u202e\ud83d\ude00\ufffd")");
}

TEST(JsonWriter, DocumentsMayFollowEachOtherOnLines) {
    StringSink sink;
    JsonWriter writer(sink);
    for (int i = 0; i < 2; ++i) {
        writer.beginObject();
        writer.endObject();
        writer.endLine();
    }
    writer.flush();
    EXPECT_EQ(sink.text, "{}\n{}\n");
}

class RefusingSink final : public JsonSink {
  public:
    void write(std::string_view /*bytes*/) override { throw std::runtime_error("refused"); }
};

TEST(JsonWriter, TheSinksErrorLeavesTheCall) {
    RefusingSink sink;
    JsonWriter writer(sink);
    writer.boolean(true);
    EXPECT_THROW(writer.flush(), std::runtime_error);
}

TEST(JsonWriterDeathTest, NumbersThatAreNotFiniteStopTheProcess) {
    EXPECT_DEATH(
        (void)numberJson(std::nan("")),
        testing::Eq("precondition failed: JSON has no form for numbers that are not finite\n"));
}

}  // namespace
}  // namespace trellant
