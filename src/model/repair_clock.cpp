// SPDX-License-Identifier: Apache-2.0
#include "repair_parts.h"

#include <algorithm>

namespace trellant::repair {

namespace {

std::optional<Problem> rateProblem(const AAFTimecodeRate& rate) {
    AAFTimeline alone;
    alone.clock.timecodeRate = rate;
    return problemOf(alone);
}

std::optional<Problem> labelProblem(const AAFTimecodeAddress& address) {
    AAFTimeline alone;
    alone.explicitProgramStart = address;
    return problemOf(alone);
}

void repairRate(AAFTimecodeRate& rate, const AAFTimecodeRate& fallback, std::string_view field,
                const Recorder& recorder) {
    const auto problem = rateProblem(rate);
    if (!problem) {
        return;
    }
    auto nonDrop = rate;
    nonDrop.dropFrame = false;
    rate = rateProblem(nonDrop) ? fallback : nonDrop;
    recorder.add(*problem, Action::replaced, field);
}

/// The rate of `address` must be valid.
void repairLabel(AAFTimecodeAddress& address, std::string_view field, const Recorder& recorder) {
    const auto problem = labelProblem(address);
    if (!problem) {
        return;
    }
    address.hours = std::clamp<std::int64_t>(address.hours, 0, 23);
    address.minutes = std::clamp<std::int64_t>(address.minutes, 0, 59);
    address.seconds = std::clamp<std::int64_t>(address.seconds, 0, 59);
    address.frames =
        std::clamp<std::int64_t>(address.frames, 0, address.rate.nominalFramesPerSecond - 1);
    if (address.isSkipped()) {
        address = address.startOfCurrentTimecodeMinute();
    }
    recorder.add(*problem, Action::clamped, field);
}

}  // namespace

void repairClock(AAFTimeline& timeline, std::vector<AAFRepairChange>& changes) {
    auto& clock = timeline.clock;
    const Recorder recorder(changes, {Place::Kind::clock});
    if (clock.editRate <= AAFRational::zero()) {
        clock.editRate = rateProblem(clock.timecodeRate) ? AAFTimecodeRate::fps25().exactRate
                                                         : clock.timecodeRate.exactRate;
        recorder.add(Problem::invalidEditRate, Action::replaced, "editRate");
    }
    repairRate(
        clock.timecodeRate,
        rateProblem(clock.timelineZero.rate) ? AAFTimecodeRate::fps25() : clock.timelineZero.rate,
        "timecodeRate", recorder);
    repairRate(clock.timelineZero.rate, clock.timecodeRate, "timelineZero.rate", recorder);
    repairLabel(clock.timelineZero, "timelineZero", recorder);
    if (timeline.explicitProgramStart) {
        if (const auto problem = labelProblem(*timeline.explicitProgramStart)) {
            timeline.explicitProgramStart.reset();
            Recorder(changes, {Place::Kind::programStart}).add(*problem, Action::leftOut, "");
        }
    }
    if (timeline.compositionLength && *timeline.compositionLength < AAFRational::zero()) {
        timeline.compositionLength.reset();
        Recorder(changes, {Place::Kind::composition})
            .add(Problem::negativeCompositionLength, Action::leftOut, "compositionLength");
    }
}

}  // namespace trellant::repair
