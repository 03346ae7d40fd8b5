// SPDX-License-Identifier: Apache-2.0
// The figures of a file that its one-screen summary shows, counted once.
#pragma once

#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/sources.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

struct Summary {
    explicit Summary(const HandOff& handOff);

    std::size_t tracks = 0;
    std::size_t clips = 0;
    std::size_t sources = 0;
    /// By SourceState.
    std::array<std::size_t, 5> sourcesByState{};
    /// Sources by sample rate (samples per second, as people write it) and by bit depth (0: not
    /// known), ascending.
    std::map<AAFRational, std::size_t> sampleRates{};
    std::map<std::int64_t, std::size_t> bitDepths{};
    std::optional<AAFRational> firstAudible{};
    std::size_t losses = 0;
    std::size_t dropped = 0;
    std::size_t soundsDifferent = 0;
    /// Distinct places on the timeline that losses touch.
    std::size_t lossPlaces = 0;

    [[nodiscard]] std::size_t inState(SourceState state) const {
        return sourcesByState.at(static_cast<std::size_t>(state));
    }
};

}  // namespace trellant
