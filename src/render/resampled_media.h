// SPDX-License-Identifier: Apache-2.0
// Media of other rates than the session's, made anew at that one.
#pragma once

#include "media_reader.h"

#include <trellant/exchange/export_plan.h>
#include <trellant/exporter/session_media.h>
#include <trellant/handoff/work_progress.h>

#include <cstddef>
#include <string>
#include <vector>

namespace trellant::render {

struct ResamplingPlaces {
    /// The program that does it.
    std::string waveConverter{};
    /// Where new files come into being: an existing folder.
    std::string folder{};
};

/// Converts `media` (positions in the plan's) on all processors; those that are missing stay so.
/// Clips then begin at the sample of the new file that is nearest to theirs. A file that cannot be
/// converted becomes missing, and the result says why. Throws AAFCancellationError.
[[nodiscard]] std::vector<SessionMediaMaker::Difference> resample(
    exchange::ExportPlan& plan, PlayedFiles& played, const std::vector<std::size_t>& media,
    const ResamplingPlaces& places, WorkProgress& progress);

}  // namespace trellant::render
