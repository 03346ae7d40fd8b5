// SPDX-License-Identifier: Apache-2.0
#include "timeline_check.h"

#include <trellant/base/url.h>
#include <trellant/model/repair.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <filesystem>
#include <system_error>

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

void lookForAudio(const AAFTimeline& timeline, const std::string& folder, TimelineCheck& finding) {
    for (const AAFSourceEssence& essence : timeline.essences) {
        if (!essence.fileURL) {
            continue;
        }
        ++finding.audioFiles;
        const auto path = pathOfReference(essence.fileURL->text, folder);
        std::error_code ignored;
        if (!path || !std::filesystem::is_regular_file(*path, ignored)) {
            finding.missingAudio.push_back(path.value_or(essence.fileURL->text));
        }
    }
}

}  // namespace

TimelineCheck checkTimeline(const std::string& text, const std::string& folder) {
    TimelineCheck finding;
    try {
        const AAFTimeline timeline = timelineIn(text);
        finding.tracks = timeline.tracks.size();
        finding.clips = timeline.events.size();
        lookForAudio(timeline, folder, finding);
        try {
            AAFRawTimelineValidation::validate(timeline);
            finding.valid = true;
        } catch (const AAFRawTimelineValidation::Failure& failure) {
            finding.failure = placeOfFailure(timeline, failure);
            // The clock may be what is at fault: timecodes are shown by a repaired one.
            finding.place = placeText(*finding.failure, repairedTimeline(timeline).timeline);
        }
    } catch (const JsonDecodingError& error) {
        finding.fault = error.what();
    }
    return finding;
}

}  // namespace trellant::cli
