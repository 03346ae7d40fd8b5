// SPDX-License-Identifier: Apache-2.0
// Several texts as one: what a child that read a stranger's file answers, in a form that takes no
// parser. Each text follows its length: eight bytes, in the byte order of the machine.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

[[nodiscard]] std::string packedTexts(const std::vector<std::string>& texts);

/// Absent when `packed` is nothing that packedTexts gives.
[[nodiscard]] std::optional<std::vector<std::string>> unpackedTexts(std::string_view packed);

}  // namespace trellant::cli
