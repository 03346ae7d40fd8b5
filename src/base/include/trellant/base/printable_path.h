// SPDX-License-Identifier: Apache-2.0
// The path of a file, made fit for one line of a message.
#pragma once

#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// As printableText, with room for the longest path that the system takes (4,096 bytes).
[[nodiscard]] std::string printablePath(std::string_view path);

}  // namespace trellant
