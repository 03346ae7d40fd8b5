// SPDX-License-Identifier: Apache-2.0
// Progress that cannot be. What decodes is handed on as it was written: a host that draws a bar has
// to bound it itself. What does not decode is as good as not written.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <string>

namespace trellant::testing {

namespace {

std::string line(const std::string& json) {
    return "TRELLANT-AAF-PROGRESS " + json + "\n";
}

class ClientLyingProgress : public ClientTest {
  protected:
    [[nodiscard]] std::vector<Progress> seenOf(const std::vector<std::string>& errors) const {
        std::vector<Progress> seen;
        const Result result =
            valueOf(act({.errors = errors, .output = resultText(timelineText("Reel"))},
                        [&](const Progress& progress) { seen.push_back(progress); }));
        EXPECT_EQ(result.timeline.compositionName, "Reel");
        return seen;
    }
};

TEST_F(ClientLyingProgress, FractionsOutsideTheirRangeAreHandedOn) {
    EXPECT_EQ(
        seenOf({line(R"({"phase":"a","fraction":-1})"), line(R"({"phase":"","fraction":1e300})"),
                line(R"({"phase":"c","fraction":0.25})")}),
        (std::vector<Progress>{
            {"a", -1, std::nullopt}, {"", 1e300, std::nullopt}, {"c", 0.25, std::nullopt}}));
}

TEST_F(ClientLyingProgress, FractionsThatAreNoNumbersAreDropped) {
    EXPECT_EQ(
        seenOf(
            {line(R"({"phase":"a","fraction":NaN})") +
             line(R"({"phase":"a","fraction":Infinity})") +
             line(R"({"phase":"a","fraction":1e999})") + line(R"({"phase":"a","fraction":"0.5"})") +
             line(R"({"phase":"a","fraction":null})") + line(R"({"phase":"last","fraction":0})")}),
        (std::vector<Progress>{{"last", 0, std::nullopt}}));
}

TEST_F(ClientLyingProgress, LongPhaseOfOneReadIsHandedOn) {
    const std::string phase(4'000, 'p');
    EXPECT_EQ(seenOf({line(R"({"phase":")" + phase + R"(","fraction":0})")}),
              (std::vector<Progress>{{phase, 0, std::nullopt}}));
}

TEST_F(ClientLyingProgress, PhaseLongerThanAReadIsDropped) {
    const std::string phase(1'000'000, 'p');
    EXPECT_EQ(seenOf({line(R"({"phase":")" + phase + R"(","fraction":0})"),
                      line(R"({"phase":"last","fraction":1})")}),
              (std::vector<Progress>{{"last", 1, std::nullopt}}));
}

TEST_F(ClientLyingProgress, DeepAndHugeLinesAreDropped) {
    EXPECT_EQ(seenOf({line(std::string(60'000, '[')),
                      line(R"({"phase":"a","fraction":)" + std::string(60'000, '9') + "}"),
                      line(R"({"phase":"last","fraction":1})")}),
              (std::vector<Progress>{{"last", 1, std::nullopt}}));
}

TEST_F(ClientLyingProgress, TextBesideTheRecordMakesItNoRecord) {
    EXPECT_EQ(seenOf({line(R"({"phase":"a","fraction":0} {"phase":"b","fraction":0})") +
                      line(R"([{"phase":"a","fraction":0}])") +
                      line(R"({"phase":"a","fraction":0,"fraction":0.5})")}),
              (std::vector<Progress>{{"a", 0.5, std::nullopt}}));
}

}  // namespace

}  // namespace trellant::testing
