// SPDX-License-Identifier: Apache-2.0
// The compositions of a file. One of them is mapped; a person should know of the others.
#pragma once

#include <trellant/omf/document.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A Composition Mob.
struct AAFComposition {
    OMFObject object = OMFObject::none;
    std::optional<std::string> name{};
    /// As mob identifiers are written: "0000002A-00000001-FFFFFFFF"; absent when it has none.
    std::optional<std::string> mobID{};
    /// Slots of all kinds, not only audio.
    std::size_t slotCount = 0;
    /// The one that a Mapper maps.
    bool isRead = false;

    bool operator==(const AAFComposition&) const = default;
};

/// The compositions of `document`: the one that is read first, then the others by ascending object
/// number; empty when there is none. Throws OMFIOError unsupported when their names or lists of
/// slots together are beyond the bounds of a mapping's reads.
[[nodiscard]] std::vector<AAFComposition> compositions(const OMFDocument& document);

}  // namespace trellant
