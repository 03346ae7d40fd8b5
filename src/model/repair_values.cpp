// The values of one track, essence or event. Each is put alone into a timeline, validation names
// its first problem, the repair for that code is made, and so on until nothing is left to say.
#include "repair_parts.h"

#include <algorithm>
#include <cmath>

namespace trellant::repair {

namespace {

constexpr std::int64_t standardSampleRate = 48'000;
constexpr std::int64_t largestSampleRate = 384'000;
constexpr std::int64_t largestChannelCount = 4'294'967'295;

constexpr std::string_view nonfinitePoint = "nonfinite-automation";
constexpr std::string_view pointOutside = "automation-time-outside-owner";
constexpr std::string_view pointsUnordered = "unordered-automation";

using Points = std::vector<AAFAutomationPoint>;

bool isPointCode(std::string_view code) {
    return code == nonfinitePoint || code == pointOutside || code == pointsUnordered;
}

std::size_t clampPoints(Points& points) {
    std::size_t moved = 0;
    for (auto& point : points) {
        const auto inside =
            std::clamp(point.timelineOffset, AAFRational::zero(), AAFRational::one());
        if (inside != point.timelineOffset) {
            point.timelineOffset = inside;
            ++moved;
        }
    }
    return moved;
}

/// How many points lie before the one ahead of them.
std::size_t orderPoints(Points& points) {
    std::size_t early = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (points[i].timelineOffset < points[i - 1].timelineOffset) {
            ++early;
        }
    }
    if (early == 0) {
        return 0;
    }
    std::stable_sort(points.begin(), points.end(),
                     [](const AAFAutomationPoint& left, const AAFAutomationPoint& right) {
                         return left.timelineOffset < right.timelineOffset;
                     });
    // Offsets with huge terms are compared by doubles: neighbours may still seem out of order.
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (points[i].timelineOffset < points[i - 1].timelineOffset) {
            points[i].timelineOffset = points[i - 1].timelineOffset;
        }
    }
    return early;
}

void repairPoints(Points& points, const std::string& field, const Recorder& recorder) {
    const auto nonfinite = std::erase_if(
        points, [](const AAFAutomationPoint& point) { return !std::isfinite(point.value); });
    if (nonfinite != 0) {
        recorder.add(nonfinitePoint, Action::leftOut, field, nonfinite);
    }
    if (const auto moved = clampPoints(points); moved != 0) {
        recorder.add(pointOutside, Action::clamped, field, moved);
    }
    if (const auto early = orderPoints(points); early != 0) {
        recorder.add(pointsUnordered, Action::reordered, field, early);
    }
}

[[nodiscard]] AAFAutomationEnvelope& forChange(std::optional<AAFAutomationEnvelope>& envelope) {
    return *envelope;
}
[[nodiscard]] AAFAutomationEnvelope& forChange(Boxed<AAFAutomationEnvelope>& envelope) {
    return envelope.mutableValue();
}

/// `Envelope`: an optional or boxed one.
template <class Envelope>
void repairEnvelope(Envelope& envelope, std::string_view field, const Recorder& recorder) {
    if (!envelope.has_value()) {
        return;
    }
    const auto hadPoints = !envelope->points.empty();
    repairPoints(forChange(envelope).points, std::string(field) + ".points", recorder);
    if (hadPoints && envelope->points.empty()) {
        envelope.reset();
    }
}

void repairFadePoints(Boxed<AAFFade>& fade, std::string_view field, const Recorder& recorder) {
    if (fade) {
        repairPoints(fade.mutableValue().points, std::string(field) + ".points", recorder);
    }
}

void leaveOutNegativeFade(Boxed<AAFFade>& fade, std::string_view code, std::string_view field,
                          const Recorder& recorder) {
    if (fade && fade->duration < AAFRational::zero()) {
        fade.reset();
        recorder.add(code, Action::leftOut, field);
    }
}

void clampSourceRange(AAFClipEvent& event, std::string_view code, const Recorder& recorder) {
    if (event.duration < AAFRational::zero()) {
        event.duration = AAFRational::zero();
        recorder.add(code, Action::clamped, "duration");
    }
    if (event.sourceStartSample < 0) {
        event.sourceStartSample = 0;
        recorder.add(code, Action::clamped, "sourceStartSample");
    }
}

