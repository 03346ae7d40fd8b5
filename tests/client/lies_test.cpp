// SPDX-License-Identifier: Apache-2.0
// Answers that are made to harm whoever reads them. Each gives a result or names what is wrong.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <string>

namespace trellant::testing {

namespace {

using namespace std::string_literals;

constexpr std::size_t levels = 100'000;

/// A good result with one more member, first of all.
std::string resultWith(const std::string& member) {
    return resultText(timelineText("Reel")).insert(1, member + ",");
}

class ClientLies : public ClientTest {
  protected:
    void expectInvalid(const std::string& output, const std::string& reason) const {
        expectFault(act({.output = output}), InvalidResponse{reason});
    }
    void expectReel(const std::string& output) const {
        EXPECT_EQ(valueOf(act({.output = output})).timeline.compositionName, "Reel");
    }
};

TEST_F(ClientLies, AHundredThousandLevelsUnderAnUnknownKeyAreIgnored) {
    expectReel(resultWith("\"deep\":" + std::string(levels, '[') + "1" + std::string(levels, ']')));
    std::string objects;
    for (std::size_t level = 0; level < levels; ++level) {
        objects += R"({"":)";
    }
    expectReel(resultWith("\"deep\":" + objects + "1" + std::string(levels, '}')));
}

TEST_F(ClientLies, AHundredThousandLevelsThatAreNotClosedFail) {
    const auto outcome = outcomeOf(act({.output = R"({"deep":)" + std::string(levels, '[')}));
    ASSERT_TRUE(outcome.fault.has_value()) << outcome.description;
    // The place behind the 8 bytes before them.
    EXPECT_TRUE(
        outcome.description.starts_with("helper returned an invalid response: syntax error "
                                        "at line 1, column 100009: "))
        << outcome.description;
}

TEST_F(ClientLies, AHundredThousandLevelsInAKnownPlaceFail) {
    expectInvalid(std::string(levels, '['), "expected an object, found an array");
    expectInvalid(R"({"diagnostics":[)" + std::string(levels, '['),
                  "diagnostics[0]: expected a string, found an array");
}

TEST_F(ClientLies, HugeNumbersUnderAnUnknownKeyAreIgnored) {
    expectReel(resultWith(R"("a":1e999999,"b":-1e-999999,"c":1)" + std::string(10'000, '0')));
}

TEST_F(ClientLies, HugeNumbersInKnownPlacesAreNamed) {
    const std::string digits(10'000, '9');
    expectInvalid(resultText(timelineText("Reel"), "", digits),
                  "protocolVersion: the number is out of range");
    expectInvalid(resultText(timelineText("Reel"), "", "1e999999"),
                  "protocolVersion: the number is out of range");
    expectInvalid(resultText(timelineText("Reel"), "", "1e-999999"),
                  "protocolVersion: the number is not whole");
    expectInvalid(resultText(R"({"compositionLength":{"numerator":)" + digits),
                  "timeline.compositionLength.numerator: the number is out of range");
}

TEST_F(ClientLies, LongFormOfASmallNumberIsTheNumber) {
    expectReel(resultText(timelineText("Reel"), "", "1." + std::string(10'000, '0')));
}

TEST_F(ClientLies, BytesThatAreNotTextFail) {
    // The string begins after 17 bytes; the first byte that does not fit is at fault.
    for (const std::string& bytes : {"\xFF"s, "\xC0\xAF"s, "\x80"s}) {
        expectInvalid(R"({"diagnostics":[")" + bytes + "\"]}",
                      "syntax error at line 1, column 18: invalid string: ill-formed UTF-8 byte");
    }
    // A surrogate and a value beyond the last character are seen by their second byte.
    for (const std::string& bytes : {"\xED\xA0\x80"s, "\xF4\x90\x80\x80"s}) {
        expectInvalid(R"({"diagnostics":[")" + bytes + "\"]}",
                      "syntax error at line 1, column 19: invalid string: ill-formed UTF-8 byte");
    }
}

TEST_F(ClientLies, TheLastOfEqualKeysCounts) {
    std::string text = resultText(timelineText("Reel"));
    expectReel(text.insert(1, R"("protocolVersion":2,"timeline":)" + timelineText("first") + ","));
    expectInvalid(text.insert(text.size() - 1, R"(,"protocolVersion":2)"),
                  "protocol version mismatch");
}

TEST_F(ClientLies, NulByteFailsAndEscapedNulIsText) {
    const std::string whole = resultText(timelineText("Reel"));
    expectInvalid(whole + '\0', "syntax error at line 1, column " +
                                    std::to_string(whole.size() + 1) + ": NUL byte");
    expectInvalid("{\"\0\":1}"s, "syntax error at line 1, column 3: NUL byte");
    EXPECT_EQ(
        valueOf(act({.output = resultText(timelineText("a\\u0000b"))})).timeline.compositionName,
        "a\0b"s);
}

TEST_F(ClientLies, AnythingAfterTheResultFails) {
    const std::string whole = resultText(timelineText("Reel"));
    const std::string place =
        "syntax error at line 1, column " + std::to_string(whole.size() + 1) + ": ";
    expectInvalid(whole + "x", place + "invalid literal");
    expectInvalid(whole + "\xFE", place + "invalid literal");
    for (const std::string garbage : {"}", "]", ",", "1", "\"\"", "{}"}) {
        const auto outcome = outcomeOf(act({.output = whole + garbage}));
        EXPECT_TRUE(outcome.fault && std::holds_alternative<InvalidResponse>(*outcome.fault))
            << garbage << ": " << outcome.description;
    }
}

TEST_F(ClientLies, MessageIsShortHoweverLongTheNames) {
    const std::string name(1'000'000, 'n');
    const std::string shown = std::string(120, 'n') + "...";
    expectInvalid(R"({"embeddedMediaSHA256":{")" + name + R"(":1}})",
                  "embeddedMediaSHA256." + shown + ": expected a string, found a number");
    expectInvalid(
        resultText(R"({"events":[{"channelRole":")" + name),
        "syntax error at line 1, column " +
            std::to_string(resultText(R"({"events":[{"channelRole":")" + name).size() + 1) +
            ": invalid string: missing closing quote");
    expectInvalid(resultText(R"({"events":[{"channelRole":")" + name + "\""),
                  "timeline.events[0].channelRole: unknown value \"" + shown + "\"");
}

}  // namespace

}  // namespace trellant::testing
