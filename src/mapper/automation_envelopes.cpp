// SPDX-License-Identifier: Apache-2.0
#include "automation_envelopes.h"

#include <string>
#include <utility>

namespace trellant {

namespace {

constexpr std::int32_t defaultInterpolation = 2;

}  // namespace

AAFAutomationInterpolation AutomationEnvelopes::curveOf(OMFObject varying) const {
    const auto code =
        reads_.int32(varying, {OMFProperty::varyingInterpolation}).value_or(defaultInterpolation);
    switch (code) {
        case 1:
            return AAFAutomationInterpolation::constant();
        case 2:
            return AAFAutomationInterpolation::linear();
        default:
            return AAFAutomationInterpolation::unsupported("OMF interpolation " +
                                                           std::to_string(code));
    }
}

Boxed<AAFAutomationEnvelope> AutomationEnvelopes::envelopeOf(OMFObject varying) {
    const auto [known, isNew] = envelopes_.try_emplace(varying);
    if (isNew) {
        known->second = readEnvelope(varying);
    }
    return known->second;
}

Boxed<AAFAutomationEnvelope> AutomationEnvelopes::readEnvelope(OMFObject varying) {
    AAFAutomationEnvelope envelope{.interpolation = curveOf(varying)};
    for (const auto point : reads_.objectRefs(varying, {OMFProperty::varyingPoints})) {
        const auto time = reads_.rational(point, {OMFProperty::pointTime});
        const auto level = reads_.rational(point, {OMFProperty::pointValue});
        if (!time || !level) {
            return {};
        }
        envelope.points.push_back(
            {.timelineOffset = time->aaf(), .value = level->aaf().doubleValue()});
    }
    if (envelope.points.empty()) {
        return {};
    }
    return envelope;
}

}  // namespace trellant
