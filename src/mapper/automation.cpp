// Varying values as automation envelopes.
#include "walk_parts.h"

namespace trellant {

namespace {

constexpr std::int32_t defaultInterpolation = 2;

AAFAutomationInterpolation curveOfInterpolation(std::int32_t code) {
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

}  // namespace

SegmentWalk::Envelope SegmentWalk::automationEnvelope(OMFObject value, const Effect& effect) {
    if (document_.classOf(value) != OMFClass::varyingValue) {
        return {};
    }
    auto curve = curveOfInterpolation(
        document_.int32(value, {OMFProperty::varyingInterpolation}).value_or(defaultInterpolation));
    if (const auto* unknown = std::get_if<AAFAutomationInterpolation::Unsupported>(&curve.curve)) {
        // The value's number alone on purpose: several effects may share one value.
        report(effect.loss(LossKind::unknownAutomationCurve), unknown->identifier,
               ObjectPath("VVAL", value));
    }
    const auto [known, isNew] = envelopes_.try_emplace(value);
    if (isNew) {
        known->second = readEnvelope(value, std::move(curve));
    }
    return known->second;
}

SegmentWalk::Envelope SegmentWalk::readEnvelope(OMFObject value, AAFAutomationInterpolation curve) {
    AAFAutomationEnvelope envelope{.interpolation = std::move(curve)};
    for (const auto point : reads_.objectRefs(value, {OMFProperty::varyingPoints})) {
        const auto time = document_.rational(point, {OMFProperty::pointTime});
        const auto level = document_.rational(point, {OMFProperty::pointValue});
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
