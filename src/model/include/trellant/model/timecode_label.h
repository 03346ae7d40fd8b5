// SPDX-License-Identifier: Apache-2.0
// Labels of timecode as people write them.
#pragma once

#include <trellant/model/timecode.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// Whether the text is "HH:MM:SS:FF" (or with ";" before the frames), with hours below 24 and
/// minutes and seconds below 60.
[[nodiscard]] bool isTimecodeText(std::string_view text) noexcept;

/// Frames from 00:00:00:00 to the label at `rate`; absent where the text is no label or the rate
/// has no such one. Both ":" and ";" are taken before the frames, whatever the rate counts.
[[nodiscard]] std::optional<std::int64_t> frameOfLabel(std::string_view text,
                                                       const AAFTimecodeRate& rate);

}  // namespace trellant
