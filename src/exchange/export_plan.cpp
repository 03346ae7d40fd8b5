// SPDX-License-Identifier: Apache-2.0
#include "clip_cut.h"
#include "lanes.h"
#include "planned_media.h"
#include "sample_clock.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/handoff/frame_clock.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace trellant::exchange {

namespace {

constexpr std::int64_t usualRate = 48'000;
constexpr std::int64_t highestRate = 384'000;

/// The positions in a list by the ids of what it holds.
template <class Record>
KeyedMap<std::string_view, std::size_t> positionsByID(const std::vector<Record>& records) {
    KeyedMap<std::string_view, std::size_t> positions;
    positions.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        positions.emplace(records[i].id, i);
    }
    return positions;
}

std::int64_t wholeRate(const AAFRational& rate) {
    return std::clamp<std::int64_t>(rate.roundedInt64(), 1, highestRate);
}

Rounding together(const Rounding& left, const Rounding& right) {
    return {left.count + right.count, std::max(left.largestError, right.largestError)};
}

class Planner {
  public:
    Planner(const AAFTimeline& timeline, const PlanRequest& request)
        : timeline_(timeline),
          request_(request),
          essences_(positionsByID(timeline.essences)),
          tracks_(positionsByID(timeline.tracks)),
          rate_(request.rate ? *request.rate : commonestRate()),
          clock_(AAFRational(rate_)),
          media_(timeline, request) {}

    [[nodiscard]] PlannedSession session() {
        PlannedSession session;
        ExportPlan& plan = session.plan;
        plan.name = timeline_.compositionName;
        plan.rate = rate_;
        plan.start = frameClock(timeline_.clock).timelineZero;
        planClips();
        planTracks(plan);
        plan.length = std::max(end_, compositionLength());
        plan.media = std::move(media_).take();
        plan.edges = edges_;
        plan.sourceStarts = sourceStarts_;
        session.losses = std::move(losses_);
        return session;
    }

  private:
    [[nodiscard]] std::int64_t commonestRate() const;
    [[nodiscard]] Samples compositionLength() const;
    void planClips();
    void planTracks(ExportPlan& plan);
    void place(std::size_t position, const AAFClipEvent& event);
    [[nodiscard]] std::string nameOf(const PlannedClip& clip, const AAFClipEvent& event) const;
    [[nodiscard]] bool setTimes(PlannedClip& clip, const AAFClipEvent& event);
    void setSource(PlannedClip& clip, const AAFClipEvent& event);
    void setFades(PlannedClip& clip, const AAFClipEvent& event);
    [[nodiscard]] std::optional<PlannedFade> fade(const PlannedClip& clip, const AAFFade& fade,
                                                  Samples length);
    void lose(PlanLoss::Kind kind, std::size_t event) { losses_.push_back({kind, event}); }

    const AAFTimeline& timeline_;
    const PlanRequest& request_;
    KeyedMap<std::string_view, std::size_t> essences_;
    KeyedMap<std::string_view, std::size_t> tracks_;
    std::int64_t rate_;
    SampleClock clock_;
    MediaList media_;
    /// By the track's position.
    std::vector<std::vector<PlannedClip>> clips_;
    Samples end_ = 0;
    Rounding edges_;
    Rounding sourceStarts_;
    std::vector<PlanLoss> losses_;
};

std::int64_t Planner::commonestRate() const {
    std::vector<bool> isPlayed(timeline_.essences.size());
    for (const AAFClipEvent& event : timeline_.events) {
        isPlayed[essences_.at(event.essenceID)] = true;
    }
    std::map<std::int64_t, std::size_t> sources;
    for (std::size_t i = 0; i < isPlayed.size(); ++i) {
        if (isPlayed[i]) {
            ++sources[wholeRate(timeline_.essences[i].sampleRate)];
        }
    }
    std::int64_t commonest = usualRate;
    std::size_t most = 1;
    for (const auto& [rate, count] : sources) {
        if (count >= most) {
            commonest = rate;
            most = count;
        }
    }
    return commonest;
}

Samples Planner::compositionLength() const {
    Rounding ignored;
    return timeline_.compositionLength
               ? clock_.nearest(*timeline_.compositionLength, ignored).value_or(0)
               : 0;
}

void Planner::planClips() {
    clips_.resize(timeline_.tracks.size());
    for (std::size_t i = 0; i < timeline_.events.size(); ++i) {
        const AAFClipEvent& event = timeline_.events[i];
        if (event.timelineStart >= AAFRational::zero()) {
            place(i, event);
        } else if (event.timelineEnd() <= AAFRational::zero()) {
            losses_.push_back({PlanLoss::Kind::beforeTheStart, i});
        } else {
            losses_.push_back({PlanLoss::Kind::headBeforeTheStart, i});
            const std::size_t essence = essences_.at(event.essenceID);
            place(i, fromTheStart(event, timeline_.essences[essence].sampleRate));
        }
    }
}

