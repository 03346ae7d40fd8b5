// SPDX-License-Identifier: Apache-2.0
#include "look/listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace trellant::cli {
namespace {

using testing::ElementsAre;
using enum Audience;

Listing twoRows() {
    return {.fields = {{"name", "Name", everyone},
                       {"count", "Count", details, Align::right},
                       {"gain", "Gain", everyone},
                       {"muted", "Muted", everyone}},
            .rows = {{std::string("Door \"2\""), std::int64_t{3}, 0.1, true},
                     {Value(), Value(), Value(), false}}};
}

TEST(Listing, PeopleSeeTheColumnsChosenForThem) {
    const Table table = tableForPeople(twoRows());
    ASSERT_EQ(table.columns.size(), 3U);
    EXPECT_EQ(table.columns[1].title, "Gain");
    EXPECT_THAT(table.rows[0], ElementsAre("Door \"2\"", "0.1", "yes"));
    EXPECT_THAT(table.rows[1], ElementsAre("", "", "no"));
}

TEST(Listing, PeopleWhoAskForEverythingSeeTheDetailsToo) {
    const Table table = tableForPeople(twoRows(), true);
    ASSERT_EQ(table.columns.size(), 4U);
    EXPECT_THAT(table.rows[0], ElementsAre("Door \"2\"", "3", "0.1", "yes"));
}

TEST(Listing, ColumnsThatHoldNothingAreNoneForPeople) {
    const Listing listing{.fields = {{"name", "Name", everyone}, {"fade", "Fade", everyone}},
                          .rows = {{std::string("a"), Value()}, {std::string("b"), std::string()}}};
    ASSERT_EQ(tableForPeople(listing).columns.size(), 1U);
    EXPECT_EQ(tableForPeople(listing).columns[0].title, "Name");
    EXPECT_EQ(tableForPeople(listing, true).columns.size(), 2U);
}

TEST(Listing, PeopleSeeShortFormsOfWhatProgramsGetWhole) {
    const Listing listing{.fields = {{"", "Fade", people}, {"fade", "Fade", machines}},
                          .rows = {{std::string("3f lin"), std::string("3 frames, linear")}}};
    EXPECT_THAT(tableForPeople(listing, true).rows[0], ElementsAre("3f lin"));
    EXPECT_EQ(jsonLines(listing), "{\"fade\":\"3 frames, linear\"}\n");
}

TEST(Listing, FractionsAreTextsForPrograms) {
    const Listing listing{.fields = {{"exact", "Exact", everyone}},
                          .rows = {{Fraction{AAFRational(1, 2)}}}};
    EXPECT_EQ(jsonLines(listing), "{\"exact\":\"1\\/2\"}\n");
    EXPECT_THAT(tableForPeople(listing).rows[0], ElementsAre("1/2"));
}

TEST(Listing, ProgramsGetOneObjectALineWithoutWhatIsAbsent) {
    EXPECT_EQ(jsonLines(twoRows()),
              "{\"name\":\"Door \\\"2\\\"\",\"count\":3,\"gain\":0.1,\"muted\":true}\n"
              "{\"muted\":false}\n");
}

TEST(Listing, GainsAreDecibels) {
    // 20 * log10(10) = 20 exactly; of nothing there is no logarithm.
    const Listing listing{.fields = {{"gainDb", "Gain (dB)", everyone}},
                          .rows = {{Gain{10}}, {Gain{0}}}};
    EXPECT_EQ(jsonLines(listing), "{\"gainDb\":20}\n{\"gainDb\":\"-inf\"}\n");
    EXPECT_EQ(tableForPeople(listing).rows[0][0], "20.00");
    EXPECT_EQ(tableForPeople(listing).rows[1][0], "-inf");
}

TEST(Listing, NumbersThatJsonHasNoFormForAreTexts) {
    const Listing listing{.fields = {{"gain", "Gain", everyone}},
                          .rows = {{-std::numeric_limits<double>::infinity()}}};
    EXPECT_EQ(jsonLines(listing), "{\"gain\":\"-inf\"}\n");
    EXPECT_EQ(tableForPeople(listing).rows[0][0], "-inf");
}

}  // namespace
}  // namespace trellant::cli
