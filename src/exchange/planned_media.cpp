// SPDX-License-Identifier: Apache-2.0
#include "planned_media.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>
#include <trellant/handoff/sources.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace trellant::exchange {

namespace {

constexpr std::size_t mostStemCharacters = 100;
/// Leaves room in 255 bytes for a channel, a number and the extension.
constexpr std::size_t mostStemBytes = 200;

/// The last name in a path as any system writes it. Colons part the folders of one system and are
/// common in what people call a source, so they count in recorded paths only.
std::string_view lastName(std::string_view path, std::string_view separators) {
    const auto separator = path.find_last_of(separators);
    return separator == std::string_view::npos || separator + 1 == path.size()
               ? path
               : path.substr(separator + 1);
}

/// Without what says that it is an audio file: the new name says so itself.
std::string_view withoutAudioExtension(std::string_view name) {
    constexpr std::array<std::string_view, 6> extensions{".wav",  ".wave", ".aif",
                                                         ".aiff", ".aifc", ".bwf"};
    const std::string lower = lowerCased(name);
    for (const std::string_view extension : extensions) {
        if (lower.size() == name.size() && lower.ends_with(extension)) {
            return name.substr(0, name.size() - extension.size());
        }
    }
    return name;
}

/// Devices of a system that knows them under any extension.
bool isReserved(std::string_view stem) {
    std::string name = lowerCased(stem.substr(0, stem.find('.')));
    if (name == "con" || name == "prn" || name == "aux" || name == "nul") {
        return true;
    }
    return name.size() == 4 && (name.starts_with("com") || name.starts_with("lpt")) &&
           name.back() >= '0' && name.back() <= '9';
}

void trimEnds(std::string& text) {
    constexpr std::string_view dropped = ". ";
    text.erase(text.find_last_not_of(dropped) + 1);
    text.erase(0, std::min(text.find_first_not_of(dropped), text.size()));
}

}  // namespace

std::string fileStem(std::string_view name, NameKind kind) {
    const std::string_view last = lastName(name, kind == NameKind::path ? "/\\:" : "/\\");
    std::string stem = replacingNonAlphanumerics(withoutAudioExtension(last), "-_. ", '_');
    stem = std::string(prefixOfClusters(stem, mostStemCharacters, mostStemBytes));
    trimEnds(stem);
    if (stem.empty()) {
        return "audio";
    }
    return isReserved(stem) ? "_" + stem : stem;
}

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
    std::string stem = fileStem(media.name, record.sourceName ? NameKind::name : NameKind::path);
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
