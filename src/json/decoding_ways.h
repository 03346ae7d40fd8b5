// SPDX-License-Identifier: Apache-2.0
// The two ways by which json_decode reads a text into a value. They accept the same texts, give the
// same values and throw the same out of a record's check; only the second says what is wrong with
// the JSON.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/json/json_decode.h>

#include <string_view>

namespace trellant::jsonDecoding {

/// The quick way. False when the text is not JSON or does not fit; what `root` holds then is
/// unspecified. Throws JsonDecodingStopped and what the check of a record throws.
[[nodiscard]] bool scanInto(std::string_view text, ValueSlot root, RecordChecks checks,
                            const StopToken& stop);

/// The way that explains: throws JsonDecodingError too.
void parseInto(std::string_view text, ValueSlot root, RecordChecks checks, const StopToken& stop);

}  // namespace trellant::jsonDecoding
