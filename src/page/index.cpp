// SPDX-License-Identifier: Apache-2.0
#include "browser_part.h"
#include "facts.h"
#include "frame.h"
#include "markup.h"
#include "policy.h"
#include "say.h"
#include "table.h"

#include <trellant/base/url.h>
#include <trellant/page/page.h>
#include <trellant/version.h>

#include <string>
#include <utility>

namespace trellant::page {

namespace {

void writeRow(Markup& markup, Table& table, const IndexEntry& entry) {
    if (entry.page.empty()) {
        table.row()
            .nameCell(entry.file)
            .cell(std::string(say("failure")) + ": " + shownText(entry.failure));
        constexpr int otherCells = 6;
        for (int i = 0; i < otherCells; ++i) {
            table.cell();
        }
        return;
    }
    table.row().cell();
    markup.raw("<a href=\"").text(relativeFileURL("/" + entry.page, "/").text).raw("\">");
    markup.name(entry.file).raw("</a>");
    table.cell(entry.composition)
        .cell(entry.start)
        .cell(entry.length)
        .numberCell(entry.tracks)
        .numberCell(entry.clips)
        .cell(entry.audioFiles)
        .cell(entry.losses);
}

void writeEntries(Markup& markup, const std::vector<IndexEntry>& entries) {
    Table table(markup, {.id = "files",
                         .title = "files",
                         .columns = {"file", "composition", "startsAt", "length", "tracks", "clips",
                                     "audioFiles", "lost"},
                         .rows = entries.size()});
    for (const IndexEntry& entry : entries) {
        writeRow(markup, table, entry);
    }
}

}  // namespace

IndexEntry indexEntry(const PageRequest& request, std::string page) {
    const AAFTimeline& timeline = request.handOff.timeline;
    const Summary summary(request.handOff);
    return {.file = request.file,
            .page = std::move(page),
            .composition = compositionText(request.handOff),
            .start = timeline.clock.timelineZero.description(),
            .length = lengthOf(timeline),
            .tracks = summary.tracks,
            .clips = summary.clips,
            .audioFiles = statesText(summary),
            .losses = lossText(summary)};
}

void writeIndex(const std::vector<IndexEntry>& entries, JsonSink& sink) {
    Markup markup(sink);
    const std::string style = pageStyle();
    writeFrame(markup, indexFrame(), [&](std::string_view name) {
        if (name == "policy") {
            markup.text(contentPolicy({}, style));
        } else if (name == "version") {
            markup.text(versionText);
        } else if (name == "style") {
            markup.raw(style);
        } else {
            writeEntries(markup, entries);
        }
    });
    markup.flush();
}

}  // namespace trellant::page
