// SPDX-License-Identifier: Apache-2.0
// What holds for every timeline that can be written as JSON.
#pragma once

#include <trellant/model/timeline.h>

#include <string>

namespace trellant::fuzzing {

/// What validation says of it; empty when it passes.
[[nodiscard]] std::string problemOf(const AAFTimeline& timeline);

/// Written and read back it is the same timeline, and the checks of the decoder say what
/// validation says of it directly. Gives the text that was written.
std::string requireRoundTrip(const AAFTimeline& timeline);

/// It can be repaired; and when nothing is wrong with it, hosts can ask it everything.
void requireUsable(const AAFTimeline& timeline);

}  // namespace trellant::fuzzing
