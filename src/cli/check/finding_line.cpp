// SPDX-License-Identifier: Apache-2.0
#include "verdict_report.h"

#include <trellant/handoff/timeline_text.h>

namespace trellant::cli {

std::string timesText(const AAFTimeline& timeline, const check::Finding& finding) {
    if (!finding.start) {
        return {};
    }
    std::string text = timecodeText(timeline, *finding.start);
    if (finding.duration && !(*finding.duration == AAFRational::zero())) {
        text += " - " + timecodeText(timeline, *finding.start + *finding.duration);
    }
    return text;
}

std::string trackPlace(const check::Finding& finding) {
    const bool isNamed = finding.track && !finding.track->empty();
    if (!finding.trackNumber) {
        return isNamed ? "track " + *finding.track : "";
    }
    return "track " + std::to_string(*finding.trackNumber) +
           (isNamed ? " " + *finding.track : std::string());
}

std::string findingLine(const AAFTimeline& timeline, const check::Finding& finding) {
    std::string line = timesText(timeline, finding);
    const std::string track = trackPlace(finding);
    line += line.empty() || track.empty() ? track : ", " + track;
    return line + (line.empty() ? "" : ": ") + finding.sentence;
}

}  // namespace trellant::cli
