// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/numbered_name.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/exporter/plain_wave.h>
#include <trellant/exporter/session_media.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/extraction/staging.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/handoff/audio_facts.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>

namespace trellant {

namespace {

using exchange::MediaFacts;
using exchange::PlannedMedia;

std::optional<std::string> pathOf(const AAFSourceEssence& essence) {
    return essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
}

bool isFloatingPoint(const AudioFormatInfo& format) {
    constexpr std::array<std::string_view, 5> names{"IEEE Float", "fl32", "FL32", "fl64", "FL64"};
    return format.codec && std::find(names.begin(), names.end(), *format.codec) != names.end();
}

std::optional<MediaFacts> factsOf(const AAFSourceEssence& essence) {
    const auto path = pathOf(essence);
    const auto facts = path ? audioFacts(*path) : std::nullopt;
    if (!facts) {
        return std::nullopt;
    }
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    MediaFacts result;
    result.channelCount =
        std::max<std::int64_t>(1, facts->format.channels.value_or(essence.channelCount));
    result.bitDepth = facts->format.bitDepth ? facts->format.bitDepth : essence.bitDepth;
    result.isFloatingPoint = isFloatingPoint(facts->format);
    if (facts->frames && *facts->frames <= most) {
        result.frames = static_cast<std::int64_t>(*facts->frames);
    }
    return result;
}

std::string extensionOf(const std::string& path) {
    const auto dot = path.find_last_of("./");
    constexpr std::size_t mostLetters = 5;
    const bool isExtension =
        dot != std::string::npos && path[dot] == '.' && path.size() - dot - 1 <= mostLetters;
    return isExtension ? path.substr(dot + 1) : std::string();
}

}  // namespace

std::vector<std::optional<MediaFacts>> mediaFacts(const AAFTimeline& timeline,
                                                  const WorkProgress& progress) {
    KeyedSet<std::string_view> played;
    for (const AAFClipEvent& event : timeline.events) {
        played.insert(event.essenceID);
    }
    std::vector<std::optional<MediaFacts>> facts;
    facts.reserve(timeline.essences.size());
    for (const AAFSourceEssence& essence : timeline.essences) {
        progress.check();
        facts.push_back(played.contains(essence.id) ? factsOf(essence) : std::nullopt);
    }
    return facts;
}

SessionMediaMaker::SessionMediaMaker(const AAFTimeline& timeline, exchange::ExportPlan& plan,
                                     MediaWishes wishes, WorkProgress& progress)
    : timeline_(timeline), plan_(plan), wishes_(std::move(wishes)), progress_(progress) {}

std::vector<sessions::SessionMedia> SessionMediaMaker::all() {
    std::uint64_t bytes = 0;
    std::vector<std::string> sources;
    for (const PlannedMedia& media : plan_.media) {
        sources.push_back(pathOf(timeline_.essences[media.essence]).value_or(""));
        if (!media.isOffline) {
            if (++remainingUses_[sources.back()] == 1 && !isOurs(sources.back())) {
                sources_.push_back(sources.back());
            }
            bytes += bytesOfFile(sources.back());
        }
    }
    progress_.begin("Writing the audio files", bytes);
    std::vector<sessions::SessionMedia> result;
    for (std::size_t i = 0; i < plan_.media.size(); ++i) {
        progress_.check();
        PlannedMedia& media = plan_.media[i];
        result.push_back(media.isOffline ? sessions::SessionMedia() : made(media, sources[i]));
    }
    return result;
}

/// Whether the file lies in the hidden folder: one that the worker took out of the hand-off.
bool SessionMediaMaker::isOurs(const std::string& path) const {
    return path.starts_with(wishes_.audioPath + "/");
}

sessions::SessionMedia SessionMediaMaker::made(PlannedMedia& media, const std::string& source) {
    --remainingUses_[source];
    if (auto linked = linkedMedia(media, source)) {
        return std::move(*linked);
    }
    auto wave = media.channel ? std::nullopt : plainWave(source);
    const std::string planned = wishes_.newPath + "/" + media.fileName;
    if (wave && bring(media, source, planned) == Brought::moved) {
        wave->path = planned;
    } else {
        if (!wave) {
            convert(media, source);
        }
        wave = plainWave(wishes_.newPath + "/" + media.fileName);
    }
    sessions::SessionMedia result;
    if (media.isOffline) {
        return result;
    }
    result.wave = std::move(wave);
    result.isEmbedded = wishes_.mode == MediaMode::embed;
    if (result.isEmbedded) {
        return result;
    }
    ++newFiles_;
    result.path = wishes_.finalPath + "/" + media.fileName;
    result.reference = wishes_.finalReference + "/" + media.fileName;
    return result;
}

/// The file where it lies, when the session can play it from there.
std::optional<sessions::SessionMedia> SessionMediaMaker::linkedMedia(const PlannedMedia& media,
                                                                     const std::string& source) {
    if (isOurs(source) || media.channel || wishes_.mode == MediaMode::copy) {
        return std::nullopt;
    }
    sessions::SessionMedia result;
    result.wave = plainWave(source);
    if (wishes_.mode == MediaMode::embed) {
        result.isEmbedded = true;
        return result.wave ? std::optional(std::move(result)) : std::nullopt;
    }
    if (wishes_.needsWave && !result.wave) {
        return std::nullopt;
    }
    result.path = source;
    const std::string folder = wishes_.directoryPath + "/";
    result.reference = source.starts_with(folder) ? source.substr(folder.size()) : source;
    if (wishes_.canName && !wishes_.canName(result.reference)) {
        return std::nullopt;
    }
    linked_.push_back(source);
    return result;
}

/// What the worker took out is ours to move, when nothing else is made of it.
SessionMediaMaker::Brought SessionMediaMaker::bring(const PlannedMedia& media,
                                                    const std::string& source,
                                                    const std::string& destination) {
    if (!isOurs(source) || remainingUses_[source] != 0) {
        copyFile(source, destination, progress_);
        return Brought::copied;
    }
    if (std::rename(source.c_str(), destination.c_str()) != 0) {
        throw FileSystemError("create", media.fileName, errno);
    }
    progress_.advance(bytesOfFile(destination));
    return Brought::moved;
}

void SessionMediaMaker::convert(PlannedMedia& media, const std::string& source) {
    const auto failure =
        convertToWave(wishes_.waveConverter, source, wishes_.newPath + "/" + media.fileName,
                      progress_, media.channel);
    if (failure && media.channel) {
        goOffline(media, *failure);
    } else if (failure) {
        keepAsItIs(media, source, *failure);
    }
}

/// Better in a form that the tool may not know than not at all.
void SessionMediaMaker::keepAsItIs(PlannedMedia& media, const std::string& source,
                                   const std::string& reason) {
    const std::string extension = extensionOf(source);
    if (wishes_.mode == MediaMode::embed || wishes_.needsWave || extension.empty()) {
        goOffline(media, reason);
        return;
    }
    const NumberedName name = NumberedName::whole(media.fileName);
    media.fileName = NumberedName{name.stem, extension}.text();
    static_cast<void>(bring(media, source, wishes_.newPath + "/" + media.fileName));
    differences_.push_back({positionOf(media), false, reason});
    progress_.say(
        WorkProgress::Remark::problem,
        printableText(media.name) + " stays as it is, and not every tool reads it: " + reason);
}

void SessionMediaMaker::goOffline(PlannedMedia& media, const std::string& reason) {
    media.isOffline = true;
    differences_.push_back({positionOf(media), true, reason});
    progress_.say(WorkProgress::Remark::problem, printableText(media.name) +
                                                     " could not be made into a WAVE file, its "
                                                     "clips are offline: " +
                                                     reason);
}

}  // namespace trellant
