// SPDX-License-Identifier: Apache-2.0
// The summary for a machine.
#include "look/json_row.h"
#include "report.h"

#include <trellant/base/url.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

namespace trellant::cli {

namespace {

std::int64_t integer(std::size_t count) {
    return static_cast<std::int64_t>(count);
}

std::optional<std::int64_t> framesOf(const std::optional<AudioFacts>& facts) {
    return facts && facts->frames ? std::optional(static_cast<std::int64_t>(*facts->frames))
                                  : std::nullopt;
}

std::optional<std::string> secondsOf(const std::optional<AudioFacts>& facts) {
    const auto length = facts ? seconds(*facts) : std::nullopt;
    return length ? std::optional(fractionText(*length)) : std::nullopt;
}

/// A path that need not be UTF-8 as text for reading and as a URL for use.
void addPlace(JsonRow& row, const std::optional<std::string>& path) {
    row.text("path", path);
    row.text("fileURL", path ? std::optional(fileURL(*path).text) : std::nullopt);
}

void addCandidate(JsonRow& row, const MediaCandidate& candidate) {
    const AudioFormatInfo format = candidate.facts ? candidate.facts->format : AudioFormatInfo{};
    addPlace(row, candidate.path);
    row.integer("frames", framesOf(candidate.facts));
    row.text("seconds", secondsOf(candidate.facts));
    row.text("sampleRate",
             format.sampleRate ? std::optional(fractionText(*format.sampleRate)) : std::nullopt);
    row.integer("channels", format.channels);
    row.integer("bits", format.bitDepth);
    row.boolean("fits", !candidate.misfit);
    row.text("misfit", candidate.misfit);
}

void addEntry(JsonRow& row, const AudioEntry& entry, const AAFTimeline& timeline) {
    const AAFSourceEssence& essence = timeline.essences[entry.essences.front()];
    row.text("state", stateWord(entry.state));
    row.text("name", entry.placed ? std::optional(entry.placed->name) : std::nullopt);
    addPlace(row, entry.path);
    row.objects("sources", entry.essences, [&timeline](JsonRow& source, std::size_t index) {
        source.text("id", timeline.essences[index].id);
        source.text("name", sourceName(timeline.essences[index]));
    });
    row.integer("clips", integer(entry.clips));
    row.integer("frames", framesOf(entry.facts));
    row.text("seconds", secondsOf(entry.facts));
    row.text("sampleRate", fractionText(essence.sampleRate));
    row.integer("bits", essence.bitDepth);
    // Without the file the number would be a guess.
    row.integer("channels", entry.path ? std::optional(essence.channelCount) : std::nullopt);
    row.text("codec", essence.codec);
    row.text("recordedAs", essence.originalPath);
    row.text("sha256", entry.placed ? std::optional(entry.placed->sha256) : std::nullopt);
    row.boolean("wasThere", entry.wasThere());
    row.boolean("readable", entry.path && !entry.isUnreadable());
    row.text("notConverted", entry.notConverted);
    row.objects("candidates", entry.candidates, addCandidate);
}

}  // namespace

std::string summaryLine(const ExtractionReport& report) {
    const AAFTimeline& timeline = report.handOff.timeline;
    JsonRow row;
    row.text("file", report.file);
    row.text("directory", report.directory);
    row.text("timeline", report.timeline.name);
    row.text("manifest", report.manifest.name);
    row.objects("audio", report.audio, [&timeline](JsonRow& item, const AudioEntry& entry) {
        addEntry(item, entry, timeline);
    });
    row.integer("notPlayed",
                report.embedded ? std::optional(report.embedded->unusedCount) : std::nullopt);
    row.integer("losses", integer(timeline.unsupportedFeatures.size()));
    row.integer("changes", integer(report.handOff.changes.size()));
    return row.line();
}

}  // namespace trellant::cli
