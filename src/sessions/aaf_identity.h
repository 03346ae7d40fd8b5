// SPDX-License-Identifier: Apache-2.0
// Which program wrote the file, and the identifiers of what is in it. They come from names: the
// same source has the same identifier in every session, so that a new cut finds the media of the
// one before, and a session with another cut has another one.
#pragma once

#include <trellant/aaf/aaf_file.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::sessions {

class AafIdentity {
  public:
    explicit AafIdentity(const Session& session);

    [[nodiscard]] const std::string& compositionName() const noexcept { return compositionName_; }
    [[nodiscard]] aaf::MobID compositionMob() const;
    /// Of a file: its position in the plan's media.
    [[nodiscard]] aaf::MobID sourceMob(std::size_t media) const;
    /// Of a tape or film.
    [[nodiscard]] aaf::MobID reelMob(const exchange::PlannedReel& reel) const;
    /// Of all clips that play this channel under this name.
    [[nodiscard]] aaf::MobID masterMob(std::size_t media, std::uint32_t channel,
                                       std::string_view clipName) const;
    [[nodiscard]] aaf::Identification identification() const;
    [[nodiscard]] aaf::TimeStamp date() const;

  private:
    [[nodiscard]] std::string mediaText(std::size_t media) const;

    const Session& session_;
    std::string compositionName_;
    /// Of all that the session plays, and where.
    std::string sessionID_;
};

}  // namespace trellant::sessions
