// SPDX-License-Identifier: Apache-2.0
#include "confinement_layers.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/system_error_text.h>
#include <trellant/confine/confinement.h>

#include <cstdlib>
#include <string_view>

namespace trellant {

namespace {

[[noreturn]] void failToConfine(std::string_view layer, int reason) {
    throw ConfinementError("cannot confine itself with " + std::string(layer) + ": " +
                           systemErrorText(reason));
}

}  // namespace

Sandbox sandboxFromEnvironment() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this program changes the environment.
    const char* const value = std::getenv("TRELLANT_SANDBOX");
    const std::string_view wish = value == nullptr ? "" : value;
    if (wish.empty()) {
        return Sandbox::wherePossible;
    }
    if (wish == "require") {
        return Sandbox::required;
    }
    if (wish == "off") {
        return Sandbox::off;
    }
    throw ConfinementError(R"(TRELLANT_SANDBOX is neither "require" nor "off")");
}

void confine(Sandbox sandbox, const ConfinedNeeds& needs) {
    if (sandbox == Sandbox::off) {
        return;
    }
    // Before anything is given up that it takes.
    static_cast<void>(HashSecret::ofProcess());
    const auto layers = confinementLayers();
    if (layers.empty() && sandbox == Sandbox::required) {
        throw ConfinementError("cannot confine itself on this system");
    }
    for (const ConfinementLayer& layer : layers) {
        const int reason = layer.enter(needs);
        if (reason != 0 && sandbox == Sandbox::required) {
            failToConfine(layer.name, reason);
        }
    }
}

void confineFurther(Sandbox sandbox, const ConfinedNeeds& needs) {
    for (const ConfinementLayer& layer : confinementLayers()) {
        if (sandbox == Sandbox::off || !layer.narrows) {
            continue;
        }
        const int reason = layer.enter(needs);
        if (reason != 0 && sandbox == Sandbox::required) {
            failToConfine(layer.name, reason);
        }
    }
}

}  // namespace trellant
