// SPDX-License-Identifier: Apache-2.0
// Words of a REAPER project: a line is a word and its fields, blanks between them.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/model/timecode.h>

#include <optional>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// `text` as one field, between the first of ", ' and ` that it does not hold, with what a project
/// holds of it.
[[nodiscard]] std::string reaperField(std::string_view text);

/// The shape of a fade that comes nearest.
[[nodiscard]] std::string_view reaperFadeShape(const AAFAutomationInterpolation& curve) noexcept;

/// The fields of TIMEMODE for hours, minutes, seconds and frames at this rate; absent for a rate
/// that is not among those of a project.
[[nodiscard]] std::optional<std::string> reaperTimeMode(const AAFTimecodeRate& rate);

}  // namespace trellant::sessions
