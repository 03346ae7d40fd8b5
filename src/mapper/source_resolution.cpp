// SPDX-License-Identifier: Apache-2.0
#include "source_resolution.h"

#include <algorithm>

namespace trellant {

namespace {

/// What a track descriptor without a number counts as: found only by a search for that number.
constexpr std::uint32_t unnumberedTrack = 0xFFFF'FFFF;

/// What a link of the chain takes beside its reads.
constexpr std::uint64_t stepsOfLink = 10;

std::uint64_t keyOf(OMFObject mob, std::uint32_t trackID) {
    return std::uint64_t{number(mob)} << 32U | trackID;
}

}  // namespace

SourceResolution::SourceResolution(BoundedReads& reads, const OMFDocument::MobMap& mobMap,
                                   DataKinds& dataKinds)
    : reads_(reads), mobMap_(mobMap), dataKinds_(dataKinds) {
    for (const auto mob : reads_.objects("SMOB")) {
        if (const auto descriptor = reads_.objectRef(mob, {OMFProperty::sourceMobDescription})) {
            ownerOfDescriptor_.try_emplace(*descriptor, mob);
        }
    }
}

SourceOrLoss SourceResolution::resolveSourceClip(OMFObject clip, AAFRational rate,
                                                 const AAFRational& initialTrim) {
    auto offset = initialTrim;
    std::vector<OMFObject> visited;
    passed_.clear();
    for (;;) {
        reads_.countSteps(stepsOfLink);
        if (visited.size() >= maximumDepth ||
            std::find(visited.begin(), visited.end(), clip) != visited.end()) {
            return ClipSourceCycle{clip};
        }
        const auto named = referenceOf(clip);
        if (const auto* loss = std::get_if<ClipLoss>(&named)) {
            return *loss;
        }
        const auto& reference = std::get<Reference>(named);
        pass(reference.mob);
        const auto& found = track(reference.mob, reference.trackID);
        if (!found.editRate) {
            return ClipSourceTrackMissing{reference.mobID, reference.trackID};
        }
        const auto start = reads_.int64(clip, {OMFProperty::clipStartTime}).value_or(0);
        offset = offset + AAFRational(start) / rate + found.origin;
        if (found.isAudioSource) {
            return ResolvedSource{.mob = reference.mob,
                                  .mobID = reference.mobID,
                                  .start = offset,
                                  .channel = found.channel,
                                  .channelDefaulted = found.channelDefaulted};
        }
        if (!found.segment || reads_.classOf(*found.segment) != OMFClass::sourceClip) {
            return deadEnd(clip, reference, found);
        }
        visited.push_back(clip);
        clip = *found.segment;
        rate = *found.editRate;
        pass(clip);
    }
}

void SourceResolution::pass(OMFObject object) {
    if (!reads_.remarksOf(object).empty()) {
        passed_.push_back(object);
    }
}

std::variant<SourceResolution::Reference, ClipLoss> SourceResolution::referenceOf(
    OMFObject clip) const {
    const auto sourceID = reads_.uid(clip, {OMFProperty::clipSourceID});
    if (!sourceID || *sourceID == OMFUID::zero()) {
        return ClipWithoutSource{};
    }
    const auto mob = mobMap_.find(*sourceID);
    if (mob == mobMap_.end()) {
        return ClipSourceMissing{clip, *sourceID};
    }
    return Reference{.mob = mob->second,
                     .mobID = *sourceID,
                     .trackID = reads_.uint32(clip, {OMFProperty::clipSourceTrackID}).value_or(0)};
}

ClipLoss SourceResolution::deadEnd(OMFObject clip, const Reference& reference,
                                   const Track& found) const {
    ClipSourceDeadEnd loss{.clip = clip, .mobID = reference.mobID, .trackID = reference.trackID};
    if (found.segment) {
        loss.segmentClass = reads_.classID(*found.segment);
    }
    return loss;
}

const SourceResolution::Track& SourceResolution::track(OMFObject mob, std::uint32_t trackID) {
    const auto key = keyOf(mob, trackID);
    if (const auto known = tracks_.find(key); known != tracks_.end()) {
        return known->second;
    }
    return tracks_.emplace(key, readTrack(mob, trackID)).first->second;
}

SourceResolution::Track SourceResolution::readTrack(OMFObject mob, std::uint32_t trackID) {
    Track result;
    const auto slot = findSlot(mob, trackID);
    if (!slot) {
        return result;
    }
    const auto rate = reads_.rational(*slot, {OMFProperty::slotEditRate});
    // A rate of zero cannot measure anything: the slot counts as one without.
    if (!rate || rate->numerator == 0) {
        return result;
    }
    result.editRate = rate->aaf();
    if (const auto description = reads_.objectRef(*slot, {OMFProperty::slotTrackDesc})) {
        const auto origin = reads_.int64(*description, {OMFProperty::trackOrigin}).value_or(0);
        result.origin = AAFRational(origin) / *result.editRate;
        if (const auto physical = reads_.int32(*description, {OMFProperty::trackPhysicalTrack})) {
            result.channel = std::max<std::int64_t>(*physical, 1) - 1;
            result.channelDefaulted = *physical < 1;
        }
    }
    result.isAudioSource = isAudioSource(mob);
    result.segment = reads_.objectRef(*slot, {OMFProperty::slotSegment});
    return result;
}

std::optional<OMFObject> SourceResolution::findSlot(OMFObject mob, std::uint32_t trackID) {
    if (slotsIndexed_.insert(mob).second) {
        indexSlots(mob);
    }
    const auto slot = slots_.find(keyOf(mob, trackID));
    if (slot == slots_.end()) {
        return std::nullopt;
    }
    return slot->second;
}

void SourceResolution::indexSlots(OMFObject mob) {
    for (const auto slot : reads_.objectRefs(mob, {OMFProperty::mobSlots})) {
        if (const auto description = reads_.objectRef(slot, {OMFProperty::slotTrackDesc})) {
            const auto trackID =
                reads_.uint32(*description, {OMFProperty::trackID}).value_or(unnumberedTrack);
            slots_.try_emplace(keyOf(mob, trackID), slot);
        }
    }
}

bool SourceResolution::isAudioSource(OMFObject mob) {
    if (reads_.classOf(mob) != OMFClass::sourceMob) {
        return false;
    }
    const auto descriptor = reads_.objectRef(mob, {OMFProperty::sourceMobDescription});
    if (!descriptor) {
        return false;
    }
    const auto kind = reads_.classOf(*descriptor);
    if (kind == OMFClass::waveDescriptor || kind == OMFClass::aifcDescriptor) {
        return true;
    }
    return reads_.rational(*descriptor, {OMFProperty::fileSampleRate}).has_value() &&
           descriptorHasAudioHint(*descriptor);
}

bool SourceResolution::descriptorHasAudioHint(OMFObject descriptor) {
    const auto owner = ownerOfDescriptor_.find(descriptor);
    if (owner == ownerOfDescriptor_.end()) {
        return false;
    }
    const auto [hint, isNew] = audioHints_.try_emplace(descriptor, false);
    if (isNew) {
        hint->second = hasSoundSlot(owner->second);
    }
    return hint->second;
}

bool SourceResolution::hasSoundSlot(OMFObject mob) {
    const auto slots = reads_.objectRefs(mob, {OMFProperty::mobSlots});
    return std::any_of(slots.begin(), slots.end(), [&](OMFObject slot) {
        const auto segment = reads_.objectRef(slot, {OMFProperty::slotSegment});
        return segment && dataKinds_.isSound(*segment);
    });
}

}  // namespace trellant
