// SPDX-License-Identifier: Apache-2.0
// The headers that are followed at the same time, of which the one goes on whose chunk begins
// first.
#pragma once

#include "sound_walk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace trellant::salvage {

class SoundWalks {
  public:
    /// Headers that are followed; of more the one that began first is given up.
    static constexpr std::size_t most = 8;
    static constexpr std::uint64_t none = std::numeric_limits<std::uint64_t>::max();

    /// Where the chunk begins that comes next, in bytes of the file; `none` without a header.
    [[nodiscard]] std::uint64_t next() const noexcept { return next_; }
    /// A header at byte `begin` of the file, to be looked at where it will stay: `bytes` from its
    /// mark on. It is not followed until add() says so.
    [[nodiscard]] SoundWalk& candidate(std::uint64_t begin, ByteView bytes) noexcept;
    /// Follows the candidate, whose first chunk was looked at or cannot be. One that comes to the
    /// same chunk as another goes on with that as one: what knows its format, of two the one that
    /// began later.
    void add() noexcept;
    /// Looks at the chunk at next(); `bytes` as SoundWalk::take wants them. The sound, where its
    /// samples begin.
    [[nodiscard]] std::optional<SoundHead> step(ByteView bytes) noexcept;
    void clear() noexcept;

  private:
    /// Lets the header at that place go on as one with another that comes to the same chunk.
    void settle(std::size_t place) noexcept;
    void remove(std::size_t place) noexcept;
    void findNext() noexcept;

    [[nodiscard]] SoundWalk& walk(std::size_t place) noexcept { return *walks_[slots_[place]]; }

    /// Of each header that is followed, and of the candidate behind them: where the chunk begins
    /// that comes next, where its mark does, and where it lies in `walks_`, in which none moves.
    std::array<std::uint64_t, most + 1> chunks_{};
    std::array<std::uint64_t, most + 1> begins_{};
    std::array<std::uint8_t, most + 1> slots_{0, 1, 2, 3, 4, 5, 6, 7, 8};
    std::array<std::optional<SoundWalk>, most + 1> walks_{};
    std::size_t count_ = 0;
    std::uint64_t next_ = none;
    std::size_t nextPlace_ = 0;
};

}  // namespace trellant::salvage
