// SPDX-License-Identifier: Apache-2.0
// The worker calls an event "omf-event-NUMBER-COUNT", after the number of its object in the file:
// by that a loss is told to be of it.
#include "loss_names.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/clip_name.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {

namespace {

std::optional<std::int64_t> objectOf(std::string_view eventID) {
    constexpr std::string_view prefix = "omf-event-";
    if (!eventID.starts_with(prefix)) {
        return std::nullopt;
    }
    const std::string_view digits = eventID.substr(prefix.size());
    std::int64_t object = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), object);
    return error == std::errc() ? std::optional(object) : std::nullopt;
}

}  // namespace

void nameLosses(HandOff& handOff, const AAFWorkerExtensions::LossPlaces& places) {
    KeyedMap<std::int64_t, const std::string*> names;
    for (std::size_t i = 0; i < handOff.timeline.events.size(); ++i) {
        const ClipName name = clipName(handOff, i);
        const auto object =
            name.isOfMasterMob ? objectOf(handOff.timeline.events[i].id) : std::nullopt;
        if (object) {
            names.emplace(*object, name.text);
        }
    }
    const std::size_t count = std::min(places.places.size(), handOff.losses.size());
    for (std::size_t i = 0; i < count; ++i) {
        PlacedLoss& loss = handOff.losses[i];
        const auto& object = places.places[i].clipObject;
        const bool isUnnamed = !loss.clipName || loss.clipName->empty();
        const auto name = object && isUnnamed ? names.find(*object) : names.end();
        if (name != names.end()) {
            loss.clipName = *name->second;
            loss.isClipNamedByMasterMob = true;
        }
    }
}

}  // namespace trellant
