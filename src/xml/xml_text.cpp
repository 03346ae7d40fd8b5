// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>
#include <trellant/xml/xml_text.h>

namespace trellant::xml {

std::string xmlText(std::string_view text) {
    constexpr char32_t replacement = 0xFFFD;
    const std::string line = plainLine(text);
    std::string kept;
    kept.reserve(line.size());
    for (std::size_t at = 0; at < line.size();) {
        const UTF8Step step = utf8Step(line, at);
        // A broken sequence gives the replacement already.
        const bool isForbidden = step.scalar == 0xFFFE || step.scalar == 0xFFFF;
        appendUTF8(kept, isForbidden ? replacement : step.scalar);
        at += step.length;
    }
    return kept;
}

}  // namespace trellant::xml
