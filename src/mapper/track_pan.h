// SPDX-License-Identifier: Apache-2.0
// What the pans of a track's clips and the track's name say about the whole track.
#pragma once

#include "event_draft.h"

#include <trellant/model/timeline.h>

#include <optional>
#include <string>

namespace trellant {

struct TrackPan {
    /// 0 = left, 1 = right; absent when the clips have none or differ.
    std::optional<double> fixedPan{};
    AAFChannelRole role = AAFChannelRole::mono;
    /// The clips' pans differ, so that no pan of the track says them all.
    bool differs = false;
};

[[nodiscard]] TrackPan trackPan(const EventDrafts& drafts, const std::optional<std::string>& name);

/// Left or right from a track name's ending, such as "Dialog_L"; else mono.
[[nodiscard]] AAFChannelRole roleFromName(const std::optional<std::string>& name);

}  // namespace trellant
