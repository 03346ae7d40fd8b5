// SPDX-License-Identifier: Apache-2.0
// Texts with seeded damage, of the kinds that decide about JSON.
#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace trellant::test {

/// `text` with one to three places damaged.
[[nodiscard]] inline std::string mutated(std::string text, std::mt19937_64& random) {
    using namespace std::string_view_literals;
    constexpr std::array pieces{"\""sv,          "\\"sv,      "\\u"sv,       "\\ud800"sv,
                                "\\udc00"sv,     "\\u0000"sv, "{"sv,         "}"sv,
                                "["sv,           "]"sv,       ","sv,         ":"sv,
                                "-"sv,           "+"sv,       "."sv,         "e"sv,
                                "0"sv,           "9"sv,       "null"sv,      "true"sv,
                                "false"sv,       " "sv,       "\r\n"sv,      "\t"sv,
                                "\0"sv,          "\x1f"sv,    "\x7f"sv,      "\xEF\xBB\xBF"sv,
                                "\xC3"sv,        "\xBC"sv,    "\xE2"sv,      "\xED\xA0"sv,
                                "\xF4\x90"sv,    "1e999"sv,   "-0"sv,        "1e-999"sv,
                                "\"a\""sv,       "\"\":"sv,   "[[{\"a\":"sv, "}]]"sv,
                                "/**/"sv,        "NaN"sv,     "1.0"sv,       "12e-1"sv,
                                "\xF0\x9F\x8E"sv};
    const auto below = [&](std::size_t bound) {
        return static_cast<std::size_t>(random()) % bound;
    };
    for (std::size_t count = 1 + below(3); count > 0; --count) {
        const std::size_t at = below(text.size() + 1);
        switch (below(5)) {
            case 0:
                text.insert(at, pieces[below(pieces.size())]);
                break;
            case 1:
                text.erase(at, 1 + below(4));
                break;
            case 2:
                text.replace(at, 1, pieces[below(pieces.size())]);
                break;
            case 3:
                text.insert(at, text.substr(below(text.size() + 1), below(20)));
                break;
            default:
                if (at < text.size()) {
                    text[at] = static_cast<char>(below(256));
                }
        }
    }
    return text;
}

}  // namespace trellant::test
