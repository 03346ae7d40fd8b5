// SPDX-License-Identifier: Apache-2.0
// The bounds of values that validation holds and repair clamps to.
#pragma once

#include <cstdint>
#include <limits>

namespace trellant {

/// The largest frame rate whose frames of a day fit 64 bits.
constexpr std::int64_t maxNominalFramesPerSecond =
    std::numeric_limits<std::int64_t>::max() / 86'400;
constexpr std::int64_t maxChannelCount = 4'294'967'295;
/// Samples per second.
constexpr std::int64_t maxSampleRate = 384'000;

}  // namespace trellant
