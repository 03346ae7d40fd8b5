// SPDX-License-Identifier: Apache-2.0
#include "clip_cut.h"

#include "sample_clock.h"

#include <algorithm>
#include <variant>

namespace trellant::exchange {

namespace {

/// The value between two neighbours at `at`, which lies from `left` to `right`.
double valueBetween(const AAFAutomationEnvelope& envelope, const AAFAutomationPoint& left,
                    const AAFAutomationPoint& right, const AAFRational& at) {
    const bool holds =
        std::holds_alternative<AAFAutomationInterpolation::Constant>(envelope.interpolation.curve);
    if (holds || left.timelineOffset == right.timelineOffset) {
        return left.value;
    }
    const AAFRational part =
        (at - left.timelineOffset) / (right.timelineOffset - left.timelineOffset);
    return left.value + (right.value - left.value) * part.doubleValue();
}

/// `cut`: the fraction of the owner, below 1, that goes.
AAFAutomationEnvelope withoutHead(const AAFAutomationEnvelope& envelope, const AAFRational& cut) {
    AAFAutomationEnvelope rest{envelope.interpolation, {}};
    const AAFRational remaining = AAFRational::one() - cut;
    const auto first =
        std::find_if(envelope.points.begin(), envelope.points.end(),
                     [&](const AAFAutomationPoint& point) { return point.timelineOffset >= cut; });
    if (first != envelope.points.begin()) {
        const AAFAutomationPoint& last = *(first - 1);
        rest.points.push_back(
            {AAFRational::zero(), first == envelope.points.end()
                                      ? last.value
                                      : valueBetween(envelope, last, *first, cut)});
    }
    for (auto point = first; point != envelope.points.end(); ++point) {
        const AAFRational offset = (point->timelineOffset - cut) / remaining;
        rest.points.push_back({std::min(offset, AAFRational::one()), point->value});
    }
    return rest;
}

}  // namespace

AAFClipEvent fromTheStart(const AAFClipEvent& event, const AAFRational& sampleRate) {
    AAFClipEvent rest = event;
    const AAFRational cut = AAFRational::zero() - event.timelineStart;
    rest.timelineStart = AAFRational::zero();
    rest.duration = event.timelineEnd();
    Rounding ignored;
    rest.sourceStartSample += SampleClock(sampleRate).nearest(cut, ignored).value_or(0);
    if (event.fadeIn) {
        if (event.fadeIn->duration <= cut) {
            rest.fadeIn.reset();
        } else {
            AAFFade fade = *event.fadeIn;
            fade.duration = fade.duration - cut;
            rest.fadeIn = std::move(fade);
        }
    }
    if (event.clipGainAutomation) {
        rest.clipGainAutomation = withoutHead(*event.clipGainAutomation, cut / event.duration);
    }
    return rest;
}

}  // namespace trellant::exchange
