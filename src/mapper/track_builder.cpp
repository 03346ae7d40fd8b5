// SPDX-License-Identifier: Apache-2.0
#include "track_builder.h"

#include "track_pan.h"

#include <trellant/base/keyed_hash.h>

#include <algorithm>
#include <utility>

namespace trellant {

void TrackBuilder::build(const TrackSlot& slot, EventDrafts& drafts, const AAFRational& duration) {
    const auto pan = trackPan(drafts, slot.name);
    const LossRange whole{AAFRational::zero(), duration};
    if (pan.differs) {
        notes_.addUnsupported(
            {.kind = LossKind::panDiffers, .range = whole},
            "per-clip pan values differ on one track and cannot be expressed as a track pan",
            slot.path);
    }
    const auto built = buildEvents(slot, pan.role, drafts);
    if (built == 0 && !drafts.empty()) {
        notes_.addLoss({.kind = LossKind::trackWithoutAudio, .range = whole},
                       "whole audio track " + slot.label + " dropped: none of its " +
                           std::to_string(drafts.size()) + " clip(s) could be resolved",
                       slot.path);
        return;
    }
    timeline_.tracks.push_back({.id = slot.trackID,
                                .index = static_cast<std::int64_t>(slot.index),
                                .name = slot.name,
                                .fixedPan = pan.fixedPan});
    notes_.diagnose("Track " + slot.name.value_or(std::to_string(slot.index + 1)) + ": " +
                    std::to_string(built) + " audio event(s), " + secondsText(duration) +
                    (pan.fixedPan ? ", pan " + fixedPoint(*pan.fixedPan, 2) : ""));
}

std::size_t TrackBuilder::buildEvents(const TrackSlot& slot, AAFChannelRole role,
                                      EventDrafts& drafts) {
    auto& events = timeline_.events;
    if (const auto most = events.size() + drafts.size(); most > events.capacity()) {
        events.reserve(std::max(most, 2 * events.capacity()));
    }
    std::size_t built = 0;
    for (auto& draft : drafts) {
        if (buildEvent(slot, role, draft)) {
            ++built;
        }
    }
    return built;
}

std::variant<TrackBuilder::Audio, ClipLoss> TrackBuilder::audioOf(const TrackSlot& slot,
                                                                  const EventDraft& draft) {
    const auto resolved =
        sources_.resolveSourceClip(draft.object, slot.editRate, draft.sourceTrimStart);
    for (const OMFObject object : sources_.passed()) {
        reportRemarks(object);
    }
    if (const auto* loss = std::get_if<ClipLoss>(&resolved)) {
        return *loss;
    }
    const auto& source = std::get<ResolvedSource>(resolved);
    const auto* essence = essences_.makeEssence(source);
    if (essence == nullptr) {
        return ClipMediaUndescribed{};
    }
    return Audio{source, *essence};
}

void TrackBuilder::reportRemarks(OMFObject object) {
    if (remarked_.insert(object).second) {
        notes_.addRemarks(notes_.lossOfClip(LossKind::olderModelUnknown), reads_.remarksOf(object),
                          ObjectPath(reads_.classID(object).value_or("????"), object));
    }
}

bool TrackBuilder::buildEvent(const TrackSlot& slot, AAFChannelRole role, EventDraft& draft) {
    notes_.enterClip(draft.object, {draft.timelineStart, draft.duration});
    const auto found = audioOf(slot, draft);
    if (const auto* loss = std::get_if<ClipLoss>(&found)) {
        recordDropped(*loss, ObjectPath(slot.path, "SCLP", draft.object), notes_);
        return false;
    }
    const auto& [source, essence] = std::get<Audio>(found);
    if (role == AAFChannelRole::mono && essence.channelCount != 1) {
        role = AAFChannelRole::unknown;
    }
    timeline_.events.push_back({.id = "omf-event-" + std::to_string(number(draft.object)) + "-" +
                                      std::to_string(timeline_.events.size()),
                                .trackID = slot.trackID,
                                .essenceID = essence.id,
                                .clipName = clipNames_.nameOf(draft.object),
                                .timelineStart = draft.timelineStart,
                                .duration = draft.duration,
                                .sourceStartSample = std::max<std::int64_t>(
                                    (source.start * essence.sampleRate).roundedInt64(), 0),
                                .sourceChannel = source.channel,
                                .channelRole = role,
                                .fixedClipGain = draft.fixedClipGain,
                                .clipGainAutomation = std::move(draft.clipGainAutomation),
                                .fadeIn = std::move(draft.fadeIn),
                                .fadeOut = std::move(draft.fadeOut)});
    return true;
}

void TrackBuilder::nameClips(std::vector<LossPlace>& places) {
    KeyedMap<OMFObject, Boxed<std::string>> names;
    for (auto& place : places) {
        if (place.clip == OMFObject::none) {
            continue;
        }
        const auto [known, isNew] = names.try_emplace(place.clip);
        if (isNew) {
            if (auto name = clipNames_.nameOf(place.clip)) {
                known->second = std::move(*name);
            }
        }
        place.clipName = known->second;
    }
}

}  // namespace trellant
