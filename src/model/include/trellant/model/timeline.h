// SPDX-License-Identifier: Apache-2.0
// The timeline records: what one composition became. Plain aggregates; treat a finished record as
// const. Their JSON keys are the field names (record_fields.h holds the table of each record).
// Times and durations are seconds, rates are per second, gains are linear factors (1 leaves the
// level unchanged), pans run from 0 (left) to 1 (right).
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/base/url.h>
#include <trellant/model/rational.h>
#include <trellant/model/timecode.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// What a track or clip is in a mix.
enum class AAFStemRole { music, sounds, voice, other, unclassified };

/// The speaker that a clip's channel is meant for.
enum class AAFChannelRole { mono, left, right, center, lfe, leftSurround, rightSurround, unknown };

/// How a value moves between automation points or along a fade.
struct AAFAutomationInterpolation {
    struct Constant {
        bool operator==(const Constant&) const = default;
    };
    struct Linear {
        bool operator==(const Linear&) const = default;
    };
    struct Power {
        bool operator==(const Power&) const = default;
    };
    struct Logarithmic {
        bool operator==(const Logarithmic&) const = default;
    };
    /// A curve that the interchange file names and this model does not know.
    struct Unsupported {
        std::string identifier;
        bool operator==(const Unsupported&) const = default;
    };

    std::variant<Linear, Constant, Power, Logarithmic, Unsupported> curve{};

    [[nodiscard]] static AAFAutomationInterpolation constant() { return {Constant{}}; }
    [[nodiscard]] static AAFAutomationInterpolation linear() { return {Linear{}}; }
    [[nodiscard]] static AAFAutomationInterpolation power() { return {Power{}}; }
    [[nodiscard]] static AAFAutomationInterpolation logarithmic() { return {Logarithmic{}}; }
    [[nodiscard]] static AAFAutomationInterpolation unsupported(std::string identifier) {
        return {Unsupported{std::move(identifier)}};
    }

    bool operator==(const AAFAutomationInterpolation&) const = default;
};

/// One value at one place.
struct AAFAutomationPoint {
    /// Position within the owner (track, clip or fade): 0 its start, 1 its end. Never seconds.
    AAFRational timelineOffset{};
    double value = 0;
    bool operator==(const AAFAutomationPoint&) const = default;
};

/// Values over the length of a track, a clip or a fade.
struct AAFAutomationEnvelope {
    AAFAutomationInterpolation interpolation{};
    /// In time order.
    std::vector<AAFAutomationPoint> points{};
    bool operator==(const AAFAutomationEnvelope&) const = default;
};

/// A fade at the start or the end of a clip.
struct AAFFade {
    enum class Direction { fadeIn, fadeOut, crossfade };

    Direction direction = Direction::fadeIn;
    AAFRational duration{};
    AAFAutomationInterpolation curve{};
    /// The fade's shape; empty when the curve says it all.
    std::vector<AAFAutomationPoint> points{};
    std::optional<bool> reversesPointTime{};
    bool operator==(const AAFFade&) const = default;
};

/// One piece of audio media that events play.
struct AAFSourceEssence {
    std::string id{};
    std::optional<std::string> mobID{};
    std::optional<std::string> sourceName{};
    /// The audio file, extracted or located; absent when there is none.
    std::optional<AAFURL> fileURL{};
    /// The media was carried inside the interchange file.
    bool embedded = false;
    AAFRational sampleRate{};
    std::int64_t channelCount = 0;
    std::optional<std::int64_t> bitDepth{};
    std::optional<std::string> codec{};
    /// The path that the interchange file recorded for external media, as recorded.
    std::optional<std::string> originalPath{};
    bool operator==(const AAFSourceEssence&) const = default;
};

/// One track: mono, its settings for the whole timeline.
struct AAFTrackState {
    std::string id{};
    std::int64_t index = 0;
    std::optional<std::string> name{};
    double fixedGain = 1;
    std::optional<AAFAutomationEnvelope> gainAutomation{};
    std::optional<double> fixedPan{};
    std::optional<AAFAutomationEnvelope> panAutomation{};
    bool muted = false;
    bool solo = false;
    bool operator==(const AAFTrackState&) const = default;
};

