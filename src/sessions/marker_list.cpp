// SPDX-License-Identifier: Apache-2.0
#include "marker_list.h"

#include "marker_limits.h"
#include "session_text.h"

#include <trellant/exchange/format_limits.h>

#include <algorithm>

namespace trellant::sessions {

std::string markerName(std::string_view name) {
    return exchange::nameWithin(exchange::ExportFormat::markers, name);
}

std::vector<Mark> marksOf(const Session& session) {
    const exchange::ExportPlan& plan = session.plan;
    std::vector<Mark> marks;
    marks.push_back({.text = "Start " + startText(plan.start)});
    for (const SessionMarker& marker : session.markers) {
        marks.push_back({.start = marker.position,
                         .length = marker.length,
                         .text = markerName(remarkText(session, marker)),
                         .kind = marker.kind});
    }
    for (const exchange::PlannedTrack& track : plan.tracks) {
        const std::string prefix = markerName(track.name) + ": ";
        for (const exchange::Lane& lane : track.lanes) {
            for (const exchange::PlannedClip& clip : lane.clips) {
                marks.push_back({.start = clip.start,
                                 .length = clip.length,
                                 .text = prefix + markerName(clip.name)});
            }
        }
    }
    std::stable_sort(marks.begin(), marks.end(),
                     [](const Mark& left, const Mark& right) { return left.start < right.start; });
    return marks;
}

}  // namespace trellant::sessions
