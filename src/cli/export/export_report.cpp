// SPDX-License-Identifier: Apache-2.0
#include "export_report.h"

#include "terminal/counted_text.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <trellant/base/printable_path.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>

namespace trellant::cli {

namespace {

using exchange::ExportFormat;
using exchange::ExportLoss;
using exchange::LossEffect;

struct Counts {
    explicit Counts(const exchange::ExportPlan& plan) {
        for (const exchange::PlannedTrack& track : plan.tracks) {
            lanes += track.lanes.size();
            for (const exchange::Lane& lane : track.lanes) {
                clips += lane.clips.size();
                crossfades += static_cast<std::size_t>(
                    std::count_if(lane.clips.begin(), lane.clips.end(),
                                  [](const auto& clip) { return clip.crossfadesIn; }));
            }
        }
    }
    std::size_t lanes = 0;
    std::size_t clips = 0;
    std::size_t crossfades = 0;
};

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (const std::string& part : parts) {
        text.append(text.empty() ? "" : separator).append(part);
    }
    return text;
}

std::string_view formatName(ExportFormat format) {
    switch (format) {
        case ExportFormat::aaf:
            return "AAF";
        case ExportFormat::otio:
            return "OTIO";
        case ExportFormat::otioz:
            return "OTIO archive";
        case ExportFormat::reaper:
            return "REAPER project";
        case ExportFormat::dawproject:
            return "DAWproject";
        case ExportFormat::markers:
            return "markers";
    }
    return {};
}

std::string mediaText(const ExportReport& report) {
    std::vector<std::string> parts;
    if (report.mediaFiles != 0) {
        parts.push_back(counted(report.mediaFiles, "file", "files") + " in " +
                        printablePath(*report.mediaFolder));
    }
    if (report.embeddedMedia != 0) {
        parts.push_back(counted(report.embeddedMedia, "file", "files") + " inside");
    }
    if (report.linkedMedia != 0) {
        parts.push_back(counted(report.linkedMedia, "file where it lies", "files where they lie"));
    }
    if (report.offlineMedia != 0) {
        parts.push_back(counted(report.offlineMedia, "file", "files") + " offline");
    }
    return parts.empty() ? "none" : joined(parts, ", ");
}

std::string differencesText(const ExportReport& report) {
    const std::size_t ofReading = report.handOff.timeline.unsupportedFeatures.size();
    const std::size_t ofFormat = report.losses.size();
    std::vector<std::string> parts;
    if (ofReading != 0) {
        parts.push_back(std::to_string(ofReading) + " of reading");
    }
    if (ofFormat != 0) {
        parts.push_back(std::to_string(ofFormat) + " of the format");
    }
    return parts.empty()
               ? std::string(report.offlineMedia == 0 ? "none" : "none but offline audio")
               : joined(parts, ", ") + "; listed in " + printablePath(report.files.back());
}

std::size_t countOf(const std::vector<ExportLoss>& losses, LossEffect effect) {
    return static_cast<std::size_t>(std::count_if(
        losses.begin(), losses.end(),
        [effect](const ExportLoss& loss) { return exchange::effectOf(loss) == effect; }));
}

}  // namespace

std::string exportScreen(const std::string& file, const std::string& directory, ExportFormat format,
                         const ExportReport& report) {
    const Counts counts(report.plan);
    std::string files;
    for (std::size_t i = 0; i + 1 < report.files.size(); ++i) {
        files += (i == 0 ? "" : ", ") + printablePath(report.files[i]);
    }
    std::string text =
        printablePath(file) + " -> " + files + " in " + printablePath(directory) + "\n";
    text += "  Session      " + std::string(formatName(format)) + ", " +
            std::to_string(report.plan.rate) + " Hz, from " + report.plan.start.description() +
            "\n";
    text += "  Content      " + counted(counts.lanes, "track", "tracks") + ", " +
            counted(counts.clips, "clip", "clips");
    if (counts.crossfades != 0) {
        text += ", " + counted(counts.crossfades, "crossfade", "crossfades");
    }
    text += "\n";
    if (format != ExportFormat::markers) {
        text += "  Audio        " + mediaText(report) + "\n";
    }
    return text + "  Differences  " + differencesText(report) + "\n";
}

std::string exportLine(const std::string& file, const std::string& directory, ExportFormat format,
                       const ExportReport& report) {
    const Counts counts(report.plan);
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(file))
            .text("omfVersion", report.handOff.olderVersion)
            .text("directory", fileForPrograms(directory))
            .text("format", exchange::formatWord(format))
            .texts("files", report.files)
            .text("mediaFolder", report.mediaFolder)
            .integer("sampleRate", report.plan.rate)
            .text("start", report.plan.start.description())
            .count("tracks", counts.lanes)
            .count("clips", counts.clips)
            .count("crossfades", counts.crossfades)
            .object("media",
                    [&](JsonLine& media) {
                        media.count("files", report.mediaFiles)
                            .count("embedded", report.embeddedMedia)
                            .count("linked", report.linkedMedia)
                            .count("offline", report.offlineMedia);
                    })
            .object("losses",
                    [&](JsonLine& losses) {
                        losses.count("reading", report.handOff.timeline.unsupportedFeatures.size())
                            .count("export", report.losses.size())
                            .count("exportDropped", countOf(report.losses, LossEffect::dropped))
                            .count("exportChanged", countOf(report.losses, LossEffect::changed))
                            .count("exportSoundsDifferent",
                                   countOf(report.losses, LossEffect::soundsDifferent));
                    })
            .count("changes", report.handOff.changes.size());
    });
}

std::vector<std::string> offlineRemarks(const ExportReport& report) {
    const Sources sources(report.handOff);
    std::map<SourceState, std::size_t> counts;
    std::set<std::size_t> seen;
    for (const exchange::PlannedMedia& media : report.plan.media) {
        if (media.isOffline && seen.insert(media.essence).second) {
            ++counts[sources.all().at(media.essence).state];
        }
    }
    std::vector<std::string> remarks;
    if (const std::size_t count = counts[SourceState::missing]; count != 0) {
        remarks.push_back(counted(count, "audio file is", "audio files are") +
                          " not there, and the clips are offline; name the folder that holds " +
                          (count == 1 ? "it" : "them") + " with --media FOLDER");
    }
    if (const std::size_t count = counts[SourceState::severalCandidates]; count != 0) {
        remarks.push_back(counted(count, "audio file is", "audio files are") +
                          " undecided, since several files of the name fit, and the clips are "
                          "offline; trellant extract lists the files");
    }
    if (const std::size_t count = counts[SourceState::misfit]; count != 0) {
        remarks.push_back(counted(count, "audio file does", "audio files do") +
                          " not fit what the clips need, and these are offline; trellant extract "
                          "says why");
    }
    return remarks;
}

}  // namespace trellant::cli
