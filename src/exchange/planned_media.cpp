// SPDX-License-Identifier: Apache-2.0
#include "planned_media.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>
#include <trellant/handoff/sources.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace trellant::exchange {

MediaList::MediaList(const AAFTimeline& timeline, const PlanRequest& request)
    : timeline_(timeline), request_(request) {}

MediaList::Played MediaList::played(std::size_t essence, const std::optional<std::int64_t>& channel,
                                    std::int64_t sourceEnd) {
    const bool hasFile =
        essence < request_.mediaFacts.size() && request_.mediaFacts[essence].has_value();
    const std::int64_t channels = hasFile ? request_.mediaFacts[essence]->channelCount
                                          : timeline_.essences[essence].channelCount;
    const bool isOneOfSeveral = channel && channels > 1 && *channel < channels;
    const auto ownChannel =
        isOneOfSeveral && request_.splitsChannels ? channel : std::optional<std::int64_t>();
    const auto [use, isNew] = byUse_.emplace(std::pair(essence, ownChannel), media_.size());
    if (isNew) {
        media_.push_back(made(essence, ownChannel));
    }
    PlannedMedia& media = media_[use->second];
    if (!hasFile || !request_.mediaFacts[essence]->frames) {
        media.frames = std::max(media.frames, sourceEnd);
    }
    return {use->second, isOneOfSeveral && !ownChannel ? channel : std::nullopt};
}

PlannedMedia MediaList::made(std::size_t essence, std::optional<std::int64_t> channel) {
    const AAFSourceEssence& record = timeline_.essences[essence];
    PlannedMedia media;
    media.essence = essence;
    media.essenceID = record.id;
    media.channel = channel;
    media.name = sourceName(record);
    media.sampleRate = record.sampleRate;
    media.channelCount = record.channelCount;
    media.bitDepth = record.bitDepth;
    media.recordedPath = record.originalPath;
    if (const auto reel = request_.reels.find(record.id); reel != request_.reels.end()) {
        media.reel = reel->second;
    }
    media.isOffline =
        essence >= request_.mediaFacts.size() || !request_.mediaFacts[essence].has_value();
    if (!media.isOffline) {
        const MediaFacts& facts = *request_.mediaFacts[essence];
        media.channelCount = facts.channelCount;
        media.bitDepth = facts.bitDepth;
        media.isFloatingPoint = facts.isFloatingPoint;
        media.frames = facts.frames.value_or(0);
    }
    const auto given = request_.fileNames.find(essence);
    std::string stem =
        given != request_.fileNames.end()
            ? fileStem(given->second, NameKind::name)
            : fileStem(media.name, record.sourceName ? NameKind::name : NameKind::path);
    if (channel) {
        media.channelCount = 1;
        stem += ".ch" + std::to_string(*channel + 1);
    }
    media.fileName = uniqueFileName(stem);
    return media;
}

std::string MediaList::uniqueFileName(const std::string& stem) {
    const NumberedName name{stem, "wav"};
    std::uint64_t& number = nextNumbers_.emplace(lowerCased(stem), 1).first->second;
    std::string fileName = name.withNumber(number);
    while (!taken_.insert(lowerCased(fileName)).second) {
        fileName = name.withNumber(++number);
    }
    return fileName;
}

}  // namespace trellant::exchange
