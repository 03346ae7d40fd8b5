// SPDX-License-Identifier: Apache-2.0
// Which composition is read, and what clock it runs by.
#pragma once

#include "bounded_reads.h"

#include <trellant/model/timecode.h>
#include <trellant/omf/document.h>

#include <optional>
#include <vector>

namespace trellant {

/// The first Composition Mob of the header's primary mobs, else of its mobs, else of all objects.
/// Throws OMFIOError malformed when the file holds none.
[[nodiscard]] OMFObject chooseComposition(const OMFDocument& document);

struct CompositionClock {
    /// 25 frames per second from 00:00:00:00 unless a timecode slot says otherwise.
    AAFProgramClock clock{};
    /// The label that the timecode slot starts with; absent when none gave the clock.
    std::optional<AAFTimecodeAddress> explicitProgramStart{};
};

/// The clock of the first slot that holds a timecode segment; `segments` by slot.
[[nodiscard]] CompositionClock clockOf(const BoundedReads& reads,
                                       const std::vector<OMFObject>& slots,
                                       const std::vector<OMFObject>& segments);

}  // namespace trellant
