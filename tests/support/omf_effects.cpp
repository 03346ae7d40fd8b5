// SPDX-License-Identifier: Apache-2.0
// Transitions and effects of a document under construction.
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

constexpr std::int32_t inputArgument = -1;
constexpr std::int32_t controlArgument = 1;

}  // namespace

ObjectBuilder OmfBuilder::transition(const TransitionSpec& given) {
    ObjectBuilder transition =
        component("TRAN", given.length).position("OMFI:TRAN:CutPoint", given.cutPoint);
    if (given.effect) {
        transition.ref("OMFI:TRAN:Effect", *given.effect);
    }
    // It overlaps its neighbours by its length.
    lengths_[transition] = -given.length;
    return transition;
}

ObjectBuilder OmfBuilder::dissolve(std::int64_t length) {
    return transition(
        {.length = length,
         .cutPoint = length / 2,
         .effect = effect({.effectID = "omfi:effect:SimpleMonoAudioDissolve", .length = length})});
}

ObjectBuilder OmfBuilder::effectDefinition(std::string_view effectID) {
    const auto known = effectDefinitions_.find(effectID);
    if (known != effectDefinitions_.end()) {
        return at(known->second);
    }
    ObjectBuilder definition = object("EDEF").string("OMFI:EDEF:EffectID", effectID);
    effectDefinitions_.emplace(effectID, definition);
    return definition;
}

ObjectBuilder OmfBuilder::effect(const EffectSpec& given) {
    ObjectBuilder effect = component("EFFE", given.length);
    if (given.effectID) {
        effect.ref("OMFI:EFFE:EffectKind", effectDefinition(*given.effectID));
    }
    std::vector<ObjectID> slots;
    for (const EffectSlotSpec& slotSpec : given.slots) {
        ObjectBuilder slot = object("ESLT").int32("OMFI:ESLT:ArgID", slotSpec.argument);
        if (slotSpec.value) {
            slot.ref("OMFI:ESLT:ArgValue", *slotSpec.value);
        }
        slots.push_back(slot);
    }
    if (!slots.empty()) {
        effect.refs("OMFI:EFFE:EffectSlots", slots);
    }
    return effect;
}

ObjectBuilder OmfBuilder::constantValue(Ratio value, std::int64_t length) {
    return component("CVAL", length).rational("OMFI:CVAL:Value", value);
}

ObjectBuilder OmfBuilder::varyingValue(const std::vector<PointSpec>& points,
                                       std::optional<std::int16_t> interpolation,
                                       std::int64_t length) {
    ObjectBuilder varying = component("VVAL", length);
    if (interpolation) {
        varying.int16("OMFI:VVAL:Interpolation", *interpolation);
    }
    std::vector<ObjectID> objects;
    for (const PointSpec& point : points) {
        objects.push_back(controlPoint(point));
    }
    return varying.refs("OMFI:VVAL:PointList", objects);
}

ObjectBuilder OmfBuilder::controlPoint(const PointSpec& given) {
    return object("CTLP")
        .rational("OMFI:CTLP:Time", given.time)
        .rational("OMFI:CTLP:Value", given.value);
}

ObjectBuilder OmfBuilder::gain(ObjectID input, ObjectID control) {
    return effect({.effectID = "omfi:effect:MonoAudioGain",
                   .length = lengthOf(input),
                   .slots = {{inputArgument, input}, {controlArgument, control}}});
}

ObjectBuilder OmfBuilder::pan(ObjectID input, ObjectID control) {
    return effect({.effectID = "omfi:effect:MonoAudioPan",
                   .length = lengthOf(input),
                   .slots = {{inputArgument, input}, {controlArgument, control}}});
}

}  // namespace trellant::testing
