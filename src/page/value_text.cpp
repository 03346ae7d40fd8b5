// SPDX-License-Identifier: Apache-2.0
#include "value_text.h"

#include "say.h"

#include <trellant/base/precondition.h>
#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>

#include <cstdint>

namespace trellant::page {

std::string_view stateName(SourceState state) {
    switch (state) {
        case SourceState::embedded:
            return say("embedded");
        case SourceState::located:
            return say("located");
        case SourceState::missing:
            return say("missing");
        case SourceState::severalCandidates:
            return say("severalCandidates");
        case SourceState::misfit:
            return say("misfit");
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string curveName(const AAFAutomationInterpolation& curve) {
    struct Name {
        std::string operator()(const AAFAutomationInterpolation::Linear&) const {
            return std::string(say("linear"));
        }
        std::string operator()(const AAFAutomationInterpolation::Constant&) const {
            return std::string(say("constant"));
        }
        std::string operator()(const AAFAutomationInterpolation::Power&) const {
            return std::string(say("power"));
        }
        std::string operator()(const AAFAutomationInterpolation::Logarithmic&) const {
            return std::string(say("logarithmic"));
        }
        std::string operator()(const AAFAutomationInterpolation::Unsupported& other) const {
            return other.identifier;
        }
    };
    return std::visit(Name{}, curve.curve);
}

std::string fadeText(const AAFTimeline& timeline, const AAFFade& fade) {
    const std::int64_t frames =
        (fade.duration * frameClock(timeline.clock).timecodeRate.exactRate).roundedInt64();
    return (frames == 0 ? "<1" : std::to_string(frames)) + "f " + curveName(fade.curve);
}

std::string frameRateText(const AAFTimecodeRate& rate) {
    return plainRate(rate.exactRate) + " fps" +
           (rate.dropFrame ? ", " + std::string(say("dropFrame")) : "");
}

}  // namespace trellant::page
