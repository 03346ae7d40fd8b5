#include "require.h"
#include "round_trip.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline_json.h>

namespace trellant::fuzzing {

void runTimeline(ByteView input) {
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    try {
        const auto timeline = decodeJson<AAFTimeline>(text, TimelineChecks::none);
        requireRoundTrip(timeline);
        requireUsable(timeline);
    } catch (const JsonDecodingError& error) {
        const std::string_view reason = error.what();
        require(isValidUTF8(reason) && reason.find('\n') == std::string_view::npos,
                "an error is one line");
    }
}

}  // namespace trellant::fuzzing
