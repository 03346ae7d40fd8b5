// SPDX-License-Identifier: Apache-2.0
// The summary for a program.
#include "look/list.h"
#include "report.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <trellant/base/url.h>
#include <trellant/handoff/sources.h>

namespace trellant::cli {

namespace {

/// A path that need not be UTF-8 as text for reading and as a URL for use.
void addPlace(JsonLine& line, const std::optional<std::string>& path) {
    if (path) {
        line.text("path", *path).text("fileURL", fileURL(*path).text);
    }
}

void addLength(JsonLine& line, const std::optional<AudioFacts>& facts) {
    if (facts && facts->frames) {
        line.count("frames", *facts->frames);
    }
    if (const auto length = facts ? seconds(*facts) : std::nullopt) {
        line.number("lengthSeconds", length->doubleValue()).fraction("lengthSecondsExact", *length);
    }
}

void addRate(JsonLine& line, const std::optional<AAFRational>& rate) {
    if (rate) {
        line.number("sampleRate", rate->doubleValue()).fraction("sampleRateExact", *rate);
    }
}

void addCandidate(JsonLine& line, const MediaCandidate& candidate) {
    const AudioFormatInfo format = candidate.facts ? candidate.facts->format : AudioFormatInfo{};
    addPlace(line, candidate.path);
    addLength(line, candidate.facts);
    addRate(line, format.sampleRate);
    line.integer("channels", format.channels)
        .integer("bitDepth", format.bitDepth)
        .boolean("fits", !candidate.misfit)
        .text("misfit", candidate.misfit);
}

void addEntry(JsonLine& line, const AudioEntry& entry, const std::vector<Source>& sources) {
    const AAFSourceEssence& essence = *sources[entry.essences.front()].essence;
    line.text("state", stateWord(entry.state));
    if (entry.placed) {
        line.text("name", entry.placed->name);
        if (entry.isNamedByMasterMob) {
            line.text("nameFrom", "masterMob");
        }
    }
    addPlace(line, entry.path);
    line.objects("sources", entry.essences, [&sources](JsonLine& item, std::size_t index) {
        const Source& source = sources[index];
        item.text("id", source.essence->id)
            .text("name", sourceName(*source.essence))
            .text("state", stateWord(source.state));
    });
    line.count("clips", entry.clips);
    addLength(line, entry.facts);
    addRate(line, essence.sampleRate);
    line.integer("bitDepth", essence.bitDepth);
    // Without the file the number would be a guess.
    if (entry.path) {
        line.integer("channels", essence.channelCount);
    }
    line.text("codec", essence.codec).text("recordedPath", essence.originalPath);
    if (entry.placed) {
        line.text("sha256", entry.placed->sha256);
    }
    if (entry.stored) {
        line.text("stored", entry.stored->name)
            .boolean("storeHadIt", entry.stored->wasThere)
            .boolean("linked", entry.stored->isLinked);
    }
    line.boolean("wasThere", entry.wasThere())
        .boolean("readable", entry.path && !entry.isUnreadable())
        .text("notConverted", entry.notConverted);
    line.objects("candidates", entry.candidates, addCandidate);
}

}  // namespace

std::string summaryLine(const ExtractionReport& report, const std::optional<BagFacts>& bag,
                        const std::string& store) {
    const Sources sources(report.handOff);
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(report.file))
            .text("omfVersion", report.handOff.olderVersion)
            .text("directory", fileForPrograms(report.directory))
            .text("timeline", report.timeline.name)
            .text("manifest", report.manifest.name);
        if (!store.empty()) {
            line.text("store", fileForPrograms(store));
        }
        if (bag) {
            line.object("bag", [&bag](JsonLine& item) {
                item.count("payloadFiles", bag->payloadFiles)
                    .count("payloadBytes", bag->payloadBytes)
                    .boolean("wasThere", bag->wasThere);
            });
        }
        line.objects("audio", report.audio, [&sources](JsonLine& item, const AudioEntry& entry) {
            addEntry(item, entry, sources.all());
        });
        if (report.embedded) {
            line.integer("notPlayed", report.embedded->unusedCount);
        }
        line.count("losses", report.handOff.timeline.unsupportedFeatures.size())
            .count("changes", report.handOff.changes.size());
    });
}

}  // namespace trellant::cli
