// SPDX-License-Identifier: Apache-2.0
#include "presentation.h"

#include <algorithm>

namespace trellant {

namespace {

/// Of a master clip; 0 of a composition. Writers leave out what would be 0.
constexpr std::int32_t masterUsage = 7;
constexpr std::uint16_t soundKind = 2;
constexpr unsigned kindShift = 16;

}  // namespace

void Presentation::chooseCompositions() {
    const auto listed = objects_.mobIndex(objects_.header(), OlderProperty::compositionMobs);
    std::vector<OMFObject> candidates;
    if (listed) {
        for (const IndexedMob& entry : *listed) {
            candidates.push_back(entry.object);
        }
    } else if (objects_.header() != OMFObject::none) {
        remarkUnreadable(objects_.header(), OlderProperty::compositionMobs);
        for (const std::uint32_t id : objects_.container().objectIDs()) {
            candidates.push_back(OMFObject{id});
        }
    }
    std::vector<OMFObject> primary;
    for (const OMFObject mob : candidates) {
        const bool isComposition =
            objects_.classOf(mob) == "MOBJ" && !objects_.has(mob, OlderProperty::physicalMedia) &&
            objects_.longNumber(mob, OlderProperty::usageCode).value_or(0) == 0;
        if (isComposition && compositions_.insert(mob).second) {
            primary.push_back(mob);
        }
    }
    table_.references(objects_.header(), OMFProperty::headPrimaryMobs, primary);
}

void Presentation::addMobs() {
    for (const std::uint32_t id : objects_.container().objectIDs()) {
        if (objects_.classOf(OMFObject{id}) == "MOBJ") {
            addMob(OMFObject{id});
        }
    }
}

void Presentation::addMob(OMFObject mob) {
    const bool isSource = objects_.has(mob, OlderProperty::physicalMedia);
    table_.classID(mob, isSource ? "SMOB" : compositions_.contains(mob) ? "CMOB" : "MMOB");
    const auto mobID = identityOf(mob, OlderProperty::mobID);
    if (mobID) {
        table_.uid(mob, OMFProperty::mobID, *mobID);
    }
    copy(mob, OMFProperty::mobName, mob, OlderProperty::name);
    if (isSource) {
        addSourceDescription(mob, mobID);
    }
    if (objects_.has(mob, OlderProperty::attributes)) {
        remark(mob, "the attributes of a mob are not read");
    }
    if (const auto tracks = objects_.references(mob, OlderProperty::tracks)) {
        table_.references(mob, OMFProperty::mobSlots, *tracks);
        noteLabels(mob, *tracks);
        if (isSource) {
            noteChannels(mob, *tracks);
        }
    } else {
        remarkUnreadable(mob, OlderProperty::tracks);
    }
    const auto usage = objects_.longNumber(mob, OlderProperty::usageCode);
    if (usage.value_or(0) != 0 && *usage != masterUsage) {
        remark(mob, "usage code " + std::to_string(*usage) + " of a mob is not known");
    }
    const auto start = objects_.longNumber(mob, OlderProperty::startPosition);
    if (start.value_or(0) != 0) {
        remark(mob, "start position " + std::to_string(*start) + " of a mob is not applied");
    }
}

void Presentation::addSourceDescription(OMFObject mob, const std::optional<OMFUID>& mobID) {
    const auto descriptor = objects_.reference(mob, OlderProperty::physicalMedia);
    if (!descriptor) {
        remarkUnreadable(mob, OlderProperty::physicalMedia);
        return;
    }
    table_.reference(mob, OMFProperty::sourceMobDescription, *descriptor);
    const bool isThere =
        mobID && std::binary_search(mediaIdentities_.begin(), mediaIdentities_.end(), *mobID);
    if (!isThere && objects_.boolean(*descriptor, OlderProperty::isInFile) == true) {
        remark(mob,
               "the audio of a source is said to lie in the file, and no AIFC or WAVE data are "
               "there for it");
    }
    if (objects_.classOf(*descriptor) == "SD2D") {
        addSD2Format(mob, *descriptor);
    }
}

void Presentation::addSD2Format(OMFObject mob, OMFObject descriptor) {
    constexpr std::int64_t mostChannels = 1'024;
    constexpr std::int64_t mostBits = 64;
    const auto told = [&](OlderProperty property,
                          std::int64_t most) -> std::optional<std::int64_t> {
        if (!objects_.has(descriptor, property)) {
            return std::nullopt;
        }
        const auto two = objects_.shortNumber(descriptor, property);
        const auto four = objects_.longNumber(descriptor, property);
        const std::int64_t value = two ? *two : four.value_or(0);
        if (value < 1 || value > most) {
            remarkUnreadable(mob, property);
            return std::nullopt;
        }
        return value;
    };
    AudioFormatInfo format;
    format.channels = told(OlderProperty::sd2Channels, mostChannels);
    format.bitDepth = told(OlderProperty::sd2Bits, mostBits);
    if (format.channels || format.bitDepth) {
        formats_.push_back({descriptor, std::move(format)});
    }
}

/// A clip names a track by kind and label; of several of one name the mapping plays the first.
void Presentation::noteLabels(OMFObject mob, const std::vector<OMFObject>& tracks) {
    KeyedSet<std::uint32_t> names;
    for (const OMFObject track : tracks) {
        const auto component = objects_.reference(track, OlderProperty::trackComponent);
        const auto label = objects_.shortNumber(track, OlderProperty::labelNumber);
        const auto kind =
            component ? objects_.shortNumber(*component, OlderProperty::trackKind) : std::nullopt;
        if (label && kind && !names.insert(std::uint32_t{*kind} << kindShift | *label).second) {
            remark(mob, "several tracks of a mob have the kind " + std::to_string(*kind) +
                            " and the number " + std::to_string(*label) + ": clips play the first");
            return;
        }
    }
}

/// Which channel a track of a file plays is written nowhere. Where there is one it is the first.
void Presentation::noteChannels(OMFObject mob, const std::vector<OMFObject>& tracks) {
    std::vector<OMFObject> sound;
    std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(sound), [this](OMFObject track) {
        const auto component = objects_.reference(track, OlderProperty::trackComponent);
        return component && objects_.shortNumber(*component, OlderProperty::trackKind) == soundKind;
    });
    if (sound.size() < 2) {
        return;
    }
    channelTracks_.insert(sound.begin(), sound.end());
    remark(mob, "which channel each of " + std::to_string(sound.size()) +
                    " sound tracks of a source plays is not known: that of the track's number");
}

