// SPDX-License-Identifier: Apache-2.0
#include "aaf_operations.h"

#include "aaf_limits.h"

#include <optional>
#include <utility>
#include <variant>

namespace trellant::sessions {

namespace {

using aaf::Interpolation;
using aaf::Operation;
using aaf::OperationGroup;
using aaf::ParameterKind;

aaf::Rational rational(const StoredFraction& fraction) noexcept {
    return {fraction.numerator, fraction.denominator};
}

struct InterpolationOf {
    Interpolation operator()(const AAFAutomationInterpolation::Linear&) const {
        return Interpolation::linear;
    }
    Interpolation operator()(const AAFAutomationInterpolation::Constant&) const {
        return Interpolation::constant;
    }
    Interpolation operator()(const AAFAutomationInterpolation::Power&) const {
        return Interpolation::power;
    }
    Interpolation operator()(const AAFAutomationInterpolation::Logarithmic&) const {
        return Interpolation::logarithmic;
    }
    Interpolation operator()(const AAFAutomationInterpolation::Unsupported&) const {
        return Interpolation::linear;
    }
};

Interpolation interpolationOf(const AAFAutomationInterpolation& curve) {
    return std::visit(InterpolationOf(), curve.curve);
}

OperationGroup fixed(Operation operation, ParameterKind parameter, const StoredFraction& value) {
    return {.operation = operation, .parameters = {{parameter, rational(value)}}};
}

OperationGroup varying(Operation operation, ParameterKind parameter,
                       const AAFAutomationEnvelope& envelope,
                       StoredFraction (*stored)(double) noexcept) {
    aaf::VaryingValue value{.interpolation = interpolationOf(envelope.interpolation)};
    value.points.reserve(envelope.points.size());
    for (const AAFAutomationPoint& point : envelope.points) {
        value.points.push_back(
            {rational(storedPlace(point.timelineOffset)), rational(stored(point.value))});
    }
    OperationGroup group{.operation = operation};
    group.parameters.push_back({parameter, std::move(value)});
    return group;
}

void addLevels(const Levels& levels, std::vector<OperationGroup>& groups) {
    if (levels.gain != 1) {
        groups.push_back(
            fixed(Operation::monoAudioGain, ParameterKind::amplitude, storedGain(levels.gain)));
    }
    if (levels.automation) {
        groups.push_back(varying(Operation::monoAudioGain, ParameterKind::amplitude,
                                 *levels.automation, storedGain));
    }
}

}  // namespace

std::vector<OperationGroup> clipOperations(const exchange::PlannedClip& clip) {
    std::vector<OperationGroup> groups;
    if (clip.gain != 1 || clip.gainAutomation) {
        addLevels(clipLevelsAsWritten({clip.gain, clip.gainAutomation}), groups);
    }
    return groups;
}

std::vector<OperationGroup> trackOperations(const exchange::PlannedTrack& track) {
    std::vector<OperationGroup> groups;
    addLevels(trackLevelsAsWritten({track.gain, track.gainAutomation}), groups);
    if (const auto automation = panAutomationAsWritten(track.panAutomation)) {
        groups.push_back(
            varying(Operation::monoAudioPan, ParameterKind::pan, *automation, storedPan));
    } else if (track.pan) {
        groups.push_back(fixed(Operation::monoAudioPan, ParameterKind::pan, storedPan(*track.pan)));
    }
    return groups;
}

OperationGroup dissolve(const AAFAutomationInterpolation& curve) {
    const Interpolation interpolation = interpolationOf(curve);
    OperationGroup group{.operation = Operation::monoAudioDissolve};
    group.parameters.push_back(
        {ParameterKind::level, aaf::VaryingValue{.interpolation = interpolation,
                                                 .points = {{.time = {0, 1}, .value = {0, 1}},
                                                            {.time = {1, 1}, .value = {1, 1}}}}});
    if (interpolation == Interpolation::power) {
        // Some programs always say "linear" above and look for an equal-power curve here alone.
        group.componentAttributes.push_back({"_ATN_AUDIO_DISSOLVE_CURVETYPE", std::int32_t{1}});
    }
    return group;
}

}  // namespace trellant::sessions
