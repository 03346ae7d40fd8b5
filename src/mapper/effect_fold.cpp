// SPDX-License-Identifier: Apache-2.0
#include "effect_fold.h"

#include <trellant/base/keyed_hash.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <variant>

namespace trellant {

namespace {

/// Values closer than this are one value.
constexpr double gainTolerance = 1e-9;
constexpr double panTolerance = 1e-6;
/// What merging a draft and folding an effect into it take.
constexpr std::uint64_t stepsOfDraft = 16;

/// The value of an envelope whose points all lie within `tolerance` of the first.
std::optional<double> constantValueOf(const AAFAutomationEnvelope& envelope, double tolerance) {
    const double first = envelope.points.front().value;
    const bool constant = std::all_of(envelope.points.begin(), envelope.points.end(),
                                      [&](const AAFAutomationPoint& point) {
                                          return std::abs(point.value - first) <= tolerance;
                                      });
    if (!constant) {
        return std::nullopt;
    }
    return first;
}

struct Placement {
    OMFObject object;
    AAFRational start;
    bool operator==(const Placement&) const = default;
};

struct PlacementHash {
    std::size_t operator()(const Placement& placement) const noexcept {
        const std::array words{static_cast<std::int64_t>(number(placement.object)),
                               placement.start.numerator(), placement.start.denominator()};
        return static_cast<std::size_t>(
            sipHash(HashSecret::ofProcess(), std::as_bytes(std::span(words))));
    }
};

/// Merges drafts from `first` on that place the same clip at the same time: several inputs of an
/// effect may carry one clip. The earliest stays; it takes a fade or pan that it lacks.
void mergeEqualPlacements(EventDrafts& drafts, std::size_t first) {
    if (drafts.size() - first < 2) {
        return;
    }
    KeyedMap<Placement, std::size_t, PlacementHash> kept;
    kept.reserve(drafts.size() - first);
    std::size_t end = first;
    for (std::size_t i = first; i < drafts.size(); ++i) {
        auto& draft = drafts[i];
        const auto [found, isNew] = kept.try_emplace({draft.object, draft.timelineStart}, end);
        if (isNew) {
            if (i != end) {
                drafts[end] = std::move(draft);
            }
            ++end;
            continue;
        }
        auto& earlier = drafts[found->second];
        if (!earlier.fadeIn) {
            earlier.fadeIn = std::move(draft.fadeIn);
        }
        if (!earlier.fadeOut) {
            earlier.fadeOut = std::move(draft.fadeOut);
        }
        if (!earlier.fixedPan) {
            earlier.fixedPan = draft.fixedPan;
        }
    }
    drafts.erase(drafts.begin() + static_cast<std::ptrdiff_t>(end), drafts.end());
}

void multiplyGain(EventDrafts& drafts, std::size_t first, double factor) {
    for (std::size_t i = first; i < drafts.size(); ++i) {
        drafts[i].fixedClipGain *= factor;
    }
}

/// The innermost pan wins: drafts that have one keep it.
void setPan(EventDrafts& drafts, std::size_t first, double pan) {
    for (std::size_t i = first; i < drafts.size(); ++i) {
        if (!drafts[i].fixedPan) {
            drafts[i].fixedPan = pan;
        }
    }
}

}  // namespace

void EffectFold::fold(const FoldedEffect& effect, EventDrafts& drafts, std::size_t first) {
    reads_.countSteps(stepsOfDraft * (drafts.size() - first));
    mergeEqualPlacements(drafts, first);
    if (effect.isGain) {
        const auto varying = effect.arguments.gainAutomation;
        if (varying && reads_.classOf(*varying) == OMFClass::varyingValue) {
            foldGainAutomation(effect, *varying, drafts, first);
            return;
        }
    }
    foldControl(effect, drafts, first);
}

void EffectFold::foldControl(const FoldedEffect& effect, EventDrafts& drafts, std::size_t first) {
    const auto control = effect.arguments.control;
    if (!control) {
        return;
    }
    const auto className = reads_.classID(*control);
    if (!className) {
        notes_.addUnsupported(effect.loss(LossKind::effectControlUnreadable),
                              effect.id + " control slot has no object class", effect.path);
    } else if (reads_.classOf(*control) == OMFClass::constantValue) {
        foldConstant(effect, *control, drafts, first);
    } else if (reads_.classOf(*control) == OMFClass::varyingValue) {
        foldVarying(effect, *control, drafts, first);
    } else {
        notes_.addUnsupported(effect.loss(LossKind::effectControlUnreadable),
                              effect.id + " control uses unsupported " + std::string(*className),
                              effect.path);
    }
}

void EffectFold::foldGainAutomation(const FoldedEffect& effect, OMFObject varying,
                                    EventDrafts& drafts, std::size_t first) {
    const auto envelope = envelopeOf(varying, effect);
    if (!envelope) {
        notes_.addUnsupported(effect.loss(LossKind::effectControlUnreadable),
                              "MonoAudioGain automation slot (2) is not readable", effect.path);
    } else if (const auto constant = constantValueOf(*envelope, gainTolerance)) {
        multiplyGain(drafts, first, *constant);
    } else {
        giveGainAutomation(effect, envelope, drafts, first);
    }
}

void EffectFold::foldConstant(const FoldedEffect& effect, OMFObject control, EventDrafts& drafts,
                              std::size_t first) {
    const auto value = reads_.rational(control, {OMFProperty::constantValue});
    if (!value) {
        notes_.addUnsupported(effect.loss(LossKind::effectControlUnreadable),
                              effect.id + " constant is not a readable rational", effect.path);
    } else if (effect.isGain) {
        multiplyGain(drafts, first, value->aaf().doubleValue());
    } else {
        setPan(drafts, first, value->aaf().doubleValue());
    }
}

void EffectFold::foldVarying(const FoldedEffect& effect, OMFObject control, EventDrafts& drafts,
                             std::size_t first) {
    const auto envelope = envelopeOf(control, effect);
    if (effect.isGain) {
        if (envelope) {
            giveGainAutomation(effect, envelope, drafts, first);
        } else {
            notes_.addUnsupported(effect.loss(LossKind::effectControlUnreadable),
                                  "MonoAudioGain varying value is not readable", effect.path);
        }
        return;
    }
    const auto constant =
        envelope ? constantValueOf(*envelope, panTolerance) : std::optional<double>();
    if (constant) {
        setPan(drafts, first, *constant);
    } else {
        notes_.addUnsupported(effect.loss(LossKind::panAutomation),
                              "variable MonoAudioPan automation is not reproducible", effect.path);
    }
}

void EffectFold::giveGainAutomation(const FoldedEffect& effect, const Envelope& envelope,
                                    EventDrafts& drafts, std::size_t first) {
    for (std::size_t i = first; i < drafts.size(); ++i) {
        const auto& draft = drafts[i];
        if (draft.clipGainAutomation) {
            notes_.addUnsupported({LossKind::nestedGainAutomation,
                                   LossRange{draft.timelineStart, draft.duration}, draft.object},
                                  "nested gain automation cannot be losslessly collapsed",
                                  effect.path);
        } else {
            // Each draft's event will write them all.
            reads_.countReferences(envelope->points.size());
            drafts[i].clipGainAutomation = envelope;
        }
    }
}

EffectFold::Envelope EffectFold::envelopeOf(OMFObject varying, const FoldedEffect& effect) {
    const auto curve = envelopes_.curveOf(varying);
    if (const auto* unknown = std::get_if<AAFAutomationInterpolation::Unsupported>(&curve.curve)) {
        // The value's number alone on purpose: several effects may share one value.
        notes_.addUnsupported(effect.loss(LossKind::unknownAutomationCurve), unknown->identifier,
                              ObjectPath("VVAL", varying));
    }
    return envelopes_.envelopeOf(varying);
}

}  // namespace trellant
