// SPDX-License-Identifier: Apache-2.0
// A lane as a Sequence. A transition beside a filler is a fade, between two clips a crossfade; it
// overlaps both of its neighbours, so fillers are longer by what fades take of them:
//
//   gap g, fade-in m, clip    Filler(g + m)  Transition(m, cut 0)  SourceClip
//   clip, fade-out n, gap g   SourceClip  Transition(n, cut n)  Filler(n + g)
//   crossfade of n            SourceClip  Transition(n, cut n/2)  SourceClip
//
// Between fades of two clips stands a filler even where there is no gap.
#pragma once

#include <trellant/aaf/components.h>
#include <trellant/exchange/export_plan.h>

#include <span>

namespace trellant::sessions {

/// `masterMobs` are those of the clips, in the same order; all of them play slot 1. The sequence is
/// as long as the session, or as its clips where they are longer. Whatever contradicts itself in
/// the lane is cut to what can be: fades to their clips, clips to what the ones before them leave.
[[nodiscard]] aaf::Sequence sequenceOfLane(const exchange::Lane& lane,
                                           std::span<const aaf::MobID> masterMobs,
                                           exchange::Samples sessionLength);

}  // namespace trellant::sessions
