// SPDX-License-Identifier: Apache-2.0
#include "loss_words.h"

#include <trellant/base/printable_text.h>
#include <trellant/exchange/carried_part.h>
#include <trellant/exchange/format_limits.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

namespace trellant::exchange {

namespace {

using Severity = AAFUnsupportedFeature::Severity;
using Interpolation = AAFAutomationInterpolation;

/// Where a loss is: what the clip, track or session is about.
struct Place {
    std::optional<std::size_t> track{};
    std::optional<std::size_t> event{};
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
};

/// One for each loss of a plan.
std::vector<ExportLoss> ofClips(const std::vector<PlanLoss>& losses, const AAFTimeline& timeline) {
    std::map<std::string_view, std::size_t> tracks;
    for (std::size_t i = 0; i < timeline.tracks.size(); ++i) {
        tracks.emplace(timeline.tracks[i].id, i);
    }
    std::vector<ExportLoss> result;
    for (const PlanLoss& loss : losses) {
        const AAFClipEvent& event = timeline.events[loss.event];
        result.push_back({.feature = loss.kind == PlanLoss::Kind::fadeLongerThanClip
                                         ? Feature::fadeLengths
                                         : Feature::clipPlaces,
                          .severity = severityOf(loss.kind),
                          .track = tracks.at(event.trackID),
                          .event = loss.event,
                          .start = event.timelineStart,
                          .duration = event.duration,
                          .isLeftOut = isLeftOut(loss.kind),
                          .sentence = sentenceOf(loss.kind),
                          .technical = technicalText(loss.kind)});
    }
    return result;
}

/// Half a sample is some 10 microseconds: nobody hears it.
std::optional<ExportLoss> ofEdges(const ExportPlan& plan) {
    if (plan.edges.count == 0) {
        return std::nullopt;
    }
    return ExportLoss{.feature = Feature::clipPlaces,
                      .severity = Severity::informational,
                      .isLeftOut = false,
                      .sentence = roundingSentence(plan.edges),
                      .technical = roundingText(Feature::clipPlaces, plan.edges, plan.rate)};
}

class Reduction {
  public:
    Reduction(const AAFTimeline& timeline, ExportFormat format)
        : timeline_(timeline), format_(format) {}

    [[nodiscard]] CarriedPart of(PlannedSession planned);

  private:
    [[nodiscard]] Carriage carriage(Feature feature) const noexcept {
        return capability(format_, feature).carriage;
    }
    enum class Kind { leftOut, changed };
    void record(Feature feature, const Place& place, Severity severity, Kind kind,
                std::string sentence, std::string technical);
    /// `fade`: the one of a clip that it is about, "fade-in" or "fade-out".
    [[nodiscard]] bool keeps(Feature feature, const Place& place, const std::string& value,
                             std::string_view fade = "fade");
    void recordChange(Feature feature, const Place& place, const std::string& from,
                      const std::string& to, std::string_view fade = "fade");

    void ofSession(ExportPlan& plan);
    void ofTrack(PlannedTrack& track, const ExportPlan& plan);
    void ofClip(PlannedClip& clip, const Place& place, const PlannedMedia& media);
    void ofFades(Lane& lane, const Place& track, const ExportPlan& plan);
    void ofFade(std::optional<PlannedFade>& fade, const Place& place, bool isCrossfade,
                std::string_view which);
    /// `isNoted`: the fade as a whole is on record already.
    void ofCurve(PlannedFade& fade, const Place& place, bool isNoted, std::string_view which);
    void ofName(Feature feature, std::string& name, const Place& place);
    void ofGain(Feature feature, double& gain, const Place& place);
    void ofEnvelope(Feature feature, std::optional<AAFAutomationEnvelope>& envelope,
                    const Place& place);
    void ofFlag(Feature feature, bool& flag, const Place& place);
    [[nodiscard]] Place placeOf(std::size_t track, const PlannedClip& clip) const;

