// SPDX-License-Identifier: Apache-2.0
#include "heard_audio.h"

#include "look/console_progress.h"
#include "look/inspect.h"
#include "terminal/interrupts.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/printable_path.h>
#include <trellant/extraction/extraction.h>
#include <trellant/handoff/sources.h>
#include <trellant/listening/audible_hand_off.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>
#include <string_view>

namespace trellant::cli {

namespace {

/// The outline is not looked at: as coarse as it may be.
constexpr std::size_t leastPairs = 1;

std::int64_t counted(std::uint64_t count) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(count, most));
}

std::vector<check::SampleRange> rangesOf(const std::vector<audio::FrameRange>& ranges) {
    std::vector<check::SampleRange> result;
    result.reserve(ranges.size());
    std::transform(ranges.begin(), ranges.end(), std::back_inserter(result),
                   [](const audio::FrameRange& range) {
                       return check::SampleRange{counted(range.first), counted(range.frames)};
                   });
    return result;
}

check::HeardSource heardSource(const listening::SourceSound& sound) {
    check::HeardSource heard{.reason = sound.reason};
    if (sound.measures) {
        for (const audio::ChannelMeasures& channel : sound.measures->channels) {
            heard.channels.push_back({.silences = rangesOf(channel.silences),
                                      .fullScale = rangesOf(channel.fullScale.ranges),
                                      .tones = rangesOf(channel.tones.ranges)});
        }
    }
    return heard;
}

/// The sounds of one look in the order of another one's essences.
check::SoundFacts inOrderOf(const HandOff& handOff, const AAFTimeline& heard,
                            const std::vector<listening::SourceSound>& sounds) {
    KeyedMap<std::string_view, std::size_t> byID;
    for (std::size_t i = 0; i < heard.essences.size() && i < sounds.size(); ++i) {
        byID.emplace(heard.essences[i].id, i);
    }
    check::SoundFacts facts;
    facts.reserve(handOff.timeline.essences.size());
    for (const AAFSourceEssence& essence : handOff.timeline.essences) {
        const auto found = byID.find(essence.id);
        facts.push_back(found == byID.end() ? check::HeardSource{}
                                            : heardSource(sounds[found->second]));
    }
    return facts;
}

void reportUnheard(const std::string& file, const HandOff& handOff, const check::SoundFacts& facts,
                   Console& console) {
    for (std::size_t i = 0; i < facts.size(); ++i) {
        if (!facts[i].reason.empty()) {
            console.note(printablePath(file) + ": the sound of " +
                         sourceName(handOff.timeline.essences[i]) +
                         " could not be read: " + facts[i].reason);
        }
    }
}

}  // namespace

std::optional<check::SoundFacts> heardAudio(const std::string& file,
                                            const std::vector<std::string>& mediaFolders,
                                            const HandOff& handOff, Console& console,
                                            const StopToken& stop) {
    const auto converter = installedWaveConverter();
    if (!converter) {
        console.error(
            "the program trellant-wav, which reads audio files, is missing. It belongs to this "
            "one; please install Trellant again");
        return std::nullopt;
    }
    try {
        const Cancellable heeded;
        ConsoleProgress progress(console, stop);
        const listening::AudibleHandOff audible(
            {.file = file,
             .directory = std::filesystem::absolute(std::filesystem::temp_directory_path()),
             .mediaFolders = mediaFolders},
            progress);
        const auto sounds =
            audible.measure({.converter = *converter, .mostPairs = leastPairs}, progress);
        console.endBar();
        check::SoundFacts facts = inOrderOf(handOff, audible.handOff().timeline, sounds);
        reportUnheard(file, handOff, facts, console);
        return facts;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console.endBar();
        static_cast<void>(reportFailure(file, error, console));
        return std::nullopt;
    }
}

}  // namespace trellant::cli
