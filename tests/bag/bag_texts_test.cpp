// SPDX-License-Identifier: Apache-2.0
// The text files of a bag, line by line.
#include "bag_texts.h"

#include <trellant/version.h>

#include <gtest/gtest.h>

#include <limits>

namespace trellant::bag {
namespace {

TEST(BagTexts, AManifestIsSortedByPath) {
    EXPECT_EQ(manifestText({{"data/b", "22"}, {"data/a c", "11"}}), "11  data/a c\n22  data/b\n");
    EXPECT_EQ(manifestText({}), "");
}

TEST(BagTexts, OnlyWhatWouldBreakALineIsEscaped) {
    EXPECT_EQ(manifestText({{"data/50%\r\nKick\t\\.wav", "11"}}),
              "11  data/50%25%0D%0AKick\t\\.wav\n");
}

TEST(BagTexts, TheInfoHasALineForEachFactThatIsKnown) {
    // 2026-11-23 00:00:00 UTC is 20780 days after 1970-01-01: 56 years of 365 days, 14 leap days
    // (1972 to 2024), and 326 days up to 23 November (304 to the end of October, 22 more).
    const BagInfo info{.organization = "Radio\nDrei",
                       .identifier = "mix.omf",
                       .date = 20'780LL * 86'400,
                       .payloadBytes = 1'234,
                       .payloadFiles = 3};
    EXPECT_EQ(infoText(info),
              "Source-Organization: Radio Drei\n"
              "External-Identifier: mix.omf\n"
              "Bagging-Date: 2026-11-23\n"
              "Payload-Oxum: 1234.3\n"
              "Bag-Software-Agent: trellant " +
                  std::string(versionText) + "\n");
    EXPECT_EQ(infoText({.organization = "", .identifier = ""}),
              "Bagging-Date: 1970-01-01\nPayload-Oxum: 0.0\nBag-Software-Agent: trellant " +
                  std::string(versionText) + "\n");
}

TEST(BagTexts, DatesStayWithinFourDigitsOfYears) {
    EXPECT_EQ(dateTimeText(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(dateTimeText(-1), "1969-12-31T23:59:59Z");
    EXPECT_EQ(dateTimeText(std::numeric_limits<std::int64_t>::max()), "9999-12-31T23:59:59Z");
    EXPECT_EQ(dateTimeText(std::numeric_limits<std::int64_t>::min()), "0000-01-01T00:00:00Z");
}

}  // namespace
}  // namespace trellant::bag
