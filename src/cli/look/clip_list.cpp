// SPDX-License-Identifier: Apache-2.0
// The list of clips: everything that is known of each.
#include "lists.h"
#include "short_text.h"

#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/loss_index.h>
#include <trellant/handoff/source_timecode.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/audibility.h>
#include <trellant/model/enum_names.h>
#include <trellant/model/validation.h>

#include <array>

namespace trellant::cli {

namespace {

using enum Audience;

class ClipRows {
  public:
    struct Row {
        const AAFTimeline& timeline;
        const AAFClipEvent& event;
        /// Null when the timeline has none of that id.
        const AAFTrackState* track;
        const Source* source;
        const LossIndex& losses;
        std::size_t lossCount;
        bool isAudible;
        ClipName name;
        /// Null when no tape with labels is known.
        const SourceTimecode* timecode;
    };

    explicit ClipRows(const HandOff& handOff)
        : handOff_(handOff),
          timeline_(handOff.timeline),
          sources_(handOff),
          timecodes_(handOff),
          audibility_(handOff.timeline),
          losses_(handOff.losses) {}
    [[nodiscard]] static const auto& columns();
    [[nodiscard]] std::size_t count() const { return timeline_.events.size(); }
    [[nodiscard]] Row row(std::size_t position) const {
        const AAFClipEvent& event = timeline_.events[position];
        const AAFTrackState* const track = audibility_.track(event);
        return {timeline_,
                event,
                track,
                sources_.ofEventAt(position),
                losses_,
                losses_.countTouching(event),
                audibility_.isEventAudible(event, track),
                clipName(handOff_, position),
                timecodes_.of(event.essenceID)};
    }

