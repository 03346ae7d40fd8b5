// The list of clips: everything that is known of each.
#include "loss_index.h"
#include "rows.h"
#include "sources.h"
#include "timeline_text.h"

#include <trellant/model/audibility.h>
#include <trellant/model/enum_names.h>
#include <trellant/model/validation.h>

#include <cmath>
#include <utility>

namespace trellant::cli {

namespace {

std::vector<Field> clipFields() {
    return {{"track", "Track", true, Align::left, true},
            {"trackNumber", "Track no.", false, Align::right},
            {"in", "In", true},
            {"out", "Out", true},
            {"clip", "Clip", true, Align::left, true},
            {"source", "Audio file", true, Align::left, true},
            {"sourceState", "State"},
            {"sourceIn", "Source in (sample)", false, Align::right},
            {"sourceLength", "Source length (samples)", false, Align::right},
            {"sourceRate", "Source rate (Hz)", false, Align::right},
            {"channel", "Channel"},
            {"sourceChannel", "Source channel", false, Align::right},
            {"startSeconds", "Start (s)"},
            {"startSecondsExact", "Start (exact s)"},
            {"durationSeconds", "Length (s)"},
            {"durationSecondsExact", "Length (exact s)"},
            {"length", "Length"},
            {"gainDb", "Gain (dB)", true, Align::right},
            {"gain", "Gain (factor)"},
            {"automationPoints", "Gain points", false, Align::right},
            {"pan", "Pan"},
            {"panPosition", "Pan position"},
            {"fadeIn", "Fade in", true},
            {"fadeInSeconds", "Fade in (s)"},
            {"fadeInCurve", "Fade in curve"},
            {"fadeOut", "Fade out", true},
            {"fadeOutSeconds", "Fade out (s)"},
            {"fadeOutCurve", "Fade out curve"},
            {"audible", "Audible", true},
            {"losses", "Losses", true},
            {"id", "Id"}};
}

/// "00:00:00:12 linear" for people, then seconds and curve.
void addFade(std::vector<Value>& row, const AAFTimeline& timeline, const Boxed<AAFFade>& fade) {
    if (!fade) {
        row.insert(row.end(), 3, Value());
        return;
    }
    row.emplace_back(lengthText(timeline, fade->duration) + " " + curveText(fade->curve));
    row.emplace_back(fade->duration.doubleValue());
    row.emplace_back(curveText(fade->curve));
}

std::string numbersText(const std::vector<std::size_t>& positions) {
    std::string text;
    for (const std::size_t position : positions) {
        text += (text.empty() ? "" : " ") + std::to_string(position + 1);
    }
    return text;
}

/// Samples of the source that the event plays; absent when its source is not known.
Value sourceLength(const AAFClipEvent& event, const Source* source) {
    if (source == nullptr) {
        return {};
    }
    try {
        return AAFRawTimelineValidation::requiredSourceEnd(event, source->essence->sampleRate) -
               event.sourceStartSample;
    } catch (const AAFRawTimelineValidation::Failure&) {
        return {};
    }
}

class ClipRows {
  public:
    explicit ClipRows(const Inspection& inspection)
        : timeline_(inspection.timeline),
          sources_(inspection.timeline, inspection.ambiguousEssences),
          audibility_(inspection.timeline),
          losses_(inspection.losses) {}

    [[nodiscard]] std::vector<Value> row(const AAFClipEvent& event) const {
        const AAFTrackState* const track = audibility_.track(event);
        const Source* const source = sources_.of(event);
        std::vector<Value> row;
        row.reserve(32);
        row.emplace_back(track != nullptr && track->name ? Value(*track->name) : Value());
        row.emplace_back(track != nullptr ? Value(track->index + 1) : Value());
        row.emplace_back(timecodeText(timeline_, event.timelineStart));
        row.emplace_back(timecodeText(timeline_, event.timelineEnd()));
        row.emplace_back(event.clipName ? Value(*event.clipName) : Value());
        addSource(row, event, source);
        addTimes(row, event);
        addMix(row, event, track);
        addFade(row, timeline_, event.fadeIn);
        addFade(row, timeline_, event.fadeOut);
        row.emplace_back(audibility_.isEventAudible(event));
        const std::string losses = numbersText(losses_.touching(event));
        row.emplace_back(losses.empty() ? Value() : Value(losses));
        row.emplace_back(event.id);
        return row;
    }

  private:
    static void addSource(std::vector<Value>& row, const AAFClipEvent& event,
                          const Source* source) {
        row.emplace_back(source != nullptr ? sourceName(*source->essence) : event.essenceID);
        row.emplace_back(source != nullptr ? Value(std::string(stateText(source->state)))
                                           : Value());
        row.emplace_back(event.sourceStartSample);
        row.emplace_back(sourceLength(event, source));
        row.emplace_back(source != nullptr ? Value(source->essence->sampleRate.doubleValue())
                                           : Value());
        row.emplace_back(std::string(rawValue(event.channelRole)));
        // People count channels from 1.
        row.emplace_back(event.sourceChannel ? Value(*event.sourceChannel + 1) : Value());
    }

    void addTimes(std::vector<Value>& row, const AAFClipEvent& event) const {
        row.emplace_back(event.timelineStart.doubleValue());
        row.emplace_back(fractionText(event.timelineStart));
        row.emplace_back(event.duration.doubleValue());
        row.emplace_back(fractionText(event.duration));
        row.emplace_back(lengthText(timeline_, event.duration));
    }

    static void addMix(std::vector<Value>& row, const AAFClipEvent& event,
                       const AAFTrackState* track) {
        row.emplace_back(Gain{event.fixedClipGain});
        row.emplace_back(event.fixedClipGain);
        row.emplace_back(event.clipGainAutomation
                             ? Value(static_cast<std::int64_t>(
                                   std::as_const(event.clipGainAutomation)->points.size()))
                             : Value());
        const bool panned = track != nullptr && track->fixedPan;
        row.emplace_back(panned ? Value(panText(*track->fixedPan)) : Value());
        row.emplace_back(panned ? Value(*track->fixedPan) : Value());
    }

    const AAFTimeline& timeline_;
    Sources sources_;
    AAFAudibility audibility_;
    LossIndex losses_;
};

}  // namespace

Listing listClips(const Inspection& inspection) {
    const ClipRows rows(inspection);
    Listing listing{.fields = clipFields(), .rows = {}};
    listing.rows.reserve(inspection.timeline.events.size());
    for (const AAFClipEvent& event : inspection.timeline.events) {
        listing.rows.push_back(rows.row(event));
    }
    return listing;
}

}  // namespace trellant::cli
