// SPDX-License-Identifier: Apache-2.0
// Timecode: a frame rate with optional drop-frame counting, a label at such a rate, and the clock
// that ties timeline seconds to labels.
//
// Two doors lead to these values. Code uses the constructors with arguments, which stop the
// process when a range is broken (a programming error). The JSON decoder fills the fields as they
// are; `AAFRawTimelineValidation` reports what is out of range before anyone computes with it.
// Treat a finished value as const.
#pragma once

#include <trellant/model/rational.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// How frames are counted.
struct AAFTimecodeRate {
    /// True frame rate, frames per second (30000/1001).
    AAFRational exactRate{25, 1};
    /// Frames per second that labels count with (30).
    std::int64_t nominalFramesPerSecond = 25;
    bool dropFrame = false;

    AAFTimecodeRate() = default;
    /// Requires nominalFramesPerSecond >= 1, and 30 or 60 with drop frame; else stops the process.
    AAFTimecodeRate(AAFRational exactRate, std::int64_t nominalFramesPerSecond, bool dropFrame);

    /// Labels skipped at the head of each minute that is no multiple of ten: 0, 2 or (at 60) 4.
    [[nodiscard]] std::int64_t droppedFramesPerMinute() const noexcept;

    [[nodiscard]] static AAFTimecodeRate fps24();
    [[nodiscard]] static AAFTimecodeRate fps25();
    [[nodiscard]] static AAFTimecodeRate fps23976();
    [[nodiscard]] static AAFTimecodeRate fps2997DF();
    [[nodiscard]] static AAFTimecodeRate fps5994DF();

    bool operator==(const AAFTimecodeRate&) const = default;
};

/// One label.
struct AAFTimecodeAddress {
    std::int64_t hours = 0;
    std::int64_t minutes = 0;
    std::int64_t seconds = 0;
    std::int64_t frames = 0;
    AAFTimecodeRate rate;

    AAFTimecodeAddress() = default;
    /// Requires 0 <= hours < 24, minutes and seconds below 60, frames below the nominal rate, and
    /// a label that drop-frame counting does not skip; else stops the process.
    AAFTimecodeAddress(std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                       std::int64_t frames, const AAFTimecodeRate& rate);

    /// The label of frame `frameNumber` (>= 0, else stops the process); wraps at 24 hours.
    [[nodiscard]] static AAFTimecodeAddress fromAbsoluteFrameNumber(std::int64_t frameNumber,
                                                                    const AAFTimecodeRate& rate);

    /// "01:00:00:00", with ";" before the frames of a drop-frame rate.
    [[nodiscard]] std::string description() const;
    /// Frames since 00:00:00:00. Stops the process on overflow; a validated address never does.
    [[nodiscard]] std::int64_t absoluteFrameNumber() const;
    /// The first label that exists in this address's minute.
    [[nodiscard]] AAFTimecodeAddress startOfCurrentTimecodeMinute() const;
    [[nodiscard]] bool isAtStartOfTimecodeMinute() const;
    /// Whether drop-frame counting skips this label, so that no frame has it.
    [[nodiscard]] bool isSkipped() const noexcept;

    bool operator==(const AAFTimecodeAddress&) const = default;
};

/// From timeline seconds to labels.
struct AAFProgramClock {
    /// The composition's edit rate, edit units per second.
    AAFRational editRate{25, 1};
    AAFTimecodeRate timecodeRate;
    /// The label of timeline time zero.
    AAFTimecodeAddress timelineZero;

    /// The label at `time` (timeline seconds), to the nearest frame, never before 00:00:00:00.
    [[nodiscard]] AAFTimecodeAddress address(const AAFRational& time) const;

    /// Where a bounce starts: `explicitProgramStart` when the first audible event (timeline
    /// seconds) does not lie before it, else the first label of that event's timecode minute.
    [[nodiscard]] AAFTimecodeAddress bounceStart(
        const AAFRational& firstAudibleEvent,
        const std::optional<AAFTimecodeAddress>& explicitProgramStart) const;

    bool operator==(const AAFProgramClock&) const = default;
};

}  // namespace trellant
