// SPDX-License-Identifier: Apache-2.0
// The list of clips: everything that is known of each.
#include "rows.h"
#include "short_text.h"

#include <trellant/handoff/loss_index.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/audibility.h>
#include <trellant/model/enum_names.h>
#include <trellant/model/validation.h>

#include <cmath>
#include <utility>

namespace trellant::cli {

namespace {

using enum Audience;

constexpr Field exact(std::string_view key, std::string_view title) {
    return {key, title, details, Align::left, false, 0, true};
}

std::vector<Field> clipFields() {
    return {{"", "Track", people, Align::left, true, 1},
            {"track", "Track", machines},
            {"trackNumber", "Track no."},
            {"in", "In", everyone},
            {"out", "Out", everyone, Align::left, false, 2},
            {"clip", "Clip", everyone, Align::left, true},
            {"", "Audio file", people, Align::left, true, 3},
            {"source", "Audio file", machines},
            {"sourceState", "State"},
            {"sourceIn", "Source in (sample)", details, Align::right},
            {"sourceLength", "Source length (samples)", details, Align::right},
            {"sourceRate", "Source rate (Hz)", details, Align::right},
            {"channel", "Channel"},
            {"", "Ch.", people, Align::right, false, 8},
            {"sourceChannel", "Source channel", details, Align::right},
            {"startSeconds", "Start (s)"},
            exact("startSecondsExact", "Start (exact s)"),
            {"durationSeconds", "Length (s)"},
            exact("durationSecondsExact", "Length (exact s)"),
            {"length", "Length"},
            {"", "Gain dB", people, Align::right, false, 5},
            {"gainDb", "Gain (dB)", machines},
            {"gain", "Gain (factor)"},
            {"automationPoints", "Number of gain points", details, Align::right},
            {"gainPoints", "Gain points"},
            {"pan", "Pan"},
            {"panPosition", "Pan position"},
            {"", "Fade in", people, Align::left, false, 6},
            {"fadeIn", "Fade in", machines},
            {"fadeInSeconds", "Fade in (s)"},
            {"fadeInCurve", "Fade in curve"},
            {"", "Fade out", people, Align::left, false, 7},
            {"fadeOut", "Fade out", machines},
            {"fadeOutSeconds", "Fade out (s)"},
            {"fadeOutCurve", "Fade out curve"},
            {"", "Heard", people, Align::left, false, 2},
            {"audible", "Audible", machines},
            {"", "Losses", people, Align::left, false, 4},
            {"losses", "Losses", machines},
            {"id", "Id"}};
}

/// "3f lin" for people, "00:00:00:03 linear", then seconds and curve.
void addFade(std::vector<Value>& row, const AAFTimeline& timeline, const Boxed<AAFFade>& fade) {
    if (!fade) {
        row.insert(row.end(), 4, Value());
        return;
    }
    row.emplace_back(shortFadeText(timeline, *fade));
    row.emplace_back(lengthText(timeline, fade->duration) + " " + curveText(fade->curve));
    row.emplace_back(fade->duration.doubleValue());
    row.emplace_back(curveText(fade->curve));
}

std::string numbersText(const std::vector<std::size_t>& positions, std::string_view between) {
    std::string text;
    for (const std::size_t position : positions) {
        text += text.empty() ? "" : between;
        text += std::to_string(position + 1);
    }
    return text;
}

Value textOrNothing(std::string text) {
    return text.empty() ? Value() : Value(std::move(text));
}

/// Places within the clip (0 its start, 1 its end) and factors: "0:1 1/2:0.5 1:1".
std::string pointsText(const AAFAutomationEnvelope& envelope) {
    std::string text;
    for (const AAFAutomationPoint& point : envelope.points) {
        text += text.empty() ? "" : " ";
        text += fractionText(point.timelineOffset) + ":" + cellText(point.value);
    }
    return text;
}

/// The name, and in front, where a narrow column does not cut it off, why it cannot be heard.
std::string shownSource(const AAFClipEvent& event, const Source* source) {
    if (source == nullptr) {
        return event.essenceID;
    }
    const std::string name = sourceName(*source->essence);
    const bool isThere =
        source->state == SourceState::embedded || source->state == SourceState::located;
    return isThere ? name : std::string(stateText(source->state)) + ": " + name;
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
    explicit ClipRows(const HandOff& handOff)
        : timeline_(handOff.timeline),
          sources_(handOff),
          audibility_(handOff.timeline),
          losses_(handOff.losses) {}

    [[nodiscard]] std::vector<Value> row(const AAFClipEvent& event) const {
        const AAFTrackState* const track = audibility_.track(event);
        const Source* const source = sources_.of(event);
        std::vector<Value> row;
        row.reserve(40);
        row.emplace_back(track != nullptr ? Value(trackText(track->name, track->index + 1))
                                          : Value());
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
        const bool isAudible = audibility_.isEventAudible(event);
        row.push_back(isAudible ? Value() : Value(std::string("no")));
        row.emplace_back(isAudible);
        const std::vector<std::size_t> losses = losses_.touching(event);
        row.push_back(textOrNothing(numbersText(losses, ",")));
        row.push_back(textOrNothing(numbersText(losses, " ")));
        row.emplace_back(event.id);
        return row;
    }

  private:
    static void addSource(std::vector<Value>& row, const AAFClipEvent& event,
                          const Source* source) {
        row.emplace_back(shownSource(event, source));
        row.emplace_back(source != nullptr ? sourceName(*source->essence) : event.essenceID);
        row.emplace_back(source != nullptr ? Value(std::string(stateText(source->state)))
                                           : Value());
        row.emplace_back(event.sourceStartSample);
        row.emplace_back(sourceLength(event, source));
        row.emplace_back(source != nullptr ? Value(source->essence->sampleRate.doubleValue())
                                           : Value());
        row.emplace_back(std::string(rawValue(event.channelRole)));
        const bool isChoice = source != nullptr && source->essence->channelCount > 1;
        addChannel(row, isChoice ? event.sourceChannel : std::nullopt);
        addChannel(row, event.sourceChannel);
    }

    /// People count channels from 1.
    static void addChannel(std::vector<Value>& row, std::optional<std::int64_t> channel) {
        row.emplace_back();
        if (channel) {
            row.back() = *channel + 1;
        }
    }

    void addTimes(std::vector<Value>& row, const AAFClipEvent& event) const {
        row.emplace_back(event.timelineStart.doubleValue());
        row.emplace_back(Fraction{event.timelineStart});
        row.emplace_back(event.duration.doubleValue());
        row.emplace_back(Fraction{event.duration});
        row.emplace_back(lengthText(timeline_, event.duration));
    }

    static void addMix(std::vector<Value>& row, const AAFClipEvent& event,
                       const AAFTrackState* track) {
        const bool varies = static_cast<bool>(event.clipGainAutomation);
        row.emplace_back(decibelText(event.fixedClipGain) + (varies ? " ~" : ""));
        row.emplace_back(Gain{event.fixedClipGain});
        row.emplace_back(event.fixedClipGain);
        if (varies) {
            const AAFAutomationEnvelope& envelope = *event.clipGainAutomation;
            row.emplace_back(static_cast<std::int64_t>(envelope.points.size()));
            row.emplace_back(pointsText(envelope));
        } else {
            row.insert(row.end(), 2, Value());
        }
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

Listing listClips(const HandOff& handOff) {
    const ClipRows rows(handOff);
    Listing listing{.fields = clipFields(), .rows = {}};
    listing.rows.reserve(handOff.timeline.events.size());
    for (const AAFClipEvent& event : handOff.timeline.events) {
        listing.rows.push_back(rows.row(event));
    }
    return listing;
}

}  // namespace trellant::cli
