// SPDX-License-Identifier: Apache-2.0
// What this system offers for confinement, in the order in which it is entered.
#pragma once

#include <trellant/confine/confinement.h>

#include <span>
#include <string_view>

namespace trellant {

struct ConfinementLayer {
    /// For a log line.
    std::string_view name;
    /// Enters it for good. 0, or the errno value of the refusal, after which it does not hold.
    int (*enter)(const ConfinedNeeds& needs) noexcept;
    /// It may be entered again, and then takes more away.
    bool narrows = false;
};

/// Empty where there is none.
[[nodiscard]] std::span<const ConfinementLayer> confinementLayers() noexcept;

}  // namespace trellant
