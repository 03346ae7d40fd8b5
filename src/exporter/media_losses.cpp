// SPDX-License-Identifier: Apache-2.0
#include "media_losses.h"

namespace trellant {

namespace {

using exchange::ExportLoss;
using exchange::Feature;
using exchange::PlannedClip;
using Difference = SessionMediaMaker::Difference;
using Severity = AAFUnsupportedFeature::Severity;

ExportLoss lossOf(const AAFTimeline& timeline, std::size_t track, const PlannedClip& clip,
                  const Difference& difference) {
    const AAFClipEvent& event = timeline.events.at(clip.event);
    ExportLoss loss{
        .feature = Feature::offlineMedia,
        .severity = difference.isOffline ? Severity::renderAffecting : Severity::informational,
        .track = track,
        .event = clip.event,
        .start = event.timelineStart,
        .duration = event.duration,
        .isLeftOut = difference.isOffline};
    loss.sentence = difference.isOffline
                        ? "The clip's audio could not be made into a WAVE file: it is offline."
                        : "The clip's audio stays in a form that not every tool reads.";
    loss.technical = difference.reason;
    return loss;
}

}  // namespace

std::vector<ExportLoss> mediaLosses(const AAFTimeline& timeline, const exchange::ExportPlan& plan,
                                    const std::vector<Difference>& differences) {
    std::vector<ExportLoss> losses;
    if (differences.empty()) {
        return losses;
    }
    std::vector<const Difference*> ofMedia(plan.media.size());
    for (const Difference& difference : differences) {
        ofMedia.at(difference.media) = &difference;
    }
    for (const exchange::PlannedTrack& track : plan.tracks) {
        for (const exchange::Lane& lane : track.lanes) {
            for (const PlannedClip& clip : lane.clips) {
                if (const Difference* const difference = ofMedia.at(clip.media)) {
                    losses.push_back(lossOf(timeline, track.track, clip, *difference));
                }
            }
        }
    }
    return losses;
}

}  // namespace trellant
