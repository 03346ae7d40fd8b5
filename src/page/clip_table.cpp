// SPDX-License-Identifier: Apache-2.0
#include "say.h"
#include "table.h"
#include "tables.h"
#include "value_text.h"

#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/loss_index.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/audibility.h>

namespace trellant::page {

namespace {

/// The numbers that a cell has room for.
std::string lossNumbers(const LossIndex& losses, const AAFClipEvent& event) {
    constexpr std::size_t most = 5;
    const std::size_t count = losses.countTouching(event);
    if (count == 0) {
        return {};
    }
    std::string text;
    std::size_t named = 0;
    for (const std::size_t position : losses.touching(event)) {
        if (named == most) {
            break;
        }
        text += (text.empty() ? "" : ", ") + std::to_string(position + 1);
        ++named;
    }
    return named < count ? text + ", ..." : text;
}

/// The name, and in front of it why there is no sound.
std::string sourceText(const Source& source) {
    const bool isThere =
        source.state == SourceState::embedded || source.state == SourceState::located;
    const std::string& name = sourceName(*source.essence);
    return isThere ? name : std::string(stateName(source.state)) + ": " + name;
}

std::string channelText(const Source* source, const AAFClipEvent& event) {
    const bool isNamed =
        source != nullptr && source->essence->channelCount > 1 && event.sourceChannel;
    return isNamed ? std::to_string(*event.sourceChannel + 1) : std::string();
}

}  // namespace

void writeClips(Markup& markup, const HandOff& handOff, const Sources& sources) {
    const AAFTimeline& timeline = handOff.timeline;
    const AAFAudibility audibility(timeline);
    const LossIndex losses(handOff.losses);
    Table table(markup, {.id = "clips",
                         .title = "clips",
                         .columns = {"track", "in", "out", "clip", "audioFile", "channel", "gain",
                                     "fadeIn", "fadeOut", "heard", "losses"},
                         .rows = timeline.events.size()});
    for (std::size_t i = 0; i < timeline.events.size(); ++i) {
        const AAFClipEvent& event = timeline.events[i];
        const AAFTrackState* const track = audibility.track(event);
        const Source* const source = sources.ofEventAt(i);
        const ClipName name = clipName(handOff, i);
        table.row()
            .nameCell(track == nullptr ? "" : trackText(track->name, track->index + 1))
            .cell(timecodeText(timeline, event.timelineStart))
            .cell(timecodeText(timeline, event.timelineEnd()))
            .nameCell(name.text != nullptr ? *name.text : std::string())
            .nameCell(source == nullptr ? event.essenceID : sourceText(*source))
            .cell(channelText(source, event))
            .cell(decibelText(event.fixedClipGain) + (event.clipGainAutomation ? " ~" : ""))
            .nameCell(event.fadeIn ? fadeText(timeline, *event.fadeIn) : "")
            .nameCell(event.fadeOut ? fadeText(timeline, *event.fadeOut) : "")
            .cell(audibility.isEventAudible(event, track) ? "" : say("no"))
            .cell(lossNumbers(losses, event));
    }
}

}  // namespace trellant::page
