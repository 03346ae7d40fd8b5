// SPDX-License-Identifier: Apache-2.0
// What a host's memory is worth to a worker: bytes in use at most, for each way to ask for more.
#include "client_fixture.h"
#include "host_program.h"

#include <cstdint>
#include <string>

namespace trellant::testing {

namespace {

constexpr std::uint64_t mebibyte = 1'048'576;

/// How a call ended and the most memory that it had in use, in bytes.
struct Weighed {
    std::uint64_t bytes = 0;
    std::string outcome{};
};

/// What the worker that repeats is told.
struct Answer {
    std::string head{};
    std::string unit{};
    std::uint64_t unitSize = 0;
    std::uint64_t count = 0;
    std::string tail{};
};

class ClientMemory : public ClientTest {
  protected:
    /// `parts` and `count` are for the worker that repeats.
    [[nodiscard]] Weighed weigh(const std::string& behaviour, std::uint64_t limit,
                                const std::string& parts = "", std::uint64_t count = 0) const {
        const std::string said =
            outputOfProgram({TRELLANT_WEIGHING_HOST, workers_.executable(behaviour),
                             std::to_string(limit), parts, std::to_string(count)});
        const std::size_t line = said.find('\n');
        if (said.starts_with("ended with ") || line == std::string::npos) {
            ADD_FAILURE() << said;
            return {};
        }
        Weighed weighed{std::stoull(said), said.substr(line + 1)};
        weighed.outcome.pop_back();
        return weighed;
    }

    /// Bytes in use for each byte of an answer of which the worker writes `unit` `count` times
    /// between `head` and `tail`; these are percent-encoded, as "%22" for quotes.
    [[nodiscard]] double weightOf(const Answer& answer, const std::string& outcome) const {
        const std::uint64_t size = answer.count * answer.unitSize;
        const Weighed weighed = weigh(
            "repeats", 2 * size, answer.head + "|" + answer.unit + "|" + answer.tail, answer.count);
        EXPECT_EQ(weighed.outcome, "helper returned an invalid response: " + outcome);
        const double weight = static_cast<double>(weighed.bytes) / static_cast<double>(size);
        RecordProperty("BytesForEachByte", std::to_string(weight));
        return weight;
    }
};

TEST_F(ClientMemory, EndlessOutputIsTakenUpToTheLimit) {
    // The text doubles its room as it grows, without a copy.
    constexpr std::uint64_t limit = 64 * mebibyte;
    const Weighed weighed = weigh("floods-output-without-end", limit);
    EXPECT_EQ(weighed.outcome, "helper returned an invalid response: longer than 67108864 bytes");
    EXPECT_GE(weighed.bytes, limit);
    EXPECT_LE(weighed.bytes, 2 * limit + mebibyte);
}

TEST_F(ClientMemory, FloodOfErrorsWithoutALineFeedTakesEightMebibytes) {
    const Weighed weighed = weigh("floods-errors-in-one-line", 1'000);
    EXPECT_TRUE(weighed.outcome.starts_with("helper exited with 4")) << weighed.outcome;
    // At most eight lines of 64 KiB each, and a few bytes around them.
    EXPECT_LE(std::stoull(weighed.outcome.substr(weighed.outcome.rfind(' '))), 8 * 65'537 + 30);
    EXPECT_LE(weighed.bytes, 8 * mebibyte);
}

// Counts are powers of two, behind which everything that doubles its room weighs most.

TEST_F(ClientMemory, OneLongStringTakesLessThanTwelveTimesItsSize) {
    EXPECT_LE(weightOf({.head = "%7B%22a%22%3A%22",
                        .unit = "x",
                        .unitSize = 1,
                        .count = 8 * mebibyte,
                        .tail = "%22%7D"},
                       "protocolVersion: missing key"),
              12);
}

TEST_F(ClientMemory, LevelsTakeLessThanTwelveTimesTheirSize) {
    // The "x" behind 5 bytes and all of them.
    EXPECT_LE(weightOf({.head = "%7B%22a%22%3A",
                        .unit = "%5B",
                        .unitSize = 1,
                        .count = 8 * mebibyte,
                        .tail = "x"},
                       "syntax error at line 1, column 8388614: invalid literal"),
              12);
}

TEST_F(ClientMemory, MembersThatNobodyKnowsTakeNothingButTheirText) {
    EXPECT_LE(weightOf({.head = "%7B",
                        .unit = "%22%22%3A1%2C",
                        .unitSize = 5,
                        .count = 2 * mebibyte,
                        .tail = "%22%22%3A1%7D"},
                       "protocolVersion: missing key"),
              4);
}

TEST_F(ClientMemory, AListOfNothingsTakesThreeTimesItsStringsAndItself) {
    // Three bytes of text for each string, of 32 bytes here, in a list that doubles its room as it
    // grows: 3 * 32 / 3, and the text itself. The way that explains what is wrong guesses nothing.
    const auto strings = static_cast<double>(sizeof(std::string));
    const double weight = weightOf({.head = "%7B%22diagnostics%22%3A%5B",
                                    .unit = "%22%22%2C",
                                    .unitSize = 3,
                                    .count = 2 * mebibyte,
                                    .tail = "%22%22%5D%7D"},
                                   "protocolVersion: missing key");
    EXPECT_GE(weight, strings);
    EXPECT_LE(weight, strings + 4);
}

TEST_F(ClientMemory, SmallestTracksTakeLess) {
    EXPECT_LE(weightOf({.head = "%7B%22timeline%22%3A%7B%22tracks%22%3A%5B",
                        .unit = "%7B%22fixedGain%22%3A1%2C%22id%22%3A%22%22%2C%22index%22%3A0%2C"
                                "%22muted%22%3Afalse%2C%22solo%22%3Afalse%7D%2C",
                        .unitSize = 63,
                        .count = mebibyte / 8,
                        .tail = "1%5D%7D%7D"},
                       "timeline.tracks[131072]: expected an object, found a number"),
              18);
}

}  // namespace

}  // namespace trellant::testing
