// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>
#include <trellant/exchange/format_limits.h>
#include <trellant/xml/xml_text.h>

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

bool isControl(char32_t scalar) noexcept {
    return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0);
}

/// Without control characters, cut after the last whole character that fits.
std::string aafName(std::string_view name) {
    std::string kept;
    std::size_t units = 0;
    for (std::size_t at = 0; at < name.size();) {
        const UTF8Step step = utf8Step(name, at);
        at += step.length;
        if (isControl(step.scalar)) {
            continue;
        }
        units += step.scalar > 0xFFFF ? 2 : 1;
        if (units > mostAafUnits) {
            break;
        }
        appendUTF8(kept, step.scalar);
    }
    return kept;
}

/// A project quotes a name by a kind of quote that is not in it.
std::string reaperName(std::string_view name) {
    std::string line = plainLine(name);
    const auto holds = [&line](char quote) { return line.find(quote) != std::string::npos; };
    if (holds('"') && holds('\'') && holds('`')) {
        std::replace(line.begin(), line.end(), '`', '\'');
    }
    return line;
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

std::string nameWithin(ExportFormat format, std::string_view name) {
    switch (format) {
        case ExportFormat::aaf:
            return aafName(name);
        case ExportFormat::reaper:
            return reaperName(name);
        case ExportFormat::dawproject:
            return xml::xmlText(name);
        case ExportFormat::markers:
            return plainLine(name);
        case ExportFormat::otio:
        case ExportFormat::otioz:
            return std::string(name);
    }
    return std::string(name);
}

std::int64_t mostChannels(ExportFormat format) noexcept {
    constexpr std::int64_t ofReaper = 64;
    return format == ExportFormat::reaper ? ofReaper : std::numeric_limits<std::int64_t>::max();
}

}  // namespace trellant::exchange
