// SPDX-License-Identifier: Apache-2.0

#include "named_files.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/handoff/missing_media.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

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

/// The files of each name, looked for and read once: many sources may have one name.
class KnownNames {
  public:
    /// Both must outlive this.
    KnownNames(const MediaFolders& folders, std::vector<std::string>& read)
        : folders_(folders), read_(read) {}

    [[nodiscard]] const NamedFiles& of(const std::string& wanted) {
        auto known = names_.find(wanted);
        if (known == names_.end()) {
            known = names_.emplace(wanted, NamedFiles(filesOf(wanted))).first;
        }
        return known->second;
    }

  private:
    [[nodiscard]] std::vector<MediaCandidate> filesOf(const std::string& wanted) {
        std::vector<MediaCandidate> files;
        for (const MediaFile& file : folders_.named(wanted)) {
            files.push_back(
                {.path = file.path, .isBeside = file.isBeside, .facts = audioFacts(file.path)});
            read_.push_back(file.path);
        }
        return files;
    }

    const MediaFolders& folders_;
    std::vector<std::string>& read_;
    KeyedMap<std::string, NamedFiles> names_;
};

/// The first files, and one that fits among them if any does.
std::vector<MediaCandidate> listed(const NamedFiles& named, std::optional<std::size_t> fitting,
                                   const SourceNeeds& needs) {
    const std::vector<MediaCandidate>& files = named.files();
    std::vector<MediaCandidate> list(
        files.begin(), files.begin() + static_cast<std::ptrdiff_t>(
                                           std::min(files.size(), OpenChoices::listedFiles)));
    if (fitting && *fitting >= list.size()) {
        list.back() = files[*fitting];
    }
    for (MediaCandidate& candidate : list) {
        candidate.misfit = candidate.facts ? misfit(*candidate.facts, needs)
                                           : std::optional<std::string>("no readable audio file");
    }
    return list;
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
    KnownNames names(folders, open.read);
    const NeedsByEssence needs = needsOfMissing(timeline);
    for (AAFSourceEssence& essence : timeline.essences) {
        const auto need = needs.find(essence.id);
        if (need == needs.end() || essence.embedded || essence.fileURL) {
            continue;
        }
        const NamedFiles& named = names.of(wantedFileName(
            essence.originalPath ? *essence.originalPath : essence.sourceName.value_or("")));
        const auto fitting = named.fitting(need->second);
        if (fitting.decided) {
            take(essence, named.files()[*fitting.decided]);
        } else if (!named.files().empty()) {
            open.bySource.emplace(essence.id,
                                  OpenChoice{.candidates = listed(named, fitting.any, need->second),
                                             .files = named.files().size()});
        }
    }
    return open;
}

}  // namespace trellant
