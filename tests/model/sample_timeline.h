// SPDX-License-Identifier: Apache-2.0
// A timeline with every field filled, and its JSON text, written by hand.
#pragma once

#include <trellant/model/timeline.h>

#include <string>

namespace trellant::test {

[[nodiscard]] AAFTimeline sampleTimeline();

/// The JSON of `sampleTimeline` with sorted keys.
[[nodiscard]] std::string sampleTimelineJson();

/// The least that passes validation: a clock at 25 frames and nothing else.
[[nodiscard]] AAFTimeline emptyTimeline();

/// An event of track "t1" and essence "e1" without any optional field.
[[nodiscard]] AAFClipEvent plainEvent();

/// The JSON of `plainEvent` with sorted keys.
[[nodiscard]] std::string plainEventJson();

/// `text` with the one place where `from` stands replaced by `to`. Stops the test program when
/// `from` does not stand there exactly once.
[[nodiscard]] std::string replaced(std::string text, const std::string& from,
                                   const std::string& to);

}  // namespace trellant::test
