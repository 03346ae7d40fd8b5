// SPDX-License-Identifier: Apache-2.0
// A track with a channel for each lane of the session, all into one master; then the arrangement,
// lanes of clips beside lanes of points. Times are seconds. Elements have a fixed order.
#include "dawproject_document.h"

#include "session_text.h"

#include <trellant/exchange/format_limits.h>
#include <trellant/version.h>
#include <trellant/xml/xml_tree.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>

namespace trellant::sessions {

namespace {

using xml::XmlElement;
using xml::XmlTree;

std::string dawProjectName(std::string_view text) {
    return exchange::nameWithin(exchange::ExportFormat::dawproject, text);
}

using exchange::PlannedClip;
using exchange::PlannedTrack;

/// A lane of the session, which is a track here.
struct LanePlace {
    const PlannedTrack* track = nullptr;
    const exchange::Lane* lane = nullptr;
    /// From 1: what its identifiers end in.
    std::string number{};
};

const char* colourOf(MarkerKind kind) noexcept {
    switch (kind) {
        case MarkerKind::soundsDifferent:
            return "#ffff00";
        case MarkerKind::dropped:
            return "#ff0000";
        case MarkerKind::changed:
            return "#00ff00";
    }
    return "";
}

bool moves(const std::optional<AAFAutomationEnvelope>& envelope) noexcept {
    return envelope && !envelope->points.empty();
}

class ProjectDocument {
  public:
    explicit ProjectDocument(const Session& session) : session_(session), plan_(session.plan) {
        for (const PlannedTrack& track : plan_.tracks) {
            for (const exchange::Lane& lane : track.lanes) {
                lanes_.push_back({&track, &lane, std::to_string(lanes_.size() + 1)});
            }
        }
    }

    void write(const compound::ByteSink& sink);

  private:
    void track(const XmlElement& structure, const LanePlace& place) const;
    void laneClips(const XmlElement& arrangement, const LanePlace& place) const;
    void clip(const XmlElement& clips, const PlannedClip& clip) const;
    void audio(const XmlElement& parent, std::size_t media) const;
    void clipGain(const XmlElement& lanes, const PlannedClip& clip, double playStart) const;
    void trackPoints(const XmlElement& lanes, const AAFAutomationEnvelope& envelope, double factor,
                     const std::string& parameter, const char* unit) const;
    void markers(const XmlElement& arrangement) const;
    [[nodiscard]] std::int64_t channelsOf(const exchange::Lane& lane) const;
    [[nodiscard]] std::string seconds(exchange::Samples samples) const {
        return numberText(secondsOf(samples, plan_.rate));
    }

