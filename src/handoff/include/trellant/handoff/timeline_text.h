// SPDX-License-Identifier: Apache-2.0
// Values of a timeline as editors read them.
#pragma once

#include <trellant/model/timeline.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// "01:00:10:12", by the timeline's clock as frameClock has it; `time` in timeline seconds.
[[nodiscard]] std::string timecodeText(const AAFTimeline& timeline, const AAFRational& time);
/// A length (seconds) as hours, minutes, seconds and frames of that clock's rate.
[[nodiscard]] std::string lengthText(const AAFTimeline& timeline, const AAFRational& length);
/// "25 fps", "29.97 fps drop-frame", "23.976 fps".
[[nodiscard]] std::string rateText(const AAFTimecodeRate& rate);
/// "23.976", "25", "48000": the common fractions by the name they go by, others with at most three
/// decimals.
[[nodiscard]] std::string plainRate(const AAFRational& rate);
/// Seconds as a fraction: "7/2", "3".
[[nodiscard]] std::string fractionText(const AAFRational& value);
/// With six decimals, rounded half away from zero: "3.500000".
[[nodiscard]] std::string decimalText(const AAFRational& value);
/// A linear factor in decibels with two decimals: "-6.02"; "-inf" for 0; an inverted signal is told
/// as such: "-6.02 inverted".
[[nodiscard]] std::string decibelText(double factor);
/// A pan position (0 left, 1 right): "L100", "C", "R25".
[[nodiscard]] std::string panText(double pan);
/// "linear", "power", the file's own name for a curve that is not known.
[[nodiscard]] std::string curveText(const AAFAutomationInterpolation& curve);
/// "mono", "stereo", "6 channels".
[[nodiscard]] std::string channelsText(std::int64_t count);

/// What a person calls a track: its name, else "track 2", else nothing.
[[nodiscard]] std::string trackText(const std::optional<std::string>& name,
                                    const std::optional<std::int64_t>& number);
/// "WAVE" or "AIFF" for what these hold plainly; any other codec by its own name.
[[nodiscard]] std::string formatText(const std::string& codec);

/// The composition counts frames at another rate than its timecode is labelled with.
struct RateDrift {
    AAFRational editRate{};
    AAFRational timecodeRate{};
    /// By how much timecodes shown here run ahead of those of a workstation that counts frames;
    /// negative where they run behind.
    double secondsPerHour = 0;
};

/// Absent where the rates agree or frameClock makes them, and where the composition does not count
/// frames but samples.
[[nodiscard]] std::optional<RateDrift> rateDrift(const AAFProgramClock& clock);
/// The drift in one sentence; absent where there is none.
[[nodiscard]] std::optional<std::string> rateDisagreement(const AAFProgramClock& clock);

}  // namespace trellant
