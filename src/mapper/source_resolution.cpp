#include "source_resolution.h"

#include "object_path.h"

#include <algorithm>

namespace trellant {

namespace {

/// What a track descriptor without a number counts as: found only by a search for that number.
constexpr std::uint32_t unnumberedTrack = 0xFFFF'FFFF;

std::uint64_t keyOf(OMFObject mob, std::uint32_t trackID) {
    return std::uint64_t{number(mob)} << 32U | trackID;
}

}  // namespace

SourceResolution::SourceResolution(BoundedReads& reads, const OMFDocument::MobMap& mobMap,
                                   DataKinds& dataKinds, MappingNotes& notes)
    : document_(reads.document()),
      reads_(reads),
      mobMap_(mobMap),
      dataKinds_(dataKinds),
      notes_(notes) {
    for (const auto mob : document_.objects("SMOB")) {
        if (const auto descriptor = document_.objectRef(mob, {OMFProperty::sourceMobDescription})) {
            ownerOfDescriptor_.try_emplace(*descriptor, mob);
        }
    }
}

std::optional<ResolvedSource> SourceResolution::resolveSourceClip(OMFObject clip, AAFRational rate,
                                                                  const AAFRational& initialTrim) {
    auto offset = initialTrim;
    std::vector<OMFObject> visited;
    for (;;) {
        if (visited.size() >= maximumDepth ||
            std::find(visited.begin(), visited.end(), clip) != visited.end()) {
            notes_.addUnsupported(notes_.lossOfClip(LossKind::sourceCycle),
                                  "source reference cycle/depth limit", ObjectPath("SCLP", clip));
            return std::nullopt;
        }
        const auto reference = referenceOf(clip);
        if (!reference) {
            return std::nullopt;
        }
        const auto& found = track(reference->mob, reference->trackID);
        if (!found.editRate) {
            reportMissingTrack(*reference);
            return std::nullopt;
        }
        const auto start = document_.int64(clip, {OMFProperty::clipStartTime}).value_or(0);
        offset = offset + AAFRational(start) / rate + found.origin;
        if (found.isAudioSource) {
            return ResolvedSource{.mob = reference->mob,
                                  .mobID = reference->mobID,
                                  .start = offset,
                                  .channel = found.channel,
                                  .channelDefaulted = found.channelDefaulted};
        }
        if (!found.segment || document_.classOf(*found.segment) != OMFClass::sourceClip) {
            reportDeadEnd(clip, *reference, found);
            return std::nullopt;
        }
        visited.push_back(clip);
        clip = *found.segment;
        rate = *found.editRate;
    }
}

std::optional<SourceResolution::Reference> SourceResolution::referenceOf(OMFObject clip) {
    const auto sourceID = document_.uid(clip, {OMFProperty::clipSourceID});
    if (!sourceID || *sourceID == OMFUID::zero()) {
        notes_.giveReason(LossKind::clipWithoutSource, "the Source Clip carries no Source ID");
        return std::nullopt;
    }
    const auto mob = mobMap_.find(*sourceID);
    if (mob == mobMap_.end()) {
        const auto uid = sourceID->description();
        notes_.diagnose("Unresolved Source Mob " + uid + " for SCLP " +
                        std::to_string(number(clip)));
        notes_.giveReason(LossKind::clipSourceMissing,
                          "the referenced Source Mob " + uid + " is not contained in the file");
        return std::nullopt;
    }
    return Reference{
        .mob = mob->second,
        .mobID = *sourceID,
        .trackID = document_.uint32(clip, {OMFProperty::clipSourceTrackID}).value_or(0)};
}

void SourceResolution::reportMissingTrack(const Reference& reference) {
    const auto mob = "Source Mob " + reference.mobID.description();
    const auto trackID = std::to_string(reference.trackID);
    notes_.diagnose(mob + " has no TrackID " + trackID);
    notes_.giveReason(LossKind::clipSourceTrackMissing, mob + " has no track " + trackID);
}

void SourceResolution::reportDeadEnd(OMFObject clip, const Reference& reference,
                                     const Track& found) {
    const auto segmentClass = found.segment ? document_.classID(*found.segment) : std::nullopt;
    notes_.addUnsupported(notes_.lossOfClip(LossKind::sourceDeadEnd),
                          "Source Mob " + reference.mobID.description() + " TrackID " +
                              std::to_string(reference.trackID) + " resolves through " +
                              std::string(segmentClass.value_or("no segment")) +
                              ", not a direct Source Clip",
                          ObjectPath("SCLP", clip));
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
    const auto rate = document_.rational(*slot, {OMFProperty::slotEditRate});
    // A rate of zero cannot measure anything: the slot counts as one without.
    if (!rate || rate->numerator == 0) {
        return result;
    }
    result.editRate = rate->aaf();
    if (const auto description = document_.objectRef(*slot, {OMFProperty::slotTrackDesc})) {
        const auto origin = document_.int64(*description, {OMFProperty::trackOrigin}).value_or(0);
        result.origin = AAFRational(origin) / *result.editRate;
        if (const auto physical =
                document_.int32(*description, {OMFProperty::trackPhysicalTrack})) {
            result.channel = std::max<std::int64_t>(*physical, 1) - 1;
            result.channelDefaulted = *physical < 1;
        }
    }
    result.isAudioSource = isAudioSource(mob);
    result.segment = document_.objectRef(*slot, {OMFProperty::slotSegment});
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
        if (const auto description = document_.objectRef(slot, {OMFProperty::slotTrackDesc})) {
            const auto trackID =
                document_.uint32(*description, {OMFProperty::trackID}).value_or(unnumberedTrack);
            slots_.try_emplace(keyOf(mob, trackID), slot);
        }
    }
}

bool SourceResolution::isAudioSource(OMFObject mob) {
    if (document_.classOf(mob) != OMFClass::sourceMob) {
        return false;
    }
    const auto descriptor = document_.objectRef(mob, {OMFProperty::sourceMobDescription});
    if (!descriptor) {
        return false;
    }
    const auto kind = document_.classOf(*descriptor);
    if (kind == OMFClass::waveDescriptor || kind == OMFClass::aifcDescriptor) {
        return true;
    }
    return document_.rational(*descriptor, {OMFProperty::fileSampleRate}).has_value() &&
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
        const auto segment = document_.objectRef(slot, {OMFProperty::slotSegment});
        return segment && dataKinds_.isSound(*segment);
    });
}

}  // namespace trellant
