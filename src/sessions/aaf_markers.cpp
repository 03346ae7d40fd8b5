// SPDX-License-Identifier: Apache-2.0
#include "aaf_markers.h"

#include "aaf_limits.h"

#include <trellant/base/int128.h>

#include <algorithm>

namespace trellant::sessions {

namespace {

using exchange::mostSamples;
using exchange::Samples;

/// Colours of equal bytes: readers do not agree on which one comes first.
constexpr aaf::Colour red{0xFFFF, 0, 0};
constexpr aaf::Colour orange{0xFFFF, 0xA5A5, 0};
constexpr aaf::Colour green{0, 0xFFFF, 0};

aaf::Colour colourOf(MarkerKind kind) noexcept {
    switch (kind) {
        case MarkerKind::soundsDifferent:
            return orange;
        case MarkerKind::dropped:
            return red;
        case MarkerKind::changed:
            return green;
    }
    return orange;
}

/// The frame in which a sample lies.
std::int64_t frameOf(Samples samples, std::int64_t sampleRate, const aaf::Rational& frameRate) {
    const Int128 frames = Int128{std::clamp<Samples>(samples, 0, mostSamples)} *
                          frameRate.numerator /
                          (Int128{std::max<std::int64_t>(sampleRate, 1)} * frameRate.denominator);
    return static_cast<std::int64_t>(std::min<Int128>(frames, mostSamples));
}

}  // namespace

aaf::EventMobSlot markerSlot(const Session& session, std::uint32_t slotID,
                             const aaf::Rational& frameRate,
                             std::span<const std::uint32_t> firstSlots) {
    const std::int64_t rate = session.plan.rate;
    aaf::EventMobSlot slot{
        .slotID = slotID, .slotName = "Markers", .physicalTrackNumber = 1, .editRate = frameRate};
    slot.markers.reserve(session.markers.size());
    for (const SessionMarker& marker : session.markers) {
        const Samples start = std::clamp<Samples>(marker.position, 0, mostSamples);
        aaf::DescriptiveMarker stored{.position = frameOf(start, rate, frameRate),
                                      .comment = nameAsWritten(marker.text),
                                      .user = "Trellant",
                                      .colour = colourOf(marker.kind)};
        if (marker.length > 0) {
            const Samples end = start + std::min(marker.length, mostSamples);
            stored.length =
                std::max<std::int64_t>(frameOf(end, rate, frameRate) - stored.position, 1);
        }
        if (marker.track && *marker.track < firstSlots.size()) {
            stored.describedSlotIDs = {firstSlots[*marker.track]};
        }
        slot.markers.push_back(std::move(stored));
    }
    return slot;
}

}  // namespace trellant::sessions
