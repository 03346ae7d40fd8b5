// SPDX-License-Identifier: Apache-2.0
// Strings as JSON writes them, in valid UTF-8.
#pragma once

#include "text_cursor.h"

#include <optional>
#include <string>
#include <string_view>

namespace trellant::jsonDecoding {

/// Reads the string whose opening quote comes next, its closing quote included. The text is a view
/// of where it lies, or of `unescaped` when it has escapes. Nothing when it is no valid string.
[[nodiscard]] std::optional<std::string_view> readQuotedText(TextCursor& cursor,
                                                             std::string& unescaped);

}  // namespace trellant::jsonDecoding
