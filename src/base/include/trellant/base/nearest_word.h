// SPDX-License-Identifier: Apache-2.0
// What somebody who mistyped a word may have meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// The one of `words` that takes the fewest letters to be changed, added, left out or exchanged
/// with their neighbours; absent when that is more than a third of the longer word's letters.
[[nodiscard]] std::optional<std::string> nearestWord(std::string_view typed,
                                                     const std::vector<std::string>& words);

}  // namespace trellant
