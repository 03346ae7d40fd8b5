// SPDX-License-Identifier: Apache-2.0
// Losses as paragraphs: whole on a page, wrapped on a terminal.
#include "look/loss_blocks.h"

#include "terminal/console.h"
#include "terminal/wrapped_text.h"

#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

HandOff twoLosses() {
    HandOff handOff;
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    handOff.timeline.clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    handOff.timeline.unsupportedFeatures = {
        {.severity = AAFUnsupportedFeature::Severity::renderAffecting,
         .description = "effect not rendered",
         .objectPath = "CMOB[1]"},
        {.severity = AAFUnsupportedFeature::Severity::informational,
         .description = "clip dropped"}};
    handOff.losses = {{.trackName = "Dialog",
                       .trackNumber = 3,
                       .clipName = "Anna",
                       .start = AAFRational(1),
                       .duration = AAFRational(2),
                       .plain = "The effect is not applied."},
                      {.trackNumber = 2}};
    return handOff;
}

TEST(LossBlocks, TellPlaceMeaningAndOrigin) {
    EXPECT_EQ(lossBlocks(twoLosses(), Console::unlimitedColumns, false),
              "1  01:00:01:00 - 01:00:03:00, track 3 Dialog, clip Anna: sounds different\n"
              "   The effect is not applied.\n"
              "   effect not rendered\n"
              "   CMOB[1]\n"
              "\n"
              "2  track 2: dropped\n"
              "   clip dropped\n");
}

TEST(LossBlocks, WrapWithinTheLine) {
    EXPECT_EQ(lossBlocks(twoLosses(), 30, false),
              "1  01:00:01:00 - 01:00:03:00,\n"
              "   track 3 Dialog, clip Anna:\n"
              "   sounds different\n"
              "   The effect is not applied.\n"
              "   effect not rendered\n"
              "   CMOB[1]\n"
              "\n"
              "2  track 2: dropped\n"
              "   clip dropped\n");
}

TEST(LossBlocks, DimTheTechnicalText) {
    HandOff handOff = twoLosses();
    handOff.timeline.unsupportedFeatures.erase(handOff.timeline.unsupportedFeatures.begin());
    handOff.losses.erase(handOff.losses.begin());
    EXPECT_EQ(lossBlocks(handOff, 80, true),
              "1  " + painted("track 2: dropped", Paint::bold, true) + "\n   " +
                  painted("clip dropped", Paint::dim, true) + "\n");
}

TEST(WrappedText, BreaksWordsOnlyWhereTheyFillMoreThanALine) {
    EXPECT_EQ(wrapped("ab cdefghijklmn", {.indent = 1, .columns = 11}, std::nullopt),
              " ab\n cdefghijkl\n mn\n");
    EXPECT_EQ(wrapped("abcde fghij", {.columns = 10}, std::nullopt), "abcde\nfghij\n");
}

TEST(WrappedText, CountsWideCharactersTwice) {
    EXPECT_EQ(wrapped("\u96e8\u96e8\u96e8\u96e8\u96e8", {.columns = 9}, std::nullopt),
              "\u96e8\u96e8\u96e8\u96e8\n\u96e8\n");
}

TEST(WrappedText, MakesStrangersTextsHarmless) {
    EXPECT_EQ(wrapped("a\x1b"
                      "b\n\u202ec",
                      {.columns = 20}, std::nullopt),
              "a\uFFFDb\uFFFD\uFFFDc\n");
    EXPECT_EQ(wrapped("", {.columns = 20}, std::nullopt), "\n");
}

}  // namespace
}  // namespace trellant::cli
