#include "listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace trellant::cli {
namespace {

using testing::ElementsAre;

Listing twoRows() {
    return {.fields = {{"name", "Name", true},
                       {"count", "Count", false, Align::right},
                       {"gain", "Gain", true},
                       {"muted", "Muted", true}},
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

TEST(Listing, SheetsGetEveryColumn) {
    const Table table = tableForSheets(twoRows());
    ASSERT_EQ(table.columns.size(), 4U);
    EXPECT_THAT(table.rows[0], ElementsAre("Door \"2\"", "3", "0.1", "yes"));
}

TEST(Listing, ProgramsGetOneObjectALineWithoutWhatIsAbsent) {
    EXPECT_EQ(jsonLines(twoRows()),
              "{\"name\":\"Door \\\"2\\\"\",\"count\":3,\"gain\":0.1,\"muted\":true}\n"
              "{\"muted\":false}\n");
}

TEST(Listing, GainsAreDecibels) {
    // 20 * log10(10) = 20 exactly; of nothing there is no logarithm.
    const Listing listing{.fields = {{"gainDb", "Gain (dB)", true}},
                          .rows = {{Gain{10}}, {Gain{0}}}};
    EXPECT_EQ(jsonLines(listing), "{\"gainDb\":20}\n{\"gainDb\":\"-inf\"}\n");
    EXPECT_EQ(tableForPeople(listing).rows[0][0], "20.00");
    EXPECT_EQ(tableForPeople(listing).rows[1][0], "-inf");
}

TEST(Listing, NumbersThatJsonHasNoFormForAreTexts) {
    const Listing listing{.fields = {{"gain", "Gain", true}},
                          .rows = {{-std::numeric_limits<double>::infinity()}}};
    EXPECT_EQ(jsonLines(listing), "{\"gain\":\"-inf\"}\n");
    EXPECT_EQ(tableForPeople(listing).rows[0][0], "-inf");
}

}  // namespace
}  // namespace trellant::cli
