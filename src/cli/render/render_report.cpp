// SPDX-License-Identifier: Apache-2.0
#include "render_report.h"

#include "terminal/counted_text.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <trellant/base/printable_path.h>
#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trellant::cli {

namespace {

using render::RenderedFile;
using render::RenderKind;
using render::RenderReport;

std::string_view kindWord(RenderKind kind) {
    switch (kind) {
        case RenderKind::tracks:
            return "tracks";
        case RenderKind::mix:
            return "mix";
        case RenderKind::clips:
            return "clips";
    }
    return {};
}

std::string formatText(const audio::PcmFormat& format) {
    return std::to_string(format.bits) + (format.isFloatingPoint ? " bits float" : " bits");
}

/// "24 bits" where all files agree.
std::string formatsText(const RenderReport& report) {
    const auto& files = report.files;
    const bool agree = std::all_of(files.begin(), files.end(), [&](const RenderedFile& file) {
        return file.format == files.front().format;
    });
    return files.empty() || !agree ? "bits of the media" : formatText(files.front().format);
}

AAFRational secondsOf(exchange::Samples samples, const RenderReport& report) {
    return AAFRational(samples) / AAFRational(report.plan.rate);
}

std::uint64_t cutSamples(const RenderReport& report) {
    std::uint64_t count = 0;
    for (const RenderedFile& file : report.files) {
        count += file.cutSamples;
    }
    return count;
}

/// Of the media that are silent those of which the hand-off leaves open which file is meant.
std::size_t undecidedMedia(const RenderReport& report) {
    const Sources sources(report.handOff);
    return static_cast<std::size_t>(std::count_if(
        report.plan.media.begin(), report.plan.media.end(),
        [&sources](const exchange::PlannedMedia& media) {
            return media.isOffline &&
                   sources.all().at(media.essence).state == SourceState::severalCandidates;
        }));
}

std::string differencesText(const RenderReport& report) {
    const std::size_t ofReading = report.handOff.timeline.unsupportedFeatures.size();
    std::string text;
    if (ofReading != 0) {
        text = std::to_string(ofReading) + " of reading";
    }
    if (!report.losses.empty()) {
        text += (text.empty() ? "" : ", ") + std::to_string(report.losses.size()) + " of rendering";
    }
    return text.empty() ? "none" : text + "; listed in " + std::string(render::lossesName);
}

void writeFile(JsonLine& line, const RenderedFile& file, const RenderReport& report) {
    line.text("name", file.name);
    if (file.track) {
        const exchange::PlannedTrack& track = report.plan.tracks[*file.track];
        line.integer("track", report.handOff.timeline.tracks[track.track].index + 1)
            .text("trackName", track.name);
        if (file.clip) {
            const exchange::PlannedClip& clip = track.lanes.front().clips[*file.clip];
            line.text("clip", clip.name);
            if (clipName(report.handOff, clip.event).isOfMasterMob) {
                line.word("clipNameFrom", "masterMob");
            }
        }
    }
    line.count("channels", file.channels)
        .count("bitDepth", file.format.bits)
        .boolean("floatingPoint", file.format.isFloatingPoint)
        .integer("startSample", file.start)
        .integer("frames", file.length)
        .number("lengthSeconds", secondsOf(file.length, report).doubleValue())
        .fraction("lengthSecondsExact", secondsOf(file.length, report))
        .count("clips", file.clips)
        .count("silentClips", file.silentClips)
        .count("cutSamples", file.cutSamples)
        .word("sha256", file.sha256);
}

}  // namespace

std::string renderScreen(const std::string& file, const std::string& directory,
                         const RenderCall& call, const RenderReport& report) {
    std::string text = printablePath(file) + " -> " +
                       counted(report.files.size(), "file", "files") + " in " +
                       printablePath(directory) + "\n";
    text += "  Sound        " + std::string(kindWord(call.kind)) +
            (call.raw ? ", edits only, " : ", ") + std::to_string(report.plan.rate) + " Hz, " +
            formatsText(report) + "\n";
    if (call.kind != RenderKind::clips && !report.files.empty()) {
        const RenderedFile& first = report.files.front();
        text += "  Part         from " +
                timecodeText(report.handOff.timeline, secondsOf(first.start, report)) + ", " +
                lengthText(report.handOff.timeline, secondsOf(first.length, report)) + " long\n";
    }
    if (!report.resampled.empty()) {
        text += "  Converted    " + counted(report.resampled.size(), "audio file", "audio files") +
                " of other sample rates\n";
    }
    text += "  Silent       " +
            (report.silentClips == 0
                 ? "no clip"
                 : counted(report.silentClips, "clip", "clips") + " of " +
                       counted(report.missingMedia, "missing audio file", "missing audio files")) +
            "\n";
    if (const std::uint64_t cut = cutSamples(report); cut != 0) {
        text += "  Cut off      " + counted(cut, "sample", "samples") + " beyond full scale\n";
    }
    return text + "  Differences  " + differencesText(report) + "\n  Checksums    " +
           std::string(render::manifestName) + "\n";
}

std::string renderLine(const std::string& file, const std::string& directory,
                       const RenderCall& call, const RenderReport& report) {
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(file))
            .text("directory", fileForPrograms(directory))
            .text("omfVersion", report.handOff.olderVersion)
            .text("kind", kindWord(call.kind))
            .boolean("raw", call.raw)
            .integer("sampleRate", report.plan.rate)
            .text("start", report.plan.start.description())
            .text("lossesFile", render::lossesName)
            .text("manifest", render::manifestName)
            .objects("files", report.files,
                     [&](JsonLine& each, const RenderedFile& one) { writeFile(each, one, report); })
            .count("silentClips", report.silentClips)
            .count("missingSources", report.missingMedia)
            .count("cutSamples", cutSamples(report))
            .objects("resampled", report.resampled,
                     [&](JsonLine& each, std::size_t number) {
                         const exchange::PlannedMedia& media = report.plan.media[number];
                         each.text("name", media.name)
                             .number("sampleRate", media.sampleRate.doubleValue())
                             .fraction("sampleRateExact", media.sampleRate);
                     })
            .object("losses",
                    [&](JsonLine& losses) {
                        losses.count("reading", report.handOff.timeline.unsupportedFeatures.size())
                            .count("render", report.losses.size());
                    })
            .count("changes", report.handOff.changes.size());
    });
}

std::vector<std::string> renderRemarks(const RenderReport& report) {
    std::vector<std::string> remarks;
    const std::size_t undecided = undecidedMedia(report);
    if (undecided != 0) {
        remarks.push_back(counted(undecided, "audio file is", "audio files are") +
                          " undecided, since several files of the name fit, and there is silence; "
                          "trellant extract lists the files");
    }
    if (const std::size_t missing = report.missingMedia - undecided; missing != 0) {
        remarks.push_back(counted(missing, "audio file is", "audio files are") +
                          " missing, and there is silence; name the folder that holds " +
                          (missing == 1 ? "it" : "them") + " with --media FOLDER");
    }
    if (const std::uint64_t cut = cutSamples(report); cut != 0) {
        remarks.push_back(counted(cut, "sample is", "samples are") +
                          " beyond full scale and cut off; --format wav32f keeps what is beyond");
    }
    return remarks;
}

}  // namespace trellant::cli
