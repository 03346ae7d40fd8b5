// SPDX-License-Identifier: Apache-2.0
#include "dawproject_reader.h"

#include "session_samples.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <pugixml.hpp>
#include <stdexcept>

namespace trellant::testing {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;

class Reader {
  public:
    explicit Reader(std::int64_t rate) { plan.rate = rate; }

    exchange::ExportPlan plan;

    void project(const pugi::xml_node& project) {
        std::map<std::string, std::size_t> places;
        for (const pugi::xml_node& track : project.child("Structure").children("Track")) {
            const pugi::xml_node channel = track.child("Channel");
            if (std::string(channel.attribute("role").value()) == "master") {
                continue;
            }
            places[track.attribute("id").value()] = plan.tracks.size();
            const std::string name = track.attribute("name").value();
            plan.tracks.push_back({.name = name,
                                   .gain = channel.child("Volume").attribute("value").as_double(),
                                   .pan = channel.child("Pan").attribute("value").as_double(),
                                   .muted = channel.child("Mute").attribute("value").as_bool(),
                                   .solo = channel.attribute("solo").as_bool(),
                                   .lanes = {{.name = name}}});
        }
        const pugi::xml_node lanes = project.child("Arrangement").child("Lanes");
        for (const pugi::xml_node& lane : lanes.children("Lanes")) {
            auto& clips = plan.tracks.at(places.at(lane.attribute("track").value())).lanes[0].clips;
            for (const pugi::xml_node& element : lane.child("Clips").children("Clip")) {
                clips.push_back(clip(element));
                plan.length = std::max(plan.length, clips.back().end());
            }
        }
        for (const pugi::xml_node& lane : lanes.children("Lanes")) {
            automation(lane, plan.tracks.at(places.at(lane.attribute("track").value())));
        }
    }

  private:
    void automation(const pugi::xml_node& lane, exchange::PlannedTrack& track) {
        for (const pugi::xml_node& points : lane.children("Points")) {
            const std::string target = points.child("Target").attribute("parameter").value();
            (target.starts_with("pan") ? track.panAutomation : track.gainAutomation) =
                envelope(points, 0, plan.length);
        }
    }

    [[nodiscard]] Samples samples(const pugi::xml_attribute& seconds, double rate) const {
        return std::llround(seconds.as_double() * rate);
    }
    [[nodiscard]] double rate() const { return static_cast<double>(plan.rate); }

    [[nodiscard]] std::optional<PlannedFade> fade(const pugi::xml_attribute& length) const {
        const Samples count = samples(length, rate());
        return count == 0 ? std::nullopt : std::optional(PlannedFade{.length = count});
    }

    PlannedClip clip(const pugi::xml_node& element) {
        const pugi::xml_node lanes = element.child("Lanes");
        const pugi::xml_node audio = (lanes ? lanes : element).child("Audio");
        PlannedClip clip{.name = element.attribute("name").value(), .media = media(audio)};
        clip.start = samples(element.attribute("time"), rate());
        clip.length = samples(element.attribute("duration"), rate());
        clip.sourceStart =
            samples(element.attribute("playStart"), audio.attribute("sampleRate").as_double());
        clip.fadeIn = fade(element.attribute("fadeInTime"));
        clip.fadeOut = fade(element.attribute("fadeOutTime"));
        clip.muted = !element.attribute("enable").as_bool(true);
        if (lanes) {
            clip.gainAutomation = envelope(lanes.child("Points"),
                                           element.attribute("playStart").as_double(), clip.length);
        }
        return clip;
    }

    [[nodiscard]] AAFAutomationEnvelope envelope(const pugi::xml_node& points, double start,
                                                 Samples length) const {
        constexpr std::int64_t parts = 60;
        AAFAutomationEnvelope envelope;
        for (const pugi::xml_node& point : points.children("RealPoint")) {
            const double place = (point.attribute("time").as_double() - start) * rate() /
                                 static_cast<double>(length);
            envelope.points.push_back({AAFRational(std::llround(place * parts), parts),
                                       point.attribute("value").as_double()});
            if (std::string(point.attribute("interpolation").value()) == "hold") {
                envelope.interpolation = AAFAutomationInterpolation::constant();
            }
        }
        return envelope;
    }

    std::size_t media(const pugi::xml_node& audio) {
        const std::string path = audio.child("File").attribute("path").value();
        const auto [found, isNew] = media_.try_emplace(path, plan.media.size());
        if (isNew) {
            const std::int64_t sampleRate = audio.attribute("sampleRate").as_llong();
            plan.media.push_back(
                {.name = audio.attribute("name").value(),
                 .fileName = path.substr(path.rfind('/') + 1),
                 .sampleRate = AAFRational(sampleRate),
                 .channelCount = audio.attribute("channels").as_llong(),
                 .frames = samples(audio.attribute("duration"), static_cast<double>(sampleRate))});
        }
        return found->second;
    }

    std::map<std::string, std::size_t> media_;
};

void multiply(std::optional<AAFAutomationEnvelope>& envelope, double factor) {
    if (!envelope) {
        return;
    }
    if (envelope->interpolation != AAFAutomationInterpolation::constant()) {
        envelope->interpolation = AAFAutomationInterpolation::linear();
    }
    for (AAFAutomationPoint& point : envelope->points) {
        point.value *= factor;
    }
}

void say(PlannedClip& clip) {
    if (!clip.gainAutomation && clip.gain != 1) {
        clip.gainAutomation =
            AAFAutomationEnvelope{.interpolation = AAFAutomationInterpolation::constant(),
                                  .points = {{AAFRational(), 1.0}}};
    }
    multiply(clip.gainAutomation, clip.gain);
    clip.gain = 1;
    clip.crossfadesIn = false;
    for (auto* const fade : {&clip.fadeIn, &clip.fadeOut}) {
        if (*fade) {
            *fade = PlannedFade{.length = (*fade)->length};
        }
    }
}

}  // namespace

exchange::ExportPlan asDawProjectSays(const exchange::ExportPlan& plan) {
    exchange::ExportPlan said = withoutPositions(plan);
    said.name.reset();
    said.start = {};
    for (exchange::PlannedMedia& media : said.media) {
        media.bitDepth.reset();
        if (media.isOffline) {
            media.fileName = media.recordedPath.value_or(media.fileName);
            media.recordedPath.reset();
            media.isOffline = false;
        }
    }
    for (exchange::PlannedTrack& track : said.tracks) {
        track.pan = track.pan.value_or(0.5);
        multiply(track.gainAutomation, track.gain);
        multiply(track.panAutomation, 1);
        std::for_each(track.lanes.at(0).clips.begin(), track.lanes.at(0).clips.end(), say);
    }
    return said;
}

exchange::ExportPlan planOfDawProject(const std::string& projectXml, std::int64_t rate) {
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(projectXml.data(), projectXml.size());
    if (!result) {
        throw std::runtime_error(result.description());
    }
    Reader reader(rate);
    reader.project(document.child("Project"));
    return reader.plan;
}

}  // namespace trellant::testing
