// SPDX-License-Identifier: Apache-2.0
// Encoding whose outcome is kept for the tests of the schemas.
#pragma once

#include <trellant/model/timeline_json.h>

#include <string>
#include <string_view>
#include <trellant_testing/encoded_documents.h>

namespace trellant::test {

/// Where the schemas describe an `R`.
template <class R>
constexpr std::string_view schemaOf = "unknown";
template <>
inline constexpr std::string_view schemaOf<AAFTimeline> = "timeline";
template <>
inline constexpr std::string_view schemaOf<AAFClipEvent> = "timeline.event";
template <>
inline constexpr std::string_view schemaOf<AAFSourceEssence> = "timeline.essence";
template <>
inline constexpr std::string_view schemaOf<AAFTrackState> = "timeline.track";
template <>
inline constexpr std::string_view schemaOf<AAFAutomationEnvelope> = "timeline.envelope";
template <>
inline constexpr std::string_view schemaOf<AAFFade> = "timeline.fade";

template <Record R>
[[nodiscard]] std::string keptSortedJson(const R& record) {
    std::string json = sortedJson(record);
    testing::keepEncoded(schemaOf<R>, json);
    return json;
}

template <Record R>
[[nodiscard]] std::string keptDeclaredJson(const R& record) {
    std::string json = declaredJson(record);
    testing::keepEncoded(schemaOf<R>, json);
    return json;
}

}  // namespace trellant::test
