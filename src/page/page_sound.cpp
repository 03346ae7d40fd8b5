// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/waveform_data.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/model/validation.h>
#include <trellant/page/page_sound.h>

#include <algorithm>
#include <compare>
#include <utility>

namespace trellant::page {

namespace {

using listening::Preview;
using listening::PreviewState;
using listening::PreviewWish;
using listening::SourceSound;

/// Pairs of all outlines together: a page of many sources has coarser ones.
constexpr std::size_t pairsOfAll = 2'000'000;
constexpr std::size_t fewestPairs = 256;
constexpr std::size_t mostPairs = 8'192;

struct PlayedRange {
    std::size_t essence = 0;
    std::int64_t channel = 0;
    std::int64_t first = 0;
    std::int64_t end = 0;
    auto operator<=>(const PlayedRange&) const = default;
};

constexpr std::int64_t allChannels = -1;

std::int64_t channelOf(const AAFSourceEssence& essence, const AAFClipEvent& event) {
    constexpr std::int64_t mostTogether = 2;
    return essence.channelCount <= mostTogether ? allChannels : event.sourceChannel.value_or(0);
}

std::optional<PlayedRange> rangeOf(const AAFTimeline& timeline, std::size_t essence,
                                   const AAFClipEvent& event) {
    const AAFSourceEssence& source = timeline.essences[essence];
    try {
        return PlayedRange{essence, channelOf(source, event), event.sourceStartSample,
                           AAFRawTimelineValidation::requiredSourceEnd(event, source.sampleRate)};
    } catch (const AAFRawTimelineValidation::Failure&) {
        return std::nullopt;
    }
}

std::vector<PlayedRange> playedRanges(const AAFTimeline& timeline) {
    KeyedMap<std::string_view, std::size_t> byID;
    for (std::size_t i = 0; i < timeline.essences.size(); ++i) {
        byID.emplace(timeline.essences[i].id, i);
    }
    std::vector<PlayedRange> ranges;
    for (const AAFClipEvent& event : timeline.events) {
        const auto found = byID.find(event.essenceID);
        const auto range =
            found == byID.end() ? std::nullopt : rangeOf(timeline, found->second, event);
        if (range && range->end > range->first) {
            ranges.push_back(*range);
        }
    }
    std::sort(ranges.begin(), ranges.end());
    return ranges;
}

/// The rate in whole samples a second, 1 or more.
std::int64_t wholeRate(const AAFSourceEssence& essence) {
    constexpr std::int64_t highest = 1'000'000;
    return std::clamp<std::int64_t>(essence.sampleRate.roundedInt64(), 1, highest);
}

void appendWishes(std::vector<PreviewWish>& wishes, const PlayedRange& range, std::int64_t rate) {
    constexpr std::int64_t longestSeconds = 120;
    for (std::int64_t first = range.first; first < range.end;) {
        const std::int64_t frames = std::min(range.end - first, longestSeconds * rate);
        wishes.push_back(
            {.essence = range.essence,
             .channel = range.channel == allChannels ? std::nullopt : std::optional(range.channel),
             .firstFrame = first,
             .frames = frames});
        first += frames;
    }
}

std::vector<Bytes> waveformsOf(const std::vector<SourceSound>& sounds) {
    std::vector<Bytes> waveforms;
    waveforms.reserve(sounds.size());
    for (const SourceSound& sound : sounds) {
        waveforms.push_back(sound.measures
                                ? audio::waveformData(*sound.measures, audio::PeakBits::eight)
                                : Bytes());
    }
    return waveforms;
}

}  // namespace

std::vector<PreviewWish> playedParts(const AAFTimeline& timeline) {
    constexpr std::int64_t gapSeconds = 2;
    std::vector<PreviewWish> wishes;
    std::optional<PlayedRange> open;
    for (const PlayedRange& range : playedRanges(timeline)) {
        const std::int64_t rate = wholeRate(timeline.essences[range.essence]);
        if (open && open->essence == range.essence && open->channel == range.channel &&
            range.first - open->end < gapSeconds * rate) {
            open->end = std::max(open->end, range.end);
            continue;
        }
        if (open) {
            appendWishes(wishes, *open, wholeRate(timeline.essences[open->essence]));
        }
        open = range;
    }
    if (open) {
        appendWishes(wishes, *open, wholeRate(timeline.essences[open->essence]));
    }
    return wishes;
}

PageSound listenedTo(const listening::AudibleHandOff& audible, const ListeningRequest& request,
                     WorkProgress& progress) {
    const AAFTimeline& timeline = audible.handOff().timeline;
    const std::size_t sources = std::max<std::size_t>(1, timeline.essences.size());
    PageSound sound;
    sound.waveforms = waveformsOf(
        audible.measure({.converter = request.converter,
                         .mostPairs = std::clamp(pairsOfAll / sources, fewestPairs, mostPairs)},
                        progress));
    if (request.mostPreviewBytes == 0) {
        return sound;
    }
    const std::vector<PreviewWish> wishes = playedParts(timeline);
    // Base64 makes four bytes of three.
    std::vector<Preview> previews = audible.previews(
        wishes, {.converter = request.converter, .mostBytes = request.mostPreviewBytes / 4 * 3},
        progress);
    for (std::size_t i = 0; i < previews.size(); ++i) {
        if (previews[i].state == PreviewState::made) {
            sound.pieces.push_back({.essence = wishes[i].essence,
                                    .channel = wishes[i].channel,
                                    .firstFrame = wishes[i].firstFrame,
                                    .file = std::move(previews[i].ogg)});
        }
        sound.leftOut += previews[i].state == PreviewState::leftOut ? 1U : 0U;
        sound.failed += previews[i].state == PreviewState::failed ? 1U : 0U;
    }
    return sound;
}

}  // namespace trellant::page
