// SPDX-License-Identifier: Apache-2.0
// A timeline as a session of today's tools: whole samples at one rate, clips that do not overlap in
// a lane but in a crossfade, and media files by name. All formats are written from a plan, so that
// what they say of one hand-off agrees.
#pragma once

#include <trellant/model/timecode.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace exchange {

/// Samples at the session's rate.
using Samples = std::int64_t;

/// No position or length of a plan is larger: doubles hold all of these exactly, and a session at
/// 384,000 samples in a second that lasts for centuries stays within it.
inline constexpr Samples mostSamples = std::int64_t{1} << 53U;

/// What falls between two samples and was moved to the nearest one, halves away from zero.
struct Rounding {
    std::size_t count = 0;
    /// In samples of the rate that was rounded to, 0 to 1/2.
    AAFRational largestError{};
    bool operator==(const Rounding&) const = default;
};

/// The labels of a tape or film.
struct ReelTimecode {
    /// The label of the reel's zero, in frames from 00:00:00:00; 0 or more.
    std::int64_t start = 0;
    /// Frames that labels count in a second, 1 or more.
    std::int64_t framesPerSecond = 25;
    bool dropFrame = false;
    /// Frames in a second of real time; absent: as such labels usually last.
    std::optional<AAFRational> rate{};
    bool operator==(const ReelTimecode&) const = default;
};

/// The tape or film that a source was recorded from.
struct PlannedReel {
    /// Tells reels of one name apart.
    std::string id{};
    std::string name{};
    /// Where the source's first sample lies, in seconds from the reel's zero.
    AAFRational start{};
    std::optional<ReelTimecode> timecode{};
    bool operator==(const PlannedReel&) const = default;
};

/// An audio file of the session, or one channel of a source as a file of its own.
struct PlannedMedia {
    /// Position in the timeline's essences.
    std::size_t essence = 0;
    /// The source's id in the timeline, which tells it apart from those of other hand-offs too.
    std::string essenceID{};
    /// The one channel (from 0) that the file holds of a source with several; absent where it holds
    /// the source as it is.
    std::optional<std::int64_t> channel{};
    /// What a person calls the source.
    std::string name{};
    /// "Anna.wav", "Theme.ch2.wav": unique in the plan, upper and lower case taken for the same,
    /// and a file name on every system.
    std::string fileName{};
    AAFRational sampleRate{};
    std::int64_t channelCount = 1;
    std::optional<std::int64_t> bitDepth{};
    bool isFloatingPoint = false;
    /// Samples of one channel in the file; without a file, what the clips need of it.
    std::int64_t frames = 0;
    /// There is no such file: clips of it are offline.
    bool isOffline = false;
    /// Where the hand-off says that the file lies, as recorded.
    std::optional<std::string> recordedPath{};
    std::optional<PlannedReel> reel{};
    bool operator==(const PlannedMedia&) const = default;
};

struct PlannedFade {
    /// 1 or more, never longer than the clip.
    Samples length = 0;
    AAFAutomationInterpolation curve{};
    /// The fade's own shape, where the curve does not say it all.
    std::vector<AAFAutomationPoint> shape{};
    /// The length as the hand-off has it, in seconds; absent for a fade that is cut to its clip,
    /// and in a plan that is made of samples.
    std::optional<AAFRational> exactLength{};
    bool operator==(const PlannedFade&) const = default;
};

struct PlannedClip {
    /// Position in the timeline's events.
    std::size_t event = 0;
    /// What a person calls the clip; the media's name for a clip that neither has a name nor was
    /// given one (PlanRequest::clipNames).
    std::string name{};
    /// Position in ExportPlan::media.
    std::size_t media = 0;
    /// 0 or more.
    Samples start = 0;
    /// 1 or more.
    Samples length = 0;
    /// The first sample played, counted in the media's own samples: exact.
    std::int64_t sourceStart = 0;
    /// The same moment at the session's rate, rounded; equal to sourceStart where the rates agree.
    Samples sourceStartAtSessionRate = 0;
    /// The channel (from 0) of a media file with several that is played; absent: all of them.
    std::optional<std::int64_t> channel{};
    std::optional<PlannedFade> fadeIn{};
    std::optional<PlannedFade> fadeOut{};
    /// A linear factor.
    double gain = 1;
    /// Multiplies `gain`; its points' places are fractions of the clip.
    std::optional<AAFAutomationEnvelope> gainAutomation{};
    bool muted = false;
    /// This clip's fade-in and the fade-out of the one before it in its lane are a crossfade: same
    /// place, length and curve, and the clips overlap by just that length.
    bool crossfadesIn = false;
    /// Start and length as the hand-off has them, in seconds; absent in a plan that is made of
    /// samples.
    std::optional<AAFRational> exactStart{};
    std::optional<AAFRational> exactLength{};
    bool operator==(const PlannedClip&) const = default;