  private:
    const HandOff& handOff_;
    const AAFTimeline& timeline_;
    Sources sources_;
    SourceTimecodes timecodes_;
    AAFAudibility audibility_;
    LossIndex losses_;
};

using Row = ClipRows::Row;

/// The name, and in front, where a narrow column does not cut it off, why there is no sound.
void sayShownSource(const Row& row, Cell& cell) {
    if (row.source == nullptr) {
        cell.text(row.event.essenceID);
        return;
    }
    const std::string& name = sourceName(*row.source->essence);
    const bool isThere =
        row.source->state == SourceState::embedded || row.source->state == SourceState::located;
    if (isThere) {
        cell.text(name);
    } else {
        cell.text(std::string(stateText(row.source->state)) + ": " + name);
    }
}

void saySource(const Row& row, Cell& cell) {
    cell.text(row.source != nullptr ? sourceName(*row.source->essence) : row.event.essenceID);
}

/// Samples of the source that the clip plays; nothing when its source is not known.
void saySourceLength(const Row& row, Cell& cell) {
    if (row.source == nullptr) {
        return;
    }
    try {
        cell.integer(AAFRawTimelineValidation::requiredSourceEnd(row.event,
                                                                 row.source->essence->sampleRate) -
                     row.event.sourceStartSample);
    } catch (const AAFRawTimelineValidation::Failure&) {
        // Beyond all samples: the length has no number.
    }
}

/// The tape's label `later` seconds behind the first sample that the clip plays.
void saySourceTimecode(const Row& row, const AAFRational& later, Cell& cell) {
    if (row.timecode == nullptr || row.source == nullptr ||
        !(row.source->essence->sampleRate > AAFRational::zero())) {
        return;
    }
    const AAFRational start =
        AAFRational(row.event.sourceStartSample) / row.source->essence->sampleRate;
    cell.word(labelAt(*row.timecode, start + later));
}

/// People count channels from 1.
void sayChannel(const std::optional<std::int64_t>& channel, Cell& cell) {
    if (channel) {
        cell.integer(*channel + 1);
    }
}

void sayPan(const Row& row, Cell& cell) {
    if (row.track != nullptr && row.track->fixedPan) {
        cell.word(panText(*row.track->fixedPan));
    }
}

/// The numbers that a cell for people has room for.
void sayShownLosses(const Row& row, Cell& cell) {
    if (row.lossCount == 0) {
        return;
    }
    std::string text;
    const std::vector<std::size_t> positions = row.losses.touching(row.event);
    for (const std::size_t position : positions) {
        text += (text.empty() ? "" : ",") + std::to_string(position + 1);
    }
    if (positions.size() < row.lossCount) {
        text += ",...";
    }
    cell.text(text);
}

void sayLossNumbers(const Row& row, Cell& cell) {
    if (row.lossCount == 0) {
        return;
    }
    std::vector<std::size_t> numbers = row.losses.touching(row.event);
    for (std::size_t& number : numbers) {
        ++number;
    }
    cell.lossNumbers(numbers);
}

/// What is said of a fade: of `fadeIn` or `fadeOut`.
template <Boxed<AAFFade> AAFClipEvent::*fade>
struct FadeColumns {
    static void sayShort(const Row& row, Cell& cell) {
        if (row.event.*fade) {
            cell.text(shortFadeText(row.timeline, *(row.event.*fade)));
        }
    }
    static void say(const Row& row, Cell& cell) {
        if (row.event.*fade) {
            const AAFFade& it = *(row.event.*fade);
            cell.text(lengthText(row.timeline, it.duration) + " " + curveText(it.curve));
        }
    }
    static void saySeconds(const Row& row, Cell& cell) {
        if (row.event.*fade) {
            cell.number((*(row.event.*fade)).duration.doubleValue());
        }
    }
    static void sayExactSeconds(const Row& row, Cell& cell) {
        if (row.event.*fade) {
            cell.fraction((*(row.event.*fade)).duration);
        }
    }
    static void sayCurve(const Row& row, Cell& cell) {
        if (row.event.*fade) {
            cell.text(curveText((*(row.event.*fade)).curve));
        }
    }
};
using FadeIn = FadeColumns<&AAFClipEvent::fadeIn>;
using FadeOut = FadeColumns<&AAFClipEvent::fadeOut>;

constexpr Column exact(std::string_view key, std::string_view title) {
    return {key, title, details, Align::left, false, 0, true};
}

const std::array<ColumnOf<Row>, 47> clipColumns{{
    {{"", "Track", people, Align::left, true, 1},
     [](const Row& row, Cell& cell) {
         if (row.track != nullptr) {
             cell.text(trackText(row.track->name, row.track->index + 1));
         }
     }},
    {{"track", "Track", machines},
     [](const Row& row, Cell& cell) {
         if (row.track != nullptr) {
             cell.text(row.track->name);
         }
     }},
    {{"trackNumber", "Track no."},
     [](const Row& row, Cell& cell) {
         if (row.track != nullptr) {
             cell.integer(row.track->index + 1);
         }
     }},
    {{"in", "In", everyone},
     [](const Row& row, Cell& cell) {
         cell.word(timecodeText(row.timeline, row.event.timelineStart));
     }},
    {{"out", "Out", everyone, Align::left, false, 2},
     [](const Row& row, Cell& cell) {
         cell.word(timecodeText(row.timeline, row.event.timelineEnd()));
     }},
    {{"clip", "Clip", everyone, Align::left, true},
     [](const Row& row, Cell& cell) {
         if (row.name.text != nullptr) {
             cell.text(*row.name.text);
         }
     }},
    {{"clipNameFrom", "Clip named by"},
     [](const Row& row, Cell& cell) {
         if (row.name.isOfMasterMob) {
             cell.word("masterMob");
         }
     }},
    {{"", "Audio file", people, Align::left, true, 3}, sayShownSource},
    {{"source", "Audio file", machines}, saySource},
    {{"sourceState", "State"},
     [](const Row& row, Cell& cell) {
         if (row.source != nullptr) {
             cell.word(stateWord(row.source->state));
         }
     }},
    {{"sourceIn", "Source in (sample)", details, Align::right},
     [](const Row& row, Cell& cell) { cell.integer(row.event.sourceStartSample); }},
    {{"sourceLength", "Source length (samples)", details, Align::right}, saySourceLength},
    {{"sourceRate", "Source rate (Hz)", details, Align::right},
     [](const Row& row, Cell& cell) {
         if (row.source != nullptr) {
             cell.number(row.source->essence->sampleRate.doubleValue());
         }
     }},
    {{"sourceInTimecode", "Source in", everyone, Align::left, false, 7},
     [](const Row& row, Cell& cell) { saySourceTimecode(row, AAFRational::zero(), cell); }},
    {{"sourceOutTimecode", "Source out", everyone, Align::left, false, 7},
     [](const Row& row, Cell& cell) { saySourceTimecode(row, row.event.duration, cell); }},
    {{"reel", "Reel", details, Align::left, true},
     [](const Row& row, Cell& cell) {
         if (row.timecode != nullptr) {
             cell.text(row.timecode->reel);
         }
     }},
    {{"channel", "Channel"},
     [](const Row& row, Cell& cell) { cell.word(rawValue(row.event.channelRole)); }},
    {{"", "Ch.", people, Align::right, false, 8},
     [](const Row& row, Cell& cell) {
         if (row.source != nullptr && row.source->essence->channelCount > 1) {
             sayChannel(row.event.sourceChannel, cell);
         }
     }},
    {{"sourceChannel", "Source channel", details, Align::right},
     [](const Row& row, Cell& cell) { sayChannel(row.event.sourceChannel, cell); }},
    {{"startSeconds", "Start (s)"},
     [](const Row& row, Cell& cell) { cell.number(row.event.timelineStart.doubleValue()); }},
    {exact("startSecondsExact", "Start (exact s)"),
     [](const Row& row, Cell& cell) { cell.fraction(row.event.timelineStart); }},
    {{"durationSeconds", "Length (s)"},
     [](const Row& row, Cell& cell) { cell.number(row.event.duration.doubleValue()); }},
    {exact("durationSecondsExact", "Length (exact s)"),
     [](const Row& row, Cell& cell) { cell.fraction(row.event.duration); }},
    {{"length", "Length"},
     [](const Row& row, Cell& cell) { cell.word(lengthText(row.timeline, row.event.duration)); }},
    {{"", "Gain dB", people, Align::right, false, 5},
     [](const Row& row, Cell& cell) {
         cell.text(decibelText(row.event.fixedClipGain) +
                   (row.event.clipGainAutomation ? " ~" : ""));
     }},
    {{"gainDb", "Gain (dB)", machines},
     [](const Row& row, Cell& cell) { cell.decibels(row.event.fixedClipGain); }},
    {{"gain", "Gain (factor)"},
     [](const Row& row, Cell& cell) { cell.number(row.event.fixedClipGain); }},
    {{"automationPoints", "Number of gain points", details, Align::right},
     [](const Row& row, Cell& cell) {
         if (row.event.clipGainAutomation) {
             cell.integer(static_cast<std::int64_t>((*row.event.clipGainAutomation).points.size()));
         }
     }},
    {{"gainPoints", "Gain points"},
     [](const Row& row, Cell& cell) {
         if (row.event.clipGainAutomation) {
             cell.points(*row.event.clipGainAutomation);
         }
     }},
    {{"pan", "Pan"}, sayPan},
    {{"panPosition", "Pan position"},
     [](const Row& row, Cell& cell) {
         if (row.track != nullptr) {
             cell.number(row.track->fixedPan);
         }
     }},
    {{"", "Fade in", people, Align::left, false, 6}, FadeIn::sayShort},
    {{"fadeIn", "Fade in", machines}, FadeIn::say},
    {{"fadeInSeconds", "Fade in (s)"}, FadeIn::saySeconds},
    {exact("fadeInSecondsExact", "Fade in (exact s)"), FadeIn::sayExactSeconds},
    {{"fadeInCurve", "Fade in curve"}, FadeIn::sayCurve},
    {{"", "Fade out", people, Align::left, false, 6}, FadeOut::sayShort},
    {{"fadeOut", "Fade out", machines}, FadeOut::say},
    {{"fadeOutSeconds", "Fade out (s)"}, FadeOut::saySeconds},
    {exact("fadeOutSecondsExact", "Fade out (exact s)"), FadeOut::sayExactSeconds},
    {{"fadeOutCurve", "Fade out curve"}, FadeOut::sayCurve},
    {{"", "Audible", people, Align::left, false, 2},
     [](const Row& row, Cell& cell) {
         if (!row.isAudible) {
             cell.text("no");
         }
     }},
    {{"audible", "Audible", machines},
     [](const Row& row, Cell& cell) { cell.boolean(row.isAudible); }},
    {{"", "Losses", people, Align::left, false, 4}, sayShownLosses},
    {{"losses", "Losses", machines, Align::right},
     [](const Row& row, Cell& cell) { cell.integer(static_cast<std::int64_t>(row.lossCount)); }},
    {{"lossNumbers", "Loss numbers", machines}, sayLossNumbers},
    {{"id", "Id"}, [](const Row& row, Cell& cell) { cell.text(row.event.id); }},
}};

const auto& ClipRows::columns() {
    return clipColumns;
}

}  // namespace

std::unique_ptr<List> listOfClips(const HandOff& handOff) {
    return std::make_unique<ListOf<ClipRows>>(ClipRows(handOff));
}

}  // namespace trellant::cli
