// SPDX-License-Identifier: Apache-2.0
#include "page_language.h"

#include <clocale>
#include <cstdlib>

namespace trellant::cli {

void speak(PageLanguage language) {
    if (language == PageLanguage::system) {
        std::setlocale(LC_MESSAGES, "");
        return;
    }
    // A locale that every system has: only LANGUAGE tells the language.
    ::setenv("LANGUAGE", language == PageLanguage::german ? "de" : "en", 1);
    std::setlocale(LC_MESSAGES, "C.UTF-8");
}

}  // namespace trellant::cli
