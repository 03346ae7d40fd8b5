// SPDX-License-Identifier: Apache-2.0
#include "require.h"
#include "round_trip.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline_json.h>

#include <decoding_ways.h>

namespace trellant::fuzzing {

namespace {

void requireQuickWayAgrees(std::string_view text, const AAFTimeline* expected) {
    AAFTimeline timeline;
    const bool isTaken =
        jsonDecoding::scanInto(text, jsonDecoding::slotOf(timeline), TimelineChecks::none, {});
    require(isTaken == (expected != nullptr), "both ways of decoding take the same texts");
    require(expected == nullptr || timeline == *expected, "both ways of decoding read the same");
}

/// The timeline by the way of decoding that explains.
AAFTimeline parsedTimeline(std::string_view text) {
    AAFTimeline timeline;
    jsonDecoding::parseInto(text, jsonDecoding::slotOf(timeline), TimelineChecks::none, {});
    return timeline;
}

}  // namespace

void runTimeline(ByteView input) {
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    try {
        const AAFTimeline timeline = parsedTimeline(text);
        requireQuickWayAgrees(text, &timeline);
        requireRoundTrip(timeline);
        requireUsable(timeline);
    } catch (const JsonDecodingError& error) {
        requireQuickWayAgrees(text, nullptr);
        const std::string_view reason = error.what();
        require(isValidUTF8(reason) && reason.find('\n') == std::string_view::npos,
                "an error is one line");
    }
}

}  // namespace trellant::fuzzing
