// SPDX-License-Identifier: Apache-2.0
// What went wrong with a file, in words for an editor, with what to do next.
#pragma once

#include <exception>
#include <optional>
#include <string>

namespace trellant::cli {

/// The text for a failed handOff of `file`; looks at the file's head and end where that helps.
[[nodiscard]] std::string failureText(const std::string& file, const std::exception& error);

/// Whether reading failed because the file is OMF 1.x.
[[nodiscard]] bool isOlderModel(const std::exception& error);

/// Why `file` cannot be read because it is standard input ("-"), a pipe or a device; absent for all
/// else.
[[nodiscard]] std::optional<std::string> streamFailure(const std::string& file);

}  // namespace trellant::cli
