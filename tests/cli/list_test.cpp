// SPDX-License-Identifier: Apache-2.0
// What people and programs see of a list.
#include "cell_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace trellant::testing {
namespace {

using cli::Align;
using cli::Table;
using cli::tableForPeople;
using ::testing::ElementsAre;
using enum cli::Audience;

CellList twoRows() {
    return {{{"name", "Name", everyone},
             {"count", "Count", details, Align::right},
             {"gain", "Gain", everyone},
             {"muted", "Muted", everyone}},
            {{text("Door \"2\""), integer(3), number(0.1), boolean(true)},
             {nothing(), nothing(), nothing(), boolean(false)}}};
}

CellList oneCell(SaidCell cell) {
    return {{{"it", "It", everyone}}, {{std::move(cell)}}};
}

TEST(List, PeopleSeeTheColumnsChosenForThem) {
    const Table table = tableForPeople(twoRows());
    ASSERT_EQ(table.columns.size(), 3U);
    EXPECT_EQ(table.columns[1].title, "Gain");
    EXPECT_THAT(table.rows[0], ElementsAre("Door \"2\"", "0.1", "yes"));
    EXPECT_THAT(table.rows[1], ElementsAre("", "", "no"));
}

TEST(List, PeopleWhoAskForEverythingSeeTheDetailsToo) {
    const Table table = tableForPeople(twoRows(), true);
    ASSERT_EQ(table.columns.size(), 4U);
    EXPECT_THAT(table.rows[0], ElementsAre("Door \"2\"", "3", "0.1", "yes"));
}

TEST(List, ColumnsThatHoldNothingAreNoneForPeople) {
    const CellList list({{"name", "Name", everyone}, {"fade", "Fade", everyone}},
                        {{text("a"), nothing()}, {text("b"), text("")}});
    ASSERT_EQ(tableForPeople(list).columns.size(), 1U);
    EXPECT_EQ(tableForPeople(list).columns[0].title, "Name");
    EXPECT_THAT(tableForPeople(list).rows[1], ElementsAre("b"));
    EXPECT_EQ(tableForPeople(list, true).columns.size(), 2U);
}

TEST(List, PeopleSeeShortFormsOfWhatProgramsGetWhole) {
    const CellList list({{"", "Fade", people}, {"fade", "Fade", machines}},
                        {{text("3f lin"), text("3 frames, linear")}});
    EXPECT_THAT(tableForPeople(list, true).rows[0], ElementsAre("3f lin"));
    EXPECT_EQ(jsonOf(list), "{\"file\":\"a.omf\",\"fade\":\"3 frames, linear\"}\n");
}

TEST(List, FractionsAreTextsForPrograms) {
    EXPECT_EQ(jsonOf(oneCell(fraction(AAFRational(-1, 2)))),
              "{\"file\":\"a.omf\",\"it\":\"-1\\/2\"}\n");
    EXPECT_EQ(jsonOf(oneCell(fraction(AAFRational(3)))), "{\"file\":\"a.omf\",\"it\":\"3\"}\n");
    EXPECT_THAT(tableForPeople(oneCell(fraction(AAFRational(1, 2)))).rows[0], ElementsAre("1/2"));
}

TEST(List, ProgramsGetOneObjectALineWithoutWhatIsAbsent) {
    EXPECT_EQ(jsonOf(twoRows()),
              "{\"file\":\"a.omf\",\"name\":\"Door \\\"2\\\"\",\"count\":3,\"gain\":0.1,"
              "\"muted\":true}\n"
              "{\"file\":\"a.omf\",\"muted\":false}\n");
}

TEST(List, GainsAreDecibels) {
    // 20 * log10(10) = 20 exactly; of nothing there is no logarithm, and so no number.
    const CellList list({{"gainDb", "Gain (dB)", everyone}}, {{decibels(10)}, {decibels(0)}});
    EXPECT_EQ(jsonOf(list), "{\"file\":\"a.omf\",\"gainDb\":20}\n{\"file\":\"a.omf\"}\n");
    EXPECT_EQ(tableForPeople(list).rows[0][0], "20.00");
    EXPECT_EQ(tableForPeople(list).rows[1][0], "-inf");
}

TEST(List, NumbersThatJsonHasNoFormForAreAbsent) {
    const CellList list = oneCell(number(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ(jsonOf(list), "{\"file\":\"a.omf\"}\n");
    EXPECT_EQ(tableForPeople(list).rows[0][0], "-inf");
}

TEST(List, GainPointsAreAnArrayForPrograms) {
    const AAFAutomationEnvelope envelope{.points = {{AAFRational(0), 1}, {AAFRational(1, 2), 0.5}}};
    const CellList list = oneCell([&envelope](cli::Cell& cell) { cell.points(envelope); });
    EXPECT_EQ(jsonOf(list),
              "{\"file\":\"a.omf\",\"it\":[{\"place\":\"0\",\"gain\":1},"
              "{\"place\":\"1\\/2\",\"gain\":0.5}]}\n");
    EXPECT_THAT(tableForPeople(list).rows[0], ElementsAre("0:1 1/2:0.5"));
}

TEST(List, LossNumbersAreAnArrayForPrograms) {
    const CellList list = oneCell([](cli::Cell& cell) { cell.lossNumbers({1, 12}); });
    EXPECT_EQ(jsonOf(list), "{\"file\":\"a.omf\",\"it\":[1,12]}\n");
    EXPECT_THAT(tableForPeople(list).rows[0], ElementsAre("1 12"));
}

TEST(List, BytesOfAFileNameThatAreNoTextAreSpelledOut) {
    StringSink sink;
    cli::writeJsonLines("a\xFF.omf", std::nullopt, oneCell(integer(1)), sink);
    EXPECT_EQ(sink.text, "{\"file\":\"a\\\\xff.omf\",\"it\":1}\n");
}

TEST(List, EachLineOfAFileOfOMF1SaysSo) {
    StringSink sink;
    cli::writeJsonLines("a.omf", "1.0", oneCell(integer(1)), sink);
    EXPECT_EQ(sink.text, "{\"file\":\"a.omf\",\"omfVersion\":\"1.0\",\"it\":1}\n");
}

}  // namespace
}  // namespace trellant::testing
