// SPDX-License-Identifier: Apache-2.0
// What files of markers mark: the label of the start, every clip, and every remark.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/sessions/session.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::sessions {

struct Mark {
    exchange::Samples start = 0;
    /// 0 for a place without extent.
    exchange::Samples length = 0;
    /// Of one line, after markerName: "Dialog: Anna take 1".
    std::string text{};
    /// Of a remark.
    std::optional<MarkerKind> kind{};
};

/// By ascending start: the label of the start first, then of those at one place remarks first.
[[nodiscard]] std::vector<Mark> marksOf(const Session& session);

}  // namespace trellant::sessions
