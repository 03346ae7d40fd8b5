// SPDX-License-Identifier: Apache-2.0
// The clock by which timecodes are shown.
#pragma once

#include <trellant/model/timecode.h>

namespace [[gnu::visibility("default")]] trellant {

/// `clock` as workstations read it. A composition of 30000/1001 edit units in a second whose labels
/// count 30 frames, or 24000/1001 with 24, has a frame for each edit unit: the file rounds the rate
/// of its labels, and an hour of frames ends at the full hour of labels. The worker's clock takes
/// the rounded rate for the true one; this one has the edit rate for both. Any other clock stays as
/// it is. The clock need not be valid.
[[nodiscard]] AAFProgramClock frameClock(const AAFProgramClock& clock);

}  // namespace trellant
