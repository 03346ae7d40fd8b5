// SPDX-License-Identifier: Apache-2.0
#include "pasted_word.h"

#include <algorithm>

namespace trellant::cli {

namespace {

bool isPlain(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') ||
           std::string_view("_-./+:@%,").find(letter) != std::string_view::npos;
}

}  // namespace

std::string pastedFileName(std::string_view name) {
    std::string word(name);
    if (name.starts_with('-')) {
        word.insert(0, "./");
    }
    if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) {
        return word;
    }
    std::string quoted = "'";
    for (const char letter : word) {
        if (letter == '\'') {
            quoted += "'\\''";
        } else {
            quoted += letter;
        }
    }
    return quoted + "'";
}

}  // namespace trellant::cli
