// SPDX-License-Identifier: Apache-2.0
// The media files of a session as source mobs: linked, embedded or offline. Each mob has a slot for
// every channel that is played, numbered from 1 as the channels are.
#pragma once

#include "aaf_identity.h"

#include <trellant/aaf/aaf_file.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace trellant::sessions {

/// A rate as AAF stores it: that of the session where it is none.
[[nodiscard]] aaf::Rational storedRate(const AAFRational& rate, std::int64_t sessionRate) noexcept;

/// Of each medium the channels (from 0) that clips play.
using ChannelsPlayed = std::vector<std::set<std::uint32_t>>;

/// Samples of one channel in the file.
[[nodiscard]] std::int64_t storedFrames(const Session& session, std::size_t media) noexcept;

/// Adds a mob for each medium, and the essence of what is embedded.
void addMedia(const Session& session, const AafIdentity& identity, const ChannelsPlayed& channels,
              aaf::AafFile& file);

}  // namespace trellant::sessions
