// SPDX-License-Identifier: Apache-2.0
// A Timeline of a Stack of Tracks, one for each lane. What a Track holds lies end to end: clips,
// gaps between them, and transitions that take no time of their own. A crossfade cuts both of its
// clips in its middle.
//
// Lengths count samples of the session, beginnings in a source samples of that source, so that both
// are whole numbers.
#include "otio_document.h"

#include "otio_metadata.h"
#include "session_text.h"

#include <trellant/base/url.h>
#include <trellant/json/json_encode.h>
#include <trellant/json/json_writer.h>

#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace trellant::sessions {

namespace {

using exchange::PlannedClip;
using exchange::PlannedMedia;
using exchange::PlannedTrack;
using exchange::Samples;

class SinkOfBytes final : public JsonSink {
  public:
    explicit SinkOfBytes(const compound::ByteSink& sink) : sink_(sink) {}
    void write(std::string_view bytes) override { sink_(std::as_bytes(std::span(bytes))); }

  private:
    const compound::ByteSink& sink_;
};

/// A moment or a length: `value` units of which `rate` make a second.
struct Units {
    double value = 0;
    double rate = 1;
};

std::string_view colourOf(MarkerKind kind) noexcept {
    switch (kind) {
        case MarkerKind::soundsDifferent:
            return "YELLOW";
        case MarkerKind::dropped:
            return "RED";
        case MarkerKind::changed:
            return "GREEN";
    }
    return "";
}

/// How much of a clip its crossfades take for the transitions on either side.
struct Cuts {
    Samples head = 0;
    Samples tail = 0;
};

std::string urlOf(const PlannedMedia& planned, const SessionMedia& media, OtioMedia names) {
    if (names == OtioMedia::inBundle && isOtioMember(media)) {
        return relativeFileURL("/" + otioMemberName(planned), "/").text;
    }
    return media.reference.starts_with('/') ? fileURL(media.reference).text
                                            : relativeFileURL("/" + media.reference, "/").text;
}

class Document {
  public:
    Document(const Session& session, OtioMedia mediaNames, JsonSink& sink)
        : session_(session), plan_(session.plan), json_(sink) {
        for (std::size_t i = 0; i < plan_.media.size(); ++i) {
            urls_.push_back(plan_.media[i].isOffline
                                ? std::string()
                                : urlOf(plan_.media[i], session.media.at(i), mediaNames));
        }
        markers_.resize(plan_.tracks.size());
        for (const PlannedTrack& track : plan_.tracks) {
            for (const exchange::Lane& lane : track.lanes) {
                for (const PlannedClip& clip : lane.clips) {
                    clipMarkers_.try_emplace(clip.event);
                }
            }
        }
        for (const SessionMarker& marker : session.markers) {
            markersBeside(marker).push_back(&marker);
        }
    }

    void write();

  private:
    using Markers = std::vector<const SessionMarker*>;

    /// A remark stands on its clip, else on its track, else on the whole.
    [[nodiscard]] Markers& markersBeside(const SessionMarker& marker) {
        if (const auto clip = marker.event ? clipMarkers_.find(*marker.event) : clipMarkers_.end();
            clip != clipMarkers_.end()) {
            return clip->second;
        }
        return marker.track ? markers_.at(*marker.track) : sessionMarkers_;
    }
    void begin(std::string_view schema) {
        json_.beginObject();
        json_.plainKey("OTIO_SCHEMA");
        json_.string(schema);
    }
    template <class Metadata>
    void metadata(const Metadata& metadata) {
        json_.plainKey("metadata");
        json_.beginObject();
        json_.plainKey("trellant");
        encodeDeclared(json_, metadata);
        json_.endObject();
    }
    void text(std::string_view key, std::string_view value) {
        json_.plainKey(key);
        json_.string(value);
    }
    void time(const Units& time);
    void time(std::string_view key, const Units& value) {
        json_.plainKey(key);
        time(value);
    }
    void range(std::string_view key, const Units& start, const Units& duration);
    [[nodiscard]] Units inSession(Samples samples) const {
        return {static_cast<double>(samples), static_cast<double>(plan_.rate)};
    }

    void track(std::size_t position, std::size_t lane);
    void children(const exchange::Lane& lane);
    void gap(Samples length);
    void transition(const PlannedClip& from, const PlannedClip& to);
    void clip(const PlannedClip& clip, const Cuts& cuts);
    void reference(std::size_t media);
    void markers(const Markers& markers);
    /// Those of a clip mark all that it plays of its source.
    void clipMarkers(const PlannedClip& clip, const Units& start, const Units& duration);
    void marker(const SessionMarker& marker, const Units& start, const Units& duration);

