// SPDX-License-Identifier: Apache-2.0
#include "dissolves.h"

#include <trellant/base/text.h>

namespace trellant {

namespace {

/// The effect argument that carries a transition's level.
constexpr std::int32_t levelArgument = -3;
constexpr std::int32_t linearInterpolation = 2;

}  // namespace

bool Dissolves::isSimpleLinear(OMFObject transition) {
    const auto effect = reads_.objectRef(transition, {OMFProperty::transitionEffect});
    return effect && reads_.classOf(*effect) == OMFClass::effect &&
           lowerCased(kinds_.idOf(*effect)) == "omfi:effect:simplemonoaudiodissolve" &&
           hasLinearLevel(*effect);
}

bool Dissolves::hasLinearLevel(OMFObject dissolveEffect) {
    const auto [known, isNew] = effects_.try_emplace(dissolveEffect, true);
    if (isNew) {
        const auto level = effectArgument(
            reads_, reads_.objectRefs(dissolveEffect, {OMFProperty::effectSlots}), levelArgument);
        if (level) {
            const auto [linear, isNewLevel] = levels_.try_emplace(*level, false);
            if (isNewLevel) {
                linear->second = isLinear(*level);
            }
            known->second = linear->second;
        }
    }
    return known->second;
}

bool Dissolves::isLinear(OMFObject level) {
    if (reads_.classOf(level) != OMFClass::varyingValue ||
        reads_.int32(level, {OMFProperty::varyingInterpolation}).value_or(linearInterpolation) !=
            linearInterpolation) {
        return false;
    }
    const auto points = reads_.objectRefs(level, {OMFProperty::varyingPoints});
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto time = reads_.rational(points[i], {OMFProperty::pointTime});
        const auto value = reads_.rational(points[i], {OMFProperty::pointValue});
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
    // A single point fails above: it cannot lie at both ends.
    return !points.empty();
}

}  // namespace trellant
