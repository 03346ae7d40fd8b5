#include "repair_parts.h"

#include <algorithm>

namespace trellant::repair {

namespace {

std::optional<std::string> rateProblem(const AAFTimecodeRate& rate) {
    AAFTimeline alone;
    alone.clock.timecodeRate = rate;
    return problemOf(alone);
}

std::optional<std::string> labelProblem(const AAFTimecodeAddress& address) {
    AAFTimeline alone;
    alone.explicitProgramStart = address;
    return problemOf(alone);
}

void repairRate(AAFTimecodeRate& rate, const AAFTimecodeRate& fallback, std::string_view field,
                const Recorder& recorder) {
    const auto code = rateProblem(rate);
    if (!code) {
        return;
    }
    auto nonDrop = rate;
    nonDrop.dropFrame = false;
    rate = rateProblem(nonDrop) ? fallback : nonDrop;
    recorder.add(*code, Action::replaced, field);
}

/// The rate of `address` must be valid.
void repairLabel(AAFTimecodeAddress& address, std::string_view field, const Recorder& recorder) {
    const auto code = labelProblem(address);
    if (!code) {
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
    recorder.add(*code, Action::clamped, field);
}

}  // namespace

void repairClock(AAFTimeline& timeline, std::vector<AAFRepairChange>& changes) {
    auto& clock = timeline.clock;
    const Recorder recorder(changes, "clock");
    if (clock.editRate <= AAFRational::zero()) {
        clock.editRate = rateProblem(clock.timecodeRate) ? AAFTimecodeRate::fps25().exactRate
                                                         : clock.timecodeRate.exactRate;
        recorder.add("invalid-edit-rate", Action::replaced, "editRate");
    }
    repairRate(
        clock.timecodeRate,
        rateProblem(clock.timelineZero.rate) ? AAFTimecodeRate::fps25() : clock.timelineZero.rate,
        "timecodeRate", recorder);
    repairRate(clock.timelineZero.rate, clock.timecodeRate, "timelineZero.rate", recorder);
    repairLabel(clock.timelineZero, "timelineZero", recorder);
    if (timeline.explicitProgramStart) {
        if (const auto code = labelProblem(*timeline.explicitProgramStart)) {
            timeline.explicitProgramStart.reset();
            Recorder(changes, "program-start").add(*code, Action::leftOut, "");
        }
    }
    if (timeline.compositionLength && *timeline.compositionLength < AAFRational::zero()) {
        timeline.compositionLength.reset();
        Recorder(changes, "composition")
            .add("negative-composition-length", Action::leftOut, "compositionLength");
    }
}

}  // namespace trellant::repair
