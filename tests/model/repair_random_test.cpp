// SPDX-License-Identifier: Apache-2.0
// Timelines damaged at random: whatever is wrong with them, the repaired one passes validation.
#include "repair_lines.h"
#include "sample_timeline.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::problemOf;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

class Damage {
  public:
    explicit Damage(std::uint32_t seed) : engine_(seed) {}

    /// The sample with more events and a few values replaced by odd ones.
    AAFTimeline timeline() {
        AAFTimeline timeline = test::sampleTimeline();
        timeline.tracks.push_back({.id = "t2"});
        timeline.essences.push_back({.id = "e2", .sampleRate = AAFRational(1), .channelCount = 1});
        for (int copy = 0; copy < 4; ++copy) {
            timeline.events.push_back(timeline.events[1]);
            timeline.events.back().id = "copy" + std::to_string(copy);
        }
        for (std::size_t count = below(8); count > 0; --count) {
            damageOnce(timeline);
        }
        return timeline;
    }

  private:
    std::size_t below(std::size_t limit) { return engine_() % limit; }

    template <class Element>
    Element& any(std::vector<Element>& elements) {
        return elements[below(elements.size())];
    }
    std::int64_t integer() {
        static constexpr std::array<std::int64_t, 10> values{
            smallest, smallest + 1, -1, 0, 1, 2, 59, 4294967296, largest - 1, largest};
        return values[below(values.size())];
    }
    AAFRational rational() {
        const std::int64_t denominator = integer();
        return AAFRational(integer(), denominator == 0 ? 3 : denominator);
    }
    double real() {
        static const std::array<double, 5> values{0.0, -1.5, std::nan(""),
                                                  std::numeric_limits<double>::infinity(),
                                                  std::numeric_limits<double>::max()};
        return values[below(values.size())];
    }
    std::string id() {
        static const std::array<const char*, 8> values{
            "", "t1", "t2", "e1", "e2", "ev1", "repaired-event-0", "nowhere"};
        return values[below(values.size())];
    }

    std::vector<AAFAutomationPoint> points() {
        std::vector<AAFAutomationPoint> result(below(6));
        for (AAFAutomationPoint& point : result) {
            point = {below(2) == 0 ? rational() : AAFRational(integer() / 2, largest), real()};
        }
        return result;
    }
    void damageRate(AAFTimecodeRate& rate) {
        rate.exactRate = rational();
        rate.nominalFramesPerSecond = below(2) == 0 ? 30 : integer();
        rate.dropFrame = below(2) == 0;
    }
    void damageLabel(AAFTimecodeAddress& address) {
        address.hours = integer();
        address.minutes = integer();
        address.seconds = integer();
        address.frames = integer();
        if (below(2) == 0) {
            damageRate(address.rate);
        }
    }
    void damageClock(AAFTimeline& timeline) {
        switch (below(5)) {
            case 0:
                timeline.clock.editRate = rational();
                break;
            case 1:
                damageRate(timeline.clock.timecodeRate);
                break;
            case 2:
                damageLabel(timeline.clock.timelineZero);
                break;
            case 3:
                timeline.explicitProgramStart.emplace();
                damageLabel(*timeline.explicitProgramStart);
                break;
            default:
                timeline.compositionLength = rational();
                break;
        }
    }
    void damageTrack(AAFTrackState& track) {
        switch (below(4)) {
            case 0:
                track.id = id();
                break;
            case 1:
                track.fixedGain = real();
                track.fixedPan = real();
                break;
            case 2:
                track.gainAutomation = AAFAutomationEnvelope{{}, points()};
                break;
            default:
                track.panAutomation = AAFAutomationEnvelope{{}, points()};
                break;
        }
    }
    void damageEssence(AAFSourceEssence& essence) {
        switch (below(4)) {
            case 0:
                essence.id = id();
                break;
            case 1:
                essence.sampleRate = rational();
                break;
            case 2:
                essence.channelCount = integer();
                break;
            default:
                essence.bitDepth = integer();
                break;
        }
    }
    void damageEvent(AAFClipEvent& event) {
        switch (below(8)) {
            case 0:
                event.id = id();
                break;
            case 1:
                event.trackID = id();
                break;
            case 2:
                event.essenceID = id();
                break;
            case 3:
                event.duration = rational();
                event.timelineStart = rational();
                break;
            case 4:
                event.sourceStartSample = integer();
                break;
            case 5:
                event.sourceChannel = integer();
                event.fixedClipGain = real();
                break;
            case 6:
                event.clipGainAutomation = AAFAutomationEnvelope{{}, points()};
                break;
            default:
                event.fadeIn = AAFFade{.duration = rational(), .points = points()};
                event.fadeOut = AAFFade{.duration = rational(), .points = points()};
                break;
        }
    }
    void damageOnce(AAFTimeline& timeline) {
        switch (below(6)) {
            case 0:
                damageClock(timeline);
                break;
            case 1:
                damageTrack(any(timeline.tracks));
                break;
            case 2:
                damageEssence(any(timeline.essences));
                break;
            default:
                damageEvent(any(timeline.events));
                break;
        }
    }

    std::mt19937 engine_;
};

TEST(RandomRepair, AlwaysPassesValidation) {
    std::size_t damaged = 0;
    for (std::uint32_t seed = 0; seed < 20'000; ++seed) {
        const AAFTimeline timeline = Damage(seed).timeline();
        const bool isValid = problemOf(timeline).empty();
        const AAFRepair repair = repairedTimeline(timeline);
        ASSERT_EQ(problemOf(repair.timeline), "") << seed;
        ASSERT_EQ(repair.changes.empty(), isValid) << seed;
        if (isValid) {
            ASSERT_TRUE(repair.timeline == timeline) << seed;
        }
        damaged += isValid ? 0 : 1;
    }
    // The seeds are fixed: most of them do damage.
    EXPECT_GT(damaged, 10'000U);
}

TEST(RandomRepair, RepairedTimelineNeedsNoRepair) {
    for (std::uint32_t seed = 0; seed < 2'000; ++seed) {
        const AAFTimeline repaired = repairedTimeline(Damage(seed).timeline()).timeline;
        ASSERT_EQ(repairedTimeline(repaired), (AAFRepair{repaired, {}})) << seed;
    }
}

TEST(RandomRepair, ObjectsThatAreNotListedStayAsTheyWere) {
    for (std::uint32_t seed = 0; seed < 2'000; ++seed) {
        const AAFTimeline timeline = Damage(seed).timeline();
        const AAFRepair repair = repairedTimeline(timeline);
        std::size_t next = 0;
        for (std::size_t i = 0; i < timeline.events.size(); ++i) {
            bool isListed = false;
            bool isLeftOut = false;
            for (const AAFRepairChange& change : repair.changes) {
                const bool concernsIt = change.place == AAFTimelinePlace::event(i);
                isListed |= concernsIt;
                isLeftOut |= concernsIt && change.field.empty();
            }
            if (isLeftOut) {
                continue;
            }
            ASSERT_LT(next, repair.timeline.events.size()) << seed;
            ASSERT_TRUE(isListed || repair.timeline.events[next] == timeline.events[i]) << seed;
            ++next;
        }
        ASSERT_EQ(next, repair.timeline.events.size()) << seed;
    }
}

}  // namespace
}  // namespace trellant
