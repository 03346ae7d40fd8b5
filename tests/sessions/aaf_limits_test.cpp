// SPDX-License-Identifier: Apache-2.0
#include "aaf_limits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace trellant::sessions {
namespace {

constexpr std::int32_t two29 = 536'870'912;

TEST(AafLimits, GainIsCountedInTheFinestStepBelowFour) {
    EXPECT_EQ(storedGain(0), (StoredFraction{0, two29}));
    EXPECT_EQ(storedGain(0.5), (StoredFraction{268'435'456, two29}));
    EXPECT_EQ(storedGain(1), (StoredFraction{two29, two29}));
    // 1/3 of 2^29 is 178,956,970.67.
    EXPECT_EQ(storedGain(1.0 / 3), (StoredFraction{178'956'971, two29}));
    EXPECT_EQ(storedGain(4 - std::ldexp(1, -29)), (StoredFraction{2'147'483'647, two29}));
}

TEST(AafLimits, GainAboveTakesTheNextLowerPowers) {
    EXPECT_EQ(storedGain(4), (StoredFraction{1'073'741'824, 268'435'456}));
    EXPECT_EQ(storedGain(4 - std::ldexp(1, -31)), (StoredFraction{1'073'741'824, 268'435'456}));
    EXPECT_EQ(storedGain(1000), (StoredFraction{2'097'152'000, 2'097'152}));
    EXPECT_EQ(storedGain(2'147'483'647.4), (StoredFraction{2'147'483'647, 1}));
}

TEST(AafLimits, GainBeyondAllIsTheLargestThereIs) {
    const StoredFraction most{2'147'483'647, 1};
    EXPECT_EQ(storedGain(2'147'483'648.0), most);
    EXPECT_EQ(storedGain(1e300), most);
    EXPECT_EQ(storedGain(std::numeric_limits<double>::infinity()), most);
}

TEST(AafLimits, NegativeGainAndNoNumberAreSilence) {
    EXPECT_EQ(gainAsWritten(-0.5), 0);
    EXPECT_EQ(gainAsWritten(-std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(gainAsWritten(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(gainAsWritten(std::numeric_limits<double>::denorm_min()), 0);
}

TEST(AafLimits, PanStaysBetweenLeftAndRight) {
    EXPECT_EQ(panAsWritten(0.25), 0.25);
    EXPECT_EQ(panAsWritten(1), 1);
    EXPECT_EQ(panAsWritten(1.5), 1);
    EXPECT_EQ(panAsWritten(-1), 0);
    EXPECT_EQ(panAsWritten(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(AafLimits, PlaceIsExactWhereBothNumbersFit) {
    EXPECT_EQ(storedPlace(AAFRational(0)), (StoredFraction{0, 1}));
    EXPECT_EQ(storedPlace(AAFRational(1)), (StoredFraction{1, 1}));
    EXPECT_EQ(storedPlace(AAFRational(6, 9)), (StoredFraction{2, 3}));
    EXPECT_EQ(storedPlace(AAFRational(2'147'483'646, 2'147'483'647)),
              (StoredFraction{2'147'483'646, 2'147'483'647}));
}

TEST(AafLimits, PlaceOutsideIsTheNearerEnd) {
    EXPECT_EQ(storedPlace(AAFRational(-1, 3)), (StoredFraction{0, 1}));
    EXPECT_EQ(storedPlace(AAFRational(4, 3)), (StoredFraction{1, 1}));
}

TEST(AafLimits, PlaceThatDoesNotFitIsTheNearestThatDoes) {
    // Half of the smallest step there is lies as near to 0 as to that step; a little more does not.
    EXPECT_EQ(storedPlace(AAFRational(1, 2'147'483'648)), (StoredFraction{1, 2'147'483'647}));
    EXPECT_EQ(storedPlace(AAFRational(1, 4'294'967'294)), (StoredFraction{0, 1}));
    EXPECT_EQ(storedPlace(AAFRational(1, 4'294'967'293)), (StoredFraction{1, 2'147'483'647}));
    // 1/2 + 1/2^34, too near to 1/2 for any other.
    EXPECT_EQ(storedPlace(AAFRational(8'589'934'593, 17'179'869'184)), (StoredFraction{1, 2}));
    // 1/3 and a part in 3e10 of it: between 1/3 and its neighbour 715,827,882/2,147,483,645.
    EXPECT_EQ(storedPlace(AAFRational(10'000'000'001, 30'000'000'000)), (StoredFraction{1, 3}));
    EXPECT_EQ(storedPlace(AAFRational(std::numeric_limits<std::int64_t>::max() - 1,
                                      std::numeric_limits<std::int64_t>::max())),
              (StoredFraction{1, 1}));
}

TEST(AafLimits, PlaceIsNeverFurtherOffThanHalfAStep) {
    std::mt19937_64 random(7);
    std::uniform_int_distribution<std::int64_t> numbers(1,
                                                        std::numeric_limits<std::int64_t>::max());
    for (int round = 0; round < 1000; ++round) {
        const std::int64_t denominator = numbers(random);
        const std::int64_t numerator = numbers(random) % denominator;
        const AAFRational place(numerator, denominator);
        const StoredFraction stored = storedPlace(place);
        const long double difference =
            static_cast<long double>(stored.numerator) / stored.denominator -
            static_cast<long double>(numerator) / static_cast<long double>(denominator);
        // Fractions with denominators up to n are nowhere further apart than 1/n.
        EXPECT_LE(std::fabs(difference), 0.5L / 2'147'483'647 + 1e-18L) << place.description();
        EXPECT_EQ(placeAsWritten(placeAsWritten(place)), placeAsWritten(place));
    }
}

TEST(AafLimits, UnknownCurvesBecomeLinear) {
    using Curve = AAFAutomationInterpolation;
    EXPECT_EQ(curveAsWritten(Curve::unsupported("x")), Curve::linear());
    for (const Curve& curve :
         {Curve::linear(), Curve::constant(), Curve::power(), Curve::logarithmic()}) {
        EXPECT_EQ(curveAsWritten(curve), curve);
    }
}

TEST(AafLimits, NamesLoseControlCharactersOnly) {
    EXPECT_EQ(nameAsWritten(std::string("a\0b\nc\x7F"
                                        "d\xC2\x85"
                                        "e",
                                        11)),
              "abcde");
    const std::string rightToLeft =
        "\xE2\x80\xAE"
        "abc"
        "\xE2\x80\x8F";
    EXPECT_EQ(nameAsWritten(rightToLeft), rightToLeft);
    EXPECT_EQ(nameAsWritten("a/b\\c:d \xC2\xA0"), "a/b\\c:d \xC2\xA0");
    EXPECT_EQ(nameAsWritten("x\xFFy\xE2\x82"), "x\xEF\xBF\xBDy\xEF\xBF\xBD");
    EXPECT_EQ(nameAsWritten(""), "");
}

TEST(AafLimits, NamesAreCutAtAWholeCharacter) {
    EXPECT_EQ(nameAsWritten(std::string(32'766, 'n')), std::string(32'766, 'n'));
    EXPECT_EQ(nameAsWritten(std::string(40'000, 'n')), std::string(32'766, 'n'));
    const std::string note = "\xF0\x9F\x8E\xB5";
    EXPECT_EQ(nameAsWritten(std::string(32'765, 'n') + note), std::string(32'765, 'n'));
    EXPECT_EQ(nameAsWritten(std::string(32'764, 'n') + note + "n"),
              std::string(32'764, 'n') + note);
}

AAFAutomationEnvelope line(double first, double last) {
    return {.points = {{AAFRational(0), first}, {AAFRational(1), last}}};
}

TEST(AafLimits, ClipLevelsKeepGainAndAutomationApart) {
    const Levels levels{.gain = 0.75, .automation = line(0.5, 1)};
    EXPECT_EQ(clipLevelsAsWritten(levels), levels);
    const Levels flat{.gain = 1, .automation = line(0.5, 0.5)};
    EXPECT_EQ(clipLevelsAsWritten(flat), flat);
    const Levels unchanging{.gain = 0.5, .automation = line(1, 1)};
    EXPECT_EQ(clipLevelsAsWritten(unchanging), unchanging);
}

TEST(AafLimits, LevelLineBesideAGainBecomesPartOfIt) {
    EXPECT_EQ(clipLevelsAsWritten({.gain = 0.75, .automation = line(0.5, 0.5)}),
              (Levels{.gain = 0.375}));
}

TEST(AafLimits, AutomationWithoutPointsGoes) {
    EXPECT_EQ(clipLevelsAsWritten({.gain = 0.5, .automation = AAFAutomationEnvelope{}}),
              (Levels{.gain = 0.5}));
    EXPECT_EQ(panAutomationAsWritten(AAFAutomationEnvelope{}), std::nullopt);
    EXPECT_EQ(panAutomationAsWritten(std::nullopt), std::nullopt);
}

TEST(AafLimits, TrackLevelsBecomeOne) {
    EXPECT_EQ(trackLevelsAsWritten({.gain = 0.5, .automation = line(0.5, 2)}),
              (Levels{.gain = 1, .automation = line(0.25, 1)}));
    EXPECT_EQ(trackLevelsAsWritten({.gain = 0.5}), (Levels{.gain = 0.5}));
    EXPECT_EQ(trackLevelsAsWritten({.gain = 1, .automation = line(0.5, 2)}),
              (Levels{.gain = 1, .automation = line(0.5, 2)}));
}

TEST(AafLimits, WrittenValuesAreLeftAlone) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> exponents(-40, 40);
    for (int round = 0; round < 1000; ++round) {
        const double gain = std::exp2(exponents(random));
        EXPECT_EQ(gainAsWritten(gainAsWritten(gain)), gainAsWritten(gain));
        EXPECT_LE(std::fabs(gainAsWritten(gain) - gain),
                  gain < 2e9 ? std::max(std::ldexp(1, -30), gain * std::ldexp(1, -31)) : gain);
    }
}

TEST(AafLimits, PanAutomationIsHeldToItsValues) {
    const auto written = panAutomationAsWritten(line(-1, 0.5));
    EXPECT_EQ(written, line(0, 0.5));
}

}  // namespace
}  // namespace trellant::sessions
