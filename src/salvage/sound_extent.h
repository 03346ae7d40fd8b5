// SPDX-License-Identifier: Apache-2.0
// How far a sound reaches whose header was read, and what the header of its copy has to say where
// that is not what it said.
#pragma once

#include "forward_window.h"
#include "sound_walk.h"

#include <trellant/salvage/found_sound.h>

#include <cstdint>
#include <optional>

namespace trellant::salvage {

/// Whether all samples that the header claims lie before byte `limit` of the file.
[[nodiscard]] bool hasAllSamples(const SoundHead& head, std::uint64_t limit) noexcept;

/// A sound that has all its samples: with the chunks behind them, as far as those make sense and
/// lie before `limit`. The window moves to its end at most.
[[nodiscard]] FoundSound soundWithTail(SoundHead head, std::uint64_t limit, ForwardWindow& window);

/// A sound that ends at byte `end` of the file, within its samples. Absent when none of these is
/// there.
[[nodiscard]] std::optional<FoundSound> cutSound(const SoundHead& head, std::uint64_t end,
                                                 Doubt doubt);

}  // namespace trellant::salvage
