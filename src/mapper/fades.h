// SPDX-License-Identifier: Apache-2.0
// Fades: those that a Source Clip states, and the two that a plain linear dissolve becomes.
#pragma once

#include "bounded_reads.h"
#include "mapping_notes.h"

#include <trellant/base/boxed.h>
#include <trellant/model/timeline.h>

namespace trellant {

/// The clip's own fade; none when it states none. `rate`: edit units per second; `placed`: where
/// the clip lies on the timeline. A curve that is not known is kept by name and recorded.
[[nodiscard]] Boxed<AAFFade> clipFade(const BoundedReads& reads, MappingNotes& notes,
                                      OMFObject clip, AAFFade::Direction direction,
                                      const AAFRational& rate, const LossRange& placed);

/// One side of a plain linear dissolve, `duration` in seconds.
[[nodiscard]] AAFFade dissolveFade(AAFFade::Direction direction, const AAFRational& duration);

}  // namespace trellant
