// SPDX-License-Identifier: Apache-2.0
#include "dawproject_limits.h"

#include "session_text.h"

#include <trellant/base/utf8.h>

namespace trellant::sessions {

std::string dawProjectName(std::string_view name) {
    constexpr char32_t replacement = 0xFFFD;
    const std::string line = plainLine(name);
    std::string text;
    text.reserve(line.size());
    for (std::size_t at = 0; at < line.size();) {
        const UTF8Step step = utf8Step(line, at);
        // A broken sequence gives the replacement already.
        appendUTF8(text,
                   step.scalar == 0xFFFE || step.scalar == 0xFFFF ? replacement : step.scalar);
        at += step.length;
    }
    return text;
}

}  // namespace trellant::sessions
