// SPDX-License-Identifier: Apache-2.0
// The part of a clip from the start of the timeline on.
#pragma once

#include <trellant/model/timeline.h>

namespace trellant::exchange {

/// `event` begins before 0 and ends after it; `sampleRate` is that of its source. What remains
/// plays the same sound at the same place, with what is left of its fade-in, and its automation
/// with a point where it was cut.
[[nodiscard]] AAFClipEvent fromTheStart(const AAFClipEvent& event, const AAFRational& sampleRate);

}  // namespace trellant::exchange