/// Which stem something was judged to belong to, and why; hosts fill it.
struct AAFSemanticDecision {
    AAFStemRole role = AAFStemRole::unclassified;
    double confidence = 0;
    std::string reason{};
    bool operator==(const AAFSemanticDecision&) const = default;
};

/// One placement of an essence on a track.
struct AAFClipEvent {
    struct ExportTrackNameOrigin {
        std::int64_t schemaVersion = 0;
        std::string originalName;
        std::string exportedName;
        AAFStemRole role = AAFStemRole::unclassified;
        bool operator==(const ExportTrackNameOrigin&) const = default;
    };

    std::string id{};
    /// The `id` of an AAFTrackState.
    std::string trackID{};
    /// The `id` of an AAFSourceEssence.
    std::string essenceID{};
    std::optional<std::string> clipName{};
    AAFRational timelineStart{};
    AAFRational duration{};
    /// First sample of the essence that is played; the range covers ceil(duration * sampleRate).
    std::int64_t sourceStartSample = 0;
    /// Channel of a multichannel essence, from 0.
    std::optional<std::int64_t> sourceChannel{};
    AAFChannelRole channelRole = AAFChannelRole::mono;
    double fixedClipGain = 1;
    Boxed<AAFAutomationEnvelope> clipGainAutomation{};
    bool clipMuted = false;
    Boxed<AAFFade> fadeIn{};
    Boxed<AAFFade> fadeOut{};
    Boxed<AAFSemanticDecision> semanticDecision{};
    Boxed<std::vector<std::string>> exportSourceEventIDs{};
    Boxed<ExportTrackNameOrigin> exportTrackNameOrigin{};

    /// timelineStart + duration.
    [[nodiscard]] AAFRational timelineEnd() const noexcept { return timelineStart + duration; }
    bool operator==(const AAFClipEvent&) const = default;
};

/// One thing of the interchange file that was dropped or is not rendered as it was meant.
struct AAFUnsupportedFeature {
    enum class Severity {
        /// Material was dropped.
        informational,
        /// Material was kept, but does not sound as the source intends.
        renderAffecting
    };

    std::string id{};
    Severity severity = Severity::informational;
    std::string description{};
    /// Where in the interchange file: "CMOB[12]/slot[34]/SEQU[56]".
    std::optional<std::string> objectPath{};
    bool operator==(const AAFUnsupportedFeature&) const = default;
};

/// One composition.
struct AAFTimeline {
    AAFURL sourceAAF{};
    AAFProgramClock clock{};
    std::optional<AAFTimecodeAddress> explicitProgramStart{};
    std::vector<AAFSourceEssence> essences{};
    std::vector<AAFTrackState> tracks{};
    std::vector<AAFClipEvent> events{};
    std::vector<AAFUnsupportedFeature> unsupportedFeatures{};
    std::optional<std::string> compositionName{};
    std::optional<std::string> sourceApplication{};
    std::optional<AAFRational> compositionLength{};
    std::optional<bool> hasNativeTimecode{};

    /// Whether mute and solo let the event be heard; gains and fades have no say. False for an
    /// event whose `trackID` names no track. Looks through the tracks at each call: ask an
    /// AAFAudibility (audibility.h) about many events.
    [[nodiscard]] bool isEventAudible(const AAFClipEvent& event) const noexcept;
    /// The earliest start (seconds) of an audible event; absent when nothing is audible. Track ids
    /// must be unique, else the process stops; a validated timeline's are. Takes time linear in
    /// events and tracks.
    [[nodiscard]] std::optional<AAFRational> firstAudibleEventStart() const;
    /// The timecode at which a render of the mix starts: `explicitProgramStart` when the first
    /// audible event does not lie before it or nothing is audible, else the start of that event's
    /// timecode minute. Absent when nothing is audible and there is no explicit start. Needs unique
    /// track ids as firstAudibleEventStart does.
    [[nodiscard]] std::optional<AAFTimecodeAddress> bounceStart() const;

    bool operator==(const AAFTimeline&) const = default;
};

}  // namespace trellant
