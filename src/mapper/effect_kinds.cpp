// SPDX-License-Identifier: Apache-2.0
#include "effect_kinds.h"

#include <utility>

namespace trellant {

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

}  // namespace trellant
