// SPDX-License-Identifier: Apache-2.0
#include "row_parts.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/sources.h>
#include <trellant/json/named_enum.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace trellant::scan {

namespace {

/// Bytes of a name in a row.
constexpr std::size_t longestName = 4'096;

std::string cut(const std::string& text) {
    return text.size() <= longestName
               ? text
               : std::string(prefixOfClusters(text, longestName, longestName));
}

std::optional<std::string> cut(const std::optional<std::string>& text) {
    return text ? std::optional(cut(*text)) : std::nullopt;
}

std::string exactText(const AAFRational& value) {
    const std::string numerator = std::to_string(value.numerator());
    return value.denominator() == 1 ? numerator
                                    : numerator + "/" + std::to_string(value.denominator());
}

ScanRow::Source toldSource(const Source& source, const std::optional<std::int64_t>& frames) {
    const AAFSourceEssence& essence = *source.essence;
    const auto path =
        essence.fileURL && !essence.embedded ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
    return {.id = cut(essence.id),
            .name = cut(sourceName(essence)),
            .mobID = essence.mobID,
            .state = std::string(stateWord(source.state)),
            .clips = static_cast<std::int64_t>(source.clips),
            .sampleRate = essence.sampleRate.doubleValue(),
            .sampleRateExact = exactText(essence.sampleRate),
            .codec = cut(essence.codec),
            .bitDepth = essence.bitDepth,
            .channels = essence.channelCount,
            .frames = frames,
            .recordedPath = cut(essence.originalPath),
            .path = path ? std::optional(madeValidUTF8(*path)) : std::nullopt};
}

void tellSources(const HandOff& handOff, ScanRow& row) {
    const Sources sources(handOff);
    const std::size_t listed = std::min(sources.all().size(), mostRowSources);
    row.sources.reserve(listed);
    for (std::size_t i = 0; i < listed; ++i) {
        row.sources.push_back(toldSource(sources.all()[i], i < handOff.mediaFrames.size()
                                                               ? handOff.mediaFrames[i]
                                                               : std::nullopt));
    }
    if (listed < sources.all().size()) {
        row.sourcesLeftOut = static_cast<std::int64_t>(sources.all().size() - listed);
    }
}

void tellClipNames(const AAFTimeline& timeline, ScanRow& row) {
    KeyedSet<std::string_view> known;
    for (const AAFSourceEssence& essence : timeline.essences) {
        known.insert(sourceName(essence));
    }
    for (const AAFClipEvent& event : timeline.events) {
        if (row.clipNames.size() == mostRowClipNames) {
            return;
        }
        if (event.clipName && known.insert(*event.clipName).second) {
            row.clipNames.push_back(cut(*event.clipName));
        }
    }
}

/// By kind and by whether something is left out or sounds different.
void tellLosses(const HandOff& handOff, ScanRow& row) {
    std::map<std::pair<LossKind, bool>, ScanRow::Loss> byKind;
    for (std::size_t i = 0; i < handOff.losses.size(); ++i) {
        const PlacedLoss& loss = handOff.losses[i];
        const bool soundsDifferent = handOff.timeline.unsupportedFeatures[i].severity ==
                                     AAFUnsupportedFeature::Severity::renderAffecting;
        const LossKind kind = loss.kind.value_or(LossKind::other);
        ScanRow::Loss& told = byKind[{kind, soundsDifferent}];
        if (told.count++ == 0) {
            told.kind = rawValue(kind);
            told.effect = soundsDifferent ? "soundsDifferent" : "dropped";
            told.sentence = cut(loss.plain.empty() ? loss.description : loss.plain);
        }
    }
    for (auto& [kind, loss] : byKind) {
        row.losses.push_back(std::move(loss));
    }
}

}  // namespace

void tellHandOff(const HandOff& handOff, ScanRow& row) {
    const AAFTimeline& timeline = handOff.timeline;
    for (const AAFWorkerExtensions::Composition& composition : handOff.compositions) {
        if (row.compositions.size() == mostRowSources) {
            break;
        }
        row.compositions.push_back({.object = composition.object,
                                    .name = cut(composition.name),
                                    .mobID = composition.mobID,
                                    .read = composition.isRead});
    }
    row.start = timeline.clock.timelineZero.description();
    row.timecodeRate = exactText(frameClock(timeline.clock).timecodeRate.exactRate);
    row.editRate = exactText(timeline.clock.editRate);
    if (timeline.compositionLength) {
        row.lengthSeconds = timeline.compositionLength->doubleValue();
        row.lengthSecondsExact = exactText(*timeline.compositionLength);
    }
    row.tracks = static_cast<std::int64_t>(timeline.tracks.size());
    row.clips = static_cast<std::int64_t>(timeline.events.size());
    tellSources(handOff, row);
    tellClipNames(timeline, row);
    if (handOff.contents) {
        row.unusedMedia = handOff.contents->unusedMedia;
        row.unusedBytes = handOff.contents->unusedBytes;
    }
    tellLosses(handOff, row);
    row.changes = static_cast<std::int64_t>(handOff.changes.size());
}

void tellProvenance(const AAFWorkerExtensions::Provenance& provenance, ScanRow& row) {
    row.containerVersion = provenance.containerVersion;
    row.omfVersion = provenance.modelVersion;
    row.byteOrder = provenance.bigEndian ? "big" : "little";
    for (const AAFWorkerExtensions::Application& application : provenance.applications) {
        row.applications.push_back({.company = cut(application.company),
                                    .product = cut(application.product),
                                    .version = cut(application.version)});
    }
    row.peakMemory = provenance.peakMemory;
}

ScanRow::Verdict toldVerdict(const check::Verdict& verdict) {
    const auto counted = [&verdict](check::Severity severity) {
        return static_cast<std::int64_t>(verdict.count(severity));
    };
    ScanRow::Verdict told{.profile = verdict.profile,
                          .errors = counted(check::Severity::error),
                          .warnings = counted(check::Severity::warning),
                          .infos = counted(check::Severity::info),
                          .accepted = static_cast<std::int64_t>(verdict.acceptedCount())};
    for (const check::RuleVerdict& rule : verdict.rules) {
        if (rule.count > 0 && !rule.findings.empty()) {
            told.findings.push_back({.rule = std::string(rule.rule->id),
                                     .severity = std::string(check::severityWord(rule.severity)),
                                     .count = static_cast<std::int64_t>(rule.count),
                                     .sentence = cut(rule.findings.front().sentence)});
        }
    }
    return told;
}

}  // namespace trellant::scan
