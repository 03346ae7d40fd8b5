// SPDX-License-Identifier: Apache-2.0
// Everything within everything, as deep as it is walked and deeper: no more memory than the table
// of contents takes, 8 bytes for each of its bytes.
#include "bounds_fixture.h"
#include "worker_fixture.h"

#include <trellant/protocol/messages.h>

namespace trellant::testing {
namespace {

class Nesting : public BoundsTest {
  protected:
    Nesting() {
        omf_.audioFile({.id = tone_, .name = "Tone.wav", .media = toneWave(), .length = 480});
    }
    ObjectID clip() { return omf_.clip({.length = 480, .source = tone_}); }

    /// The clip in `steps` segments, from the outermost: a sequence, a scope, a gain of a half, a
    /// selector, and so on. They take 2, 1, 2 and 1 levels.
    ObjectID nested(int steps) {
        ObjectID segment = clip();
        for (int step = steps - 1; step >= 0; --step) {
            segment = wrapped(segment, step % 4);
        }
        return segment;
    }
    AAFTimeline timelineOf(std::string_view shape, const std::vector<ObjectID>& segments) {
        std::vector<ObjectID> slots;
        for (const ObjectID segment : segments) {
            slots.push_back(omf_.slot({.editRate = Ratio{48'000}, .segment = segment}));
        }
        omf_.composition({.name = "Piece", .slots = slots});
        const auto image = omf_.image();
        writeFile(file(), image.bytes());
        const auto bound = 8 * image.toc.size() + base;
        const auto run = inspect(bound + addressBase);
        expectPeak(run, shape, bound);
        EXPECT_EQ(run.status, 0) << run.errors;
        return run.status == 0 ? decodeResult(run.output).timeline : AAFTimeline();
    }

    OmfBuilder omf_;

  private:
    ObjectID wrapped(ObjectID segment, int kind) {
        switch (kind) {
            case 0:
                return omf_.sequence({segment});
            case 1:
                return omf_.nestedScope({segment});
            case 2:
                return omf_.gain(segment, omf_.constantValue({1, 2}));
            default:
                return omf_.selector(segment);
        }
    }

    static constexpr MobID tone_{1, 2, 3};
};

TEST_F(Nesting, OfEverythingIsWalkedFortySevenLevelsDown) {
    // Seven rounds of 6 levels, a sequence, a scope and a gain: the clip stands at level 47, below
    // eight gains.
    const auto timeline = timelineOf("Nested47", {nested(31)});
    ASSERT_EQ(timeline.events.size(), 1U);
    EXPECT_EQ(timeline.events[0].fixedClipGain, 1.0 / 256);
    EXPECT_EQ(timeline.events[0].duration, AAFRational(1, 100));
    EXPECT_EQ(timeline.unsupportedFeatures.size(), 0U);
}

TEST_F(Nesting, OfEverythingOneLevelDeeperIsReported) {
    const auto timeline = timelineOf("Nested48", {nested(32), clip()});
    EXPECT_EQ(timeline.events.size(), 1U);
    ASSERT_EQ(timeline.unsupportedFeatures.size(), 1U);
    EXPECT_EQ(timeline.unsupportedFeatures[0].description,
              "composition nesting exceeds depth limit");
}

TEST_F(Nesting, OfASequenceInItselfIsReported) {
    const ObjectBuilder sequence = omf_.sequence({});
    omf_.at(sequence).refs("OMFI:SEQU:Components", {sequence}).position("OMFI:CPNT:Length", 70);
    const auto timeline = timelineOf("SequenceInItself", {sequence, clip()});
    EXPECT_EQ(timeline.events.size(), 1U);
    ASSERT_EQ(timeline.unsupportedFeatures.size(), 1U);
    EXPECT_EQ(timeline.unsupportedFeatures[0].description,
              "composition nesting exceeds depth limit");
}

TEST_F(Nesting, OfFiftyThousandLevelsEndsAtTheSame) {
    // Deeper than any stack would carry.
    const auto timeline = timelineOf("Nested50000", {nested(sanitized ? 5'000 : 50'000), clip()});
    EXPECT_EQ(timeline.events.size(), 1U);
    EXPECT_EQ(timeline.unsupportedFeatures.size(), 1U);
}

}  // namespace
}  // namespace trellant::testing
