// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/clip_name.h>

namespace trellant {

const std::string* masterMobName(const HandOff& handOff, std::size_t position) {
    if (position >= handOff.masterMobOfEvents.size()) {
        return nullptr;
    }
    const std::int64_t place = handOff.masterMobOfEvents[position];
    if (place < 0 || static_cast<std::size_t>(place) >= handOff.masterMobs.size()) {
        return nullptr;
    }
    const auto& name = handOff.masterMobs[static_cast<std::size_t>(place)].name;
    return name && !name->empty() ? &*name : nullptr;
}

ClipName clipName(const HandOff& handOff, std::size_t position) {
    const auto& own = handOff.timeline.events.at(position).clipName;
    if (own && !own->empty()) {
        return {.text = &*own};
    }
    if (const std::string* const name = masterMobName(handOff, position)) {
        return {.text = name, .isOfMasterMob = true};
    }
    return {.text = own ? &*own : nullptr};
}

std::map<std::size_t, std::string> namesByMasterMob(const HandOff& handOff) {
    std::map<std::size_t, std::string> names;
    for (std::size_t i = 0; i < handOff.timeline.events.size(); ++i) {
        if (const ClipName name = clipName(handOff, i); name.isOfMasterMob) {
            names.emplace_hint(names.end(), i, *name.text);
        }
    }
    return names;
}

}  // namespace trellant
