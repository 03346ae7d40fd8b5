// SPDX-License-Identifier: Apache-2.0
// What a rendering has to say of media that are not there, or not at the session's rate.
#pragma once

#include <trellant/exchange/carried_part.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/exporter/session_media.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <string>
#include <vector>

namespace trellant::render {

/// One loss for each clip of a plan whose media are offline, by track, then by place.
[[nodiscard]] std::vector<exchange::ExportLoss> silentClips(
    const AAFTimeline& timeline, const exchange::ExportPlan& plan,
    const std::vector<SessionMediaMaker::Difference>& differences);

/// Positions of the media that are there at another rate than the session's.
[[nodiscard]] std::vector<std::size_t> mediaOfOtherRates(const exchange::ExportPlan& plan);

/// "Anna.wav 44100 Hz, ...": for a person, the first of them.
[[nodiscard]] std::string ratesText(const exchange::ExportPlan& plan,
                                    const std::vector<std::size_t>& media);

/// That these were converted, on record.
[[nodiscard]] std::vector<exchange::ExportLoss> resamplings(const exchange::ExportPlan& plan,
                                                            const std::vector<std::size_t>& media);

}  // namespace trellant::render