    const Session& session_;
    const exchange::ExportPlan& plan_;
    JsonWriter json_;
    std::vector<std::string> urls_;
    /// By position in the plan's tracks.
    std::vector<Markers> markers_;
    /// By position in the timeline's events.
    std::map<std::size_t, Markers> clipMarkers_;
    Markers sessionMarkers_;
};

void Document::time(const Units& time) {
    begin("RationalTime.1");
    json_.plainKey("rate");
    json_.number(time.rate);
    json_.plainKey("value");
    json_.number(time.value);
    json_.endObject();
}

void Document::range(std::string_view key, const Units& start, const Units& duration) {
    json_.plainKey(key);
    begin("TimeRange.1");
    time("duration", duration);
    time("start_time", start);
    json_.endObject();
}

void Document::write() {
    const AAFTimecodeRate& frames = plan_.start.rate;
    begin("Timeline.1");
    metadata(otioMetadata(plan_));
    text("name", plan_.name.value_or(session_.name));
    time("global_start_time",
         {static_cast<double>(plan_.start.absoluteFrameNumber()), frames.exactRate.doubleValue()});
    json_.plainKey("tracks");
    begin("Stack.1");
    text("name", "tracks");
    markers(sessionMarkers_);
    json_.plainKey("children");
    json_.beginArray();
    for (std::size_t i = 0; i < plan_.tracks.size(); ++i) {
        for (std::size_t lane = 0; lane < plan_.tracks[i].lanes.size(); ++lane) {
            track(i, lane);
        }
    }
    json_.endArray();
    json_.endObject();
    json_.endObject();
    json_.endLine();
    json_.flush();
}

void Document::track(std::size_t position, std::size_t lane) {
    const exchange::PlannedTrack& planned = plan_.tracks[position];
    begin("Track.1");
    metadata(otioMetadata(planned, lane));
    text("name", planned.lanes[lane].name);
    text("kind", "Audio");
    json_.plainKey("enabled");
    json_.boolean(!planned.muted);
    markers(lane == 0 ? markers_[position] : Markers());
    children(planned.lanes[lane]);
    json_.endObject();
}

void Document::children(const exchange::Lane& lane) {
    json_.plainKey("children");
    json_.beginArray();
    Samples end = 0;
    Cuts cuts;
    for (std::size_t i = 0; i < lane.clips.size(); ++i) {
        const PlannedClip& planned = lane.clips[i];
        const PlannedClip* next = i + 1 < lane.clips.size() ? &lane.clips[i + 1] : nullptr;
        if (i > 0 && planned.crossfadesIn) {
            transition(lane.clips[i - 1], planned);
        } else if (planned.start > end) {
            gap(planned.start - end);
        }
        const bool crossfadesOut = next != nullptr && next->crossfadesIn;
        const Samples overlap = crossfadesOut ? planned.end() - next->start : 0;
        cuts.tail = overlap - overlap / 2;
        clip(planned, cuts);
        cuts.head = overlap / 2;
        end = planned.end();
    }
    json_.endArray();
}

void Document::gap(Samples length) {
    begin("Gap.1");
    range("source_range", inSession(0), inSession(length));
    json_.endObject();
}

void Document::transition(const PlannedClip& from, const PlannedClip& to) {
    const Samples overlap = from.end() - to.start;
    begin("Transition.1");
    text("name", "");
    text("transition_type", "SMPTE_Dissolve");
    time("in_offset", inSession(overlap / 2));
    time("out_offset", inSession(overlap - overlap / 2));
    json_.endObject();
}

void Document::clip(const PlannedClip& clip, const Cuts& cuts) {
    const PlannedMedia& media = plan_.media.at(clip.media);
    const bool hasRate = media.sampleRate > AAFRational::zero();
    const AAFRational rate = hasRate ? media.sampleRate : AAFRational(plan_.rate);
    // What a crossfade takes is a number of the session's samples.
    const double skipped = secondsAt(rate, cuts.head, plan_.rate);
    begin("Clip.2");
    metadata(otioMetadata(clip, plan_.rate));
    text("name", clip.name);
    const Units start{static_cast<double>(clip.sourceStart) + skipped, rate.doubleValue()};
    const Units duration = inSession(clip.length - cuts.head - cuts.tail);
    range("source_range", start, duration);
    clipMarkers(clip, start, duration);
    json_.plainKey("enabled");
    json_.boolean(!clip.muted);
    text("active_media_reference_key", "DEFAULT_MEDIA");
    json_.plainKey("media_references");
    json_.beginObject();
    json_.plainKey("DEFAULT_MEDIA");
    reference(clip.media);
    json_.endObject();
    json_.endObject();
}

void Document::reference(std::size_t media) {
    const PlannedMedia& planned = plan_.media.at(media);
    begin(planned.isOffline ? "MissingReference.1" : "ExternalReference.1");
    metadata(otioMetadata(planned));
    text("name", planned.name);
    if (!planned.isOffline) {
        const double rate = planned.sampleRate.doubleValue();
        range("available_range", {0, rate}, {static_cast<double>(planned.frames), rate});
        text("target_url", urls_.at(media));
    }
    json_.endObject();
}

void Document::markers(const Markers& markers) {
    json_.plainKey("markers");
    json_.beginArray();
    for (const SessionMarker* const placed : markers) {
        marker(*placed, inSession(placed->position), inSession(placed->length));
    }
    json_.endArray();
}

void Document::clipMarkers(const PlannedClip& clip, const Units& start, const Units& duration) {
    const Markers& markers = clipMarkers_.at(clip.event);
    if (markers.empty()) {
        return;
    }
    json_.plainKey("markers");
    json_.beginArray();
    for (const SessionMarker* const placed : markers) {
        marker(*placed, start, duration);
    }
    json_.endArray();
}

void Document::marker(const SessionMarker& marker, const Units& start, const Units& duration) {
    begin("Marker.2");
    text("name", marker.text);
    text("color", colourOf(marker.kind));
    range("marked_range", start, duration);
    // Some readers take a marker of this version for one of the version before, which had its range
    // under this key.
    range("range", start, duration);
    json_.endObject();
}

}  // namespace

std::string otioMemberName(const exchange::PlannedMedia& media) {
    return "media/" + media.fileName;
}

bool isOtioMember(const SessionMedia& media) {
    return media.isEmbedded && media.wave.has_value();
}

void writeOtioDocument(const Session& session, OtioMedia mediaNames,
                       const compound::ByteSink& sink) {
    SinkOfBytes bytes(sink);
    Document(session, mediaNames, bytes).write();
}

void writeOtioSession(const Session& session, const compound::ByteSink& sink) {
    writeOtioDocument(session, OtioMedia::asReferenced, sink);
}

}  // namespace trellant::sessions
