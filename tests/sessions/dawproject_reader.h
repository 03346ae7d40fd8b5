// SPDX-License-Identifier: Apache-2.0
// A reader of DAWprojects for tests.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/exchange/export_plan.h>

#include <string>

namespace trellant::testing {

/// What project.xml says of tracks, clips and media at a session of `rate` samples in a second.
/// Gains and their automation come out multiplied, points at sixtieths of what they belong to.
/// Throws std::runtime_error for what is no XML.
[[nodiscard]] exchange::ExportPlan planOfDawProject(const std::string& projectXml,
                                                    std::int64_t rate);

/// The plan as a project says it: gains and their automation multiplied, fades without curves,
/// crossfades by their overlaps alone, a pan for every track, no bit depths, no label of the start.
[[nodiscard]] exchange::ExportPlan asDawProjectSays(const exchange::ExportPlan& plan);

}  // namespace trellant::testing