void Presentation::addTrack(OMFObject track) {
    table_.classID(track, "MSLT");
    const auto component = objects_.reference(track, OlderProperty::trackComponent);
    if (!component) {
        remarkUnreadable(track, OlderProperty::trackComponent);
        return;
    }
    table_.reference(track, OMFProperty::slotSegment, *component);
    if (const auto rate = rateOf(*component)) {
        table_.rational(track, OMFProperty::slotEditRate, *rate);
    }
    describeTrack(track, *component);
    for (const auto property : {OlderProperty::trackAttributes, OlderProperty::fillerProxy}) {
        if (objects_.has(track, property)) {
            remark(track, std::string(nameOf(property)) + " of a track is not read");
        }
    }
}

void Presentation::describeTrack(OMFObject track, OMFObject component) {
    const OMFObject description = table_.newObject();
    table_.classID(description, "TRKD");
    table_.reference(track, OMFProperty::slotTrackDesc, description);
    if (objects_.classOf(component) == "SEQU") {
        copy(description, OMFProperty::trackName, component, OlderProperty::name);
    }
    const auto label = objects_.shortNumber(track, OlderProperty::labelNumber);
    if (!label) {
        remarkUnreadable(track, OlderProperty::labelNumber);
        return;
    }
    table_.number32(description, OMFProperty::trackID, trackNumber(component, *label));
    if (channelTracks_.contains(track)) {
        table_.number32(description, OMFProperty::trackPhysicalTrack, *label);
    }
}

std::uint32_t Presentation::trackNumber(OMFObject component, std::uint16_t label) {
    const auto kind = objects_.shortNumber(component, OlderProperty::trackKind);
    const bool saysNot = !kind && objects_.classOf(component) != "TCCP";
    if (saysNot && remarkedKinds_.insert(component).second) {
        remarkUnreadable(component, OlderProperty::trackKind);
    }
    return kind.value_or(soundKind) == soundKind ? label
                                                 : std::uint32_t{*kind} << kindShift | label;
}

void Presentation::addSourceTrack(OMFObject clip) {
    const auto label = objects_.shortNumber(clip, OlderProperty::sourceTrack);
    if (!label) {
        remarkUnreadable(clip, OlderProperty::sourceTrack);
        return;
    }
    table_.number32(clip, OMFProperty::clipSourceTrackID, trackNumber(clip, *label));
}

}  // namespace trellant
