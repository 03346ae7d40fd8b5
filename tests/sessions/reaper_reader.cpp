// SPDX-License-Identifier: Apache-2.0
#include "reaper_reader.h"

#include "session_samples.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>

namespace trellant::testing {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;
using Line = ReaperChunk::Line;

constexpr std::string_view quotes = "\"'`";

Line fieldsOf(std::string_view line) {
    Line fields;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.empty()) {
            return fields;
        }
        std::size_t end = line.find(' ');
        std::string_view field = line.substr(0, end);
        if (quotes.find(line.front()) != std::string_view::npos) {
            end = line.find(line.front(), 1);
            if (end == std::string_view::npos) {
                throw std::runtime_error("a quote that does not end");
            }
            field = line.substr(1, end - 1);
            ++end;
        }
        fields.emplace_back(field);
        line.remove_prefix(std::min(end, line.size()));
    }
}

double number(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double value = 0;
    if (!(stream >> value) || !stream.eof()) {
        throw std::runtime_error("no number: " + text);
    }
    return value;
}

/// 0 linear, 1 quick at first, 2 slow at first.
AAFAutomationInterpolation curveOf(const std::string& shape) {
    return shape == "1"   ? AAFAutomationInterpolation::power()
           : shape == "2" ? AAFAutomationInterpolation::logarithmic()
                          : AAFAutomationInterpolation::linear();
}

/// Power and logarithmic fades have a shape; all others are linear.
AAFAutomationInterpolation shapedCurve(const AAFAutomationInterpolation& curve) {
    const bool hasShape = curve == AAFAutomationInterpolation::power() ||
                          curve == AAFAutomationInterpolation::logarithmic();
    return hasShape ? curve : AAFAutomationInterpolation::linear();
}

/// Between points there are lines or steps.
AAFAutomationInterpolation pointsCurve(const AAFAutomationEnvelope& envelope) {
    return envelope.interpolation == AAFAutomationInterpolation::constant()
               ? envelope.interpolation
               : AAFAutomationInterpolation::linear();
}

class PlanReader {
  public:
    explicit PlanReader(const std::vector<exchange::PlannedMedia>& media) {
        for (const exchange::PlannedMedia& file : media) {
            rates_[file.isOffline ? file.recordedPath.value_or(file.fileName) : file.fileName] =
                file.sampleRate.numerator();
        }
    }

    exchange::ExportPlan plan;

    void project(const ReaperChunk& project) {
        plan.name = project.line("TITLE").at(1);
        plan.rate = std::stoll(project.line("SAMPLERATE").at(1));
        for (const ReaperChunk& chunk : project.chunksOf("TRACK")) {
            exchange::PlannedTrack track{.name = chunk.line("NAME").at(1)};
            exchange::Lane lane{.name = track.name};
            for (const ReaperChunk& item : chunk.chunksOf("ITEM")) {
                lane.clips.push_back(clip(item));
                plan.length = std::max(plan.length, lane.clips.back().end());
            }
            track.lanes.push_back(lane);
            plan.tracks.push_back(track);
        }
        // Places of a track's automation are fractions of the whole, which is known now.
        std::size_t position = 0;
        for (const ReaperChunk& chunk : project.chunksOf("TRACK")) {
            mix(chunk, plan.tracks[position]);
            ++position;
        }
    }

  private:
    void mix(const ReaperChunk& chunk, exchange::PlannedTrack& track) {
        track.gain = number(chunk.line("VOLPAN").at(1));
        track.muted = chunk.line("MUTESOLO").at(1) != "0";
        track.solo = chunk.line("MUTESOLO").at(2) != "0";
        track.gainAutomation = envelope(chunk, "VOLENV2", plan.length);
        track.panAutomation = envelope(chunk, "PANENV2", plan.length);
        if (!track.panAutomation) {
            track.pan = (number(chunk.line("VOLPAN").at(2)) + 1) / 2;
            return;
        }
        for (AAFAutomationPoint& point : track.panAutomation->points) {
            point.value = (1 - point.value) / 2;
        }
    }

    PlannedClip clip(const ReaperChunk& item) {
        const ReaperChunk source = item.chunksOf("SOURCE").at(0);
        PlannedClip clip{.name = item.line("NAME").at(1), .media = media(source)};
        clip.start = samples(item.line("POSITION").at(1), plan.rate);
        clip.length = samples(item.line("LENGTH").at(1), plan.rate);
        clip.sourceStart = samples(item.line("SOFFS").at(1), mediaRates_.at(clip.media));
        clip.fadeIn = fade(item.line("FADEIN"));
        clip.fadeOut = fade(item.line("FADEOUT"));
        clip.muted = item.line("MUTE").at(1) != "0";
        clip.gain = number(item.line("VOLPAN").at(3));
        const std::int64_t mode = std::stoll(item.line("CHANMODE").at(1));
        clip.channel = mode == 0 ? std::nullopt : std::optional(mode - 3);
        clip.gainAutomation = envelope(item, "VOLENV", clip.length);
        return clip;
    }

