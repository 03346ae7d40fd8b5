// SPDX-License-Identifier: Apache-2.0
// The field tables of the timeline records: the keys, in the documented order. A field that is
// added to a record is added here and nowhere else.
#pragma once

#include <trellant/json/record_traits.h>
#include <trellant/model/enum_names.h>
#include <trellant/model/rational.h>
#include <trellant/model/timecode.h>
#include <trellant/model/timeline.h>
#include <trellant/model/validation.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>

namespace [[gnu::visibility("default")]] trellant {

template <>
struct IntegerPair<AAFRational> {
    using Parts = std::array<std::int64_t, 2>;
    static constexpr std::array<std::string_view, 2> keys{"numerator", "denominator"};
    [[nodiscard]] static Parts parts(const AAFRational& value) noexcept {
        return {value.numerator(), value.denominator()};
    }
    [[nodiscard]] static std::optional<IntegerPairFault> fault(const Parts& parts) {
        if (parts[1] != 0) {
            return std::nullopt;
        }
        return IntegerPairFault{1, "AAFRational denominator must not be zero"};
    }
    [[nodiscard]] static AAFRational made(const Parts& parts) {
        return AAFRational(parts[0], parts[1]);
    }
};

/// A timeline that was read from JSON is valid, or the reading fails.
template <>
struct RecordCheck<AAFTimeline> {
    static void check(const AAFTimeline& timeline) { AAFRawTimelineValidation::validate(timeline); }
};

template <>
struct RecordFields<AAFTimecodeRate> {
    using R = AAFTimecodeRate;
    static constexpr auto fields =
        std::tuple{field("exactRate", &R::exactRate),
                   field("nominalFramesPerSecond", &R::nominalFramesPerSecond),
                   field("dropFrame", &R::dropFrame)};
};

template <>
struct RecordFields<AAFTimecodeAddress> {
    using R = AAFTimecodeAddress;
    static constexpr auto fields = std::tuple{
        field("hours", &R::hours), field("minutes", &R::minutes), field("seconds", &R::seconds),
        field("frames", &R::frames), field("rate", &R::rate)};
};

template <>
struct RecordFields<AAFProgramClock> {
    using R = AAFProgramClock;
    static constexpr auto fields =
        std::tuple{field("editRate", &R::editRate), field("timecodeRate", &R::timecodeRate),
                   field("timelineZero", &R::timelineZero)};
};

template <>
struct RecordFields<AAFAutomationInterpolation::Linear> {
    static constexpr std::tuple<> fields{};
};
template <>
struct RecordFields<AAFAutomationInterpolation::Constant> {
    static constexpr std::tuple<> fields{};
};
template <>
struct RecordFields<AAFAutomationInterpolation::Power> {
    static constexpr std::tuple<> fields{};
};
template <>
struct RecordFields<AAFAutomationInterpolation::Logarithmic> {
    static constexpr std::tuple<> fields{};
};
template <>
struct RecordFields<AAFAutomationInterpolation::Unsupported> {
    using R = AAFAutomationInterpolation::Unsupported;
    static constexpr auto fields = std::tuple{field("identifier", &R::identifier)};
};

template <>
struct VariantCases<AAFAutomationInterpolation> {
    static constexpr auto variant = &AAFAutomationInterpolation::curve;
    static constexpr std::array<std::string_view, 5> names{"linear", "constant", "power",
                                                           "logarithmic", "unsupported"};
};

template <>
struct RecordFields<AAFAutomationPoint> {
    using R = AAFAutomationPoint;
    static constexpr auto fields =
        std::tuple{field("timelineOffset", &R::timelineOffset), field("value", &R::value)};
};

template <>
struct RecordFields<AAFAutomationEnvelope> {
    using R = AAFAutomationEnvelope;
    static constexpr auto fields =
        std::tuple{field("interpolation", &R::interpolation), field("points", &R::points)};
};

template <>
struct RecordFields<AAFFade> {
    using R = AAFFade;
    static constexpr auto fields =
        std::tuple{field("direction", &R::direction), field("duration", &R::duration),
                   field("curve", &R::curve), field("points", &R::points),
                   field("reversesPointTime", &R::reversesPointTime)};
};

template <>
struct RecordFields<AAFSourceEssence> {
    using R = AAFSourceEssence;
    static constexpr auto fields = std::tuple{field("id", &R::id),
                                              field("mobID", &R::mobID),
                                              field("sourceName", &R::sourceName),
                                              field("fileURL", &R::fileURL),
                                              field("embedded", &R::embedded),
                                              field("sampleRate", &R::sampleRate),
                                              field("channelCount", &R::channelCount),
                                              field("bitDepth", &R::bitDepth),
                                              field("codec", &R::codec),
                                              field("originalPath", &R::originalPath)};
};

template <>
struct RecordFields<AAFTrackState> {
    using R = AAFTrackState;
    static constexpr auto fields = std::tuple{field("id", &R::id),
                                              field("index", &R::index),
                                              field("name", &R::name),
                                              field("fixedGain", &R::fixedGain),
                                              field("gainAutomation", &R::gainAutomation),
                                              field("fixedPan", &R::fixedPan),
                                              field("panAutomation", &R::panAutomation),
                                              field("muted", &R::muted),
                                              field("solo", &R::solo)};
};

template <>
struct RecordFields<AAFSemanticDecision> {
    using R = AAFSemanticDecision;
    static constexpr auto fields = std::tuple{
        field("role", &R::role), field("confidence", &R::confidence), field("reason", &R::reason)};
};

template <>
struct RecordFields<AAFClipEvent::ExportTrackNameOrigin> {
    using R = AAFClipEvent::ExportTrackNameOrigin;
    static constexpr auto fields = std::tuple{
        field("schemaVersion", &R::schemaVersion), field("originalName", &R::originalName),
        field("exportedName", &R::exportedName), field("role", &R::role)};
};

template <>
struct RecordFields<AAFClipEvent> {
    using R = AAFClipEvent;
    static constexpr auto fields =
        std::tuple{field("id", &R::id),
                   field("trackID", &R::trackID),
                   field("essenceID", &R::essenceID),
                   field("clipName", &R::clipName),
                   field("timelineStart", &R::timelineStart),
                   field("duration", &R::duration),
                   field("sourceStartSample", &R::sourceStartSample),
                   field("sourceChannel", &R::sourceChannel),
                   field("channelRole", &R::channelRole),
                   field("fixedClipGain", &R::fixedClipGain),
                   field("clipGainAutomation", &R::clipGainAutomation),
                   field("clipMuted", &R::clipMuted),
                   field("fadeIn", &R::fadeIn),
                   field("fadeOut", &R::fadeOut),
                   field("semanticDecision", &R::semanticDecision),
                   field("exportSourceEventIDs", &R::exportSourceEventIDs),
                   field("exportTrackNameOrigin", &R::exportTrackNameOrigin)};
};

template <>
struct RecordFields<AAFUnsupportedFeature> {
    using R = AAFUnsupportedFeature;
    static constexpr auto fields =
        std::tuple{field("id", &R::id), field("severity", &R::severity),
                   field("description", &R::description), field("objectPath", &R::objectPath)};
};

template <>
struct RecordFields<AAFTimeline> {
    using R = AAFTimeline;
    static constexpr auto fields =
        std::tuple{field("sourceAAF", &R::sourceAAF),
                   field("clock", &R::clock),
                   field("explicitProgramStart", &R::explicitProgramStart),
                   field("essences", &R::essences),
                   field("tracks", &R::tracks),
                   field("events", &R::events),
                   field("unsupportedFeatures", &R::unsupportedFeatures),
                   field("compositionName", &R::compositionName),
                   field("sourceApplication", &R::sourceApplication),
                   field("compositionLength", &R::compositionLength),
                   field("hasNativeTimecode", &R::hasNativeTimecode)};
};

}  // namespace trellant
