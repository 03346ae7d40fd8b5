// SPDX-License-Identifier: Apache-2.0
#include "fades.h"

#include <string>
#include <utility>
#include <variant>

namespace trellant {

namespace {

AAFAutomationInterpolation curveOfFadeType(std::int32_t type) {
    switch (type) {
        case 1:
            return AAFAutomationInterpolation::linear();
        case 2:
            return AAFAutomationInterpolation::power();
        case 3:
            return AAFAutomationInterpolation::logarithmic();
        default:
            return AAFAutomationInterpolation::unsupported("OMF Fade Type " + std::to_string(type));
    }
}

}  // namespace

Boxed<AAFFade> clipFade(const BoundedReads& reads, MappingNotes& notes, OMFObject clip,
                        AAFFade::Direction direction, const AAFRational& rate,
                        const LossRange& placed) {
    const bool isIn = direction == AAFFade::Direction::fadeIn;
    const auto length =
        reads.int64(clip, {isIn ? OMFProperty::clipFadeInLength : OMFProperty::clipFadeOutLength});
    if (!length || *length < 1) {
        return {};
    }
    const auto type =
        reads.int32(clip, {isIn ? OMFProperty::clipFadeInType : OMFProperty::clipFadeOutType})
            .value_or(1);
    auto curve = curveOfFadeType(type);
    if (const auto* unknown = std::get_if<AAFAutomationInterpolation::Unsupported>(&curve.curve)) {
        // The clip's number alone on purpose: a fade belongs to the clip, wherever it is placed.
        const ObjectPath clipPath("SCLP", clip);
        notes.addUnsupported({LossKind::unknownFadeCurve, placed, clip}, unknown->identifier,
                             ObjectPath(clipPath, isIn ? "FadeIn" : "FadeOut"));
    }
    return AAFFade{
        .direction = direction, .duration = AAFRational(*length) / rate, .curve = std::move(curve)};
}

AAFFade dissolveFade(AAFFade::Direction direction, const AAFRational& duration) {
    return {.direction = direction,
            .duration = duration,
            .curve = AAFAutomationInterpolation::linear()};
}

}  // namespace trellant
