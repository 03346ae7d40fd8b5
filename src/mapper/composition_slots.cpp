// SPDX-License-Identifier: Apache-2.0
#include "composition_slots.h"

namespace trellant {

void CompositionSlots::read(OMFObject composition) {
    slots_ = reads_.objectRefs(composition, {OMFProperty::mobSlots});
    segments_.reserve(slots_.size());
    for (const auto slot : slots_) {
        segments_.push_back(
            reads_.objectRef(slot, {OMFProperty::slotSegment}).value_or(OMFObject::none));
    }
}

bool CompositionSlots::isAudio(std::size_t index) const {
    return segments_[index] != OMFObject::none && dataKinds_.mayBeAudio(segments_[index]);
}

std::optional<AAFRational> CompositionSlots::usableEditRate(std::size_t index) const {
    const auto stored = reads_.rational(slots_[index], {OMFProperty::slotEditRate});
    if (!stored || stored->aaf().numerator() < 1) {
        return std::nullopt;
    }
    return stored->aaf();
}

std::optional<std::string> CompositionSlots::trackName(std::size_t index) const {
    const auto description = reads_.objectRef(slots_[index], {OMFProperty::slotTrackDesc});
    return description ? reads_.string(*description, {OMFProperty::trackName}) : std::nullopt;
}

}  // namespace trellant
