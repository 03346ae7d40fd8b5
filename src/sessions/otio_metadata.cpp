// SPDX-License-Identifier: Apache-2.0
#include "otio_metadata.h"

#include <utility>

namespace trellant::sessions {

namespace {

std::optional<AAFFade> fadeOf(const std::optional<exchange::PlannedFade>& fade,
                              AAFFade::Direction direction, std::int64_t rate) {
    if (!fade) {
        return std::nullopt;
    }
    return AAFFade{.direction = direction,
                   .duration = fade->exactLength.value_or(AAFRational(fade->length, rate)),
                   .curve = fade->curve,
                   .points = fade->shape};
}

}  // namespace

OtioSessionMetadata otioMetadata(const exchange::ExportPlan& plan) {
    return {.sampleRate = plan.rate,
            .length = AAFRational(plan.length, plan.rate),
            .start = plan.start};
}

OtioTrackMetadata otioMetadata(const exchange::PlannedTrack& track, std::size_t lane) {
    return {.name = track.name,
            .lane = static_cast<std::int64_t>(lane),
            .fixedGain = track.gain,
            .gainAutomation = track.gainAutomation,
            .fixedPan = track.pan,
            .panAutomation = track.panAutomation,
            .muted = track.muted,
            .solo = track.solo};
}

OtioClipMetadata otioMetadata(const exchange::PlannedClip& clip, std::int64_t rate) {
    return {.timelineStart = clip.exactStart.value_or(AAFRational(clip.start, rate)),
            .duration = clip.exactLength.value_or(AAFRational(clip.length, rate)),
            .sourceStartSample = clip.sourceStart,
            .sourceChannel = clip.channel,
            .fixedClipGain = clip.gain,
            .clipGainAutomation = clip.gainAutomation,
            .clipMuted = clip.muted,
            .fadeIn = fadeOf(clip.fadeIn, AAFFade::Direction::fadeIn, rate),
            .fadeOut = fadeOf(clip.fadeOut, AAFFade::Direction::fadeOut, rate)};
}

OtioMediaMetadata otioMetadata(const exchange::PlannedMedia& media) {
    std::optional<OtioReelMetadata> reel;
    if (media.reel) {
        reel = OtioReelMetadata{.name = media.reel->name, .start = media.reel->start};
    }
    if (reel && media.reel->timecode) {
        reel->timecodeStart = media.reel->timecode->start;
        reel->timecodeFramesPerSecond = media.reel->timecode->framesPerSecond;
        reel->timecodeDropFrame = media.reel->timecode->dropFrame;
    }
    return {.sampleRate = media.sampleRate,
            .channelCount = media.channelCount,
            .bitDepth = media.bitDepth,
            .sourceChannel = media.channel,
            .originalPath = media.recordedPath,
            .reel = std::move(reel)};
}

}  // namespace trellant::sessions