    [[nodiscard]] Samples end() const noexcept { return start + length; }
};

/// Clips by ascending start; none begins before the end of the one before it, unless it crossfades
/// with it or overlaps were to be kept.
struct Lane {
    /// The track's name, of further lanes with a number: "Dialog", "Dialog (2)".
    std::string name{};
    std::vector<PlannedClip> clips{};
    bool operator==(const Lane&) const = default;
};

struct PlannedTrack {
    /// Position in the timeline's tracks.
    std::size_t track = 0;
    std::string name{};
    double gain = 1;
    /// Points' places are fractions of ExportPlan::length.
    std::optional<AAFAutomationEnvelope> gainAutomation{};
    /// 0 left, 1 right; absent for none of its own.
    std::optional<double> pan{};
    std::optional<AAFAutomationEnvelope> panAutomation{};
    bool muted = false;
    bool solo = false;
    /// At least one.
    std::vector<Lane> lanes{};
    bool operator==(const PlannedTrack&) const = default;
};

struct ExportPlan {
    /// The composition's name; absent for one without.
    std::optional<std::string> name{};
    /// Samples in a second.
    std::int64_t rate = 48'000;
    /// The label of sample 0.
    AAFTimecodeAddress start{};
    /// Up to the end of the last clip, and not below the composition's own length.
    Samples length = 0;
    std::vector<PlannedTrack> tracks{};
    std::vector<PlannedMedia> media{};
    /// Edges of clips and fades.
    Rounding edges{};
    /// Source starts of media at another rate, at the session's rate.
    Rounding sourceStarts{};
    bool operator==(const ExportPlan&) const = default;
};

/// What is known of a source's file beyond its record.
struct MediaFacts {
    std::int64_t channelCount = 1;
    std::optional<std::int64_t> bitDepth{};
    bool isFloatingPoint = false;
    /// Samples of one channel; absent where the file does not tell.
    std::optional<std::int64_t> frames{};
};

struct PlanRequest {
    /// Samples in a second, 1 to 384,000; absent: the commonest rate of the sources that clips
    /// play, the higher one of two that are as common, 48,000 where no clip has one.
    std::optional<std::int64_t> rate{};
    /// A clip that plays one channel of several gets a file of that channel alone.
    bool splitsChannels = false;
    /// Clips that overlap stay in one lane: the target plays them as they lie.
    bool keepsOverlaps = false;
    /// By position in the timeline's essences: the file's facts; absent for a source without a
    /// file. Shorter than the essences: the others have no file.
    std::vector<std::optional<MediaFacts>> mediaFacts{};
    /// By essence id.
    std::map<std::string, PlannedReel> reels{};
    /// By position in the timeline's events: what clips are called that have no name of their own.
    std::map<std::size_t, std::string> clipNames{};
    /// By position in the timeline's essences: what the files of sources are called, without an
    /// extension, that are not named after the source.
    std::map<std::size_t, std::string> fileNames{};
};

/// Something of the timeline that no session can hold, whatever its format.
struct PlanLoss {
    enum class Kind {
        /// The clip lasts for less than half a sample.
        shorterThanASample,
        /// The clip ends before the start of the timeline, or at it.
        beforeTheStart,
        /// The clip begins before the start of the timeline: what lies there was cut off.
        headBeforeTheStart,
        /// The clip lies beyond what is counted in samples (mostSamples).
        beyondTheRange,
        /// A fade was longer than its clip and ends with it.
        fadeLongerThanClip,
    };
    Kind kind;
    /// Position in the timeline's events.
    std::size_t event;
    bool operator==(const PlanLoss&) const = default;
};

struct PlannedSession {
    ExportPlan plan{};
    /// In order of the timeline's events.
    std::vector<PlanLoss> losses{};
};

/// `timeline` must have passed validation. Takes time in proportion to it, up to sorting. Throws
/// std::invalid_argument for a rate out of range.
[[nodiscard]] PlannedSession planSession(const AAFTimeline& timeline, const PlanRequest& request);

}  // namespace exchange
}  // namespace trellant
