// SPDX-License-Identifier: Apache-2.0
#include "data_kinds.h"

#include <trellant/base/text.h>

namespace trellant {

bool DataKinds::mayBeAudio(OMFObject segment) {
    const auto& kind = kindOf(segment);
    return !kind || kind->find("sound") != std::string::npos ||
           kind->find("audio") != std::string::npos;
}

bool DataKinds::isSound(OMFObject segment) {
    const auto& kind = kindOf(segment);
    return kind && kind->find("sound") != std::string::npos;
}

const std::optional<std::string>& DataKinds::kindOf(OMFObject segment) {
    const auto definition = reads_.objectRef(segment, {OMFProperty::componentDataKind});
    if (!definition) {
        return unreadable_;
    }
    const auto [known, isNew] = kinds_.try_emplace(*definition);
    if (isNew) {
        if (const auto id = reads_.string(*definition, {OMFProperty::dataKindID})) {
            known->second = lowerCased(*id);
        }
    }
    return known->second;
}

}  // namespace trellant