/// Repairs what `code` names; nothing when it names a problem that only leaving out solves.
void repairCode(AAFTrackState& track, std::string_view code, const Recorder& recorder) {
    if (isPointCode(code)) {
        repairEnvelope(track.gainAutomation, "gainAutomation", recorder);
        repairEnvelope(track.panAutomation, "panAutomation", recorder);
    } else if (code == "nonfinite-track-value") {
        if (!std::isfinite(track.fixedGain)) {
            track.fixedGain = 1;
            recorder.add(code, Action::replaced, "fixedGain");
        }
        if (track.fixedPan && !std::isfinite(*track.fixedPan)) {
            track.fixedPan.reset();
            recorder.add(code, Action::leftOut, "fixedPan");
        }
    }
}

void repairCode(AAFSourceEssence& essence, std::string_view code, const Recorder& recorder) {
    if (code == "invalid-sample-rate") {
        const bool isTooLarge = essence.sampleRate > AAFRational::zero();
        essence.sampleRate = AAFRational(isTooLarge ? largestSampleRate : standardSampleRate);
        recorder.add(code, isTooLarge ? Action::clamped : Action::replaced, "sampleRate");
    } else if (code == "invalid-channel-count") {
        essence.channelCount =
            std::clamp<std::int64_t>(essence.channelCount, 1, largestChannelCount);
        recorder.add(code, Action::clamped, "channelCount");
    } else if (code == "invalid-bit-depth") {
        essence.bitDepth.reset();
        recorder.add(code, Action::leftOut, "bitDepth");
    }
}

void repairCode(AAFClipEvent& event, std::string_view code, const Recorder& recorder) {
    if (isPointCode(code)) {
        repairEnvelope(event.clipGainAutomation, "clipGainAutomation", recorder);
        repairFadePoints(event.fadeIn, "fadeIn", recorder);
        repairFadePoints(event.fadeOut, "fadeOut", recorder);
    } else if (code == "negative-source-range") {
        clampSourceRange(event, code, recorder);
    } else if (code == "invalid-source-channel") {
        event.sourceChannel.reset();
        recorder.add(code, Action::leftOut, "sourceChannel");
    } else if (code == "nonfinite-clip-gain") {
        event.fixedClipGain = 1;
        recorder.add(code, Action::replaced, "fixedClipGain");
    } else if (code == "negative-fade-duration") {
        leaveOutNegativeFade(event.fadeIn, code, "fadeIn", recorder);
        leaveOutNegativeFade(event.fadeOut, code, "fadeOut", recorder);
    }
}

/// `element` is the part of `alone`, an otherwise valid timeline, that is to be repaired.
template <class Element>
bool repairAlone(AAFTimeline& alone, Element& element, const Recorder& recorder) {
    std::string last;
    while (auto code = problemOf(alone)) {
        if (*code == last) {
            recorder.add(*code, Action::leftOut, "");
            return false;
        }
        repairCode(element, *code, recorder);
        last = std::move(*code);
    }
    return true;
}

/// Puts `element` into `list`, of `alone`, repairs it there and takes it back.
template <class Element>
bool repairWithin(AAFTimeline& alone, std::vector<Element>& list, Element& element,
                  const Recorder& recorder) {
    list.push_back(std::move(element));
    const bool stays = repairAlone(alone, list.back(), recorder);
    element = std::move(list.back());
    return stays;
}

}  // namespace

bool repairTrack(AAFTrackState& track, const Recorder& recorder) {
    AAFTimeline alone;
    return repairWithin(alone, alone.tracks, track, recorder);
}

bool repairEssence(AAFSourceEssence& essence, const Recorder& recorder) {
    AAFTimeline alone;
    return repairWithin(alone, alone.essences, essence, recorder);
}

bool repairEvent(AAFClipEvent& event, const AAFSourceEssence& essence, const Recorder& recorder) {
    AAFTimeline alone;
    alone.tracks.push_back({.id = event.trackID});
    alone.essences.push_back({.id = event.essenceID,
                              .sampleRate = essence.sampleRate,
                              .channelCount = essence.channelCount});
    return repairWithin(alone, alone.events, event, recorder);
}

}  // namespace trellant::repair
