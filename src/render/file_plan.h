// SPDX-License-Identifier: Apache-2.0
// Which files a rendering consists of, what they are called and what part of the session each has.
#pragma once

#include "media_reader.h"

#include <trellant/exchange/export_plan.h>
#include <trellant/render/render.h>

#include <cstdint>
#include <vector>

namespace trellant::render {

/// Samples of a session, the end exclusive.
struct SessionPart {
    exchange::Samples first = 0;
    exchange::Samples end = 0;
    bool operator==(const SessionPart&) const = default;
};

/// The part that the request's labels name. Throws RenderRefusal for labels that make no sense in
/// this session.
[[nodiscard]] SessionPart sessionPart(const RenderRequest& request,
                                      const exchange::ExportPlan& plan);

/// Samples from midnight to the session's first one.
[[nodiscard]] std::int64_t samplesFromMidnight(const exchange::ExportPlan& plan);

/// `played`: by position in the plan's media. Tracks without clips have no file, and clips without
/// media none of their own. Throws RenderRefusal beyond mostHours and mostFiles.
[[nodiscard]] std::vector<RenderedFile> plannedFiles(const RenderRequest& request,
                                                     const exchange::ExportPlan& plan,
                                                     const PlayedFiles& played,
                                                     const SessionPart& part);

}  // namespace trellant::render
