// SPDX-License-Identifier: Apache-2.0

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/enum_names.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <variant>

namespace trellant {

namespace {

struct NamedRate {
    std::int64_t numerator;
    std::int64_t denominator;
    std::string_view name;
};

/// Broadcast rates are known by a rounded name, not by their fraction.
constexpr std::array<NamedRate, 5> namedRates{{{24000, 1001, "23.976"},
                                               {30000, 1001, "29.97"},
                                               {48000, 1001, "47.952"},
                                               {60000, 1001, "59.94"},
                                               {120000, 1001, "119.88"}}};

std::string fixedPoint(double value, int decimals) {
    // Room for the largest double.
    std::array<char, 512> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                       std::chars_format::fixed, decimals);
    return std::string(text.data(), written.ptr);
}

std::string withoutTrailingZeros(std::string text) {
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text;
}

}  // namespace

std::string timecodeText(const AAFTimeline& timeline, const AAFRational& time) {
    return frameClock(timeline.clock).address(time).description();
}

std::string lengthText(const AAFTimeline& timeline, const AAFRational& length) {
    const AAFTimecodeRate rate = frameClock(timeline.clock).timecodeRate;
    const std::int64_t frames = (length * rate.exactRate).roundedInt64();
    return AAFTimecodeAddress::fromAbsoluteFrameNumber(frames < 0 ? 0 : frames, rate).description();
}

std::string plainRate(const AAFRational& rate) {
    if (rate.denominator() == 1) {
        return std::to_string(rate.numerator());
    }
    for (const NamedRate& named : namedRates) {
        if (rate == AAFRational(named.numerator, named.denominator)) {
            return std::string(named.name);
        }
    }
    return withoutTrailingZeros(fixedPoint(rate.doubleValue(), 3));
}

std::string rateText(const AAFTimecodeRate& rate) {
    return plainRate(rate.exactRate) + (rate.dropFrame ? " fps drop-frame" : " fps");
}

std::string fractionText(const AAFRational& value) {
    std::string text = std::to_string(value.numerator());
    if (value.denominator() != 1) {
        text += '/' + std::to_string(value.denominator());
    }
    return text;
}

std::string decimalText(const AAFRational& value) {
    return fixedPoint(value.doubleValue(), 6);
}

std::string decibelText(double factor) {
    if (factor == 0) {
        return "-inf";
    }
    std::string text = fixedPoint(20 * std::log10(std::fabs(factor)), 2);
    if (text == "-0.00") {
        text = "0.00";
    }
    return factor < 0 ? text + " inverted" : text;
}

std::string panText(double pan) {
    const auto percent = std::lround((pan - 0.5) * 200);
    if (percent == 0) {
        return "C";
    }
    return (percent < 0 ? "L" : "R") + std::to_string(std::labs(percent));
}

std::string curveText(const AAFAutomationInterpolation& curve) {
    struct Name {
        std::string operator()(const AAFAutomationInterpolation::Linear&) const { return "linear"; }
        std::string operator()(const AAFAutomationInterpolation::Constant&) const {
            return "constant";
        }
        std::string operator()(const AAFAutomationInterpolation::Power&) const { return "power"; }
        std::string operator()(const AAFAutomationInterpolation::Logarithmic&) const {
            return "logarithmic";
        }
        std::string operator()(const AAFAutomationInterpolation::Unsupported& other) const {
            return other.identifier;
        }
    };
    return std::visit(Name{}, curve.curve);
}

std::string channelsText(std::int64_t count) {
    if (count == 1) {
        return "mono";
    }
    return count == 2 ? "stereo" : std::to_string(count) + " channels";
}

std::string trackText(const std::optional<std::string>& name,
                      const std::optional<std::int64_t>& number) {
    if (name && !name->empty()) {
        return *name;
    }
    return number ? "track " + std::to_string(*number) : "";
}

std::string formatText(const std::string& codec) {
    if (codec == "PCM" || codec == "WAVD") {
        return "WAVE";
    }
    if (codec == "NONE" || codec == "AIFD") {
        return "AIFF";
    }
    return codec;
}

std::optional<RateDrift> rateDrift(const AAFProgramClock& given) {
    const AAFProgramClock clock = frameClock(given);
    const AAFRational& labelled = clock.timecodeRate.exactRate;
    if (clock.editRate == labelled || labelled.numerator() <= 0 ||
        clock.editRate.numerator() <= 0) {
        return std::nullopt;
    }
    const double ratio = (clock.editRate / labelled).doubleValue();
    // An edit rate of another kind (samples per second) is no disagreement about frames.
    constexpr double sameKind = 0.005;
    const AAFRational highestFrameRate(120);
    const bool bothCountFrames = clock.editRate <= highestFrameRate && labelled <= highestFrameRate;
    if (!bothCountFrames && std::fabs(ratio - 1) > sameKind) {
        return std::nullopt;
    }
    constexpr double secondsPerHour = 3600;
    return RateDrift{clock.editRate, labelled, (1 - ratio) * secondsPerHour};
}

std::optional<std::string> rateDisagreement(const AAFProgramClock& clock) {
    const std::optional<RateDrift> drift = rateDrift(clock);
    if (!drift) {
        return std::nullopt;
    }
    return "The composition counts " + plainRate(drift->editRate) +
           " frames per second, but its timecode is labelled with " +
           plainRate(drift->timecodeRate) + ": timecodes shown here run " +
           (drift->secondsPerHour > 0 ? "ahead of" : "behind") +
           " those of a workstation that counts frames by " +
           withoutTrailingZeros(fixedPoint(std::fabs(drift->secondsPerHour), 2)) +
           " seconds per hour.";
}

}  // namespace trellant
