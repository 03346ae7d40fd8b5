// SPDX-License-Identifier: Apache-2.0
// What the rules are, for people and programs.
#pragma once

#include <trellant/check/profile.h>
#include <trellant/check/rule.h>

#include <cstddef>
#include <string>

namespace trellant::cli {

/// Each rule on a line, with its weight in `profile`.
[[nodiscard]] std::string ruleList(const check::Profile& profile, std::size_t columns, bool colour);
/// One JSON object a rule.
[[nodiscard]] std::string ruleLines(const check::Profile& profile);
/// What, why, where the default comes from, how to put it right, and its values in `profile`.
[[nodiscard]] std::string rulePage(const check::Rule& rule, const check::Profile& profile,
                                   std::size_t columns, bool colour);

}  // namespace trellant::cli
