// SPDX-License-Identifier: Apache-2.0
#include "timeline_check.h"

#include "process/packed_texts.h"

#include <trellant/base/url.h>
#include <trellant/handoff/changes.h>
#include <trellant/model/repair.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

namespace trellant::cli {

namespace {

/// The timeline of a result, or a timeline by itself, without its checks.
AAFTimeline timelineIn(const std::string& text) {
    try {
        return decodeResult(text, TimelineChecks::none).timeline;
    } catch (const JsonDecodingError& asResult) {
        try {
            return decodeJson<AAFTimeline>(text, TimelineChecks::none);
        } catch (const JsonDecodingError&) {
            // A fault inside "timeline" is one of a result; at the outermost level either may be
            // meant, and the timeline says more.
            if (asResult.keyPath().starts_with("timeline.")) {
                throw JsonDecodingError(asResult.keyPath(), asResult.reason(), asResult.kind());
            }
            throw;
        }
    }
}

std::vector<NamedAudio> namedAudio(const AAFTimeline& timeline, const std::string& folder) {
    std::vector<NamedAudio> audio;
    for (const AAFSourceEssence& essence : timeline.essences) {
        if (essence.fileURL) {
            const auto path = pathOfReference(essence.fileURL->text, folder);
            audio.push_back(
                {.name = path.value_or(essence.fileURL->text), .isPath = path.has_value()});
        }
    }
    return audio;
}

/// The texts of an answer before those of its audio.
constexpr std::size_t leadingTexts = 8;
constexpr std::string_view yes = "yes";
constexpr std::string_view pathMark = "p";
constexpr std::string_view noPathMark = "n";

std::string flag(bool value) {
    return std::string(value ? yes : "");
}

std::optional<std::size_t> countIn(const std::string& text) {
    std::size_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, count);
    return fault == std::errc{} && stop == end ? std::optional(count) : std::nullopt;
}

}  // namespace

TimelineCheck checkTimeline(const std::string& text, const std::string& folder) {
    TimelineCheck finding;
    try {
        const AAFTimeline timeline = timelineIn(text);
        finding.tracks = timeline.tracks.size();
        finding.clips = timeline.events.size();
        finding.audio = namedAudio(timeline, folder);
        try {
            AAFRawTimelineValidation::validate(timeline);
            finding.valid = true;
        } catch (const AAFRawTimelineValidation::Failure& failure) {
            const DescribedChange described = placeOfFailure(timeline, failure);
            finding.failure = {.code = described.code, .object = described.object};
            // The clock may be what is at fault: timecodes are shown by a repaired one.
            finding.place = placeText(described, repairedTimeline(timeline).timeline);
        }
    } catch (const JsonDecodingError& error) {
        finding.fault = error.what();
    }
    return finding;
}

std::vector<std::string> missingAudio(const TimelineCheck& check) {
    std::vector<std::string> missing;
    for (const NamedAudio& audio : check.audio) {
        std::error_code ignored;
        if (!audio.isPath || !std::filesystem::is_regular_file(audio.name, ignored)) {
            missing.push_back(audio.name);
        }
    }
    return missing;
}

std::string packedCheck(const TimelineCheck& check) {
    std::vector<std::string> texts{flag(check.valid),
                                   flag(check.failure.has_value()),
                                   check.failure ? check.failure->code : "",
                                   check.failure ? check.failure->object : "",
                                   check.place,
                                   check.fault,
                                   std::to_string(check.tracks),
                                   std::to_string(check.clips)};
    texts.reserve(leadingTexts + check.audio.size());
    for (const NamedAudio& audio : check.audio) {
        texts.push_back(std::string(audio.isPath ? pathMark : noPathMark) + audio.name);
    }
    return packedTexts(texts);
}

std::optional<TimelineCheck> unpackedCheck(std::string_view packed) {
    auto texts = unpackedTexts(packed);
    if (!texts || texts->size() < leadingTexts) {
        return std::nullopt;
    }
    const auto text = [&](std::size_t index) { return std::move((*texts)[index]); };
    TimelineCheck check{.valid = text(0) == yes};
    if (text(1) == yes) {
        check.failure = {.code = text(2), .object = text(3)};
    }
    check.place = text(4);
    check.fault = text(5);
    const auto tracks = countIn(text(6));
    const auto clips = countIn(text(7));
    if (!tracks || !clips) {
        return std::nullopt;
    }
    check.tracks = *tracks;
    check.clips = *clips;
    for (std::size_t i = leadingTexts; i < texts->size(); ++i) {
        const std::string& marked = (*texts)[i];
        check.audio.push_back({.name = marked.substr(std::min<std::size_t>(marked.size(), 1)),
                               .isPath = marked.starts_with(pathMark)});
    }
    return check;
}

}  // namespace trellant::cli