void Planner::planTracks(ExportPlan& plan) {
    for (std::size_t i = 0; i < timeline_.tracks.size(); ++i) {
        const AAFTrackState& state = timeline_.tracks[i];
        PlannedTrack track;
        track.track = i;
        track.name = state.name.value_or("Track " + std::to_string(state.index + 1));
        track.gain = state.fixedGain;
        track.gainAutomation = state.gainAutomation;
        track.pan = state.fixedPan;
        track.panAutomation = state.panAutomation;
        track.muted = state.muted;
        track.solo = state.solo;
        std::vector<PlannedClip>& clips = clips_[i];
        std::stable_sort(clips.begin(), clips.end(),
                         [](const PlannedClip& left, const PlannedClip& right) {
                             return left.start < right.start;
                         });
        if (request_.keepsOverlaps) {
            for (std::size_t k = 1; k < clips.size(); ++k) {
                clips[k].crossfadesIn = isCrossfade(clips[k - 1], clips[k]);
            }
            track.lanes.push_back({track.name, std::move(clips)});
        } else {
            track.lanes = lanesOf(std::move(clips), track.name);
        }
        plan.tracks.push_back(std::move(track));
    }
}

void Planner::place(std::size_t position, const AAFClipEvent& event) {
    PlannedClip clip;
    clip.event = position;
    if (!setTimes(clip, event)) {
        return;
    }
    setSource(clip, event);
    setFades(clip, event);
    clip.gain = event.fixedClipGain;
    if (event.clipGainAutomation) {
        clip.gainAutomation = *event.clipGainAutomation;
    }
    clip.muted = event.clipMuted;
    clip.name = nameOf(clip, event);
    clips_[tracks_.at(event.trackID)].push_back(std::move(clip));
}

std::string Planner::nameOf(const PlannedClip& clip, const AAFClipEvent& event) const {
    const auto given = request_.clipNames.find(clip.event);
    const bool hasOwn = event.clipName && !event.clipName->empty();
    return !hasOwn && given != request_.clipNames.end()
               ? given->second
               : event.clipName.value_or(media_.all()[clip.media].name);
}

/// False for a clip that no session can hold, which is on record then.
bool Planner::setTimes(PlannedClip& clip, const AAFClipEvent& event) {
    Rounding rounding;
    const auto start = clock_.nearest(event.timelineStart, rounding);
    const auto end = clock_.nearest(event.timelineEnd(), rounding);
    const AAFRational& mediaRate = timeline_.essences[essences_.at(event.essenceID)].sampleRate;
    const AAFRational sourceSeconds = AAFRational(event.sourceStartSample) / mediaRate;
    Rounding ofSource;
    const auto sourceStart = clock_.nearest(sourceSeconds, ofSource);
    if (!start || !end || !sourceStart || event.sourceStartSample > mostSamples) {
        lose(PlanLoss::Kind::beyondTheRange, clip.event);
        return false;
    }
    if (*start >= *end) {
        lose(PlanLoss::Kind::shorterThanASample, clip.event);
        return false;
    }
    edges_ = together(edges_, rounding);
    sourceStarts_ = together(sourceStarts_, ofSource);
    clip.start = *start;
    clip.length = *end - *start;
    clip.exactStart = event.timelineStart;
    clip.exactLength = event.duration;
    clip.sourceStart = event.sourceStartSample;
    clip.sourceStartAtSessionRate = *sourceStart;
    end_ = std::max(end_, *end);
    return true;
}

void Planner::setSource(PlannedClip& clip, const AAFClipEvent& event) {
    const std::size_t essence = essences_.at(event.essenceID);
    const std::int64_t sourceEnd =
        AAFRawTimelineValidation::requiredSourceEnd(event, timeline_.essences[essence].sampleRate);
    const MediaList::Played played = media_.played(essence, event.sourceChannel, sourceEnd);
    clip.media = played.media;
    clip.channel = played.channel;
}

void Planner::setFades(PlannedClip& clip, const AAFClipEvent& event) {
    if (event.fadeIn) {
        const auto end = clock_.nearest(event.timelineStart + event.fadeIn->duration, edges_);
        clip.fadeIn = fade(clip, *event.fadeIn, end.value_or(mostSamples) - clip.start);
    }
    if (event.fadeOut) {
        const auto start = clock_.nearest(event.timelineEnd() - event.fadeOut->duration, edges_);
        clip.fadeOut = fade(clip, *event.fadeOut, clip.end() - start.value_or(-mostSamples));
    }
}

/// A fade's own shape from its start on: points may be counted from its end.
std::vector<AAFAutomationPoint> shapeOf(const AAFFade& fade) {
    std::vector<AAFAutomationPoint> shape = fade.points;
    if (fade.reversesPointTime.value_or(false)) {
        std::reverse(shape.begin(), shape.end());
        for (AAFAutomationPoint& point : shape) {
            point.timelineOffset = AAFRational::one() - point.timelineOffset;
        }
    }
    return shape;
}

std::optional<PlannedFade> Planner::fade(const PlannedClip& clip, const AAFFade& fade,
                                         Samples length) {
    const bool isTooLong = length > clip.length;
    if (isTooLong) {
        lose(PlanLoss::Kind::fadeLongerThanClip, clip.event);
        length = clip.length;
    }
    if (length <= 0) {
        return std::nullopt;
    }
    return PlannedFade{.length = length,
                       .curve = fade.curve,
                       .shape = shapeOf(fade),
                       .exactLength = isTooLong ? std::nullopt : std::optional(fade.duration)};
}

}  // namespace

PlannedSession planSession(const AAFTimeline& timeline, const PlanRequest& request) {
    if (request.rate && (*request.rate < 1 || *request.rate > highestRate)) {
        throw std::invalid_argument("a session's rate is 1 to 384000 samples in a second");
    }
    return Planner(timeline, request).session();
}

}  // namespace trellant::exchange
