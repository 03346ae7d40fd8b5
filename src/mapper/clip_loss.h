// SPDX-License-Identifier: Apache-2.0
// Why a clip of the composition is dropped.
#pragma once

#include "mapping_notes.h"

#include <trellant/omf/values.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace trellant {

/// The clip, or one that its source refers to, names no source.
struct ClipWithoutSource {};

/// `clip` names a source that is not in the file.
struct ClipSourceMissing {
    OMFObject clip = OMFObject::none;
    OMFUID mobID;
};

/// The source has no such track, or the track no usable edit rate.
struct ClipSourceTrackMissing {
    OMFUID mobID;
    std::uint32_t trackID = 0;
};

/// The sources refer to one another in a circle, or are too many; seen at `clip`.
struct ClipSourceCycle {
    OMFObject clip = OMFObject::none;
};

/// What `clip` plays is no audio file and leads to none.
struct ClipSourceDeadEnd {
    OMFObject clip = OMFObject::none;
    OMFUID mobID;
    std::uint32_t trackID = 0;
    /// Of the segment where the way ends; absent when there is none or it has no class.
    std::optional<std::string> segmentClass{};
};

/// The source describes no media.
struct ClipMediaUndescribed {};

using ClipLoss = std::variant<ClipWithoutSource, ClipSourceMissing, ClipSourceTrackMissing,
                              ClipSourceCycle, ClipSourceDeadEnd, ClipMediaUndescribed>;

/// The reason in words; absent where a record of its own gives it.
[[nodiscard]] std::optional<std::string> verlustGrund(const ClipLoss& loss);
/// The same in English.
[[nodiscard]] inline std::optional<std::string> lossReason(const ClipLoss& loss) {
    return verlustGrund(loss);
}

/// Records that the clip in hand is dropped; before that, what else the reason asks for: a
/// diagnostic or a record of its own.
void recordDropped(const ClipLoss& loss, const ObjectPath& at, MappingNotes& notes);

}  // namespace trellant
