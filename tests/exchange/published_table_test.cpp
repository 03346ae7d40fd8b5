// SPDX-License-Identifier: Apache-2.0
// The table of the documents is the one that the formats are written by.
#include <trellant/exchange/capabilities.h>

#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::exchange {
namespace {

TEST(PublishedTable, IsThatOfTheProgram) {
    const std::string page = testing::textOf(testing::readFile(TRELLANT_EXPORTS_PAGE));
    const std::string opening = "<!-- The table of the program; a test compares. -->\n";
    const auto start = page.find(opening);
    ASSERT_NE(start, std::string::npos);
    const auto end = page.find("<!-- The table ends. -->\n", start);
    ASSERT_NE(end, std::string::npos);
    const auto tableStart = start + opening.size();
    EXPECT_EQ(page.substr(tableStart, end - tableStart), capabilityTable());
}

}  // namespace
}  // namespace trellant::exchange