    const Session& session_;
    const exchange::ExportPlan& plan_;
    std::vector<LanePlace> lanes_;
};

void transport(const XmlElement& project) {
    const XmlElement transport = project.add("Transport");
    transport.add("Tempo").with("unit", "bpm").with("value", "120");
    transport.add("TimeSignature").with("denominator", "4").with("numerator", "4");
}

void master(const XmlElement& structure) {
    const XmlElement track = structure.add("Track");
    track.with("name", "Master")
        .with("id", "masterTrack")
        .with("contentType", "audio")
        .withFlag("loaded", true);
    track.add("Channel").with("id", "master").with("audioChannels", "2").with("role", "master");
}

void points(const XmlElement& parent, const AAFAutomationEnvelope& envelope, double factor,
            exchange::Samples length, std::int64_t rate, double start) {
    const bool holds =
        std::holds_alternative<AAFAutomationInterpolation::Constant>(envelope.interpolation.curve);
    for (const AAFAutomationPoint& point : envelope.points) {
        parent.add("RealPoint")
            .with("time", numberText(start + secondsAt(point.timelineOffset, length, rate)))
            .with("value", numberText(factor * point.value))
            .with("interpolation", holds ? "hold" : "linear");
    }
}

void ProjectDocument::write(const compound::ByteSink& sink) {
    const XmlTree tree("Project");
    const XmlElement project = tree.root();
    project.with("version", "1.0");
    project.add("Application").with("name", "Trellant").with("version", versionText);
    transport(project);
    const XmlElement structure = project.add("Structure");
    for (const LanePlace& place : lanes_) {
        track(structure, place);
    }
    master(structure);
    const XmlElement arrangement = project.add("Arrangement");
    arrangement.with("id", "arrangement");
    const XmlElement lanes = arrangement.add("Lanes");
    lanes.with("timeUnit", "seconds");
    for (const LanePlace& place : lanes_) {
        laneClips(lanes, place);
    }
    markers(arrangement);
    tree.write(sink);
}

std::int64_t ProjectDocument::channelsOf(const exchange::Lane& lane) const {
    std::int64_t most = 1;
    for (const PlannedClip& clip : lane.clips) {
        most = std::max(most, plan_.media.at(clip.media).channelCount);
    }
    return most;
}

void ProjectDocument::track(const XmlElement& structure, const LanePlace& place) const {
    const XmlElement track = structure.add("Track");
    track.with("name", dawProjectName(place.lane->name))
        .with("id", "track" + place.number)
        .with("contentType", "audio")
        .withFlag("loaded", true);
    const XmlElement channel = track.add("Channel");
    channel.with("id", "channel" + place.number)
        .with("audioChannels", channelsOf(*place.lane))
        .with("destination", "master")
        .with("role", "regular")
        .withFlag("solo", place.track->solo);
    channel.add("Mute").with("id", "mute" + place.number).withFlag("value", place.track->muted);
    channel.add("Pan")
        .with("id", "pan" + place.number)
        .with("max", "1")
        .with("min", "0")
        .with("unit", "normalized")
        .with("value", numberText(place.track->pan.value_or(0.5)));
    channel.add("Volume")
        .with("id", "volume" + place.number)
        .with("min", "0")
        .with("unit", "linear")
        .with("value", numberText(place.track->gain));
}

void ProjectDocument::laneClips(const XmlElement& arrangement, const LanePlace& place) const {
    const XmlElement lanes = arrangement.add("Lanes");
    lanes.with("track", "track" + place.number);
    const XmlElement clips = lanes.add("Clips");
    for (const PlannedClip& planned : place.lane->clips) {
        clip(clips, planned);
    }
    if (moves(place.track->gainAutomation)) {
        trackPoints(lanes, *place.track->gainAutomation, place.track->gain, "volume" + place.number,
                    "linear");
    }
    if (moves(place.track->panAutomation)) {
        trackPoints(lanes, *place.track->panAutomation, 1, "pan" + place.number, "normalized");
    }
}

void ProjectDocument::trackPoints(const XmlElement& lanes, const AAFAutomationEnvelope& envelope,
                                  double factor, const std::string& parameter,
                                  const char* unit) const {
    const XmlElement element = lanes.add("Points");
    element.with("unit", unit).add("Target").with("parameter", parameter);
    points(element, envelope, factor, plan_.length, plan_.rate, 0);
}

void ProjectDocument::clip(const XmlElement& clips, const PlannedClip& clip) const {
    const double playStart = mediaSeconds(clip.sourceStart, plan_.media.at(clip.media).sampleRate);
    const XmlElement element = clips.add("Clip");
    element.with("name", dawProjectName(clip.name))
        .with("time", seconds(clip.start))
        .with("duration", seconds(clip.length))
        .with("contentTimeUnit", "seconds")
        .with("playStart", numberText(playStart))
        .with("fadeTimeUnit", "seconds")
        .with("fadeInTime", seconds(clip.fadeIn ? clip.fadeIn->length : 0))
        .with("fadeOutTime", seconds(clip.fadeOut ? clip.fadeOut->length : 0));
    if (clip.muted) {
        element.withFlag("enable", false);
    }
    if (clip.gain == 1 && !moves(clip.gainAutomation)) {
        audio(element, clip.media);
        return;
    }
    const XmlElement lanes = element.add("Lanes");
    audio(lanes, clip.media);
    clipGain(lanes, clip, playStart);
}

void ProjectDocument::audio(const XmlElement& parent, std::size_t media) const {
    const exchange::PlannedMedia& planned = plan_.media.at(media);
    const XmlElement audio = parent.add("Audio");
    audio.with("name", dawProjectName(planned.name))
        .with("channels", planned.channelCount)
        .with("duration", numberText(mediaSeconds(planned.frames, planned.sampleRate)))
        .with("sampleRate", planned.sampleRate.roundedInt64());
    const XmlElement file = audio.add("File");
    if (planned.isOffline) {
        file.with("path", dawProjectName(planned.recordedPath.value_or(planned.fileName)))
            .withFlag("external", true);
    } else if (isDawProjectMember(session_.media.at(media))) {
        file.with("path", dawProjectName(dawProjectMemberName(planned)));
    } else {
        file.with("path", dawProjectName(session_.media.at(media).reference))
            .withFlag("external", true);
    }
}

void ProjectDocument::clipGain(const XmlElement& lanes, const PlannedClip& clip,
                               double playStart) const {
    const XmlElement element = lanes.add("Points");
    element.with("unit", "linear").add("Target").with("expression", "gain");
    // The clip's content counts from the beginning of the file.
    const AAFAutomationEnvelope still{.interpolation = AAFAutomationInterpolation::constant(),
                                      .points = {{AAFRational(), 1.0}}};
    points(element, moves(clip.gainAutomation) ? *clip.gainAutomation : still, clip.gain,
           clip.length, plan_.rate, playStart);
}

void ProjectDocument::markers(const XmlElement& arrangement) const {
    const XmlElement markers = arrangement.add("Markers");
    markers.add("Marker").with("name", "Start " + startText(plan_.start)).with("time", "0");
    for (const SessionMarker& marker : session_.markers) {
        markers.add("Marker")
            .with("name", dawProjectName(remarkText(session_, marker)))
            .with("color", colourOf(marker.kind))
            .with("time", seconds(marker.position));
    }
}

}  // namespace

std::string dawProjectMemberName(const exchange::PlannedMedia& media) {
    return "audio/" + media.fileName;
}

bool isDawProjectMember(const SessionMedia& media) {
    return media.isEmbedded && media.wave.has_value();
}

void writeDawProjectDocument(const Session& session, const compound::ByteSink& sink) {
    ProjectDocument(session).write(sink);
}

void writeDawProjectMetadata(const Session& session, const compound::ByteSink& sink) {
    const XmlTree tree("MetaData");
    const XmlElement root = tree.root();
    root.add("Title").setText(dawProjectName(session.plan.name.value_or(session.name)));
    root.add("Comment").setText("Starts at " + startText(session.plan.start));
    tree.write(sink);
}

}  // namespace trellant::sessions
