// SPDX-License-Identifier: Apache-2.0
// What each format carries. One table: documents, losses and what is written all come from it.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace exchange {

/// Kinds of session files. `otioz` is `otio` with its media in one archive.
enum class ExportFormat { aaf, otio, otioz, reaper, dawproject, markers };
inline constexpr std::size_t exportFormatCount = 6;

/// "aaf", "otio", "otioz", "reaper", "dawproject", "markers": as the command line has them.
[[nodiscard]] std::string_view formatWord(ExportFormat format) noexcept;
[[nodiscard]] std::optional<ExportFormat> formatOfWord(std::string_view word) noexcept;

/// What a session may hold.
enum class Feature {
    clipPlaces,
    sourceStart,
    sourceStartAtOtherRates,
    channelOfSeveral,
    severalChannels,
    overlaps,
    crossfades,
    fadeLengths,
    overlappingFades,
    fadeCurves,
    fadeShapes,
    clipGain,
    clipGainAutomation,
    automationCurves,
    clipMute,
    trackGain,
    trackGainAutomation,
    trackPan,
    trackPanAutomation,
    trackMute,
    trackSolo,
    sessionName,
    trackNames,
    clipNames,
    sourceNames,
    reels,
    startTimecode,
    offlineMedia,
    lossMarkers,
};
inline constexpr std::size_t featureCount = 29;

enum class Carriage {
    /// As it is.
    carried,
    /// As it is up to a limit that the note names.
    limited,
    /// In another way that comes to the same: a mono file, a further lane.
    detour,
    /// Written where this program's own readers find it; other tools do not act on it.
    metadata,
    lost,
};

struct Capability {
    Carriage carriage = Carriage::lost;
    /// For people: the limit, the detour; empty where there is nothing to say.
    std::string_view note{};
};

[[nodiscard]] const Capability& capability(ExportFormat format, Feature feature) noexcept;

/// "clip gain": what a person calls it.
[[nodiscard]] std::string_view featureText(Feature feature) noexcept;

/// The table of all formats and features as Markdown, as docs/exports.md has it.
[[nodiscard]] std::string capabilityTable();

}  // namespace exchange
}  // namespace trellant
