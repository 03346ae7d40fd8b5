// SPDX-License-Identifier: Apache-2.0
#include "format_limits.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <variant>

namespace trellant::exchange {

namespace {

using Interpolation = AAFAutomationInterpolation;

/// The largest numerator over 1 of a fraction of 32 bits.
constexpr double largestAafGain = 2'147'483'647.0;
/// What fits a property of 65,535 bytes: units of 2 bytes and a zero.
constexpr std::size_t mostAafUnits = 32'766;

bool isLimited(ExportFormat format, Feature feature) noexcept {
    return capability(format, feature).carriage == Carriage::limited;
}

bool isLinearOrConstant(const Interpolation& curve) noexcept {
    return std::holds_alternative<Interpolation::Linear>(curve.curve) ||
           std::holds_alternative<Interpolation::Constant>(curve.curve);
}

bool isUnknown(const Interpolation& curve) noexcept {
    return std::holds_alternative<Interpolation::Unsupported>(curve.curve);
}

/// C0 and C1 controls and DEL, in UTF-8, and what XML has no way to write.
std::string withoutControls(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if (byte < 0x20U || byte == 0x7FU) {
            continue;
        }
        if (byte == 0xC2U && next >= 0x80U && next < 0xA0U) {
            ++i;
            continue;
        }
        // U+FFFE and U+FFFF.
        if (text.substr(i).starts_with("\xEF\xBF\xBE") ||
            text.substr(i).starts_with("\xEF\xBF\xBF")) {
            i += 2;
            continue;
        }
        kept += text[i];
    }
    return kept;
}

std::string cutToUnits(std::string text, std::size_t mostUnits) {
    if (text.size() <= mostUnits) {
        return text;
    }
    std::size_t units = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::size_t bytes = byte < 0x80U ? 1 : byte < 0xE0U ? 2 : byte < 0xF0U ? 3 : 4;
        units += bytes == 4 ? 2 : 1;
        if (units > mostUnits) {
            break;
        }
        at += bytes;
    }
    text.resize(std::min(at, text.size()));
    return text;
}

}  // namespace

double gainWithin(ExportFormat format, double gain) noexcept {
    if (!isLimited(format, Feature::clipGain)) {
        return gain;
    }
    const double size = std::fabs(gain);
    return format == ExportFormat::aaf ? std::min(size, largestAafGain) : size;
}

double panWithin(ExportFormat format, double pan) noexcept {
    return isLimited(format, Feature::trackPan) ? std::clamp(pan, 0.0, 1.0) : pan;
}

Interpolation automationCurveWithin(ExportFormat format, const Interpolation& curve) {
    const bool isKept = format == ExportFormat::aaf ? !isUnknown(curve) : isLinearOrConstant(curve);
    return !isLimited(format, Feature::automationCurves) || isKept ? curve
                                                                   : Interpolation::linear();
}

Interpolation fadeCurveWithin(ExportFormat format, const Interpolation& curve) {
    const Carriage carriage = capability(format, Feature::fadeCurves).carriage;
    if (carriage == Carriage::lost) {
        return Interpolation::linear();
    }
    const bool isConstant = std::holds_alternative<Interpolation::Constant>(curve.curve);
    const bool isKept = !isUnknown(curve) && (format == ExportFormat::aaf || !isConstant);
    return carriage != Carriage::limited || isKept ? curve : Interpolation::linear();
}

std::string nameWithin(ExportFormat format, const std::string& name) {
    if (!isLimited(format, Feature::clipNames)) {
        return name;
    }
    std::string kept = withoutControls(name);
    return format == ExportFormat::aaf ? cutToUnits(std::move(kept), mostAafUnits) : kept;
}

std::int64_t mostChannels(ExportFormat format) noexcept {
    constexpr std::int64_t ofReaper = 64;
    return format == ExportFormat::reaper ? ofReaper : std::numeric_limits<std::int64_t>::max();
}

}  // namespace trellant::exchange
