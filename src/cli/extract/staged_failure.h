// SPDX-License-Identifier: Apache-2.0
// Failures to write files in a hidden folder, without its name.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

/// The system's reason where a file is the object that no person knows: cannot write
/// "/home/.trellant-Ab12Cd/mix.aaf": No space left on device. Absent where `isStaged` does not know
/// the path.
[[nodiscard]] std::optional<std::string> reasonNotWritten(
    std::string_view failure, const std::function<bool(std::string_view path)>& isStaged);

}  // namespace trellant::cli
