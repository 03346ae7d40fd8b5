// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/handoff/missing_media.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/validation.h>

#include <algorithm>

namespace trellant {

namespace {

using NeedsByEssence = KeyedMap<std::string_view, SourceNeeds>;

/// Of each source that is still without a file.
NeedsByEssence needsOfMissing(const AAFTimeline& timeline) {
    NeedsByEssence needs;
    for (const AAFSourceEssence& essence : timeline.essences) {
        if (!essence.embedded && !essence.fileURL) {
            needs.emplace(essence.id, SourceNeeds{.sampleRate = essence.sampleRate});
        }
    }
    for (const AAFClipEvent& event : timeline.events) {
        const auto found = needs.find(event.essenceID);
        if (found == needs.end()) {
            continue;
        }
        SourceNeeds& need = found->second;
        // No file has so many channels, and adding to the number must not overflow.
        const std::int64_t channel =
            std::clamp<std::int64_t>(event.sourceChannel.value_or(0), 0, 65'535);
        need.channels = std::max(need.channels, channel + 1);
        try {
            need.frames = std::max(
                need.frames, AAFRawTimelineValidation::requiredSourceEnd(event, need.sampleRate));
        } catch (const AAFRawTimelineValidation::Failure&) {
            // A clip that makes no sense by itself says nothing about the file.
            continue;
        }
    }
    return needs;
}

/// What files say, each read once: many sources may have one name.
class KnownFacts {
  public:
    [[nodiscard]] const std::optional<AudioFacts>& of(const std::string& path) {
        const auto [known, isNew] = facts_.try_emplace(path);
        if (isNew) {
            known->second = audioFacts(path);
        }
        return known->second;
    }

  private:
    KeyedMap<std::string, std::optional<AudioFacts>> facts_;
};

std::vector<MediaCandidate> candidates(const std::vector<MediaFile>& files,
                                       const SourceNeeds& needs, KnownFacts& known) {
    std::vector<MediaCandidate> found;
    for (const MediaFile& file : files) {
        MediaCandidate candidate{
            .path = file.path, .isBeside = file.isBeside, .facts = known.of(file.path)};
        candidate.misfit = candidate.facts ? misfit(*candidate.facts, needs)
                                           : std::optional<std::string>("no readable audio file");
        found.push_back(std::move(candidate));
    }
    return found;
}

void take(AAFSourceEssence& essence, const MediaCandidate& candidate) {
    const AudioFormatInfo& format = candidate.facts->format;
    essence.fileURL = fileURL(candidate.path);
    essence.channelCount = format.channels.value_or(1);
    essence.bitDepth = format.bitDepth;
    if (format.codec) {
        essence.codec = format.codec;
    }
}

/// The one that fits; of several the one beside the hand-off. Null where that does not decide.
const MediaCandidate* decided(const std::vector<MediaCandidate>& candidates) {
    const MediaCandidate* only = nullptr;
    std::size_t fitting = 0;
    std::size_t fittingBeside = 0;
    for (const MediaCandidate& candidate : candidates) {
        if (candidate.misfit) {
            continue;
        }
        ++fitting;
        fittingBeside += candidate.isBeside ? 1 : 0;
        // Those beside come first.
        only = only == nullptr ? &candidate : only;
    }
    return fitting == 1 || fittingBeside == 1 ? only : nullptr;
}

}  // namespace

std::optional<std::string> misfit(const AudioFacts& facts, const SourceNeeds& needs) {
    if (facts.format.sampleRate != needs.sampleRate) {
        return "another rate, the clips need " + plainRate(needs.sampleRate) + " Hz";
    }
    if (facts.format.channels.value_or(0) < needs.channels) {
        return "too few channels, the clips need " + std::to_string(needs.channels);
    }
    if (!facts.frames) {
        return "nobody knows whether it is long enough";
    }
    if (needs.frames > 0 && *facts.frames < static_cast<std::uint64_t>(needs.frames)) {
        return "too short, the clips need " + std::to_string(needs.frames) + " samples";
    }
    return std::nullopt;
}

OpenChoices findMissing(AAFTimeline& timeline, const MediaFolders& folders) {
    OpenChoices open;
    KnownFacts known;
    const NeedsByEssence needs = needsOfMissing(timeline);
    for (AAFSourceEssence& essence : timeline.essences) {
        const auto need = needs.find(essence.id);
        if (need == needs.end() || essence.embedded || essence.fileURL) {
            continue;
        }
        const std::string wanted = wantedFileName(
            essence.originalPath ? *essence.originalPath : essence.sourceName.value_or(""));
        auto found = candidates(folders.named(wanted), need->second, known);
        if (const MediaCandidate* const chosen = decided(found)) {
            take(essence, *chosen);
        } else if (!found.empty()) {
            open.emplace(essence.id, std::move(found));
        }
    }
    return open;
}

}  // namespace trellant
