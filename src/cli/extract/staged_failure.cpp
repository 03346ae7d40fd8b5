// SPDX-License-Identifier: Apache-2.0
#include "staged_failure.h"

namespace trellant::cli {

std::optional<std::string> reasonNotWritten(
    std::string_view failure, const std::function<bool(std::string_view path)>& isStaged) {
    constexpr std::string_view behindPath = "\": ";
    const auto quote = failure.find('"');
    const auto end = failure.rfind(behindPath);
    if (quote == std::string_view::npos || end == std::string_view::npos || end < quote ||
        !isStaged(failure.substr(quote + 1, end - quote - 1))) {
        return std::nullopt;
    }
    return std::string(failure.substr(end + behindPath.size()));
}

}  // namespace trellant::cli
