// Fades: those that a Source Clip states, and the plain linear dissolve that becomes two of them.
#include "walk_parts.h"

#include <trellant/base/text.h>

namespace trellant {

namespace {

/// The effect argument that carries a transition's level.
constexpr std::int32_t levelArgument = -3;
constexpr std::int32_t linearInterpolation = 2;

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

Boxed<AAFFade> SegmentWalk::fade(OMFObject clip, AAFFade::Direction direction,
                                 const AAFRational& rate, const LossRange& placed) {
    const bool isIn = direction == AAFFade::Direction::fadeIn;
    const auto length = document_.int64(
        clip, {isIn ? OMFProperty::clipFadeInLength : OMFProperty::clipFadeOutLength});
    if (!length || *length < 1) {
        return {};
    }
    const auto type =
        document_.int32(clip, {isIn ? OMFProperty::clipFadeInType : OMFProperty::clipFadeOutType})
            .value_or(1);
    auto curve = curveOfFadeType(type);
    if (const auto* unknown = std::get_if<AAFAutomationInterpolation::Unsupported>(&curve.curve)) {
        // The clip's number alone on purpose: a fade belongs to the clip, wherever it is placed.
        const ObjectPath clipPath("SCLP", clip);
        report({LossKind::unknownFadeCurve, placed, clip}, unknown->identifier,
               ObjectPath(clipPath, isIn ? "FadeIn" : "FadeOut"));
    }
    return AAFFade{
        .direction = direction, .duration = AAFRational(*length) / rate, .curve = std::move(curve)};
}

std::optional<AAFRational> SegmentWalk::simpleLinearDissolveDuration(OMFObject transition,
                                                                     const AAFRational& rate) {
    if (!isSimpleLinearDissolve(transition)) {
        return std::nullopt;
    }
    return lengthSeconds(transition, rate);
}

bool SegmentWalk::isSimpleLinearDissolve(OMFObject transition) {
    const auto effect = document_.objectRef(transition, {OMFProperty::transitionEffect});
    return effect && document_.classOf(*effect) == OMFClass::effect &&
           lowerCased(effectID(*effect)) == "omfi:effect:simplemonoaudiodissolve" &&
           hasLinearLevel(*effect);
}

bool SegmentWalk::hasLinearLevel(OMFObject dissolveEffect) {
    const auto [known, isNew] = linearEffects_.try_emplace(dissolveEffect, true);
    if (isNew) {
        const auto level = effectArgument(
            reads_.objectRefs(dissolveEffect, {OMFProperty::effectSlots}), levelArgument);
        if (level) {
            const auto [linear, isNewLevel] = linearLevels_.try_emplace(*level, false);
            if (isNewLevel) {
                linear->second = isLinearLevel(*level);
            }
            known->second = linear->second;
        }
    }
    return known->second;
}

bool SegmentWalk::isLinearLevel(OMFObject level) {
    if (document_.classOf(level) != OMFClass::varyingValue ||
        document_.int32(level, {OMFProperty::varyingInterpolation}).value_or(linearInterpolation) !=
            linearInterpolation) {
        return false;
    }
    const auto points = reads_.objectRefs(level, {OMFProperty::varyingPoints});
    if (points.size() < 2) {
        return false;
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto time = document_.rational(points[i], {OMFProperty::pointTime});
        const auto value = document_.rational(points[i], {OMFProperty::pointValue});
        if (!time || !value || time->aaf() != value->aaf()) {
            return false;
        }
        if (i == 0 && time->aaf() != AAFRational::zero()) {
            return false;
        }
        if (i + 1 == points.size() && time->aaf() != AAFRational::one()) {
            return false;
        }
    }
    return true;
}

}  // namespace trellant
