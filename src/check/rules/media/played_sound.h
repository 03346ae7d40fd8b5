// SPDX-License-Identifier: Apache-2.0
// What is heard of a clip: the ranges of its source's lists that it plays.
#pragma once

#include <trellant/check/checked_hand_off.h>
#include <trellant/check/sound_facts.h>

#include <span>
#include <vector>

namespace trellant::check {

/// The channels that the clip plays: its own, or all where it names none that was heard. Empty
/// where nothing was heard of its source.
[[nodiscard]] std::vector<const HeardChannel*> playedChannels(const CheckedHandOff& checked,
                                                              const CheckedClip& clip);

/// Those of `ranges` (ascending, not overlapping) that share a sample with [first, end).
[[nodiscard]] std::span<const SampleRange> rangesIn(const std::vector<SampleRange>& ranges,
                                                    std::int64_t first, std::int64_t end);

}  // namespace trellant::check
