// SPDX-License-Identifier: Apache-2.0
#include "aaf_markers.h"

#include "aaf_limits.h"

#include <algorithm>

namespace trellant::sessions {

namespace {

using exchange::mostSamples;
using exchange::Samples;

/// Colours of equal bytes: readers do not agree on which one comes first.
constexpr aaf::Colour red{0xFFFF, 0, 0};
constexpr aaf::Colour orange{0xFFFF, 0xA5A5, 0};

}  // namespace

aaf::EventMobSlot markerSlot(const Session& session, std::uint32_t slotID,
                             const aaf::Rational& rate, std::span<const std::uint32_t> firstSlots) {
    aaf::EventMobSlot slot{
        .slotID = slotID, .slotName = "Markers", .physicalTrackNumber = 1, .editRate = rate};
    slot.markers.reserve(session.markers.size());
    for (const SessionMarker& marker : session.markers) {
        aaf::DescriptiveMarker stored{
            .position = std::clamp<Samples>(marker.position, 0, mostSamples),
            .comment = nameAsWritten(marker.text),
            .user = "Trellant",
            .colour = marker.isDropped ? red : orange};
        if (marker.length > 0) {
            stored.length = std::min(marker.length, mostSamples);
        }
        if (marker.track && *marker.track < firstSlots.size()) {
            stored.describedSlotIDs = {firstSlots[*marker.track]};
        }
        slot.markers.push_back(std::move(stored));
    }
    return slot;
}

}  // namespace trellant::sessions
