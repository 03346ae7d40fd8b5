// SPDX-License-Identifier: Apache-2.0
#include "told_origin.h"

#include <trellant/base/text.h>
#include <trellant/handoff/source_timecode.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <cstddef>
#include <limits>
#include <string_view>

namespace trellant {

namespace {

/// A word of a command line has an end, and what is written of a name has one before.
std::string word(std::string_view key, std::string_view value) {
    constexpr std::size_t mostBytes = 4'096;
    return std::string(key).append("=").append(
        prefixOfClusters(value, std::numeric_limits<std::size_t>::max(), mostBytes));
}

}  // namespace

KeyedMap<std::string, std::vector<std::string>> toldOrigins(
    const HandOff& handOff, const std::optional<std::int64_t>& date) {
    const SourceTimecodes timecodes(handOff);
    const auto when = date ? date : handOff.lastModified;
    KeyedMap<std::string, std::vector<std::string>> told;
    for (const AAFSourceEssence& essence : handOff.timeline.essences) {
        const SourceTimecode* const timecode = timecodes.of(essence.id);
        if (timecode == nullptr) {
            continue;
        }
        std::vector<std::string> words{
            word("description", sourceName(essence)),
            word("originator", "Trellant"),
            word("reference", essence.mobID.value_or("")),
            word("since-midnight", fractionText(timecode->sinceMidnight)),
            word("rate", fractionText(timecode->rate.exactRate)),
            word("counting", timecode->rate.dropFrame ? "DF" : "NDF")};
        if (when) {
            words.push_back(word("date", std::to_string(*when)));
        }
        if (handOff.timeline.compositionName) {
            words.push_back(word("project", *handOff.timeline.compositionName));
        }
        if (timecode->reel) {
            words.push_back(word("tape", *timecode->reel));
        }
        told.emplace(essence.id, std::move(words));
    }
    return told;
}

}  // namespace trellant
