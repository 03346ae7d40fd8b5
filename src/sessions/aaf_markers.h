// SPDX-License-Identifier: Apache-2.0
// Markers as one slot of events, in frames of the session's timecode: other programs write and
// expect no other unit.
#pragma once

#include <trellant/aaf/mobs.h>
#include <trellant/sessions/session.h>

#include <cstdint>
#include <span>

namespace trellant::sessions {

/// `firstSlots`: of each track of the plan the slot of its first lane, which its markers describe.
[[nodiscard]] aaf::EventMobSlot markerSlot(const Session& session, std::uint32_t slotID,
                                           const aaf::Rational& frameRate,
                                           std::span<const std::uint32_t> firstSlots);

}  // namespace trellant::sessions
