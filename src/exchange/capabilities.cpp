// SPDX-License-Identifier: Apache-2.0
#include <trellant/exchange/capabilities.h>

#include <algorithm>
#include <array>
#include <string>

namespace trellant::exchange {

namespace {

using enum Carriage;

constexpr std::array<std::string_view, exportFormatCount> formatWords{
    "aaf", "otio", "otioz", "reaper", "dawproject", "markers"};

/// The columns of the table: an archive carries what the session in it carries.
enum class Column { aaf, otio, reaper, dawproject, markers };
constexpr std::size_t columnCount = 5;
constexpr std::array<std::string_view, columnCount> columnHeads{"AAF", "OTIO, otioz", "REAPER",
                                                                "DAWproject", "Markers"};

constexpr Column columnOf(ExportFormat format) {
    switch (format) {
        case ExportFormat::aaf:
            return Column::aaf;
        case ExportFormat::otio:
        case ExportFormat::otioz:
            return Column::otio;
        case ExportFormat::reaper:
            return Column::reaper;
        case ExportFormat::dawproject:
            return Column::dawproject;
        case ExportFormat::markers:
            return Column::markers;
    }
    return Column::markers;
}

struct Row {
    Feature feature;
    std::string_view text;
    std::array<Capability, columnCount> cells;
};

constexpr Capability placesOnly{lost, "places and names of clips only"};

constexpr std::array<Row, featureCount> rows{{
    {Feature::clipPlaces,
     "places and lengths of clips",
     {{{carried, "in whole samples of the session's rate"},
       {carried, "in whole samples of the session's rate"},
       {carried, "in whole samples of the session's rate"},
       {carried, "in whole samples of the session's rate"},
       {carried, "in whole samples of the session's rate"}}}},
    {Feature::sourceStart,
     "first sample of the source",
     {{{carried, {}}, {carried, {}}, {carried, {}}, {carried, {}}, placesOnly}}},
    {Feature::sourceStartAtOtherRates,
     "first sample of media at another rate",
     {{{limited, "in whole samples of the session's rate"},
       {carried, "in samples of the medium"},
       {carried, "in seconds"},
       {carried, "in seconds"},
       placesOnly}}},
    {Feature::channelOfSeveral,
     "one channel of several",
     {{{detour, "a mono file of that channel"},
       {detour, "a mono file of that channel"},
       {limited, "64 channels"},
       {detour, "a mono file of that channel"},
       placesOnly}}},
    {Feature::severalChannels,
     "clips with several channels",
     {{{lost, "the first channel is played"},
       {carried, {}},
       {carried, {}},
       {carried, {}},
       placesOnly}}},
    {Feature::overlaps,
     "clips that overlap",
     {{{detour, "a further track"},
       {detour, "a further track"},
       {carried, {}},
       {detour, "a further track"},
       {carried, {}}}}},
    {Feature::crossfades,
     "crossfades",
     {{{carried, {}},
       {carried, "without its curve, which is metadata"},
       {carried, "as two fades that overlap"},
       {carried, "as two fades that overlap"},
       placesOnly}}},
    {Feature::fadeLengths,
     "lengths of fades",
     {{{carried, {}}, {metadata, {}}, {carried, {}}, {carried, {}}, placesOnly}}},
    {Feature::overlappingFades,
     "fades of one clip that overlap",
     {{{lost, "the fade-out begins where the fade-in ends"},
       {metadata, {}},
       {carried, {}},
       {carried, {}},
       placesOnly}}},
    {Feature::fadeCurves,
     "curves of fades",
     {{{limited, "linear, constant, power, logarithmic; others become linear"},
       {metadata, {}},
       {limited, "linear, power, logarithmic by the nearest shape; others become linear"},
       {lost, "the target's own curve"},
       placesOnly}}},
    {Feature::fadeShapes,
     "fades drawn with points",
     {{{lost, "the curve remains"},
       {metadata, {}},
       {lost, "the curve remains"},
       {lost, "the target's own curve"},
       placesOnly}}},
    {Feature::clipGain,
     "clip gain",
     {{{limited, "to 1/536,870,912 up to +12 dB, more coarsely above; no inverted signal"},
       {metadata, {}},
       {carried, {}},
       {limited, "no inverted signal"},
       placesOnly}}},
    {Feature::clipGainAutomation,
     "clip gain automation",
     {{{limited, "to 1/536,870,912 up to +12 dB, more coarsely above; no inverted signal"},
       {metadata, {}},
       {carried, {}},
       {limited, "no inverted signal"},
       placesOnly}}},
    {Feature::automationCurves,
     "curves between automation points",
     {{{limited, "linear, constant, power, logarithmic; others become linear"},
       {metadata, {}},
       {limited, "linear and constant; others become linear"},
       {limited, "linear and constant; others become linear"},
       placesOnly}}},
    {Feature::clipMute,
     "muted clips",
     {{{lost, "the clip sounds"},
       {limited, "a disabled clip"},
       {carried, {}},
       {carried, {}},
       placesOnly}}},
    {Feature::trackGain,
     "track gain",
     {{{limited, "as clip gain"},
       {metadata, {}},
       {carried, {}},
       {limited, "no inverted signal"},
       placesOnly}}},
    {Feature::trackGainAutomation,
     "track gain automation",
     {{{limited, "as clip gain"},
       {metadata, {}},
       {carried, {}},
       {limited, "no inverted signal"},
       placesOnly}}},
    {Feature::trackPan,
     "pan",
     {{{limited, "from left to right, one of fixed and automated; some tools do not read it"},
       {metadata, {}},
       {limited, "from left to right, one of fixed and automated"},
       {limited, "from left to right, one of fixed and automated"},
       placesOnly}}},
    {Feature::trackPanAutomation,
     "pan automation",
     {{{limited, "from left to right; few tools read it"},
       {metadata, {}},
       {limited, "from left to right"},
       {limited, "from left to right"},
       placesOnly}}},
    {Feature::trackMute,
     "muted tracks",
     {{{lost, "the track sounds"},
       {limited, "a disabled track"},
       {carried, {}},
       {carried, {}},
       placesOnly}}},
    {Feature::trackSolo,
     "soloed tracks",
     {{{lost, "all tracks sound"}, {metadata, {}}, {carried, {}}, {carried, {}}, placesOnly}}},
    {Feature::sessionName,
     "name of the composition",
     {{{carried, {}}, {carried, {}}, {carried, {}}, {carried, {}}, {lost, {}}}}},
    {Feature::trackNames,
     "names of tracks",
     {{{limited, "32,766 units, no control characters"},
       {carried, {}},
       {limited, "no control characters"},
       {limited, "no control characters"},
       {limited, "no control characters"}}}},
    {Feature::clipNames,
     "names of clips",
     {{{limited, "32,766 units, no control characters"},
       {carried, {}},
       {limited, "no control characters"},
       {limited, "no control characters"},
       {limited, "no control characters"}}}},
    {Feature::sourceNames,
     "names of sources",
     {{{limited, "32,766 units, no control characters"},
       {carried, {}},
       {detour, "the file's name"},
       {detour, "the file's name"},
       {lost, {}}}}},
    {Feature::reels,
     "reels that sources come from",
     {{{carried, "as tapes with their timecode"},
       {metadata, {}},
       {lost, {}},
       {lost, {}},
       {lost, {}}}}},
    {Feature::startTimecode,
     "start timecode",
     {{{carried, {}},
       {carried, {}},
       {carried, {}},
       {detour, "a marker at the start"},
       {detour, "a marker at the start"}}}},
    {Feature::offlineMedia,
     "clips without audio",
     {{{carried, "offline, with the recorded path"},
       {carried, "a missing reference, with the recorded path"},
       {carried, "offline, with the recorded path"},
       {carried, "offline, with the recorded path"},
       {carried, {}}}}},
    {Feature::lossMarkers,
     "losses as markers",
     {{{carried, {}}, {carried, {}}, {carried, {}}, {carried, {}}, {carried, {}}}}},
}};

/// Rows are looked up by their feature's number.
constexpr bool rowsAreInOrder() {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (static_cast<std::size_t>(rows[i].feature) != i) {
            return false;
        }
    }
    return true;
}
static_assert(rowsAreInOrder());

std::string_view carriageText(Carriage carriage) noexcept {
    switch (carriage) {
        case carried:
            return "carried";
        case limited:
            return "carried within limits";
        case detour:
            return "by a detour";
        case metadata:
            return "metadata only";
        case lost:
            return "lost";
    }
    return {};
}

}  // namespace

