// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/keyed_hash.h>
#include <trellant/base/printable_text.h>
#include <trellant/exporter/session_markers.h>
#include <trellant/handoff/clip_name.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace trellant {

namespace {

using exchange::ExportLoss;
using exchange::ExportPlan;
using exchange::Samples;
using sessions::MarkerKind;
using sessions::SessionMarker;
using Severity = AAFUnsupportedFeature::Severity;

MarkerKind kindOf(exchange::LossEffect effect) noexcept {
    switch (effect) {
        case exchange::LossEffect::dropped:
            return MarkerKind::dropped;
        case exchange::LossEffect::soundsDifferent:
            return MarkerKind::soundsDifferent;
        case exchange::LossEffect::changed:
            return MarkerKind::changed;
    }
    return MarkerKind::soundsDifferent;
}

class Markers {
  public:
    Markers(const HandOff& handOff, const ExportPlan& plan) : handOff_(handOff), plan_(plan) {
        const AAFTimeline& timeline = handOff.timeline;
        for (std::size_t i = 0; i < timeline.tracks.size(); ++i) {
            tracks_.emplace(timeline.tracks[i].id, i);
        }
    }

    void add(const PlacedLoss& loss, Severity severity) {
        SessionMarker marker = placed(loss.start, loss.duration);
        if (const auto track = loss.trackID ? tracks_.find(*loss.trackID) : tracks_.end();
            track != tracks_.end()) {
            marker.track = track->second;
        }
        marker.kind =
            severity == Severity::informational ? MarkerKind::dropped : MarkerKind::soundsDifferent;
        say(marker, loss.clipName ? &*loss.clipName : nullptr,
            loss.plain.empty() ? loss.description : loss.plain);
    }

    void add(const ExportLoss& loss) {
        SessionMarker marker = placed(loss.start, loss.duration);
        marker.track = loss.track;
        marker.event = loss.event;
        marker.kind = kindOf(exchange::effectOf(loss));
        say(marker, loss.event ? clipName(handOff_, *loss.event).text : nullptr, loss.sentence);
    }

    [[nodiscard]] std::vector<SessionMarker> all() && {
        std::stable_sort(markers_.begin(), markers_.end(),
                         [](const SessionMarker& left, const SessionMarker& right) {
                             return left.position < right.position;
                         });
        return std::move(markers_);
    }

  private:
    /// A mark may be a sample beside its place: it is for eyes.
    [[nodiscard]] Samples sample(const AAFRational& seconds) const {
        const double place = seconds.doubleValue() * static_cast<double>(plan_.rate);
        return static_cast<Samples>(
            std::clamp(place + 0.5, 0.0, static_cast<double>(exchange::mostSamples)));
    }

    /// What has no place is about a track or the whole, and stands at the start.
    [[nodiscard]] SessionMarker placed(const std::optional<AAFRational>& start,
                                       const std::optional<AAFRational>& duration) const {
        SessionMarker marker;
        if (start) {
            marker.position = sample(*start);
        }
        if (start && duration) {
            marker.length = std::max<Samples>(0, sample(*start + *duration) - marker.position);
        }
        return marker;
    }

    void say(SessionMarker& marker, const std::string* clip, std::string_view sentence) {
        marker.text = clip != nullptr ? printableText(*clip) + ": " : std::string();
        marker.text += sentence;
        markers_.push_back(std::move(marker));
    }

    const HandOff& handOff_;
    const ExportPlan& plan_;
    KeyedMap<std::string_view, std::size_t> tracks_;
    std::vector<SessionMarker> markers_;
};

}  // namespace

std::vector<SessionMarker> lossMarkers(const HandOff& handOff,
                                       const std::vector<ExportLoss>& losses,
                                       const ExportPlan& plan) {
    Markers markers(handOff, plan);
    for (std::size_t i = 0; i < handOff.losses.size(); ++i) {
        markers.add(handOff.losses[i], handOff.timeline.unsupportedFeatures[i].severity);
    }
    for (const ExportLoss& loss : losses) {
        markers.add(loss);
    }
    return std::move(markers).all();
}

}  // namespace trellant
