// SPDX-License-Identifier: Apache-2.0
#include "silent_clips.h"

#include <trellant/base/printable_text.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <map>

namespace trellant::render {

namespace {

using exchange::ExportLoss;
using exchange::ExportPlan;
using exchange::Feature;
using exchange::PlannedMedia;

constexpr std::size_t mostListed = 8;

std::string rateText(const PlannedMedia& media) {
    return fractionText(media.sampleRate) + " Hz";
}

}  // namespace

std::vector<ExportLoss> silentClips(const AAFTimeline& timeline, const ExportPlan& plan,
                                    const std::vector<SessionMediaMaker::Difference>& differences) {
    std::map<std::size_t, std::string> reasons;
    for (const SessionMediaMaker::Difference& difference : differences) {
        reasons.emplace(difference.media, difference.reason);
    }
    std::vector<ExportLoss> losses;
    for (const exchange::PlannedTrack& track : plan.tracks) {
        for (const exchange::PlannedClip& clip : track.lanes.front().clips) {
            const PlannedMedia& media = plan.media[clip.media];
            if (!media.isOffline) {
                continue;
            }
            const AAFClipEvent& event = timeline.events[clip.event];
            const auto reason = reasons.find(clip.media);
            losses.push_back(
                {.feature = Feature::offlineMedia,
                 .severity = AAFUnsupportedFeature::Severity::renderAffecting,
                 .track = track.track,
                 .event = clip.event,
                 .start = event.timelineStart,
                 .duration = event.duration,
                 .sentence = "Its audio is missing, so there is silence.",
                 .technical = "audio file " + printableText(media.name) + ": " +
                              (reason == reasons.end() ? "not there" : reason->second)});
        }
    }
    return losses;
}

std::vector<std::size_t> mediaOfOtherRates(const ExportPlan& plan) {
    std::vector<std::size_t> media;
    for (std::size_t i = 0; i < plan.media.size(); ++i) {
        if (!plan.media[i].isOffline && plan.media[i].sampleRate != AAFRational(plan.rate)) {
            media.push_back(i);
        }
    }
    return media;
}

std::string ratesText(const ExportPlan& plan, const std::vector<std::size_t>& media) {
    std::string text;
    for (std::size_t i = 0; i < std::min(media.size(), mostListed); ++i) {
        const PlannedMedia& one = plan.media[media[i]];
        text += (i == 0 ? "" : ", ") + printableText(one.name) + " (" + rateText(one) + ")";
    }
    if (media.size() > mostListed) {
        text += " and " + std::to_string(media.size() - mostListed) + " more";
    }
    return text;
}

std::vector<ExportLoss> resamplings(const ExportPlan& plan, const std::vector<std::size_t>& media) {
    std::vector<ExportLoss> losses;
    for (const std::size_t number : media) {
        const PlannedMedia& one = plan.media[number];
        losses.push_back({.feature = Feature::sourceStartAtOtherRates,
                          .isLeftOut = false,
                          .sentence = "An audio file of another sample rate was converted.",
                          .technical = "audio file " + printableText(one.name) + ": " +
                                       rateText(one) + " to " + std::to_string(plan.rate) +
                                       " Hz by libsoxr, very high quality"});
    }
    return losses;
}

}  // namespace trellant::render
