// SPDX-License-Identifier: Apache-2.0
#include "say.h"

#include <trellant/base/localization.h>
#include <trellant/base/precondition.h>

#include <algorithm>

namespace trellant::page {

std::string_view say(std::string_view name) {
    constexpr std::size_t prefix = std::string_view("page.").size();
    const auto texts = pageTexts();
    const auto found = std::lower_bound(
        texts.begin(), texts.end(), name, [](const PageText& text, std::string_view wanted) {
            return std::string_view(text.key).substr(prefix) < wanted;
        });
    precondition(found != texts.end() && std::string_view(found->key).substr(prefix) == name,
                 "text of the page without a name");
    return localizedText(found->key, found->english);
}

std::string say(std::string_view name, std::string_view value) {
    std::string text(say(name));
    constexpr std::string_view slot = "{0}";
    if (const auto at = text.find(slot); at != std::string::npos) {
        text.replace(at, slot.size(), value);
    }
    return text;
}

std::string_view saySentence(const std::string& english) {
    // The catalogue's own head stands under the empty text.
    return english.empty() ? std::string_view() : localizedText(english.c_str(), english.c_str());
}

}  // namespace trellant::page
