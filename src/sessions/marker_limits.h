// SPDX-License-Identifier: Apache-2.0
// What files of markers hold of a value where they do not hold all of them.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// The name as files of markers hold it: each run of control characters is a blank.
[[nodiscard]] std::string markerName(std::string_view name);

/// What a WAVE file, which counts its bytes in 32 bits, holds of a session's marks.
struct CueFileShare {
    /// How long the file is; of a session of more than twelve hours at 48,000 samples in a second
    /// the beginning.
    exchange::Samples length = 0;
    /// Marks in it, and those that lie behind its end or whose texts have no room.
    std::size_t held = 0;
    std::size_t leftOut = 0;
    bool operator==(const CueFileShare&) const = default;
};

/// Marks and their texts leave the sound what is above this.
inline constexpr std::uint64_t mostCueBytes = 1U << 30U;

/// `mostMarkBytes`: of marks and their texts there are no more than these in the file.
[[nodiscard]] CueFileShare cueFileShare(const Session& session,
                                        std::uint64_t mostMarkBytes = mostCueBytes);

}  // namespace trellant::sessions
