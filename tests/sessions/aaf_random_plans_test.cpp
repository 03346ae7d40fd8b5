// SPDX-License-Identifier: Apache-2.0
// Plans drawn by chance, from fixed seeds, of all that AAF carries: what is read is what was
// planned. Gains are multiples of 1/1024, which the file holds exactly.
#include "sample_sessions.h"
#include "written_session.h"

#include <random>

namespace trellant::sessions {
namespace {

using Curve = AAFAutomationInterpolation;
using exchange::PlannedClip;
using exchange::Samples;

class RandomPlan : public ::testing::TestWithParam<unsigned> {
  protected:
    std::int64_t upTo(std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(0, most)(random_);
    }
    bool oneIn(std::int64_t count) { return upTo(count - 1) == 0; }

    double level(std::int64_t most) { return static_cast<double>(upTo(most * 1024)) / 1024; }

    Curve curve() {
        static const std::vector<Curve> curves{Curve::linear(), Curve::constant(), Curve::power(),
                                               Curve::logarithmic()};
        return curves[static_cast<std::size_t>(upTo(3))];
    }

    std::string name() {
        static const std::vector<std::string> pieces{
            "Anna", " ", "2", "/", "\xC3\xA9", "\xF0\x9F\x8E\xB5", ".", "\xE2\x80\x8F", "take"};
        std::string text = "n";
        for (std::int64_t count = upTo(9); count > 0; --count) {
            text += pieces[static_cast<std::size_t>(upTo(8))];
        }
        return text;
    }

    /// Three points or more, so that no level line is among them.
    AAFAutomationEnvelope envelope(std::int64_t mostLevel) {
        AAFAutomationEnvelope drawn{.interpolation = curve()};
        const std::int64_t steps = 3 + upTo(48'000);
        const std::int64_t count = 3 + upTo(5);
        for (std::int64_t index = 0; index < count; ++index) {
            drawn.points.push_back({AAFRational(steps * index / count, steps), level(mostLevel)});
        }
        return drawn;
    }

    exchange::PlannedMedia media(std::size_t essence) {
        static const std::vector<std::int64_t> depths{8, 16, 24, 32};
        exchange::PlannedMedia drawn{.essence = essence,
                                     .name = name(),
                                     .fileName = "file " + std::to_string(essence) + ".wav",
                                     .sampleRate = AAFRational(48'000),
                                     .channelCount = 1 + upTo(3),
                                     .frames = 1 + upTo(100'000'000)};
        drawn.isFloatingPoint = oneIn(5);
        drawn.bitDepth = drawn.isFloatingPoint ? 32 : depths[static_cast<std::size_t>(upTo(3))];
        return drawn;
    }

    /// The next clip behind `clips`, and what its beginning takes of it.
    Samples addClip(std::vector<PlannedClip>& clips, Samples restOfLast) {
        PlannedClip drawn{.name = name(),
                          .start = clips.empty() ? 0 : clips.back().end(),
                          .length = 1 + upTo(100'000),
                          .sourceStart = upTo(1'000'000)};
        drawn.sourceStartAtSessionRate = drawn.sourceStart;
        Samples taken = 0;
        if (!clips.empty() && restOfLast > 0 && oneIn(3)) {
            taken = 1 + upTo(std::min(restOfLast, drawn.length) - 1);
            drawn.start -= taken;
            drawn.fadeIn = fade(taken, curve());
            drawn.crossfadesIn = true;
            clips.back().fadeOut = drawn.fadeIn;
        } else {
            drawn.start += oneIn(3) ? 0 : upTo(1'000'000);
            if (oneIn(2)) {
                taken = 1 + upTo(drawn.length - 1);
                drawn.fadeIn = fade(taken, curve());
            }
        }
        if (drawn.length > taken && oneIn(2)) {
            drawn.fadeOut = fade(1 + upTo(drawn.length - taken - 1), curve());
        }
        drawn.gain = oneIn(2) ? 1 : level(oneIn(3) ? 1000 : 3);
        if (oneIn(3)) {
            drawn.gainAutomation = envelope(3);
        }
        clips.push_back(std::move(drawn));
        return clips.back().length - taken;
    }

    exchange::PlannedTrack randomTrack() {
        std::vector<PlannedClip> clips;
        Samples rest = 0;
        for (std::int64_t count = upTo(12); count > 0; --count) {
            rest = addClip(clips, rest);
        }
        exchange::PlannedTrack drawn = track(name(), std::move(clips));
        if (oneIn(2)) {
            drawn.gain = level(3);
        } else if (oneIn(2)) {
            drawn.gainAutomation = envelope(3);
        }
        if (oneIn(2)) {
            drawn.pan = level(1);
        } else if (oneIn(2)) {
            drawn.panAutomation = envelope(1);
        }
        return drawn;
    }

    /// Each clip plays a medium that was played before or the next one, as the reader numbers them.
    exchange::ExportPlan plan() {
        std::vector<exchange::PlannedTrack> tracks;
        for (std::int64_t count = 1 + upTo(4); count > 0; --count) {
            tracks.push_back(randomTrack());
        }
        exchange::ExportPlan drawn = planOf(std::move(tracks), {});
        for (exchange::PlannedTrack& one : drawn.tracks) {
            for (PlannedClip& played : one.lanes[0].clips) {
                played.media =
                    static_cast<std::size_t>(upTo(static_cast<std::int64_t>(drawn.media.size())));
                if (played.media == drawn.media.size()) {
                    drawn.media.push_back(media(played.media));
                }
                const std::int64_t channels = drawn.media[played.media].channelCount;
                if (channels > 1) {
                    played.channel = upTo(channels - 1);
                }
            }
        }
        drawn.name = name();
        drawn.length += oneIn(2) ? 0 : upTo(1'000'000);
        drawn.start = AAFTimecodeAddress::fromAbsoluteFrameNumber(
            upTo(2'000'000), oneIn(2) ? AAFTimecodeRate::fps2997DF() : AAFTimecodeRate::fps25());
        return drawn;
    }

    std::mt19937_64 random_{GetParam()};
};

TEST_P(RandomPlan, IsReadAsItWasPlanned) {
    const exchange::ExportPlan drawn = plan();
    const ReadAafSession read = readBack(sessionOf(drawn));
    EXPECT_EQ(read.plan, drawn);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPlan, ::testing::Range(0U, 300U));

}  // namespace
}  // namespace trellant::sessions
