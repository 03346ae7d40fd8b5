// SPDX-License-Identifier: Apache-2.0
// The values of one track, essence or event. Each is put alone into a timeline, validation names
// its first problem, the repair for that is made, and so on until nothing is left to say.
#include "repair_parts.h"
#include "validation_limits.h"

#include <algorithm>
#include <cmath>

namespace trellant::repair {

namespace {

constexpr std::int64_t standardSampleRate = 48'000;

using Points = std::vector<AAFAutomationPoint>;

bool isOfPoints(Problem problem) {
    return problem == Problem::nonfiniteAutomation ||
           problem == Problem::automationTimeOutsideOwner ||
           problem == Problem::unorderedAutomation;
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
        recorder.add(Problem::nonfiniteAutomation, Action::leftOut, field, nonfinite);
    }
    if (const auto moved = clampPoints(points); moved != 0) {
        recorder.add(Problem::automationTimeOutsideOwner, Action::clamped, field, moved);
    }
    if (const auto early = orderPoints(points); early != 0) {
        recorder.add(Problem::unorderedAutomation, Action::reordered, field, early);
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

void leaveOutNegativeFade(Boxed<AAFFade>& fade, Problem problem, std::string_view field,
                          const Recorder& recorder) {
    if (fade && fade->duration < AAFRational::zero()) {
        fade.reset();
        recorder.add(problem, Action::leftOut, field);
    }
}

void clampSourceRange(AAFClipEvent& event, Problem problem, const Recorder& recorder) {
    if (event.duration < AAFRational::zero()) {
        event.duration = AAFRational::zero();
        recorder.add(problem, Action::clamped, "duration");
    }
    if (event.sourceStartSample < 0) {
        event.sourceStartSample = 0;
        recorder.add(problem, Action::clamped, "sourceStartSample");
    }
}

/// Repairs `problem`; nothing when only leaving the element out solves it.
void repairProblem(AAFTrackState& track, Problem problem, const Recorder& recorder) {
    if (isOfPoints(problem)) {
        repairEnvelope(track.gainAutomation, "gainAutomation", recorder);
        repairEnvelope(track.panAutomation, "panAutomation", recorder);
    } else if (problem == Problem::nonfiniteTrackValue) {
        if (!std::isfinite(track.fixedGain)) {
            track.fixedGain = 1;
            recorder.add(problem, Action::replaced, "fixedGain");
        }
        if (track.fixedPan && !std::isfinite(*track.fixedPan)) {
            track.fixedPan.reset();
            recorder.add(problem, Action::leftOut, "fixedPan");
        }
    }
}

void repairProblem(AAFSourceEssence& essence, Problem problem, const Recorder& recorder) {
    if (problem == Problem::invalidSampleRate) {
        const bool isTooLarge = essence.sampleRate > AAFRational::zero();
        essence.sampleRate = AAFRational(isTooLarge ? maxSampleRate : standardSampleRate);
        recorder.add(problem, isTooLarge ? Action::clamped : Action::replaced, "sampleRate");
    } else if (problem == Problem::invalidChannelCount) {
        essence.channelCount = std::clamp<std::int64_t>(essence.channelCount, 1, maxChannelCount);
        recorder.add(problem, Action::clamped, "channelCount");
    } else if (problem == Problem::invalidBitDepth) {
        essence.bitDepth.reset();
        recorder.add(problem, Action::leftOut, "bitDepth");
    }
}

void repairProblem(AAFClipEvent& event, Problem problem, const Recorder& recorder) {
    if (isOfPoints(problem)) {
        repairEnvelope(event.clipGainAutomation, "clipGainAutomation", recorder);
        repairFadePoints(event.fadeIn, "fadeIn", recorder);
        repairFadePoints(event.fadeOut, "fadeOut", recorder);
    } else if (problem == Problem::negativeSourceRange) {
        clampSourceRange(event, problem, recorder);
    } else if (problem == Problem::invalidSourceChannel) {
        event.sourceChannel.reset();
        recorder.add(problem, Action::leftOut, "sourceChannel");
    } else if (problem == Problem::nonfiniteClipGain) {
        event.fixedClipGain = 1;
        recorder.add(problem, Action::replaced, "fixedClipGain");
    } else if (problem == Problem::negativeFadeDuration) {
        leaveOutNegativeFade(event.fadeIn, problem, "fadeIn", recorder);
        leaveOutNegativeFade(event.fadeOut, problem, "fadeOut", recorder);
    }
}

/// `element` is the part of `alone`, an otherwise valid timeline, that is to be repaired.
template <class Element>
bool repairAlone(AAFTimeline& alone, Element& element, const Recorder& recorder) {
    std::optional<Problem> last;
    while (const auto problem = problemOf(alone)) {
        if (problem == last) {
            recorder.add(*problem, Action::leftOut, "");
            return false;
        }
        repairProblem(element, *problem, recorder);
        last = problem;
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