    [[nodiscard]] std::optional<PlannedFade> fade(const Line& line) const {
        const Samples length = samples(line.at(2), plan.rate);
        if (length == 0) {
            return std::nullopt;
        }
        return PlannedFade{.length = length, .curve = curveOf(line.at(1))};
    }

    /// Places as fractions with 60 for denominator: a multiple of all that the samples have.
    [[nodiscard]] std::optional<AAFAutomationEnvelope> envelope(const ReaperChunk& owner,
                                                                std::string_view name,
                                                                Samples length) const {
        const std::vector<ReaperChunk> chunks = owner.chunksOf(name);
        if (chunks.empty()) {
            return std::nullopt;
        }
        constexpr double parts = 60;
        AAFAutomationEnvelope envelope;
        for (const Line& point : chunks.at(0).linesOf("PT")) {
            const double place =
                number(point.at(1)) * static_cast<double>(plan.rate) / static_cast<double>(length);
            envelope.points.push_back(
                {AAFRational(std::llround(place * parts), 60), number(point.at(2))});
            if (point.at(3) == "1") {
                envelope.interpolation = AAFAutomationInterpolation::constant();
            }
        }
        return envelope;
    }

    std::size_t media(const ReaperChunk& source) {
        const std::string& path = source.line("FILE").at(1);
        const auto [found, isNew] = media_.try_emplace(path, plan.media.size());
        if (isNew) {
            const std::string file = path.substr(path.rfind('/') + 1);
            plan.media.push_back({.fileName = file});
            mediaRates_.push_back(rates_.at(file));
        }
        return found->second;
    }

    static Samples samples(const std::string& seconds, std::int64_t rate) {
        return std::llround(number(seconds) * static_cast<double>(rate));
    }

    std::map<std::string, std::size_t> media_;
    std::vector<std::int64_t> mediaRates_;
    std::map<std::string, std::int64_t> rates_;
};

}  // namespace

std::vector<Line> ReaperChunk::linesOf(std::string_view word) const {
    std::vector<Line> found;
    for (const Line& line : lines) {
        if (line.at(0) == word) {
            found.push_back(line);
        }
    }
    return found;
}

const Line& ReaperChunk::line(std::string_view word) const {
    const auto isThis = [word](const Line& line) { return line.at(0) == word; };
    const auto found = std::find_if(lines.begin(), lines.end(), isThis);
    if (std::count_if(lines.begin(), lines.end(), isThis) != 1) {
        throw std::runtime_error("not one line " + std::string(word));
    }
    return *found;
}

std::vector<ReaperChunk> ReaperChunk::chunksOf(std::string_view word) const {
    std::vector<ReaperChunk> found;
    for (const ReaperChunk& chunk : chunks) {
        if (chunk.head.at(0) == word) {
            found.push_back(chunk);
        }
    }
    return found;
}

ReaperChunk reaperProject(std::string_view text) {
    std::vector<ReaperChunk> open;
    std::vector<ReaperChunk> done;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos || (!done.empty() && open.empty())) {
            throw std::runtime_error("a line that does not end, or behind the project");
        }
        Line line = fieldsOf(text.substr(0, end));
        text.remove_prefix(end + 1);
        if (line.at(0).starts_with('<')) {
            line[0].erase(0, 1);
            open.push_back({.head = line});
        } else if (line.at(0) == ">" && line.size() == 1 && !open.empty()) {
            ReaperChunk chunk = std::move(open.back());
            open.pop_back();
            (open.empty() ? done : open.back().chunks).push_back(std::move(chunk));
        } else {
            open.at(open.size() - 1).lines.push_back(line);
        }
    }
    if (done.size() != 1) {
        throw std::runtime_error("not one whole project");
    }
    return done[0];
}

exchange::ExportPlan planOfReaper(std::string_view text,
                                  const std::vector<exchange::PlannedMedia>& media) {
    PlanReader reader(media);
    reader.project(reaperProject(text));
    return reader.plan;
}

exchange::ExportPlan asReaperSays(const exchange::ExportPlan& plan) {
    exchange::ExportPlan said = withoutPositions(plan);
    said.start = {};
    for (exchange::PlannedMedia& media : said.media) {
        media = {.fileName = media.isOffline ? media.recordedPath.value_or(media.fileName)
                                             : media.fileName};
    }
    for (exchange::PlannedTrack& track : said.tracks) {
        track.pan = track.panAutomation ? std::nullopt : std::optional(track.pan.value_or(0.5));
        for (PlannedClip& clip : track.lanes.at(0).clips) {
            clip.crossfadesIn = false;
            for (auto* const fade : {&clip.fadeIn, &clip.fadeOut}) {
                if (*fade) {
                    (*fade)->curve = shapedCurve((*fade)->curve);
                    (*fade)->shape.clear();
                }
            }
            if (clip.gainAutomation) {
                clip.gainAutomation->interpolation = pointsCurve(*clip.gainAutomation);
            }
        }
    }
    return said;
}

}  // namespace trellant::testing
