// SPDX-License-Identifier: Apache-2.0
// Text that came from outside, made fit for one line of a message.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// `text` with control characters (below 0x20, and 0x7f) as `\u00xx` and every byte that is not
/// UTF-8 as U+FFFD; cut with "..." when more than `maxBytes` of `text` would be shown.
[[nodiscard]] std::string printableText(std::string_view text, std::size_t maxBytes = 120);

/// `bytes` as they are, but every byte that is not UTF-8 as `\xNN`: names of files that differ stay
/// apart.
[[nodiscard]] std::string textOfBytes(std::string_view bytes);

}  // namespace trellant
