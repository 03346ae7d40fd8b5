// SPDX-License-Identifier: Apache-2.0
#include "session_text.h"

#include <trellant/base/int128.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>
#include <variant>

namespace trellant::sessions {

namespace {

double quotientOf(Int128 numerator, Int128 denominator) noexcept {
    const Int128 whole = numerator / denominator;
    const Int128 rest = numerator % denominator;
    return static_cast<double>(whole) +
           static_cast<double>(rest) / static_cast<double>(denominator);
}

/// What a record without its texts and points takes at most, of a clip with its medium.
constexpr std::uint64_t recordBytes = 8192;
constexpr std::uint64_t pointBytes = 320;
/// A byte becomes this many at most: an escape of JSON.
constexpr std::uint64_t escapeBytes = 6;

std::uint64_t curveBytes(const AAFAutomationInterpolation& interpolation) noexcept {
    const auto* const unknown =
        std::get_if<AAFAutomationInterpolation::Unsupported>(&interpolation.curve);
    return unknown == nullptr ? 0 : unknown->identifier.size() * escapeBytes;
}

std::uint64_t envelopeBytes(const std::optional<AAFAutomationEnvelope>& envelope) noexcept {
    return envelope ? curveBytes(envelope->interpolation) + envelope->points.size() * pointBytes
                    : 0;
}

std::uint64_t fadeBytes(const std::optional<exchange::PlannedFade>& fade) noexcept {
    return fade ? curveBytes(fade->curve) + fade->shape.size() * pointBytes : 0;
}

std::uint64_t mediaBytes(const Session& session, std::size_t position) noexcept {
    const exchange::PlannedMedia& planned = session.plan.media[position];
    const SessionMedia& media = session.media[position];
    return recordBytes +
           escapeBytes * (planned.name.size() + planned.fileName.size() + media.reference.size() +
                          planned.recordedPath.value_or("").size());
}

}  // namespace

void TextOutput::flush() {
    if (!text_.empty()) {
        sink_(std::as_bytes(std::span(text_)));
        text_.clear();
    }
}

std::string numberText(double value) {
    constexpr double leastPlain = 1e-9;
    constexpr double leastExponential = 1e17;
    if (std::isnan(value)) {
        return "0";
    }
    value = std::clamp(value, std::numeric_limits<double>::lowest(),
                       std::numeric_limits<double>::max());
    const double size = std::abs(value);
    const bool plain = size == 0 || (size >= leastPlain && size < leastExponential);
    std::array<char, 48> text{};
    const auto written =
        std::to_chars(text.data(), text.data() + text.size(), value,
                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text.data(), written.ptr};
}

double secondsOf(exchange::Samples samples, std::int64_t rate) noexcept {
    return static_cast<double>(samples) / static_cast<double>(rate);
}

double secondsAt(const AAFRational& fraction, exchange::Samples length,
                 std::int64_t rate) noexcept {
    return quotientOf(static_cast<Int128>(fraction.numerator()) * length,
                      static_cast<Int128>(fraction.denominator()) * rate);
}

double mediaSeconds(std::int64_t sample, const AAFRational& sampleRate) noexcept {
    return sampleRate > AAFRational::zero()
               ? quotientOf(static_cast<Int128>(sample) * sampleRate.denominator(),
                            sampleRate.numerator())
               : 0;
}

std::string remarkText(const Session& session, const SessionMarker& marker) {
    return marker.track ? session.plan.tracks.at(*marker.track).name + ": " + marker.text
                        : marker.text;
}

std::uint64_t mostTextBytes(const Session& session) {
    const exchange::ExportPlan& plan = session.plan;
    std::uint64_t bytes = recordBytes + escapeBytes * plan.name.value_or(session.name).size();
    for (const SessionMarker& marker : session.markers) {
        bytes += recordBytes + escapeBytes * remarkText(session, marker).size();
    }
    for (const exchange::PlannedTrack& track : plan.tracks) {
        const std::uint64_t trackBytes = recordBytes + escapeBytes * track.name.size() +
                                         envelopeBytes(track.gainAutomation) +
                                         envelopeBytes(track.panAutomation);
        for (const exchange::Lane& lane : track.lanes) {
            bytes += trackBytes + escapeBytes * lane.name.size();
            for (const exchange::PlannedClip& clip : lane.clips) {
                bytes += recordBytes + escapeBytes * clip.name.size() + fadeBytes(clip.fadeIn) +
                         fadeBytes(clip.fadeOut) + envelopeBytes(clip.gainAutomation) +
                         mediaBytes(session, clip.media);
            }
        }
    }
    return bytes;
}

std::string startText(const AAFTimecodeAddress& start) {
    constexpr double hundred = 100;
    const double rounded = std::round(start.rate.exactRate.doubleValue() * hundred) / hundred;
    return start.description() + ", " + numberText(rounded) + " fps" +
           (start.rate.dropFrame ? " drop-frame" : "");
}

}  // namespace trellant::sessions
