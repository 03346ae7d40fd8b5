// SPDX-License-Identifier: Apache-2.0
// Small timelines, made by hand.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/model/timeline.h>

#include <cstdint>
#include <string>

namespace trellant::exchange {

/// 25 fps from 01:00:00:00, no tracks.
[[nodiscard]] AAFTimeline emptyTimeline();
/// Gives the track of that name; its id is its name.
AAFTrackState& addTrack(AAFTimeline& timeline, const std::string& name);
/// Mono, 24 bit; its id is its name.
AAFSourceEssence& addSource(AAFTimeline& timeline, const std::string& name,
                            const AAFRational& rate = AAFRational(48'000),
                            std::int64_t channels = 1);
/// Plays the essence from its first sample on.
AAFClipEvent& addClip(AAFTimeline& timeline, const std::string& track, const std::string& essence,
                      const AAFRational& start, const AAFRational& duration);
[[nodiscard]] AAFFade fadeOf(
    AAFFade::Direction direction, const AAFRational& duration,
    AAFAutomationInterpolation curve = AAFAutomationInterpolation::linear());

/// Facts of files that hold `frames` samples for each source as its record describes it.
[[nodiscard]] PlanRequest withFiles(const AAFTimeline& timeline, std::int64_t frames = 480'000);

}  // namespace trellant::exchange
