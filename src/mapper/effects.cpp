// Effects: mono gain and mono pan are folded into the drafts of their inputs; a rendered result is
// played where the file carries one; everything else is reported and silent.
#include "walk_parts.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <cmath>

namespace trellant {

namespace {

constexpr std::int32_t inputArgument = -1;
constexpr std::int32_t controlArgument = 1;
constexpr std::int32_t gainAutomationArgument = 2;
/// Effect definitions whose identifiers are remembered.
constexpr std::size_t keptDefinitions = 64;
/// Values closer than this are one value.
constexpr double gainTolerance = 1e-9;
constexpr double panTolerance = 1e-6;

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
        const auto mix = [](std::uint64_t seed, std::uint64_t value) {
            return (seed ^ value) * 0x9E3779B97F4A7C15U;
        };
        auto hash = mix(0, number(placement.object));
        hash = mix(hash ^ (hash >> 32U), static_cast<std::uint64_t>(placement.start.numerator()));
        hash = mix(hash ^ (hash >> 32U), static_cast<std::uint64_t>(placement.start.denominator()));
        return static_cast<std::size_t>(hash ^ (hash >> 32U));
    }
};

/// Merges drafts from `first` on that place the same clip at the same time: several inputs of an
/// effect may carry one clip. The earliest stays; it takes a fade or pan that it lacks.
void mergeEqualPlacements(EventDrafts& drafts, std::size_t first) {
    if (drafts.size() - first < 2) {
        return;
    }
    std::unordered_map<Placement, std::size_t, PlacementHash> kept;
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

std::string SegmentWalk::effectID(OMFObject effect) {
    const auto definition = document_.objectRef(effect, {OMFProperty::effectKind});
    if (!definition) {
        return {};
    }
    if (const auto known = effectIDs_.find(*definition); known != effectIDs_.end()) {
        return known->second;
    }
    auto id = reads_.string(*definition, {OMFProperty::effectDefinitionID});
    if (!id) {
        return {};
    }
    if (effectIDs_.size() < keptDefinitions) {
        effectIDs_.emplace(*definition, *id);
    }
    return std::move(*id);
}

std::optional<OMFObject> SegmentWalk::effectArgument(const std::vector<OMFObject>& slots,
                                                     std::int32_t argID) const {
    for (const auto slot : slots) {
        if (document_.int32(slot, {OMFProperty::effectSlotArgID}) == argID) {
            if (const auto value = document_.objectRef(slot, {OMFProperty::effectSlotArgValue})) {
                return value;
            }
        }
    }
    return std::nullopt;
}

SegmentWalk::EffectArguments SegmentWalk::readArguments(const std::vector<OMFObject>& slots) const {
    EffectArguments arguments{.control = effectArgument(slots, controlArgument),
                              .gainAutomation = effectArgument(slots, gainAutomationArgument)};
    for (const auto slot : slots) {
        if (document_.int32(slot, {OMFProperty::effectSlotArgID}) == inputArgument) {
            if (const auto input = document_.objectRef(slot, {OMFProperty::effectSlotArgValue})) {
                arguments.inputs.push_back(*input);
            }
        }
    }
    return arguments;
}

SegmentWalk::SharedArguments SegmentWalk::effectArguments(OMFObject effect) {
    if (const auto known = longArguments_.find(effect); known != longArguments_.end()) {
        return known->second;
    }
    const auto slots = reads_.objectRefs(effect, {OMFProperty::effectSlots});
    auto arguments = std::make_shared<const EffectArguments>(readArguments(slots));
    if (slots.size() > BoundedReads::longList) {
        longArguments_.emplace(effect, arguments);
    }
    return arguments;
}

AAFRational SegmentWalk::flattenEffect(OMFObject effect, const WalkPlace& place,
                                       EventDrafts& drafts) {
    const auto rendering = document_.objectRef(effect, {OMFProperty::effectFinalRendering});
    if (rendering && document_.classOf(*rendering) == OMFClass::sourceClip) {
        const ObjectPath path(place.path, "FinalRendering");
        return flatten(*rendering,
                       {place.rate, place.timelineBase, path, place.scopes, place.depth + 1},
                       drafts);
    }
    auto id = effectID(effect);
    if (id.empty()) {
        return silence(LossKind::effectUnnamed, "effect invocation has no readable EffectID",
                       place.path, effect, place);
    }
    const auto kind = lowerCased(id);
    const bool isGain = kind == "omfi:effect:monoaudiogain";
    if (!isGain && kind != "omfi:effect:monoaudiopan") {
        return silence(LossKind::effectNotRendered,
                       "OMF effect " + id + " is not rendered by TrellantOMFReader", place.path,
                       effect, place);
    }
    const auto arguments = effectArguments(effect);
    if (arguments->inputs.empty()) {
        return silence(LossKind::effectWithoutInput, id + " has no input slot (-1)", place.path,
                       effect, place);
    }
    AAFRational duration;
    const auto first = drafts.size();
    for (std::size_t i = 0; i < arguments->inputs.size(); ++i) {
        const ObjectPath path(place.path, "input", i);
        duration = std::max(
            duration,
            flatten(arguments->inputs[i],
                    {place.rate, place.timelineBase, path, place.scopes, place.depth + 1}, drafts));
    }
    if (duration == AAFRational::zero()) {
        duration = lengthSeconds(effect, place.rate);
    }
    if (!onlyCounts()) {
        mergeEqualPlacements(drafts, first);
        foldArguments(
            {std::move(id), isGain, *arguments, place.path, {place.timelineBase, duration}}, drafts,
            first);
    }
    return duration;
}

void SegmentWalk::foldArguments(const Effect& effect, EventDrafts& drafts, std::size_t first) {
    if (effect.isGain) {
        const auto varying = effect.arguments.gainAutomation;
        if (varying && document_.classOf(*varying) == OMFClass::varyingValue) {
            foldGainAutomation(effect, *varying, drafts, first);
            return;
        }
    }
    const auto control = effect.arguments.control;
    if (!control) {
        return;
    }
    if (!document_.classID(*control)) {
        report(effect.loss(LossKind::effectControlUnreadable),
               effect.id + " control slot has no object class", effect.path);
    } else if (document_.classOf(*control) == OMFClass::constantValue) {
        foldConstant(effect, *control, drafts, first);
    } else if (document_.classOf(*control) == OMFClass::varyingValue) {
        foldVarying(effect, *control, drafts, first);
    } else {
        report(effect.loss(LossKind::effectControlUnreadable),
               effect.id + " control uses unsupported " + std::string(className(*control)),
               effect.path);
    }
}

void SegmentWalk::foldGainAutomation(const Effect& effect, OMFObject varying, EventDrafts& drafts,
                                     std::size_t first) {
    const auto envelope = automationEnvelope(varying, effect);
    if (!envelope) {
        report(effect.loss(LossKind::effectControlUnreadable),
               "MonoAudioGain automation slot (2) is not readable", effect.path);
    } else if (const auto constant = constantValueOf(*envelope, gainTolerance)) {
        multiplyGain(drafts, first, *constant);
    } else {
        giveGainAutomation(effect, envelope, drafts, first);
    }
}

void SegmentWalk::foldConstant(const Effect& effect, OMFObject control, EventDrafts& drafts,
                               std::size_t first) {
    const auto value = document_.rational(control, {OMFProperty::constantValue});
    if (!value) {
        report(effect.loss(LossKind::effectControlUnreadable),
               effect.id + " constant is not a readable rational", effect.path);
    } else if (effect.isGain) {
        multiplyGain(drafts, first, value->aaf().doubleValue());
    } else {
        setPan(drafts, first, value->aaf().doubleValue());
    }
}

void SegmentWalk::foldVarying(const Effect& effect, OMFObject control, EventDrafts& drafts,
                              std::size_t first) {
    const auto envelope = automationEnvelope(control, effect);
    if (effect.isGain) {
        if (envelope) {
            giveGainAutomation(effect, envelope, drafts, first);
        } else {
            report(effect.loss(LossKind::effectControlUnreadable),
                   "MonoAudioGain varying value is not readable", effect.path);
        }
        return;
    }
    const auto constant =
        envelope ? constantValueOf(*envelope, panTolerance) : std::optional<double>();
    if (constant) {
        setPan(drafts, first, *constant);
    } else {
        report(effect.loss(LossKind::panAutomation),
               "variable MonoAudioPan automation is not reproducible", effect.path);
    }
}

void SegmentWalk::giveGainAutomation(const Effect& effect, const Envelope& envelope,
                                     EventDrafts& drafts, std::size_t first) {
    for (std::size_t i = first; i < drafts.size(); ++i) {
        const auto& draft = drafts[i];
        if (draft.clipGainAutomation) {
            report({LossKind::nestedGainAutomation, LossRange{draft.timelineStart, draft.duration},
                    draft.object},
                   "nested gain automation cannot be losslessly collapsed", effect.path);
        } else {
            // Each draft's event will write them all.
            reads_.countReferences(envelope->points.size());
            drafts[i].clipGainAutomation = envelope;
        }
    }
}

}  // namespace trellant
