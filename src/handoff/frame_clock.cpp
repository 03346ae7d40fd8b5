// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/frame_clock.h>

namespace trellant {

AAFProgramClock frameClock(const AAFProgramClock& clock) {
    const AAFTimecodeRate& rate = clock.timecodeRate;
    constexpr std::int64_t mostFrames = 1'000;
    if (rate.dropFrame || rate.nominalFramesPerSecond < 1 ||
        rate.nominalFramesPerSecond > mostFrames ||
        rate.exactRate != AAFRational(rate.nominalFramesPerSecond) ||
        clock.editRate != AAFRational(rate.nominalFramesPerSecond * 1'000, 1'001)) {
        return clock;
    }
    AAFProgramClock counting = clock;
    counting.timecodeRate.exactRate = clock.editRate;
    counting.timelineZero.rate = counting.timecodeRate;
    return counting;
}

}  // namespace trellant