std::string_view formatWord(ExportFormat format) noexcept {
    return formatWords.at(static_cast<std::size_t>(format));
}

std::optional<ExportFormat> formatOfWord(std::string_view word) noexcept {
    const auto found = std::find(formatWords.begin(), formatWords.end(), word);
    return found == formatWords.end()
               ? std::nullopt
               : std::optional(static_cast<ExportFormat>(found - formatWords.begin()));
}

const Capability& capability(ExportFormat format, Feature feature) noexcept {
    return rows.at(static_cast<std::size_t>(feature))
        .cells.at(static_cast<std::size_t>(columnOf(format)));
}

std::string_view featureText(Feature feature) noexcept {
    return rows.at(static_cast<std::size_t>(feature)).text;
}

std::string capabilityTable() {
    std::string table = "| |";
    for (const std::string_view head : columnHeads) {
        table.append(" ").append(head).append(" |");
    }
    table += "\n|---|---|---|---|---|---|\n";
    for (const Row& row : rows) {
        table.append("| ").append(row.text).append(" |");
        for (const Capability& cell : row.cells) {
            table.append(" ").append(carriageText(cell.carriage));
            if (!cell.note.empty()) {
                table.append(": ").append(cell.note);
            }
            table += " |";
        }
        table += '\n';
    }
    return table;
}

}  // namespace trellant::exchange
