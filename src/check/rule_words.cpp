// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"

#include <trellant/base/printable_text.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <limits>

namespace trellant::check {

namespace {

constexpr std::size_t longestShownName = 80;

AAFRational rationalOf(std::size_t count) {
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::int64_t>::max());
    return AAFRational(static_cast<std::int64_t>(std::min(count, most)));
}

}  // namespace

std::string inQuotes(std::string_view name) {
    return "\"" + printableText(name, longestShownName) + "\"";
}

std::string clipText(const CheckedHandOff& checked, const CheckedClip& clip) {
    const std::string* const name = clip.name.text;
    const std::string called =
        name != nullptr && !name->empty()
            ? "clip " + inQuotes(*name)
            : "clip of " + inQuotes(sourceName(*checked.sourceOf(clip).essence));
    return called + " on " + trackText(checked.trackOf(clip)) + " at " +
           timecodeText(checked.timeline(), clip.event->timelineStart);
}

std::string trackText(const CheckedTrack& track) {
    const auto& name = track.state->name;
    return name && !name->empty() ? "track " + inQuotes(*name)
                                  : "track " + std::to_string(track.state->index + 1);
}

std::string sourceText(const CheckedSource& source) {
    return "audio file " + inQuotes(sourceName(*source.essence));
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

std::string anyOf(const std::vector<AAFRational>& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += i == 0 ? "" : i + 1 == values.size() ? " or " : ", ";
        text += plainRate(values[i]);
    }
    return text;
}

std::string sentence(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    }
    return text;
}

FindingValue numberValue(const AAFRational& value) {
    return {plainRate(value), value};
}

FindingValue countValue(std::size_t count) {
    return {std::to_string(count), rationalOf(count)};
}

FindingValue textValue(std::string_view text) {
    return {std::string(text), std::nullopt};
}

FindingPlace placeOf(const CheckedHandOff& checked, const CheckedSource& source) {
    return {.clip = source.firstClip ? &checked.clips()[*source.firstClip] : nullptr,
            .source = &source};
}

}  // namespace trellant::check
