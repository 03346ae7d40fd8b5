// SPDX-License-Identifier: Apache-2.0
// What can be wrong with a timeline, and with which part of it. Validation reports one such
// problem, repair lists what it did about each.
#pragma once

#include <trellant/json/named_enum.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// The rules of validation, each by what breaks it.
enum class AAFTimelineProblem : std::uint8_t {
    emptyIdentity,
    duplicateIdentity,
    invalidEditRate,
    invalidTimecodeRate,
    invalidDropFrameRate,
    invalidTimecodeLabel,
    skippedDropFrameLabel,
    negativeCompositionLength,
    invalidSampleRate,
    invalidChannelCount,
    invalidBitDepth,
    nonfiniteTrackValue,
    nonfiniteAutomation,
    automationTimeOutsideOwner,
    unorderedAutomation,
    missingTrackReference,
    missingEssenceReference,
    negativeSourceRange,
    invalidSourceChannel,
    nonfiniteClipGain,
    negativeFadeDuration,
    invalidSourceRange,
    sourceRangeOverflow,
    timelineEndOverflow
};

/// The codes: rawValue(problem) is "missing-track-reference".
template <>
struct EnumNames<AAFTimelineProblem> {
    static constexpr std::array<std::string_view, 24> names{"empty-identity",
                                                            "duplicate-identity",
                                                            "invalid-edit-rate",
                                                            "invalid-timecode-rate",
                                                            "invalid-drop-frame-rate",
                                                            "invalid-timecode-label",
                                                            "skipped-drop-frame-label",
                                                            "negative-composition-length",
                                                            "invalid-sample-rate",
                                                            "invalid-channel-count",
                                                            "invalid-bit-depth",
                                                            "nonfinite-track-value",
                                                            "nonfinite-automation",
                                                            "automation-time-outside-owner",
                                                            "unordered-automation",
                                                            "missing-track-reference",
                                                            "missing-essence-reference",
                                                            "negative-source-range",
                                                            "invalid-source-channel",
                                                            "nonfinite-clip-gain",
                                                            "negative-fade-duration",
                                                            "invalid-source-range",
                                                            "source-range-overflow",
                                                            "timeline-end-overflow"};
};

/// A part of a timeline.
struct AAFTimelinePlace {
    enum class Kind : std::uint8_t { clock, programStart, composition, track, essence, event };

    Kind kind = Kind::clock;
    /// The position of a track, essence or event in its list; absent for the other parts, and for
    /// an event that is looked at by itself.
    std::optional<std::size_t> index{};

    [[nodiscard]] static AAFTimelinePlace track(std::size_t index) { return {Kind::track, index}; }
    [[nodiscard]] static AAFTimelinePlace essence(std::size_t index) {
        return {Kind::essence, index};
    }
    [[nodiscard]] static AAFTimelinePlace event(std::size_t index) { return {Kind::event, index}; }

    /// "clock", "program-start", "composition", "track[2]", "essence[0]", "event[17]", "event".
    [[nodiscard]] std::string text() const;

    bool operator==(const AAFTimelinePlace&) const = default;
};

template <>
struct EnumNames<AAFTimelinePlace::Kind> {
    static constexpr std::array<std::string_view, 6> names{"clock", "program-start", "composition",
                                                           "track", "essence",       "event"};
};

}  // namespace trellant
