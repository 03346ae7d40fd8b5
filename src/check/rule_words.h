// SPDX-License-Identifier: Apache-2.0
// What the sentences of rules are made of.
#pragma once

#include "finding_list.h"

#include <trellant/check/checked_hand_off.h>
#include <trellant/model/rational.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::check {

/// A stranger's name between quotation marks, fit for a line and not too long for one.
[[nodiscard]] std::string inQuotes(std::string_view name);
/// "clip "Anna" on track "Dialog" at 01:00:00:15"; by its audio file where neither it nor its
/// master mob has a name.
[[nodiscard]] std::string clipText(const CheckedHandOff& checked, const CheckedClip& clip);
/// "track "Dialog"" or "track 3".
[[nodiscard]] std::string trackText(const CheckedTrack& track);
/// "audio file "Rain.wav"".
[[nodiscard]] std::string sourceText(const CheckedSource& source);
/// "1 clip", "3 clips".
[[nodiscard]] std::string counted(std::size_t count, std::string_view one, std::string_view many);
/// "16 or 24"; numbers as people write rates.
[[nodiscard]] std::string anyOf(const std::vector<AAFRational>& values);
/// With the first letter large.
[[nodiscard]] std::string sentence(std::string text);

[[nodiscard]] FindingValue numberValue(const AAFRational& value);
[[nodiscard]] FindingValue countValue(std::size_t count);
[[nodiscard]] FindingValue textValue(std::string_view text);

/// Where a source's fault is shown: at the first clip that plays it.
[[nodiscard]] FindingPlace placeOf(const CheckedHandOff& checked, const CheckedSource& source);

}  // namespace trellant::check
