// SPDX-License-Identifier: Apache-2.0
#include "say.h"
#include "table.h"
#include "tables.h"
#include "value_text.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/handoff/changes.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>

namespace trellant::page {

namespace {

struct TrackTotals {
    std::size_t clips = 0;
    AAFRational end{};
    std::size_t losses = 0;
};

KeyedMap<std::string_view, TrackTotals> totalsOf(const HandOff& handOff) {
    KeyedMap<std::string_view, TrackTotals> totals;
    for (const AAFClipEvent& event : handOff.timeline.events) {
        TrackTotals& track = totals[event.trackID];
        ++track.clips;
        track.end = std::max(track.end, event.timelineEnd());
    }
    for (const PlacedLoss& loss : handOff.losses) {
        if (loss.trackID) {
            ++totals[*loss.trackID].losses;
        }
    }
    return totals;
}

std::string_view yesWhere(bool condition) {
    return condition ? say("yes") : std::string_view();
}

/// Where it was found, else where it lay for whoever wrote the file.
std::string placeOf(const AAFSourceEssence& essence) {
    if (essence.fileURL && !essence.embedded) {
        return pathOfFileURL(essence.fileURL->text).value_or(essence.fileURL->text);
    }
    return essence.originalPath.value_or("");
}

}  // namespace

void writeTracks(Markup& markup, const HandOff& handOff) {
    const AAFTimeline& timeline = handOff.timeline;
    const auto totals = totalsOf(handOff);
    Table table(markup, {.id = "tracks",
                         .title = "tracks",
                         .columns = {"number", "name", "clips", "endsAt", "gain", "pan", "muted",
                                     "solo", "losses"},
                         .rows = timeline.tracks.size()});
    for (const AAFTrackState& track : timeline.tracks) {
        const auto found = totals.find(track.id);
        const TrackTotals total = found == totals.end() ? TrackTotals{} : found->second;
        table.row()
            .cell(std::to_string(track.index + 1))
            .nameCell(trackText(track.name, track.index + 1))
            .numberCell(total.clips)
            .cell(timecodeText(timeline, total.end))
            .cell(decibelText(track.fixedGain))
            .cell(track.fixedPan ? panText(*track.fixedPan) : "")
            .cell(yesWhere(track.muted))
            .cell(yesWhere(track.solo))
            .numberCell(total.losses);
    }
}

void writeSources(Markup& markup, const Sources& sources,
                  const std::vector<std::string>& fullFiles) {
    Table table(markup, {.id = "sources",
                         .title = "sources",
                         .columns = {"number", "name", "state", "rate", "bitsColumn", "channels",
                                     "clips", "place", "fullFile"},
                         .rows = sources.all().size()});
    std::size_t number = 0;
    for (const Source& source : sources.all()) {
        const AAFSourceEssence& essence = *source.essence;
        table.row()
            .numberCell(++number)
            .nameCell(sourceName(essence))
            .cell(stateName(source.state))
            .cell(plainRate(essence.sampleRate))
            .cell(essence.bitDepth ? std::to_string(*essence.bitDepth) : "")
            .cell(std::to_string(essence.channelCount))
            .numberCell(source.clips)
            .nameCell(placeOf(essence))
            .cell();
        if (number <= fullFiles.size() && !fullFiles[number - 1].empty()) {
            markup.raw("<a href=\"").text(fullFiles[number - 1]).raw("\">");
            markup.text(say("fullFile")).raw("</a>");
        }
    }
}

void writeCompositions(Markup& markup, const HandOff& handOff) {
    Table table(markup, {.id = "compositions",
                         .title = "compositions",
                         .columns = {"object", "name", "read"},
                         .rows = handOff.compositions.size()});
    for (const AAFWorkerExtensions::Composition& composition : handOff.compositions) {
        table.row()
            .cell(std::to_string(composition.object))
            .nameCell(composition.name.value_or(""))
            .cell(composition.isRead ? say("yes") : say("no"));
    }
}

void writeChanges(Markup& markup, const HandOff& handOff) {
    Table table(markup, {.id = "changes",
                         .title = "changes",
                         .columns = {"number", "place", "what", "code", "object"},
                         .rows = handOff.changes.size()});
    std::size_t number = 0;
    for (const DescribedChange& change : handOff.changes) {
        table.row()
            .numberCell(++number)
            .nameCell(placeText(change, handOff.timeline))
            .nameCell(change.what)
            .nameCell(change.code)
            .nameCell(change.object);
    }
}

}  // namespace trellant::page
