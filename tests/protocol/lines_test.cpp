// SPDX-License-Identifier: Apache-2.0
#include <trellant/protocol/lines.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <trellant_testing/encoded_documents.h>

namespace trellant {
namespace {

std::string keptLine(std::string_view phase, double fraction) {
    const std::string line = progressLine(phase, fraction);
    if (!line.empty()) {
        testing::keepEncoded("progress", std::string_view(line).substr(progressMarker.size()));
    }
    return line;
}

TEST(ProgressLine, HasMarkerTwoKeysAndLineFeed) {
    EXPECT_EQ(keptLine("opening", 0.05),
              "TRELLANT-AAF-PROGRESS {\"phase\":\"opening\",\"fraction\":0.05}\n");
}

TEST(ProgressLine, WritesFractionsInTheirShortestForm) {
    EXPECT_EQ(keptLine("reconstructing", 0.15),
              "TRELLANT-AAF-PROGRESS {\"phase\":\"reconstructing\",\"fraction\":0.15}\n");
    EXPECT_EQ(keptLine("done", 1.0), "TRELLANT-AAF-PROGRESS {\"phase\":\"done\",\"fraction\":1}\n");
}

TEST(ProgressLine, IsEmptyWhenTheFractionIsNotFinite) {
    EXPECT_EQ(keptLine("resolving", std::nan("")), "");
    EXPECT_EQ(keptLine("resolving", std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(keptLine("resolving", -std::numeric_limits<double>::infinity()), "");
}

TEST(ProgressLine, IsEmptyWhenThePhaseIsNotUTF8) {
    EXPECT_EQ(keptLine("\xFF", 0.5), "");
}

TEST(ProgressLine, APhaseWithALineFeedStaysOneLine) {
    EXPECT_EQ(keptLine("a\nb", 0), "TRELLANT-AAF-PROGRESS {\"phase\":\"a\\nb\",\"fraction\":0}\n");
}

TEST(LogLine, HasPrefixMessageAndLineFeed) {
    EXPECT_EQ(logLineText("empty request on stdin"), "trellant-omf: empty request on stdin\n");
}

TEST(LogLine, AnEmptyMessageStillYieldsALine) {
    EXPECT_EQ(logLineText(""), "trellant-omf: \n");
}

TEST(LogLine, TheMessageIsNotEscaped) {
    EXPECT_EQ(logLineText("a\n\"b\"/\xFF"), "trellant-omf: a\n\"b\"/\xFF\n");
}

TEST(LogLine, NeverBeginsWithTheProgressMarker) {
    EXPECT_EQ(logLineText("TRELLANT-AAF-PROGRESS {}"), "trellant-omf: TRELLANT-AAF-PROGRESS {}\n");
}

TEST(Lines, MarkerAndPrefixHaveTheirLengths) {
    EXPECT_EQ(progressMarker.size(), 22U);
    EXPECT_EQ(logPrefix.size(), 14U);
}

}  // namespace
}  // namespace trellant
