// How json_decode reads a text into a value, by the JSON library.
#pragma once

#include <trellant/json/json_decode.h>

#include <stop_token>
#include <string_view>

namespace trellant::jsonDecoding {

/// Fills `root` from the whole of `text`. Throws JsonDecodingError, JsonDecodingStopped and what
/// the check of a record throws.
void parseInto(std::string_view text, ValueSlot root, RecordChecks checks,
               const std::stop_token& stop);

}  // namespace trellant::jsonDecoding
