// SPDX-License-Identifier: Apache-2.0
// Sync pops: a tone of a frame or two at an agreed place.
#pragma once

#include <trellant/check/checked_hand_off.h>
#include <trellant/model/rational.h>

namespace trellant::check {

/// Whether a clip plays a tone of 1 kHz that begins within a frame of `time` (timeline seconds) and
/// lasts from half a frame to three frames.
[[nodiscard]] bool hasPopAt(const CheckedHandOff& checked, const AAFRational& time);

}  // namespace trellant::check