    const AAFTimeline& timeline_;
    ExportFormat format_;
    std::vector<ExportLoss> losses_;
};

void Reduction::record(Feature feature, const Place& place, Severity severity, Kind kind,
                       std::string sentence, std::string technical) {
    losses_.push_back({feature, severity, place.track, place.event, place.start, place.duration,
                       kind == Kind::leftOut, std::move(sentence), std::move(technical)});
}

/// Whether a value that is there stays in the plan; what other tools do not get of it is on record.
bool Reduction::keeps(Feature feature, const Place& place, const std::string& value,
                      std::string_view fade) {
    const Carriage how = carriage(feature);
    if (how == Carriage::lost || how == Carriage::metadata) {
        record(feature, place, severityOf(feature), Kind::leftOut,
               ofOneFade(sentenceOf(feature, how), fade), technicalText(feature, value, format_));
    }
    return how != Carriage::lost;
}

void Reduction::recordChange(Feature feature, const Place& place, const std::string& from,
                             const std::string& to, std::string_view fade) {
    record(feature, place, severityOf(feature), Kind::changed,
           ofOneFade(changeSentence(feature), fade), technicalChange(feature, from, to, format_));
}

Place Reduction::placeOf(std::size_t track, const PlannedClip& clip) const {
    const AAFClipEvent& event = timeline_.events[clip.event];
    return {track, clip.event, event.timelineStart, event.duration};
}

void Reduction::ofSession(ExportPlan& plan) {
    if (auto loss = ofEdges(plan)) {
        losses_.push_back(std::move(*loss));
    }
    if (plan.sourceStarts.count != 0 &&
        carriage(Feature::sourceStartAtOtherRates) == Carriage::limited) {
        record(Feature::sourceStartAtOtherRates, {}, Severity::informational, Kind::changed,
               sourceRoundingSentence(plan.sourceStarts),
               roundingText(Feature::sourceStartAtOtherRates, plan.sourceStarts, plan.rate));
    }
    for (PlannedMedia& media : plan.media) {
        if (media.reel && !keeps(Feature::reels, {}, printableText(media.reel->name))) {
            media.reel.reset();
        }
    }
    if (plan.name && !keeps(Feature::sessionName, {}, printableText(*plan.name))) {
        plan.name.reset();
    }
    if (plan.name) {
        ofName(Feature::sessionName, *plan.name, {});
    }
    if (carriage(Feature::sourceNames) == Carriage::limited) {
        for (PlannedMedia& media : plan.media) {
            ofName(Feature::sourceNames, media.name, {});
        }
    }
}

void Reduction::ofName(Feature feature, std::string& name, const Place& place) {
    std::string kept = nameWithin(format_, name);
    if (kept != name) {
        recordChange(feature, place, printableText(name), printableText(kept));
        name = std::move(kept);
    }
}

void Reduction::ofGain(Feature feature, double& gain, const Place& place) {
    if (gain == 1) {
        return;
    }
    if (!keeps(feature, place, numberText(gain))) {
        gain = 1;
        return;
    }
    const double kept = gainWithin(format_, gain);
    if (kept != gain) {
        recordChange(feature, place, numberText(gain), numberText(kept));
        gain = kept;
    }
}

void Reduction::ofEnvelope(Feature feature, std::optional<AAFAutomationEnvelope>& envelope,
                           const Place& place) {
    if (!envelope) {
        return;
    }
    if (!keeps(feature, place, pointsText(envelope->points.size()))) {
        envelope.reset();
        return;
    }
    const Interpolation curve = automationCurveWithin(format_, envelope->interpolation);
    if (curve != envelope->interpolation) {
        recordChange(Feature::automationCurves, place, curveName(envelope->interpolation),
                     curveName(curve));
        envelope->interpolation = curve;
    } else if (carriage(Feature::automationCurves) == Carriage::metadata &&
               carriage(feature) != Carriage::metadata) {
        static_cast<void>(keeps(Feature::automationCurves, place, curveName(curve)));
    }
    const bool isPan = feature == Feature::trackPanAutomation;
    std::size_t changed = 0;
    for (AAFAutomationPoint& point : envelope->points) {
        const double kept =
            isPan ? panWithin(format_, point.value) : gainWithin(format_, point.value);
        changed += kept != point.value ? 1 : 0;
        point.value = kept;
    }
    if (changed != 0) {
        recordChange(feature, place, pointsText(changed), "what the format can hold");
    }
}

void Reduction::ofFlag(Feature feature, bool& flag, const Place& place) {
    if (flag && !keeps(feature, place, {})) {
        flag = false;
    }
}

void Reduction::ofTrack(PlannedTrack& track, const ExportPlan& plan) {
    const Place place{.track = track.track};
    ofName(Feature::trackNames, track.name, place);
    ofGain(Feature::trackGain, track.gain, place);
    ofEnvelope(Feature::trackGainAutomation, track.gainAutomation, place);
    if (track.pan) {
        if (!keeps(Feature::trackPan, place, numberText(*track.pan))) {
            track.pan.reset();
        } else if (const double kept = panWithin(format_, *track.pan); kept != *track.pan) {
            recordChange(Feature::trackPan, place, numberText(*track.pan), numberText(kept));
            track.pan = kept;
        }
    }
    ofEnvelope(Feature::trackPanAutomation, track.panAutomation, place);
    if (track.pan && track.panAutomation && carriage(Feature::trackPan) == Carriage::limited) {
        recordChange(Feature::trackPan, place, numberText(*track.pan), "its automation alone");
        track.pan.reset();
    }
    ofFlag(Feature::trackMute, track.muted, place);
    ofFlag(Feature::trackSolo, track.solo, place);
    for (Lane& lane : track.lanes) {
        lane.name = nameWithin(format_, lane.name);
        for (PlannedClip& clip : lane.clips) {
            ofClip(clip, placeOf(track.track, clip), plan.media[clip.media]);
        }
        ofFades(lane, place, plan);
    }
}

void Reduction::ofClip(PlannedClip& clip, const Place& place, const PlannedMedia& media) {
    ofName(Feature::clipNames, clip.name, place);
    ofGain(Feature::clipGain, clip.gain, place);
    ofEnvelope(Feature::clipGainAutomation, clip.gainAutomation, place);
    ofFlag(Feature::clipMute, clip.muted, place);
    if (!clip.channel && media.channelCount > 1 &&
        !keeps(Feature::severalChannels, place,
               numberText(static_cast<double>(media.channelCount)))) {
        clip.channel = 0;
    }
    if (clip.channel && *clip.channel >= mostChannels(format_)) {
        recordChange(Feature::channelOfSeveral, place, std::to_string(*clip.channel + 1), "all");
        clip.channel.reset();
    }
}

/// A crossfade is one thing of two clips: its length is carried where crossfades are.
void Reduction::ofFades(Lane& lane, const Place& track, const ExportPlan& plan) {
    const bool keepsCrossfades = carriage(Feature::crossfades) == Carriage::carried;
    for (std::size_t i = 0; i < lane.clips.size(); ++i) {
        PlannedClip& clip = lane.clips[i];
        const Place place = placeOf(*track.track, clip);
        const bool isLast = i + 1 == lane.clips.size();
        ofFade(clip.fadeIn, place, keepsCrossfades && clip.crossfadesIn, "fade-in");
        ofFade(clip.fadeOut, place, keepsCrossfades && !isLast && lane.clips[i + 1].crossfadesIn,
               "fade-out");
        if (!clip.fadeIn || !clip.fadeOut ||
            clip.fadeIn->length <= clip.length - clip.fadeOut->length) {
            continue;
        }
        const Samples rest = clip.length - clip.fadeIn->length;
        if (!keeps(Feature::overlappingFades, place,
                   samplesText(clip.fadeOut->length, plan.rate))) {
            clip.fadeOut->length = rest;
            if (rest <= 0) {
                clip.fadeOut.reset();
            }
        }
    }
}

void Reduction::ofFade(std::optional<PlannedFade>& fade, const Place& place, bool isCrossfade,
                       std::string_view which) {
    if (!fade) {
        return;
    }
    if (!isCrossfade && !keeps(Feature::fadeLengths, place, std::string(which), which)) {
        fade.reset();
        return;
    }
    const bool isNoted = !isCrossfade && carriage(Feature::fadeLengths) == Carriage::metadata;
    if (!fade->shape.empty() && !isNoted &&
        !keeps(Feature::fadeShapes, place, pointsText(fade->shape.size()), which)) {
        fade->shape.clear();
    }
    ofCurve(*fade, place, isNoted, which);
}

void Reduction::ofCurve(PlannedFade& fade, const Place& place, bool isNoted,
                        std::string_view which) {
    const Interpolation curve = fadeCurveWithin(format_, fade.curve);
    const Carriage how = carriage(Feature::fadeCurves);
    if (how == Carriage::lost || (how == Carriage::metadata && curve != Interpolation::linear())) {
        if (!isNoted && !keeps(Feature::fadeCurves, place, curveName(fade.curve), which)) {
            fade.curve = curve;
        }
    } else if (curve != fade.curve) {
        recordChange(Feature::fadeCurves, place, curveName(fade.curve), curveName(curve), which);
        fade.curve = curve;
    }
}

CarriedPart Reduction::of(PlannedSession planned) {
    CarriedPart part{std::move(planned.plan), {}};
    ofSession(part.plan);
    for (ExportLoss& loss : ofClips(planned.losses, timeline_)) {
        losses_.push_back(std::move(loss));
    }
    for (PlannedTrack& track : part.plan.tracks) {
        ofTrack(track, part.plan);
    }
    const auto order = [](const ExportLoss& loss) {
        // Positions from 1: 0 is what stands above.
        return std::pair(loss.track ? *loss.track + 1 : 0, loss.event ? *loss.event + 1 : 0);
    };
    std::stable_sort(losses_.begin(), losses_.end(),
                     [&](const ExportLoss& left, const ExportLoss& right) {
                         return order(left) < order(right);
                     });
    part.losses = std::move(losses_);
    return part;
}

}  // namespace

std::vector<ExportLoss> lossesOfPlan(const PlannedSession& planned, const AAFTimeline& timeline) {
    std::vector<ExportLoss> losses = ofClips(planned.losses, timeline);
    if (auto loss = ofEdges(planned.plan)) {
        losses.insert(losses.begin(), std::move(*loss));
    }
    return losses;
}

CarriedPart carriedPart(PlannedSession planned, const AAFTimeline& timeline, ExportFormat format) {
    return Reduction(timeline, format).of(std::move(planned));
}

}  // namespace trellant::exchange
