// SPDX-License-Identifier: Apache-2.0
// The Master Mobs of a hand-off: what stands between a clip and the file that it plays, under the
// name that editors know.
#pragma once

#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct MasterMob {
    std::string mobID{};
    std::optional<std::string> name{};
    bool operator==(const MasterMob&) const = default;
};

struct MasterMobs {
    /// In the order in which events play them first.
    std::vector<MasterMob> mobs{};
    /// For each event the place in `mobs` of the one that its clip names; absent where the clip
    /// names a mob of another kind.
    std::vector<std::optional<std::size_t>> ofEvents{};
    bool operator==(const MasterMobs&) const = default;
};

/// Those that the events of `timeline`, mapped from `document`, play. Throws OMFIOError unsupported
/// beyond the bounds of a mapping's reads.
[[nodiscard]] MasterMobs masterMobs(const OMFDocument& document, const AAFTimeline& timeline);

}  // namespace trellant
