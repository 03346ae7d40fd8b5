// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/keyed_hash.h>
#include <trellant/base/text.h>
#include <trellant/extraction/file_naming.h>
#include <trellant/handoff/clip_name.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <string_view>

namespace trellant {

namespace {

constexpr std::size_t mostCharacters = 120;

/// Some editors call a master mob as its file, which gets an extension of its own.
std::string_view withoutAudioExtension(std::string_view name) {
    constexpr std::array<std::string_view, 6> extensions{".wav",  ".wave", ".aif",
                                                         ".aiff", ".aifc", ".bwf"};
    const std::size_t dot = name.rfind('.');
    const bool isExtension = dot != std::string_view::npos && dot != 0 &&
                             std::find(extensions.begin(), extensions.end(),
                                       lowerCased(name.substr(dot))) != extensions.end();
    return isExtension ? name.substr(0, dot) : name;
}

/// As the worker makes the names of files: letters, numbers and what is harmless.
std::string asFileName(std::string_view name) {
    const std::string safe = replacingNonAlphanumerics(withoutAudioExtension(name), "-_. ", '_');
    return std::string(
        prefixOfClusters(safe, mostCharacters, std::numeric_limits<std::size_t>::max()));
}

/// What of a name tells it apart: without its extension, upper and lower case taken for the same.
std::string kernelOf(const std::string& name) {
    return lowerCased(std::filesystem::path(name).stem().native());
}

}  // namespace

std::vector<std::optional<std::string>> namesOfMasterMobs(const HandOff& handOff,
                                                          const std::string& path) {
    const auto& essences = handOff.timeline.essences;
    KeyedMap<std::string, std::size_t> bearers;
    for (const AAFSourceEssence& essence : essences) {
        ++bearers[kernelOf(essence.sourceName.value_or(""))];
    }
    KeyedMap<std::string_view, const std::string*> mobs;
    const auto& events = handOff.timeline.events;
    for (std::size_t i = 0; i < events.size(); ++i) {
        if (const std::string* const name = masterMobName(handOff, i)) {
            mobs.emplace(events[i].essenceID, name);
        }
    }
    const std::string ofTheFile = kernelOf(path);
    std::vector<std::optional<std::string>> names(essences.size());
    for (std::size_t i = 0; i < essences.size(); ++i) {
        const std::string kernel = kernelOf(essences[i].sourceName.value_or(""));
        const bool saysNothing = kernel.empty() || kernel == ofTheFile || bearers[kernel] > 1;
        const auto mob = mobs.find(essences[i].id);
        if (saysNothing && mob != mobs.end()) {
            names[i] = asFileName(*mob->second);
        }
    }
    return names;
}

}  // namespace trellant
