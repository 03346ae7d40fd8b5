// SPDX-License-Identifier: Apache-2.0
#include "info_output.h"
#include "list.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/summary.h>
#include <trellant/handoff/timeline_text.h>

namespace trellant::cli {

namespace {

void addCompositions(JsonLine& line, const HandOff& handOff) {
    line.objects("compositions", handOff.compositions,
                 [](JsonLine& item, const AAFWorkerExtensions::Composition& composition) {
                     item.integer("object", composition.object)
                         .text("name", composition.name)
                         .boolean("read", composition.isRead);
                 });
}

void addSeconds(JsonLine& line, const AAFTimeline& timeline, const Summary& summary) {
    if (timeline.compositionLength) {
        line.text("length", lengthText(timeline, *timeline.compositionLength))
            .fraction("lengthSecondsExact", *timeline.compositionLength)
            .number("lengthSeconds", timeline.compositionLength->doubleValue());
    }
    if (summary.firstAudible) {
        line.text("firstAudible", timecodeText(timeline, *summary.firstAudible))
            .fraction("firstAudibleSecondsExact", *summary.firstAudible)
            .number("firstAudibleSeconds", summary.firstAudible->doubleValue());
    }
}

void addClock(JsonLine& line, const AAFTimeline& timeline, const Summary& summary) {
    const AAFProgramClock clock = frameClock(timeline.clock);
    line.text("start", clock.timelineZero.description())
        .text("rate", rateText(clock.timecodeRate))
        .boolean("timecodeInFile", timeline.hasNativeTimecode.value_or(false));
    addSeconds(line, timeline, summary);
    line.fraction("editRate", clock.editRate)
        .fraction("timecodeRate", clock.timecodeRate.exactRate);
    if (const auto drift = rateDrift(clock)) {
        line.number("driftSecondsPerHour", drift->secondsPerHour)
            .text("rateDisagreement", rateDisagreement(clock));
    }
}

void addCounts(JsonLine& line, const Summary& summary) {
    line.count("tracks", summary.tracks)
        .count("clips", summary.clips)
        .count("audioFiles", summary.sources);
    for (const SourceState state :
         {SourceState::embedded, SourceState::located, SourceState::missing,
          SourceState::severalCandidates, SourceState::misfit}) {
        line.count(stateWord(state), summary.inState(state));
    }
    line.object("sampleRates", [&summary](JsonLine& rates) {
        for (const auto& [rate, sources] : summary.sampleRates) {
            rates.count(fractionText(rate), sources);
        }
    });
    line.object("bitDepths", [&summary](JsonLine& depths) {
        for (const auto& [bits, sources] : summary.bitDepths) {
            depths.count(bits == 0 ? "unknown" : std::to_string(bits), sources);
        }
    });
    line.count("losses", summary.losses)
        .count("lossesDropped", summary.dropped)
        .count("lossesSoundDifferent", summary.soundsDifferent)
        .count("lossPlaces", summary.lossPlaces);
}

void addChanges(JsonLine& line, const HandOff& handOff) {
    line.objects("changes", handOff.changes,
                 [&handOff](JsonLine& item, const DescribedChange& change) {
                     item.text("code", change.code)
                         .text("object", change.object)
                         .text("what", change.what)
                         .text("track", change.track)
                         .text("clip", change.clip)
                         .text("audioFile", change.audioFile);
                     if (change.start) {
                         item.text("timecode", timecodeText(handOff.timeline, *change.start))
                             .number("startSeconds", change.start->doubleValue())
                             .fraction("startSecondsExact", *change.start);
                     }
                 });
}

}  // namespace

std::string infoLine(const std::string& file, const HandOff& handOff) {
    const Summary summary(handOff);
    return jsonLine([&](JsonLine& line) {
        line.text("file", fileForPrograms(file))
            .text("omfVersion", handOff.olderVersion)
            .text("composition", handOff.timeline.compositionName);
        addCompositions(line, handOff);
        addClock(line, handOff.timeline, summary);
        addCounts(line, summary);
        addChanges(line, handOff);
    });
}

}  // namespace trellant::cli
