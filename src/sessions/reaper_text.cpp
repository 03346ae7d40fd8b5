// SPDX-License-Identifier: Apache-2.0
#include "reaper_text.h"

#include <trellant/exchange/format_limits.h>

#include <algorithm>
#include <array>
#include <variant>

namespace trellant::sessions {

namespace {

constexpr std::string_view quotes = "\"'`";

/// A kind of quote that `text` does not hold; 0 where it holds all.
char freeQuote(std::string_view text) noexcept {
    for (const char quote : quotes) {
        if (text.find(quote) == std::string_view::npos) {
            return quote;
        }
    }
    return 0;
}

struct FrameRate {
    AAFRational rate;
    bool dropFrame;
    /// Its number in a project's list of rates.
    std::string_view choice;
    /// 0, 1 drop-frame, 2 below a whole number without it.
    std::string_view counting;
};

}  // namespace

std::string reaperField(std::string_view text) {
    const std::string name = exchange::nameWithin(exchange::ExportFormat::reaper, text);
    const char quote = freeQuote(name);
    return quote + name + quote;
}

std::string_view reaperFadeShape(const AAFAutomationInterpolation& curve) noexcept {
    // 0 is linear, 1 rises quickly first, 2 slowly first.
    if (std::holds_alternative<AAFAutomationInterpolation::Power>(curve.curve)) {
        return "1";
    }
    return std::holds_alternative<AAFAutomationInterpolation::Logarithmic>(curve.curve) ? "2" : "0";
}

std::optional<std::string> reaperTimeMode(const AAFTimecodeRate& rate) {
    static const std::array<FrameRate, 8> known{{{AAFRational(24'000, 1001), false, "0", "2"},
                                                 {AAFRational(24), false, "1", "0"},
                                                 {AAFRational(25), false, "2", "0"},
                                                 {AAFRational(30'000, 1001), true, "3", "1"},
                                                 {AAFRational(30'000, 1001), false, "4", "2"},
                                                 {AAFRational(30), false, "5", "0"},
                                                 {AAFRational(50), false, "8", "0"},
                                                 {AAFRational(60), false, "9", "0"}}};
    const auto* const found =
        std::find_if(known.begin(), known.end(), [&rate](const FrameRate& candidate) {
            return candidate.rate == rate.exactRate && candidate.dropFrame == rate.dropFrame;
        });
    if (found == known.end()) {
        return std::nullopt;
    }
    // 5 is the ruler of hours, minutes, seconds and frames.
    return "5 " + std::string(found->choice) + " -1 " +
           std::to_string(rate.nominalFramesPerSecond) + " " + std::string(found->counting) +
           " -1 0 0";
}

}  // namespace trellant::sessions
