// SPDX-License-Identifier: Apache-2.0
// Sessions to write, described by what matters to a test.
#pragma once

#include <trellant/sessions/session.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace trellant::sessions {

/// Ten minutes of mono at 48,000 samples in a second and 24 bits.
inline exchange::PlannedMedia medium(const std::string& name, std::size_t essence = 0) {
    return {.essence = essence,
            .name = name,
            .fileName = name + ".wav",
            .sampleRate = AAFRational(48'000),
            .bitDepth = 24,
            .frames = 28'800'000};
}

inline exchange::PlannedFade fade(
    exchange::Samples length,
    AAFAutomationInterpolation curve = AAFAutomationInterpolation::linear()) {
    return {.length = length, .curve = std::move(curve)};
}

/// Plays the first medium from its sample `source` on.
inline exchange::PlannedClip clip(exchange::Samples start, exchange::Samples length,
                                  std::int64_t source = 0) {
    return {.name = "Clip",
            .start = start,
            .length = length,
            .sourceStart = source,
            .sourceStartAtSessionRate = source};
}

inline exchange::PlannedTrack track(const std::string& name,
                                    std::vector<exchange::PlannedClip> clips) {
    return {.name = name, .lanes = {{.name = name, .clips = std::move(clips)}}};
}

/// As a reader counts what the file does not number: tracks and clips from the first on. Up to the
/// end of the last clip, and of one medium unless more are given.
inline exchange::ExportPlan planOf(std::vector<exchange::PlannedTrack> tracks,
                                   std::vector<exchange::PlannedMedia> media = {medium("Anna")}) {
    exchange::ExportPlan plan{.name = "Scene 12", .media = std::move(media)};
    std::size_t event = 0;
    for (exchange::PlannedTrack& one : tracks) {
        one.track = plan.tracks.size();
        for (exchange::Lane& lane : one.lanes) {
            for (exchange::PlannedClip& played : lane.clips) {
                played.event = event++;
                plan.length = std::max(plan.length, played.end());
            }
        }
        plan.tracks.push_back(std::move(one));
    }
    return plan;
}

/// With media that lie in "/session/Song.media", made on 2026-07-01 12:00:00 UTC.
inline Session sessionOf(exchange::ExportPlan plan) {
    Session session{.plan = std::move(plan), .name = "Song", .date = 1'782'907'200};
    for (const exchange::PlannedMedia& media : session.plan.media) {
        SessionMedia place;
        if (!media.isOffline) {
            place.path = "/session/Song.media/" + media.fileName;
            place.reference = "Song.media/" + media.fileName;
            const auto bytes = static_cast<std::uint64_t>(media.frames * media.channelCount *
                                                          media.bitDepth.value_or(16) / 8);
            place.wave = WaveFile{.path = place.path,
                                  .byteCount = bytes + 44,
                                  .dataOffset = 44,
                                  .dataByteCount = bytes};
        }
        session.media.push_back(std::move(place));
    }
    return session;
}

}  // namespace trellant::sessions
