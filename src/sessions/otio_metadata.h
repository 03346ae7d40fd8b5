// SPDX-License-Identifier: Apache-2.0
// What an OTIO file has no field of its own for, as records under metadata.trellant: keys and
// values as in a timeline's JSON, times as exact fractions of a second.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/json/record_traits.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace trellant::sessions {

struct OtioSessionMetadata {
    /// Samples in a second.
    std::int64_t sampleRate = 0;
    AAFRational length{};
    AAFTimecodeAddress start{};
};

/// Of each lane of a track; all but `lane` are the track's.
struct OtioTrackMetadata {
    std::optional<std::string> name{};
    /// From 0.
    std::int64_t lane = 0;
    double fixedGain = 1;
    std::optional<AAFAutomationEnvelope> gainAutomation{};
    std::optional<double> fixedPan{};
    std::optional<AAFAutomationEnvelope> panAutomation{};
    bool muted = false;
    bool solo = false;
};

/// The whole clip, also where a crossfade hides a part of it from the track.
struct OtioClipMetadata {
    AAFRational timelineStart{};
    AAFRational duration{};
    std::int64_t sourceStartSample = 0;
    std::optional<std::int64_t> sourceChannel{};
    double fixedClipGain = 1;
    std::optional<AAFAutomationEnvelope> clipGainAutomation{};
    bool clipMuted = false;
    std::optional<AAFFade> fadeIn{};
    std::optional<AAFFade> fadeOut{};
};

/// The tape or film that a source was recorded from.
struct OtioReelMetadata {
    std::string name{};
    /// Where the source's first sample lies, in seconds from the reel's zero.
    AAFRational start{};
    std::optional<std::int64_t> timecodeStart{};
    std::optional<std::int64_t> timecodeFramesPerSecond{};
    std::optional<bool> timecodeDropFrame{};
};

struct OtioMediaMetadata {
    AAFRational sampleRate{};
    std::int64_t channelCount = 0;
    std::optional<std::int64_t> bitDepth{};
    /// The one channel of the source that the file holds.
    std::optional<std::int64_t> sourceChannel{};
    std::optional<std::string> originalPath{};
    std::optional<OtioReelMetadata> reel{};
};

[[nodiscard]] OtioSessionMetadata otioMetadata(const exchange::ExportPlan& plan);
[[nodiscard]] OtioTrackMetadata otioMetadata(const exchange::PlannedTrack& track, std::size_t lane);
[[nodiscard]] OtioClipMetadata otioMetadata(const exchange::PlannedClip& clip, std::int64_t rate);
[[nodiscard]] OtioMediaMetadata otioMetadata(const exchange::PlannedMedia& media);

}  // namespace trellant::sessions

namespace trellant {

template <>
struct RecordFields<sessions::OtioSessionMetadata> {
    using R = sessions::OtioSessionMetadata;
    static constexpr auto fields =
        std::tuple{field("sampleRate", &R::sampleRate), field("length", &R::length),
                   field("start", &R::start)};
};

template <>
struct RecordFields<sessions::OtioTrackMetadata> {
    using R = sessions::OtioTrackMetadata;
    static constexpr auto fields =
        std::tuple{field("name", &R::name),           field("lane", &R::lane),
                   field("fixedGain", &R::fixedGain), field("gainAutomation", &R::gainAutomation),
                   field("fixedPan", &R::fixedPan),   field("panAutomation", &R::panAutomation),
                   field("muted", &R::muted),         field("solo", &R::solo)};
};

template <>
struct RecordFields<sessions::OtioClipMetadata> {
    using R = sessions::OtioClipMetadata;
    static constexpr auto fields = std::tuple{field("timelineStart", &R::timelineStart),
                                              field("duration", &R::duration),
                                              field("sourceStartSample", &R::sourceStartSample),
                                              field("sourceChannel", &R::sourceChannel),
                                              field("fixedClipGain", &R::fixedClipGain),
                                              field("clipGainAutomation", &R::clipGainAutomation),
                                              field("clipMuted", &R::clipMuted),
                                              field("fadeIn", &R::fadeIn),
                                              field("fadeOut", &R::fadeOut)};
};

template <>
struct RecordFields<sessions::OtioReelMetadata> {
    using R = sessions::OtioReelMetadata;
    static constexpr auto fields =
        std::tuple{field("name", &R::name), field("start", &R::start),
                   field("timecodeStart", &R::timecodeStart),
                   field("timecodeFramesPerSecond", &R::timecodeFramesPerSecond),
                   field("timecodeDropFrame", &R::timecodeDropFrame)};
};

template <>
struct RecordFields<sessions::OtioMediaMetadata> {
    using R = sessions::OtioMediaMetadata;
    static constexpr auto fields = std::tuple{
        field("sampleRate", &R::sampleRate),     field("channelCount", &R::channelCount),
        field("bitDepth", &R::bitDepth),         field("sourceChannel", &R::sourceChannel),
        field("originalPath", &R::originalPath), field("reel", &R::reel)};
};

}  // namespace trellant
