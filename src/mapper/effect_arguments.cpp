// SPDX-License-Identifier: Apache-2.0
#include "effect_arguments.h"

#include <utility>

namespace trellant {

namespace {

constexpr std::int32_t inputArgument = -1;
constexpr std::int32_t controlArgument = 1;
constexpr std::int32_t gainAutomationArgument = 2;

}  // namespace

std::string EffectKinds::idOf(OMFObject effect) {
    const auto definition = reads_.objectRef(effect, {OMFProperty::effectKind});
    if (!definition) {
        return {};
    }
    if (const auto known = ids_.find(*definition); known != ids_.end()) {
        return known->second;
    }
    auto id = reads_.string(*definition, {OMFProperty::effectDefinitionID});
    if (!id) {
        return {};
    }
    if (ids_.size() < keptDefinitions) {
        ids_.emplace(*definition, *id);
    }
    return std::move(*id);
}

std::optional<OMFObject> effectArgument(const BoundedReads& reads,
                                        const std::vector<OMFObject>& slots, std::int32_t argID) {
    for (const auto slot : slots) {
        if (reads.int32(slot, {OMFProperty::effectSlotArgID}) == argID) {
            if (const auto value = reads.objectRef(slot, {OMFProperty::effectSlotArgValue})) {
                return value;
            }
        }
    }
    return std::nullopt;
}

std::shared_ptr<const EffectArguments::Values> EffectArguments::of(OMFObject effect) {
    if (const auto known = long_.find(effect); known != long_.end()) {
        return known->second;
    }
    const auto slots = reads_.objectRefs(effect, {OMFProperty::effectSlots});
    auto values = std::make_shared<const Values>(readValues(slots));
    if (slots.size() > BoundedReads::longList) {
        long_.emplace(effect, values);
    }
    return values;
}

EffectArguments::Values EffectArguments::readValues(const std::vector<OMFObject>& slots) const {
    Values values{.control = effectArgument(reads_, slots, controlArgument),
                  .gainAutomation = effectArgument(reads_, slots, gainAutomationArgument)};
    for (const auto slot : slots) {
        if (reads_.int32(slot, {OMFProperty::effectSlotArgID}) == inputArgument) {
            if (const auto input = reads_.objectRef(slot, {OMFProperty::effectSlotArgValue})) {
                values.inputs.push_back(*input);
            }
        }
    }
    return values;
}

}  // namespace trellant
