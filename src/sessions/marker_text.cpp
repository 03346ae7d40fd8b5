// SPDX-License-Identifier: Apache-2.0
// Marks as text, a line each. Audacity's labels: from and to in seconds, and the text, tabs between
// them. REAPER's list: number, name, start, end, length and colour, commas between them; "M"
// numbers places, "R" what has an extent.
#include "marker_list.h"
#include "session_text.h"

#include <trellant/base/int128.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace trellant::sessions {

namespace {

using exchange::Samples;

/// Minutes, seconds and billionths of a second, halves rounded up: "61:01.500000000". Without an
/// hour in front there is nothing that could be taken for beats.
std::string clockText(Samples samples, std::int64_t rate) {
    constexpr Int128 billion = 1'000'000'000;
    constexpr Int128 minute = 60;
    const Int128 total = (2 * samples * billion + rate) / (2 * static_cast<Int128>(rate));
    const auto digits = [](Int128 value, std::size_t width) {
        const std::string text = std::to_string(static_cast<std::int64_t>(value));
        return std::string(width - std::min(width, text.size()), '0') + text;
    };
    return digits(total / billion / minute, 1) + ":" + digits(total / billion % minute, 2) + "." +
           digits(total % billion, 9);
}

/// As one field of a list: in quotes where it needs them, quotes in it doubled.
std::string listField(std::string_view text) {
    if (text.find_first_of(",\"") == std::string_view::npos) {
        return std::string(text);
    }
    std::string field = "\"";
    for (const char byte : text) {
        field.append(byte == '"' ? 2 : 1, byte);
    }
    return field + "\"";
}

std::string_view colourOf(const Mark& mark) noexcept {
    if (!mark.kind) {
        return "";
    }
    switch (*mark.kind) {
        case MarkerKind::soundsDifferent:
            return "FFFF00";
        case MarkerKind::dropped:
            return "FF0000";
        case MarkerKind::changed:
            return "00FF00";
    }
    return "";
}

}  // namespace

void writeAudacityLabels(const Session& session, const compound::ByteSink& sink) {
    TextOutput out(sink);
    const std::int64_t rate = session.plan.rate;
    for (const Mark& mark : marksOf(session)) {
        out.add(numberText(secondsOf(mark.start, rate)), "\t",
                numberText(secondsOf(mark.start + mark.length, rate)), "\t", mark.text, "\n");
    }
    out.flush();
}

void writeReaperMarkers(const Session& session, const compound::ByteSink& sink) {
    TextOutput out(sink);
    const std::int64_t rate = session.plan.rate;
    std::size_t places = 0;
    std::size_t regions = 0;
    out.add("#,Name,Start,End,Length,Color\n");
    for (const Mark& mark : marksOf(session)) {
        const std::string start = clockText(mark.start, rate);
        if (mark.length == 0) {
            ++places;
            out.add("M", std::to_string(places), ",", listField(mark.text), ",", start, ",,,");
        } else {
            ++regions;
            out.add("R", std::to_string(regions), ",", listField(mark.text), ",", start, ",",
                    clockText(mark.start + mark.length, rate), ",", clockText(mark.length, rate),
                    ",");
        }
        out.add(colourOf(mark), "\n");
    }
    out.flush();
}

}  // namespace trellant::sessions
