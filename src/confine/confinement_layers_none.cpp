#include "confinement_layers.h"

namespace trellant {

std::span<const ConfinementLayer> confinementLayers() noexcept {
    return {};
}

}  // namespace trellant
