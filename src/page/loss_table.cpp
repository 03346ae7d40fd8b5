// SPDX-License-Identifier: Apache-2.0
#include "say.h"
#include "table.h"
#include "tables.h"

#include <trellant/handoff/timeline_text.h>

namespace trellant::page {

namespace {

std::string timeText(const AAFTimeline& timeline, const std::optional<AAFRational>& time) {
    return time ? timecodeText(timeline, *time) : std::string();
}

std::optional<AAFRational> endOf(const PlacedLoss& loss) {
    return loss.start && loss.duration ? std::optional(*loss.start + *loss.duration) : std::nullopt;
}

}  // namespace

void writeLosses(Markup& markup, const HandOff& handOff) {
    const AAFTimeline& timeline = handOff.timeline;
    Table table(markup, {.id = "losses",
                         .title = "losses",
                         .columns = {"number", "effect", "in", "out", "track", "clip", "sentence",
                                     "technical", "objectPath"},
                         .rows = timeline.unsupportedFeatures.size()});
    for (std::size_t i = 0; i < timeline.unsupportedFeatures.size(); ++i) {
        const AAFUnsupportedFeature& feature = timeline.unsupportedFeatures[i];
        const PlacedLoss& loss = handOff.losses[i];
        const bool isDropped = feature.severity == AAFUnsupportedFeature::Severity::informational;
        table.row()
            .numberCell(i + 1)
            .cell(say(isDropped ? "dropped" : "different"))
            .cell(timeText(timeline, loss.start))
            .cell(timeText(timeline, endOf(loss)))
            .nameCell(trackText(loss.trackName, loss.trackNumber))
            .nameCell(loss.clipName.value_or(""))
            .nameCell(loss.plain.empty() ? feature.description : saySentence(loss.plain))
            .nameCell(feature.description)
            .nameCell(feature.objectPath.value_or(""));
    }
}

}  // namespace trellant::page
