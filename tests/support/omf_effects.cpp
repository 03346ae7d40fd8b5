// Transitions and effects of a document under construction.
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

constexpr std::int32_t inputArgument = -1;
constexpr std::int32_t controlArgument = 1;

}  // namespace

ObjectBuilder OmfBuilder::transition(const TransitionSpec& spec) {
    ObjectBuilder transition =
        component("TRAN", spec.length).position("OMFI:TRAN:CutPoint", spec.cutPoint);
    if (spec.effect) {
        transition.ref("OMFI:TRAN:Effect", *spec.effect);
    }
    // It overlaps its neighbours by its length.
    lengths_[transition] = -spec.length;
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

ObjectBuilder OmfBuilder::effect(const EffectSpec& spec) {
    ObjectBuilder effect = component("EFFE", spec.length);
    if (spec.effectID) {
        effect.ref("OMFI:EFFE:EffectKind", effectDefinition(*spec.effectID));
    }
    std::vector<ObjectID> slots;
    for (const EffectSlotSpec& slotSpec : spec.slots) {
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

ObjectBuilder OmfBuilder::controlPoint(const PointSpec& spec) {
    return object("CTLP")
        .rational("OMFI:CTLP:Time", spec.time)
        .rational("OMFI:CTLP:Value", spec.value);
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
